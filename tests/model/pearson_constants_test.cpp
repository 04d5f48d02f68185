// Tests of the Pearson VII constants against the Gamma function, and of the m limit.
#include "model/pearson_constants.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>

#include "model/peak_shape_test_support.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

// The area normaliser of (1 + 4(2^(1/m) - 1) x^2)^-m over x.
double GammaNormaliser(double m) {
  const double k = std::pow(2.0, 1.0 / m) - 1.0;
  return 2.0 * std::sqrt(k) * std::tgamma(m) / (std::sqrt(std::numbers::pi) * std::tgamma(m - 0.5));
}

double GammaRatio(double m) {
  return std::tgamma(m) / std::tgamma(m - 0.5);
}

// ln of the shape at x2 with H = 1, from the Gamma functions.
double LogShape(double m, double x2) {
  const double k = std::pow(2.0, 1.0 / m) - 1.0;
  return std::log(GammaNormaliser(m)) - m * std::log1p(4.0 * k * x2);
}

TEST(PearsonConstants, FirstTableValueIsTheGammaRatioAtZeroPointSix) {
  EXPECT_NEAR(PearsonGammaRatio(0.6f).A, 0.156535, 1e-6);
}

TEST(PearsonConstants, RatioOnTheTableNodesMatchesTheGammaFunction) {
  for (int j = 0; j <= 50; ++j) {
    const float m = 0.6f + 0.02f * static_cast<float>(j);
    const double expected = GammaRatio(m);
    EXPECT_NEAR(PearsonGammaRatio(m).A, expected, 2e-6 * expected) << m;
  }
}

// The error bound of a linear reading between nodes 0.02 apart: h^2/8 times
// the largest second derivative of f over the interval, by differences.
double LinearReadingBound(const std::function<double(double)>& f, double m) {
  const double h = 0.02;
  const double lo = 0.6 + h * std::floor((m - 0.6) / h);
  double most = 0.0;
  for (int i = 0; i <= 20; ++i) {
    const double t = lo + h * i / 20.0;
    const double e = 1e-4;
    most = std::max(most, std::fabs((f(t + e) - 2 * f(t) + f(t - e)) / (e * e)));
  }
  return h * h / 8.0 * most;
}

// The reduced exponent whose tables serve m, and the product of the
// recurrence factors that carry A from there to m.
double ReductionFactor(double m) {
  if (m <= 1.6) return 1.0;
  const int steps = static_cast<int>(std::floor(m - 0.6));
  double factor = 1.0;
  for (double t = m - steps; t < m - 0.5; t += 1.0) factor *= t / (t - 0.5);
  return factor;
}

double ReducedExponent(double m) {
  return m <= 1.6 ? m : m - std::floor(m - 0.6);
}

TEST(PearsonConstants, NormaliserMatchesTheGammaFormulaInsideTheTables) {
  for (float m = 0.6f; m <= 1.6f; m += 0.0137f) {
    const PearsonShape s = PearsonConstants(m);
    const double expected = GammaNormaliser(m);
    const double k = std::pow(2.0, 1.0 / m) - 1.0;
    const double bound = 2.0 * std::sqrt(k / std::numbers::pi) * LinearReadingBound(GammaRatio, m);
    EXPECT_NEAR(s.C, expected, bound + 2e-6 * expected) << m;
    EXPECT_LT(std::fabs(s.C - expected), 1e-3 * expected) << m;
  }
}

TEST(PearsonConstants, NormaliserMatchesTheGammaFormulaAboveTheTables) {
  for (float m : {1.61f, 1.99f, 2.0f, 2.37f, 3.5f, 5.01f, 10.3f, 25.0f}) {
    const PearsonShape s = PearsonConstants(m);
    const double expected = GammaNormaliser(m);
    const double k = std::pow(2.0, 1.0 / m) - 1.0;
    const double reduced = ReducedExponent(m);
    const double bound = 2.0 * std::sqrt(k / std::numbers::pi) * ReductionFactor(m) *
                         LinearReadingBound(GammaRatio, reduced);
    EXPECT_NEAR(s.C, expected, bound + 1e-5 * expected) << m;
  }
}

