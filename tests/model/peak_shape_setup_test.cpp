// Tests of the per-reflection shape constants, the slot slopes and the stops.
#include "model/peak_shape_setup.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "model/peak_shape_test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::Par;
using testing::PlainWidths;
using testing::PrepareShape;

constexpr double kPi = std::numbers::pi;

TEST(PeakShapeSetup, CorrectedPositionAddsZeroAndDisplacements) {
  Pattern pattern;
  pattern.GLB[1] = -0.03f;
  pattern.GLB[8] = 0.12f;
  pattern.GLB[9] = -0.07f;
  const double t = 71.3;
  const double expected =
      t - 0.03 + 0.12 * std::cos(0.5 * t * kPi / 180) - 0.07 * std::sin(t * kPi / 180);
  EXPECT_NEAR(CorrectedPosition(pattern, 71.3f), expected, 1e-5);
}

TEST(PeakShapeSetup, PseudoVoigtMixingGrowsWithTwoTheta) {
  CapturedJob job;
  Par(*job)[17] = 0.2f;
  Par(*job)[15] = 0.004f;
  const PeakShape s = PrepareShape(*job, 6, PlainWidths(0.1f), 75.0f);
  EXPECT_NEAR(s.eta, 0.2 + 0.004 * 75.0, 1e-6);
  EXPECT_NEAR(s.position, 75.0, 1e-6);
  EXPECT_EQ(s.H, 0.1f);
  EXPECT_EQ(s.invH, 1.0f / 0.1f);
}

TEST(PeakShapeSetup, SplitMixingsOfBothSides) {
  CapturedJob job;
  Par(*job)[17] = 0.2f;
  Par(*job)[15] = 0.004f;
  Par(*job)[49] = 0.5f;
  Par(*job)[50] = -0.002f;
  const PeakShape s = PrepareShape(*job, 12, testing::SplitWidthsOf(0.1f, 0.15f), 50.0f);
  EXPECT_NEAR(s.eta, 0.2 + 0.004 * 50.0, 1e-6);
  EXPECT_NEAR(s.eta2, 0.5 - 0.002 * 50.0, 1e-6);
  EXPECT_EQ(s.H, 0.1f);
  EXPECT_EQ(s.H2, 0.15f);
  const double w = 0.25 * (0.1 * (2.128934 + 1.012659 * 0.4) + 0.15 * (2.128934 + 1.012659 * 0.4));
  EXPECT_NEAR(s.splitInvW, 1.0 / w, 1e-5 / w);
}

TEST(PeakShapeSetup, PearsonExponentFromShapeAndAngleTerms) {
  CapturedJob job;
  Par(*job)[17] = 1.1f;
  Par(*job)[15] = 0.5f;
  Par(*job)[16] = 2.0f;
  const PeakShape s = PrepareShape(*job, 7, PlainWidths(0.1f), 40.0f);
  EXPECT_NEAR(s.pearson.m, 1.1 + 100 * 0.5 / 40 + 10000 * 2.0 / 1600, 1e-5);
}

TEST(PeakShapeSetup, PearsonExponentOfZeroPointSixIsAccepted) {
  CapturedJob job;
  Par(*job)[17] = 0.6f;
  const PeakShape s = PrepareShape(*job, 7, PlainWidths(0.1f), 40.0f);
  EXPECT_EQ(s.pearson.m, 0.6f);
}

TEST(PeakShapeSetup, PearsonExponentBelowZeroPointSixStopsTheRun) {
  CapturedJob job;
  Par(*job)[17] = 0.59f;
  EXPECT_THROW(PrepareShape(*job, 7, PlainWidths(0.1f), 40.0f), ProcessStop);
  EXPECT_NE(job.Console().find(" Pearson VII M-value unacceptable!"), std::string::npos);
}

