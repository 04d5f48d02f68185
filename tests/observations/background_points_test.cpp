// Tests of the point backgrounds: straight lines, the natural spline, their height derivatives.
#include "observations/background_points.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "background_test_support.h"
#include "observations/background.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::CentralDifference;
using testing::DerivativesAt;
using testing::SetGrid;
using testing::SetTypedBackground;

constexpr float kPositions[6] = {12.0f, 25.0f, 40.0f, 58.0f, 75.0f, 96.0f};
constexpr float kHeights[6] = {310.0f, 220.0f, 180.0f, 205.0f, 160.0f, 140.0f};

void SetPointPattern(Pattern& p, int typed) {
  SetGrid(p, 5.0f, 0.5f, 201);  // 5 to 105: beyond both ends of the points
  SetTypedBackground(p, typed);
  const int n = typed < 0 ? -typed : typed;
  for (int k = 1; k <= n; ++k) {
    p.BackPos[k] = kPositions[k - 1];
    p.BackInt[k] = kHeights[k - 1];
  }
}

double LinearByHand(double x, int n) {
  int k = 0;  // 0-based left end of the segment, end segments continued
  while (k < n - 2 && kPositions[k + 1] <= x) ++k;
  const double x0 = kPositions[k];
  const double x1 = kPositions[k + 1];
  return kHeights[k] + (kHeights[k + 1] - kHeights[k]) * (x - x0) / (x1 - x0);
}

// Natural cubic spline: the second derivatives M solve, with M1 = Mn = 0,
// h(i-1) M(i-1) + 2(h(i-1) + h(i)) M(i) + h(i) M(i+1) = 6 (slope(i) - slope(i-1)),
// here by a dense Gaussian elimination with partial pivoting.
std::vector<double> NaturalSecondDerivatives(const std::vector<double>& x,
                                             const std::vector<double>& y) {
  const int n = static_cast<int>(x.size());
  std::vector<std::vector<double>> a(n, std::vector<double>(n + 1, 0.0));
  a[0][0] = 1.0;
  a[n - 1][n - 1] = 1.0;
  for (int i = 1; i < n - 1; ++i) {
    const double hl = x[i] - x[i - 1];
    const double hr = x[i + 1] - x[i];
    a[i][i - 1] = hl;
    a[i][i] = 2.0 * (hl + hr);
    a[i][i + 1] = hr;
    a[i][n] = 6.0 * ((y[i + 1] - y[i]) / hr - (y[i] - y[i - 1]) / hl);
  }
  for (int c = 0; c < n; ++c) {
    int pivot = c;
    for (int r = c + 1; r < n; ++r) {
      if (std::fabs(a[r][c]) > std::fabs(a[pivot][c])) pivot = r;
    }
    std::swap(a[c], a[pivot]);
    for (int r = 0; r < n; ++r) {
      if (r == c) continue;
      const double f = a[r][c] / a[c][c];
      for (int k = c; k <= n; ++k) a[r][k] -= f * a[c][k];
    }
  }
  std::vector<double> m(n);
  for (int i = 0; i < n; ++i) m[i] = a[i][n] / a[i][i];
  return m;
}

double SplineByHand(const std::vector<double>& x, const std::vector<double>& y,
                    const std::vector<double>& m, double t) {
  const int n = static_cast<int>(x.size());
  int k = 0;
  while (k < n - 2 && x[k + 1] <= t) ++k;
  const double h = x[k + 1] - x[k];
  const double l = x[k + 1] - t;
  const double r = t - x[k];
  return m[k] * l * l * l / (6.0 * h) + m[k + 1] * r * r * r / (6.0 * h) +
         (y[k] / h - m[k] * h / 6.0) * l + (y[k + 1] / h - m[k + 1] * h / 6.0) * r;
}

TEST(LinearBackground, FollowsStraightLinesBetweenThePoints) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetPointPattern(p, 6);
  FillBackground(*job, 1);
  for (int i = 1; i <= p.NPTS; i += 7) {
    EXPECT_NEAR(p.Backg[i], LinearByHand(p.X[i], 6), 1e-3) << "x " << p.X[i];
  }
  EXPECT_NEAR(p.Backg[41], 220.0, 1e-4);  // x = 25: the second point itself
}

