// Tests of the polynomial and Debye-like backgrounds against closed forms and differences.
#include "observations/background_terms.h"

#include <gtest/gtest.h>

#include <cmath>

#include "background_test_support.h"
#include "observations/background.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::CentralDifference;
using testing::DerivativesAt;
using testing::RefilledAt;
using testing::Refine;
using testing::SetGrid;
using testing::SetTypedBackground;

constexpr double kPi = 3.14159265358979323846;

// A 2theta pattern from 10 to 120 degrees with a polynomial around 60 degrees.
void SetPolynomialPattern(Pattern& p, int typed) {
  SetGrid(p, 10.0f, 0.5f, 221);
  SetTypedBackground(p, typed);
  p.Bkpos = 60.0f;
  const float b[12] = {120.0f, -35.0f, 14.0f, 6.5f, -3.0f, 1.25f,
                       0.8f,   -0.6f,  0.45f, 0.3f, -0.2f, 0.1f};
  for (int j = 0; j < 12; ++j) p.GLB[PolynomialSlot(j)] = b[j];
}

double PolynomialByHand(const Pattern& p, double x, int terms) {
  const double u = x / 60.0 - 1.0;
  double sum = 0.0;
  for (int j = 0; j < terms; ++j) sum += p.GLB[PolynomialSlot(j)] * std::pow(u, j);
  return sum;
}

TEST(PolynomialBackground, SlotsOfTheCoefficients) {
  EXPECT_EQ(PolynomialSlot(0), 2);
  EXPECT_EQ(PolynomialSlot(5), 7);
  EXPECT_EQ(PolynomialSlot(6), 30);
  EXPECT_EQ(PolynomialSlot(11), 35);
  EXPECT_EQ(DebyeAmplitudeSlot(1), 10);
  EXPECT_EQ(DebyeDistanceSlot(6), 21);
}

TEST(PolynomialBackground, SixTermsFollowThePowersOfXOverBkposMinusOne) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetPolynomialPattern(p, 0);
  FillBackground(*job, 1);
  for (int i : {1, 50, 101, 150, 221}) {
    const double expected = PolynomialByHand(p, p.X[i], 6);
    EXPECT_NEAR(p.Backg[i], expected, 2e-6 * std::fabs(expected) + 1e-4) << "point " << i;
  }
}

TEST(PolynomialBackground, TwelveTermsAddTheCoefficientsOfSlotsThirtyToThirtyFive) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetPolynomialPattern(p, -3);
  FillBackground(*job, 1);
  for (int i : {1, 77, 101, 190, 221}) {
    const double expected = PolynomialByHand(p, p.X[i], 12);
    EXPECT_NEAR(p.Backg[i], expected, 2e-6 * std::fabs(expected) + 1e-4) << "point " << i;
  }
  // The same slots have no effect in the six-term model.
  SetTypedBackground(p, 0);
  FillBackground(*job, 1);
  EXPECT_NEAR(p.Backg[221], PolynomialByHand(p, p.X[221], 6), 1e-3);
}

TEST(PolynomialBackground, DerivativesOfAllTwelveCoefficientsMatchCentralDifferences) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetPolynomialPattern(p, -3);
  for (int j = 0; j < 12; ++j) Refine(p, PolynomialSlot(j), j + 1);
  for (int i : {3, 101, 220}) {
    const DerivativeVector d = DerivativesAt(p, i);
    for (int j = 0; j < 12; ++j) {
      const double fd = CentralDifference(*job, 1, i, &p.GLB[PolynomialSlot(j)], 0.5f);
      EXPECT_NEAR(d[j + 1], fd, 1e-4 * std::fabs(fd) + 2e-4) << "point " << i << " B" << j;
    }
  }
}

TEST(PolynomialBackground, DerivativeOfBZeroIsOneAndOfBjIsTheJthPower) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetPolynomialPattern(p, 0);
  for (int j = 0; j < 6; ++j) Refine(p, PolynomialSlot(j), 10 + j);
  const int i = 181;  // x = 100, u = 2/3
  const DerivativeVector d = DerivativesAt(p, i);
  EXPECT_FLOAT_EQ(d[10], 1.0f);
  for (int j = 1; j < 6; ++j) EXPECT_NEAR(d[10 + j], std::pow(2.0 / 3.0, j), 1e-6) << j;
}