TEST(PeakShapeSetup, TripledPeakSpacingAndWeights) {
  CapturedJob job;
  Par(*job)[17] = 0.6f;
  Par(*job)[15] = 0.1f;
  Par(*job)[16] = 0.05f;
  Par(*job)[41] = 0.002f;
  Par(*job)[42] = 0.03f;
  const PeakShape s = PrepareShape(*job, 5, PlainWidths(0.1f), 60.0f);
  const double tn = std::tan(30.0 * kPi / 180.0);
  EXPECT_EQ(s.eta, 0.6f);
  EXPECT_NEAR(s.D, 0.002 * tn * 57.29578, 1e-6);
  EXPECT_EQ(s.w1, 0.1f);
  EXPECT_NEAR(s.w2, 0.05 + 0.03 * tn, 1e-6);
}

TEST(PeakShapeSetup, TripledPeakWithoutShp1HasNoSpacing) {
  CapturedJob job;
  Par(*job)[41] = 0.0f;
  const PeakShape s = PrepareShape(*job, 5, PlainWidths(0.1f), 60.0f);
  EXPECT_EQ(s.D, 0.0f);
}

TEST(PeakShapeSetup, TchShapeKeepsTheReflectionWidthsAndMixing) {
  CapturedJob job;
  const PeakWidths w = testing::TchWidthsOf(0.12f, 0.05f);
  const PeakShape s = PrepareShape(*job, 8, w);
  EXPECT_EQ(s.H, w.H);
  EXPECT_EQ(s.eta, w.eta);
  EXPECT_GT(s.tch.dHdG, 0.0f);
  EXPECT_GT(s.tch.dHdL, 0.0f);
}

TEST(PeakShapeSetup, NumericalShapeReadsTheJobTable) {
  CapturedJob job;
  const PeakShape s = PrepareShape(*job, 9, PlainWidths(0.1f));
  EXPECT_EQ(s.numerical, &job->numericalProfile);
}

TEST(PeakShapeSetup, CodesOfOtherModulesAreAccepted) {
  CapturedJob job;
  for (int code : {10, 11, 13}) {
    const PeakShape s = PrepareShape(*job, code, PlainWidths(0.1f));
    EXPECT_EQ(s.code, ProfileCodeOf(code));
    EXPECT_EQ(s.H, 0.1f);
  }
  EXPECT_EQ(job.Console(), "");
}

TEST(PeakShapeSetup, UnknownCodeThrowsItsErrorWithTheCode) {
  const testing::PeakCase c;
  for (int code : {0, 14, -1}) {
    try {
      c.Shape(code, PlainWidths(0.1f));
      FAIL() << code;
    } catch (const PeakError& error) {
      EXPECT_EQ(error.failure, PeakFailure::UnknownCode) << code;
      EXPECT_EQ(error.code, code);
    }
  }
}

TEST(PeakShapeSetup, PearsonExponentBelowTheLimitThrowsItsErrorWithTheExponent) {
  testing::PeakCase c;
  c.par[17] = 0.59f;
  try {
    c.Shape(7, PlainWidths(0.1f), 40.0f);
    FAIL() << "m = 0.59 was accepted";
  } catch (const PeakError& error) {
    EXPECT_EQ(error.failure, PeakFailure::PearsonExponent);
    EXPECT_EQ(error.value, 0.59f);
  }
}

TEST(PeakShapeSetup, UnknownCodeIsAnIllegalRequest) {
  for (int code : {0, 14, -1}) {
    CapturedJob job;
    EXPECT_THROW(PrepareShape(*job, code, PlainWidths(0.1f)), ProcessStop) << code;
    EXPECT_EQ(job.Console(), "=== Stop/Warning Box ===\n Illegal profile function request\n");
  }
}

