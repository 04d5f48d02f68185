// Inversion of the normal matrix and solution for the shifts, in double precision.
#pragma once

#include "records/normal_matrix.h"

namespace corvinet {

// How a solution of the normal equations ended.
enum class SolveStatus {
  Solved,
  Singular,  // a pivot below 1.0E-38 after equilibration
};

struct SolveResult {
  SolveStatus status = SolveStatus::Solved;
  int parameter = 0;  // for Singular: the parameter whose pivot vanished
};

// Gauss-Jordan inversion with row equilibration and a column pivot search.
// When solved, A holds the inverse, B the shifts and Condition the product of
// the infinity norms of A and of its inverse. A singular matrix returns its
// status with A, B and Condition untouched.
SolveResult SolveNormalEquations(NormalMatrix& normal, SolverWork& work, int n);

// The same solution from the double-precision sums SumA (both triangles) and
// SumB, which it leaves as they are, with the diagonal of the matrix scaled
// by 1 + lambda (the Marquardt damping; lambda 0 for an undamped cycle).
SolveResult SolveNormalSums(NormalMatrix& normal, SolverWork& work, int n, double lambda);

}  // namespace corvinet
