// The analysis of an anisotropic displacement: principal mean-square amplitudes and axes, the
// equivalent B, and the angles of the axes with the cell edges.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "records/table1.h"

namespace corvinet {

// Principal axes of a displacement tensor in Cartesian axes (a along x, b in the xy plane).
struct DisplacementAxes {
  std::array<double, 3> value{};                  // eigenvalues of U (A^2)
  std::array<std::array<double, 3>, 3> vector{};  // vector[n]: unit eigenvector of value[n]
  double Biso = 0.0;                              // 8 pi^2 trace(U) / 3
  std::array<std::array<double, 3>, 3> angle{};   // angle[n][axis]: degrees with a, b, c
};

// The axes of the betas (b11 b22 b33 b12 b13 b23, exp(-(b11 h^2 + ... + 2 b12 hk + ...)))
// of a cell (a b c alpha beta gamma).
DisplacementAxes AnalyseDisplacement(const Table1<float, 6>& beta, const Table1<float, 6>& cell);

// Eigenvalues (the diagonal of `a` on return) and unit eigenvectors (the
// columns of `v`) of a symmetric 3x3 matrix, by Jacobi rotations.
void SymmetricEigen(std::array<std::array<double, 3>, 3>& a,
                    std::array<std::array<double, 3>, 3>& v);

// The report lines of the analysis.
std::vector<std::string> DisplacementAnalysisLines(const DisplacementAxes& axes);

}  // namespace corvinet