TEST(PeakShapeSetup, ResolutionFileWithAnotherCodeStops) {
  CapturedJob job;
  job->patterns[2].IRESO = 1;
  EXPECT_THROW(RequireResolutionShape(*job, 2, ProfileCode::kPseudoVoigt), ProcessStop);
  EXPECT_EQ(job.Console(),
            " Illegal use of resolution function for pattern:   2\n"
            "=== Stop/Warning Box ===\n"
            " ===>>> Illegal use of resolution function!!\n"
            "=== Stop/Warning Box ===\n"
            "        NPROF must be equal to 7!\n");
}

TEST(PeakShapeSetup, ResolutionFileWithTheTchCodeOrWithoutFilePasses) {
  CapturedJob job;
  job->patterns[1].IRESO = 1;
  RequireResolutionShape(*job, 1, ProfileCode::kTchPseudoVoigt);
  job->patterns[1].IRESO = 0;
  RequireResolutionShape(*job, 1, ProfileCode::kPseudoVoigt);
  EXPECT_EQ(job.Console(), "");
}

// d ln(Omega)/d PAR[slot] at x by central differences through the whole
// preparation: widths (for code 8) and shape.
class SlotSlopes : public ::testing::Test {
 protected:
  CapturedJob job;
  static constexpr float kTwoTheta = 64.0f;

  double OmegaAtX(int code, float x) {
    PeakWidths w = PlainWidths(0.25f);
    if (code == 12) w = testing::SplitWidthsOf(0.25f, 0.375f);
    if (code == 8) {
      WidthInput in;
      in.code = ProfileCode::kTchPseudoVoigt;
      in.twoTheta = kTwoTheta;
      in.tanTheta = testing::TanTheta(kTwoTheta);
      const double c = std::cos(0.5 * kTwoTheta * kPi / 180.0);
      in.cos2Theta = static_cast<float>(c * c);
      w = PeakWidth(job->patterns[1], Par(*job), in);
    }
    const PeakShape s = PrepareShape(*job, code, w, kTwoTheta);
    ProfilePoint p;
    PointInBase(s, x, 1.0e18f, p);
    return ProfileValue(s, p);
  }

  // Slot 41 moves the side peaks by 36 degrees per unit: it takes a finer step.
  double Difference(int code, int slot, float x) {
    const float kept = Par(*job)[slot];
    const double h = slot == 41 ? 1.0 / 65536.0 : 1.0 / 4096.0;
    const auto g = [&](double step) {
      Par(*job)[slot] = kept + static_cast<float>(step);
      return OmegaAtX(code, x);
    };
    const double d = testing::LogDifference(g, h);
    Par(*job)[slot] = kept;
    return d;
  }

  ShapeSlotSlopes Analytic(int code, float x, PeakWidths w) {
    const PeakShape s = PrepareShape(*job, code, w, kTwoTheta);
    ProfilePoint p;
    ProfileSlopes d;
    PointInBase(s, x, 1.0e18f, p);
    ProfileValueWithSlopes(s, p, d);
    return ShapeParameterSlopes(s, d);
  }

  void Check(int code, PeakWidths w,
             const std::vector<std::pair<int, float ShapeSlotSlopes::*>>& slots) {
    for (double k : {-1.7, -0.6, -0.1, 0.3, 0.9, 2.1}) {
      const float x = kTwoTheta + static_cast<float>(k * 0.25);
      const ShapeSlotSlopes a = Analytic(code, x, w);
      for (const auto& [slot, member] : slots) {
        const double expected = Difference(code, slot, x);
        EXPECT_NEAR(a.*member, expected, testing::SlopeTolerance(expected))
            << "code " << code << " slot " << slot << " at " << k;
      }
    }
  }
};

TEST_F(SlotSlopes, PseudoVoigtShapeAndX) {
  Par(*job)[17] = 0.2f;
  Par(*job)[15] = 0.003f;
  Check(6, PlainWidths(0.25f), {{17, &ShapeSlotSlopes::Shape1}, {15, &ShapeSlotSlopes::X}});
}

