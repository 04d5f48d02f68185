// Time-of-flight patterns in the cycle: the derivative row of a point against finite differences,
// and refinements of simulated patterns that recover the parameters they were simulated with.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "format/fortran_format.h"
#include "observations/poisson.h"
#include "refine/cycle_driver.h"
#include "refine/cycle_work.h"
#include "refine/point_probe.h"
#include "refine/tof_text.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

void Simulate(ScratchDir& dir, const TofModel& truth, float counts) {
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, TofText(truth), false)) << job.Console();
  ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
  const Pattern& p = job->patterns[1];
  std::string data = "5000.0 4.0 20000.0\n";
  for (int i = 1; i <= p.NPTS; ++i) {
    const float mean = counts * (p.Ycalc[i] + p.Backg[i]);
    data += Fmt("(F14.3)",
                counts > 0.0f ? PoissonDeviate(*job, mean) / counts : p.Ycalc[i] + p.Backg[i]);
    if (i % 8 == 0) data += "\n";
  }
  dir.Write("x.dat", data + "\n");
}

TEST(TofCycle, CalculatedPatternHasItsPeaksAtZeroPlusDtt1DPlusDtt2DSquared) {
  // The (1 1 0) reflection of a = 4.157: d = 2.93949, T = 3 + 5000 d - 2 d^2 = 14683.18 us.
  ScratchDir dir;
  TofModel m;
  m.sig1 = 4.0f;
  m.gam1 = 0.1f;
  m.alph1 = 2.0f;
  m.beta0 = 0.5f;
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, TofText(m), false)) << job.Console();
  ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
  const Pattern& p = job->patterns[1];
  const double d = 4.157 / std::sqrt(2.0);
  const double T = 3.0 + 5000.0 * d - 2.0 * d * d;
  int top = 1;
  for (int i = 1; i <= p.NPTS; ++i) {
    if (std::fabs(p.X[i] - T) < 40.0 && p.Ycalc[i] > p.Ycalc[top]) top = i;
  }
  EXPECT_NEAR(p.X[top], T, 8.0);
}

// A refinement of every time-of-flight parameter at once, for the derivative rows.
TofModel AllRefined() {
  TofModel m;
  m.job = -1;
  m.iabscor = 1;
  m.extinc = 0.02f;
  m.abs1 = 0.05f;
  m.alph0 = 0.01f;
  m.globalCodes = "11.00 21.00 31.00";
  m.scaleCodes = "41.00 51.00";
  m.widthCodes = "61.00";
  m.gammaCodes = "71.00";
  m.asymCodes = "81.00 91.00 101.00 111.00";
  m.cellCode = "121.00";
  m.absCode = "131.00";
  m.backgroundCode = "141.00";
  m.refined = 14;
  return m;
}

// The value a refined parameter takes in the job, with the fields that move with it.
struct Handle {
  const char* name;
  std::vector<float*> values;
  double step;
};

