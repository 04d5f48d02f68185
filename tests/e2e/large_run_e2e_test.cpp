// Runs with the large capacities: the whole NAC synchrotron scan (skipped when the shared data
// folder is absent), a long calculated pattern through the environment, and refused options.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::ScratchDir;
using testing::SplitLines;

// The numbers behind `label` on each line of `text` that holds it.
std::vector<std::vector<double>> NumbersAfter(const std::string& text, const std::string& label) {
  std::vector<std::vector<double>> lines;
  for (const std::string& line : SplitLines(text)) {
    const std::size_t at = line.find(label);
    if (at != std::string::npos)
      lines.push_back(testing::NumbersIn(line.substr(at + label.size())));
  }
  return lines;
}

std::filesystem::path NacScan() {
  return std::filesystem::path(CORVINET_SHARED_DIR) / "data" / "nac-powgen-11bm" / "11BM_NAC.fxye";
}

// The NAC scan of 11-BM, read whole (59 497 points, no step reduction) from
// its GSAS FXYE file: two phases, 33 parameters.
TEST(LargeRun, WholeNacSynchrotronScanRefinesWithLarge) {
  if (!std::filesystem::exists(NacScan())) GTEST_SKIP() << "shared data folder absent";
  ScratchDir dir;
  std::filesystem::create_symlink(NacScan(), dir.path / "nac.dat");
  dir.Write("nac.pcr", testing::TestData("real/nac_11bm_large.pcr"));
  const auto run = testing::RunBinary(dir.path, "--large nac");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  const std::string out = dir.Read("nac.out");
  EXPECT_NE(out.find("No. of points:  59497"), std::string::npos);
  EXPECT_EQ(out.find("does not read back"), std::string::npos);
  EXPECT_NE(out.find("IDSZ          200000 Max.num. of points"), std::string::npos);
  // The fit of the whole scan is as good as that of every fourth point.
  const std::string sum = dir.Read("nac.sum");
  // The first R-factor line of the summary is that of all points: Rp, Rwp,
  // Rexp, then chi2 last (the 2 of its label reads as a number too).
  const auto r = NumbersAfter(sum, " => Rp:");
  ASSERT_FALSE(r.empty());
  ASSERT_GE(r[0].size(), 4u);
  EXPECT_LT(r[0][1], 11.0);     // Rwp
  EXPECT_LT(r[0].back(), 9.0);  // chi2
  // The cubic cells: NAC first (a near 10.25 A), then CaF2 (near 5.465 A).
  const auto a = NumbersAfter(sum, "                    a ");
  ASSERT_EQ(a.size(), 2u);
  ASSERT_FALSE(a[0].empty());
  ASSERT_FALSE(a[1].empty());
  EXPECT_NEAR(a[0][0], 10.2512, 0.002);
  EXPECT_NEAR(a[1][0], 5.4646, 0.002);
}

TEST(LargeRun, WholeNacScanStopsWithoutLarge) {
  if (!std::filesystem::exists(NacScan())) GTEST_SKIP() << "shared data folder absent";
  ScratchDir dir;
  std::filesystem::create_symlink(NacScan(), dir.path / "nac.dat");
  dir.Write("nac.pcr", testing::TestData("real/nac_11bm_large.pcr"));
  const auto run = testing::RunBinary(dir.path, "nac");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_NE(run.output.find(" => Program can handle 20000 points, 59497 points were input"),
            std::string::npos)
      << run.output;
}

// The calculation of head/calc.pcr over 25 001 points: 10 to 20 degrees in steps of 0.0004.
std::string LongCalculation() {
  std::string pcr = testing::TestData("head/calc.pcr");
  const std::string range = "10.0000   0.5000    20.0000";
  const std::size_t at = pcr.find(range);
  if (at != std::string::npos) pcr.replace(at, range.size(), "10.0000   0.0004    20.0000");
  return pcr;
}

TEST(LargeRun, EnvironmentLargeTakesALongCalculatedPattern) {
  ScratchDir dir;
  dir.Write("calc.pcr", LongCalculation());
  const auto run = testing::RunBinary(dir.path, "calc", "", "CORVINET_LIMITS=large");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  // The profile file gives the number of points on its fourth line.
  const std::vector<std::string> prf = SplitLines(dir.Read("calc.prf"));
  ASSERT_GE(prf.size(), 4u);
  const std::vector<double> head = testing::NumbersIn(prf[3]);
  ASSERT_GE(head.size(), 2u);
  EXPECT_EQ(head[1], 25001.0);
  const auto refused = testing::RunBinary(dir.path, "calc");
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_NE(refused.output.find(" Too many data points NPTS>IDSZ!"), std::string::npos);
}

TEST(LargeRun, UnknownOptionOrEnvironmentValueEndsWithStatusTwo) {
  ScratchDir dir;
  dir.Write("calc.pcr", testing::TestData("head/calc.pcr"));
  const auto option = testing::RunBinary(dir.path, "--big calc");
  EXPECT_EQ(option.exitCode, 2);
  EXPECT_NE(option.output.find(" => Unknown option: --big (the option known is --large)"),
            std::string::npos)
      << option.output;
  EXPECT_FALSE(dir.Exists("calc.out"));
  const auto value = testing::RunBinary(dir.path, "calc", "", "CORVINET_LIMITS=huge");
  EXPECT_EQ(value.exitCode, 2);
  EXPECT_NE(value.output.find(" => CORVINET_LIMITS must be large or default, not: huge"),
            std::string::npos);
}

}  // namespace
}  // namespace corvinet
