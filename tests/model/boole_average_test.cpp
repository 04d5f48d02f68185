// Tests of the five-point asymmetric average: the rule, its limits, its area, its slopes.
#include "model/boole_average.h"

#include <gtest/gtest.h>

#include <cmath>

#include "model/peak_shape_test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::Par;
using testing::PlainWidths;
using testing::PrepareShape;

constexpr float kH = 0.25f;
constexpr float kEta = 0.375f;
constexpr float kTan2Theta = 0.8f;

double PseudoVoigtOf(double z) {
  const double x2 = z * z;
  return kEta * 0.6366197 / (1 + 4 * x2) + (1 - kEta) * 0.9394373 * std::exp(-2.772589 * x2);
}
double PseudoVoigtSlopeOf(double z) {
  const double x2 = z * z;
  const double l = 1 / (1 + 4 * x2);
  return 2.546479 * kEta * l * l + 2.604673 * (1 - kEta) * std::exp(-2.772589 * x2);
}

class BooleAverage : public ::testing::Test {
 protected:
  CapturedJob job;
  PeakShape Shape(float h = kH, float zero = 0.0f, float eta = kEta) {
    Par(*job)[17] = eta;
    job->patterns[1].GLB[1] = zero;
    return PrepareShape(*job, 6, PlainWidths(h));
  }
  static double At(const PeakShape& s, float x, float asy, float tan2Theta = kTan2Theta,
                   ProfilePoint* out = nullptr) {
    ProfilePoint p;
    PointInBase(s, x, 1.0e18f, p);
    const double v = BooleAverageProfile(s, asy, tan2Theta, p);
    if (out != nullptr) *out = p;
    return v;
  }
};

constexpr double kOffsets[] = {-0.9, -0.3, -0.07, 0.0, 0.12, 0.4, 1.1};

TEST_F(BooleAverage, WithoutAsymmetryItIsThePseudoVoigt) {
  const PeakShape s = Shape();
  for (double k : kOffsets) {
    const float x = s.position + static_cast<float>(k);
    ProfilePoint a;
    ProfilePoint b;
    PointInBase(s, x, 1.0e18f, b);
    const double plain = ProfileValue(s, b);
    EXPECT_NEAR(At(s, x, 0.0f, kTan2Theta, &a), plain, 1e-6 * plain) << k;
    EXPECT_NEAR(a.dOmega, b.dOmega, 1e-5 * b.dOmega) << k;
  }
}

TEST_F(BooleAverage, HugeTangentLeavesThePseudoVoigt) {
  const PeakShape s = Shape();
  ProfilePoint b;
  const float x = s.position + 0.1f;
  PointInBase(s, x, 1.0e18f, b);
  const double plain = ProfileValue(s, b);
  EXPECT_NEAR(At(s, x, 0.05f, 1.0e38f), plain, 1e-6 * plain);
}

TEST_F(BooleAverage, FivePointRuleWithBooleWeights) {
  const PeakShape s = Shape();
  const double b = 0.02 / (kH * kTan2Theta);
  for (double k : kOffsets) {
    ProfilePoint p;
    const double value = At(s, s.position + static_cast<float>(k), 0.02f, kTan2Theta, &p);
    const double a = p.delta / kH;
    double sum = 0;
    double slope = 0;
    const double offset[] = {0, 1.0 / 16, 0.25, 9.0 / 16, 1};
    const double weight[] = {7, 32, 12, 32, 7};
    for (int i = 0; i < 5; ++i) {
      sum += weight[i] * PseudoVoigtOf(a + offset[i] * b);
      slope += weight[i] * PseudoVoigtSlopeOf(a + offset[i] * b);
    }
    EXPECT_NEAR(value, sum / 90 / kH, 2e-6 * value) << k;
    EXPECT_NEAR(p.dOmega, slope / sum, 1e-4 * (1 + slope / sum)) << k;
  }
}

