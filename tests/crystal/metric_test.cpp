// Tests of the cell metric: forcing to the Laue class, reciprocal coefficients and d-spacings.
#include "crystal/metric.h"

#include <gtest/gtest.h>

#include <cmath>

namespace corvinet {
namespace {

constexpr double kDegree = M_PI / 180.0;

Table1<float, 6> Cell(float a, float b, float c, float alpha, float beta, float gamma) {
  Table1<float, 6> cell;
  cell[1] = a;
  cell[2] = b;
  cell[3] = c;
  cell[4] = alpha;
  cell[5] = beta;
  cell[6] = gamma;
  return cell;
}

// 1/d² from the direct cell by the general triclinic formula, in long double.
long double TriclinicInverseDSquared(const Table1<float, 6>& cell, int h, int k, int l) {
  const long double a = cell[1], b = cell[2], c = cell[3];
  const long double ca = std::cos(cell[4] * kDegree), cb = std::cos(cell[5] * kDegree),
                    cg = std::cos(cell[6] * kDegree);
  const long double sa = std::sin(cell[4] * kDegree), sb = std::sin(cell[5] * kDegree),
                    sg = std::sin(cell[6] * kDegree);
  const long double v2 = 1 - ca * ca - cb * cb - cg * cg + 2 * ca * cb * cg;
  const long double s11 = b * b * c * c * sa * sa, s22 = a * a * c * c * sb * sb,
                    s33 = a * a * b * b * sg * sg;
  const long double s12 = a * b * c * c * (ca * cb - cg), s23 = a * a * b * c * (cb * cg - ca),
                    s13 = a * b * b * c * (cg * ca - cb);
  const long double volume2 = a * a * b * b * c * c * v2;
  return (s11 * h * h + s22 * k * k + s33 * l * l + 2 * s12 * h * k + 2 * s23 * k * l +
          2 * s13 * h * l) /
         volume2;
}

double FromCoefficients(const Table1<float, 6>& A, int h, int k, int l) {
  return InverseDSquared(A,
                         {static_cast<double>(h), static_cast<double>(k), static_cast<double>(l)});
}

void ExpectDSpacings(const Table1<float, 6>& cell) {
  CellMetric m;
  ASSERT_TRUE(BuildCellMetric(cell, m));
  const Table1<float, 6> A = ReciprocalCoefficients(m);
  const Table2<double, 3, 3> gstar = ReciprocalTensor(A);
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 3; ++j) {
      EXPECT_NEAR(gstar(i, j), m.Gstar(i, j), 2e-6 * std::abs(m.Gstar(1, 1))) << i << j;
    }
  }
  for (int h = -3; h <= 3; ++h) {
    for (int k = -3; k <= 3; ++k) {
      for (int l = -3; l <= 3; ++l) {
        if (h == 0 && k == 0 && l == 0) continue;
        const long double expected = TriclinicInverseDSquared(cell, h, k, l);
        EXPECT_NEAR(FromCoefficients(A, h, k, l), static_cast<double>(expected),
                    2e-6 * static_cast<double>(expected))
            << h << " " << k << " " << l;
      }
    }
  }
}

TEST(CellMetric, TriclinicDSpacingsFollowTheDirectCell) {
  ExpectDSpacings(Cell(5.1f, 6.3f, 7.7f, 81.0f, 97.5f, 104.2f));
}

TEST(CellMetric, MonoclinicDSpacingsFollowTheDirectCell) {
  ExpectDSpacings(Cell(10.0f, 12.0f, 15.0f, 90.0f, 105.0f, 90.0f));
  // For unique axis b: 1/d² = (h²/a² + l²/c² - 2hl cosβ/(ac))/sin²β + k²/b².
  CellMetric m;
  ASSERT_TRUE(BuildCellMetric(Cell(10.0f, 12.0f, 15.0f, 90.0f, 105.0f, 90.0f), m));
  const Table1<float, 6> A = ReciprocalCoefficients(m);
  const double sb = std::sin(105.0 * kDegree), cb = std::cos(105.0 * kDegree);
  const double expected =
      (4.0 / 100.0 + 9.0 / 225.0 - 2.0 * 2 * 3 * cb / 150.0) / (sb * sb) + 1.0 / 144.0;
  EXPECT_NEAR(FromCoefficients(A, 2, 1, 3), expected, 1e-6 * expected);
}

TEST(CellMetric, HexagonalDSpacingsFollowTheClosedForm) {
  Table1<float, 6> cell = Cell(3.2f, 3.2f, 5.1f, 90.0f, 90.0f, 120.0f);
  ExpectDSpacings(cell);
  CellMetric m;
  ASSERT_TRUE(BuildCellMetric(cell, m));
  const Table1<float, 6> A = ReciprocalCoefficients(m);
  // 1/d² = 4(h² + hk + k²)/(3a²) + l²/c².
  const double expected = 4.0 * (4 + 2 + 1) / (3.0 * 3.2 * 3.2) + 4.0 / (5.1 * 5.1);
  EXPECT_NEAR(FromCoefficients(A, 2, 1, 2), expected, 1e-6 * expected);
}

