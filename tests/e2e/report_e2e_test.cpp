// End-to-end runs of the final report on simulated rutile data: a calculation job writes the
// simulated pattern with Poisson noise, a Rietveld refinement and a profile matching of it write
// their new control files, profile files and summaries, and second runs go on from the refined
// values; a run stopped on divergence writes none of the final files.
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::RunBinary;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// Runs the calculation job and keeps its simulated pattern as `name`.dat.
void SimulateData(ScratchDir& dir, const std::string& name) {
  dir.Write("rutile_sim.pcr", TestData("report/rutile_sim.pcr"));
  dir.Write("rutile_sim.dat", "");
  ASSERT_EQ(RunBinary(dir.path, "rutile_sim").exitCode, 0);
  ASSERT_TRUE(dir.Exists("rutile_sim.sim"));
  dir.Write(name + ".dat", dir.Read("rutile_sim.sim"));
}

std::vector<std::string> LinesStartingWith(const std::string& text, const std::string& start) {
  std::vector<std::string> found;
  for (const std::string& line : SplitLines(text)) {
    if (line.rfind(start, 0) == 0) found.push_back(line);
  }
  return found;
}

// Rwp of the first cycle, from the first " => R-Factors:" line (all points).
double FirstRwp(const std::string& out) {
  const auto lines = LinesStartingWith(out, " => R-Factors: ");
  return lines.empty() ? 1.0e9 : std::stod(lines.front().substr(24, 9));
}

// The Bragg lines of the summary; a phase with a structure also gives its
// weight fraction, a profile-matching phase none.
void ExpectBraggLinesInSummary(const std::string& sum, bool withFraction = true) {
  const std::regex bragg(
      withFraction ? R"( => Bragg R-factor: .{9}   Vol: .{8}\(.{6}\)  Fract\(%\): .{7}\(.{5}\))"
                   : R"( => Bragg R-factor: .{9}   Vol: .{8}\(.{6}\))");
  const std::regex rf(R"( => Rf-factor=.{9}         ATZ:.{9}          Brindley: .{7})");
  const auto b = LinesStartingWith(sum, " => Bragg R-factor: ");
  const auto r = LinesStartingWith(sum, " => Rf-factor=");
  ASSERT_EQ(b.size(), 1u);
  ASSERT_EQ(r.size(), 1u);
  EXPECT_TRUE(std::regex_match(b[0], bragg)) << b[0];
  EXPECT_TRUE(std::regex_match(r[0], rf)) << r[0];
}

void ExpectProfileFileHead(const std::string& prf, const std::string& title) {
  const auto lines = SplitLines(prf);
  ASSERT_GT(lines.size(), 5u);
  EXPECT_EQ(lines[0], title + std::string(70 - title.size(), ' '));
  EXPECT_EQ(lines[1].rfind("3111   1.0000", 0), 0u);
  EXPECT_EQ(lines[2], " 120.000  15.000 0.02000       8       0");
  EXPECT_EQ(lines[3].substr(0, 10), "  1   5251");
}

TEST(ReportEndToEnd, CalculationJobWritesTheSimulatedCounts) {
  ScratchDir dir;
  SimulateData(dir, "rutile");
  const auto lines = SplitLines(dir.Read("rutile_sim.sim"));
  // 5251 points of 15 to 120 degrees in steps of 0.02, ten to a row.
  ASSERT_EQ(lines.size(), 1u + 526u);
  EXPECT_EQ(lines[0],
            "     15.0000      0.0200    120.0000  Simulated rutile: calculated pattern with "
            "Poisson noise");
  // The calculation job keeps its control file (Pcr 0).
  EXPECT_EQ(dir.Read("rutile_sim.pcr"), TestData("report/rutile_sim.pcr"));
  EXPECT_FALSE(dir.Exists("rutile_sim.prf"));
}

TEST(ReportEndToEnd, RietveldRefinementWritesItsFilesAndASecondRunGoesOn) {
  ScratchDir dir;
  SimulateData(dir, "rutile");
  dir.Write("rutile.pcr", TestData("report/rutile.pcr"));
  ASSERT_EQ(RunBinary(dir.path, "rutile").exitCode, 0);
  const std::string first = dir.Read("rutile.out");

  // The new control file holds the refined coordinate, near the simulated 0.3048.
  const std::string pcr = dir.Read("rutile.pcr");
  ASSERT_NE(pcr, TestData("report/rutile.pcr"));
  const auto oxygen = LinesStartingWith(pcr, "O    O");
  ASSERT_EQ(oxygen.size(), 1u);
  EXPECT_NEAR(std::stod(oxygen[0].substr(10, 10)), 0.3048, 0.002);

  // Four refined parameters: a 4 x 4 correlation matrix with 100 on the diagonal.
  const auto lines = SplitLines(first);
  std::size_t at = 0;
  while (at < lines.size() && lines[at] != " => Correlation matrix ==>") ++at;
  ASSERT_LT(at + 6, lines.size());
  EXPECT_EQ(lines[at + 2], "         1   2   3   4");
  for (int k = 1; k <= 4; ++k) {
    const std::string& row = lines[at + 2 + k];
    EXPECT_EQ(std::stoi(row.substr(0, 5)), k) << row;
    EXPECT_EQ(row.substr(6 + 4 * (k - 1), 4), " 100") << row;
  }

  ExpectBraggLinesInSummary(dir.Read("rutile.sum"));
  ExpectProfileFileHead(dir.Read("rutile.prf"),
                        "Simulated rutile: Rietveld refinement from a shifted start");
  const auto hkl = SplitLines(dir.Read("rutile.hkl"));
  ASSERT_GT(hkl.size(), 10u);
  EXPECT_EQ(hkl[0], " Code h   k   l  Mult   D(A)     2T      HW       Iobs    Icalc   io-ic");
  EXPECT_EQ(LinesStartingWith(dir.Read("rutile.rpa"), "BRAG    1").size(), 1u);

  // The second run reads the rewritten file: its first cycle starts from the
  // refined values and fits far better than the first run's first cycle.
  ASSERT_EQ(RunBinary(dir.path, "rutile").exitCode, 0);
  const std::string second = dir.Read("rutile.out");
  EXPECT_LT(FirstRwp(second), 0.5 * FirstRwp(first));
  const auto again = LinesStartingWith(dir.Read("rutile.pcr"), "O    O");
  ASSERT_EQ(again.size(), 1u);
  EXPECT_NEAR(std::stod(again[0].substr(10, 10)), 0.3048, 0.002);
}

