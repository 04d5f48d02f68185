// Inversion of the normal matrix and solution for the shifts, in double precision.
#pragma once

#include "records/job.h"
#include "records/normal_matrix.h"

namespace corvinet {

// Gauss-Jordan inversion with row equilibration and a column pivot search.
// On return A holds the inverse, B the shifts and Condition the product of
// the infinity norms of A and of its inverse. A singular matrix stops the run.
void SolveNormalEquations(Job& job, NormalMatrix& normal, SolverWork& work, int n);

}  // namespace corvinet
