// Profile-matching refinements of simulated patterns recover the parameters they were simulated
// with.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include <memory>
#include "format/fortran_format.h"
#include "observations/poisson.h"
#include "records/reflection.h"
#include "refine/cycle_driver.h"
#include "refine/cycle_work.h"
#include "refine/order_reflections.h"
#include "refine/parameter_families.h"
#include "refine/point_calculation.h"
#include "refine/reflection_calculation.h"
#include "refine/two_pattern_text.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;
using testing::TwoPatternText;

struct Model {
  float zero = 0.0f;
  float a = 5.431f;
  float U = 0.01f, V = -0.006f, W = 0.008f;
  float background = 50.0f;
  std::string zeroCode = "0.00", cellCode = "0.00 0.00 0.00", wCode = "0.00",
              backgroundCode = "0.00";
  int refined = 0;
  int job = 2;  // 2 calculation, 0 refinement
  int cycles = 1;
};

std::string ControlText(const Model& m) {
  return Fmt("(A)", "Simulated silicon-like cubic phase") + "\n" +
         Fmt("(I4,A)", m.job, "   5   1   0   0   0   0   0   0   0   0   0   0   0   0   0   0") +
         "\n   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   1   0\n"
         " 1.540560 1.544330  0.50000   40.000 10.0000  0.9100  0.0000   10.00    0.0000\n" +
         Fmt("(I3,A)", m.cycles,
             "  0.01  1.00  1.00  1.00  1.00     20.0000   0.0200    90.0000   0.000   0.000") +
         "\n" + Fmt("(I5)", m.refined) + "\n" +
         Fmt("(F8.4,1X,A,A)", m.zero, m.zeroCode, "  0.0000 0.00  0.0000 0.00 0.000000 0.00   0") +
         "\n" + Fmt("(F8.2,A)", m.background, "  0.0  0.0  0.0  0.0  0.0") + "\n" +
         m.backgroundCode +
         " 0.00 0.00 0.00 0.00 0.00\n"
         "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nF d 3 m\n"
         "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n" +
         Fmt("(3F10.5,A)", m.U, m.V, m.W, " 0.0 0.0 0.0 0.0 0") + "\n0 0 " + m.wCode +
         " 0 0 0 0\n" + Fmt("(3F10.5,A)", m.a, m.a, m.a, " 90 90 90") + "\n" + m.cellCode +
         " 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
}

// Calculates the pattern of `truth` and writes it with Poisson noise as x.dat.
void Simulate(ScratchDir& dir, const Model& truth) {
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, ControlText(truth), false)) << job.Console();
  ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
  const Pattern& p = job->patterns[1];
  std::string data = "20.0 0.02 90.0\n";
  for (int i = 1; i <= p.NPTS; ++i) {
    const float mean = 20.0f * (p.Ycalc[i] + p.Backg[i]) / 1.0f;
    data += Fmt("(F12.1)", PoissonDeviate(*job, mean) / 20.0f);
    if (i % 8 == 0) data += "\n";
  }
  dir.Write("x.dat", data + "\n");
}

TEST(RefinementRecovery, CellZeroWidthAndBackgroundOfOnePhaseOneWavelengthPair) {
  ScratchDir dir;
  Model truth;
  truth.zero = 0.015f;
  truth.a = 5.4310f;
  truth.W = 0.008f;
  truth.background = 50.0f;
  Simulate(dir, truth);

  Model start = truth;
  start.job = 0;
  start.cycles = 30;
  start.zero = 0.0f;
  start.a = 5.4330f;
  start.W = 0.012f;
  start.background = 45.0f;
  start.zeroCode = "11.00";
  start.backgroundCode = "21.00";
  start.cellCode = "31.00 31.00 31.00";
  start.wCode = "41.00";
  start.refined = 4;
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, ControlText(start), false)) << job.Console();
  const bool ran = testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); });
  ASSERT_TRUE(ran) << job.Console();
  const Job& j = *job;
  const auto sigma = [&](int L) { return std::sqrt(std::fabs(j.refinement.normal.A(L, L))); };
  const PhasePattern& c = j.phases[1].pat[1];
  EXPECT_NEAR(j.patterns[1].GLB[1], truth.zero, 3.0f * sigma(1) + 1e-4f);
  EXPECT_NEAR(j.patterns[1].GLB[2], truth.background, 3.0f * sigma(2) + 0.05f);
  // The cell is refined as A = 1/a²: compare in a through the coefficient.
  const float a = 1.0f / std::sqrt(c.PAR[6]);
  const float sigmaA = 0.5f * a * sigma(3) / c.PAR[6];
  EXPECT_NEAR(a, truth.a, 3.0f * sigmaA + 1e-5f);
  EXPECT_NEAR(c.PAR[5], truth.W, 3.0f * sigma(4) + 1e-5f);
  EXPECT_LT(sigma(1), 0.005f);
}

