// Tests of the cell rebuilt from its metric coefficients: constants, standard deviations, volume,
// snapping, stop.
#include <gtest/gtest.h>

#include <cmath>

#include "crystal/metric.h"
#include "refine/cell_update.h"
#include "refine/update_case.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::UpdateCase;
using Real = long double;
using Cell6 = std::array<Real, 6>;

constexpr Real kPi = 3.141592653589793238462643383279502884L;

// The direct cell of the coefficients A..F of 1/d^2 = Ah^2 + Bk^2 + Cl^2 +
// Dkl + Ehl + Fhk, by the adjugate of G* (written here apart from the program).
Cell6 DirectCell(const std::array<Real, 6>& k) {
  const Real s11 = k[0], s22 = k[1], s33 = k[2], s23 = k[3] / 2, s13 = k[4] / 2, s12 = k[5] / 2;
  const Real det =
      s11 * (s22 * s33 - s23 * s23) - s12 * (s12 * s33 - s23 * s13) + s13 * (s12 * s23 - s22 * s13);
  const Real g11 = (s22 * s33 - s23 * s23) / det;
  const Real g22 = (s11 * s33 - s13 * s13) / det;
  const Real g33 = (s11 * s22 - s12 * s12) / det;
  const Real g23 = (s13 * s12 - s11 * s23) / det;
  const Real g13 = (s12 * s23 - s13 * s22) / det;
  const Real g12 = (s13 * s23 - s12 * s33) / det;
  const Real a = std::sqrt(g11), b = std::sqrt(g22), c = std::sqrt(g33);
  const Real degrees = 180 / kPi;
  return {a,
          b,
          c,
          std::acos(g23 / (b * c)) * degrees,
          std::acos(g13 / (a * c)) * degrees,
          std::acos(g12 / (a * b)) * degrees};
}

// Coefficients of a direct cell by the triclinic reciprocal formulas.
std::array<Real, 6> Coefficients(Real a, Real b, Real c, Real alpha, Real beta, Real gamma) {
  const Real r = kPi / 180;
  const Real ca = std::cos(alpha * r), cb = std::cos(beta * r), cg = std::cos(gamma * r);
  const Real sa = std::sin(alpha * r), sb = std::sin(beta * r), sg = std::sin(gamma * r);
  const Real v2 = a * a * b * b * c * c * (1 - ca * ca - cb * cb - cg * cg + 2 * ca * cb * cg);
  return {b * b * c * c * sa * sa / v2,
          a * a * c * c * sb * sb / v2,
          a * a * b * b * sg * sg / v2,
          2 * a * a * b * c * (cb * cg - ca) / v2,
          2 * a * b * b * c * (cg * ca - cb) / v2,
          2 * a * b * c * c * (ca * cb - cg) / v2};
}

TEST(CellSigma, AgreesWithFiniteDifferencePropagationForATriclinicCell) {
  const std::array<Real, 6> exact = Coefficients(5.1L, 6.3L, 7.7L, 81.0L, 97.0L, 104.0L);
  Table1<float, 6> k;
  std::array<Real, 6> kf;
  for (int i = 0; i < 6; ++i) {
    k[i + 1] = static_cast<float>(exact[i]);
    kf[i] = k[i + 1];
  }
  // A covariance with correlations: V = L L^T, L lower triangular, scaled by
  // the size of each coefficient.
  CoefficientCovariance v{};
  Real lower[6][6] = {};
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j <= i; ++j) lower[i][j] = (i == j ? 1.0L : 0.3L / (1 + i + j));
  }
  const Real size = 1.0e-4L * std::fabs(kf[0]);
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) {
      Real sum = 0;
      for (int m = 0; m < 6; ++m) sum += lower[i][m] * lower[j][m];
      v[i][j] = static_cast<double>(sum * size * size);
    }
  }
  // Central differences of the cell with respect to each coefficient.
  Real jac[6][6];
  for (int j = 0; j < 6; ++j) {
    const Real h = 1.0e-7L * std::fabs(kf[0]);
    std::array<Real, 6> up = kf, down = kf;
    up[j] += h;
    down[j] -= h;
    const Cell6 cu = DirectCell(up), cd = DirectCell(down);
    for (int i = 0; i < 6; ++i) jac[i][j] = (cu[i] - cd[i]) / (2 * h);
  }
  const CellWithSigma result = CellAndSigmaFromCoefficients(k, v);
  const Cell6 cell = DirectCell(kf);
  for (int i = 0; i < 6; ++i) {
    Real variance = 0;
    for (int a = 0; a < 6; ++a)
      for (int b = 0; b < 6; ++b) variance += jac[i][a] * v[a][b] * jac[i][b];
    const Real sigma = std::sqrt(variance);
    EXPECT_NEAR(result.sigma[i + 1], static_cast<double>(sigma),
                1.0e-4 * static_cast<double>(sigma))
        << "constant " << i + 1;
    EXPECT_NEAR(result.cell[i + 1], static_cast<double>(cell[i]),
                1.0e-5 * static_cast<double>(cell[i]))
        << "constant " << i + 1;
  }
}

