// Tests of the width law: U, V, W, second wavelength, TCH and split widths, negative squares.
#include "model/peak_width.h"

#include <gtest/gtest.h>

#include <cmath>

#include "model/peak_shape_test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::Par;

// A reflection at 2theta with its trigonometric values, in double for the expected widths.
struct Angle {
  double twoTheta;
  double tn;
  double c2;
};

Angle AngleAt(double twoTheta) {
  const double theta = 0.5 * twoTheta * std::numbers::pi / 180.0;
  return {twoTheta, std::tan(theta), std::cos(theta) * std::cos(theta)};
}

WidthInput InputAt(int code, const Angle& a) {
  WidthInput in;
  in.code = ProfileCodeOf(code);
  in.phase = 1;
  in.twoTheta = static_cast<float>(a.twoTheta);
  in.tanTheta = static_cast<float>(a.tn);
  in.cos2Theta = static_cast<float>(a.c2);
  return in;
}

void SetUvw(Job& job, float u, float v, float w, float gauSiz) {
  Par(job)[3] = u;
  Par(job)[4] = v;
  Par(job)[5] = w;
  Par(job)[28] = gauSiz;
}

TEST(PeakWidth, CagliotiLawWithSizeTermStrainAndExtraWidth) {
  CapturedJob job;
  SetUvw(*job, 0.021f, -0.013f, 0.0072f, 0.0015f);
  const Angle a = AngleAt(47.3);
  WidthInput in = InputAt(6, a);
  in.deltaU = 0.004f;
  in.extraGaussian2 = 0.0009f;
  const PeakWidths w = PeakWidth(*job, 1, in);
  const double h2 = (0.025 * a.tn - 0.013) * a.tn + 0.0072 + 0.0015 / a.c2 + 0.0009;
  EXPECT_NEAR(w.H, std::sqrt(h2), 1e-6);
  EXPECT_EQ(w.HG, w.H);
  EXPECT_EQ(w.HL, 0.0f);
}

TEST(PeakWidth, SecondWavelengthUsesItsOwnParametersWhenThePatternReadsThem) {
  CapturedJob job;
  SetUvw(*job, 0.02f, -0.01f, 0.01f, 0.0f);
  Par(*job)[43] = 0.05f;
  Par(*job)[44] = -0.02f;
  Par(*job)[45] = 0.03f;
  const Angle a = AngleAt(60.0);
  WidthInput in = InputAt(6, a);
  in.wavelengthIndex = 2;
  const double own = std::sqrt((0.05 * a.tn - 0.02) * a.tn + 0.03);
  const double shared = std::sqrt((0.02 * a.tn - 0.01) * a.tn + 0.01);
  EXPECT_NEAR(PeakWidth(*job, 1, in).H, shared, 1e-6);
  job->patterns[1].separateUVW2 = true;
  EXPECT_NEAR(PeakWidth(*job, 1, in).H, own, 1e-6);
  in.wavelengthIndex = 1;
  EXPECT_NEAR(PeakWidth(*job, 1, in).H, shared, 1e-6);
}

TEST(PeakWidth, TchWidthsFromGaussianAndLorentzianLaws) {
  CapturedJob job;
  SetUvw(*job, 0.01f, -0.005f, 0.004f, 0.0f);
  Par(*job)[15] = 0.03f;  // X
  Par(*job)[16] = 0.02f;  // Y
  const Angle a = AngleAt(81.0);
  WidthInput in = InputAt(8, a);
  in.deltaY = 0.01f;
  in.extraLorentzian = 0.005f;
  const PeakWidths w = PeakWidth(*job, 1, in);
  const double hg = std::sqrt((0.01 * a.tn - 0.005) * a.tn + 0.004);
  const double hl = 0.03 * a.tn + 0.03 / std::sqrt(a.c2) + 0.005;
  EXPECT_NEAR(w.HG, hg, 1e-6);
  EXPECT_NEAR(w.HL, hl, 1e-6);
  const double h = std::pow(
      std::pow(hg, 5) + 2.69269 * std::pow(hg, 4) * hl + 2.42843 * std::pow(hg, 3) * hl * hl +
          4.47163 * hg * hg * std::pow(hl, 3) + 0.07842 * hg * std::pow(hl, 4) + std::pow(hl, 5),
      0.2);
  const double q = hl / h;
  EXPECT_NEAR(w.H, h, 1e-6);
  EXPECT_NEAR(w.eta, 1.36603 * q - 0.47719 * q * q + 0.11116 * q * q * q, 2e-6);
}

TEST(PeakWidth, NegativeLorentzianWidthIsReplacedByTheSmallValue) {
  CapturedJob job;
  SetUvw(*job, 0.0f, 0.0f, 0.01f, 0.0f);
  Par(*job)[15] = -0.5f;
  const Angle a = AngleAt(40.0);
  const PeakWidths w = PeakWidth(*job, 1, InputAt(8, a));
  EXPECT_EQ(w.HL, 1.0e-06f);
  EXPECT_NEAR(w.H, 0.1, 1e-5);
  EXPECT_GT(w.eta, 0.0f);
  // The peak still evaluates to a finite, almost Gaussian, profile.
  Par(*job)[15] = 0.0f;
  const PeakShape s = testing::PrepareShape(*job, 8, w, 40.0f);
  const double top = testing::OmegaAt(s, 0.0);
  EXPECT_NEAR(top, 0.9394373 / w.H, 1e-4 / w.H);
}

