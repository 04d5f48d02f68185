// Tests of the directory memory, through runs of the driver in this process.
#include "run/directory_memory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "run/run_driver.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// Runs the driver in this process with the environment variable set to `memory`.
void RunWithMemory(Job& job, const std::string& memory) {
  ::setenv("CORVINET", memory.c_str(), 1);
  Main(job, {"abc"});
  ::unsetenv("CORVINET");
}

TEST(DirectoryMemory, EnvironmentDirectoryGetsExactlyOneSlash) {
  ScratchDir dir;
  dir.Write("abc.pcr", testing::TestData("head/calc.pcr"));
  std::filesystem::create_directories(dir.path / "mem");
  CapturedJob job;
  RunWithMemory(*job, (dir.path / "mem").string());
  EXPECT_EQ(job->driver.dirMemoryPath, (dir.path / "mem").string() + "/corvinet.dir");
  EXPECT_EQ(dir.Read("mem/corvinet.dir"), "\nabc\n");
  CapturedJob other;
  RunWithMemory(*other, (dir.path / "mem").string() + "/");
  EXPECT_EQ(other->driver.dirMemoryPath, (dir.path / "mem").string() + "/corvinet.dir");
}

TEST(DirectoryMemory, NoMemoryWithoutFileOrEnvironment) {
  ScratchDir dir;
  dir.Write("abc.pcr", testing::TestData("head/calc.pcr"));
  ::unsetenv("CORVINET");
  CapturedJob job;
  EXPECT_EQ(Main(*job, {"abc"}), 0);
  EXPECT_FALSE(job->driver.dirMemoryOpen);
  EXPECT_EQ(job->driver.startDirectory, "");
  EXPECT_FALSE(dir.Exists("corvinet.dir"));
}

}  // namespace
}  // namespace corvinet