TEST(BackgroundDerivatives, CarryTheMultiplierAndTheCommonFactorAndAccumulate) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetPolynomialPattern(p, 0);
  Refine(p, PolynomialSlot(1), 4, -1.5f);
  Refine(p, PolynomialSlot(2), 4, 2.0f);  // two values that follow one parameter
  const int i = 181;
  const double u = 100.0 / 60.0 - 1.0;
  DerivativeVector d(DimensionLimits::kDefaultMSZ);
  d.Fill(1.0f);
  BackgroundDerivatives(p, i, 0.5f, d);
  EXPECT_NEAR(d[4], 1.0 + 0.5 * (-1.5 * u + 2.0 * u * u), 1e-6);
  for (int L = 1; L <= DimensionLimits::kDefaultMSZ; ++L) {
    if (L == 4) continue;
    ASSERT_EQ(d[L], 1.0f) << "parameter " << L;
  }
}

TEST(BackgroundDerivatives, UnrefinedParametersLeaveTheVectorUntouched) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetPolynomialPattern(p, -3);
  const DerivativeVector d = DerivativesAt(p, 50);
  for (int L = 1; L <= DimensionLimits::kDefaultMSZ; ++L) ASSERT_EQ(d[L], 0.0f) << L;
}

TEST(PolynomialBackground, ZeroOriginLeavesThePolynomialUndefined) {
  // The code divides by Bkpos: a zero origin has to be refused when it is read.
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetPolynomialPattern(p, 0);
  p.Bkpos = 0.0f;
  FillBackground(*job, 1);
  EXPECT_FALSE(std::isfinite(p.Backg[10]));
}

// Six Debye-like terms on a zero polynomial.
void SetDebyePattern(Pattern& p, int unit) {
  SetGrid(p, 5.0f, 0.25f, 400);
  SetTypedBackground(p, -1);
  p.Bkpos = 50.0f;
  p.IXUNIT = AbscissaUnitOf(unit);
  p.LAMBDA[1] = 1.5406f;
  p.Dtt1 = 5000.0f;
  const float amplitude[6] = {40.0f, -25.0f, 12.0f, 8.0f, -4.0f, 2.5f};
  const float distance[6] = {1.54f, 2.5f, 3.1f, 4.2f, 5.6f, 7.3f};
  for (int n = 1; n <= 6; ++n) {
    p.GLB[DebyeAmplitudeSlot(n)] = amplitude[n - 1];
    p.GLB[DebyeDistanceSlot(n)] = distance[n - 1];
  }
}

double ReciprocalByHand(const Pattern& p, double x) {
  switch (ControlNumber(p.IXUNIT)) {
    case 0:
      return 4.0 * kPi * std::sin(x * kPi / 360.0) / p.LAMBDA[1];
    case 1:
      return 2.0 * kPi * p.Dtt1 / x;
    case 2:
      return 2.0 * kPi * x / p.Dtt1;
    case 3:
      return x;
    default:
      return x / (4.0 * kPi);
  }
}

double DebyeByHand(const Pattern& p, double x) {
  const double u = ReciprocalByHand(p, x);
  double sum = 0.0;
  for (int n = 1; n <= 6; ++n) {
    const double q = u * p.GLB[DebyeDistanceSlot(n)];
    sum += p.GLB[DebyeAmplitudeSlot(n)] * std::sin(q) / q;
  }
  return sum;
}

TEST(DebyeBackground, TermsFollowSinXOverXInEveryAbscissaUnit) {
  for (int unit = 0; unit <= 4; ++unit) {
    CapturedJob job;
    Pattern& p = job->patterns[1];
    SetDebyePattern(p, unit);
    FillBackground(*job, 1);
    for (int i : {1, 60, 200, 399}) {
      const double expected = DebyeByHand(p, p.X[i]);
      EXPECT_NEAR(p.Backg[i], expected, 2e-5 * 90.0) << "unit " << unit << " point " << i;
    }
  }
}

TEST(DebyeBackground, AddsToThePolynomial) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetDebyePattern(p, 0);
  p.GLB[2] = 100.0f;
  p.GLB[3] = 10.0f;
  FillBackground(*job, 1);
  const int i = 200;
  const double u = p.X[i] / 50.0 - 1.0;
  EXPECT_NEAR(p.Backg[i], 100.0 + 10.0 * u + DebyeByHand(p, p.X[i]), 2e-3);
}