TEST(PearsonConstants, RatioSlopeMatchesDifferencesOfTheGammaRatio) {
  const auto slope = [](double m) { return (GammaRatio(m + 1e-6) - GammaRatio(m - 1e-6)) / 2e-6; };
  for (float m : {0.6f, 0.73f, 1.0f, 1.31f, 1.6f}) {
    const double expected = slope(m);
    const double bound = LinearReadingBound(slope, m);
    EXPECT_NEAR(PearsonGammaRatio(m).B, expected, bound + 1e-5 * (1 + std::fabs(expected))) << m;
  }
  // Above the tables the product rule carries the slope, and the reading
  // error of A enters it too: a looser check.
  for (float m : {2.2f, 4.45f, 9.9f}) {
    const double expected = slope(m);
    EXPECT_NEAR(PearsonGammaRatio(m).B, expected, 1e-2 * (1 + std::fabs(expected))) << m;
  }
}

TEST(PearsonConstants, StoredTermsOfTheExponent) {
  const PearsonShape s = PearsonConstants(1.7f);
  const double k = std::pow(2.0, 1.0 / 1.7) - 1.0;
  EXPECT_NEAR(s.k, k, 1e-6);
  EXPECT_NEAR(s.sqrtK, std::sqrt(k), 1e-6);
  EXPECT_NEAR(s.k4, 4 * k, 4e-6);
  EXPECT_NEAR(s.invM, 1 / 1.7, 1e-7);
  EXPECT_NEAR(s.dkdm, -std::log(2.0) * std::pow(2.0, 1 / 1.7) / (1.7 * 1.7), 1e-6);
}

TEST(PearsonConstants, ExponentSlopeMatchesDifferencesOfTheGammaShape) {
  for (float m : {0.65f, 1.0f, 1.45f, 2.8f, 7.0f}) {
    const PearsonShape s = PearsonConstants(m);
    for (double x2 : {0.0, 0.04, 0.25, 1.0, 9.0}) {
      const double h = 1e-4;
      const double expected = (LogShape(m + h, x2) - LogShape(m - h, x2)) / (2 * h);
      EXPECT_NEAR(PearsonExponentSlope(s, static_cast<float>(x2)), expected,
                  2e-3 * (1 + std::fabs(expected)))
          << "m " << m << " x2 " << x2;
    }
  }
}

TEST(PearsonConstants, ExponentZeroPointSixIsAccepted) {
  const PearsonShape s = PearsonConstants(0.6f);
  EXPECT_EQ(s.m, 0.6f);
}

TEST(PearsonConstants, ExponentZeroPointFiveNineStopsTheRun) {
  CapturedJob job;
  EXPECT_THROW(testing::ThroughPeakStop(*job, [] { return PearsonConstants(0.59f); }), ProcessStop);
  EXPECT_EQ(job.Console(),
            " => Unacceptable M value in calculating Pearson VII function2     0.59000\n"
            "=== Stop/Warning Box ===\n"
            " Pearson VII M-value unacceptable!\n");
}

TEST(PearsonConstants, AnExponentBelowZeroPointSixThrowsItsErrorWithTheExponent) {
  try {
    PearsonConstants(0.59f);
    FAIL() << "m = 0.59 was accepted";
  } catch (const PeakError& error) {
    EXPECT_EQ(error.failure, PeakFailure::PearsonExponent);
    EXPECT_EQ(error.value, 0.59f);
  }
  EXPECT_THROW(PearsonConstants(std::nanf("")), PeakError);
}

TEST(PearsonConstants, RefusalIsWrittenOnTheReport) {
  testing::ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(
      OpenUnit(job->files.units[Unit::Out], (dir.path / "x.out").string(), OpenStatus::Unknown));
  EXPECT_THROW(testing::ThroughPeakStop(*job, [] { return PearsonConstants(-2.0f); }), ProcessStop);
  CloseUnit(job->files.units[Unit::Out]);
  EXPECT_EQ(dir.Read("x.out"),
            " => Unacceptable M value in calculating Pearson VII function2    -2.00000\n");
}

}  // namespace
}  // namespace corvinet
