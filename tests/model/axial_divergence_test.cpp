// Tests of the axial-divergence profile: Gauss-Legendre rules, area, the pseudo-Voigt limit, the
// shift of the peak on each side of 90 degrees, the rule sizes, and the derivatives.
#include "model/axial_divergence.h"

#include <gtest/gtest.h>

#include <cmath>

namespace corvinet {
namespace {

TEST(GaussLegendre, SixPointRuleHasItsTabulatedNodesAndEveryHalfWeighsOne) {
  // Abramowitz and Stegun 25.4: n = 6.
  const double* x = GaussLegendreAbscissae(1);
  const double* w = GaussLegendreWeights(1);
  EXPECT_NEAR(x[0], 0.238619186083197, 1e-14);
  EXPECT_NEAR(x[1], 0.661209386466265, 1e-14);
  EXPECT_NEAR(x[2], 0.932469514203152, 1e-14);
  EXPECT_NEAR(w[0], 0.467913934572691, 1e-14);
  EXPECT_NEAR(w[2], 0.171324492379170, 1e-14);
  int stored = 0;
  for (int r = 1; r <= GaussLegendreRuleCount(); ++r) {
    const int half = GaussLegendreRuleSize(r) / 2;
    stored += half;
    double sum = 0.0, moment = 0.0;
    for (int k = 0; k < half; ++k) {
      sum += GaussLegendreWeights(r)[k];
      moment +=
          GaussLegendreWeights(r)[k] * GaussLegendreAbscissae(r)[k] * GaussLegendreAbscissae(r)[k];
    }
    EXPECT_NEAR(sum, 1.0, 1e-12) << r;
    EXPECT_NEAR(moment, 1.0 / 3.0, 1e-12) << r;  // the even x^2 on [0, 1]
  }
  EXPECT_EQ(stored, 1883);
}

double Area(double eta, double gamma, double SL, double DL, double t0) {
  double sum = 0.0;
  const double h = 0.0005;
  for (double t = t0 - 15.0; t <= t0 + 15.0; t += h) {
    sum += AxialDivergenceProfile(eta, gamma, SL, DL, t, t0).value * h;
  }
  return sum;
}

TEST(AxialDivergence, AreaIsThatOfThePseudoVoigt) {
  // Over +-15 degrees the Lorentzian tails of a 0.05 degree peak leave 0.002 * eta out.
  for (double t0 : {8.0, 30.0, 150.0}) {
    const double plain = Area(0.3, 0.05, 0.0, 0.0, t0);
    EXPECT_NEAR(Area(0.3, 0.05, 0.02, 0.015, t0), plain, 2e-4) << t0;
  }
}

TEST(AxialDivergence, ZeroRatiosGiveThePlainPseudoVoigt) {
  for (double t : {29.9, 30.0, 30.04}) {
    const AxialDivergenceValue v = AxialDivergenceProfile(0.4, 0.08, 0.0, 0.0, t, 30.0);
    const double u = (t - 30.0) / 0.08;
    const double pv =
        0.4 * 2.0 / (M_PI * 0.08) / (1 + 4 * u * u) +
        0.6 * 2.0 * std::sqrt(std::log(2.0) / M_PI) / 0.08 * std::exp(-4 * std::log(2.0) * u * u);
    EXPECT_NEAR(v.value, pv, 1e-9 * pv);
    EXPECT_EQ(v.dSL, 0.0);
    EXPECT_EQ(v.dDL, 0.0);
    EXPECT_EQ(v.nodes, 0);
  }
}

TEST(AxialDivergence, SmallRatiosTendToThePseudoVoigt) {
  const AxialDivergenceValue tiny = AxialDivergenceProfile(0.4, 0.08, 1e-6, 1e-6, 30.01, 30.0);
  const AxialDivergenceValue plain = AxialDivergenceProfile(0.4, 0.08, 0.0, 0.0, 30.01, 30.0);
  EXPECT_NEAR(tiny.value, plain.value, 1e-4 * plain.value);
}

double Centroid(double SL, double DL, double t0) {
  double sum = 0.0, moment = 0.0;
  for (double t = t0 - 3.0; t <= t0 + 3.0; t += 0.0005) {
    const double v = AxialDivergenceProfile(0.0, 0.05, SL, DL, t, t0).value;
    sum += v;
    moment += v * t;
  }
  return moment / sum;
}

TEST(AxialDivergence, PeakShiftsTowardsLowAngleBelowNinetyAndHighAngleAbove) {
  EXPECT_LT(Centroid(0.03, 0.02, 10.0), 10.0 - 0.005);
  EXPECT_LT(Centroid(0.03, 0.02, 40.0), 40.0);
  EXPECT_GT(Centroid(0.03, 0.02, 150.0), 150.0);
  EXPECT_GT(Centroid(0.03, 0.02, 170.0), 170.0);
}

TEST(AxialDivergence, NearNinetyDegreesEminStaysCloseAndTheRuleIsSmall) {
  const double eMin = AxialDivergenceMinimum(0.03, 0.02, 90.001);
  EXPECT_NEAR(eMin, 90.0, 0.01);
  EXPECT_EQ(AxialDivergenceProfile(0.3, 0.05, 0.03, 0.02, 90.0, 90.001).nodes, 6);
}

TEST(AxialDivergence, AtVeryLowAngleEminIsZero) {
  // sqrt(1 + (S_L + D_L)^2) cos(2theta0) > 1 when 2theta0 is tiny.
  EXPECT_EQ(AxialDivergenceMinimum(0.05, 0.05, 1.0), 0.0);
}

TEST(AxialDivergence, AboveNinetyTheMinimumCanBe180AndTheTailIsOnTheHighSide) {
  EXPECT_EQ(AxialDivergenceMinimum(0.05, 0.05, 179.5), 180.0);
  EXPECT_GT(AxialDivergenceMinimum(0.02, 0.01, 150.0), 150.0);
}

TEST(AxialDivergence, LongTailsUseTheThousandNodeRuleAndNoMore) {
  // 2theta0 - Emin of several degrees: k = 400 x extent far above 1000.
  const AxialDivergenceValue v = AxialDivergenceProfile(0.3, 0.05, 0.1, 0.1, 4.0, 5.0);
  EXPECT_EQ(v.nodes, 1000);
  EXPECT_TRUE(std::isfinite(v.value));
}

TEST(AxialDivergence, DerivativesMatchCentralDifferences) {
  const double eta = 0.35, gamma = 0.06, SL = 0.025, DL = 0.015, t0 = 12.0;
  for (double t : {11.7, 11.9, 11.97, 12.0, 12.03}) {
    const AxialDivergenceValue v = AxialDivergenceProfile(eta, gamma, SL, DL, t, t0);
    auto f = [&](double e, double g, double s, double d, double x) {
      return AxialDivergenceProfile(e, g, s, d, x, t0).value;
    };
    const double scale = AxialDivergenceProfile(eta, gamma, SL, DL, 11.98, t0).value;
    auto near = [&](double analytic, double numeric, const char* what) {
      EXPECT_NEAR(analytic, numeric, 2e-3 * std::fabs(numeric) + 1e-4 * scale) << what << " " << t;
    };
    const double h = 1e-5;
    near(v.dTwoTheta, (f(eta, gamma, SL, DL, t + h) - f(eta, gamma, SL, DL, t - h)) / (2 * h),
         "2theta");
    near(v.dGamma, (f(eta, gamma + h, SL, DL, t) - f(eta, gamma - h, SL, DL, t)) / (2 * h),
         "Gamma");
    near(v.dEta, (f(eta + 1e-4, gamma, SL, DL, t) - f(eta - 1e-4, gamma, SL, DL, t)) / 2e-4, "eta");
    near(v.dSL, (f(eta, gamma, SL + 1e-6, DL, t) - f(eta, gamma, SL - 1e-6, DL, t)) / 2e-6, "S_L");
    near(v.dDL, (f(eta, gamma, SL, DL + 1e-6, t) - f(eta, gamma, SL, DL - 1e-6, t)) / 2e-6, "D_L");
  }
}

// The weight function reads S_L + D_L, |S_L - D_L| and the smaller ratio: the
// profile is the same with the two exchanged, so a pattern fixes only the pair.
TEST(AxialDivergence, ExchangingSLAndDLLeavesTheProfileUnchanged) {
  for (double x : {17.9, 18.1, 18.2, 18.3, 18.34, 18.4}) {
    const AxialDivergenceValue a = AxialDivergenceProfile(0.3, 0.02, 0.03, 0.02, x, 18.35);
    const AxialDivergenceValue b = AxialDivergenceProfile(0.3, 0.02, 0.02, 0.03, x, 18.35);
    EXPECT_NEAR(a.value, b.value, 1e-12 * std::fabs(a.value) + 1e-15) << x;
    EXPECT_NEAR(a.dSL, b.dDL, 1e-9 * std::fabs(a.dSL) + 1e-12) << x;
  }
}

}  // namespace
}  // namespace corvinet
