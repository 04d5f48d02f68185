// End-to-end runs on broken or awkward inputs: the exit status, the message, and every input file
// byte-identical afterwards.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "format/fortran_format.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::RunBinary;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// The bytes of the named files, to compare before and after a run.
std::map<std::string, std::string> Snapshot(const ScratchDir& dir,
                                            const std::vector<std::string>& names) {
  std::map<std::string, std::string> bytes;
  for (const std::string& name : names) bytes[name] = dir.Read(name);
  return bytes;
}

void ExpectUnchanged(const ScratchDir& dir, const std::map<std::string, std::string>& before) {
  for (const auto& [name, bytes] : before) EXPECT_EQ(dir.Read(name), bytes) << name;
}

// The calculation job of simulated rutile with line `line` (1-based) of its
// control file passed through `edit`.
std::string EditedLine(const std::string& text, std::size_t line,
                       std::string (*edit)(const std::string&)) {
  std::vector<std::string> lines = SplitLines(text);
  lines[line - 1] = edit(lines[line - 1]);
  std::string out;
  for (const std::string& l : lines) out += l + "\n";
  return out;
}

struct BrokenCase {
  const char* name;
  std::size_t line;
  std::string (*edit)(const std::string&);
  const char* message;
};

std::string Replaced(const std::string& line, const std::string& from, const std::string& to) {
  const std::size_t at = line.find(from);
  EXPECT_NE(at, std::string::npos) << line;
  return line.substr(0, at) + to + line.substr(at + from.size());
}

const BrokenCase kBrokenCases[] = {
    {"step0", 5, [](const std::string& l) { return Replaced(l, "   0.0200", "   0.0000"); },
     " => The calculation step must be above 0 -> Pattern#  1"},
    {"stepneg", 5, [](const std::string& l) { return Replaced(l, "   0.0200", "  -0.0200"); },
     " => The calculation step must be above 0 -> Pattern#  1"},
    {"lambda0", 4, [](const std::string& l) { return Replaced(l, " 1.540560 1.540560", " 0 0"); },
     " => The wavelength Lambda1 must be above 0 -> Pattern#  1"},
    {"reversed", 5,
     [](const std::string& l) {
       return Replaced(l, "15.0000   0.0200   120.0000", "120.0000   0.0200    15.0000");
     },
     " => The calculation range is empty: Thmax must be above Thmin -> Pattern#  1"},
};

// These used to end at " NO REFLECTIONS FOUND -> Check your input data", or
// at " Too many data points " for a step of 0, with exit status 0.
TEST(BrokenInputEndToEnd, CalculationRangeAndWavelengthStopWithTheirOwnMessage) {
  for (const BrokenCase& c : kBrokenCases) {
    ScratchDir dir;
    const std::string name = c.name;
    dir.Write(name + ".pcr", EditedLine(TestData("report/rutile_sim.pcr"), c.line, c.edit));
    dir.Write(name + ".dat", "");
    const auto before = Snapshot(dir, {name + ".pcr", name + ".dat"});
    const auto run = RunBinary(dir.path, name);
    EXPECT_EQ(run.exitCode, 2) << name;
    EXPECT_TRUE(testing::HasLine(run.output, c.message)) << run.output;
    EXPECT_EQ(run.output.find("NO REFLECTIONS FOUND"), std::string::npos) << name;
    ExpectUnchanged(dir, before);
    EXPECT_TRUE(testing::HasLine(dir.Read(name + ".out"), c.message)) << name;
  }
}

// Every blank run of the numeric lines 2 to 9 becomes a tab, and each of them
// starts with one.
std::string Tabbed(const std::string& text) {
  std::vector<std::string> lines = SplitLines(text);
  for (std::size_t i = 1; i <= 8; ++i) {
    std::istringstream words(lines[i]);
    std::string word, line;
    while (words >> word) line += "\t" + word;
    lines[i] = line;
  }
  std::string out;
  for (const std::string& l : lines) out += l + "\n";
  return out;
}

