// End-to-end runs of the driver: command line, dialogs, directory memory, cyclic mode and the
// template code.
#include <gtest/gtest.h>

#include <algorithm>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::NormaliseLines;
using testing::RunBinary;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

TEST(DriverEndToEnd, CommandLineWithOneWordTakesTheControlCodeForTheData) {
  ScratchDir dir;
  dir.Write("abc.pcr", TestData("head/calc.pcr"));
  RunBinary(dir.path, "abc");
  EXPECT_TRUE(testing::HasNormalisedLine(
      dir.Read("abc.out"), " => DAT file code: abc -> Relative contribution:   1.00000"));
}

TEST(DriverEndToEnd, SecondWordOfTheCommandLineIsTheDataCode) {
  ScratchDir dir;
  dir.Write("abc.pcr", TestData("head/calc.pcr"));
  RunBinary(dir.path, "abc mydata");
  EXPECT_TRUE(testing::HasNormalisedLine(
      dir.Read("abc.out"), " => DAT file code: mydata -> Relative contribution:   1.00000"));
}

TEST(DriverEndToEnd, NoCommandLineOpensTheDialogsAndRemembersNothing) {
  ScratchDir dir;
  dir.Write("abc.pcr", TestData("head/calc.pcr"));
  dir.Write("abc.dat", "data\n");
  auto run = RunBinary(dir.path, "", "abc.pcr\n");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.output.find("Select input PCR file: [PCR files: *.PCR] "), std::string::npos);
  EXPECT_EQ(run.output.find("Select input PCR file: [PCR files: *.PCR] in"), std::string::npos);
  // abc.dat exists, so no data dialog is needed.
  EXPECT_EQ(run.output.find("Select data file:"), std::string::npos);
  EXPECT_TRUE(dir.Exists("abc.out"));
  EXPECT_FALSE(dir.Exists("corvinet.dir"));
}

// A chosen data file keeps an extension of its own (other.xy is read as it
// is named); one of the program's own data extensions is taken off.
TEST(DriverEndToEnd, DataDialogOpensWhenNoDataFileHasTheControlCode) {
  ScratchDir dir;
  dir.Write("abc.pcr", TestData("head/calc.pcr"));
  auto run = RunBinary(dir.path, "", "abc.pcr\nother.xy\n");
  EXPECT_NE(run.output.find("Select data file: [Data files: *.dat; *.uxd; *.int; *.acq]"),
            std::string::npos);
  EXPECT_TRUE(testing::HasNormalisedLine(
      dir.Read("abc.out"), " => DAT file code: other.xy -> Relative contribution:   1.00000"));
  ScratchDir second;
  second.Write("abc.pcr", TestData("head/calc.pcr"));
  RunBinary(second.path, "", "abc.pcr\nother.dat\n");
  EXPECT_TRUE(testing::HasNormalisedLine(
      second.Read("abc.out"), " => DAT file code: other -> Relative contribution:   1.00000"));
}

// A data file named on the command line with its own extension is read as it is.
TEST(DriverEndToEnd, DataFileWithItsOwnExtensionOnTheCommandLineIsRead) {
  ScratchDir dir;
  dir.Write("cycle1.pcr", TestData("cycle/cycle1.pcr"));
  dir.Write("pattern.xye", TestData("cycle/cycle.dat"));
  const auto before = dir.Read("pattern.xye");
  const auto run = RunBinary(dir.path, "cycle1 pattern.xye");
  EXPECT_EQ(run.exitCode, 0) << run.output;
  EXPECT_TRUE(testing::HasLine(run.output, " => Reading intensity file *.DAT..."));
  EXPECT_NE(dir.Read("cycle1.sum").find(" => Rp:"), std::string::npos);
  EXPECT_EQ(dir.Read("pattern.xye"), before);
}

TEST(DriverEndToEnd, DialogInAnotherDirectoryRunsThere) {
  ScratchDir dir;
  dir.Write("jobs/abc.pcr", TestData("head/calc.pcr"));
  dir.Write("jobs/abc.uxd", "d\n");
  auto run = RunBinary(dir.path, "", (dir.path / "jobs").string() + "/abc.pcr\n");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_TRUE(dir.Exists("jobs/abc.out"));
}

TEST(DriverEndToEnd, EnvironmentDirectoryGetsOneSlashAndANewMemoryFile) {
  ScratchDir dir;
  dir.Write("abc.pcr", TestData("head/calc.pcr"));
  std::filesystem::create_directories(dir.path / "memory");
  RunBinary(dir.path, "abc", "", "CORVINET='" + (dir.path / "memory").string() + "'");
  ASSERT_TRUE(dir.Exists("memory/corvinet.dir"));
  EXPECT_EQ(dir.Read("memory/corvinet.dir"), "\nabc\n");
  EXPECT_FALSE(dir.Exists("corvinet.dir"));
}

TEST(DriverEndToEnd, MemoryFileInTheCurrentDirectoryGivesTheStartDirectory) {
  ScratchDir dir;
  dir.Write("abc.pcr", TestData("head/calc.pcr"));
  dir.Write("abc.dat", "d\n");
  dir.Write("corvinet.dir", "   " + dir.path.string() + "\nold\n");
  auto run = RunBinary(dir.path, "", "abc.pcr\n");
  EXPECT_NE(
      run.output.find("Select input PCR file: [PCR files: *.PCR] in " + dir.path.string() + "/"),
      std::string::npos);
  EXPECT_EQ(dir.Read("corvinet.dir"), dir.path.string() + "/\nabc\n");
}

