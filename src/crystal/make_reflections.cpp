// The reflections of one phase in one pattern as the pattern block asks for them by Irf.
#include "crystal/intensity_file.h"
#include "crystal/reflection_generation.h"
#include "format/fortran_format.h"
#include "surface/console.h"

namespace corvinet {
namespace {

// Whether no phase after k contributes to pattern ip.
bool LastPhaseOfPattern(const Job& job, int k, int ip) {
  for (int later = k + 1; later <= job.run.NPHASE; ++later) {
    if (job.phases[later].pat[ip].Contribution != 0) return false;
  }
  return true;
}

void MakeByIrf(Job& job, int k, int ip, LorentzFactor lorentz) {
  switch (job.phases[k].pat[ip].Irf) {
    case 0:
    case -1:
      ConsoleLine(job, Fmt("(A,I2)", " => Generating reflections for pattern: ", ip));
      GenerateReflections(job, k, ip, lorentz);
      return;
    case 1:
    case 2:
    case -2:
    case 3:
    case -3:
      ConsoleLine(job, Fmt("(A,I2)", " => Reading reflections for pattern: ", ip));
      ReflectionsFromFile(job, k, ip, lorentz);
      return;
    case 4:
    case -4:
      ConsoleLine(job, Fmt("(A,I2)", " => Reading integrated intensities for pattern: ", ip));
      ReadIntensities(job, k, ip);
      return;
    default:
      StopBox(job, " Illegal IRF value ");
  }
}

}  // namespace

void MakeReflections(Job& job, int k, int ip, LorentzFactor lorentz) {
  ReflectionTable& table = job.patterns[ip].reflections;
  table.start[k] = table.total;
  MakeByIrf(job, k, ip, lorentz);
  table.count[k] = table.total - table.start[k];
  SortReflections(table, table.count[k], k);
  if (LastPhaseOfPattern(job, k, ip)) SortReflections(table, table.total, kWholePattern);
}

}  // namespace corvinet