TEST(ReportEndToEnd, ProfileMatchingWritesItsFilesAndASecondRunGoesOn) {
  ScratchDir dir;
  SimulateData(dir, "matching");
  dir.Write("matching.pcr", TestData("report/matching.pcr"));
  ASSERT_EQ(RunBinary(dir.path, "matching").exitCode, 0);
  const std::string first = dir.Read("matching.out");

  // The background, simulated at 200, starts at 190 and is refined.
  const std::string background = testing::LineAfter(dir.Read("matching.pcr"), "!   Background");
  ASSERT_FALSE(background.empty());
  EXPECT_NEAR(std::stod(background.substr(0, 12)), 200.0, 3.0);
  // One refined parameter: no correlation matrix although Mat is 1.
  EXPECT_TRUE(LinesStartingWith(first, " => Correlation matrix").empty());

  ExpectBraggLinesInSummary(dir.Read("matching.sum"), false);
  ExpectProfileFileHead(dir.Read("matching.prf"),
                        "Simulated rutile: profile matching from a low background");
  const auto extracted = SplitLines(dir.Read("matching1.int"));
  ASSERT_GE(extracted.size(), 2u);
  EXPECT_EQ(extracted[0], " Pattern#  1 Phase No:   1  Rutile");
  // The regrouped file: the heading of a list of X-ray powder clusters, then
  // one record per extracted reflection, the clusters summing the same total.
  const auto regrouped = SplitLines(dir.Read("matching1_grp.int"));
  ASSERT_GE(regrouped.size(), 5u);
  EXPECT_EQ(regrouped[0], " Phase No:   1 Overlaped Reflections Re-grouped ");
  EXPECT_EQ(regrouped[1], "(3i4,2f12.2,i4,3f8.0)");
  const std::size_t rows = extracted.size() - 2;
  ASSERT_EQ(regrouped.size() - 4, rows);
  double extractedSum = 0.0, clusterSum = 0.0;
  for (std::size_t i = 2; i < extracted.size(); ++i) {
    extractedSum += std::stod(extracted[i].substr(40, 14));
  }
  for (std::size_t i = 4; i < regrouped.size(); ++i) {
    clusterSum += std::stod(regrouped[i].substr(12, 12));
  }
  EXPECT_GT(extractedSum, 0.0);
  EXPECT_NEAR(clusterSum, extractedSum, 1e-4 * extractedSum + 0.01 * rows);
  EXPECT_EQ(LinesStartingWith(first, " Phase No:   1 Overlaped Reflections Re-grouped ").size(),
            1u);
  EXPECT_EQ(LinesStartingWith(first, "Cw =   1.0000").size(), 1u);

  ASSERT_EQ(RunBinary(dir.path, "matching").exitCode, 0);
  EXPECT_LT(FirstRwp(dir.Read("matching.out")), FirstRwp(first));
  const std::string again = testing::LineAfter(dir.Read("matching.pcr"), "!   Background");
  EXPECT_NEAR(std::stod(again.substr(0, 12)), 200.0, 3.0);
}

TEST(ReportEndToEnd, RunStoppedOnDivergenceWritesNoneOfTheFinalFiles) {
  ScratchDir dir;
  SimulateData(dir, "diverge");
  dir.Write("diverge.pcr", TestData("report/diverge.pcr"));
  const auto run = RunBinary(dir.path, "diverge");
  EXPECT_NE(run.output.find(" STOP because of divergence"), std::string::npos) << run.output;
  EXPECT_EQ(dir.Read("diverge.pcr"), TestData("report/diverge.pcr"));
  EXPECT_FALSE(dir.Exists("diverge.prf"));
  EXPECT_FALSE(dir.Exists("diverge.hkl"));
  EXPECT_FALSE(dir.Exists("diverge.new"));
  EXPECT_EQ(dir.Read("diverge.out").find(" => Dimensions of arrays"), std::string::npos);
  EXPECT_EQ(dir.Read("diverge.out").find(" => Correlation matrix"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
