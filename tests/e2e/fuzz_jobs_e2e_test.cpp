// The jobs that a mutation search found to break the program (../shared/fuzz): each ends with a
// clear message and exit status 2, leaving its inputs as they were, or ends normally with a
// control file that the next run of the same command reads.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

namespace fs = std::filesystem;
using testing::HasLine;
using testing::RunBinary;
using testing::ScratchDir;

fs::path FuzzFolder() {
  return fs::path(CORVINET_SHARED_DIR) / "fuzz";
}

std::string ReadWhole(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::stringstream all;
  all << file.rdbuf();
  return all.str();
}

// The job's files copied into the scratch folder, with their bytes; ARGS is not a file of the job.
std::map<std::string, std::string> CopyJob(const fs::path& from, const ScratchDir& dir) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(from)) {
    const std::string name = entry.path().filename().string();
    if (name == "ARGS" || name == "expected.txt" || name == "REREAD" || name == "LONG") continue;
    fs::copy_file(entry.path(), dir.path / name);
    files[name] = ReadWhole(entry.path());
  }
  return files;
}

std::string Arguments(const fs::path& job) {
  std::string words = ReadWhole(job / "ARGS");
  while (!words.empty() && (words.back() == '\n' || words.back() == ' ')) words.pop_back();
  return words;
}

// What each job that stops must say: its first words of explanation.
const std::map<std::string, std::string> kStopWords = {
    {"F01-excluded-region-index-0", " => The step reduction Ste = 5000 leaves 0 data points"},
    {"F02-nsc-int-min",
     " => Integer field 6 = -2147483648 is outside its range: -99999999 to 99999999"},
    {"F03-nph-int-min",
     " => Integer field 3 = -2147483648 is outside its range: -99999999 to 99999999"},
    {"F04-nba-int-min",
     " => Integer field 4 = -2147483648 is outside its range: -99999999 to 99999999"},
    {"F05-npr-int-max",
     " => Integer field 2 = 2147483647 is outside its range: -99999999 to 99999999"},
    {"F06-job-int-min",
     " => Integer field 1 = -2147483648 is outside its range: -99999999 to 99999999"},
    {"F07-irf-int-min",
     " => Integer field 8 = -2147483648 is outside its range: -99999999 to 99999999"},
    {"F08-phase-npr-int-max",
     " => Integer field 14 = 2147483647 is outside its range: -99999999 to 99999999"},
    {"F09-jbt-int-min",
     " => Integer field 7 = -2147483648 is outside its range: -99999999 to 99999999"},
    {"F10-nvk-int-min",
     " => Integer field 9 = -2147483648 is outside its range: -99999999 to 99999999"},
    {"F11-nt-int-min",
     " => Integer field 10 = -2147483648 is outside its range: -99999999 to 99999999"},
    {"F12-size-model-int-min",
     " => Integer field 8 = -2147483648 is outside its range: -99999999 to 99999999"},
    {"F13-furth-int-max",
     " => Integer field 11 = 2147483647 is outside its range: -99999999 to 99999999"},
    {"F14-refined-count-int-min",
     " => Integer field 1 = -2147483648 is outside its range: -99999999 to 99999999"},
    {"F15-fou-int-min-after-rewrite",
     " => Integer field 15 = -2147483648 is outside its range: -99999999 to 99999999"},
    {"F16-cycle-count-huge",
     " => Integer field 1 = 999999999 is outside its range: -99999999 to 99999999"},
    {"F17-refined-count-int-max",
     " => Integer field 1 = 2147483647 is outside its range: -99999999 to 99999999"},
};

// Words by which a run says it could not read its control file.
bool ControlFileUnreadable(const std::string& output) {
  return output.find("FindFMT:") != std::string::npos ||
         output.find(" => Please check your input file at line:") != std::string::npos ||
         output.find(" => Not FATAL End of file !,  logical unit:   1") != std::string::npos;
}

void ExpectUnchanged(const ScratchDir& dir, const std::map<std::string, std::string>& files,
                     const std::string& job) {
  for (const auto& [name, bytes] : files) EXPECT_EQ(dir.Read(name), bytes) << job << ": " << name;
}

TEST(FuzzJobs, EveryJobEndsWithAClearMessageOrAControlFileThatReadsAgain) {
  if (!fs::exists(FuzzFolder())) GTEST_SKIP() << "shared fuzz folder absent";
  int jobs = 0;
  for (const auto& entry : fs::directory_iterator(FuzzFolder())) {
    if (!fs::exists(entry.path() / "ARGS")) continue;
    const std::string job = entry.path().filename().string();
    ++jobs;
    ScratchDir dir;
    const auto files = CopyJob(entry.path(), dir);
    const std::string args = Arguments(entry.path());
    const auto run = RunBinary(dir.path, args);
    ASSERT_TRUE(run.exitCode == 0 || run.exitCode == 2) << job << "\n" << run.output;
    const auto words = kStopWords.find(job);
    if (words != kStopWords.end()) {
      EXPECT_EQ(run.exitCode, 2) << job;
      EXPECT_TRUE(HasLine(run.output, words->second)) << job << "\n" << run.output;
    }
    if (run.exitCode == 2) {
      // A stop names its reason in the box and leaves every input as it was.
      EXPECT_NE(run.output.find("=== Stop/Warning Box ==="), std::string::npos) << job;
      ExpectUnchanged(dir, files, job);
      continue;
    }
    // A normal end: the next run of the same command reads the control file written.
    const auto again = RunBinary(dir.path, args);
    EXPECT_FALSE(ControlFileUnreadable(again.output)) << job << "\n" << again.output;
    EXPECT_TRUE(again.exitCode == 0 || again.exitCode == 2) << job;
  }
  EXPECT_GE(jobs, 20);
}

// The three jobs whose flags are wider than their columns end normally, and the
// new control file keeps the flags, written wider, where the next run reads them.
TEST(FuzzJobs, FlagsWiderThanTheirColumnsAreWrittenWiderAndReadAgain) {
  if (!fs::exists(FuzzFolder())) GTEST_SKIP() << "shared fuzz folder absent";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"F20a-prf-1000000-written-as-stars",
       "   0   0   1   0   1   0   0   0   0 1000000   0   0   0   0   0   0   0"},
      {"F20b-rpa-5000-runs-into-neighbour",
       "   0   0   1   0   1   0   0   0   0   1   0 5000   0   0   0   0   0"},
      {"F20c-jbt-1000-runs-into-neighbour",
       "   0   0   0 0.0 0.0 1.0 1000   0   0   0   0        0.00   0   5   0"},
  };
  for (const auto& [job, line] : cases) {
    ScratchDir dir;
    CopyJob(FuzzFolder() / job, dir);
    ASSERT_EQ(RunBinary(dir.path, "single").exitCode, 0) << job;
    EXPECT_TRUE(HasLine(dir.Read("single.pcr"), line)) << job << "\n" << dir.Read("single.pcr");
    const auto again = RunBinary(dir.path, "single");
    EXPECT_EQ(again.exitCode, 0) << job << "\n" << again.output;
    EXPECT_TRUE(HasLine(dir.Read("single.pcr"), line)) << job;
  }
}

}  // namespace
}  // namespace corvinet
