// Refinements of noise-free simulated patterns reach the parameters they were simulated with.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "format/fortran_format.h"
#include "refine/cycle_driver.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// Rutile, P 42/m n m: Ti at the origin (2a), O at (x, x, 0) (4f), on X-rays.
struct Rutile {
  float scale = 1.0f;
  float x = 0.3048f;
  float bTi = 0.45f, bO = 0.70f;
  float zero = 0.0f;
  float u = 0.012f;
  float a = 4.5940f, c = 2.9590f;
  std::string cellCodes = "0 0 0 0 0 0";
  std::string codes[6] = {"0.00", "0.00", "0.00", "0.00", "0.00", "0.00"};
  int refined = 0;
  int job = 2;  // 2 calculation, 0 refinement
  int cycles = 1;
};

std::string ControlText(const Rutile& s) {
  return Fmt("(A)", "Noise-free rutile") + "\n" +
         Fmt("(I4,A)", s.job, "   0   1   0   0   0   0   1   0   0   0   0   0   0   0   0   0") +
         "\n   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   1   0\n"
         " 1.540560 1.540560  0.00000   60.000 10.0000  0.0000  0.0000    0.00    0.0000\n" +
         Fmt("(I3,A)", s.cycles,
             "  0.01  1.00  1.00  1.00  1.00     15.0000   0.0200   120.0000   0.000   0.000") +
         "\n" + Fmt("(I5)", s.refined) + "\n" +
         Fmt("(F8.4,1X,A,A)", s.zero, s.codes[4], "  0.0000 0.00  0.0000 0.00 0.000000 0.00   0") +
         "\n   40.00  0.0  0.0  0.0  0.0  0.0\n0.00 0.00 0.00 0.00 0.00 0.00\n"
         "Rutile\n2 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0\nP 42/m n m\n" +
         Fmt("(A,F8.4,A)", "Ti   TI   0.0 0.0 0.0 ", s.bTi, " 0.125 0 0 0") + "\n0 0 0 " +
         s.codes[2] + " 0\n" +
         Fmt("(A,2F9.5,A,F8.4,A)", "O    O    ", s.x, s.x, " 0.0 ", s.bO, "  0.25 0 0 0") + "\n" +
         s.codes[1] + " " + s.codes[1] + " 0 " + s.codes[3] + " 0\n" +
         Fmt("(F12.6,A)", s.scale, " 0.0 0.0 0.0 0.0 0.0 0") + "\n" + s.codes[0] + " 0 0 0 0 0\n" +
         Fmt("(F9.5,A)", s.u, " -0.008 0.010 0.0 0.0 0.0 0.0 0") + "\n" + s.codes[5] +
         " 0 0 0 0 0 0\n" + Fmt("(2F9.5,F9.5,A)", s.a, s.a, s.c, " 90 90 90") + "\n" + s.cellCodes +
         "\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
}

bool RunJob(ScratchDir& dir, CapturedJob& job, const Rutile& s) {
  if (!testing::ReadControlText(dir, job, ControlText(s), false)) return false;
  return testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); });
}

// Calculates the pattern of `truth` and writes it as x.dat without noise,
// with the digits of a 32-bit value or rounded to whole counts.
void Simulate(ScratchDir& dir, const Rutile& truth, bool wholeCounts = false) {
  dir.Write("x.dat", "");
  CapturedJob job;
  ASSERT_TRUE(RunJob(dir, job, truth)) << job.Console();
  const Pattern& p = job->patterns[1];
  std::string data = "15.0 0.02 120.0\n";
  for (int i = 1; i <= p.NPTS; ++i) {
    const float y = p.Ycalc[i] + p.Backg[i];
    data += wholeCounts ? Fmt("(I9)", static_cast<int>(std::lround(y))) : Fmt("(F14.5)", y);
    if (i % 8 == 0) data += "\n";
  }
  dir.Write("x.dat", data + "\n");
}

// Within 1e-4 of the true value, relative, or absolute for a value near zero.
void ExpectReached(float value, float truth, const char* what) {
  const float tolerance = 1.0e-4f * std::max(std::fabs(truth), 1.0f);
  EXPECT_NEAR(value, truth, tolerance) << what;
}

TEST(NoiseFreeConvergence, RutileRefinementReachesTheSimulatedParameters) {
  ScratchDir dir;
  Rutile truth;
  truth.scale = 0.05f;
  Simulate(dir, truth);
  Rutile start = truth;
  start.job = 0;
  start.cycles = 40;
  start.scale = 0.056f;
  start.x = 0.2980f;
  start.bTi = 0.80f;
  start.bO = 0.40f;
  start.zero = 0.015f;
  start.u = 0.015f;
  const std::string codes[6] = {"11.00", "21.00", "31.00", "41.00", "51.00", "61.00"};
  for (int i = 0; i < 6; ++i) start.codes[i] = codes[i];
  start.refined = 6;
  CapturedJob job;
  ASSERT_TRUE(RunJob(dir, job, start)) << job.Console();
  const Job& j = *job;
  ExpectReached(j.phases[1].pat[1].PAR[1] / truth.scale, 1.0f, "scale");
  ExpectReached(j.atoms[2].ATP[1], truth.x, "x of O");
  ExpectReached(j.atoms[1].ATP[4], truth.bTi, "B of Ti");
  ExpectReached(j.atoms[2].ATP[4], truth.bO, "B of O");
  ExpectReached(j.patterns[1].GLB[1], truth.zero, "zero");
  ExpectReached(j.phases[1].pat[1].PAR[3] / truth.u, 1.0f, "U");
}

