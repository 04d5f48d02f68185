// The exports of a pattern in the final report and the line naming what this version does not
// write.
#include "results/pattern_exports.h"

#include <cstdlib>

#include "format/fortran_format.h"
#include "io/file_set.h"
#include "surface/console.h"

namespace corvinet {

void WritePatternExports(Job& job, int ip) {
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    const Phase& ph = job.phases[f];
    if (ip != 1 || ph.More == 0) continue;
    if (ph.Jvi == 1 || ph.Jvi == 2) {
      NotWrittenLine(job, Fmt("(A,I2)", "the Schakal/STRUPLO file (.sch) of phase", f));
    }
    if (ph.Jdi == 2 && f > DimensionLimits::NPHT) StopBox(job, "Illegal phase number");
  }
  const Pattern& p = job.patterns[ip];
  if (p.JFOU != 0) NotWrittenLine(job, Fmt("(A,I2)", "the Fourier file (.fou) of pattern", ip));
  if (std::abs(p.JFOU) == 2) NotWrittenLine(job, "the SHELX file (.ins)");
  if (std::abs(p.JFOU) == 3 || std::abs(p.JFOU) == 4) {
    NotWrittenLine(job, "the Fourier template (.inp)");
  }
  if (p.JLKH != 0) OpenFiles(job, FileKind::kReflectionOutput, ip, 0);
  if (job.run.JCIL == 2) NotWrittenLine(job, "the collected results file (.sav)");
}

void NotWrittenLine(Job& job, const std::string& what) {
  WriteLine(job, Unit::Out, " => This version of Corvinet does not write " + what);
}

}  // namespace corvinet
