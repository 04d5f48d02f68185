// The traps a newcomer met on a first real refinement, each run on the binary: a hexagonal cell
// refined with codes of its own for a and b, a two-column data file without a heading, and a
// pattern longer than the point capacity brought inside it by the step reduction.
#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::RunBinary;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// The ZnO pattern of the calculation job: 2theta 20 to 120 degrees by 0.02, Cu K-alpha1.
constexpr double kFirst = 20.0;
constexpr double kStep = 0.02;

std::vector<double> SimulatedZincite(ScratchDir& dir) {
  dir.Write("zno_sim.pcr", TestData("traps/zno_sim.pcr"));
  dir.Write("zno_sim.dat", "");
  EXPECT_EQ(RunBinary(dir.path, "zno_sim").exitCode, 0);
  std::vector<double> counts;
  const auto lines = SplitLines(dir.Read("zno_sim.sim"));
  for (std::size_t i = 1; i < lines.size(); ++i) {
    std::istringstream in(lines[i]);
    double c = 0;
    while (in >> c) counts.push_back(c);
  }
  return counts;
}

// Two columns, 2theta and counts, one point a line, no heading.
std::string TwoColumns(const std::vector<double>& counts, double first, double step) {
  std::ostringstream out;
  char line[64];
  for (std::size_t i = 0; i < counts.size(); ++i) {
    std::snprintf(line, sizeof line, "%.4f %.1f\n", first + step * i, counts[i]);
    out << line;
  }
  return out.str();
}

// The control file of the refinement with the data kind `ins` on the output-flags line.
std::string RefinementWithDataKind(int ins, int ste = 0) {
  std::string pcr = TestData("traps/zno_cell_codes.pcr");
  const std::string flags = "   0   0   0   0   1   0   0   0   0   0   0   0";
  char with[64];
  std::snprintf(with, sizeof with, "   0   0   0   0   1   0   0   0   0   0%4d   0", ins);
  pcr.replace(pcr.find(flags), flags.size(), with);
  if (ste != 0) {
    const std::string job = "   0   5   1   0   0   0   0   0   0   0   0   0   0";
    char reduced[80];
    std::snprintf(reduced, sizeof reduced, "   0   5   1   0   0   0   0   0   0   0   0   0%4d",
                  ste);
    pcr.replace(pcr.find(job), job.size(), reduced);
  }
  return pcr;
}

// a and b refined with codes of their own, gamma fixed: the cell stays hexagonal.
TEST(NewcomerTrapsEndToEnd, HexagonalCellWithCodesOfItsOwnForAAndBKeepsItsLaueClass) {
  ScratchDir dir;
  const std::vector<double> counts = SimulatedZincite(dir);
  dir.Write("zno_cell_codes.dat", dir.Read("zno_sim.sim"));
  dir.Write("zno_cell_codes.pcr", TestData("traps/zno_cell_codes.pcr"));
  const auto run = RunBinary(dir.path, "zno_cell_codes");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  const std::string line =
      " => Phase  1: the cell codes break the relations of its Laue class 6/mmm; the cell is "
      "held to them";
  EXPECT_EQ(testing::CountLines(run.output, line), 1);
  EXPECT_EQ(testing::CountLines(dir.Read("zno_cell_codes.out"), line), 1);
  const std::vector<double> cell = testing::NumbersIn(
      testing::LineAfter(dir.Read("zno_cell_codes.pcr"), "!     a          b         c"));
  ASSERT_EQ(cell.size(), 6u);
  EXPECT_EQ(cell[0], cell[1]);
  EXPECT_EQ(cell[5], 120.0);
  EXPECT_NEAR(cell[0], 3.2495, 1.0e-4);
  EXPECT_NEAR(cell[2], 5.2069, 1.0e-4);
  EXPECT_FALSE(counts.empty());
}

// The two-column file of the same pattern, read as X, Y, sigma data: every point, the first
// ones included, and the report says that the file has no heading.
TEST(NewcomerTrapsEndToEnd, TwoColumnFileWithoutHeadingIsReadFromItsFirstPoint) {
  ScratchDir dir;
  const std::vector<double> counts = SimulatedZincite(dir);
  ASSERT_EQ(counts.size(), 5001u);
  dir.Write("zno_cell_codes.dat", TwoColumns(counts, kFirst, kStep));
  dir.Write("zno_cell_codes.pcr", RefinementWithDataKind(10));
  ASSERT_EQ(RunBinary(dir.path, "zno_cell_codes").exitCode, 0);
  const std::string out = dir.Read("zno_cell_codes.out");
  EXPECT_TRUE(testing::HasLine(
      out, " -> No heading in input data file X,Y,sigma: points from its first line"));
  EXPECT_NE(out.find("2Thmin:    20.0000  2Thmax:   120.0000  Step:   0.020000  No. of points:   "
                     "5001"),
            std::string::npos);
}

// The pattern interpolated to a step of 0.002 degrees (50 001 points, above the 20 000 a pattern
// holds): with Ste 3 the points are thinned as they are read and the run goes on; without, it
// stops with the capacity message and exit status 2.
TEST(NewcomerTrapsEndToEnd, StepReductionBringsALongPatternInsideThePointLimit) {
  ScratchDir dir;
  const std::vector<double> counts = SimulatedZincite(dir);
  ASSERT_EQ(counts.size(), 5001u);
  std::vector<double> fine;
  for (std::size_t i = 0; i + 1 < counts.size(); ++i) {
    for (int j = 0; j < 10; ++j) fine.push_back(counts[i] + (counts[i + 1] - counts[i]) * j / 10.0);
  }
  fine.push_back(counts.back());
  ASSERT_EQ(fine.size(), 50001u);
  const std::string data = TwoColumns(fine, kFirst, kStep / 10.0);

  dir.Write("zno_cell_codes.dat", data);
  dir.Write("zno_cell_codes.pcr", RefinementWithDataKind(10));
  const auto refused = RunBinary(dir.path, "zno_cell_codes");
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_NE(refused.output.find(" => Program can handle 20000 points, 50001 points were input"),
            std::string::npos)
      << refused.output;

  dir.Write("zno_cell_codes.pcr", RefinementWithDataKind(10, 3));
  const auto reduced = RunBinary(dir.path, "zno_cell_codes");
  ASSERT_EQ(reduced.exitCode, 0) << reduced.output;
  EXPECT_NE(dir.Read("zno_cell_codes.out").find("No. of points:  16667"), std::string::npos);
  EXPECT_EQ(dir.Read("zno_cell_codes.dat"), data);
}

}  // namespace
}  // namespace corvinet
