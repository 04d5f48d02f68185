// Tests of the cycle loop: no cycles, no refined parameters, one cycle, oscillation damping and
// divergence.
#include "refine/cycle_driver.h"
#include "refine/cycle_stop_tests.h"
#include "refine/order_reflections.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// A cubic profile-matching job over flat data, with `cycles`, `refined`
// parameters (zero and background), `idum` and the convergence test.
std::string ControlText(int cycles, int refined, int idum) {
  const std::string zeroCode = refined >= 1 ? "11.0" : "0.0";
  const std::string backgroundCode = refined >= 2 ? "21.0" : "0.0";
  return "Cycles\n0 5 1 0 0 0 0 " + std::to_string(idum) +
         " 0 0 0 0 0 0 0 0 0\n0 0 1 0 0 0 0 0 0 1 0 0 0 0 0 1 0\n"
         "1.5406 0.0 0.0 40.0 10.0 0.8 0.0 10.0 0.0\n" +
         std::to_string(cycles) + " 0.1 1 1 1 1 20.0 0.02 60.0 0 0\n" + std::to_string(refined) +
         "\n0.0 " + zeroCode + " 0 0 0 0 0 0 0\n100 0 0 0 0 0\n" + backgroundCode +
         " 0 0 0 0 0\nPhase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP m 3 m\n"
         "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n0.01 -0.005 0.008 0.0 0.0 0.0 0.0 0\n"
         "0 0 0 0 0 0 0\n4.05 4.05 4.05 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
}

struct CycleRun {
  ScratchDir dir;
  CapturedJob job;
  bool finished = false;
  // `forceTest` switches the convergence test on after reading, as a phase
  // with a structure would leave it (profile matching switches it off).
  // `peaks` adds a Gaussian of height 400 and FWHM 0.09 degrees at each of the
  // first six reflections of the cell; without them the counts are flat.
  CycleRun(int cycles, int refined, int idum = 0, bool forceTest = false, float eps = -1.0f,
           bool peaks = false) {
    std::string data = "20.0 0.02 60.0\n";
    for (int i = 1; i <= 2001; ++i) {
      double y = 100.0;
      const double x = 20.0 + 0.02 * (i - 1);
      for (int q : {1, 2, 3, 4, 5, 6}) {
        const double position =
            2.0 * std::asin(1.5406 * std::sqrt(q) / (2.0 * 4.05)) * 180.0 / M_PI;
        const double u = (x - position) / 0.09;
        if (peaks) y += 400.0 * std::exp(-4.0 * std::log(2.0) * u * u);
      }
      data += std::to_string(static_cast<int>(std::lround(y))) + (i % 10 == 0 ? "\n" : " ");
    }
    dir.Write("x.dat", data + "\n");
    EXPECT_TRUE(testing::ReadControlText(dir, job, ControlText(cycles, refined, idum), false))
        << job.Console();
    OpenUnit(job->files.units[Unit::Out], "x.out", OpenStatus::Append);
    OpenUnit(job->files.units[Unit::Sum], "x.sum", OpenStatus::Append);
    if (forceTest) {
      job->run.ConvergenceTestActive = true;
      job->run.IDUM = idum;
    }
    if (eps >= 0.0f) job->run.EPS = eps;
    finished = testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); });
  }
  int Count(const std::string& line) {
    const auto lines = testing::SplitLines(job.Console());
    return static_cast<int>(std::count(lines.begin(), lines.end(), line));
  }
};

TEST(CycleDriver, NoCycleGoesStraightToTheNormalEnd) {
  CycleRun run(0, 1);
  EXPECT_TRUE(run.finished);
  EXPECT_EQ(run.Count("    ===================>>> CYCLE:       1"), 0);
  EXPECT_EQ(run.Count(" Normal end, final calculations and writing..."), 1);
}

// The ordering code of the points has its own table: a run leaves the counter
// normalisation of the data as it was read.
TEST(CycleDriver, CountNormIsUnchangedByARun) {
  CycleRun run(2, 2, 0, false, -1.0f, true);
  ASSERT_TRUE(run.finished) << run.job.Console();
  const Pattern& p = run.job->patterns[1];
  ASSERT_EQ(p.NPTS, 2001);
  int pointsWithReflections = 0;
  for (int i = 1; i <= p.NPTS; ++i) {
    EXPECT_EQ(p.CountNorm[i], 1.0f) << "point " << i;
    if (FirstReflection(p.OrderCode[i]) != 0) ++pointsWithReflections;
  }
  EXPECT_GT(pointsWithReflections, 0);
}

