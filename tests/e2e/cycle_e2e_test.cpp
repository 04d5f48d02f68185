// End-to-end runs of profile-matching refinements of a simulated cubic pattern: the cycle reports
// of the .out file and the results of the .sum file, compared line by line with expected files
// whose numbers are recalculated independently by tests/data/cycle/check_cycle_numbers.py.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::NormaliseLines;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// The lines from the first one that starts with one of `starts` to the end.
std::vector<std::string> TailFrom(const std::string& text, const std::vector<std::string>& starts) {
  const auto lines = NormaliseLines(SplitLines(text));
  for (std::size_t i = 0; i < lines.size(); ++i) {
    for (const auto& s : starts) {
      if (lines[i].rfind(s, 0) == 0) return {lines.begin() + static_cast<long>(i), lines.end()};
    }
  }
  return {};
}

// The expected lines open the actual ones; the final report follows them.
void ExpectSameLines(const std::vector<std::string>& actual, const std::string& expected) {
  const auto e = NormaliseLines(SplitLines(expected));
  for (std::size_t i = 0; i < std::min(actual.size(), e.size()); ++i) {
    EXPECT_EQ(actual[i], e[i]) << "at line " << i + 1;
  }
  EXPECT_GE(actual.size(), e.size());
}

// Runs job `name` of tests/data/cycle on the common simulated data and
// compares the cycle block of the report and the results of the summary, up
// to the start of the final report.
void ExpectCycleReports(const std::string& name) {
  ScratchDir dir;
  dir.Write(name + ".pcr", TestData("cycle/" + name + ".pcr"));
  dir.Write(name + ".dat", TestData("cycle/cycle.dat"));
  const auto run = testing::RunBinary(dir.path, name);
  EXPECT_EQ(run.exitCode, 0);
  const auto out = TailFrom(dir.Read(name + ".out"),
                            {" => CYCLE No.:", "   Standard deviations have to be multiplied by:"});
  ASSERT_FALSE(out.empty());
  ExpectSameLines(out, TestData("cycle/" + name + ".out.cycles"));
  const auto sum = TailFrom(dir.Read(name + ".sum"), {" => Scor:", " ==> RESULTS OF REFINEMENT:"});
  ASSERT_FALSE(sum.empty());
  ExpectSameLines(sum, TestData("cycle/" + name + ".sum.results"));
}

// One cycle: the calculated pattern uses the unit intensities that profile
// matching starts from, and the shifts of the three background terms.
TEST(CycleEndToEnd, OneCycleReportsShiftsReliabilityAndBraggFactors) {
  ExpectCycleReports("cycle1");
}

// Three cycles: the second and third use the intensities extracted by the
// Rietveld partition of the cycle before and the shifted background.
TEST(CycleEndToEnd, ThreeCyclesCarryExtractedIntensitiesAndShifts) {
  ExpectCycleReports("cycle3");
}

// Profile matching with the divergence test: the run stops after the first
// cycle with a results pass that reports convergence and zero shifts, and
// extracts the intensities once more.
TEST(CycleEndToEnd, DivergenceTestEndsProfileMatchingWithAConvergedPass) {
  ExpectCycleReports("stop");
}

// The number that follows `word` in `line`.
double NumberAfter(const std::string& line, const std::string& word) {
  const std::size_t at = line.find(word);
  EXPECT_NE(at, std::string::npos) << line;
  return at == std::string::npos ? 0.0 : std::stod(line.substr(at + word.size()));
}

// The global chi-square of the one cycle of cycle1, as the independent
// recalculation of tests/data/cycle checks it in cycle1.sum.results.
constexpr double kCycle1GlobalChi2 = 9.665;

// The text box of the IGOR profile file (Prf 2) closes with the run's chi-square.
TEST(CycleEndToEnd, IgorProfileBoxShowsTheChiSquareOfTheRun) {
  ScratchDir dir;
  std::string pcr = TestData("cycle/cycle1.pcr");
  const std::string flags = "   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0";
  const std::size_t at = pcr.find(flags, pcr.find("!Ipr Ppl"));
  ASSERT_NE(at, std::string::npos);
  pcr.replace(at, flags.size(),
              "   0   0   0   0   0   0   0   0   0   2   0   0   0   0   0   0   0");
  dir.Write("cycle1.pcr", pcr);
  dir.Write("cycle1.dat", TestData("cycle/cycle.dat"));
  ASSERT_EQ(testing::RunBinary(dir.path, "cycle1").exitCode, 0);
  std::string box;
  for (const std::string& line : SplitLines(dir.Read("cycle1.prf"))) {
    if (line.rfind("X TextBox", 0) == 0) box = line;
  }
  ASSERT_NE(box.find("\\rChi2 = "), std::string::npos) << box;
  EXPECT_NEAR(NumberAfter(box, "\\rChi2 = "), kCycle1GlobalChi2, 0.0051) << box;
}

