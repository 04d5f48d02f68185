// The new control file: order of its blocks, its target unit, the closing lines and the .atm file.
#include "control/control_writer.h"

#include <cmath>
#include <cstdio>

#include "control/control_read_back.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "io/file_replacement.h"
#include "io/file_set.h"
#include "surface/console.h"

namespace corvinet {

namespace control_writer {

void Put(ControlLines& lines, const std::string& text) {
  std::size_t start = 0;
  for (;;) {
    const std::size_t end = text.find('\n', start);
    if (end == std::string::npos) {
      lines.push_back(text.substr(start));
      return;
    }
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
}

bool Commented(const Job& job) {
  return job.run.commentedOutput == 1;
}

void Head(const Job& job, ControlLines& lines, const std::string& text) {
  if (Commented(job)) Put(lines, text);
}

}  // namespace control_writer

using control_writer::Head;
using control_writer::Put;

namespace {

// A sigma in its fixed field while that keeps three digits and a blank before it (0.001 to
// below 10); otherwise in exponent form behind a blank, so that the line reads back the same.
std::string SigmaText(float sigma, const char* fixed) {
  if (sigma >= 0.001f && sigma < 10.0f) return FmtReadBack(fixed, sigma);
  return FmtReadBack("(1X,E10.3)", sigma);
}

// The distance and moment restraints of phase k, as the reader reads them.
void AppendRestraintLines(const Job& job, int k, ControlLines& lines) {
  const Phase& ph = job.phases[k];
  if (ph.Dis != 0) Head(job, lines, "! Soft distance constraints:");
  for (int n = 1; n <= ph.Dis; ++n) {
    const DistanceRestraint& d = ph.restraints.distances[n];
    Put(lines,
        FmtReadBack("(2(A4,1X),I3,4(1X,F10.5),1X,A)", FixedText(d.Atom1, 4), FixedText(d.Atom2, 4),
                    d.ITnum, d.T[1], d.T[2], d.T[3], d.Dist, SigmaText(d.Sigma, "(F10.5)")));
  }
  if (ph.Mom != 0) Head(job, lines, "! Soft moment constraints:");
  for (int n = 1; n <= ph.Mom; ++n) {
    const MomentRestraint& m = ph.restraints.moments[n];
    Put(lines, FmtReadBack("(A2,F8.3,A)", FixedText(m.MomentAtom, 2), m.Moment,
                           SigmaText(m.MomentSigma, "(F8.5)")));
  }
}

void AppendPhase(const Job& job, int k, ControlLines& lines) {
  AppendPhaseHead(job, k, lines);
  AppendAtomLines(job, k, lines);
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (job.phases[k].pat[ip].Contribution != 0) AppendProfileLines(job, k, ip, lines);
  }
  AppendRestraintLines(job, k, lines);
}

// Hard limits, in the order of the parameter numbers.
void AppendHardLimits(const Job& job, ControlLines& lines) {
  Head(job, lines, "! Hard limits for selected parameters:");
  for (int n = 1; n <= job.limits.limited.size(); ++n) {
    if (job.limits.limited[n] == 0) continue;
    Put(lines, FmtReadBack("(I4,2F12.4)", n, job.limits.low[n], job.limits.high[n]));
  }
}

void WriteLines(TextUnit& unit, const ControlLines& lines) {
  for (const std::string& line : lines) WriteRecord(unit, line);
  std::fflush(unit.file);
}

void StopOnWriteFailure(Job& job, const std::string& name) {
  ConsoleLine(job, " => Error writing file: " + name);
  StopBox(job, " Error writing the new control file ");
}

void StopOnWriteFailure(Job& job, const TextUnit& unit) {
  if (unit.file != nullptr && std::ferror(unit.file) == 0) return;
  StopOnWriteFailure(job, unit.name);
}

// The control file being read (unit 1), or the one of the control code.
std::string ControlFileName(Job& job) {
  const TextUnit& unit = job.files.units[Unit::Control];
  return IsOpen(unit) ? unit.name : FileName(job, FileKind::kControl, 0, 0);
}

// A number of the model that is not finite is never written: the run stops
// and the old file stays.
[[noreturn]] void StopOnNonFiniteValue(Job& job) {
  const std::string words = " => A value of the new control file is not a finite number";
  ConsoleLine(job, words);
  WriteLine(job, Unit::Out, words);
  StopBox(job, " => The refinement diverged: the old control file is kept");
}

// A text that would not read back does not replace the old file; the run
// says why and goes on to its end.
void WarnOfUnreadableText(Job& job, const std::string& report) {
  const std::string words = " => The new control file does not read back:";
  ConsoleLine(job, words);
  WriteLine(job, Unit::Out, words);
  ControlLines reportLines;
  Put(reportLines, report);
  for (const std::string& line : reportLines) {
    ConsoleLine(job, line);
    WriteLine(job, Unit::Out, line);
  }
  WriteLine(job, Unit::Out, " => The old control file is kept");
  WarningBox(job, " => The old control file is kept");
}

// The file is replaced whole, through a temporary file beside it, and only
// when the temporary file reads back: a run that is killed, fails while
// writing, or writes a text that does not read back leaves the old file.
void ReplaceControlText(Job& job, const std::string& name, const ControlLines& lines,
                        const ControlEndValues& ends, const ControlTextCheck& check) {
  ReadBackResult found;
  const auto accept = [&](const std::string& temporary) {
    found = check(job, temporary, lines, ends);
    return found.readsBack;
  };
  const ReplaceResult result = ReplaceFileLines(name, lines, accept);
  if (result == ReplaceResult::kRefused) {
    WarnOfUnreadableText(job, found.report);
    return;
  }
  if (result != ReplaceResult::kReplaced) StopOnWriteFailure(job, name);
}

void WriteAtomCoordinateFile(Job& job, int k) {
  OpenFiles(job, FileKind::kAtoms, 1, k);
  TextUnit& unit = job.files.units[Unit::Atoms];
  WriteLines(unit, AtomCoordinateLines(job, k));
  StopOnWriteFailure(job, unit);
  CloseUnit(unit);
}

}  // namespace

float ComposeCode(const Codeword& word) {
  const float magnitude =
      std::fabs(word.multiplier) + 10.0f * static_cast<float>(word.parameterNumber);
  return std::signbit(word.multiplier) ? -magnitude : magnitude;
}

void AppendClosingLines(const Job& job, const ControlEndValues& ends, ControlLines& lines) {
  const RunOptions& r = job.run;
  if (r.NRELL != 0) AppendHardLimits(job, lines);
  if (r.ICRYG == 2) {
    Head(job, lines, "! Nconfg   Nsolu  Num_Ref  Nscalef");
    Put(lines, FmtReadBack("(4I8)", r.Nconfg, r.Nsolu, r.Num_Ref, r.Nscalef));
  }
  for (int ip = 1; ip <= r.NPATT; ++ip) {
    if (job.patterns[ip].IPL != 1) continue;
    Head(job, lines, FmtReadBack("(A,I0)", "! Iscale    Idif   --> Pattern#", ip));
    Put(lines, FmtReadBack("(2I8)", ends.Iscale, ends.Idif));
  }
  if (r.JCIL == 2) {
    Head(job, lines, "!  2Th1    2Th2  ");
    Put(lines, FmtReadBack("(2F8.2)", ends.twoTh1, ends.twoTh2));
  }
}

ControlLines AtomCoordinateLines(const Job& job, int k) {
  const Phase& ph = job.phases[k];
  int ip = 1;
  while (ip < job.run.NPATT && ph.pat[ip].Contribution == 0) ++ip;
  const Table1<float, 6>& cell = ph.pat[ip].CellConstants;
  ControlLines lines;
  Put(lines, Fmt("(A,I0)", "TITLE  Atom coordinates of phase no:", k));
  Put(lines, Fmt("(A,6F11.6)", "CELL ", cell[1], cell[2], cell[3], cell[4], cell[5], cell[6]));
  Put(lines, "SPGR " + TrimmedCopy(ph.SpaceGroupSymbol));
  if (IsMagneticPhase(ph)) {
    Put(lines, Fmt("(A,I4)", "JBTV ", ph.Jbt));
    Put(lines, Fmt("(A,I4)", "VECK ", ph.Nvk));
    for (int n = 1; n <= ph.Nvk; ++n) {
      const Table1<float, 3>& K = ph.vectors[n].KVEC;
      Put(lines, Fmt("(A,I0,3F9.5)", "Vk_", n, K[1], K[2], K[3]));
    }
  }
  return lines;
}

ControlLines ControlFileLines(const Job& job, const ControlEndValues& ends) {
  ControlLines lines;
  AppendRunBlock(job, lines);
  AppendPatternBlock(job, lines);
  for (int k = 1; k <= job.run.NPHASE; ++k) AppendPhase(job, k, lines);
  AppendClosingLines(job, ends, lines);
  return lines;
}

void WriteControlFile(Job& job, int Iscale, int Idif, float twoTh1, float twoTh2) {
  WriteControlFile(job, {Iscale, Idif, twoTh1, twoTh2}, CheckControlReadsBack);
}

void WriteControlFile(Job& job, const ControlEndValues& ends, const ControlTextCheck& check) {
  ControlLines lines;
  try {
    lines = ControlFileLines(job, ends);
  } catch (const NonFiniteValue&) {
    StopOnNonFiniteValue(job);
  }
  if (job.run.NXT == 1) {
    // The unit would go on reading the text that is replaced: it is closed.
    const std::string name = ControlFileName(job);
    CloseUnit(job.files.units[Unit::Control]);
    ReplaceControlText(job, name, lines, ends, check);
  } else {
    ReplaceControlText(job, FileName(job, FileKind::kNewControl, 0, 0), lines, ends, check);
  }
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    if (job.phases[k].Jdi != 0) WriteAtomCoordinateFile(job, k);
  }
}

}  // namespace corvinet
