// A running search ended by a real interrupt signal: a clean exit with the best solutions written.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>
#include <chrono>
#include <string>
#include <thread>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::ScratchDir;

// The known-answer search with far more trials than it can finish.
std::string EndlessSearch() {
  std::string pcr = testing::TestData("intensities/pbmc.pcr");
  const std::string trials = "   20000       3        0        1";
  const std::size_t at = pcr.find(trials);
  if (at == std::string::npos) return "";
  return pcr.replace(at, trials.size(), "99999999       3        0        1");
}

// Starts the binary in `dir` on `code` with stdin and stdout redirected.
pid_t StartBinary(const ScratchDir& dir, const std::string& code) {
  const pid_t pid = fork();
  if (pid != 0) return pid;
  if (chdir(dir.path.c_str()) != 0) _exit(127);
  const int in = open(".stdin", O_RDONLY);
  const int out = open(".stdout", O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (in < 0 || out < 0) _exit(127);
  dup2(in, 0);
  dup2(out, 1);
  dup2(out, 2);
  execl(CORVINET_BINARY, CORVINET_BINARY, code.c_str(), static_cast<char*>(nullptr));
  _exit(127);
}

TEST(SearchInterrupt, ASigintEndsTheRunningSearchWithStatusZeroAndTheSolutionsWritten) {
  ScratchDir dir;
  const std::string pcr = EndlessSearch();
  ASSERT_FALSE(pcr.empty());
  dir.Write("pbmc.pcr", pcr);
  dir.Write("pbmc1.hkl", testing::TestData("intensities/pbsc1.hkl"));
  dir.Write(".stdin", "n\nn\n");
  const pid_t pid = StartBinary(dir, "pbmc");
  ASSERT_GT(pid, 0);
  // The signal goes once the trials run (the first progress line), and at
  // least a second after the start.
  const auto start = std::chrono::steady_clock::now();
  bool running = false;
  int status = 0;
  while (std::chrono::steady_clock::now() - start < std::chrono::seconds(60)) {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    ASSERT_EQ(waitpid(pid, &status, WNOHANG), 0) << "ended before the signal\n"
                                                 << dir.Read(".stdout");
    if (dir.Exists(".stdout") &&
        dir.Read(".stdout").find(" => Trials done:") != std::string::npos &&
        std::chrono::steady_clock::now() - start > std::chrono::seconds(1)) {
      running = true;
      break;
    }
  }
  ASSERT_EQ(kill(pid, SIGINT), 0);
  ASSERT_EQ(waitpid(pid, &status, 0), pid);
  ASSERT_TRUE(running) << dir.Read(".stdout");
  ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
  EXPECT_EQ(WEXITSTATUS(status), 0) << dir.Read(".stdout");
  const std::string output = dir.Read(".stdout");
  EXPECT_NE(output.find(" => Search interrupted by the user"), std::string::npos) << output;
  for (const char* name : {"pbmc1.so", "pbmc2.so", "pbmc3.so"}) {
    ASSERT_TRUE(dir.Exists(name)) << name;
    EXPECT_NE(dir.Read(name).find("  ==> Current R_Bragg: "), std::string::npos) << name;
  }
}

}  // namespace
}  // namespace corvinet