// A leading tab used to make every field of the line read 0.
TEST(BrokenInputEndToEnd, TabsInTheControlFileReadAsBlanks) {
  ScratchDir plain;
  plain.Write("x.pcr", TestData("report/rutile_sim.pcr"));
  plain.Write("x.dat", "");
  ASSERT_EQ(RunBinary(plain.path, "x").exitCode, 0);

  ScratchDir tabbed;
  const std::string text = Tabbed(TestData("report/rutile_sim.pcr"));
  ASSERT_NE(text.find("\n\t2\t0\t1"), std::string::npos);
  tabbed.Write("x.pcr", text);
  tabbed.Write("x.dat", "");
  const auto before = Snapshot(tabbed, {"x.pcr", "x.dat"});
  const auto run = RunBinary(tabbed.path, "x");
  EXPECT_EQ(run.exitCode, 0) << run.output;
  EXPECT_EQ(tabbed.Read("x.sim"), plain.Read("x.sim"));
  ExpectUnchanged(tabbed, before);
}

// A refinement of simulated rutile whose background is read from rutile.bac
// (Nba 1) and whose report writes the background curve (Ppl 2).
struct BackgroundFileJob {
  ScratchDir dir;
  BackgroundFileJob() {
    dir.Write("rutile_sim.pcr", TestData("report/rutile_sim.pcr"));
    dir.Write("rutile_sim.dat", "");
    EXPECT_EQ(RunBinary(dir.path, "rutile_sim").exitCode, 0);
    dir.Write("rutile.dat", dir.Read("rutile_sim.sim"));
    std::string pcr = TestData("report/rutile.pcr");
    pcr = EditedLine(pcr, 2, [](const std::string& l) {
      return Replaced(l, "   0   0   1   0", "   0   0   1   1");
    });
    pcr = EditedLine(pcr, 3,
                     [](const std::string& l) { return Replaced(l, "   0   0", "   0   2"); });
    dir.Write("rutile.pcr", pcr);
    std::string bac = "background of rutile\n";
    for (int i = 0; i < 5251; ++i) bac += std::to_string(15.0 + 0.02 * i) + " 200.0\n";
    dir.Write("rutile.bac", bac);
  }
};

// The background curve used to be written over rutile.bac, and the next run
// stopped at " End of file *.BAC".
TEST(BrokenInputEndToEnd, TheBackgroundCurveLeavesTheBackgroundFileAndASecondRunWorks) {
  BackgroundFileJob job;
  ScratchDir& dir = job.dir;
  const auto before = Snapshot(dir, {"rutile.bac", "rutile.dat"});
  const auto first = RunBinary(dir.path, "rutile");
  ASSERT_EQ(first.exitCode, 0) << first.output;
  ExpectUnchanged(dir, before);
  ASSERT_TRUE(dir.Exists("rutile_bac.xy"));
  EXPECT_EQ(SplitLines(dir.Read("rutile_bac.xy"))[0], "XYDATA");
  EXPECT_TRUE(
      testing::HasLine(dir.Read("rutile.out"), " => Background written on file: rutile_bac.xy"));
  EXPECT_FALSE(dir.Exists("rutile.pcr.tmp"));

  const auto second = RunBinary(dir.path, "rutile");
  EXPECT_EQ(second.exitCode, 0) << second.output;
  EXPECT_EQ(second.output.find("End of file"), std::string::npos);
  ExpectUnchanged(dir, before);
}

TEST(BrokenInputEndToEnd, AControlFileThatCannotBeReplacedIsLeftWhole) {
  BackgroundFileJob job;
  ScratchDir& dir = job.dir;
  std::filesystem::create_directory(dir.path / "rutile.pcr.tmp");
  const auto before = Snapshot(dir, {"rutile.pcr", "rutile.bac", "rutile.dat"});
  const auto run = RunBinary(dir.path, "rutile");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_TRUE(testing::HasLine(run.output, " => Error writing file: rutile.pcr")) << run.output;
  EXPECT_TRUE(testing::HasLine(run.output, " Error writing the new control file"));
  ExpectUnchanged(dir, before);
}

