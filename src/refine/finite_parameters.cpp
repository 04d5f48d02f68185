// The watch over refined values that stop being numbers: such a run has diverged.
#include "refine/finite_parameters.h"

#include <cmath>
#include <string>

#include "format/fortran_format.h"
#include "refine/parameter_names.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// The parameter of the first refined value of the table that is not finite, or 0.
template <typename Values, typename Words>
int FirstNonFinite(const Values& values, const Words& words, int count) {
  for (int n = 1; n <= count; ++n) {
    if (words[n].parameterNumber > 0 && !std::isfinite(values[n])) return words[n].parameterNumber;
  }
  return 0;
}

int PatternNonFinite(const Pattern& p) {
  int L = FirstNonFinite(p.GLB, p.GLBword, DimensionLimits::NGL);
  if (L == 0) L = FirstNonFinite(p.BackInt, p.backPointWord, DimensionLimits::IBACP + 1);
  return L;
}

int PhaseNonFinite(const RunData& data, const Phase& ph) {
  for (int ip = 1; ip <= data.run.NPATT; ++ip) {
    if (ph.pat[ip].Contribution == 0) continue;
    const int L = FirstNonFinite(ph.pat[ip].PAR, ph.pat[ip].PAC, DimensionLimits::MPAR);
    if (L != 0) return L;
  }
  for (int v = 1; v <= ph.Nvk && v <= DimensionLimits::NEQV; ++v) {
    const int L = FirstNonFinite(ph.vectors[v].KVEC, ph.vectors[v].KCODE, 3);
    if (L != 0) return L;
  }
  return 0;
}

}  // namespace

int FirstNonFiniteParameter(const RunData& data) {
  for (int ip = 1; ip <= data.run.NPATT; ++ip) {
    const int L = PatternNonFinite(data.patterns[ip]);
    if (L != 0) return L;
  }
  int row = 0;
  for (int k = 1; k <= data.run.NPHASE; ++k) {
    const Phase& ph = data.phases[k];
    int L = PhaseNonFinite(data, ph);
    for (int a = 1; L == 0 && a <= ph.Nat && row + a <= DimensionLimits::NATS; ++a) {
      L = FirstNonFinite(data.atoms[row + a].ATP, data.atoms[row + a].ATC, DimensionLimits::NAT_P);
    }
    if (L != 0) return L;
    row += ph.Nat;
  }
  return 0;
}

void StopOnNonFiniteParameters(Job& job, int cycle) {
  const int L = FirstNonFiniteParameter(job);
  if (L == 0) return;
  const std::string words = Fmt("(A,I0,A,A,A)", " => Parameter ", L, " (",
                                ParameterDescription(job, L), ") is no longer a finite number");
  WriteLine(job, Unit::Out, words);
  ConsoleLine(job, words);
  ConsoleLineWithNumber(job, " STOP at cycle", cycle, 0.0f, 1);
  ConsoleLine(job, " because of divergence");
  StopBox(job, " STOP because of divergence");
}

}  // namespace corvinet