// A start away from `truth` in the scale, x of O, both B and the cell, with
// those and the zero and U refined: eight parameters.
Rutile DisplacedStart(const Rutile& truth) {
  Rutile start = truth;
  start.job = 0;
  start.cycles = 40;
  start.scale = 1.05f * truth.scale;
  start.x = 0.3010f;
  start.bTi = 0.60f;
  start.bO = 0.55f;
  start.a = 4.5970f;
  start.c = 2.9575f;
  start.cellCodes = "71.00 71.00 81.00 0 0 0";
  const std::string codes[6] = {"11.00", "21.00", "31.00", "41.00", "51.00", "61.00"};
  for (int i = 0; i < 6; ++i) start.codes[i] = codes[i];
  start.refined = 8;
  return start;
}

// Exact data and the cell refined as well: every parameter, the cell
// included, reaches its simulated value. The Lorentz-polarisation factor has
// to follow the Bragg angle of the refined cell for the model to be the one
// that made the data.
TEST(NoiseFreeConvergence, CellRefinedWithTheRestReachesTheSimulatedParameters) {
  ScratchDir dir;
  Rutile truth;
  truth.scale = 0.05f;
  Simulate(dir, truth);
  Rutile start = DisplacedStart(truth);
  start.zero = 0.010f;
  CapturedJob job;
  ASSERT_TRUE(RunJob(dir, job, start)) << job.Console();
  const Job& j = *job;
  const PhasePattern& c = j.phases[1].pat[1];
  ExpectReached(c.PAR[1] / truth.scale, 1.0f, "scale");
  ExpectReached(j.atoms[2].ATP[1], truth.x, "x of O");
  ExpectReached(j.atoms[1].ATP[4], truth.bTi, "B of Ti");
  ExpectReached(j.atoms[2].ATP[4], truth.bO, "B of O");
  ExpectReached(j.patterns[1].GLB[1], truth.zero, "zero");
  ExpectReached(c.PAR[3] / truth.u, 1.0f, "U");
  ExpectReached(1.0f / std::sqrt(c.PAR[6]) / truth.a, 1.0f, "a");
  ExpectReached(1.0f / std::sqrt(c.PAR[8]) / truth.c, 1.0f, "c");
}

// The weighted residual sum of the last pass over every point.
double ResidualSum(const Pattern& p) {
  double sum = 0.0;
  for (int i = 1; i <= p.NPTS; ++i) {
    const double d = static_cast<double>(p.Ytotal[i]) - p.Ycalc[i] - p.Backg[i];
    sum += d * d / p.Variance[i];
  }
  return sum;
}

// Counts rounded to integers leave a residual at the true parameters: the
// refinement must end at the least-squares minimum, at or below the sum at
// the truth, also when the cell moves (the Lorentz-polarisation factor has
// to follow the Bragg angle of the refined cell).
TEST(NoiseFreeConvergence, RoundedCountsRefineToTheLeastSquaresMinimum) {
  ScratchDir dir;
  Rutile truth;
  // Peaks of up to 26000 counts on a background of 40.
  truth.scale = 0.05f;
  Simulate(dir, truth, true);
  Rutile atTruth = truth;
  atTruth.job = 0;
  CapturedJob reference;
  ASSERT_TRUE(RunJob(dir, reference, atTruth)) << reference.Console();
  const double truthSum = ResidualSum(reference->patterns[1]);
  const Rutile start = DisplacedStart(truth);
  CapturedJob job;
  ASSERT_TRUE(RunJob(dir, job, start)) << job.Console();
  const double refinedSum = ResidualSum(job->patterns[1]);
  EXPECT_GT(truthSum, 0.0);
  EXPECT_LE(refinedSum, truthSum * (1.0 + 1.0e-6)) << "at the truth " << truthSum;
  // The rounding moves the minimum from the truth by a few 1e-4 at most.
  const Job& j = *job;
  const auto near = [](float value, float expected, const char* what) {
    EXPECT_NEAR(value / expected, 1.0f, 1.0e-3f) << what;
  };
  near(j.phases[1].pat[1].PAR[1], truth.scale, "scale");
  near(j.atoms[2].ATP[1], truth.x, "x of O");
  near(j.atoms[1].ATP[4], truth.bTi, "B of Ti");
  near(j.atoms[2].ATP[4], truth.bO, "B of O");
}

}  // namespace
}  // namespace corvinet