TEST(PeakWidth, SplitLeftWidthTakesShp1BelowNinetyDegrees) {
  CapturedJob job;
  SetUvw(*job, 0.02f, -0.01f, 0.01f, 0.001f);
  Par(*job)[41] = 0.0004f;  // Shp1
  Par(*job)[42] = 0.0007f;  // Shp2
  Par(*job)[46] = 0.03f;    // Ur
  Par(*job)[47] = -0.012f;  // Vr
  Par(*job)[48] = 0.015f;   // Wr
  const Angle a = AngleAt(50.0);
  WidthInput in = InputAt(12, a);
  in.deltaU = 0.002f;
  const PeakWidths w = PeakWidth(*job, 1, in);
  const double left = (0.022 * a.tn - 0.01) * a.tn + 0.01 + 0.001 / a.c2 + 0.0004 / (a.tn * a.tn);
  const double right = (0.032 * a.tn - 0.012) * a.tn + 0.015 + 0.001 / a.c2;
  EXPECT_NEAR(w.H, std::sqrt(left), 1e-6);
  EXPECT_EQ(w.HG, w.H);
  EXPECT_NEAR(w.HL, std::sqrt(right), 1e-6);
}

TEST(PeakWidth, SplitRightWidthTakesShp2AboveNinetyDegrees) {
  CapturedJob job;
  SetUvw(*job, 0.02f, -0.01f, 0.01f, 0.0f);
  Par(*job)[41] = 0.0004f;
  Par(*job)[42] = 0.0007f;
  Par(*job)[46] = 0.03f;
  Par(*job)[47] = -0.012f;
  Par(*job)[48] = 0.015f;
  const Angle a = AngleAt(120.0);
  const PeakWidths w = PeakWidth(*job, 1, InputAt(12, a));
  const double left = (0.02 * a.tn - 0.01) * a.tn + 0.01;
  const double right = (0.03 * a.tn - 0.012) * a.tn + 0.015 + 0.0007 / (a.tn * a.tn);
  EXPECT_NEAR(w.H, std::sqrt(left), 1e-6);
  EXPECT_NEAR(w.HL, std::sqrt(right), 1e-6);
}

TEST(PeakWidth, SplitSideIsChosenAtTheDisplacedPosition) {
  CapturedJob job;
  SetUvw(*job, 0.0f, 0.0f, 0.01f, 0.0f);
  Par(*job)[41] = 0.003f;
  Par(*job)[48] = 0.01f;
  // 2theta 89.5 is moved above 90 by Sycos 1.0: cos(44.75 deg) = 0.7102.
  job->patterns[1].GLB[8] = 1.0f;
  const double shifted = 89.5 + std::cos(44.75 * std::numbers::pi / 180.0);
  EXPECT_NEAR(SplitSidePosition(job->patterns[1], 89.5f), shifted, 1e-5);
  const PeakWidths moved = PeakWidth(*job, 1, InputAt(12, AngleAt(89.5)));
  EXPECT_NEAR(moved.H, 0.1, 1e-6);
  job->patterns[1].GLB[8] = 0.0f;
  const Angle a = AngleAt(89.5);
  const PeakWidths plain = PeakWidth(*job, 1, InputAt(12, a));
  EXPECT_NEAR(plain.H, std::sqrt(0.01 + 0.003 / (a.tn * a.tn)), 1e-6);
}

TEST(PeakWidth, SplitSidePositionAddsTheSineTerm) {
  Pattern pattern;
  pattern.GLB[9] = 0.5f;
  const double expected = 30.0 + 0.5 * std::sin(30.0 * std::numbers::pi / 180.0);
  EXPECT_NEAR(SplitSidePosition(pattern, 30.0f), expected, 2e-6);
}

TEST(PeakWidth, NegativeSquareStopsWithThePosition) {
  testing::ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(
      OpenUnit(job->files.units[Unit::Out], (dir.path / "x.out").string(), OpenStatus::Unknown));
  SetUvw(*job, 0.0f, 0.0f, -0.01f, 0.0f);
  WidthInput in = InputAt(6, AngleAt(35.25));
  in.phase = 1;
  EXPECT_THROW(PeakWidth(*job, 1, in), ProcessStop);
  CloseUnit(job->files.units[Unit::Out]);
  EXPECT_EQ(job.Console(),
            " Square of FWHM <0 at 2theta/TOF/E(KeV):     35.2500\n"
            "=== Stop/Warning Box ===\n"
            " Square of FWHM <0\n");
  EXPECT_EQ(dir.Read("x.out"),
            " => Square of FWHM <0 at 2theta/TOF/E(KeV):     35.2500  Phase:  1\n");
}

TEST(PeakWidth, SquareOfExactlyZeroStops) {
  CapturedJob job;
  SetUvw(*job, 0.0f, 0.0f, 0.0f, 0.0f);
  EXPECT_THROW(PeakWidth(*job, 1, InputAt(6, AngleAt(20.0))), ProcessStop);
}

TEST(PeakWidth, NegativeRightSquareStopsAtTheDisplacedPosition) {
  CapturedJob job;
  SetUvw(*job, 0.0f, 0.0f, 0.01f, 0.0f);
  Par(*job)[48] = -0.02f;          // Wr
  job->patterns[1].GLB[9] = 0.5f;  // Sysin
  EXPECT_THROW(PeakWidth(*job, 1, InputAt(12, AngleAt(30.0))), ProcessStop);
  EXPECT_EQ(job.Console(),
            " Square of FWHM <0 at 2theta/TOF/E(KeV):     30.2500\n"
            "=== Stop/Warning Box ===\n"
            " Square of FWHM <0\n");
}

}  // namespace
}  // namespace corvinet