// Each round of the cyclic mode writes the chi-square of its run: the first
// round runs cycle1 as it is; the second starts from the control file the
// first one rewrote, and shows the chi-square that its own cycle reported on
// the log.
TEST(CycleEndToEnd, CyclicLogShowsTheChiSquareOfEachRound) {
  ScratchDir dir;
  dir.Write("job.pcr", TestData("cycle/cycle1.pcr"));
  dir.Write("ser1.dat", TestData("cycle/cycle.dat"));
  dir.Write("ser2.dat", TestData("cycle/cycle.dat"));
  const auto run = testing::RunBinary(dir.path, "cyc", "job\nser\n1\n2\n");
  EXPECT_EQ(run.exitCode, 0);
  std::vector<std::string> rounds;
  for (const std::string& line : SplitLines(run.output)) {
    if (line.rfind(" ##### ", 0) == 0) rounds.push_back(line);
  }
  ASSERT_EQ(rounds.size(), 2u) << run.output;
  EXPECT_EQ(rounds[0].substr(0, 24), " ##### ser1: Chi2 =     ");
  EXPECT_NEAR(NumberAfter(rounds[0], "Chi2 ="), kCycle1GlobalChi2, 0.0006) << rounds[0];
  std::vector<double> reported;
  for (const std::string& line : SplitLines(dir.Read("job.log"))) {
    const std::string word = " => Global user-weigthed Chi2 (Bragg contrib.):";
    if (line.rfind(word, 0) == 0) reported.push_back(NumberAfter(line, word));
  }
  ASSERT_EQ(reported.size(), 2u);
  EXPECT_NEAR(reported[0], kCycle1GlobalChi2, 0.0006);
  EXPECT_NE(reported[1], reported[0]);
  EXPECT_NEAR(NumberAfter(rounds[1], "Chi2 ="), reported[1], 0.0006) << rounds[1];
}

// Background heights refined from the control file: the third value of each
// point line is its code. The heights start at 150 counts and end within 3
// sigma of the background the data were simulated with (make_cycle_data.py:
// 180 + 25u + 40u^2, u = 2theta/40 - 1); the new control file keeps the codes.
TEST(CycleEndToEnd, BackgroundHeightsRefineFromTheirCodes) {
  ScratchDir dir;
  dir.Write("heights.pcr", TestData("cycle/heights.pcr"));
  dir.Write("heights.dat", TestData("cycle/cycle.dat"));
  ASSERT_EQ(testing::RunBinary(dir.path, "heights").exitCode, 0);
  std::vector<std::string> rows;
  for (const std::string& line : SplitLines(dir.Read("heights.out"))) {
    if (line.find("BckPt") != std::string::npos) rows.push_back(line);
  }
  ASSERT_GE(rows.size(), 9u);
  for (int k = 1; k <= 9; ++k) {
    const std::string& row = rows[rows.size() - 9 + static_cast<std::size_t>(k - 1)];
    std::istringstream in(row);
    std::string name;
    double height = 0.0, shift = 0.0, sigma = 0.0;
    in >> name >> height >> shift >> sigma;
    EXPECT_EQ(name, "BckPt" + std::to_string(k));
    const double u = (15.0 + 5.0 * k) / 40.0 - 1.0;
    const double truth = 180.0 + 25.0 * u + 40.0 * u * u;
    EXPECT_LT(std::fabs(height - truth), 3.0 * sigma) << row;
    EXPECT_GT(std::fabs(height - 150.0), 10.0) << row;
  }
  const std::string written = dir.Read("heights.pcr");
  EXPECT_NE(written.find("    11.00\n"), std::string::npos) << written;
  EXPECT_NE(written.find("    91.00\n"), std::string::npos) << written;
  EXPECT_EQ(written.find("  150.000"), std::string::npos) << written;
}

}  // namespace
}  // namespace corvinet
