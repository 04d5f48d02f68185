// Tests of the cubic spline: cubics and lines reproduced, bracket search, stop on a zero interval.
#include "observations/spline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

double Cubic(double x) {
  return 0.5 * x * x * x - 2.0 * x * x + x + 3.0;
}
double CubicSlope(double x) {
  return 1.5 * x * x - 4.0 * x + 1.0;
}

const std::vector<float> kX = {0.0f, 0.7f, 1.5f, 2.0f, 3.1f, 4.0f};

TEST(Spline, WithTheEndSlopesOfACubicItReproducesTheCubic) {
  CapturedJob job;
  std::vector<float> y;
  for (float x : kX) y.push_back(static_cast<float>(Cubic(x)));
  std::vector<float> y2(kX.size());
  const int n = static_cast<int>(kX.size());
  SplineSetup(kX, y, n, static_cast<float>(CubicSlope(0.0)), static_cast<float>(CubicSlope(4.0)),
              y2);
  // The second derivative of the cubic is 3x - 4.
  for (int i = 0; i < n; ++i) EXPECT_NEAR(y2[i], 3.0 * kX[i] - 4.0, 2e-4) << i;
  for (double t = 0.0; t <= 4.0; t += 0.05) {
    EXPECT_NEAR(SplineValue(*job, kX, y, y2, n, static_cast<float>(t)), Cubic(t), 1e-5 * 8.0)
        << "t " << t;
  }
}

TEST(Spline, NaturalEndsReproduceAStraightLine) {
  CapturedJob job;
  std::vector<float> y;
  for (float x : kX) y.push_back(2.5f * x - 7.0f);
  std::vector<float> y2(kX.size(), 99.0f);
  SplineSetup(kX, y, 6, kNaturalSplineEnd, 1.0e30f, y2);
  for (float v : y2) EXPECT_NEAR(v, 0.0f, 1e-5);
  EXPECT_NEAR(SplineValue(*job, kX, y, y2, 6, 2.6f), 2.5 * 2.6 - 7.0, 1e-5);
  // Outside the table the end interval's cubic is continued.
  EXPECT_NEAR(SplineValue(*job, kX, y, y2, 6, 5.0f), 2.5 * 5.0 - 7.0, 1e-4);
}

TEST(Spline, NaturalEndHasZeroSecondDerivativeAndAGivenSlopeIsKept) {
  CapturedJob job;
  const std::vector<float> y = {1.0f, 3.0f, 2.0f, 5.0f, 4.0f, 0.0f};
  std::vector<float> y2(6);
  SplineSetup(kX, y, 6, kNaturalSplineEnd, -2.0f, y2);
  EXPECT_EQ(y2[0], 0.0f);
  // Slope at the right end from the last interval's cubic:
  // (y6 - y5)/h + h (y2_5 + 2 y2_6)/6 with h = 0.9.
  const double h = 0.9;
  const double slope = (0.0 - 4.0) / h + h * (y2[4] + 2.0 * y2[5]) / 6.0;
  EXPECT_NEAR(slope, -2.0, 1e-4);
}

TEST(Spline, BracketIsFoundByBisectionAndClampedToTheEnds) {
  const std::vector<float> x = {1.0f, 2.0f, 4.0f, 8.0f, 16.0f};
  SplineBracket b = FindSplineBracket(x, 5, 5.0f);
  EXPECT_EQ(b.klo, 3);
  EXPECT_EQ(b.khi, 4);
  b = FindSplineBracket(x, 5, 0.0f);
  EXPECT_EQ(b.klo, 1);
  EXPECT_EQ(b.khi, 2);
  b = FindSplineBracket(x, 5, 99.0f);
  EXPECT_EQ(b.klo, 4);
  EXPECT_EQ(b.khi, 5);
  b = FindSplineBracket(x, 5, 4.0f);  // a position at a point starts its interval
  EXPECT_EQ(b.klo, 3);
}

TEST(Spline, IntervalOfZeroWidthStopsWithTheInterpolationMessage) {
  CapturedJob job;
  const std::vector<float> x = {3.0f, 3.0f};
  const std::vector<float> y = {1.0f, 2.0f};
  const std::vector<float> y2 = {0.0f, 0.0f};
  EXPECT_THROW(SplineValue(*job, x, y, y2, 2, 3.0f), ProcessStop);
  EXPECT_EQ(job.Console(), " => Problem with interpolation!, check your background points!\n");
}

}  // namespace
}  // namespace corvinet
