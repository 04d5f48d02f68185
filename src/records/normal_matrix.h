// The normal equations of a cycle: the matrix A, the right-hand side B and the condition value.
#pragma once

#include "records/dimension_limits.h"
#include "records/run_table.h"
#include "records/table1.h"

namespace corvinet {

// The side of the equations before a large run widens them.
inline constexpr int kDefaultEquationSide = DimensionLimits::kDefaultMSZ;

// The point loop adds the rows of a few points at a time into A and B (upper
// triangle) and then adds those into the double-precision sums SumA and SumB,
// so that a long pattern keeps the digits of its sums; after the pass A and
// B are the 32-bit stored form of the sums. After solving and scaling by
// chi-square, A is the covariance matrix and B the shifts.
// The tables are square in the parameter capacity: the default, or the
// parameters of a large run once the control file has named them.
struct NormalMatrix {
  RunTable2<float> A{kDefaultEquationSide,
                     kDefaultEquationSide};  // the matrix, then the covariance
  RunTable1<float> B{kDefaultEquationSide};  // the right-hand side, then the shifts
  float Condition = 0.0f;                    // condition value of the solution
  RunTable2<double> SumA{kDefaultEquationSide, kDefaultEquationSide};  // sums of the matrix
  RunTable1<double> SumB{kDefaultEquationSide};  // sums of the right-hand side
  int pendingPoints = 0;                         // points in A and B not yet added to the sums
};

// Double-precision working store of the solver, kept with the job so that a
// cycle allocates nothing.
struct SolverWork {
  RunTable2<double> Work{kDefaultEquationSide, kDefaultEquationSide};
  RunTable1<double> Rhs{kDefaultEquationSide};
  RunTable1<double> RowScale{kDefaultEquationSide};
  RunTable1<int> Perm{kDefaultEquationSide};
};

}  // namespace corvinet
