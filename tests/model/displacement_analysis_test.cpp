// Tests of the analysis of anisotropic displacements: isotropic and axial tensors worked by hand.
#include "model/displacement_analysis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace corvinet {
namespace {

constexpr double kTwoPiSquared = 19.739208802178716;

Table1<float, 6> Cell(float a, float b, float c, float al, float be, float ga) {
  Table1<float, 6> cell;
  cell[1] = a;
  cell[2] = b;
  cell[3] = c;
  cell[4] = al;
  cell[5] = be;
  cell[6] = ga;
  return cell;
}

// An isotropic U = 0.01 A^2 in an orthorhombic cell: beta_ii = 2 pi^2 U / a_i^2, the cross
// terms 0; three eigenvalues 0.01, B = 8 pi^2 0.01 = 0.7896.
TEST(DisplacementAnalysis, IsotropicTensorHasThreeEqualAxesAndItsB) {
  const Table1<float, 6> cell = Cell(8.48f, 5.398f, 6.958f, 90, 90, 90);
  Table1<float, 6> beta;
  for (int i = 1; i <= 3; ++i)
    beta[i] = static_cast<float>(kTwoPiSquared * 0.01 / (cell[i] * cell[i]));
  const DisplacementAxes axes = AnalyseDisplacement(beta, cell);
  for (double v : axes.value) EXPECT_NEAR(v, 0.01, 1e-7);
  EXPECT_NEAR(axes.Biso, 0.78957, 1e-4);
}

// U33 = 0.04 alone along c of a monoclinic cell (beta 110 degrees): the largest axis lies along
// c (0 degrees with c, 90 with b), the others have value 0; B = 8 pi^2 0.04 / 3 = 1.0528.
TEST(DisplacementAnalysis, AxialTensorPointsAlongItsCellEdge) {
  const Table1<float, 6> cell = Cell(5.0f, 6.0f, 7.0f, 90, 110, 90);
  // c* = 1 / (c sin beta) in this cell.
  const double cstar = 1.0 / (7.0 * std::sin(110.0 * 3.14159265358979 / 180.0));
  Table1<float, 6> beta;
  beta[3] = static_cast<float>(kTwoPiSquared * 0.04 * cstar * cstar);
  const DisplacementAxes axes = AnalyseDisplacement(beta, cell);
  const int big =
      static_cast<int>(std::max_element(axes.value.begin(), axes.value.end()) - axes.value.begin());
  EXPECT_NEAR(axes.value[big], 0.04 * 7.0 * 7.0 * cstar * cstar, 1e-6);
  EXPECT_NEAR(axes.Biso, 78.95683520871486 * axes.value[big] / 3.0, 1e-5);
  EXPECT_NEAR(std::min(axes.angle[big][2], 180.0 - axes.angle[big][2]), 0.0, 0.01);
  EXPECT_NEAR(axes.angle[big][1], 90.0, 0.01);
}

TEST(DisplacementAnalysis, NegativeEigenvalueIsSaidAndHasNoAmplitude) {
  const Table1<float, 6> cell = Cell(5.0f, 5.0f, 5.0f, 90, 90, 90);
  Table1<float, 6> beta;
  beta[1] = 0.01f;
  beta[2] = 0.01f;
  beta[3] = -0.005f;
  const std::vector<std::string> lines = DisplacementAnalysisLines(AnalyseDisplacement(beta, cell));
  ASSERT_EQ(lines.size(), 9u);
  EXPECT_EQ(lines[0], "    U-Eigen Value (A**2) ----      Eigen vector(Orth. syst.)");
  int flagged = 0;
  for (int i = 1; i <= 3; ++i) {
    flagged += lines[i].find("   -> Matrix U non-positive definite! ") != std::string::npos;
  }
  EXPECT_EQ(flagged, 1);
  EXPECT_EQ(lines[4].substr(0, 42), "    Isotropic temperature factor B(A**2): ");
}

}  // namespace
}  // namespace corvinet