TEST(CellMetric, CubicDSpacingsAreASquaredOverTheSumOfSquares) {
  Table1<float, 6> cell = Cell(5.431f, 5.431f, 5.431f, 90.0f, 90.0f, 90.0f);
  ExpectDSpacings(cell);
  CellMetric m;
  ASSERT_TRUE(BuildCellMetric(cell, m));
  const Table1<float, 6> A = ReciprocalCoefficients(m);
  EXPECT_NEAR(A[1], 1.0 / (5.431 * 5.431), 1e-8);
  EXPECT_NEAR(A[4], 0.0, 1e-9);
  EXPECT_NEAR(m.volume, 5.431 * 5.431 * 5.431, 1e-3);
}

TEST(CellMetric, CellIsForcedToItsLaueClass) {
  Table1<float, 6> c = Cell(5.0f, 5.1f, 5.2f, 89.0f, 91.0f, 92.0f);
  ForceCellToLaueClass(c, 14, 0);
  EXPECT_EQ(c[2], 5.0f);
  EXPECT_EQ(c[3], 5.0f);
  EXPECT_EQ(c[6], 90.0f);
  c = Cell(5.0f, 5.1f, 5.2f, 89.0f, 91.0f, 92.0f);
  ForceCellToLaueClass(c, 5, 0);
  EXPECT_EQ(c[2], 5.0f);
  EXPECT_EQ(c[3], 5.2f);
  EXPECT_EQ(c[4], 90.0f);
  c = Cell(5.0f, 5.1f, 5.2f, 89.0f, 91.0f, 92.0f);
  ForceCellToLaueClass(c, 9, 0);
  EXPECT_EQ(c[2], 5.0f);
  EXPECT_EQ(c[6], 120.0f);
  EXPECT_EQ(c[4], 90.0f);
  c = Cell(5.0f, 5.1f, 5.2f, 89.0f, 91.0f, 92.0f);
  ForceCellToLaueClass(c, 7, 0);
  EXPECT_EQ(c[3], 5.0f);
  EXPECT_EQ(c[5], 89.0f);
  EXPECT_EQ(c[6], 89.0f);
  c = Cell(5.0f, 5.1f, 5.2f, 89.0f, 91.0f, 92.0f);
  ForceCellToLaueClass(c, 2, 2);
  EXPECT_EQ(c[4], 90.0f);
  EXPECT_EQ(c[5], 91.0f);
  EXPECT_EQ(c[6], 90.0f);
  c = Cell(5.0f, 5.1f, 5.2f, 89.0f, 91.0f, 92.0f);
  ForceCellToLaueClass(c, 2, 0);
  EXPECT_EQ(c[4], 89.0f);
  ForceCellToLaueClass(c, 1, 0);
  EXPECT_EQ(c[6], 92.0f);
  ForceCellToLaueClass(c, 3, 0);
  EXPECT_EQ(c[4], 90.0f);
  EXPECT_EQ(c[2], 5.1f);
}

TEST(CellMetric, CellComesBackFromItsCoefficients) {
  const Table1<float, 6> cell = Cell(5.1f, 6.3f, 7.7f, 81.0f, 97.5f, 104.2f);
  CellMetric m;
  ASSERT_TRUE(BuildCellMetric(cell, m));
  const Table1<float, 6> back = CellFromCoefficients(ReciprocalCoefficients(m));
  for (int i = 1; i <= 6; ++i) EXPECT_NEAR(back[i], cell[i], 2e-4 * cell[i]) << i;
}

TEST(CellMetric, OrthonormalFrameKeepsLengthsAndAngles) {
  const Table1<float, 6> cell = Cell(5.1f, 6.3f, 7.7f, 81.0f, 97.5f, 104.2f);
  CellMetric m;
  ASSERT_TRUE(BuildCellMetric(cell, m));
  // Columns of the frame are the cell vectors; their products give G.
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 3; ++j) {
      double dot = 0.0;
      for (int r = 1; r <= 3; ++r) dot += m.orthonormal(r, i) * m.orthonormal(r, j);
      EXPECT_NEAR(dot, m.G(i, j), 1e-9 * std::max(1.0, std::fabs(m.G(i, j))));
      double identity = 0.0;
      for (int r = 1; r <= 3; ++r) identity += m.fractional(i, r) * m.orthonormal(r, j);
      EXPECT_NEAR(identity, i == j ? 1.0 : 0.0, 1e-12);
    }
  }
}

TEST(CellMetric, FlatCellIsRefused) {
  CellMetric m;
  EXPECT_FALSE(BuildCellMetric(Cell(5.0f, 5.0f, 5.0f, 120.0f, 120.0f, 120.0f), m));
  EXPECT_FALSE(BuildCellMetric(Cell(0.0f, 5.0f, 5.0f, 90.0f, 90.0f, 90.0f), m));
}

TEST(CellMetric, LaueClassNames) {
  EXPECT_STREQ(LaueClassName(1), "-1");
  EXPECT_STREQ(LaueClassName(7), "-3m R");
  EXPECT_STREQ(LaueClassName(14), "m3m");
  EXPECT_STREQ(LaueClassName(0), "?");
}

}  // namespace
}  // namespace corvinet
