// Principal axes of an anisotropic displacement by the Jacobi rotations of a symmetric matrix.
#include "model/displacement_analysis.h"

#include <cmath>

#include "format/fortran_format.h"

namespace corvinet {

namespace {

using Matrix = std::array<std::array<double, 3>, 3>;

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegree = 180.0 / kPi;
constexpr int kSweeps = 50;

// Columns: the cell edges a, b, c in Cartesian axes.
Matrix EdgeMatrix(const Table1<float, 6>& cell) {
  const double a = cell[1], b = cell[2], c = cell[3];
  const double ca = std::cos(cell[4] / kDegree), cb = std::cos(cell[5] / kDegree);
  const double cg = std::cos(cell[6] / kDegree), sg = std::sin(cell[6] / kDegree);
  const double v =
      std::sqrt(std::fmax(1.0 - ca * ca - cb * cb - cg * cg + 2.0 * ca * cb * cg, 0.0));
  return {{{a, b * cg, c * cb}, {0.0, b * sg, c * (ca - cb * cg) / sg}, {0.0, 0.0, c * v / sg}}};
}

// Reciprocal lengths a*, b*, c*: the row norms of the inverse of the edge matrix.
std::array<double, 3> ReciprocalLengths(const Matrix& m) {
  const double det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                     m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                     m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
  Matrix inv{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const int r1 = (j + 1) % 3, r2 = (j + 2) % 3, c1 = (i + 1) % 3, c2 = (i + 2) % 3;
      inv[i][j] = (m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1]) / det;
    }
  }
  std::array<double, 3> len{};
  for (int i = 0; i < 3; ++i) {
    len[i] = std::sqrt(inv[i][0] * inv[i][0] + inv[i][1] * inv[i][1] + inv[i][2] * inv[i][2]);
  }
  return len;
}

// Eigenvalues (diagonal of `a` on return) and eigenvectors (columns of `v`) of a symmetric matrix.
void Jacobi(Matrix& a, Matrix& v) {
  v = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  for (int sweep = 0; sweep < kSweeps; ++sweep) {
    const double off = a[0][1] * a[0][1] + a[0][2] * a[0][2] + a[1][2] * a[1][2];
    if (off < 1.0e-30) return;
    for (int p = 0; p < 2; ++p) {
      for (int q = p + 1; q < 3; ++q) {
        if (a[p][q] == 0.0) continue;
        const double theta = 0.5 * std::atan2(2.0 * a[p][q], a[q][q] - a[p][p]);
        const double c = std::cos(theta), s = std::sin(theta);
        for (int k = 0; k < 3; ++k) {  // columns p and q
          const double akp = a[k][p], akq = a[k][q];
          a[k][p] = c * akp - s * akq;
          a[k][q] = s * akp + c * akq;
        }
        for (int k = 0; k < 3; ++k) {  // rows p and q
          const double apk = a[p][k], aqk = a[q][k];
          a[p][k] = c * apk - s * aqk;
          a[q][k] = s * apk + c * aqk;
        }
        for (int k = 0; k < 3; ++k) {
          const double vkp = v[k][p], vkq = v[k][q];
          v[k][p] = c * vkp - s * vkq;
          v[k][q] = s * vkp + c * vkq;
        }
      }
    }
  }
}

}  // namespace

void SymmetricEigen(Matrix& a, Matrix& v) {
  Jacobi(a, v);
}

DisplacementAxes AnalyseDisplacement(const Table1<float, 6>& beta, const Table1<float, 6>& cell) {
  const Matrix edges = EdgeMatrix(cell);
  const std::array<double, 3> star = ReciprocalLengths(edges);
  static const int kSlot[3][3] = {{1, 4, 5}, {4, 2, 6}, {5, 6, 3}};
  Matrix u{};  // U(i,j) = beta(i,j) / (2 pi^2 a*_i a*_j), then scaled back by a*_i a*_j
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const double uij = 0.5 / (kPi * kPi) * beta[kSlot[i][j]] / (star[i] * star[j]);
      u[i][j] = uij * star[i] * star[j];
    }
  }
  Matrix cart{};  // E u E^T
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      for (int k = 0; k < 3; ++k) {
        for (int l = 0; l < 3; ++l) cart[i][j] += edges[i][k] * u[k][l] * edges[j][l];
      }
    }
  }
  DisplacementAxes axes;
  axes.Biso = 8.0 * kPi * kPi * (cart[0][0] + cart[1][1] + cart[2][2]) / 3.0;
  Matrix vectors{};
  Jacobi(cart, vectors);
  for (int n = 0; n < 3; ++n) {
    axes.value[n] = cart[n][n];
    for (int k = 0; k < 3; ++k) axes.vector[n][k] = vectors[k][n];
    for (int e = 0; e < 3; ++e) {
      const double length = std::sqrt(edges[0][e] * edges[0][e] + edges[1][e] * edges[1][e] +
                                      edges[2][e] * edges[2][e]);
      double dot = 0.0;
      for (int k = 0; k < 3; ++k) dot += axes.vector[n][k] * edges[k][e] / length;
      axes.angle[n][e] = std::acos(std::fmax(-1.0, std::fmin(1.0, dot))) * kDegree;
    }
  }
  return axes;
}

std::vector<std::string> DisplacementAnalysisLines(const DisplacementAxes& axes) {
  std::vector<std::string> lines;
  lines.push_back("    U-Eigen Value (A**2) ----      Eigen vector(Orth. syst.)");
  for (int n = 0; n < 3; ++n) {
    std::string line = Fmt("(F16.5,A,3F10.5)", axes.value[n], "          ----", axes.vector[n][0],
                           axes.vector[n][1], axes.vector[n][2]);
    if (axes.value[n] < 0.0) line += "   -> Matrix U non-positive definite! ";
    lines.push_back(line);
  }
  lines.push_back(Fmt("(A,F10.4)", "    Isotropic temperature factor B(A**2): ", axes.Biso));
  lines.push_back("     R.M.S. in ANGSTROMS ------       Angles with A, B, C");
  for (int n = 0; n < 3; ++n) {
    if (axes.value[n] < 0.0) {
      lines.push_back(Fmt("(A,3F10.2)", "                                  ", axes.angle[n][0],
                          axes.angle[n][1], axes.angle[n][2]));
    } else {
      lines.push_back(Fmt("(F16.5,A,3F10.2)", std::sqrt(axes.value[n]), "                  ",
                          axes.angle[n][0], axes.angle[n][1], axes.angle[n][2]));
    }
  }
  return lines;
}

}  // namespace corvinet
