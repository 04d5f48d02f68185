// Tests of the numerical shapes (code 9) on tables built here: values, rows, slopes, area.
#include "model/numerical_profile.h"

#include <gtest/gtest.h>

#include <cmath>

#include "model/peak_shape_test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::OmegaAt;
using testing::PlainWidths;
using testing::PrepareShape;

// Abscissae in steps of 1/32 FWHM, so that with H = 0.5 every node lies at an
// exact distance from the position 32.
constexpr int kPoints = 141;
constexpr double kReach = 70.0 / 32.0;

double Abscissa(int i) {
  return (i - 71) / 32.0;
}

// Gaussian of unit FWHM and unit area, and its derivative.
double GaussShape(double u) {
  return 0.9394373 * std::exp(-2.772589 * u * u);
}
double GaussShapeSlope(double u) {
  return -2.0 * 2.772589 * u * GaussShape(u);
}
// Lorentzian of unit FWHM, and its derivative.
double LorentzShape(double u) {
  return 0.6366197 / (1.0 + 4.0 * u * u);
}
double LorentzShapeSlope(double u) {
  return -0.6366197 * 8.0 * u / ((1.0 + 4.0 * u * u) * (1.0 + 4.0 * u * u));
}

// Shape 1 the Gaussian at 20 degrees; with two shapes, shape 2 the Lorentzian at 80 degrees.
void FillTable(NumericalProfile& t, int shapes) {
  t.shapePoints = kPoints;
  t.shapeCount = shapes;
  t.shapeAngle[1] = 20.0f;
  t.shapeAngle[2] = 80.0f;
  for (int i = 1; i <= kPoints; ++i) {
    const double u = Abscissa(i);
    t.shapeX[i] = static_cast<float>(u);
    t.shapeY(i, 1) = static_cast<float>(GaussShape(u));
    t.shapeDy(i, 1) = static_cast<float>(GaussShapeSlope(u));
    t.shapeY(i, 2) = static_cast<float>(LorentzShape(u));
    t.shapeDy(i, 2) = static_cast<float>(LorentzShapeSlope(u));
  }
}

// The linear interpolant of column (y or dy) of shape s of the table at u, computed here.
double Interpolant(const NumericalProfile& t, int s, double u, bool derivative) {
  for (int j = 1; j < t.shapePoints; ++j) {
    if (t.shapeX[j] <= u && u < t.shapeX[j + 1]) {
      const double a = derivative ? t.shapeDy(j, s) : t.shapeY(j, s);
      const double b = derivative ? t.shapeDy(j + 1, s) : t.shapeY(j + 1, s);
      return a + (b - a) * (u - t.shapeX[j]) / (t.shapeX[j + 1] - t.shapeX[j]);
    }
  }
  return 0.0;
}

class NumericalShape : public ::testing::Test {
 protected:
  CapturedJob job;
  PeakShape Shape(int shapes, float h, float twoTheta = 32.0f) {
    FillTable(job->numericalProfile, shapes);
    return PrepareShape(*job, 9, PlainWidths(h), twoTheta);
  }
};

TEST_F(NumericalShape, ValueOnTheNodesIsTheTableOverH) {
  const PeakShape s = Shape(1, 0.5f);
  const NumericalProfile& t = job->numericalProfile;
  for (int i : {20, 60, 71, 90, 130}) {
    EXPECT_NEAR(OmegaAt(s, t.shapeX[i] * 0.5), t.shapeY(i, 1) / 0.5, 1e-6) << i;
  }
}

TEST_F(NumericalShape, ValueBetweenNodesIsLinear) {
  const PeakShape s = Shape(1, 0.5f);
  const NumericalProfile& t = job->numericalProfile;
  for (double v : {-2.01, -0.77, -0.013, 0.2, 0.444, 1.9}) {
    ProfilePoint p;
    const double value = OmegaAt(s, v * 0.5, &p);
    EXPECT_NEAR(value, Interpolant(t, 1, p.delta / 0.5, false) / 0.5, 1e-6) << v;
  }
}

TEST_F(NumericalShape, OutsideTheTableTheValueAndSlopeAreZero) {
  const PeakShape s = Shape(1, 0.5f);
  ProfilePoint p;
  p.dOmega = 7.0f;
  EXPECT_EQ(OmegaAt(s, -2.6 * 0.5, &p), 0.0);
  EXPECT_EQ(p.dOmega, 0.0f);
  EXPECT_EQ(OmegaAt(s, 2.3 * 0.5, &p), 0.0);
  EXPECT_EQ(p.dOmega, 0.0f);
  EXPECT_EQ(OmegaAt(s, kReach * 0.5, &p), 0.0);   // the last abscissa itself is outside
  EXPECT_GT(OmegaAt(s, -kReach * 0.5, &p), 0.0);  // the first one is inside
}

TEST_F(NumericalShape, SlopeFactorFromTheDerivativeColumn) {
  const PeakShape s = Shape(1, 0.5f);
  const NumericalProfile& t = job->numericalProfile;
  for (double v : {-1.3, -0.41, -0.06, 0.09, 0.5, 1.77}) {
    ProfilePoint p;
    OmegaAt(s, v * 0.5, &p);
    const double u = p.delta / 0.5;
    const double y = Interpolant(t, 1, u, false);
    const double dy = Interpolant(t, 1, u, true);
    EXPECT_NEAR(p.dOmega, -0.5 * dy / (y * u), 1e-4 * (1 + std::fabs(p.dOmega))) << u;
    // The stored derivative of the Gaussian gives its constant factor 4 ln2.
    EXPECT_NEAR(p.dOmega, 2.772589, 2e-2) << u;
  }
}

