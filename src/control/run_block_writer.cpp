// The head of a written control file: title, form, job lines, file names and output lines.
#include <vector>

#include "control/control_writer.h"
#include "control/global_parameters.h"
#include "format/fortran_format.h"
#include "format/text.h"

namespace corvinet {

using control_writer::Commented;
using control_writer::Head;
using control_writer::Put;

namespace {

// The title line. The reader reads 70 columns and drops the word "COMM" and
// the blank behind it, so the blank is written back between them and the
// title keeps the 65 columns that read back.
void AppendTitle(const Job& job, ControlLines& lines) {
  Put(lines, Commented(job) ? "COMM " + CutText(job.run.Title, 65) : CutText(job.run.Title, 70));
}

// In the single-pattern form the older asymmetry is chosen by a negative
// number of phases.
int TypedPhaseCount(const Job& job) {
  return job.patterns[1].IASYM == 1 ? -job.run.NPHASE : job.run.NPHASE;
}

void AppendSingleJobLine(const Job& job, ControlLines& lines) {
  const RunOptions& r = job.run;
  const Pattern& p = job.patterns[1];
  if (Commented(job)) {
    Put(lines, "! Files => DAT-file: " + TrimmedCopy(p.DatCode) +
                   ",  PCR-file: " + TrimmedCopy(job.driver.PcrCode));
  }
  Head(job, lines, "!Job Npr Nph Nba Nex Nsc Nor Dum Iwg Ilo Ias Res Ste Nre Cry Uni Cor");
  Put(lines,
      FmtReadBack("(17I4)", p.JOBTYP, TypedNumber(ProfileOf(p)), TypedPhaseCount(job),
                  TypedBackground(p), p.NEXCRG, p.NSCAT, p.NORI, r.IDUM, p.IWGT, p.ILOR, r.IASG,
                  p.IRESO, p.ISTEP, r.NRELL, r.ICRYG, ControlNumber(p.IXUNIT), p.ICORR));
}

void AppendMultiHead(const Job& job, ControlLines& lines) {
  const RunOptions& r = job.run;
  Put(lines, FmtReadBack("(A,I5)", "NPATT  ", r.NPATT));
  std::vector<FormatValue> weights{FormatValue("W_PAT  ")};
  for (int ip = 1; ip <= r.NPATT; ++ip) weights.emplace_back(job.patterns[ip].W_PAT);
  Put(lines, FormatText("(A,5F6.3)", weights, FieldFit::kReadBack));
  Head(job, lines, "!Nph Dum Ias Nre Cry");
  Put(lines, FmtReadBack("(5I4)", r.NPHASE, r.IDUM, r.IASG, r.NRELL, r.ICRYG));
  Head(job, lines, "!Job Npr Nba Nex Nsc Nor Iwg Ilo Res Ste Uni Cor Asym");
  for (int ip = 1; ip <= r.NPATT; ++ip) {
    const Pattern& p = job.patterns[ip];
    Put(lines, FmtReadBack("(13I4)", p.JOBTYP, TypedNumber(ProfileOf(p)), TypedBackground(p),
                           p.NEXCRG, p.NSCAT, p.NORI, p.IWGT, p.ILOR, p.IRESO, p.ISTEP,
                           ControlNumber(p.IXUNIT), p.ICORR, p.IASYM));
  }
  Head(job, lines, "!File names of data(patterns) files");
  for (int ip = 1; ip <= r.NPATT; ++ip) Put(lines, TrimmedCopy(job.patterns[ip].DatCode));
}

void AppendResolutionNames(const Job& job, ControlLines& lines) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    const Pattern& p = job.patterns[ip];
    if (p.IRESO == 0) continue;
    Head(job, lines, FmtReadBack("(A,I3)", "!  Resolution file for Pattern# ", ip));
    Put(lines, TrimmedCopy(p.ResolutionFile));
  }
}

void AppendOutputLines(const Job& job, ControlLines& lines) {
  const RunOptions& r = job.run;
  if (r.NPATT > 1) {
    Head(job, lines, "!Mat Pcr Syo Rpa Sym Sho");
    Put(lines, FmtReadBack("(6I4)", r.MAT, r.NXT, r.IPL1, r.JCIL, r.JSY, r.ISHOR));
    Head(job, lines, "!Ipr Ppl Ioc Ls1 Ls2 Ls3 Prf Ins Hkl Fou Ana");
    for (int ip = 1; ip <= r.NPATT; ++ip) {
      const Pattern& p = job.patterns[ip];
      Put(lines, FmtReadBack("(11I4)", p.IOT, p.IPL, p.IPC, p.LST1, p.LST2, p.LST3, p.IPL2, p.INSTR,
                             p.JLKH, p.JFOU, p.IANALY));
    }
    return;
  }
  const Pattern& p = job.patterns[1];
  Head(job, lines, "!Ipr Ppl Ioc Mat Pcr Ls1 Ls2 Ls3 Syo Prf Ins Rpa Sym Hkl Fou Sho Ana");
  Put(lines,
      FmtReadBack("(17I4)", p.IOT, p.IPL, p.IPC, r.MAT, r.NXT, p.LST1, p.LST2, p.LST3, r.IPL1,
                  p.IPL2, p.INSTR, r.JCIL, r.JSY, p.JLKH, p.JFOU, r.ISHOR, p.IANALY));
}

}  // namespace

void AppendRunBlock(const Job& job, ControlLines& lines) {
  AppendTitle(job, lines);
  if (job.run.NPATT == 1) {
    AppendSingleJobLine(job, lines);
  } else {
    AppendMultiHead(job, lines);
  }
  Put(lines, "!");
  AppendResolutionNames(job, lines);
  AppendOutputLines(job, lines);
  Put(lines, "!");
}

}  // namespace corvinet
