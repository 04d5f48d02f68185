// Tests of the point asymmetry factor of low-angle peaks and of the tangent of 2θ it uses.
#include "model/asymmetry_factor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace corvinet {
namespace {

constexpr double kRad = std::numbers::pi / 180.0;

// The factor in double from its definition.
double ExpectedA(double delta, double h, double tn, double tn2, const AsymmetryParameters& a) {
  const double z = delta / h;
  const double fa = 2.0 * z * std::exp(-z * z);
  const double fb = (4.0 * z * z - 3.0) * fa;
  return 1.0 - ((a.Asy1 * fa + a.Asy2 * fb) / tn + (a.Asy3 * fa + a.Asy4 * fb) / tn2);
}

TEST(AsymmetryFactor, ValueAndRatiosAcrossThePeak) {
  const AsymmetryParameters asy{0.08f, 0.02f, -0.03f, 0.01f};
  const double tn = std::tan(9.0 * kRad);
  const double tn2 = std::tan(18.0 * kRad);
  for (double delta : {-0.3, -0.12, -0.05, 0.04, 0.1, 0.25}) {
    const double h = 0.11;
    const AsymmetryFactorTerms t =
        AsymmetryFactor(static_cast<float>(delta), static_cast<float>(h), static_cast<float>(tn),
                        static_cast<float>(tn2), asy);
    const double z = delta / h;
    const double fa = 2.0 * z * std::exp(-z * z);
    const double fb = (4.0 * z * z - 3.0) * fa;
    const double a = ExpectedA(delta, h, tn, tn2, asy);
    EXPECT_NEAR(t.A, a, 2e-6) << delta;
    EXPECT_NEAR(t.Fa, fa, 2e-6) << delta;
    EXPECT_NEAR(t.Fb, fb, 5e-6) << delta;
    EXPECT_NEAR(t.FaOverA, fa / a, 5e-6) << delta;
    EXPECT_NEAR(t.FbOverA, fb / a, 5e-6) << delta;
  }
}

TEST(AsymmetryFactor, OneAtThePeakPosition) {
  const AsymmetryParameters asy{0.2f, 0.1f, 0.05f, 0.02f};
  const AsymmetryFactorTerms t = AsymmetryFactor(0.0f, 0.1f, 0.2f, 0.4f, asy);
  EXPECT_EQ(t.A, 1.0f);
  EXPECT_EQ(t.FaOverA, 0.0f);
  EXPECT_EQ(t.FbOverA, 0.0f);
}

TEST(AsymmetryFactor, DeviationFromOneIsOddInTheDistance) {
  const AsymmetryParameters asy{0.1f, -0.04f, 0.02f, 0.03f};
  for (float delta : {0.03f, 0.09f, 0.2f}) {
    const float up = AsymmetryFactor(delta, 0.1f, 0.15f, 0.31f, asy).A;
    const float down = AsymmetryFactor(-delta, 0.1f, 0.15f, 0.31f, asy).A;
    EXPECT_NEAR(up - 1.0f, -(down - 1.0f), 1e-6) << delta;
  }
}

TEST(AsymmetryFactor, NonPositiveFactorIsRaisedToTheFloor) {
  const AsymmetryParameters asy{5.0f, 0.0f, 0.0f, 0.0f};
  const float tn = 0.1f;
  const float delta = 0.07f;
  const float h = 0.1f;
  ASSERT_LT(ExpectedA(delta, h, tn, 0.2, asy), 0.0);
  const AsymmetryFactorTerms t = AsymmetryFactor(delta, h, tn, 0.2f, asy);
  EXPECT_EQ(t.A, 1.0e-04f);
  const double z = 0.7;
  EXPECT_NEAR(t.FaOverA, 2.0 * z * std::exp(-z * z) / 1.0e-04, 0.5);
}

TEST(AsymmetryFactor, ExactlyZeroIsRaisedToTheFloor) {
  // With tanθ equal to Fa and Asy1 = 1 the bracket is Fa/Fa = 1 exactly.
  const float delta = 0.05f, h = 0.1f;
  const float z = delta / h;
  const float fa = 2.0f * z * std::exp(-z * z);
  const AsymmetryParameters asy{1.0f, 0.0f, 0.0f, 0.0f};
  const AsymmetryFactorTerms t = AsymmetryFactor(delta, h, fa, 0.5f, asy);
  EXPECT_EQ(t.A, 1.0e-04f);
}

// The rows of the point loop: d(ln A)/dAsy1 = -(Fa/A)/tanθ, d(ln A)/dAsy2 = -(Fb/A)/tanθ,
// d(ln A)/dAsy3 = -(Fa/A)/tan2θ, d(ln A)/dAsy4 = -(Fb/A)/tan2θ.
TEST(AsymmetryFactor, RatiosGiveTheSlopesOfTheFactor) {
  const AsymmetryParameters base{0.05f, 0.01f, 0.02f, -0.01f};
  const float tn = 0.12f, tn2 = 0.245f, delta = -0.06f, h = 0.09f;
  const AsymmetryFactorTerms t = AsymmetryFactor(delta, h, tn, tn2, base);
  const double step = 1e-3;
  auto slope = [&](float AsymmetryParameters::*member) {
    AsymmetryParameters up = base, down = base;
    up.*member += static_cast<float>(step);
    down.*member -= static_cast<float>(step);
    const double realStep = 0.5 * (static_cast<double>(up.*member) - down.*member);
    return (AsymmetryFactor(delta, h, tn, tn2, up).A - AsymmetryFactor(delta, h, tn, tn2, down).A) /
           (2.0 * realStep) / t.A;
  };
  EXPECT_NEAR(slope(&AsymmetryParameters::Asy1), -t.FaOverA / tn, 1e-3);
  EXPECT_NEAR(slope(&AsymmetryParameters::Asy2), -t.FbOverA / tn, 1e-3);
  EXPECT_NEAR(slope(&AsymmetryParameters::Asy3), -t.FaOverA / tn2, 1e-3);
  EXPECT_NEAR(slope(&AsymmetryParameters::Asy4), -t.FbOverA / tn2, 1e-3);
}

TEST(PointAsymmetry, OnlyModelZeroUsesTheFactor) {
  const AsymmetryParameters asy{0.1f, 0.02f, 0.0f, 0.0f};
  const AsymmetryFactorTerms zero = PointAsymmetry(0, 0.05f, 0.1f, 0.2f, 0.4f, asy);
  EXPECT_NE(zero.A, 1.0f);
  for (int iasym : {1, 2, -1}) {
    const AsymmetryFactorTerms t = PointAsymmetry(iasym, 0.05f, 0.1f, 0.2f, 0.4f, asy);
    EXPECT_EQ(t.A, 1.0f) << iasym;
    EXPECT_EQ(t.FaOverA, 0.0f) << iasym;
    EXPECT_EQ(t.FbOverA, 0.0f) << iasym;
  }
}

TEST(AsymmetryParametersOf, ReadsTheFourProfileSlots) {
  PhasePattern c;
  c.PAR[14] = 0.1f;
  c.PAR[35] = 0.2f;
  c.PAR[36] = 0.3f;
  c.PAR[37] = 0.4f;
  const AsymmetryParameters a = AsymmetryParametersOf(c);
  EXPECT_EQ(a.Asy1, 0.1f);
  EXPECT_EQ(a.Asy2, 0.2f);
  EXPECT_EQ(a.Asy3, 0.3f);
  EXPECT_EQ(a.Asy4, 0.4f);
}

// --- tan 2θ ------------------------------------------------------------------------

TEST(AsymmetryTan2Theta, TangentOfTwoThetaInRadians) {
  for (double tt : {5.0, 30.0, 60.0, 120.0}) {
    EXPECT_NEAR(AsymmetryTan2Theta(static_cast<float>(tt)), std::tan(tt * kRad),
                2e-6 * std::fabs(std::tan(tt * kRad)))
        << tt;
  }
}

TEST(AsymmetryTan2Theta, NinetyDegreesDoesNotTakeTheGuardValue) {
  // The guard compares radians with 90, so at a right angle the tangent of
  // the rounded angle comes out, large but far from 1.0E+38.
  const float t = AsymmetryTan2Theta(90.0f);
  EXPECT_TRUE(std::isfinite(t));
  EXPECT_GT(std::fabs(t), 1.0e5f);
  EXPECT_LT(std::fabs(t), 1.0e+30f);
}

TEST(AsymmetryTan2Theta, GuardValueOnlyWhereTheRadiansAreNinety) {
  const float twoTheta = 90.0f / 0.01745329f;  // about 5156.6
  EXPECT_EQ(AsymmetryTan2Theta(twoTheta), 1.0e+38f);
}

TEST(Tan2ThetaFromSquares, EqualsTheTangentOnBothSidesOfARightAngle) {
  for (double tt : {20.0, 70.0, 110.0, 150.0}) {
    const double theta = 0.5 * tt * kRad;
    const float s2 = static_cast<float>(std::sin(theta) * std::sin(theta));
    const float c2 = static_cast<float>(std::cos(theta) * std::cos(theta));
    EXPECT_NEAR(Tan2ThetaFromSquares(s2, c2), std::tan(tt * kRad),
                1e-5 * std::fabs(std::tan(tt * kRad)))
        << tt;
  }
}

}  // namespace
}  // namespace corvinet
