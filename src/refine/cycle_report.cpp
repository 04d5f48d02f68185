// The reports of a refinement cycle: the cycle head on the console, the diagonal of the normal
// matrix and the results of the cycle.
#include "refine/cycle_report.h"

#include "format/fortran_format.h"
#include "refine/bragg_profile.h"
#include "refine/parameter_update.h"
#include "surface/console.h"

namespace corvinet {

void ShowCycleHead(Job& job, int cycle) {
  ConsoleLine(job, "   ");
  ConsoleLineWithNumber(job, " ===================>>> CYCLE:", cycle, 0.0f, 1);
  ConsoleLine(job, "   ");
  ConsoleLine(job, " Control file *.pcr: " + job.driver.PcrCode);
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    ConsoleLine(job, Fmt("(A,I3,1X,A)", " Pattern: ", ip, job.patterns[ip].DatCode));
  }
}

void WriteDiagonal(Job& job, int cycle, int fitted) {
  WriteLine(job, Unit::Out,
            Fmt("(A,I4)", " => Diagonal of LSQ matrix before inversion at cycle:", cycle));
  for (int i = 1; i <= fitted; ++i) {
    WriteLine(job, Unit::Out, Fmt("(I5,A,E14.6)", i, ":", job.refinement.normal.A(i, i)));
  }
}

void ReportCycle(Job& job, int cycle, const BraggProfile& profile) {
  ConsoleLineWithNumber(job, " Writing results for cycle", cycle, 0.0f, 1);
  WriteCycleResults(job, cycle, job.refinement.EndMarker, profile);
}

}  // namespace corvinet
