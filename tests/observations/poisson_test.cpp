// Tests of the Poisson deviates: moments of many draws in each regime, and the special cases.
#include "observations/poisson.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

struct Moments {
  double mean = 0.0;
  double variance = 0.0;
  bool integral = true;
  bool nonNegative = true;
};

Moments Draw(Job& job, float mean, int count) {
  double sum = 0.0;
  double sumSquares = 0.0;
  Moments m;
  for (int k = 0; k < count; ++k) {
    const double v = PoissonDeviate(job, mean);
    if (v != std::trunc(v)) m.integral = false;
    if (v < 0.0) m.nonNegative = false;
    sum += v;
    sumSquares += v * v;
  }
  m.mean = sum / count;
  m.variance = (sumSquares - sum * sum / count) / (count - 1);
  return m;
}

// With N draws of a Poisson variable of mean mu, the sample mean has a
// standard error sqrt(mu/N) and the sample variance one of about
// mu sqrt(2/N + 1/(mu N)). The bounds are five standard errors, plus the known
// offsets of the approximate forms: (sqrt(mu) + g/2)^2 - 0.33 has mean
// mu - 0.08 and variance mu + 1/8, and rounding adds 1/12 to the variance.
void CheckMoments(float mu, double meanOffset, double varianceOffset) {
  CapturedJob job;
  constexpr int kDraws = 200000;
  const Moments m = Draw(*job, mu, kDraws);
  const double n = kDraws;
  const double meanError = std::sqrt(mu / n);
  const double varianceError = mu * std::sqrt(2.0 / n + 1.0 / (mu * n));
  EXPECT_TRUE(m.integral) << mu;
  EXPECT_TRUE(m.nonNegative) << mu;
  EXPECT_NEAR(m.mean, mu + meanOffset, 5.0 * meanError) << "mean " << mu;
  EXPECT_NEAR(m.variance, mu + varianceOffset, 5.0 * varianceError) << "variance " << mu;
}

TEST(PoissonDeviate, MeanFiveByTheProductOfUniforms) {
  CheckMoments(5.0f, 0.0, 0.0);
}

TEST(PoissonDeviate, MeanFiftyByBoxMullerInTheStabilisedForm) {
  CheckMoments(50.0f, -0.08, 0.125 + 1.0 / 12.0);
}

TEST(PoissonDeviate, MeanTwoHundredByRatioOfUniformsInTheStabilisedForm) {
  CheckMoments(200.0f, -0.08, 0.125 + 1.0 / 12.0);
}

TEST(PoissonDeviate, MeanOneThousandByTheNormalForm) {
  CheckMoments(1000.0f, 0.0, 1.0 / 12.0);
}

TEST(PoissonDeviate, MeanZeroOrBelowGivesItsTruncation) {
  CapturedJob job;
  EXPECT_EQ(PoissonDeviate(*job, 0.0f), 0.0f);
  EXPECT_EQ(PoissonDeviate(*job, -2.7f), -2.0f);
  EXPECT_EQ(job->random.last, 0.0f);  // no deviate was drawn
}

TEST(PoissonDeviate, SmallMeanCountsTheFactorsAboveExpMinusMean) {
  // With the mean 1e-6 the first factor is already below exp(-mean) unless it
  // exceeds 0.999999: the count is 0 and one deviate is drawn.
  CapturedJob job;
  EXPECT_EQ(PoissonDeviate(*job, 1e-6f), 0.0f);
  EXPECT_NE(job->random.last, 0.0f);
}

TEST(PoissonDeviate, AMeanThatFitsNoMethodWritesTheErrorAndGivesZero) {
  CapturedJob job;
  EXPECT_EQ(PoissonDeviate(*job, std::numeric_limits<float>::quiet_NaN()), 0.0f);
  EXPECT_EQ(job.Console(), "Erreur GenPoi !!\n");
}

}  // namespace
}  // namespace corvinet
