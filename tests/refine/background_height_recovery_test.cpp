// A simulated pattern under an interpolated background: refined point heights that start wrong
// come back to the heights the pattern was simulated with.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "format/fortran_format.h"
#include "observations/poisson.h"
#include "refine/cycle_driver.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

constexpr int kPoints = 6;
constexpr float kPositions[kPoints] = {20.0f, 35.0f, 50.0f, 65.0f, 80.0f, 90.0f};
constexpr float kTrueHeights[kPoints] = {2400.0f, 1600.0f, 1200.0f, 1100.0f, 1240.0f, 1400.0f};
constexpr float kStartHeights[kPoints] = {2900.0f, 1100.0f, 1600.0f, 700.0f, 1600.0f, 1000.0f};
constexpr float kScale = 20.0f;

// A silicon-like cubic phase on profile matching over 20 to 90 degrees, with
// the background typed `typed` (6 linear, -6 spline) through the given heights.
std::string ControlText(int job, int cycles, int typed, const float (&heights)[kPoints]) {
  std::string points;
  for (int k = 0; k < kPoints; ++k) points += Fmt("(2F10.2)", kPositions[k], heights[k]) + "\n";
  return "Simulated cubic phase over an interpolated background\n" +
         Fmt("(I4,A,I4,A)", job, "   5   1", typed,
             "   0   0   0   0   0   0   0   0   0   0   0   0   0") +
         "\n   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   1   0\n"
         " 1.540560 1.540560  0.00000   40.000 10.0000  0.9100  0.0000   10.00    0.0000\n" +
         Fmt("(I3,A)", cycles,
             "  0.01  1.00  1.00  1.00  1.00     20.0000   0.0200    90.0000   0.000   0.000") +
         "\n" + points +
         "    0\n  0.0000 0.00  0.0000 0.00  0.0000 0.00 0.000000 0.00   0\n"
         "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nF d 3 m\n" +
         Fmt("(F8.2)", kScale) + " 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n" +
         "0.01 -0.006 0.008 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
         "5.431 5.431 5.431 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
}

// Calculates the pattern over the true heights and writes it with Poisson
// noise as x.dat: counts, so that the weights of the refinement are true.
void Simulate(ScratchDir& dir, int typed) {
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, ControlText(2, 1, typed, kTrueHeights), false))
      << job.Console();
  ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
  const Pattern& p = job->patterns[1];
  std::string data = "20.0 0.02 90.0\n";
  for (int i = 1; i <= p.NPTS; ++i) {
    data += Fmt("(F12.1)", PoissonDeviate(*job, p.Ycalc[i] + p.Backg[i]));
    if (i % 8 == 0) data += "\n";
  }
  dir.Write("x.dat", data + "\n");
}

void RecoverHeights(int typed) {
  ScratchDir dir;
  Simulate(dir, typed);
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, ControlText(0, 8, typed, kStartHeights), false))
      << job.Console();
  Job& j = *job;
  Pattern& p = j.patterns[1];
  // Heights 1..6 are parameters 1..6 and the scale is parameter 7.
  for (int k = 1; k <= kPoints; ++k) p.BackIntCode[k] = static_cast<float>(10 * k + 1);
  j.phases[1].pat[1].PAC[1] = Codeword{kPoints + 1, 1.0f};
  j.run.MAXS = kPoints + 1;
  ASSERT_TRUE(testing::RunsWithoutStop(j, [](Job& r) { RunCycles(r); })) << job.Console();
  const auto sigma = [&](int L) { return std::sqrt(std::fabs(j.refinement.normal.A(L, L))); };
  for (int k = 1; k <= kPoints; ++k) {
    EXPECT_GT(std::fabs(kStartHeights[k - 1] - kTrueHeights[k - 1]), 3.0f * sigma(k));
    EXPECT_NEAR(p.BackInt[k], kTrueHeights[k - 1], 3.0f * sigma(k))
        << "height " << k << " of background " << typed;
    EXPECT_LT(sigma(k), 0.1f * kTrueHeights[k - 1]) << "height " << k;
  }
  EXPECT_NEAR(j.phases[1].pat[1].PAR[1], kScale, 3.0f * sigma(kPoints + 1));
}

TEST(BackgroundHeightRecovery, LinearHeightsThatStartWrongComeBack) {
  RecoverHeights(6);
}

TEST(BackgroundHeightRecovery, SplineHeightsThatStartWrongComeBack) {
  RecoverHeights(-6);
}

}  // namespace
}  // namespace corvinet
