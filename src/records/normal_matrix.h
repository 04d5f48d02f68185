// The normal equations of a cycle: the matrix A, the right-hand side B and the condition value.
#pragma once

#include "records/dimension_limits.h"
#include "records/table1.h"

namespace corvinet {

// The point loop adds the rows of a few points at a time into A and B (upper
// triangle) and then adds those into the double-precision sums SumA and SumB,
// so that a long pattern keeps the digits of its sums; after the pass A and
// B are the 32-bit stored form of the sums. After solving and scaling by
// chi-square, A is the covariance matrix and B the shifts.
struct NormalMatrix {
  Table2<float, DimensionLimits::MSZ, DimensionLimits::MSZ> A;  // the matrix, then the covariance
  Table1<float, DimensionLimits::MSZ> B;  // the right-hand side, then the shifts
  float Condition = 0.0f;                 // condition value of the solution
  Table2<double, DimensionLimits::MSZ, DimensionLimits::MSZ> SumA;  // sums of the matrix
  Table1<double, DimensionLimits::MSZ> SumB;                        // sums of the right-hand side
  int pendingPoints = 0;  // points in A and B not yet added to the sums
};

// Double-precision working store of the solver, kept with the job so that a
// cycle allocates nothing.
struct SolverWork {
  Table2<double, DimensionLimits::MSZ, DimensionLimits::MSZ> Work;
  Table1<double, DimensionLimits::MSZ> Rhs;
  Table1<double, DimensionLimits::MSZ> RowScale;
  Table1<int, DimensionLimits::MSZ> Perm;
};

}  // namespace corvinet