TEST(LinearBackground, ContinuesTheEndSegmentsOutsideThePoints) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetPointPattern(p, 6);
  FillBackground(*job, 1);
  // x = 5 before 12: the line of (12, 310) and (25, 220).
  EXPECT_NEAR(p.Backg[1], 310.0 + (220.0 - 310.0) * (5.0 - 12.0) / 13.0, 1e-3);
  // x = 105 after 96: the line of (75, 160) and (96, 140).
  EXPECT_NEAR(p.Backg[201], 160.0 + (140.0 - 160.0) * (105.0 - 75.0) / 21.0, 1e-3);
}

TEST(LinearBackground, TwoPointsOrderedDownwardsStillGiveTheirStraightLine) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetGrid(p, 10.0f, 1.0f, 11);
  SetTypedBackground(p, 2);
  p.BackPos[1] = 20.0f;
  p.BackInt[1] = 100.0f;
  p.BackPos[2] = 10.0f;
  p.BackInt[2] = 50.0f;
  FillBackground(*job, 1);
  EXPECT_NEAR(p.Backg[5], 70.0, 1e-4);  // x = 14
}

TEST(LinearBackground, TwoPointsAtOnePositionStopWithTheInterpolationMessage) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetGrid(p, 10.0f, 1.0f, 11);
  SetTypedBackground(p, 2);
  p.BackPos[1] = 15.0f;
  p.BackInt[1] = 100.0f;
  p.BackPos[2] = 15.0f;
  p.BackInt[2] = 50.0f;
  EXPECT_THROW(FillBackground(*job, 1), ProcessStop);
  EXPECT_NE(job.Console().find(" => Problem with interpolation!, check your background points!"),
            std::string::npos);
}

TEST(LinearBackground, HeightDerivativesAreTheInterpolationWeights) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetPointPattern(p, 6);
  for (int k = 1; k <= 6; ++k) p.BackIntCode[k] = static_cast<float>(10 * (k + 2) + 1);
  FillBackground(*job, 1);
  const int i = 61;  // x = 35, between 25 and 40: weights 1/3 and 2/3
  const DerivativeVector d = DerivativesAt(p, i);
  EXPECT_NEAR(d[4], 1.0 / 3.0, 1e-6);
  EXPECT_NEAR(d[5], 2.0 / 3.0, 1e-6);
  for (int L : {3, 6, 7, 8}) EXPECT_EQ(d[L], 0.0f);
  for (int k = 1; k <= 6; ++k) {
    for (int j : {1, 61, 120, 201}) {
      const double fd = CentralDifference(*job, 1, j, &p.BackInt[k], 1.0f);
      EXPECT_NEAR(DerivativesAt(p, j)[k + 2], fd, 2e-4) << "height " << k << " point " << j;
    }
  }
}

TEST(SplineBackground, MatchesTheNaturalSplineSolvedDirectly) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetPointPattern(p, -6);
  FillBackground(*job, 1);
  const std::vector<double> x(kPositions, kPositions + 6);
  const std::vector<double> y(kHeights, kHeights + 6);
  const std::vector<double> m = NaturalSecondDerivatives(x, y);
  for (int i = 1; i <= p.NPTS; i += 5) {
    const double expected = SplineByHand(x, y, m, p.X[i]);
    EXPECT_NEAR(p.Backg[i], expected, 2e-5 * std::fabs(expected)) << "x " << p.X[i];
  }
}

TEST(SplineBackground, HeightDerivativesMatchCentralDifferences) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetPointPattern(p, -6);
  for (int k = 1; k <= 6; ++k) p.BackIntCode[k] = static_cast<float>(10 * k + 1);
  p.BackIntCode[4] = -10.0f * 4.0f - 2.0f;  // multiplier -2
  FillBackground(*job, 1);
  for (int i : {1, 30, 61, 100, 150, 201}) {
    const DerivativeVector d = DerivativesAt(p, i);
    for (int k = 1; k <= 6; ++k) {
      const double multiplier = k == 4 ? -2.0 : 1.0;
      const double fd = multiplier * CentralDifference(*job, 1, i, &p.BackInt[k], 1.0f);
      EXPECT_NEAR(d[k], fd, 3e-4 + 1e-4 * std::fabs(fd)) << "height " << k << " point " << i;
    }
  }
}

TEST(SplineBackground, UnrefinedHeightsAddNoDerivative) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetPointPattern(p, -6);
  FillBackground(*job, 1);
  EXPECT_EQ(p.backRefinedPoints, 0);
  const DerivativeVector d = DerivativesAt(p, 80);
  for (int L = 1; L <= DimensionLimits::kDefaultMSZ; ++L) ASSERT_EQ(d[L], 0.0f);
}

}  // namespace
}  // namespace corvinet