TEST_F(BooleAverage, RuleApproximatesTheMeanOverTheSquareRootVariable) {
  // The mean of pV(a + b t^2) over t in 0..1, by a fine midpoint rule.
  const PeakShape s = Shape();
  const double b = 0.01 / (kH * kTan2Theta);
  for (double k : kOffsets) {
    const double a = k / kH;
    const int n = 20000;
    double mean = 0;
    for (int i = 0; i < n; ++i) {
      const double t = (i + 0.5) / n;
      mean += PseudoVoigtOf(a + b * t * t);
    }
    mean /= n;
    EXPECT_NEAR(At(s, s.position + static_cast<float>(k), 0.01f), mean / kH, 2e-3 * mean / kH) << k;
  }
}

TEST_F(BooleAverage, AverageKeepsUnitArea) {
  const PeakShape s = Shape();
  const auto f = [&](double d) { return At(s, s.position + static_cast<float>(d), 0.03f); };
  EXPECT_NEAR(testing::WholeLineIntegral(f, kH, 200000), 1.0, 1e-5);
}

TEST_F(BooleAverage, AverageLeansTowardLowAnglesForPositiveAsymmetry) {
  // The nodes lie at a + b t^2, so the peak of the average lies at negative delta.
  const PeakShape s = Shape();
  const double left = At(s, s.position - 0.02f, 0.05f);
  const double right = At(s, s.position + 0.02f, 0.05f);
  EXPECT_GT(left, right);
}

TEST_F(BooleAverage, AsymmetrySlopeByTheOuterWeights) {
  // dOmega/dAsy1 = -(2 z2 dpV2 + 3 z3 dpV3 + 18 z4 dpV4 + 7 z5 dpV5)/(45 H) / (H tan2theta).
  const PeakShape s = Shape();
  const double asy = 0.02;
  const double b = asy / (kH * kTan2Theta);
  for (double k : kOffsets) {
    ProfilePoint p;
    ProfileSlopes d;
    PointInBase(s, s.position + static_cast<float>(k), 1.0e18f, p);
    const double a = p.delta / kH;
    const double z[] = {a + b / 16, a + b / 4, a + 9 * b / 16, a + b};
    const double w[] = {2, 3, 18, 7};
    double sum = 0;
    for (int i = 0; i < 4; ++i) sum += w[i] * z[i] * PseudoVoigtSlopeOf(z[i]);
    const double expected = -sum / (45 * kH) / (kH * kTan2Theta);
    const double omega =
        BooleAverageProfileWithSlopes(s, static_cast<float>(asy), kTan2Theta, p, d);
    EXPECT_NEAR(d.asymmetry * omega, expected, 1e-4 * (1 + std::fabs(expected))) << k;
  }
}

TEST_F(BooleAverage, SlopesMatchDifferences) {
  const float asy = 0.03f;
  const double h = 1.0 / 4096.0;
  const PeakShape base = Shape();
  for (double k : kOffsets) {
    const float x = base.position + static_cast<float>(k);
    ProfilePoint p;
    ProfileSlopes d;
    PointInBase(base, x, 1.0e18f, p);
    BooleAverageProfileWithSlopes(base, asy, kTan2Theta, p, d);
    const double position = testing::LogDifference(
        [&](double t) { return At(Shape(kH, static_cast<float>(t)), x, asy); }, h);
    const double width = testing::LogDifference(
        [&](double t) { return At(Shape(kH + static_cast<float>(t)), x, asy); }, h);
    const double eta = testing::LogDifference(
        [&](double t) { return At(Shape(kH, 0.0f, kEta + static_cast<float>(t)), x, asy); }, h);
    const double asymmetry = testing::LogDifference(
        [&](double t) { return At(base, x, asy + static_cast<float>(t)); }, h);
    EXPECT_NEAR(d.position, position, testing::SlopeTolerance(position)) << k;
    EXPECT_NEAR(d.width, width, testing::SlopeTolerance(width)) << k;
    EXPECT_NEAR(d.eta, eta, testing::SlopeTolerance(eta)) << k;
    EXPECT_NEAR(d.asymmetry, asymmetry, testing::SlopeTolerance(asymmetry)) << k;
  }
}

}  // namespace
}  // namespace corvinet
