// Tests of the correlated-residuals factor Scor and of when it is computed and reported.
#include <gtest/gtest.h>

#include <cmath>

#include "refine/reliability.h"
#include "refine/reliability_case.h"

namespace corvinet {
namespace {

using testing::kBragg;
using testing::kExcludedCode;
using testing::kNoReflection;
using testing::ReliabilityCase;

// The run factor of two neighbours with unit weighted residuals:
// q = sqrt(2 pi (1 + 1)), r = q/(2 + q).
double UnitRunFactor() {
  const double q = std::sqrt(4.0 * M_PI);
  return q / (2.0 + q);
}

TEST(CorrelatedResiduals, TwoSameSignNeighboursGiveUnitSum) {
  ReliabilityCase c;
  c.SetPoints({{11, 0, 10, 1, kBragg}, {11, 0, 10, 1, kBragg}});
  // S = (1 - r^2) inside the run plus r^2 when it closes.
  EXPECT_NEAR(CorrelatedResidualsFactor(c.pattern(), 2.0f), std::sqrt(0.5), 1e-6);
}

TEST(CorrelatedResiduals, ThreeSameSignResidualsFormOneRun) {
  ReliabilityCase c;
  c.SetPoints({{11, 0, 10, 1, kBragg}, {11, 0, 10, 1, kBragg}, {11, 0, 10, 1, kBragg}});
  const double r = UnitRunFactor();
  // Two extensions add 2 (1 - r^2); the run sum 2r closes with 4 r^2.
  EXPECT_NEAR(CorrelatedResidualsFactor(c.pattern(), 3.0f), std::sqrt((2.0 + 2.0 * r * r) / 3.0),
              1e-6);
}

TEST(CorrelatedResiduals, RunInterruptedByExcludedZoneEndsAtTheGap) {
  ReliabilityCase c;
  c.SetPoints({{11, 0, 10, 1, kBragg},
               {11, 0, 10, 1, kBragg},
               {11, 0, 10, 1, kExcludedCode},
               {11, 0, 10, 1, kBragg}});
  c.Exclude(11.8f, 12.2f);
  const double r = UnitRunFactor();
  // Points 1-2 form a run (1 - r^2, closed by r^2); point 4 follows a gap and
  // restarts from the previous residual, 1, which closes with 1.
  const double expected = std::sqrt((1.0 - r * r + r * r + 1.0) / 3.0);
  EXPECT_NEAR(CorrelatedResidualsFactor(c.pattern(), 3.0f), expected, 1e-6);
  EXPECT_GT(std::fabs(expected - std::sqrt((2.0 + 2.0 * r * r) / 3.0)), 1e-3);
}

TEST(CorrelatedResiduals, PointWithoutReflectionAlsoBreaksTheRun) {
  ReliabilityCase c;
  c.SetPoints({{11, 0, 10, 1, kBragg},
               {11, 0, 10, 1, kBragg},
               {11, 0, 10, 1, kNoReflection},
               {11, 0, 10, 1, kBragg}});
  EXPECT_NEAR(CorrelatedResidualsFactor(c.pattern(), 3.0f), std::sqrt(2.0 / 3.0), 1e-6);
}

TEST(CorrelatedResiduals, ChangeOfSignEndsTheRun) {
  ReliabilityCase c;
  // d = 2 (variance 4) then -1: the second point restarts from |2|/sqrt(4) = 1.
  c.SetPoints({{12, 0, 10, 4, kBragg}, {9, 0, 10, 1, kBragg}});
  EXPECT_NEAR(CorrelatedResidualsFactor(c.pattern(), 2.0f), std::sqrt(0.5), 1e-6);
}

TEST(CorrelatedResiduals, WeightsEnterThroughTheVariances) {
  ReliabilityCase c;
  // d/sigma = 1, 3, 1: both extensions have u = 10, so one factor r;
  // S = (1 - r^2) 1 + (1 - r^2) 9 + (r + 3r)^2.
  c.SetPoints({{12, 0, 10, 4, kBragg}, {13, 0, 10, 1, kBragg}, {11, 0, 10, 1, kBragg}});
  const double q = std::sqrt(2.0 * M_PI * 10.0);
  const double r = q / (2.0 + q);
  EXPECT_NEAR(CorrelatedResidualsFactor(c.pattern(), 11.0f), std::sqrt((10.0 + 6.0 * r * r) / 11.0),
              1e-6);
}

TEST(CorrelatedResiduals, NotComputedBeforeTheLastCycle) {
  ReliabilityCase c;
  c.SetPoints({{11, 0, 10, 1, kBragg}, {11, 0, 10, 1, kBragg}});
  c.job->run.NCY = 3;
  ResidualStatistics(*c.job, 1, 2, 0);
  EXPECT_EQ(c.job->reliability.pattern[1].Scor, 0.0f);
  EXPECT_TRUE(c.Lines(Unit::Out, "x.out").empty());
  EXPECT_TRUE(c.Lines(Unit::Sum, "x.sum").empty());
}

TEST(CorrelatedResiduals, ComputedAndReportedAtTheLastCycle) {
  ReliabilityCase c;
  c.SetPoints({{11, 0, 10, 1, kBragg}, {11, 0, 10, 1, kBragg}});
  c.job->run.NCY = 3;
  ResidualStatistics(*c.job, 1, 3, 0);
  EXPECT_NEAR(c.job->reliability.pattern[1].Scor, std::sqrt(0.5), 1e-6);
  EXPECT_EQ(c.Lines(Unit::Sum, "x.sum"), (std::vector<std::string>{" => Scor: 0.7071"}));
  const std::vector<std::string> out = c.Lines(Unit::Out, "x.out");
  ASSERT_EQ(out.size(), 4u);
  EXPECT_EQ(out[0], "   Standard deviations have to be multiplied by: 0.7071");
  EXPECT_EQ(out[1], "   (correlated residuals) See references:");
}

TEST(CorrelatedResiduals, ComputedInThePassAfterConvergence) {
  ReliabilityCase c;
  c.SetPoints({{11, 0, 10, 1, kBragg}, {11, 0, 10, 1, kBragg}});
  c.job->run.NCY = 10;
  ResidualStatistics(*c.job, 1, 4, kConvergedEndMarker);
  EXPECT_NEAR(c.job->reliability.pattern[1].Scor, std::sqrt(0.5), 1e-6);
  EXPECT_EQ(c.Lines(Unit::Sum, "x.sum").size(), 1u);
}

TEST(CorrelatedResiduals, DividesByResidualOfBraggPointsOnly) {
  ReliabilityCase c;
  // The non-Bragg point adds 100 to the residual of all points, not to Scor's divisor.
  c.SetPoints({{11, 0, 10, 1, kBragg}, {11, 0, 10, 1, kBragg}, {20, 0, 10, 1, kNoReflection}});
  c.job->run.NCY = 1;
  ResidualStatistics(*c.job, 1, 1, 0);
  EXPECT_FLOAT_EQ(c.job->reliability.pattern[1].setB.sums.Residual, 2.0f);
  EXPECT_NEAR(c.job->reliability.pattern[1].Scor, std::sqrt(0.5), 1e-6);
}

}  // namespace
}  // namespace corvinet
