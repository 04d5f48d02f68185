// Evaluating integrated intensities: reliability factors by hand, cluster derivatives by
// differences.
#include "refine/intensity_evaluation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// Two atoms in P 1 against x1.hkl: Ni at the origin and O at (0.1, 0.2, 0.3),
// whose x is parameter 2 when `refined`; Sc1 (2.0) is parameter 1.
std::string ControlText(int maxs, int jobtyp) {
  const std::string xCode = maxs >= 2 ? "21.00" : " 0.00";
  const std::string scaleCode = maxs >= 1 ? "11.00" : " 0.00";
  return "COMM intensities\n"
         "   " +
         std::to_string(jobtyp) +
         "   0   1   0   0   0   0   0   0   0   0   0   0   0   1   0   0\n"
         "   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   0   0\n"
         " 5  0.01  1.00  1.00  1.00  1.00     10.0000   0.0250   159.0000   0.000   0.000\n"
         "   " +
         std::to_string(maxs) +
         "\n"
         "two atoms\n"
         "   2   0   0 0.0 0.0 1.0   0   4   0   0   0          0.000   0   0   0\n"
         "P 1\n"
         "Ni   NI   0.00000 0.00000 0.00000 0.30 1.00  0 0 0\n"
         "   0.00 0.00 0.00 0.00 0.00\n"
         "O    O    0.10000 0.20000 0.30000 0.50 1.00  0 0 0\n"
         "  " +
         xCode +
         " 0.00 0.00 0.00 0.00\n"
         "  2.0 3.0 1.0 1.0 1.0 1.0\n"
         "  " +
         scaleCode +
         " 0.00 0.00 0.00 0.00 0.00\n"
         "  0.0 0.0 0.0 0.0 0.0 0.0 0.0\n"
         "  0.0 0.0 0.0 0.0 0.0 0.0 0.0\n"
         "   4.000000  5.000000  6.000000  90.000000  90.000000  90.000000\n"
         "   0.00000  0.00000  0.00000   0.00000   0.00000   0.00000\n"
         "  0.00000  0.00000  0.00000  0.00000  0.00000\n"
         "   0.00     0.00     0.00     0.00     0.00\n";
}

struct Evaluated {
  ScratchDir dir;
  CapturedJob job;
  std::unique_ptr<StructureFactorScratch> scratch = std::make_unique<StructureFactorScratch>();
  bool read = false;
  Evaluated(const std::string& list, int maxs = 2, int jobtyp = 1) {
    dir.Write("x1.hkl", list);
    read = testing::ReadControlText(dir, job, ControlText(maxs, jobtyp), false);
  }
  IntensityFactors Evaluate(IntensityMode mode = IntensityMode::kFactors) {
    return EvaluateIntensities(*job, *scratch, 1, 1, mode);
  }
  IntensityObservation& at(int s) { return job->patterns[1].intensities.slot[s]; }
};

const char* kHead = "a title\n(3i4,2f12.2,i4,3f8.0)\n";

TEST(IntensityEvaluation, ReliabilityFactorsMatchAHandComputedList) {
  Evaluated e(std::string(kHead) + "1.5 0 1\n" +
              "   1   0   0      100.00        2.00   1\n"
              "   0   1   0       40.00        4.00   1\n"
              "   0   0   1       90.00        3.00   2\n"
              "   1   1   0        5.00       10.00   1\n");
  ASSERT_TRUE(e.read) << e.job.Console();
  // Rmub 3: the last one (5 < 3*10) is excluded from the factors.
  e.job->phases[1].pat[1].Rmub = 3.0f;
  IntensityPhaseData& d = e.job->patterns[1].intensities.phase[1];
  d.NOBSERVED = 3;
  d.SumF2 = 230.0f;
  d.SumF2w = 50.0f * 50.0f + 10.0f * 10.0f + 30.0f * 30.0f;
  d.SumF = 10.0f + std::sqrt(40.0f) + std::sqrt(90.0f);
  const IntensityFactors f = e.Evaluate();
  // The calculated values: scale of the group times F², the F² being the
  // structure factor of each reflection as evaluated.
  double absDiff = 0.0, weighted = 0.0, absF = 0.0;
  const float obs[3] = {100.0f, 40.0f, 90.0f}, sig[3] = {2.0f, 4.0f, 3.0f};
  const float scale[3] = {2.0f, 2.0f, 3.0f};
  for (int s = 1; s <= 3; ++s) {
    const double cal = scale[s - 1] * e.at(s).reflection.F2;
    EXPECT_NEAR(e.at(s).F2cal, cal, 1e-4 * cal);
    const double diff = obs[s - 1] - cal;
    absDiff += std::fabs(diff);
    weighted += diff * diff / (sig[s - 1] * sig[s - 1]);
    absF += std::fabs(std::sqrt(obs[s - 1]) - std::sqrt(cal));
  }
  EXPECT_EQ(f.observed, 3);
  EXPECT_NEAR(f.RF2, 100.0 * absDiff / 230.0, 1e-3);
  EXPECT_NEAR(f.RF2w, 100.0 * std::sqrt(weighted / d.SumF2w), 1e-3);
  EXPECT_NEAR(f.RF, 100.0 * absF / d.SumF, 1e-3);
  // Two refined parameters: 3 - 2 degrees of freedom.
  EXPECT_NEAR(f.CHI2, weighted / 1.0, 1e-3 * weighted);
}

