// Tests of the width law: U, V, W, second wavelength, TCH and split widths, negative squares.
#include "model/peak_width.h"

#include <gtest/gtest.h>

#include <cmath>

#include "model/peak_shape_test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::PeakCase;

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

void SetUvw(PeakCase& c, float u, float v, float w, float gauSiz) {
  c.par[3] = u;
  c.par[4] = v;
  c.par[5] = w;
  c.par[28] = gauSiz;
}

TEST(PeakWidth, CagliotiLawWithSizeTermStrainAndExtraWidth) {
  PeakCase c;
  SetUvw(c, 0.021f, -0.013f, 0.0072f, 0.0015f);
  const Angle a = AngleAt(47.3);
  WidthInput in = InputAt(6, a);
  in.deltaU = 0.004f;
  in.extraGaussian2 = 0.0009f;
  const PeakWidths w = c.Width(in);
  const double h2 = (0.025 * a.tn - 0.013) * a.tn + 0.0072 + 0.0015 / a.c2 + 0.0009;
  EXPECT_NEAR(w.H, std::sqrt(h2), 1e-6);
  EXPECT_EQ(w.HG, w.H);
  EXPECT_EQ(w.HL, 0.0f);
}

TEST(PeakWidth, SecondWavelengthUsesItsOwnParametersWhenThePatternReadsThem) {
  PeakCase c;
  SetUvw(c, 0.02f, -0.01f, 0.01f, 0.0f);
  c.par[43] = 0.05f;
  c.par[44] = -0.02f;
  c.par[45] = 0.03f;
  const Angle a = AngleAt(60.0);
  WidthInput in = InputAt(6, a);
  in.wavelengthIndex = 2;
  const double own = std::sqrt((0.05 * a.tn - 0.02) * a.tn + 0.03);
  const double shared = std::sqrt((0.02 * a.tn - 0.01) * a.tn + 0.01);
  EXPECT_NEAR(c.Width(in).H, shared, 1e-6);
  c.pattern->separateUVW2 = true;
  EXPECT_NEAR(c.Width(in).H, own, 1e-6);
  in.wavelengthIndex = 1;
  EXPECT_NEAR(c.Width(in).H, shared, 1e-6);
}

TEST(PeakWidth, TchWidthsFromGaussianAndLorentzianLaws) {
  PeakCase c;
  SetUvw(c, 0.01f, -0.005f, 0.004f, 0.0f);
  c.par[15] = 0.03f;  // X
  c.par[16] = 0.02f;  // Y
  const Angle a = AngleAt(81.0);
  WidthInput in = InputAt(8, a);
  in.deltaY = 0.01f;
  in.extraLorentzian = 0.005f;
  const PeakWidths w = c.Width(in);
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
  PeakCase c;
  SetUvw(c, 0.0f, 0.0f, 0.01f, 0.0f);
  c.par[15] = -0.5f;
  const Angle a = AngleAt(40.0);
  const PeakWidths w = c.Width(InputAt(8, a));
  EXPECT_EQ(w.HL, 1.0e-06f);
  EXPECT_NEAR(w.H, 0.1, 1e-5);
  EXPECT_GT(w.eta, 0.0f);
  // The peak still evaluates to a finite, almost Gaussian, profile.
  c.par[15] = 0.0f;
  const PeakShape s = c.Shape(8, w, 40.0f);
  const double top = testing::OmegaAt(s, 0.0);
  EXPECT_NEAR(top, 0.9394373 / w.H, 1e-4 / w.H);
}

TEST(PeakWidth, SplitLeftWidthTakesShp1BelowNinetyDegrees) {
  PeakCase c;
  SetUvw(c, 0.02f, -0.01f, 0.01f, 0.001f);
  c.par[41] = 0.0004f;  // Shp1
  c.par[42] = 0.0007f;  // Shp2
  c.par[46] = 0.03f;    // Ur
  c.par[47] = -0.012f;  // Vr
  c.par[48] = 0.015f;   // Wr
  const Angle a = AngleAt(50.0);
  WidthInput in = InputAt(12, a);
  in.deltaU = 0.002f;
  const PeakWidths w = c.Width(in);
  const double left = (0.022 * a.tn - 0.01) * a.tn + 0.01 + 0.001 / a.c2 + 0.0004 / (a.tn * a.tn);
  const double right = (0.032 * a.tn - 0.012) * a.tn + 0.015 + 0.001 / a.c2;
  EXPECT_NEAR(w.H, std::sqrt(left), 1e-6);
  EXPECT_EQ(w.HG, w.H);
  EXPECT_NEAR(w.HL, std::sqrt(right), 1e-6);
}

