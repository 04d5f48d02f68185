// End-to-end run of a nuclear and magnetic refinement: the program simulates a LaMnO3 pattern with
// 3.7 Bohr magnetons on Mn, refines the moment back from 2.5, reports it, and the new control
// file runs again.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// The moment and its sigma on the line " Mn Real moment: m ( s)" of a report.
bool ReadMoment(const std::string& report, double& moment, double& sigma) {
  for (const std::string& line : SplitLines(report)) {
    const std::size_t at = line.find("Mn Real moment:");
    if (at == std::string::npos) continue;
    return std::sscanf(line.c_str() + at + 15, "%lf (%lf", &moment, &sigma) == 2;
  }
  return false;
}

TEST(MagneticEndToEnd, LaMnO3MomentIsRefinedFromASimulatedPatternAndReported) {
  ScratchDir dir;
  dir.Write("sim.pcr", TestData("magnetic/lamno3_sim.pcr"));
  dir.Write("sim.dat", "");
  const auto simulation = testing::RunBinary(dir.path, "sim");
  ASSERT_EQ(simulation.exitCode, 0) << simulation.output;
  dir.Write("lamno3.dat", dir.Read("sim.sim"));
  dir.Write("lamno3.pcr", TestData("magnetic/lamno3.pcr"));
  const auto run = testing::RunBinary(dir.path, "lamno3");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  const std::string sum = dir.Read("lamno3.sum");
  EXPECT_TRUE(testing::HasLine(sum, " => Crystal+Magnetic Structure Refinement for phase: 1"));
  double moment = 0.0, sigma = 0.0;
  ASSERT_TRUE(ReadMoment(sum, moment, sigma)) << sum;
  EXPECT_NEAR(moment, 3.7, 3.0 * sigma);
  EXPECT_GT(sigma, 0.0);
  EXPECT_LT(sigma, 0.05);
  // The new control file holds the refined moment and runs as it is.
  const std::string written = dir.Read("lamno3.pcr");
  EXPECT_EQ(written.find("   2.50000   0.00000"), std::string::npos) << written;
  const auto again = testing::RunBinary(dir.path, "lamno3");
  EXPECT_EQ(again.exitCode, 0) << again.output;
  double second = 0.0, secondSigma = 0.0;
  ASSERT_TRUE(ReadMoment(dir.Read("lamno3.sum"), second, secondSigma));
  EXPECT_NEAR(second, moment, secondSigma);
}

}  // namespace
}  // namespace corvinet