// An end of file inside the control file used to end with status 1.
TEST(BrokenInputEndToEnd, AControlFileCutShortEndsWithTheErrorStatus) {
  ScratchDir dir;
  const std::vector<std::string> lines = SplitLines(TestData("report/rutile_sim.pcr"));
  std::string cut;
  for (std::size_t i = 0; i < 7; ++i) cut += lines[i] + "\n";
  dir.Write("cut.pcr", cut);
  dir.Write("cut.dat", "");
  const auto before = Snapshot(dir, {"cut.pcr", "cut.dat"});
  const auto run = RunBinary(dir.path, "cut");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_NE(run.output.find(" => Not FATAL End of file !,  logical unit:   1"), std::string::npos)
      << run.output;
  ExpectUnchanged(dir, before);
}

TEST(BrokenInputEndToEnd, TheUsersStopAtTheContinueQuestionEndsWithStatusZero) {
  ScratchDir dir;
  dir.Write("x.pcr", TestData("report/rutile_sim.pcr"));
  dir.Write("x.dat", "");
  const auto run = RunBinary(dir.path, "x", "n\nn\n");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.output.find("Continue with other data?"), std::string::npos);
  EXPECT_TRUE(testing::HasLine(run.output, " END"));
}

// A background height whose points see no reflection cannot be refined: the
// singular matrix names it. The heights job of tests/data/cycle with a first
// point at 15 degrees (below the first peak) given the only code.
TEST(BrokenInputEndToEnd, SingularMatrixNamesTheParameterItStoppedAt) {
  ScratchDir dir;
  std::string pcr = TestData("cycle/heights.pcr");
  const std::size_t first = pcr.find("  20.000   150.000  11.00");
  ASSERT_NE(first, std::string::npos);
  pcr.insert(first, "  15.000   150.000  11.00\n");
  for (int k = 1; k <= 9; ++k) {
    const std::string code = Fmt("(F6.2)", static_cast<float>(10 * k + 1));
    const std::size_t at = pcr.find(code + "\n", first + 26);
    ASSERT_NE(at, std::string::npos) << code;
    pcr.replace(at, code.size(), "  0.00");
  }
  pcr = Replaced(pcr, "   0   0   1   9   0", "   0   0   1  10   0");
  pcr = Replaced(pcr, "    9    !Number of refined", "    1    !Number of refined");
  dir.Write("single.pcr", pcr);
  dir.Write("single.dat", TestData("cycle/cycle.dat"));
  const auto before = Snapshot(dir, {"single.pcr", "single.dat"});
  const auto run = RunBinary(dir.path, "single");
  EXPECT_EQ(run.exitCode, 2);
  const std::string line =
      " ==> Parameter no.:   1: BckPt1 (background height at 15.000) of pattern 1";
  EXPECT_TRUE(testing::HasLine(run.output, line)) << run.output;
  EXPECT_TRUE(testing::HasLine(dir.Read("single.out"), line));
  ExpectUnchanged(dir, before);
}

// A nan among the counts of a data file stops the run with the file and its
// line, and leaves both input files as they were.
TEST(BrokenInputEndToEnd, NonFiniteCountInTheDataFileStopsWithItsLine) {
  ScratchDir dir;
  std::string data = TestData("cycle/cycle.dat");
  std::vector<std::string> lines = SplitLines(data);
  ASSERT_GT(lines.size(), 10u);
  std::istringstream row(lines[4]);
  std::string firstCount;
  row >> firstCount;
  lines[4] = Replaced(lines[4], firstCount, "nan");
  data.clear();
  for (const std::string& l : lines) data += l + "\n";
  dir.Write("cycle1.pcr", TestData("cycle/cycle1.pcr"));
  dir.Write("cycle1.dat", data);
  const auto before = Snapshot(dir, {"cycle1.pcr", "cycle1.dat"});
  const auto run = RunBinary(dir.path, "cycle1");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_TRUE(
      testing::HasLine(run.output, " => Non-finite value in data file: cycle1.dat at line 5"))
      << run.output;
  ExpectUnchanged(dir, before);
}

}  // namespace
}  // namespace corvinet
