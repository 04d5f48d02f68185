// Tests of each profile code: formula, unit area, symmetry, FWHM, and the peak base.
#include "model/peak_shape.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "model/peak_shape_test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::OmegaAt;
using testing::Par;
using testing::PlainWidths;
using testing::PrepareShape;

constexpr float kH = 0.5f;

// A shape of one code with its test parameters, built through the job.
struct ShapeCase {
  std::string name;
  int code;
  double spacing = 0.0;  // side-peak spacing of code 5, degrees
};

class ProfileCodes : public ::testing::TestWithParam<ShapeCase> {
 protected:
  CapturedJob job;

  PeakShape Shape() {
    const ShapeCase& c = GetParam();
    auto& par = Par(*job);
    switch (c.code) {
      case 5:  // eta 0.45, side peaks at the case's spacing, weights 0.2 and 0.2
        par[17] = 0.45f;
        par[41] =
            static_cast<float>(c.spacing / (testing::TanTheta(testing::kTwoTheta) * 57.29578));
        par[15] = 0.2f;
        par[16] = 0.2f;
        break;
      case 6:  // eta = 0.05 + 0.01 * 32
        par[17] = 0.05f;
        par[15] = 0.01f;
        break;
      case 7:  // m = 1.3 + 100 * 0.32/32
        par[17] = 1.3f;
        par[15] = 0.32f;
        break;
      case 12:  // left eta 0.3, right eta 0.7
        par[17] = 0.3f;
        par[49] = 0.7f;
        break;
      default:
        break;
    }
    if (c.code == 8) return PrepareShape(*job, 8, testing::TchWidthsOf(0.3f, 0.25f));
    if (c.code == 12) return PrepareShape(*job, 12, testing::SplitWidthsOf(0.4f, 0.6f));
    return PrepareShape(*job, c.code, PlainWidths(kH));
  }
};

// Every shape: unit area.
class ProfileAreas : public ProfileCodes {};
// The shapes whose full width at half maximum is H (both half widths for code 12).
class ProfileWidths : public ProfileCodes {};
// The shapes symmetric about their position.
class ProfileSymmetry : public ProfileCodes {};

TEST_P(ProfileAreas, UnitAreaOverTheWholeLine) {
  const PeakShape s = Shape();
  const double tolerance = s.code == ProfileCode::kPearsonVII ? 1e-4 : 2e-6;
  EXPECT_NEAR(testing::AreaOverWholeLine(s, s.H), 1.0, tolerance);
}

TEST_P(ProfileAreas, UnitAreaOverAWideBase) {
  // The base of Wdt = 400 half widths leaves out less than 2e-3 of the slowest (Lorentzian) tails.
  const PeakShape s = Shape();
  const double reach = 400.0 * std::max(s.H, s.H2);
  const int n = 800000;
  double sum = 0.0;
  for (int i = 0; i < n; ++i) {
    const double delta = -reach + (i + 0.5) * (2.0 * reach / n);
    ProfilePoint p;
    if (PointInBase(s, s.position + static_cast<float>(delta), 400.0f, p)) {
      sum += ProfileValue(s, p);
    }
  }
  EXPECT_NEAR(sum * 2.0 * reach / n, 1.0, 2e-3);
}

TEST_P(ProfileSymmetry, SymmetricAboutThePosition) {
  const PeakShape s = Shape();
  for (int k = 1; k <= 200; k += 7) {
    const double delta = k / 64.0;
    EXPECT_FLOAT_EQ(static_cast<float>(OmegaAt(s, delta)), static_cast<float>(OmegaAt(s, -delta)))
        << delta;
  }
}

TEST_P(ProfileWidths, FullWidthAtHalfMaximumIsTheWidth) {
  const PeakShape s = Shape();
  const auto f = [&s](double d) { return OmegaAt(s, d); };
  const double right = testing::HalfMaximumDistance(f, 1.0, 5.0 * s.H);
  const double left = testing::HalfMaximumDistance(f, -1.0, 5.0 * s.H);
  if (s.code == ProfileCode::kSplitPseudoVoigt) {
    EXPECT_NEAR(left, 0.5 * s.H, 1e-5);
    EXPECT_NEAR(right, 0.5 * s.H2, 1e-5);
  } else {
    EXPECT_NEAR(left + right, s.H, 2e-5);
  }
}