TEST(DebyeBackground, DerivativesOfAmplitudesAndDistancesMatchCentralDifferences) {
  for (int unit : {0, 1, 3}) {
    CapturedJob job;
    Pattern& p = job->patterns[1];
    SetDebyePattern(p, unit);
    for (int n = 1; n <= 6; ++n) {
      Refine(p, DebyeAmplitudeSlot(n), n);
      Refine(p, DebyeDistanceSlot(n), 6 + n);
    }
    for (int i : {40, 250}) {
      const DerivativeVector d = DerivativesAt(p, i);
      // A step of the distance that turns u R by 0.05 radian.
      const float h = static_cast<float>(0.05 / ReciprocalByHand(p, p.X[i]));
      for (int n = 1; n <= 6; ++n) {
        const double fa = CentralDifference(*job, 1, i, &p.GLB[DebyeAmplitudeSlot(n)], 0.5f);
        EXPECT_NEAR(d[n], fa, 1e-3 * std::fabs(fa) + 2e-4) << "unit " << unit << " A" << n;
        const double fr = CentralDifference(*job, 1, i, &p.GLB[DebyeDistanceSlot(n)], h);
        EXPECT_NEAR(d[6 + n], fr, 2e-2 * std::fabs(fr) + 2e-2)
            << "unit " << unit << " R" << n << " point " << i;
      }
    }
  }
}

TEST(DebyeBackground, DistanceDerivativeHasTheClosedForm) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetDebyePattern(p, 3);
  Refine(p, DebyeDistanceSlot(2), 1);
  const int i = 21;  // x = 10 = u
  const double r = 2.5;
  const double q = 10.0 * r;
  const double expected = -25.0 * (q * std::cos(q) - std::sin(q)) / (q * r);
  EXPECT_NEAR(DerivativesAt(p, i)[1], expected, 1e-5 * std::fabs(expected) + 1e-6);
}

TEST(DebyeBackground, PointWithZeroReciprocalValueHasNoDebyeTerm) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetDebyePattern(p, 0);
  SetGrid(p, 0.0f, 0.5f, 10);  // the first point at 2theta = 0: Q = 0
  p.GLB[2] = 33.0f;
  Refine(p, DebyeAmplitudeSlot(1), 1);
  Refine(p, DebyeDistanceSlot(1), 2);
  FillBackground(*job, 1);
  EXPECT_FLOAT_EQ(p.Backg[1], 33.0f);
  const DerivativeVector d = DerivativesAt(p, 1);
  EXPECT_EQ(d[1], 0.0f);
  EXPECT_EQ(d[2], 0.0f);
  EXPECT_NE(p.Backg[2], 33.0f);
}

TEST(DebyeBackground, ZeroDistanceTakesTheLimitOfSinXOverX) {
  // sin(x)/x is not defined at x = 0; the reader gives non-zero distances, and
  // the model keeps the background finite with the limit 1 should one reach 0.
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetDebyePattern(p, 3);
  for (int n = 2; n <= 6; ++n) p.GLB[DebyeAmplitudeSlot(n)] = 0.0f;
  p.GLB[DebyeDistanceSlot(1)] = 0.0f;
  Refine(p, DebyeAmplitudeSlot(1), 1);
  Refine(p, DebyeDistanceSlot(1), 2);
  FillBackground(*job, 1);
  EXPECT_FLOAT_EQ(p.Backg[100], 40.0f);
  const DerivativeVector d = DerivativesAt(p, 100);
  EXPECT_FLOAT_EQ(d[1], 1.0f);
  EXPECT_EQ(d[2], 0.0f);
}

TEST(DebyeBackground, DerivativesIncludeThoseOfThePolynomial) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetDebyePattern(p, 0);
  Refine(p, PolynomialSlot(0), 1);
  Refine(p, PolynomialSlot(1), 2);
  const int i = 181;  // x = 50 = Bkpos: u = 0
  const DerivativeVector d = DerivativesAt(p, i);
  EXPECT_FLOAT_EQ(d[1], 1.0f);
  EXPECT_FLOAT_EQ(d[2], 0.0f);
}

}  // namespace
}  // namespace corvinet
