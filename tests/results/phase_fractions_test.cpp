// Tests of weight and volume fractions of the phases of a pattern.
#include "results/phase_fractions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

// --- Fractions ---

// Two crystal phases of pattern 1 with scale, volume, ATZ and Brindley given,
// their scales refined as parameters 1 and 2 with the variances given.
void TwoPhases(Job& job, float var1, float var2) {
  job.run.NPHASE = 2;
  job.run.MAXS = 2;
  const float scale[] = {1.0f, 2.0f}, volume[] = {100.0f, 50.0f}, atz[] = {50.0f, 100.0f};
  for (int f = 1; f <= 2; ++f) {
    PhasePattern& pp = job.phases[f].pat[1];
    pp.Contribution = 1;
    pp.PAR[1] = scale[f - 1];
    pp.cellVolume = volume[f - 1];
    pp.Brind = 1.0f;
    pp.PAC[1] = Codeword{f, 1.0f};
    job.phases[f].ATZ = atz[f - 1];
  }
  job.refinement.normal.A(1, 1) = var1;
  job.refinement.normal.A(2, 2) = var2;
}

TEST(PhaseFractions, TwoPhasesShareTheWeightWithPropagatedSigmas) {
  CapturedJob job;
  TwoPhases(*job, 0.01f, 0.04f);
  // W = 1*100*50 = 5000 and 2*50*100 = 10000; r = 0.01/1 = 0.04/4 = 0.01;
  // Q = (5000^2 + 10000^2) 0.01 / 15000^2 = 0.0055556.
  const PhaseFractions fr = ComputePhaseFractions(*job, 1);
  EXPECT_NEAR(fr.VolumeFraction[1], 33.33333f, 1e-4f);
  EXPECT_NEAR(fr.VolumeFraction[2], 66.66667f, 1e-4f);
  EXPECT_NEAR(fr.FractionSigma[1], 4.157397f, 1e-4f);
  EXPECT_NEAR(fr.FractionSigma[2], 8.314794f, 1e-4f);
  EXPECT_NEAR(fr.SqrtAtz[2], 10.0f, 1e-6f);
}

TEST(PhaseFractions, VolumeSigmaEntersTheRelativeVariance) {
  CapturedJob job;
  TwoPhases(*job, 0.0f, 0.0f);
  job->limits.cells(1, 1).volumeSigma = 2.0f;  // (2/100)^2 = 4E-4
  const PhaseFractions fr = ComputePhaseFractions(*job, 1);
  EXPECT_NEAR(fr.relativeVariance[1], 4.0e-4f, 1e-9f);
  // Q = 5000^2 4E-4 / 15000^2 = 4.4444E-5.
  EXPECT_NEAR(fr.FractionSigma[2], std::sqrt(4.4444444e-5f) * 66.66667f, 1e-4f);
}

TEST(PhaseFractions, MagneticPhaseWeighsNothingAndSmallBrindleyBecomesOne) {
  CapturedJob job;
  TwoPhases(*job, 0.0f, 0.0f);
  job->phases[1].Jbt = -1;
  job->phases[2].pat[1].Brind = 0.00005f;
  const PhaseFractions fr = ComputePhaseFractions(*job, 1);
  EXPECT_EQ(fr.ATZ[1], 0.0f);
  EXPECT_EQ(fr.Brindley[2], 1.0f);
  EXPECT_FLOAT_EQ(fr.VolumeFraction[2], 100.0f);
  EXPECT_EQ(fr.VolumeFraction[1], 0.0f);
}

TEST(PhaseFractions, NoWeightAtAllKeepsTheSumAtOne) {
  CapturedJob job;
  TwoPhases(*job, 0.0f, 0.0f);
  job->phases[1].ATZ = 0.0f;
  job->phases[2].ATZ = 0.0f;
  const PhaseFractions fr = ComputePhaseFractions(*job, 1);
  EXPECT_EQ(fr.VolumeFraction[1], 0.0f);
  EXPECT_EQ(fr.VolumeFraction[2], 0.0f);
}

}  // namespace
}  // namespace corvinet