const ShapeCase kGaussian{"Gaussian", 1};
const ShapeCase kLorentzian{"Lorentzian", 2};
const ShapeCase kModified1{"ModifiedLorentzian1", 3};
const ShapeCase kModified2{"ModifiedLorentzian2", 4};
const ShapeCase kTripled{"TripledPseudoVoigt", 5, 0.3};
const ShapeCase kTripledUnspaced{"TripledPseudoVoigtUnspaced", 5, 0.0};
const ShapeCase kPseudoVoigt{"PseudoVoigt", 6};
const ShapeCase kPearson{"PearsonVII", 7};
const ShapeCase kTch{"TchPseudoVoigt", 8};
const ShapeCase kSplit{"SplitPseudoVoigt", 12};

std::string CaseName(const ::testing::TestParamInfo<ShapeCase>& info) {
  return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(PeakShapes, ProfileAreas,
                         ::testing::Values(kGaussian, kLorentzian, kModified1, kModified2, kTripled,
                                           kTripledUnspaced, kPseudoVoigt, kPearson, kTch, kSplit),
                         CaseName);
INSTANTIATE_TEST_SUITE_P(PeakShapes, ProfileWidths,
                         ::testing::Values(kGaussian, kLorentzian, kModified1, kModified2,
                                           kTripledUnspaced, kPseudoVoigt, kPearson, kTch, kSplit),
                         CaseName);
INSTANTIATE_TEST_SUITE_P(PeakShapes, ProfileSymmetry,
                         ::testing::Values(kGaussian, kLorentzian, kModified1, kModified2, kTripled,
                                           kTripledUnspaced, kPseudoVoigt, kPearson, kTch),
                         CaseName);

// The formulas of the shapes, in double precision, at x2 = (delta/H)^2.
double Lorentz(double x2) {
  return 1.0 / (1.0 + 4.0 * x2);
}
double Gauss(double x2) {
  return std::exp(-2.772589 * x2);
}
double PseudoVoigtOf(double x2, double eta) {
  return eta * 0.6366197 * Lorentz(x2) + (1 - eta) * 0.9394373 * Gauss(x2);
}
double PseudoVoigtSlopeOf(double x2, double eta) {
  return 2.546479 * eta * Lorentz(x2) * Lorentz(x2) + 2.604673 * (1 - eta) * Gauss(x2);
}

constexpr double kDeltas[] = {0.0, 0.03125, -0.125, 0.25, -0.4375, 0.75, -1.5, 3.0};

TEST(ProfileValue, GaussianFormulaAndConstantSlope) {
  CapturedJob job;
  const PeakShape s = PrepareShape(*job, 1, PlainWidths(kH));
  for (double d : kDeltas) {
    ProfilePoint p;
    const double x2 = d * d / (kH * kH);
    EXPECT_NEAR(OmegaAt(s, d, &p), 0.9394373 / kH * Gauss(x2), 1e-6) << d;
    EXPECT_FLOAT_EQ(p.dOmega, 2.772589f);
  }
}

TEST(ProfileValue, LorentzianFormulaAndSlope) {
  CapturedJob job;
  const PeakShape s = PrepareShape(*job, 2, PlainWidths(kH));
  for (double d : kDeltas) {
    ProfilePoint p;
    const double x2 = d * d / (kH * kH);
    EXPECT_NEAR(OmegaAt(s, d, &p), 0.6366197 / kH * Lorentz(x2), 1e-6) << d;
    EXPECT_NEAR(p.dOmega, 4.0 * Lorentz(x2), 1e-6) << d;
  }
}

TEST(ProfileValue, ModifiedLorentziansFormulasAndSlopes) {
  CapturedJob job;
  const PeakShape s3 = PrepareShape(*job, 3, PlainWidths(kH));
  const PeakShape s4 = PrepareShape(*job, 4, PlainWidths(kH));
  for (double d : kDeltas) {
    const double x2 = d * d / (kH * kH);
    ProfilePoint p;
    const double t3 = 1.0 / (1.0 + 1.656854 * x2);
    EXPECT_NEAR(OmegaAt(s3, d, &p), 0.8194497 / kH * t3 * t3, 1e-6) << d;
    EXPECT_NEAR(p.dOmega, 3.313709 * t3, 1e-6) << d;
    const double t4 = 1.0 / (1.0 + 2.349604 * x2);
    EXPECT_NEAR(OmegaAt(s4, d, &p), 0.766421 / kH * std::pow(t4, 1.5), 1e-6) << d;
    EXPECT_NEAR(p.dOmega, 3.524406 * t4, 1e-6) << d;
  }
}

TEST(ProfileValue, PseudoVoigtFormulaAndSlopeRatio) {
  CapturedJob job;
  Par(*job)[17] = 0.25f;
  Par(*job)[15] = 0.005f;
  const PeakShape s = PrepareShape(*job, 6, PlainWidths(kH));
  const double eta = 0.25f + 0.005f * 32.0f;
  EXPECT_NEAR(s.eta, eta, 1e-7);
  for (double d : kDeltas) {
    const double x2 = d * d / (kH * kH);
    ProfilePoint p;
    EXPECT_NEAR(OmegaAt(s, d, &p), PseudoVoigtOf(x2, eta) / kH, 1e-6) << d;
    EXPECT_NEAR(p.dOmega, PseudoVoigtSlopeOf(x2, eta) / PseudoVoigtOf(x2, eta), 1e-5) << d;
  }
}

TEST(ProfileValue, PseudoVoigtEtaIsNotClampedAboveOne) {
  CapturedJob job;
  Par(*job)[17] = 1.4f;
  const PeakShape s = PrepareShape(*job, 6, PlainWidths(kH));
  EXPECT_FLOAT_EQ(s.eta, 1.4f);
  for (double d : kDeltas) {
    const double x2 = d * d / (kH * kH);
    const double expected = (1.4 * 0.6366197 * Lorentz(x2) - 0.4 * 0.9394373 * Gauss(x2)) / kH;
    EXPECT_NEAR(OmegaAt(s, d), expected, 1e-6) << d;
  }
  // The Gaussian share is negative: the peak is lower than its Lorentzian term alone.
  EXPECT_LT(OmegaAt(s, 0.0), 1.4 * 0.6366197 / kH);
  EXPECT_NEAR(testing::AreaOverWholeLine(s, kH), 1.0, 2e-6);
}

TEST(ProfileValue, PearsonFormulaWithTheGammaNormaliser) {
  CapturedJob job;
  Par(*job)[17] = 1.0f;
  Par(*job)[15] = 0.64f;    // + 100 * 0.64/32 = 2
  Par(*job)[16] = 0.1024f;  // + 10000 * 0.1024/1024 = 1
  const PeakShape s = PrepareShape(*job, 7, PlainWidths(kH));
  const double m = 4.0;
  EXPECT_NEAR(s.pearson.m, m, 1e-6);
  const double k = std::pow(2.0, 1.0 / m) - 1.0;
  const double c =
      2.0 * std::sqrt(k) * std::tgamma(m) / (std::sqrt(std::numbers::pi) * std::tgamma(m - 0.5));
  for (double d : kDeltas) {
    const double x2 = d * d / (kH * kH);
    ProfilePoint p;
    EXPECT_NEAR(OmegaAt(s, d, &p), c / kH * std::pow(1.0 + 4.0 * k * x2, -m), 2e-5) << d;
    EXPECT_NEAR(p.dOmega, m * 4.0 * k / (1.0 + 4.0 * k * x2), 1e-5) << d;
  }
}

TEST(ProfileValue, SplitPseudoVoigtFormulaWithCommonNormaliser) {
  CapturedJob job;
  Par(*job)[17] = 0.2f;
  Par(*job)[49] = 0.9f;
  const PeakShape s = PrepareShape(*job, 12, testing::SplitWidthsOf(0.4f, 0.7f));
  const double w = 0.25 * (0.4 * (2.128934 + 1.012659 * 0.2) + 0.7 * (2.128934 + 1.012659 * 0.9));
  for (double d : kDeltas) {
    const bool right = d > 0.0;
    const double h = right ? 0.7 : 0.4;
    const double eta = right ? 0.9 : 0.2;
    const double x2 = d * d / (h * h);
    const double v = eta * Lorentz(x2) + (1 - eta) * Gauss(x2);
    ProfilePoint p;
    EXPECT_NEAR(OmegaAt(s, d, &p), v / w, 1e-6) << d;
    EXPECT_NEAR(p.dOmega,
                (4 * eta * Lorentz(x2) * Lorentz(x2) + 2.772589 * (1 - eta) * Gauss(x2)) / v, 1e-5)
        << d;
    EXPECT_FLOAT_EQ(p.H, static_cast<float>(h));
  }
}

TEST(ProfileValue, SplitPseudoVoigtHeightIsContinuousAcrossThePosition) {
  // Both halves start from the mix 1 under the common normaliser, whatever
  // their mixings and widths: the height matches; the slope factor jumps.
  CapturedJob job;
  Par(*job)[17] = 0.1f;
  Par(*job)[49] = 0.8f;
  const PeakShape s = PrepareShape(*job, 12, testing::SplitWidthsOf(0.4f, 0.7f));
  ProfilePoint left;
  ProfilePoint right;
  const double below = OmegaAt(s, -1.0 / 65536.0, &left);
  const double above = OmegaAt(s, 1.0 / 65536.0, &right);
  EXPECT_NEAR(below, above, 1e-5 * above);
  EXPECT_NEAR(left.dOmega, 4 * 0.1 + 2.772589 * 0.9, 1e-3);
  EXPECT_NEAR(right.dOmega, 4 * 0.8 + 2.772589 * 0.2, 1e-3);
}

TEST(ProfileValue, SplitSlopeFactorIsContinuousOnlyWithEqualMixings) {
  CapturedJob job;
  Par(*job)[17] = 0.4f;
  Par(*job)[49] = 0.4f;
  const PeakShape s = PrepareShape(*job, 12, testing::SplitWidthsOf(0.4f, 0.7f));
  ProfilePoint left;
  ProfilePoint right;
  OmegaAt(s, -1.0 / 65536.0, &left);
  OmegaAt(s, 1.0 / 65536.0, &right);
  EXPECT_NEAR(left.dOmega, right.dOmega, 1e-5);
}

TEST(ProfileValue, SplitSlopeFactorKeepsItsFormerValueWhereTheMixVanishes) {
  CapturedJob job;
  Par(*job)[17] = 1.0f;  // pure Lorentzian on the left, which never falls below 1e-6 here
  Par(*job)[49] = 0.0f;  // pure Gaussian on the right, which does
  const PeakShape s = PrepareShape(*job, 12, testing::SplitWidthsOf(0.5f, 0.5f));
  ProfilePoint p;
  PointInBase(s, s.position - 0.25f, 100.0f, p);
  ProfileValue(s, p);
  const float former = p.dOmega;
  PointInBase(s, s.position + 2.5f, 100.0f, p);  // x2 = 25: exp(-69) < 1e-6
  const float value = ProfileValue(s, p);
  EXPECT_GT(value, 0.0f);
  EXPECT_EQ(p.dOmega, former);
}

TEST(ProfileValue, TripledPeakMixesThreePseudoVoigts) {
  CapturedJob job;
  Par(*job)[17] = 0.45f;
  Par(*job)[15] = 0.15f;  // w1
  Par(*job)[16] = 0.05f;  // Y
  Par(*job)[41] = 0.01f;  // Shp1
  Par(*job)[42] = 0.2f;   // Shp2
  const PeakShape s = PrepareShape(*job, 5, PlainWidths(kH));
  const double tn = testing::TanTheta(testing::kTwoTheta);
  const double dist = 0.01 * tn * 57.29578;
  const double w2 = 0.05 + 0.2 * tn;
  EXPECT_NEAR(s.D, dist, 1e-6);
  EXPECT_NEAR(s.w2, w2, 1e-6);
  for (double d : kDeltas) {
    const double x0 = d * d / (kH * kH);
    const double x1 = (d + dist) * (d + dist) / (kH * kH);
    const double x2 = (d - dist) * (d - dist) / (kH * kH);
    const double w0 = 1 - 0.15 - w2;
    const double mix = w0 * PseudoVoigtOf(x0, 0.45) + 0.15 * PseudoVoigtOf(x1, 0.45) +
                       w2 * PseudoVoigtOf(x2, 0.45);
    const double slope = w0 * PseudoVoigtSlopeOf(x0, 0.45) + 0.15 * PseudoVoigtSlopeOf(x1, 0.45) +
                         w2 * PseudoVoigtSlopeOf(x2, 0.45);
    ProfilePoint p;
    EXPECT_NEAR(OmegaAt(s, d, &p), mix / kH, 1e-6) << d;
    EXPECT_NEAR(p.dOmega, slope / mix, 1e-5) << d;
  }
}

TEST(ProfileValue, TripledPeakWithoutSpacingIsThePseudoVoigt) {
  CapturedJob job;
  Par(*job)[17] = 0.45f;
  Par(*job)[15] = 0.15f;
  Par(*job)[16] = 0.05f;
  Par(*job)[42] = 0.2f;
  Par(*job)[41] = 0.0f;  // Shp1 = 0: D = 0
  const PeakShape tripled = PrepareShape(*job, 5, PlainWidths(kH));
  EXPECT_EQ(tripled.D, 0.0f);
  Par(*job)[15] = 0.0f;  // the plain pseudo-Voigt of the same eta
  const PeakShape plain = PrepareShape(*job, 6, PlainWidths(kH));
  for (double d : kDeltas) {
    ProfilePoint a;
    ProfilePoint b;
    EXPECT_FLOAT_EQ(static_cast<float>(OmegaAt(tripled, d, &a)),
                    static_cast<float>(OmegaAt(plain, d, &b)));
    EXPECT_FLOAT_EQ(a.dOmega, b.dOmega);
  }
  const auto f = [&tripled](double d) { return OmegaAt(tripled, d); };
  EXPECT_NEAR(
      testing::HalfMaximumDistance(f, 1.0, 5.0) + testing::HalfMaximumDistance(f, -1.0, 5.0), kH,
      2e-5);
}

TEST(ProfileValue, TchPseudoVoigtUsesTheReflectionMixingAndWidth) {
  CapturedJob job;
  const PeakWidths w = testing::TchWidthsOf(0.2f, 0.15f);
  const PeakShape s = PrepareShape(*job, 8, w);
  EXPECT_EQ(s.eta, w.eta);
  EXPECT_EQ(s.H, w.H);
  for (double d : kDeltas) {
    const double x2 = d * d / (w.H * w.H);
    EXPECT_NEAR(OmegaAt(s, d), PseudoVoigtOf(x2, w.eta) / w.H, 1e-5) << d;
  }
}

TEST(ProfileBase, PointExactlyAtTheLimitIsInside) {
  CapturedJob job;
  const PeakShape s = PrepareShape(*job, 6, PlainWidths(0.25f));
  ProfilePoint p;
  EXPECT_TRUE(PointInBase(s, s.position + 1.0f, 4.0f, p));  // delta = Wdt * H exactly
  EXPECT_EQ(p.x2, 16.0f);
  EXPECT_TRUE(PointInBase(s, s.position - 1.0f, 4.0f, p));
  EXPECT_FALSE(PointInBase(s, s.position + 1.0f + 1.0f / 1024.0f, 4.0f, p));
}

TEST(ProfileBase, ZeroRangeLetsOnlyThePositionSeeThePeak) {
  CapturedJob job;
  const PeakShape s = PrepareShape(*job, 1, PlainWidths(0.25f));
  ProfilePoint p;
  EXPECT_TRUE(PointInBase(s, s.position, 0.0f, p));
  EXPECT_EQ(p.x2, 0.0f);
  EXPECT_FALSE(PointInBase(s, s.position + 1.0f / 4096.0f, 0.0f, p));
  EXPECT_FALSE(PointInBase(s, s.position - 1.0f / 4096.0f, 0.0f, p));
}

TEST(ProfileBase, SplitPeakUsesTheRightWidthOnTheRight) {
  CapturedJob job;
  const PeakShape s = PrepareShape(*job, 12, testing::SplitWidthsOf(0.25f, 0.5f));
  ProfilePoint p;
  EXPECT_TRUE(PointInBase(s, s.position + 2.0f, 4.0f, p));
  EXPECT_EQ(p.H, 0.5f);
  EXPECT_FALSE(PointInBase(s, s.position - 2.0f, 4.0f, p));
  EXPECT_EQ(p.H, 0.25f);
  EXPECT_TRUE(PointInBase(s, s.position, 4.0f, p));
  EXPECT_EQ(p.H, 0.25f);
}

}  // namespace
}  // namespace corvinet
