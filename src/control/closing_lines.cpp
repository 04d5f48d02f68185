// Closing lines of the control file: hard limits, the Monte Carlo line and the end lines.
#include "control/closing_lines.h"

#include <algorithm>

#include "control/run_block.h"
#include "format/fortran_format.h"
#include "io/field_reader.h"
#include "surface/console.h"

namespace corvinet {

void ReadHardLimits(Job& job) {
  ParameterLimits& limits = job.limits;
  for (int n = 1; n <= FittedCount(job); ++n) {
    limits.low[n] = limits.high[n] = 0.0f;
    limits.limited[n] = 0;
  }
  WriteReports(job, " => The following parameter limits have been read:");
  int greatest = 0;
  for (int line = 1; line <= job.run.NRELL; ++line) {
    int n = 0;
    float low = 0.0f;
    float high = 0.0f;
    ReadMaskedLine(job, Unit::Control, "iff", job.LINE, {&n, &low, &high});
    WriteReports(job, Fmt("(A,I4,A,2F12.4)", "  -> Parameter no.:", n, " Limits: ", low, high));
    if (n < 1 || n > job.dimensions.MSZ) {
      ConsoleLine(job, Fmt("(A,I6,A,I4)", " => Parameter number of a limit:", n, "  allowed: 1 to",
                           job.dimensions.MSZ));
      StopBox(job, " => Parameter number of a hard limit out of range!");
    }
    GrowParameterTables(job, n);
    limits.low[n] = low;
    limits.high[n] = high;
    limits.limited[n] = 1;
    greatest = std::max(greatest, n);
  }
  if (job.run.ICRYG == 2) job.run.MAXS = greatest;
}

void ReadMonteCarloLine(Job& job) {
  RunOptions& r = job.run;
  ReadMaskedLine(job, Unit::Control, "iiii", job.LINE,
                 {&r.Nconfg, &r.Nsolu, &r.Num_Ref, &r.Nscalef});
  WriteReports(job, Fmt("(A,I8,A,I6,A)", "  => A number of ", r.Nconfg,
                        " random configurations will be tested on ", r.Num_Ref, " observations"));
  WriteReports(job, Fmt("(A,I4,A)", "     The best ", r.Nsolu, " solutions will be printed"));
  if (r.Nscalef != 0) WriteReports(job, "     The scale factor will be calculated automatically");
}

void ReadEndLines(Job& job) {
  std::string line;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    Pattern& p = job.patterns[ip];
    if (p.IPL != 1) continue;
    p.Iscale = p.Idif = 100;
    if (!ReadNonCommentRecord(job, line)) return;
    ReadListLine(line, {{ReadTarget(&p.Iscale), ReadTarget(&p.Idif)}});
  }
  if (job.run.JCIL == 2 && ReadNonCommentRecord(job, line)) {
    ReadListLine(line, {{ReadTarget(&job.run.rpaRangeLow), ReadTarget(&job.run.rpaRangeHigh)}});
  }
}

}  // namespace corvinet