TEST(CellSigma, ZeroCovarianceGivesZeroSigma) {
  const std::array<Real, 6> exact = Coefficients(4.0L, 4.0L, 6.0L, 90.0L, 90.0L, 120.0L);
  Table1<float, 6> k;
  for (int i = 0; i < 6; ++i) k[i + 1] = static_cast<float>(exact[i]);
  const CellWithSigma result = CellAndSigmaFromCoefficients(k, CoefficientCovariance{});
  for (int i = 1; i <= 6; ++i) EXPECT_EQ(result.sigma[i], 0.0f);
}

TEST(CellSigma, TheCovarianceOfTheSlotsCarriesTheMultipliers) {
  UpdateCase c;
  PhasePattern& pp = c.peaks();
  pp.PAC[6] = UpdateCase::Code(3, 2.0f);
  pp.PAC[7] = UpdateCase::Code(3, 2.0f);
  pp.PAC[8] = UpdateCase::Code(4, -1.0f);
  c->refinement.normal.A(3, 3) = 0.5f;
  c->refinement.normal.A(3, 4) = 0.25f;
  c->refinement.normal.A(4, 3) = 0.25f;
  c->refinement.normal.A(4, 4) = 2.0f;
  const CoefficientCovariance v = CoefficientCovarianceOf(*c, pp);
  EXPECT_EQ(v[0][0], 2.0);   // 2*2*0.5
  EXPECT_EQ(v[0][1], 2.0);   // same parameter
  EXPECT_EQ(v[0][2], -0.5);  // 2*(-1)*0.25
  EXPECT_EQ(v[2][2], 2.0);   // (-1)(-1)*2
  EXPECT_EQ(v[3][3], 0.0);   // slot 9 has no parameter
  EXPECT_EQ(v[0][5], 0.0);
}

TEST(CellUpdate, AnglesWithinATenThousandthOfNinetyOrOneTwentyAreSetExactly) {
  Table1<float, 6> cell;
  cell[1] = cell[2] = cell[3] = 3.0f;
  cell[4] = 89.99995f;
  cell[5] = 119.99993f;
  cell[6] = 90.0002f;
  SnapSpecialAngles(cell);
  EXPECT_EQ(cell[4], 90.0f);
  EXPECT_EQ(cell[5], 120.0f);
  EXPECT_EQ(cell[6], 90.0002f);
}

TEST(CellUpdate, VolumeSigmaTakesOnlyTheAxes) {
  Table1<float, 6> cell, sigma;
  cell[1] = 2.0f;
  cell[2] = 4.0f;
  cell[3] = 5.0f;
  cell[4] = cell[5] = cell[6] = 90.0f;
  sigma[1] = 0.02f;  // 1 %
  sigma[2] = 0.04f;  // 1 %
  sigma[3] = 0.1f;   // 2 %
  sigma[4] = sigma[5] = sigma[6] = 5.0f;
  EXPECT_NEAR(VolumeSigma(cell, sigma, 40.0), 40.0 * std::sqrt(0.0006), 1e-5);
}

TEST(CellUpdate, AnOrthorhombicCellTakesItsShiftSigmaVolumeAndScaleVariance) {
  UpdateCase c;
  PhasePattern& pp = c.peaks();
  pp.CellConstants[1] = 4.0f;
  pp.CellConstants[2] = 5.0f;
  pp.CellConstants[3] = 8.0f;
  // New coefficients: a = 2, b = 4, c = 5 (A = 1/4, B = 1/16, C = 1/25).
  pp.PAR[6] = 0.25f;
  pp.PAR[7] = 0.0625f;
  pp.PAR[8] = 0.04f;
  pp.PAC[6] = UpdateCase::Code(1);
  pp.PAC[7] = UpdateCase::Code(2);
  pp.PAC[1] = UpdateCase::Code(5);
  c->refinement.normal.A(1, 1) = 1.0e-6f;
  c->refinement.normal.A(2, 2) = 4.0e-8f;
  c->refinement.normal.A(5, 5) = -9.0e-4f;
  UpdateCell(*c, 1, 1);
  EXPECT_FLOAT_EQ(pp.CellConstants[1], 2.0f);
  EXPECT_FLOAT_EQ(pp.CellConstants[2], 4.0f);
  EXPECT_FLOAT_EQ(pp.CellConstants[3], 5.0f);
  EXPECT_EQ(pp.CellConstants[4], 90.0f);
  EXPECT_EQ(pp.CellConstants[6], 90.0f);
  const CellStatistics& s = c->limits.cells(1, 1);
  // a = A^(-1/2): da/dA = -a^3/2, so sigma(a) = 4 * 1e-3; b: 32 * 2e-4.
  EXPECT_NEAR(s.sigma[1], 0.004f, 1e-7);
  EXPECT_NEAR(s.sigma[2], 0.0064f, 1e-7);
  EXPECT_EQ(s.sigma[3], 0.0f);
  EXPECT_NEAR(s.shift[1], -2.0f, 1e-5);
  EXPECT_NEAR(s.shift[3], -3.0f, 1e-5);
  EXPECT_NEAR(pp.cellVolume, 40.0, 1e-4);
  EXPECT_NEAR(s.volumeSigma, 40.0 * std::sqrt(0.002 * 0.002 + 0.0016 * 0.0016), 1e-5);
  EXPECT_FLOAT_EQ(s.scaleVariance, 9.0e-4f);
  EXPECT_NEAR(pp.metric.G(1, 1), 4.0, 1e-5);
  EXPECT_NEAR(pp.metric.volume, 40.0, 1e-4);
}