TEST(DriverEndToEnd, AnswerOtherDataGoesThroughTheDialogsAfterACommandLine) {
  ScratchDir dir;
  dir.Write("abc.pcr", TestData("head/calc.pcr"));
  dir.Write("two.pcr", TestData("head/calc.pcr"));
  dir.Write("two.dat", "d\n");
  auto run = RunBinary(dir.path, "abc", "n\ny\ntwo.pcr\n");
  EXPECT_NE(run.output.find("Select input PCR file:"), std::string::npos);
  EXPECT_TRUE(dir.Exists("abc.out"));
  EXPECT_TRUE(dir.Exists("two.out"));
  EXPECT_NE(run.output.find(" => File : two"), std::string::npos);
}

TEST(DriverEndToEnd, AnswerSameDataRunsTheJobAgain) {
  ScratchDir dir;
  dir.Write("abc.pcr", TestData("head/calc.pcr"));
  auto run = RunBinary(dir.path, "abc", "y\n");
  const auto lines = SplitLines(run.output);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), " => File : abc"), 2);
}

TEST(DriverEndToEnd, LowerCaseCycWithCapitalInsideIsAControlCode) {
  ScratchDir dir;
  auto run = RunBinary(dir.path, "cYc");
  EXPECT_NE(run.output.find(" => Error opening file: cYc.pcr Unit:  1"), std::string::npos);
}

TEST(DriverEndToEnd, TemplateCodeEntersTemplateGenerationAndEndsWithItsBox) {
  ScratchDir dir;
  std::filesystem::create_directories(dir.path / "sub");
  auto run = RunBinary(dir.path / "sub", "../starting");
  // No answers: the standard template of the second job, then the box, and a normal end.
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.output.find("=== Stop/Warning Box ==="), std::string::npos);
  EXPECT_NE(run.output.find(" Template File: 'starting.pcr' has been created"), std::string::npos);
  EXPECT_EQ(run.output.find("Continue with the same data?"), std::string::npos);
  EXPECT_TRUE(dir.Exists("starting.pcr"));
  EXPECT_FALSE(dir.Exists("starting.out"));
}

// A cyclic series over numbered data files.
struct Cyclic {
  ScratchDir dir;
  testing::BinaryRun run;
  Cyclic(const std::string& word, int first, int last, const std::vector<int>& present) {
    dir.Write("job.pcr", TestData("head/calc.pcr"));
    for (int n : present) dir.Write("ser" + std::to_string(n) + ".dat", "data\n");
    run = RunBinary(dir.path, word,
                    "job\nser\n" + std::to_string(first) + "\n" + std::to_string(last) + "\n");
  }
  std::vector<std::string> Rounds() const {
    std::vector<std::string> rounds;
    for (const std::string& line : SplitLines(run.output)) {
      if (line.rfind(" ##### ", 0) == 0) rounds.push_back(line);
    }
    return rounds;
  }
};

TEST(DriverEndToEnd, CyclicModeRunsEveryNumberThatHasADataFile) {
  Cyclic c("cyc", 1, 3, {1, 3});
  EXPECT_EQ(c.run.exitCode, 0);
  const auto rounds = c.Rounds();
  ASSERT_EQ(rounds.size(), 2u);
  EXPECT_EQ(rounds[0], " ##### ser1: Chi2 =       0.0000  #####");
  EXPECT_EQ(rounds[1], " ##### ser3: Chi2 =       0.0000  #####");
  EXPECT_NE(c.run.output.find(" => Normal end..."), std::string::npos);
  // The reports of each round are removed; the log stays.
  EXPECT_FALSE(c.dir.Exists("job.out"));
  EXPECT_FALSE(c.dir.Exists("job.sum"));
  const auto log = SplitLines(c.dir.Read("job.log"));
  const std::vector<std::string> head = {
      "  ",
      "        ********************************************************",
      "        ** PROGRAM CORVINET.99 (Version 0.3  - Apr99-QMV TRX) **",
      "        ********************************************************",
      "           Rietveld, Profile Matching & Integrated Intensity",
      "                Refinement of X-ray and/or Neutron Data",
      "             (Single_Pattern: Windows-version - CYCLIC mode)",
      "                          L O G   F I L E",
      " => Analysis of data files of code: ser",
      "    between  numbers      1 and      3",
      " => The code of the starting *.pcr file is:job"};
  ASSERT_GE(log.size(), head.size());
  for (std::size_t i = 0; i < head.size(); ++i) EXPECT_EQ(log[i], head[i]) << i;
  EXPECT_EQ(std::count(log.begin(), log.end(), std::string(80, '-')), 2);
  EXPECT_EQ(std::count(log.begin(), log.end(), " => Reading control file *.PCR ..."), 2);
  EXPECT_EQ(c.run.output.find("Continue with the same data?"), std::string::npos);
}

TEST(DriverEndToEnd, CyclicModeRunsADescendingSeries) {
  Cyclic c("CYC", 12, 10, {10, 11, 12});
  const auto rounds = c.Rounds();
  ASSERT_EQ(rounds.size(), 3u);
  EXPECT_NE(rounds[0].find("ser12"), std::string::npos);
  EXPECT_NE(rounds[1].find("ser11"), std::string::npos);
  EXPECT_NE(rounds[2].find("ser10"), std::string::npos);
}

TEST(DriverEndToEnd, CyclicModeWithEqualNumbersRunsOnce) {
  Cyclic c("Cyc", 7, 7, {7, 8});
  const auto rounds = c.Rounds();
  ASSERT_EQ(rounds.size(), 1u);
  EXPECT_NE(rounds[0].find("ser7"), std::string::npos);
}

TEST(DriverEndToEnd, CyclicModeForcesTheRpaFile) {
  Cyclic c("cyc", 1, 1, {1});
  EXPECT_TRUE(c.dir.Exists("job.rpa"));
  EXPECT_NE(c.dir.Read("job.rpa").find("FILES => DAT-files: ser1"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