TEST_F(SlotSlopes, PearsonShapeXAndY) {
  // The truth is the Gamma-function shape: differences through the tables
  // would see the slope of their linear reading, not that of the ratio.
  const float shape1 = 1.2f;
  const float x = 0.4f;
  const float y = 0.8f;
  Par(*job)[17] = shape1;
  Par(*job)[15] = x;
  Par(*job)[16] = y;
  const auto logShape = [](double s, double px, double py, double u) {
    const double t = kTwoTheta;
    const double m = s + 100.0 * px / t + 10000.0 * py / (t * t);
    const double k = std::pow(2.0, 1.0 / m) - 1.0;
    const double c = 2.0 * std::sqrt(k) * std::tgamma(m) / (std::sqrt(kPi) * std::tgamma(m - 0.5));
    return std::log(c / 0.25) - m * std::log1p(4.0 * k * u * u);
  };
  const double h = 1e-5;
  for (double u : {-1.7, -0.6, -0.1, 0.3, 0.9, 2.1}) {
    const float at = kTwoTheta + static_cast<float>(u * 0.25);
    const ShapeSlotSlopes a = Analytic(7, at, PlainWidths(0.25f));
    const double d = (at - kTwoTheta) / 0.25;
    const double dShape = (logShape(shape1 + h, x, y, d) - logShape(shape1 - h, x, y, d)) / (2 * h);
    const double dX = (logShape(shape1, x + h, y, d) - logShape(shape1, x - h, y, d)) / (2 * h);
    const double dY = (logShape(shape1, x, y + h, d) - logShape(shape1, x, y - h, d)) / (2 * h);
    EXPECT_NEAR(a.Shape1, dShape, 5e-3 * (1 + std::fabs(dShape))) << u;
    EXPECT_NEAR(a.X, dX, 5e-3 * (1 + std::fabs(dX))) << u;
    EXPECT_NEAR(a.Y, dY, 5e-3 * (1 + std::fabs(dY))) << u;
  }
}

TEST_F(SlotSlopes, TripledPeakAllFive) {
  Par(*job)[17] = 0.4f;
  Par(*job)[15] = 0.1f;
  Par(*job)[16] = 0.05f;
  Par(*job)[41] = 0.003f;
  Par(*job)[42] = 0.1f;
  Check(5, PlainWidths(0.25f),
        {{17, &ShapeSlotSlopes::Shape1},
         {15, &ShapeSlotSlopes::X},
         {16, &ShapeSlotSlopes::Y},
         {41, &ShapeSlotSlopes::Shp1},
         {42, &ShapeSlotSlopes::Shp2}});
}

TEST_F(SlotSlopes, SplitBothMixings) {
  Par(*job)[17] = 0.2f;
  Par(*job)[15] = 0.002f;
  Par(*job)[49] = 0.6f;
  Par(*job)[50] = -0.001f;
  Check(12, testing::SplitWidthsOf(0.25f, 0.375f),
        {{17, &ShapeSlotSlopes::Shape1},
         {15, &ShapeSlotSlopes::X},
         {49, &ShapeSlotSlopes::Etar},
         {50, &ShapeSlotSlopes::Xr}});
}

TEST_F(SlotSlopes, TchLorentzianWidthTerms) {
  Par(*job)[5] = 0.04f;   // W: HG = 0.2
  Par(*job)[15] = 0.05f;  // X
  Par(*job)[16] = 0.08f;  // Y
  WidthInput in;
  in.code = ProfileCode::kTchPseudoVoigt;
  in.twoTheta = kTwoTheta;
  in.tanTheta = testing::TanTheta(kTwoTheta);
  const double c = std::cos(0.5 * kTwoTheta * kPi / 180.0);
  in.cos2Theta = static_cast<float>(c * c);
  const PeakWidths w = PeakWidth(job->patterns[1], Par(*job), in);
  Check(8, w, {{15, &ShapeSlotSlopes::X}, {16, &ShapeSlotSlopes::Y}});
}

}  // namespace
}  // namespace corvinet
