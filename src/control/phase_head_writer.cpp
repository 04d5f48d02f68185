// The head of each phase in a written control file: rule, title, flags, contributions, symmetry.
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "control/control_writer.h"
#include "crystal/group_operators.h"
#include "format/fortran_format.h"
#include "format/text.h"

namespace corvinet {

using control_writer::Commented;
using control_writer::Head;
using control_writer::Put;

namespace {

void AppendRule(const Job& job, int k, ControlLines& lines) {
  const std::string rule = "!" + std::string(79, '-');
  Put(lines, rule);
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (job.phases[k].pat[ip].Contribution == 0) continue;
    Put(lines,
        Fmt("(A,I3,A,I3,A,F8.2)", "!  Data for PHASE number: ", k,
            "  ==> Current R_Bragg for Pattern#", ip, ": ", job.reliability.pattern[ip].braggR[k]));
  }
  Put(lines, rule);
}

void AppendSingleFlags(const Job& job, const Phase& ph, ControlLines& lines) {
  const PhasePattern& c = ph.pat[1];
  Head(job, lines, "!Nat Dis Mom Pr1 Pr2 Pr3 Jbt Irf Isy Str Furth     ATZ   Nvk Npr More");
  Put(lines, FmtReadBack("(3I4,3F4.1,5I4,F12.2,3I4)", ph.Nat, ph.Dis, ph.Mom, c.PREF[1], c.PREF[2],
                         c.PREF[3], ph.Jbt, c.Irf, ph.Isy, ph.Str, ph.Furth, ph.ATZ, ph.Nvk,
                         TypedNumber(ProfileOf(c)), ph.More));
  if (ph.More == 0) return;
  Head(job, lines, "!Jvi Jdi Hel Sol Mom Ter  Brind   RMua    RMub    RMuc   Jtyp");
  Put(lines, FmtReadBack("(6I4,4F8.4,I4)", ph.Jvi, ph.Jdi, ph.Hel, ph.Sol, ph.MomOut, ph.Ter,
                         c.Brind, c.Rmua, c.Rmub, c.Rmuc, c.Jtyp));
}

void AppendMultiFlags(const Job& job, const Phase& ph, ControlLines& lines) {
  const int patterns = job.run.NPATT;
  Head(job, lines, "!Nat Dis Mom Jbt Isy Str Furth     ATZ   Nvk More");
  Put(lines, FmtReadBack("(7I4,F11.4,2I4)", ph.Nat, ph.Dis, ph.Mom, ph.Jbt, ph.Isy, ph.Str,
                         ph.Furth, ph.ATZ, ph.Nvk, ph.More));
  if (ph.More != 0) {
    Head(job, lines, "!Jvi Jdi Hel Sol Mom Ter ");
    Put(lines, FmtReadBack("(6I4)", ph.Jvi, ph.Jdi, ph.Hel, ph.Sol, ph.MomOut, ph.Ter));
  }
  Head(job, lines,
       FmtReadBack("(A,I2,A)", "!Contributions (0/1) of this phase to the", patterns, " patterns"));
  std::vector<FormatValue> contributions;
  for (int ip = 1; ip <= patterns; ++ip) contributions.emplace_back(ph.pat[ip].Contribution);
  Put(lines, FormatText("(40I2)", contributions, FieldFit::kReadBack));
  for (int ip = 1; ip <= patterns; ++ip) {
    const PhasePattern& c = ph.pat[ip];
    if (c.Contribution == 0) continue;
    Head(job, lines, FmtReadBack("(A,I0)", "!Irf Npr Jtyp  for Pattern#", ip));
    Put(lines, FmtReadBack("(3I4)", c.Irf, TypedNumber(ProfileOf(c)), c.Jtyp));
    Head(job, lines,
         FmtReadBack("(A,I0)", "! Pr1    Pr2    Pr3   Brind.   Rmua   Rmub   Rmuc     for Pattern#",
                     ip));
    Put(lines,
        FmtReadBack("(7F7.3)", c.PREF[1], c.PREF[2], c.PREF[3], c.Brind, c.Rmua, c.Rmub, c.Rmuc));
  }
}

void AppendSpaceGroupLine(const Phase& ph, ControlLines& lines) {
  const char* remark =
      ph.magneticSymmetry == 1 ? " Magnetic symmetry below" : "     <--Space group symbol";
  Put(lines, FmtReadBack("(A20,A)", FixedText(ph.SpaceGroupSymbol, 20), remark));
}

// The letters of the moment components in the text form of a magnetic operator.
constexpr std::array<std::string_view, 3> kMomentLetters = {"u", "v", "w"};

void AppendNumericOperators(const Job& job, const SpaceGroup& g, ControlLines& lines) {
  Head(job, lines, "!S11 S12 S13     T1        S21 S22 S23     T2    S31 S32 S33       T3");
  for (int n = 1; n <= g.NSYM; ++n) {
    const IntMatrix3 r = SignedRotation(g.isl[n]);
    Put(lines, FmtReadBack("(3(3I4,F12.6))", r(1, 1), r(1, 2), r(1, 3), g.translation(1, n),
                           r(2, 1), r(2, 2), r(2, 3), g.translation(2, n), r(3, 1), r(3, 2),
                           r(3, 3), g.translation(3, n)));
    if (g.NMAGM > 0) Head(job, lines, "!M11 M12 M13  M21 M22 M23  M31 M32 M33     Ph");
    for (int m = 1; m <= g.NMAGM; ++m) {
      const IntMatrix3 mr = SignedRotation(g.magneticRotation(m, n));
      Put(lines, FmtReadBack("(9I4,F12.6)", mr(1, 1), mr(1, 2), mr(1, 3), mr(2, 1), mr(2, 2),
                             mr(2, 3), mr(3, 1), mr(3, 2), mr(3, 3), g.magneticPhase(m, n)));
    }
  }
}

// Operators given as text: each line as it was read; the magnetic matrices,
// which are kept as numbers, are written again as "MSYM" lines.
void AppendTextOperators(const SpaceGroup& g, ControlLines& lines) {
  for (int n = 1; n <= g.NSYM; ++n) {
    Put(lines, CutText(g.operatorText[n], 80));
    for (int m = 1; m <= g.NMAGM; ++m) {
      const IntMatrix3 mr = SignedRotation(g.magneticRotation(m, n));
      const std::string text = "MSYM " + MatrixRowText(mr, 1, kMomentLetters) + "," +
                               MatrixRowText(mr, 2, kMomentLetters) + "," +
                               MatrixRowText(mr, 3, kMomentLetters) + "," +
                               Fmt("(I0)", static_cast<int>(g.magneticPhase(m, n)));
      Put(lines, CutText(text, 80));
    }
  }
}

void AppendTimeReversal(const Job& job, const SpaceGroup& g, ControlLines& lines) {
  Head(job, lines, "! Time Reversal Operations on Crystal Space Group");
  const int count = g.ICENT == 1 ? g.NSYM : g.NSYM + 1;
  std::vector<FormatValue> signs;
  for (int n = 1; n <= count; ++n) signs.emplace_back(g.magneticSign[n]);
  Put(lines, FormatText("(24I3)", signs, FieldFit::kReadBack));
}

void AppendSymmetryLines(const Job& job, const Phase& ph, ControlLines& lines) {
  const int jbt = std::abs(ph.Jbt);
  if (jbt == 2 || jbt == 3) return;
  const SpaceGroup& g = ph.group;
  if (ph.Isy == 0) {
    if (jbt == 10 && ph.magneticSymmetry == 1) AppendTimeReversal(job, g, lines);
    return;
  }
  Head(job, lines, "!Nsym Cen Laue MagMat");
  Put(lines, FmtReadBack("(4I4)", g.NSYM, g.ICENT, g.LAUE, g.NMAGM));
  if (ph.Isy > 0) {
    AppendNumericOperators(job, g, lines);
  } else {
    AppendTextOperators(g, lines);
  }
}

}  // namespace

void AppendPhaseHead(const Job& job, int k, ControlLines& lines) {
  const Phase& ph = job.phases[k];
  AppendRule(job, k, lines);
  Put(lines, CutText(ph.PhaseTitle, 70));
  if (Commented(job)) Put(lines, "!");
  if (job.run.NPATT == 1) {
    AppendSingleFlags(job, ph, lines);
  } else {
    AppendMultiFlags(job, ph, lines);
  }
  AppendSpaceGroupLine(ph, lines);
  AppendSymmetryLines(job, ph, lines);
}

}  // namespace corvinet
