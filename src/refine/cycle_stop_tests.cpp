// The tests that stop or end the cycles: a singular normal matrix, divergence of chi-square and
// convergence of the shifts.
#include "refine/cycle_stop_tests.h"

#include <cmath>
#include <cstdlib>
#include <string>

#include "format/fortran_format.h"
#include "refine/equation_solver.h"
#include "refine/parameter_names.h"
#include "surface/console.h"

namespace corvinet {

std::string SingularParameterLine(const Job& job, int L) {
  const std::string name = ParameterDescription(job, L);
  return Fmt("(A,I4,A,A)", " ==> Parameter no.:", L, ": ",
             name.empty() ? std::string("held by no value of the model") : name);
}

void StopOnSingularMatrix(Job& job, int fitted) {
  for (int i = 1; i <= fitted; ++i) {
    if (job.refinement.normal.A(i, i) >= 1.0e-30f) continue;
    const std::string words =
        Fmt("(A,I4)", " ==> Singular matrix!!, problem with parameter no.:", i);
    const std::string name = SingularParameterLine(job, i);
    WriteLine(job, Unit::Out, words);
    WriteLine(job, Unit::Out, name);
    ConsoleLine(job, words);
    ConsoleLine(job, name);
    StopBox(job, " Singular Matrix!! ");
  }
}

void SolveCycleEquations(Job& job, int fitted, double lambda) {
  RefinementState& s = job.refinement;
  const SolveResult result = SolveNormalSums(s.normal, s.solver, fitted, lambda);
  if (result.status == SolveStatus::Solved) return;
  const std::string name = SingularParameterLine(job, result.parameter);
  WriteLine(job, Unit::Out, " ==> Singular matrix!!, fix some parameters!");
  WriteLine(job, Unit::Out, name);
  ConsoleLine(job, " Singular matrix!!, fix some parameters!");
  ConsoleLine(job, name);
  StopBox(job, " Singular Matrix!! ");
}

void StopOnDivergence(Job& job, int cycle) {
  const RefinementState& s = job.refinement;
  if (s.PreviousChi2 - s.GlobalChi2 > 0.0f) return;
  ConsoleLineWithNumber(job, " STOP at cycle", cycle, 0.0f, 1);
  ConsoleLine(job, " because of divergence");
  StopBox(job, " STOP because of divergence");
}

int FirstUnconverged(Job& job, int cycle, int fitted) {
  const NormalMatrix& n = job.refinement.normal;
  for (int i = 1; i <= fitted; ++i) {
    float t = job.run.EPS * std::sqrt(std::fabs(n.A(i, i)));
    if (t <= 1.0e-7f) t = 1.0e-7f;
    const float shift = n.B[i];
    if (cycle == job.run.NCY || std::fabs(shift) > t) {
      const std::string line = Fmt("(A,I3,A,F8.2,A)", " Convergence not reached because Shift-Par(",
                                   i, ")/(eps*Sigma)=", shift / t, " abs> 1");
      if (cycle != job.run.NCY) ConsoleLine(job, line);
      return i;
    }
  }
  return 0;
}

}  // namespace corvinet
