// The normal equations of a cycle: the matrix A, the right-hand side B and the condition value.
#pragma once

#include "records/dimension_limits.h"
#include "records/table1.h"

namespace corvinet {

// The point loop sums the equations in double precision (SumA, upper
// triangle, and SumB); A and B are their stored 32-bit form. After solving
// and scaling by chi-square, A is the covariance matrix and B the shifts.
struct NormalMatrix {
  Table2<float, DimensionLimits::MSZ, DimensionLimits::MSZ> A;  // the matrix, then the covariance
  Table1<float, DimensionLimits::MSZ> B;  // the right-hand side, then the shifts
  float Condition = 0.0f;                 // condition value of the solution
  Table2<double, DimensionLimits::MSZ, DimensionLimits::MSZ> SumA;  // sums of the matrix
  Table1<double, DimensionLimits::MSZ> SumB;                        // sums of the right-hand side
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
