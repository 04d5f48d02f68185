// The tests that stop or end the cycles: structure factors this version cannot calculate, a
// singular normal matrix, divergence of chi-square and convergence of the shifts.
#pragma once

#include <string>

#include "records/job.h"

namespace corvinet {

// The line that names parameter L after a singular matrix: its number and
// what it moves, in the words of the parameter report.
std::string SingularParameterLine(const Job& job, int L);

// A diagonal element of the normal matrix below 1E-30 names its parameter and stops the run.
void StopOnSingularMatrix(Job& job, int fitted);

// Solves the normal equations of the `fitted` parameters of the refinement
// state, with the diagonal scaled by 1 + lambda. A singular matrix writes
// " ==> Singular matrix!!, fix some parameters!" on the report, " Singular
// matrix!!, fix some parameters!" on the console, each followed by the line
// naming the parameter whose pivot vanished, and stops with " Singular
// Matrix!! ".
void SolveCycleEquations(Job& job, int fitted, double lambda);

// With IDUM 2 a chi-square that does not fall from the last cycle stops the run.
void StopOnDivergence(Job& job, int cycle);

// The first parameter whose damped shift exceeds EPS sigma, or 0; at the last
// cycle (NCY) the first parameter counts as not converged.
int FirstUnconverged(Job& job, int cycle, int fitted);

}  // namespace corvinet
