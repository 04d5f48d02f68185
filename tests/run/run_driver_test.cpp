// Tests of the run driver's pieces: paths, numbered codes, the continue dialogs and the
// directory memory.
#include "run/run_driver.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

TEST(RunDriver, SplitPathCutsAtTheLastSlash) {
  std::string directory, file;
  SplitPath("/a/b/c.pcr", directory, file);
  EXPECT_EQ(directory, "/a/b/");
  EXPECT_EQ(file, "c.pcr");
  SplitPath("c.pcr", directory, file);
  EXPECT_EQ(directory, "");
  EXPECT_EQ(file, "c.pcr");
  SplitPath("dir/", directory, file);
  EXPECT_EQ(directory, "dir/");
  EXPECT_EQ(file, "");
}

TEST(RunDriver, NumberedCodesHaveNoBlanksOrLeadingZeros) {
  EXPECT_EQ(NumberedCode("ser", 7), "ser7");
  EXPECT_EQ(NumberedCode("ser", 42), "ser42");
  EXPECT_EQ(NumberedCode("ser", 999), "ser999");
  EXPECT_EQ(NumberedCode("ser  ", 12345), "ser12345");
}

TEST(RunDriver, ContinueDialogsGiveSameOtherOrStop) {
  CapturedJob job("y\nn\ny\nn\nn\n");
  AskContinue(*job);
  EXPECT_EQ(job->driver.answer, 's');
  AskContinue(*job);
  EXPECT_EQ(job->driver.answer, 'a');
  AskContinue(*job);
  EXPECT_EQ(job->driver.answer, 'k');
  AskContinue(*job);  // end of input answers No twice
  EXPECT_EQ(job->driver.answer, 'k');
  const std::string console = job.Console();
  EXPECT_NE(console.find("Corvinet Refinement: Continue with the same data? [Y/n]"),
            std::string::npos);
  EXPECT_NE(console.find("Corvinet Refinement: Continue with other data? [Y/n]"),
            std::string::npos);
}

TEST(RunDriver, CpuTimerPrintsSecondsAndMinutes) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(OpenUnit(job->files.units[Unit::Out], "r.out", OpenStatus::Unknown));
  ASSERT_TRUE(OpenUnit(job->files.units[Unit::Sum], "r.sum", OpenStatus::Unknown));
  CpuTimer(*job, 1, false);
  CpuTimer(*job, 2, true);
  CloseUnit(job->files.units[Unit::Out]);
  CloseUnit(job->files.units[Unit::Sum]);
  const std::regex seconds(R"(          \s{4}CPU Time:\s*\d+\.\d{3} seconds)");
  const std::regex minutes(R"( {23}\s*\d+\.\d{3} minutes)");
  for (const std::string& text : {dir.Read("r.out"), dir.Read("r.sum"), job.Console()}) {
    const auto lines = testing::SplitLines(text);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(std::regex_match(lines[0], seconds)) << lines[0];
    EXPECT_TRUE(std::regex_match(lines[1], minutes)) << lines[1];
    EXPECT_EQ(lines[0].size(), 10u + 13u + 10u + 8u);
  }
}

// Runs the driver in this process with the environment variable set to `memory`.
void RunWithMemory(Job& job, const std::string& memory) {
  ::setenv("CORVINET", memory.c_str(), 1);
  Main(job, {"abc"});
  ::unsetenv("CORVINET");
}

TEST(RunDriver, EnvironmentDirectoryGetsExactlyOneSlash) {
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

TEST(RunDriver, NoMemoryWithoutFileOrEnvironment) {
  ScratchDir dir;
  dir.Write("abc.pcr", testing::TestData("head/calc.pcr"));
  ::unsetenv("CORVINET");
  CapturedJob job;
  EXPECT_EQ(Main(*job, {"abc"}), 0);
  EXPECT_FALSE(job->driver.dirMemoryOpen);
  EXPECT_EQ(job->driver.startDirectory, "");
  EXPECT_FALSE(dir.Exists("corvinet.dir"));
}

TEST(RunDriver, CyclicCodesAreThreeSpellingsOnly) {
  ScratchDir dir;
  for (const char* code : {"cyc", "CYC", "Cyc"}) {
    CapturedJob job;
    Main(*job, {code});
    EXPECT_EQ(job->driver.cyclicMode, 1) << code;
  }
  CapturedJob job;
  Main(*job, {"cYc"});
  EXPECT_EQ(job->driver.cyclicMode, 0);
}

TEST(RunDriver, CommandLineWithoutSecondWordLeavesDataCodeToTheControlCode) {
  ScratchDir dir;
  dir.Write("abc.pcr", testing::TestData("head/calc.pcr"));
  CapturedJob job;
  Main(*job, {"abc"});
  EXPECT_EQ(job->driver.PcrCode, "abc");
  EXPECT_EQ(job->driver.DatCode, "abc");
  EXPECT_EQ(job->patterns[1].DatCode, "abc");
}

}  // namespace
}  // namespace corvinet
