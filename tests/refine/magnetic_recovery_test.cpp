// Refinements of simulated magnetic neutron patterns recover the moments and the propagation vector
// they were simulated with, from displaced starts.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "format/fortran_format.h"
#include "observations/poisson.h"
#include "refine/cycle_driver.h"
#include "refine/magnetic_case.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

bool RunJob(ScratchDir& dir, CapturedJob& job, const std::string& text) {
  if (!testing::ReadControlText(dir, job, text, false)) return false;
  return testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); });
}

// Writes the calculated pattern of `text`, scaled by `factor`, with Poisson
// noise as x.dat; returns the strongest calculated point before scaling.
float Simulate(ScratchDir& dir, const std::string& text, float factor) {
  dir.Write("x.dat", "");
  CapturedJob job;
  EXPECT_TRUE(RunJob(dir, job, text)) << job.Console();
  const Pattern& p = job->patterns[1];
  float top = 0.0f;
  for (int i = 1; i <= p.NPTS; ++i) top = std::max(top, p.Ycalc[i]);
  std::string data = "10.0 0.05 150.0\n";
  for (int i = 1; i <= p.NPTS; ++i) {
    data += Fmt("(F12.1)", PoissonDeviate(*job, factor * p.Ycalc[i] + p.Backg[i]));
    if (i % 8 == 0) data += "\n";
  }
  dir.Write("x.dat", data + "\n");
  return top;
}

float Sigma(const Job& j, int L) {
  return std::sqrt(std::fabs(j.refinement.normal.A(L, L)));
}

// LaMnO3 with 3.7 on Mn: scale, moment and the Mn displacement refined from
// 0.8 of the scale, 2.5 and 0.8.
TEST(MagneticRecovery, NuclearAndMagneticLaMnO3RecoversTheMomentOnMn) {
  ScratchDir dir;
  testing::LaMnO3Case truth;
  const float top = Simulate(dir, truth.Text(), 1.0f);
  truth.scale = 20000.0f / top;
  Simulate(dir, truth.Text(), 1.0f);
  testing::LaMnO3Case start = truth;
  start.job = 1;
  start.cycles = 15;
  start.refined = 3;
  start.scale = 0.8f * truth.scale;
  start.moment = 2.5f;
  start.bMn = 0.8f;
  start.scaleCode = "11.00";
  start.momentCode = "21.00";
  start.bMnCode = "31.00";
  CapturedJob job;
  ASSERT_TRUE(RunJob(dir, job, start.Text())) << job.Console();
  const Job& j = *job;
  EXPECT_NEAR(j.phases[1].pat[1].PAR[1], truth.scale, 3.0f * Sigma(j, 1));
  EXPECT_NEAR(j.atoms[2].ATP[6], truth.moment, 3.0f * Sigma(j, 2));
  EXPECT_NEAR(j.atoms[2].ATP[4], truth.bMn, 3.0f * Sigma(j, 3));
  EXPECT_LT(Sigma(j, 2), 0.05f);
}

// A helix with k = (0.1, 0, 0.3): the real and imaginary moments and two
// components of the vector refined from displaced values, the scale kept.
TEST(MagneticRecovery, HelixRecoversItsMomentsAndPropagationVector) {
  ScratchDir dir;
  testing::HelixCase truth;
  truth.job = 3;
  Simulate(dir, truth.Text(), 1.0f);
  testing::HelixCase start = truth;
  start.job = 1;
  start.cycles = 15;
  start.refined = 4;
  start.moments = "1.6 0.0 0.0";
  start.imaginary = "0.0 2.3 0.0 0.05";
  start.vector = "0.102 0.0 0.299";
  std::string text = start.Text();
  // Codes of Rx, Iy and of k1, k3.
  text.replace(text.find("\n0 0 0 0 0 0 0 0\n"), 17, "\n0 0 0 0 0 11.0 0 0\n");
  text.replace(text.find("\n0 0 0 0 0 0 0\n"), 15, "\n0 21.0 0 0 0 0 0\n");
  text.replace(text.rfind("0 0 0\n"), 6, "31.0 0 41.0\n");
  CapturedJob job;
  ASSERT_TRUE(RunJob(dir, job, text)) << job.Console();
  const Job& j = *job;
  EXPECT_NEAR(j.atoms[1].ATP[6], 2.0f, 3.0f * Sigma(j, 1));
  EXPECT_NEAR(j.atoms[1].ATP[10], 2.0f, 3.0f * Sigma(j, 2));
  EXPECT_NEAR(j.phases[1].vectors[1].KVEC[1], 0.1f, 3.0f * Sigma(j, 3));
  EXPECT_NEAR(j.phases[1].vectors[1].KVEC[3], 0.3f, 3.0f * Sigma(j, 4));
  EXPECT_LT(Sigma(j, 3), 1e-3f);
}

}  // namespace
}  // namespace corvinet
