// The normal equations of a cycle: the matrix A, the right-hand side B and the condition value.
#pragma once

#include "records/dimension_limits.h"
#include "records/table1.h"

namespace corvinet {

// After solving and scaling by chi-square, A is the covariance matrix.
struct NormalMatrix {
  Table2<float, DimensionLimits::MSZ, DimensionLimits::MSZ> A;
  Table1<float, DimensionLimits::MSZ> B;
  float Condition = 0.0f;
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