TEST(CellUpdate, AHexagonalCellKeepsGammaAtOneTwentyExactly) {
  UpdateCase c;
  PhasePattern& pp = c.peaks();
  const std::array<Real, 6> exact = Coefficients(3.2L, 3.2L, 5.1L, 90.0L, 90.0L, 120.0L);
  for (int i = 0; i < 6; ++i) pp.PAR[6 + i] = static_cast<float>(exact[i]);
  UpdateCell(*c, 1, 1);
  EXPECT_EQ(pp.CellConstants[4], 90.0f);
  EXPECT_EQ(pp.CellConstants[5], 90.0f);
  EXPECT_EQ(pp.CellConstants[6], 120.0f);
  EXPECT_NEAR(pp.CellConstants[1], 3.2f, 1e-5);
}

// A and B shifted together (a and b share a code) while F, which carries
// gamma, has none: the cell is held to its hexagonal Laue class and that is
// said once.
TEST(CellUpdate, CodesThatBreakTheLaueClassAreOverruledOnceSaid) {
  UpdateCase c;
  c->phases[1].group.LAUE = 12;  // 6/mmm
  PhasePattern& pp = c.peaks();
  const std::array<Real, 6> moved = Coefficients(3.21L, 3.21L, 5.1L, 90.0L, 90.0L, 120.0L);
  const std::array<Real, 6> old = Coefficients(3.2L, 3.2L, 5.1L, 90.0L, 90.0L, 120.0L);
  for (int i = 0; i < 5; ++i) pp.PAR[6 + i] = static_cast<float>(moved[i]);
  pp.PAR[11] = static_cast<float>(old[5]);
  // Read literally, these coefficients give a = b and gamma away from 120.
  EXPECT_GT(std::fabs(DirectCell(moved)[5] -
                      DirectCell({moved[0], moved[1], moved[2], moved[3], moved[4], old[5]})[5]),
            0.1L);
  UpdateCell(*c, 1, 1);
  UpdateCell(*c, 1, 1);
  EXPECT_EQ(pp.CellConstants[6], 120.0f);
  EXPECT_EQ(pp.CellConstants[4], 90.0f);
  EXPECT_EQ(pp.CellConstants[1], pp.CellConstants[2]);
  EXPECT_NEAR(pp.PAR[11], pp.PAR[6], 1e-6f * pp.PAR[6]);
  const std::string line =
      " => Phase  1: the cell codes break the relations of its Laue class 6/mmm; the cell is "
      "held to them";
  EXPECT_EQ(testing::CountLines(c.job.Console(), line), 1) << c.job.Console();
}

// A cell whose coefficients keep their Laue class is left as it is, unsaid.
TEST(CellUpdate, ACellThatKeepsItsLaueClassIsNotTouched) {
  UpdateCase c;
  c->phases[1].group.LAUE = 12;
  PhasePattern& pp = c.peaks();
  const std::array<Real, 6> exact = Coefficients(3.2L, 3.2L, 5.1L, 90.0L, 90.0L, 120.0L);
  for (int i = 0; i < 6; ++i) pp.PAR[6 + i] = static_cast<float>(exact[i]);
  const float before = pp.PAR[11];
  UpdateCell(*c, 1, 1);
  EXPECT_EQ(pp.PAR[11], before);
  EXPECT_EQ(c.job.Console().find("held to them"), std::string::npos);
}

TEST(CellUpdate, ASingularMetricStopsWithBadCellParameters) {
  UpdateCase c;
  PhasePattern& pp = c.peaks();
  for (int s = 6; s <= 11; ++s) pp.PAR[s] = 0.0f;
  EXPECT_THROW(UpdateCell(*c, 1, 1), ProcessStop);
  EXPECT_NE(c.job.Console().find("Bad cell parameters!"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