TEST(IntensityEvaluation, ObservationsNotMoreThanParametersLeaveChiSquareUndefined) {
  Evaluated e(std::string(kHead) + "1.5 0 1\n" +
              "   1   0   0      100.00        2.00   1\n"
              "   0   1   0       40.00        4.00   1\n");
  ASSERT_TRUE(e.read) << e.job.Console();
  EXPECT_FALSE(e.Evaluate().chi2Defined);
}

TEST(IntensityEvaluation, ACycleWithNoMoreObservationsThanParametersStops) {
  ScratchDir dir;
  dir.Write("x.pcr", ControlText(2, 1));
  dir.Write("x1.hkl", std::string(kHead) + "1.5 0 1\n" +
                          "   1   0   0      100.00        2.00   1\n"
                          "   0   1   0       40.00        4.00   1\n");
  const auto run = testing::RunBinary(dir.path, "x", "n\nn\n");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_NE(run.output.find("Too few observed intensities"), std::string::npos);
}

// The value of the cluster that starts at slot 1 (two members).
double ClusterValue(Evaluated& e) {
  e.Evaluate();
  return static_cast<double>(e.at(1).F2cal) + e.at(2).F2cal;
}

TEST(IntensityEvaluation, DerivativesOfAClusterSumMatchFiniteDifferences) {
  // A neutron cluster of two reflections (Job 1: no monochromator line).
  Evaluated e(std::string(kHead) + "1.5 0 2\n" +
              "   1   0   0      500.00        5.00   1\n"
              "   1   1   1        0.00        0.00   0\n"
              "   0   1   2      100.00        5.00   1\n");
  ASSERT_TRUE(e.read) << e.job.Console();
  AtomSite& oxygen = e.job->atoms[2];
  float& scale = e.job->phases[1].pat[1].PAR[1];
  const double value = ClusterValue(e);
  // Finite differences of the cluster's sum.
  const float h = 1e-3f;
  oxygen.ATP[1] += h;
  const double up = ClusterValue(e);
  oxygen.ATP[1] -= 2 * h;
  const double down = ClusterValue(e);
  oxygen.ATP[1] += h;
  const double dx = (up - down) / (2.0 * h);
  const double dScale = value / scale;
  // The row of the cluster: its normal-equation terms with weight Rmua/var.
  NormalMatrix& n = e.job->refinement.normal;
  n.SumB.Fill(0.0);
  n.SumA.Fill(0.0);
  e.Evaluate(IntensityMode::kEquations);
  const IntensityObservation& first = e.at(1);
  const double weight = e.job->phases[1].pat[1].Rmua / first.variance;
  // Only the first cluster adds here to row 1 and 2 with diff = 500 - value;
  // the second cluster adds its own: take it off with its own terms.
  EXPECT_GT(std::fabs(dx), 1.0);
  const double diff1 = 500.0 - value;
  const double second = e.at(3).F2cal;
  const double weight2 = e.job->phases[1].pat[1].Rmua / e.at(3).variance;
  const double diff2 = 100.0 - second;
  const double rowScale2 = second / scale;
  const double rowScale1 = (n.SumB[1] - weight2 * rowScale2 * diff2) / (weight * diff1);
  EXPECT_NEAR(rowScale1, dScale, 1e-3 * std::fabs(dScale));
  // The x of O: SumA(1,2) = w1 r1s r1x + w2 r2s r2x and SumA(2,2) = w1 r1x² + w2 r2x².
  oxygen.ATP[1] += h;
  const double up3 = (e.Evaluate(), static_cast<double>(e.at(3).F2cal));
  oxygen.ATP[1] -= 2 * h;
  const double down3 = (e.Evaluate(), static_cast<double>(e.at(3).F2cal));
  oxygen.ATP[1] += h;
  const double dx3 = (up3 - down3) / (2.0 * h);
  const double expectedSumA12 = weight * dScale * dx + weight2 * rowScale2 * dx3;
  EXPECT_NEAR(n.SumA(1, 2), expectedSumA12, 2e-3 * std::fabs(expectedSumA12) + 1e-6);
  const double expectedSumA22 = weight * dx * dx + weight2 * dx3 * dx3;
  EXPECT_NEAR(n.SumA(2, 2), expectedSumA22, 2e-3 * expectedSumA22);
}

}  // namespace
}  // namespace corvinet
