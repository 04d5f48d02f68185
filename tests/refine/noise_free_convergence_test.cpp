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
         " 0 0 0 0 0 0\n"
         "4.5940 4.5940 2.9590 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
}

bool RunJob(ScratchDir& dir, CapturedJob& job, const Rutile& s) {
  if (!testing::ReadControlText(dir, job, ControlText(s), false)) return false;
  return testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); });
}

// Calculates the pattern of `truth` and writes it as x.dat without noise,
// with the digits of a 32-bit value.
void Simulate(ScratchDir& dir, const Rutile& truth) {
  dir.Write("x.dat", "");
  CapturedJob job;
  ASSERT_TRUE(RunJob(dir, job, truth)) << job.Console();
  const Pattern& p = job->patterns[1];
  std::string data = "15.0 0.02 120.0\n";
  for (int i = 1; i <= p.NPTS; ++i) {
    data += Fmt("(F14.5)", p.Ycalc[i] + p.Backg[i]);
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

}  // namespace
}  // namespace corvinet