TEST(PeakWidth, SplitRightWidthTakesShp2AboveNinetyDegrees) {
  PeakCase c;
  SetUvw(c, 0.02f, -0.01f, 0.01f, 0.0f);
  c.par[41] = 0.0004f;
  c.par[42] = 0.0007f;
  c.par[46] = 0.03f;
  c.par[47] = -0.012f;
  c.par[48] = 0.015f;
  const Angle a = AngleAt(120.0);
  const PeakWidths w = c.Width(InputAt(12, a));
  const double left = (0.02 * a.tn - 0.01) * a.tn + 0.01;
  const double right = (0.03 * a.tn - 0.012) * a.tn + 0.015 + 0.0007 / (a.tn * a.tn);
  EXPECT_NEAR(w.H, std::sqrt(left), 1e-6);
  EXPECT_NEAR(w.HL, std::sqrt(right), 1e-6);
}

TEST(PeakWidth, SplitSideIsChosenAtTheDisplacedPosition) {
  PeakCase c;
  SetUvw(c, 0.0f, 0.0f, 0.01f, 0.0f);
  c.par[41] = 0.003f;
  c.par[48] = 0.01f;
  // 2theta 89.5 is moved above 90 by Sycos 1.0: cos(44.75 deg) = 0.7102.
  c.pattern->GLB[8] = 1.0f;
  const double shifted = 89.5 + std::cos(44.75 * std::numbers::pi / 180.0);
  EXPECT_NEAR(SplitSidePosition(*c.pattern, 89.5f), shifted, 1e-5);
  const PeakWidths moved = c.Width(InputAt(12, AngleAt(89.5)));
  EXPECT_NEAR(moved.H, 0.1, 1e-6);
  c.pattern->GLB[8] = 0.0f;
  const Angle a = AngleAt(89.5);
  const PeakWidths plain = c.Width(InputAt(12, a));
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
  PeakCase c;
  SetUvw(c, 0.0f, 0.0f, -0.01f, 0.0f);
  WidthInput in = InputAt(6, AngleAt(35.25));
  in.phase = 1;
  EXPECT_THROW(testing::ThroughPeakStop(*job, [&] { return c.Width(in); }), ProcessStop);
  CloseUnit(job->files.units[Unit::Out]);
  EXPECT_EQ(job.Console(),
            " Square of FWHM <0 at 2theta/TOF/E(KeV):     35.2500\n"
            "=== Stop/Warning Box ===\n"
            " Square of FWHM <0\n");
  EXPECT_EQ(dir.Read("x.out"),
            " => Square of FWHM <0 at 2theta/TOF/E(KeV):     35.2500  Phase:  1\n");
}

TEST(PeakWidth, SquareOfExactlyZeroIsRefused) {
  PeakCase c;
  SetUvw(c, 0.0f, 0.0f, 0.0f, 0.0f);
  EXPECT_THROW(c.Width(InputAt(6, AngleAt(20.0))), PeakError);
}

TEST(PeakWidth, NegativeSquareThrowsItsErrorWithThePositionAndThePhase) {
  PeakCase c;
  SetUvw(c, 0.0f, 0.0f, -0.01f, 0.0f);
  WidthInput in = InputAt(6, AngleAt(35.25));
  in.phase = 3;
  try {
    c.Width(in);
    FAIL() << "a negative square gave a width";
  } catch (const PeakError& error) {
    EXPECT_EQ(error.failure, PeakFailure::NegativeWidth);
    EXPECT_EQ(error.value, 35.25f);
    EXPECT_EQ(error.phase, 3);
  }
}

TEST(PeakWidth, NegativeRightSquareThrowsAtTheDisplacedPosition) {
  PeakCase c;
  SetUvw(c, 0.0f, 0.0f, 0.01f, 0.0f);
  c.par[48] = -0.02f;        // Wr
  c.pattern->GLB[9] = 0.5f;  // Sysin
  try {
    c.Width(InputAt(12, AngleAt(30.0)));
    FAIL() << "a negative right square gave a width";
  } catch (const PeakError& error) {
    EXPECT_EQ(error.failure, PeakFailure::NegativeWidth);
    EXPECT_NEAR(error.value, 30.0 + 0.5 * std::sin(30.0 * std::numbers::pi / 180.0), 2e-5);
  }
}

TEST(PeakWidth, NegativeRightSquareStopsAtTheDisplacedPosition) {
  CapturedJob job;
  PeakCase c;
  SetUvw(c, 0.0f, 0.0f, 0.01f, 0.0f);
  c.par[48] = -0.02f;        // Wr
  c.pattern->GLB[9] = 0.5f;  // Sysin
  EXPECT_THROW(testing::ThroughPeakStop(*job, [&] { return c.Width(InputAt(12, AngleAt(30.0))); }),
               ProcessStop);
  EXPECT_EQ(job.Console(),
            " Square of FWHM <0 at 2theta/TOF/E(KeV):     30.2500\n"
            "=== Stop/Warning Box ===\n"
            " Square of FWHM <0\n");
}

}  // namespace
}  // namespace corvinet
