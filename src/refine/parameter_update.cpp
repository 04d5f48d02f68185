// The results pass of a refinement cycle: every refined value takes its shift, and values, shifts
// and sigmas are printed.
#include "refine/parameter_update.h"

#include <string>
#include <vector>

#include "format/fortran_format.h"
#include "observations/fourier.h"
#include "refine/apply_shift.h"
#include "refine/atom_update.h"
#include "refine/global_update.h"
#include "refine/magnetic_update.h"
#include "refine/parameter_report.h"
#include "refine/peak_update.h"
#include "refine/reliability.h"
#include "refine/restraint_report.h"
#include "refine/update_pass.h"
#include "surface/console.h"

namespace corvinet {

namespace {

void WriteHeadings(Job& job, const UpdatePass& pass) {
  if (pass.writeOut) WriteLine(job, Unit::Out, CycleHeading(pass.cycle));
  if (pass.lastPass) {
    WriteLine(job, Unit::Sum, " ==> RESULTS OF REFINEMENT:");
    WriteLine(job, Unit::Sum, Fmt("(A,I5)", " => No. of fitted parameters: ", job.run.MAXS));
  }
  if (pass.converged) {
    ConsoleLine(job,
                Fmt("(A,I4)", " Convergence reached at this CYCLE !!!!: CYCLE No.", pass.cycle));
    WriteLine(job, Unit::Out, " =>  Convergence reached at this CYCLE !!!!");
    WriteLine(job, Unit::Out, " =>  Parameter shifts set to zero");
  }
}

void UpdatePhase(Job& job, int phase, const UpdatePass& pass) {
  const Phase& ph = job.phases[phase];
  WritePassLine(job, pass, PhaseHeading(phase, ph.PhaseTitle));
  UpdateAtoms(job, phase, pass);
  ReportDistanceRestraints(job, phase, pass);
  if (IsMagneticPhase(ph)) UpdateMagneticMoments(job, phase, pass);
  ReportMomentRestraints(job, phase, pass);
  UpdatePropagationVectors(job, phase, pass);
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (ph.pat[ip].Contribution != 0) UpdatePeakParameters(job, phase, ip, pass);
  }
}

void UpdatePattern(Job& job, int ip, const UpdatePass& pass) {
  UpdateGlobalParameters(job, ip, pass);
  if (job.run.NRELL != 0 && pass.writeOut) {
    ReportLimitBreaks(job, pass.writeSum, job.limits.breaks, job.run.MAXS);
  }
  ReportReliability(job, ip, pass.writeOut, pass.writeSum, pass.cycle,
                    MethodLabel(job.patterns[ip]), job.refinement.normal.Condition);
}

void ReportGlobalChi2(Job& job, const UpdatePass& pass) {
  const std::string line = Fmt(
      "(A,G12.4)", " => Global user-weigthed Chi2 (Bragg contrib.):", job.refinement.GlobalChi2);
  WritePassLine(job, pass, line);
  ConsoleLine(job, line);
}

bool UsesFourierFilter(const Pattern& p) {
  return p.NBCKGD == 2 && p.backgroundSign == -1;
}

}  // namespace

std::string MethodLabel(const Pattern& pattern) {
  return pattern.IWGT > 0 ? "M.L." : "L.S.";
}

void WriteCycleResults(Job& job, int cycle, int endMarker, const BraggProfile& profile) {
  const UpdatePass pass = MakeUpdatePass(job, cycle, endMarker);
  const bool profiles = job.run.ICRYG == 0;
  if (job.run.NRELL != 0) ClearLimitPass(job.limits);
  // The Bragg factors belong to the parameters the points of this cycle were
  // calculated with: they are taken before any value moves (a reflection
  // whose ring slot was reused is computed again from those same values) and
  // reported in their place after the Chi2.
  const std::vector<std::string> bragg = ComputeBraggFactors(job, profile);
  WriteHeadings(job, pass);
  if (profiles) {
    for (int ip = 1; ip <= job.run.NPATT; ++ip) ReliabilityIndices(job, ip);
  }
  for (int phase = 1; phase <= job.run.NPHASE; ++phase) UpdatePhase(job, phase, pass);
  if (profiles) {
    for (int ip = 1; ip <= job.run.NPATT; ++ip) UpdatePattern(job, ip, pass);
  }
  ReportGlobalChi2(job, pass);
  ReportBraggFactors(job, pass.writeOut, bragg);
  if (!profiles) return;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    Pattern& p = job.patterns[ip];
    if (UsesFourierFilter(p)) FourierFilter(job, ip, p.Ycalc.ptr());
  }
}

}  // namespace corvinet
