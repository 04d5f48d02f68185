// End-to-end runs of the damped cycles: a refinement of a noise-free simulated pattern started so
// far out that its undamped shifts make a peak width invalid is solved again with damping and
// reaches the simulated parameters; a refinement that converges undamped prints no retry line;
// profile matching is not solved again for a rise of chi2.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <regex>
#include <sstream>
#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::RunBinary;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// A refined value and its standard deviation, as the summary prints them.
struct Refined {
  double value = 0.0;
  double sigma = -1.0;
};

// The values of the summary's parameter tables ("Scale", "U", "Bck0", ...)
// and the B of each atom line ("Ti", "O"), keyed by their names.
std::map<std::string, Refined> SummaryValues(const std::string& sum) {
  std::map<std::string, Refined> found;
  for (const std::string& line : SplitLines(sum)) {
    std::istringstream in(line);
    std::string name;
    in >> name;
    if (name == "Ti" || name == "O") {
      double f[15];
      int n = 0;
      while (n < 15 && in >> f[n]) ++n;
      // x dx sx y dy sy z dz sz B dB sB occ docc socc, after the name.
      if (n == 15) found["B " + name] = {f[9], f[11]};
      continue;
    }
    double value = 0.0, shift = 0.0, sigma = 0.0;
    if (in >> value >> shift >> sigma && !(in >> std::ws).good()) found[name] = {value, sigma};
  }
  return found;
}

void ExpectWithinThreeSigma(const std::map<std::string, Refined>& values, const std::string& name,
                            double truth) {
  const auto it = values.find(name);
  ASSERT_NE(it, values.end()) << name;
  ASSERT_GT(it->second.sigma, 0.0) << name;
  EXPECT_LE(std::fabs(it->second.value - truth), 3.0 * it->second.sigma)
      << name << " = " << it->second.value << " (" << it->second.sigma << "), simulated " << truth;
}

TEST(DampedCycleEndToEnd, FarStartThatMakesAWidthInvalidIsRetriedAndReachesTheSimulation) {
  ScratchDir dir;
  // The calculation job (Dum 1) writes its pattern without noise.
  dir.Write("rutile_truth.pcr", TestData("damping/rutile_truth.pcr"));
  dir.Write("rutile_truth.dat", "");
  ASSERT_EQ(RunBinary(dir.path, "rutile_truth").exitCode, 0);
  ASSERT_TRUE(dir.Exists("rutile_truth.sim"));
  dir.Write("rutile_far.dat", dir.Read("rutile_truth.sim"));
  dir.Write("rutile_far.pcr", TestData("damping/rutile_far.pcr"));

  const auto run = RunBinary(dir.path, "rutile_far");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  // Undamped, the second cycle's shifts give a negative square of the FWHM.
  const std::regex retry(
      R"( => Cycle   2: shifts rejected \(FWHM\^2 < 0\), retry 1 with lambda = 1\.0E-03)");
  EXPECT_TRUE(std::regex_search(run.output, retry)) << run.output;
  const std::string out = dir.Read("rutile_far.out");
  EXPECT_TRUE(std::regex_search(out, retry));
  EXPECT_NE(run.output.find(" Normal end, final calculations and writing..."), std::string::npos);

  // The parameters of report/rutile_sim.pcr, the truth of the simulation.
  const auto values = SummaryValues(dir.Read("rutile_far.sum"));
  ExpectWithinThreeSigma(values, "Scale", 0.04);
  ExpectWithinThreeSigma(values, "U", 0.012);
  ExpectWithinThreeSigma(values, "V", -0.008);
  ExpectWithinThreeSigma(values, "W", 0.010);
  ExpectWithinThreeSigma(values, "Bck0", 200.0);
  ExpectWithinThreeSigma(values, "B Ti", 0.45);
  ExpectWithinThreeSigma(values, "B O", 0.70);
  // x of O is printed to five decimals, its sigma to six: equal at that print.
  const std::regex oxygen(R"(\n +O +0\.30480 )");
  EXPECT_TRUE(std::regex_search(dir.Read("rutile_far.sum"), oxygen));
}

TEST(DampedCycleEndToEnd, LastCycleWhoseShiftsMakeAWidthInvalidIsSolvedAgain) {
  ScratchDir dir;
  dir.Write("rutile_truth.pcr", TestData("damping/rutile_truth.pcr"));
  dir.Write("rutile_truth.dat", "");
  ASSERT_EQ(RunBinary(dir.path, "rutile_truth").exitCode, 0);
  dir.Write("rutile_far.dat", dir.Read("rutile_truth.sim"));
  // Two cycles: the undamped shifts of the second, the last, give a negative square of the
  // FWHM; the new control file would keep them.
  std::string pcr = TestData("damping/rutile_far.pcr");
  const std::string forty = "\n 40  0.01";
  const std::size_t at = pcr.find(forty);
  ASSERT_NE(at, std::string::npos);
  pcr.replace(at, forty.size(), "\n  2  0.01");
  dir.Write("rutile_far.pcr", pcr);
  const auto run = RunBinary(dir.path, "rutile_far");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  const std::regex retry(
      R"( => Cycle   2: shifts rejected \(FWHM\^2 < 0\), retry 1 with lambda = 1\.0E-03)");
  EXPECT_TRUE(std::regex_search(run.output, retry)) << run.output;
}

TEST(DampedCycleEndToEnd, ConvergingRefinementPrintsNoRetryLine) {
  ScratchDir dir;
  dir.Write("cycle3.pcr", TestData("cycle/cycle3.pcr"));
  dir.Write("cycle3.dat", TestData("cycle/cycle.dat"));
  const auto run = RunBinary(dir.path, "cycle3");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  EXPECT_NE(run.output.find("===>>> CYCLE:"), std::string::npos);
  EXPECT_EQ(run.output.find("shifts rejected"), std::string::npos) << run.output;
  EXPECT_EQ(dir.Read("cycle3.out").find("shifts rejected"), std::string::npos);
}

// Each pass of a profile-matching job uses the intensities extracted from the pass before, so the
// chi2 of two passes does not judge the shifts between them: no cycle is solved again for a rise
// of chi2, and the refinement still reaches the simulated cell, widths and background
// (make_cycle_data.py: a = 4, U, V, W = 0.10, -0.05, 0.05, zero 0, background 180 at 40 degrees).
TEST(DampedCycleEndToEnd, ProfileMatchingRetriesNoCycleForARiseOfChi2) {
  ScratchDir dir;
  dir.Write("cubic_match.pcr", TestData("damping/cubic_match.pcr"));
  dir.Write("cubic_match.dat", TestData("cycle/cycle.dat"));
  const auto run = RunBinary(dir.path, "cubic_match");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  EXPECT_NE(run.output.find("===>>> CYCLE:      30"), std::string::npos) << run.output;
  EXPECT_EQ(run.output.find("shifts rejected (chi2 up)"), std::string::npos) << run.output;
  EXPECT_EQ(dir.Read("cubic_match.out").find("shifts rejected"), std::string::npos);
  const auto values = SummaryValues(dir.Read("cubic_match.sum"));
  ExpectWithinThreeSigma(values, "a", 4.0);
  ExpectWithinThreeSigma(values, "U", 0.10);
  ExpectWithinThreeSigma(values, "V", -0.05);
  ExpectWithinThreeSigma(values, "W", 0.05);
  ExpectWithinThreeSigma(values, "Zero", 0.0);
  ExpectWithinThreeSigma(values, "Bck0", 180.0);
}

}  // namespace
}  // namespace corvinet