TEST(TofCycle, EveryDerivativeRowFollowsFiniteDifferences) {
  ScratchDir dir;
  Simulate(dir, TofModel{}, 0.0f);
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, TofText(AllRefined()), false)) << job.Console();
  Job& j = *job;
  Pattern& p = j.patterns[1];
  PhasePattern& c = j.phases[1].pat[1];
  const std::vector<Handle> handles = {
      {"Zero", {&p.GLB[1]}, 0.5},           {"Dtt1", {&p.GLB[8], &p.Dtt1}, 0.2},
      {"Dtt2", {&p.GLB[9], &p.Dtt2}, 0.05}, {"Scale", {&c.PAR[1]}, 1e-3},
      {"Extinc", {&c.PAR[17]}, 1e-3},       {"Sig-1", {&c.PAR[4]}, 0.2},
      {"Gam-1", {&c.PAR[47]}, 0.02},        {"alph0", {&c.PAR[14]}, 1e-3},
      {"beta0", {&c.PAR[35]}, 1e-3},        {"alph1", {&c.PAR[36]}, 1e-3},
      {"beta1", {&c.PAR[37]}, 1e-4},        {"cell", {&c.PAR[6], &c.PAR[7], &c.PAR[8]}, 5e-6},
      {"Abs1", {&c.PAR[41]}, 1e-3},
  };
  // Positions near 14683 us are held to 0.001 us in 32 bits: the steps of the
  // position terms move the peak by a few tenths of a microsecond.
  auto work = std::make_unique<CycleWork>();
  // (1 1 0) at T = 14683: points before, on and after the peak, and in its tail.
  const double T = 3.0 + 5000.0 * 4.157 / std::sqrt(2.0) - 2.0 * 4.157 * 4.157 / 2.0;
  // Near the top of the peak a position row crosses 0: each row is held to
  // 0.3 % of itself plus 0.1 % of its largest value over the points.
  std::vector<std::vector<double>> analyticRows, numericRows;
  std::vector<double> largest(handles.size(), 0.0);
  const double offsets[] = {-40.0, -12.0, -4.0, 0.0, 6.0, 20.0, 60.0};
  for (double offset : offsets) {
    const int i = 1 + static_cast<int>(std::lround((T + offset - 5000.0) / 4.0));
    std::vector<float> analytic;
    testing::PointWithDerivatives(j, *work, i, &analytic);
    std::vector<double> numeric(handles.size());
    for (std::size_t n = 0; n < handles.size(); ++n) {
      const Handle& h = handles[n];
      std::vector<float> saved;
      for (float* v : h.values) saved.push_back(*v);
      auto at = [&](double sign) {
        for (std::size_t k = 0; k < h.values.size(); ++k) {
          *h.values[k] = static_cast<float>(saved[k] + sign * h.step);
        }
        return testing::PointWithDerivatives(j, *work, i, nullptr);
      };
      numeric[n] = (at(1.0) - at(-1.0)) / (2.0 * h.step);
      for (std::size_t k = 0; k < h.values.size(); ++k) *h.values[k] = saved[k];
      largest[n] = std::max(largest[n], std::fabs(numeric[n]));
    }
    analyticRows.emplace_back(analytic.begin(), analytic.end());
    numericRows.push_back(numeric);
  }
  int checked = 0;
  for (std::size_t o = 0; o < analyticRows.size(); ++o) {
    for (std::size_t n = 0; n < handles.size(); ++n) {
      const double numeric = numericRows[o][n];
      if (largest[n] < 1e-3) continue;
      ++checked;
      EXPECT_NEAR(analyticRows[o][n], numeric, 3e-3 * std::fabs(numeric) + 1e-3 * largest[n])
          << handles[n].name << " at offset " << offsets[o];
    }
  }
  EXPECT_GT(checked, 60);
}

TEST(TofCycle, SimulatedPatternRecoversDtt1Dtt2ZeroAndProfileWithinThreeSigma) {
  ScratchDir dir;
  const TofModel truth;
  Simulate(dir, truth, 200.0f);
  TofModel start = truth;
  start.job = -1;
  start.cycles = 40;
  start.zero = 1.5f;
  start.dtt1 = 5000.6f;
  start.dtt2 = -1.2f;
  start.sig1 = 48.0f;
  start.alph1 = 0.5f;
  start.beta0 = 0.036f;
  start.scale = 0.45f;
  start.background = 18.0f;
  start.globalCodes = "11.00 21.00 31.00";
  start.widthCodes = "41.00";
  start.asymCodes = "0.00 61.00 51.00 0.00";
  start.scaleCodes = "71.00 0.00";
  start.backgroundCode = "81.00";
  start.refined = 8;
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, TofText(start), false)) << job.Console();
  ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
  const Job& j = *job;
  const auto sigma = [&](int L) { return std::sqrt(std::fabs(j.refinement.normal.A(L, L))); };
  const Pattern& p = j.patterns[1];
  const PhasePattern& c = j.phases[1].pat[1];
  EXPECT_NEAR(p.GLB[1], truth.zero, 3.0f * sigma(1));
  EXPECT_NEAR(p.GLB[8], truth.dtt1, 3.0f * sigma(2));
  EXPECT_NEAR(p.GLB[9], truth.dtt2, 3.0f * sigma(3));
  EXPECT_NEAR(c.PAR[4], truth.sig1, 3.0f * sigma(4));
  EXPECT_NEAR(c.PAR[36], truth.alph1, 3.0f * sigma(5));
  EXPECT_NEAR(c.PAR[35], truth.beta0, 3.0f * sigma(6));
  EXPECT_NEAR(c.PAR[1], truth.scale, 3.0f * sigma(7));
  EXPECT_NEAR(p.GLB[2], truth.background, 3.0f * sigma(8));
  EXPECT_LT(sigma(2), 0.5f);  // Dtt1 is well determined
}

}  // namespace
}  // namespace corvinet