// Two phases in one pattern: the cubic phase above and a hexagonal one.
std::string TwoPhaseText(const Model& m, float c, const std::string& hexCode) {
  std::string text = ControlText(m);
  text.replace(text.find("   5   1   0"), 12, "   5   2   0");
  return text +
         "Hexagonal phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP 63/m m c\n"
         "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
         "0.01 -0.006 0.008 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n" +
         Fmt("(A,F10.5,A)", "3.2 3.2", c, " 90 90 120") + "\n0 0 " + hexCode + " 0 0 0\n" +
         "0 0 0 0 0 0\n0 0 0 0 0 0\n";
}

TEST(RefinementRecovery, TwoPhasesInOnePatternRecoverBothCells) {
  ScratchDir dir;
  Model truth;
  truth.zero = 0.01f;
  const float trueC = 5.2100f;
  {
    CapturedJob job;
    ASSERT_TRUE(testing::ReadControlText(dir, job, TwoPhaseText(truth, trueC, "0.00"), false))
        << job.Console();
    ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); }));
    const Pattern& p = job->patterns[1];
    std::string data = "20.0 0.02 90.0\n";
    for (int i = 1; i <= p.NPTS; ++i) {
      data += Fmt("(F12.1)", PoissonDeviate(*job, 20.0f * (p.Ycalc[i] + p.Backg[i])) / 20.0f);
      if (i % 8 == 0) data += "\n";
    }
    dir.Write("x.dat", data + "\n");
  }
  Model start = truth;
  start.job = 0;
  start.cycles = 30;
  start.zero = 0.0f;
  start.a = 5.4325f;
  start.zeroCode = "11.00";
  start.cellCode = "21.00 21.00 21.00";
  start.refined = 3;
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, TwoPhaseText(start, 5.2120f, "31.00"), false))
      << job.Console();
  ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
  const Job& j = *job;
  const auto sigma = [&](int L) { return std::sqrt(std::fabs(j.refinement.normal.A(L, L))); };
  EXPECT_NEAR(j.patterns[1].GLB[1], truth.zero, 3.0f * sigma(1) + 1e-4f);
  const float A = j.phases[1].pat[1].PAR[6];
  const float a = 1.0f / std::sqrt(A);
  EXPECT_NEAR(a, truth.a, 3.0f * 0.5f * a * sigma(2) / A + 1e-5f);
  const float C = j.phases[2].pat[1].PAR[8];
  const float c = 1.0f / std::sqrt(C);
  EXPECT_NEAR(c, trueC, 3.0f * 0.5f * c * sigma(3) / C + 1e-5f);
}

TEST(RefinementRecovery, TwoPatternsShareTheirCellAndKeepTheirZeros) {
  ScratchDir dir;
  const float trueA = 5.4310f, zero1 = 0.012f, zero2 = -0.008f;
  testing::SimulateTwoPatterns(dir, trueA, zero1, zero2);
  CapturedJob job;
  ASSERT_TRUE(
      testing::ReadControlText(dir, job, TwoPatternText(0, 30, 5.4330f, 0.0f, 0.0f, true), false))
      << job.Console();
  ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
  const Job& j = *job;
  const auto sigma = [&](int L) { return std::sqrt(std::fabs(j.refinement.normal.A(L, L))); };
  EXPECT_NEAR(j.patterns[1].GLB[1], zero1, 3.0f * sigma(1) + 1e-4f);
  EXPECT_NEAR(j.patterns[2].GLB[1], zero2, 3.0f * sigma(2) + 1e-4f);
  for (int ip = 1; ip <= 2; ++ip) {
    const float A = j.phases[1].pat[ip].PAR[6];
    const float a = 1.0f / std::sqrt(A);
    EXPECT_NEAR(a, trueA, 3.0f * 0.5f * a * sigma(3) / A + 1e-5f) << "pattern " << ip;
  }
}

}  // namespace
}  // namespace corvinet