TEST_F(NumericalShape, SlopeFactorIsZeroAtTheCentreAndInTheFarTail) {
  const PeakShape s = Shape(1, 0.5f);
  ProfilePoint p;
  OmegaAt(s, 0.0, &p);
  EXPECT_EQ(p.dOmega, 0.0f);
  OmegaAt(s, 4.0e-6 * 0.5, &p);
  EXPECT_EQ(p.dOmega, 0.0f);
  const double far = OmegaAt(s, 2.15 * 0.5, &p);  // y about 2e-6
  EXPECT_GT(far, 0.0);
  EXPECT_EQ(p.dOmega, 0.0f);
}

TEST_F(NumericalShape, TwoShapesAreBlendedByTheAngleOfThePoint) {
  const PeakShape s = Shape(2, 0.5f, 35.0f);
  const NumericalProfile& t = job->numericalProfile;
  for (double v : {-1.1, -0.3, 0.02, 0.7}) {
    ProfilePoint p;
    const double value = OmegaAt(s, v * 0.5, &p);
    const double u = p.delta / 0.5;
    const double r = (p.x - 20.0) / 60.0;
    const double expected = (1 - r) * Interpolant(t, 1, u, false) + r * Interpolant(t, 2, u, false);
    EXPECT_NEAR(value, expected / 0.5, 2e-6) << v;
  }
}

TEST_F(NumericalShape, PositionsBeyondTheAnglesTakeTheEndShapes) {
  const NumericalProfile& t = job->numericalProfile;
  const PeakShape low = Shape(2, 0.5f, 10.0f);
  const PeakShape high = Shape(2, 0.5f, 120.0f);
  for (double v : {-0.9, 0.3}) {
    ProfilePoint p;
    const double below = OmegaAt(low, v * 0.5, &p);
    EXPECT_NEAR(below, Interpolant(t, 1, p.delta / 0.5, false) / 0.5, 1e-6) << v;
    const double above = OmegaAt(high, v * 0.5, &p);
    EXPECT_NEAR(above, Interpolant(t, 2, p.delta / 0.5, false) / 0.5, 1e-6) << v;
  }
}

TEST_F(NumericalShape, UnitAreaOfANormalisedTable) {
  const PeakShape s = Shape(1, 0.5f);
  // The table covers +-2.19 FWHM, beyond which the Gaussian has less than 1e-7 of its area.
  const int n = 200000;
  double sum = 0.0;
  for (int i = 0; i < n; ++i) sum += OmegaAt(s, -1.25 + (i + 0.5) * 2.5 / n);
  EXPECT_NEAR(sum * 2.5 / n, 1.0, 1e-5);
}

TEST_F(NumericalShape, SymmetricForASymmetricTable) {
  const PeakShape s = Shape(1, 0.5f);
  // Inside the table: the last abscissa itself belongs to no interval.
  for (int k = 1; k < 70; k += 3) {
    const double d = k / 64.0;
    EXPECT_FLOAT_EQ(static_cast<float>(OmegaAt(s, d)), static_cast<float>(OmegaAt(s, -d))) << d;
  }
}

TEST_F(NumericalShape, FullWidthAtHalfMaximumIsTheWidth) {
  const PeakShape s = Shape(1, 0.5f);
  const auto f = [&s](double d) { return OmegaAt(s, d); };
  const double fwhm =
      testing::HalfMaximumDistance(f, 1.0, 1.0) + testing::HalfMaximumDistance(f, -1.0, 1.0);
  // Linear interpolation at steps of 1/32 FWHM moves each half point by about 1e-4 FWHM.
  EXPECT_NEAR(fwhm, 0.5, 3e-4 * 0.5);
}

TEST_F(NumericalShape, SlopesMatchDifferences) {
  const PeakShape s = Shape(1, 0.5f);
  const NumericalProfile& t = job->numericalProfile;
  for (int j : {30, 55, 68, 75, 99}) {
    // The middle of an abscissa interval, where the interpolant is smooth.
    const double u = 0.5 * (t.shapeX[j] + t.shapeX[j + 1]);
    const float x = s.position + static_cast<float>(u * 0.5);
    ProfilePoint p;
    ProfileSlopes d;
    PointInBase(s, x, 1.0e18f, p);
    ProfileValueWithSlopes(s, p, d);
    const double h = 1.0 / 8192.0;
    const auto atZero = [&](double step) {
      job->patterns[1].GLB[1] = static_cast<float>(step);
      const PeakShape moved = PrepareShape(*job, 9, PlainWidths(0.5f));
      ProfilePoint q;
      PointInBase(moved, x, 1.0e18f, q);
      return static_cast<double>(ProfileValue(moved, q));
    };
    const auto atWidth = [&](double step) {
      job->patterns[1].GLB[1] = 0.0f;
      const PeakShape wider = PrepareShape(*job, 9, PlainWidths(0.5f + static_cast<float>(step)));
      ProfilePoint q;
      PointInBase(wider, x, 1.0e18f, q);
      return static_cast<double>(ProfileValue(wider, q));
    };
    const double position = testing::LogDifference(atZero, h);
    const double width = testing::LogDifference(atWidth, h);
    EXPECT_NEAR(d.position, position, testing::SlopeTolerance(position)) << u;
    EXPECT_NEAR(d.width, width, testing::SlopeTolerance(width)) << u;
    // dOmega, from the stored derivative column, gives the position slope to
    // the accuracy of the table.
    const double fromPsi = 2.0 * p.delta * p.dOmega / (p.H * p.H);
    EXPECT_NEAR(fromPsi, position, 2e-2 * (1 + std::fabs(position))) << u;
  }
}

}  // namespace
}  // namespace corvinet
