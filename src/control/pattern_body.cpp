// The pieces of the body of the control file: the refined-parameter count, the blocks of the
// phases and the closing lines. The caller sequences them with the data and the reflections.
#include "control/pattern_body.h"

#include <cmath>
#include <cstdlib>

#include "control/atom_lines.h"
#include "control/closing_lines.h"
#include "control/global_parameters.h"
#include "control/phase_block.h"
#include "control/profile_lines.h"
#include "control/restraint_lines.h"
#include "format/fortran_format.h"
#include "io/field_range.h"
#include "io/field_reader.h"
#include "surface/console.h"

namespace corvinet {

bool AnyCalculatedPattern(const Job& job) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (IsCalculatedPattern(job.patterns[ip])) return true;
  }
  return false;
}

void ReadRefinedCount(Job& job) {
  const FieldLine line = ReadFieldLine(job, Unit::Control, "i", job.LINE, {&job.run.MAXS});
  CheckIntegerField(job, line, 1, "MAXS", job.run.MAXS, 0, job.dimensions.MSZ);
  GrowParameterTables(job, job.run.MAXS);
  if (AnyCalculatedPattern(job)) job.run.MAXS = 0;
  WriteReports(job, Fmt("(A,I5)", " => Number of Least-Squares parameters varied: ", job.run.MAXS));
}

bool ReadPhaseBlock(Job& job, int k) {
  ConsoleLine(job, Fmt("(A,I2)", " Reading parameters for phase:", k));
  ReadPhase(job, k);
  const Phase& ph = job.phases[k];
  const bool structure = std::abs(ph.Jbt) != 2 && std::abs(ph.Jbt) != 3;
  if (structure) ReadAtoms(job, k);
  ReadProfile(job, k);
  DecodeAtomCodes(job, k);
  DecodeProfileCodes(job, k);
  if (ph.Dis != 0 || ph.Mom != 0) ReadRestraints(job, k);
  return true;
}

void ReadClosingLines(Job& job) {
  DecodeGlobalCodes(job);
  if (job.run.NRELL != 0) ReadHardLimits(job);
  if (job.run.ICRYG == 2) ReadMonteCarloLine(job);
}

}  // namespace corvinet