TEST(CycleDriver, NoRefinedParameterInProfileMatchingRunsEveryCycle) {
  // Fixed-scale matching sets IDUM to 1 and switches the test off.
  CycleRun run(3, 0);
  EXPECT_TRUE(run.finished) << run.job.Console();
  EXPECT_EQ(run.job->run.IDUM, 1);
  EXPECT_EQ(run.Count("    ===================>>> CYCLE:       3"), 1);
  EXPECT_EQ(run.job->refinement.EndMarker, 0);
}

TEST(CycleDriver, NoRefinedParameterConvergesAfterTheFirstCycle) {
  CycleRun run(5, 0, 0, true);
  EXPECT_TRUE(run.finished) << run.job.Console();
  EXPECT_EQ(run.Count("    ===================>>> CYCLE:       1"), 1);
  EXPECT_EQ(run.Count("    ===================>>> CYCLE:       2"), 0);
  EXPECT_EQ(run.job->refinement.EndMarker, 123);
}

// With the convergence test on, the last cycle counts as unconverged whatever
// its shifts, and says nothing about it: a tolerance that every shift meets
// ends a run of two cycles at the first, but a run of one cycle has no
// results pass of zero shifts.
TEST(CycleDriver, OneCycleWithTheTestActiveNeverReportsConvergence) {
  const float everyShiftMeetsIt = 1.0e6f;
  CycleRun two(2, 1, 0, true, everyShiftMeetsIt);
  ASSERT_TRUE(two.finished) << two.job.Console();
  ASSERT_TRUE(two.job->run.ConvergenceTestActive);
  ASSERT_EQ(two.job->refinement.EndMarker, 123);
  EXPECT_EQ(two.Count("    ===================>>> CYCLE:       2"), 0);

  CycleRun run(1, 1, 0, true, everyShiftMeetsIt);
  EXPECT_TRUE(run.finished) << run.job.Console();
  ASSERT_TRUE(run.job->run.ConvergenceTestActive);
  EXPECT_EQ(run.job->refinement.EndMarker, 0);
  EXPECT_EQ(run.job.Console().find("Convergence reached"), std::string::npos);
  EXPECT_EQ(run.job.Console().find("Convergence not reached"), std::string::npos);
}

TEST(CycleDriver, ChiSquaredThatDoesNotFallStopsTheRunForDivergence) {
  // A vanishing tolerance keeps the run cycling until chi2 stops falling.
  CycleRun run(30, 2, 2, true, 0.0f, true);
  EXPECT_FALSE(run.finished) << run.job.Console();
  EXPECT_EQ(run.Count(" because of divergence"), 1);
  EXPECT_EQ(run.Count(" STOP because of divergence"), 1) << run.job.Console();
  // The first cycle compares with 1.0E+38 and always passes.
  EXPECT_EQ(run.Count("    ===================>>> CYCLE:       2"), 1);
  EXPECT_EQ(run.Count(" Normal end, final calculations and writing..."), 0);
}

TEST(CycleDriver, ShiftOfOnePointTwoTimesTheLastWithTheOtherSignIsHalved) {
  CapturedJob job;
  job->refinement.LastShift[1] = 1.0f;
  job->refinement.normal.B[1] = -1.2f;
  job->refinement.LastShift[2] = 1.0f;
  job->refinement.normal.B[2] = -std::nextafter(1.2f, 2.0f);
  job->refinement.LastShift[3] = 1.0f;
  job->refinement.normal.B[3] = 1.1f;
  job->refinement.LastShift[4] = 0.0f;
  job->refinement.normal.B[4] = -0.0f;
  DampOscillations(*job, 4);
  EXPECT_FLOAT_EQ(job->refinement.normal.B[1], -0.6f);
  EXPECT_FLOAT_EQ(job->refinement.LastShift[1], 1.0f);
  EXPECT_EQ(job->refinement.normal.B[2], -std::nextafter(1.2f, 2.0f));
  EXPECT_EQ(job->refinement.LastShift[2], -std::nextafter(1.2f, 2.0f));
  EXPECT_FLOAT_EQ(job->refinement.normal.B[3], 1.1f);
}

}  // namespace
}  // namespace corvinet
