// Tests of the Thompson-Cox-Hastings widths against the published formulas, and slopes.
#include "model/tch_widths.h"

#include <gtest/gtest.h>

#include <cmath>

namespace corvinet {
namespace {

// Thompson, Cox and Hastings (1987): the fifth-root combination of the widths
// and the cubic in q = HL/H for the Lorentzian fraction, in double precision.
double PublishedH(double g, double l) {
  return std::pow(std::pow(g, 5) + 2.69269 * std::pow(g, 4) * l + 2.42843 * std::pow(g, 3) * l * l +
                      4.47163 * g * g * std::pow(l, 3) + 0.07842 * g * std::pow(l, 4) +
                      std::pow(l, 5),
                  0.2);
}

double PublishedEta(double g, double l) {
  const double q = l / PublishedH(g, l);
  return 1.36603 * q - 0.47719 * q * q + 0.11116 * q * q * q;
}

TchState Combine(float g, float l) {
  TchState s;
  s.HG = g;
  s.HL = l;
  TchWidths(TchMode::kWidths, s);
  return s;
}

struct WidthPair {
  float g;
  float l;
};
constexpr WidthPair kPairs[] = {{0.1f, 0.0f},  {0.1f, 0.02f}, {0.08f, 0.08f}, {0.05f, 0.2f},
                                {0.3f, 0.01f}, {0.01f, 0.4f}, {1.5f, 0.7f},   {0.0f, 0.25f}};

TEST(TchWidths, WidthAndMixingFollowThePublishedFormulas) {
  for (const WidthPair& w : kPairs) {
    const TchState s = Combine(w.g, w.l);
    const double h = PublishedH(w.g, w.l);
    EXPECT_NEAR(s.H, h, 2e-6 * h) << w.g << " " << w.l;
    EXPECT_NEAR(s.q, w.l / h, 2e-6) << w.g << " " << w.l;
    const double eta = std::max(PublishedEta(w.g, w.l), 1.0e-6);
    EXPECT_NEAR(s.eta, eta, 2e-6) << w.g << " " << w.l;
  }
}

TEST(TchWidths, PureLorentzianGivesEtaNearOne) {
  const TchState s = Combine(0.0f, 0.3f);
  EXPECT_FLOAT_EQ(s.H, 0.3f);
  EXPECT_NEAR(s.eta, 1.36603 - 0.47719 + 0.11116, 1e-6);
}

TEST(TchWidths, EtaAtOrBelowTheFloorBecomesTheFloor) {
  const TchState s = Combine(0.2f, 0.0f);
  EXPECT_EQ(s.eta, 1.0e-6f);
  const TchState negative = Combine(0.2f, -0.01f);
  EXPECT_EQ(negative.eta, 1.0e-6f);
}

TEST(TchWidths, NegativeSumGivesTheSmallWidth) {
  const TchState s = Combine(0.0f, -0.5f);
  EXPECT_EQ(s.H, 0.01f);
}

TEST(TchWidths, ZeroSumKeepsTheWidthHeldBefore) {
  TchState s;
  s.HG = 0.0f;
  s.HL = 0.0f;
  s.H = 0.123f;
  TchWidths(TchMode::kWidths, s);
  EXPECT_EQ(s.H, 0.123f);
  EXPECT_EQ(s.q, 0.0f);
}

TEST(TchWidths, ModeOneGivesTheSlopesOfThePublishedWidth) {
  for (const WidthPair& w : kPairs) {
    if (w.g == 0.0f || w.l == 0.0f) continue;
    TchState s = Combine(w.g, w.l);
    TchWidths(TchMode::kWidthSlopes, s);
    const double hStep = 1e-5;
    const double dG = (PublishedH(w.g + hStep, w.l) - PublishedH(w.g - hStep, w.l)) / (2 * hStep);
    const double dL = (PublishedH(w.g, w.l + hStep) - PublishedH(w.g, w.l - hStep)) / (2 * hStep);
    EXPECT_NEAR(s.dHdG, dG, 2e-5 * (1 + std::fabs(dG))) << w.g << " " << w.l;
    EXPECT_NEAR(s.dHdL, dL, 2e-5 * (1 + std::fabs(dL))) << w.g << " " << w.l;
  }
}

TEST(TchWidths, ModeTwoGivesTheSlopeOfTheMixingCubic) {
  for (double q : {0.0, 0.2, 0.5, 0.8, 1.0}) {
    TchState s;
    s.q = static_cast<float>(q);
    TchWidths(TchMode::kEtaSlope, s);
    const auto eta = [](double x) { return 1.36603 * x - 0.47719 * x * x + 0.11116 * x * x * x; };
    const double expected = (eta(q + 1e-6) - eta(q - 1e-6)) / 2e-6;
    EXPECT_NEAR(s.dEtaDq, expected, 1e-6) << q;
  }
}

TEST(TchWidths, ModesOneAndTwoLeaveTheWidthAlone) {
  TchState s = Combine(0.1f, 0.05f);
  const TchState before = s;
  TchWidths(TchMode::kWidthSlopes, s);
  TchWidths(TchMode::kEtaSlope, s);
  EXPECT_EQ(s.H, before.H);
  EXPECT_EQ(s.eta, before.eta);
  EXPECT_EQ(s.q, before.q);
}

TEST(TchWidths, ChainedMixingSlopesMatchDifferencesOfThePublishedMixing) {
  for (const WidthPair& w : kPairs) {
    if (w.g == 0.0f || w.l == 0.0f) continue;
    const TchSlopes d = TchWidthSlopes(Combine(w.g, w.l));
    const double hStep = 1e-5;
    const double dG =
        (PublishedEta(w.g + hStep, w.l) - PublishedEta(w.g - hStep, w.l)) / (2 * hStep);
    const double dL =
        (PublishedEta(w.g, w.l + hStep) - PublishedEta(w.g, w.l - hStep)) / (2 * hStep);
    EXPECT_NEAR(d.dEtadG, dG, 2e-4 * (1 + std::fabs(dG))) << w.g << " " << w.l;
    EXPECT_NEAR(d.dEtadL, dL, 2e-4 * (1 + std::fabs(dL))) << w.g << " " << w.l;
  }
}

}  // namespace
}  // namespace corvinet
