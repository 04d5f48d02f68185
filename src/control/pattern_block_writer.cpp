// The pattern block of a written control file: instrument, cycle, points, scattering and globals.
#include <vector>

#include "control/control_writer.h"
#include "control/global_parameters.h"
#include "format/fortran_format.h"
#include "format/text.h"

namespace corvinet {

using control_writer::Head;
using control_writer::Put;

namespace {

float GlobalCode(const Pattern& p, int slot) {
  return ComposeCode(p.GLBword[slot]);
}

void AppendInstrumentLine(const Job& job, int ip, ControlLines& lines) {
  const Pattern& p = job.patterns[ip];
  if (IsNonAngleUnit(p.IXUNIT)) {
    Head(job, lines, FmtReadBack("(A,I0)", "!  Bkpos      Wdt    Iabscor for Pattern#", ip));
    Put(lines, FmtReadBack("(F12.3,F8.4,I6)", p.Bkpos, p.Wdt, p.Iabscor));
    return;
  }
  Head(job, lines,
       FmtReadBack(
           "(A,I2)",
           "! lambda1 Lambda2    Ratio   Bkpos    Wdt    Cthm     muR   AsyLim   Rpolarz ->Patt#",
           ip));
  const float ratio = p.separateUVW2 ? -p.RATIO[2] : p.RATIO[2];
  Put(lines, FmtReadBack("(2F9.6,F8.4,4F8.4,F8.2,1X,F9.4)", p.LAMBDA[1], p.LAMBDA[2], ratio,
                         p.Bkpos, p.Wdt, p.Cthm, p.muR, p.AsyLim, p.Rpolarz));
}

std::string CycleValues(const RunOptions& r) {
  const Table1<float, 5>& f = r.relaxationFactor;
  return FmtReadBack("(I3,1X,5(F5.2,1X))", r.NCY, r.EPS, f[1], f[2], f[3], f[4]);
}

// The range line of a pattern in the multi-pattern form; units 3 and 4 have none.
void AppendRangeLine(const Job& job, int ip, ControlLines& lines) {
  const Pattern& p = job.patterns[ip];
  if (p.IXUNIT == AbscissaUnit::kTimeOfFlight) {
    Head(job, lines,
         FmtReadBack("(A,I0)", "!    TOF-min      <Step>       TOF-max  -> Patt#:", ip));
    Put(lines, FmtReadBack("(3F12.4)", p.THMIN, p.STEP, p.THMAX));
  } else if (p.IXUNIT == AbscissaUnit::kTwoTheta) {
    Head(
        job, lines,
        FmtReadBack("(A,I0)", "!     Thmin       Step       Thmax    PSD    Sent0  -> Patt#:", ip));
    Put(lines, FmtReadBack("(3F11.4,2F8.3)", p.THMIN, p.STEP, p.THMAX, p.PSD, p.Sent0));
  } else if (p.IXUNIT == AbscissaUnit::kEnergy) {
    Head(job, lines, FmtReadBack("(A,I0)", "!      Emin      <Step>       Emax    -> Patt#:", ip));
    Put(lines, FmtReadBack("(3F11.4)", p.THMIN, p.STEP, p.THMAX));
  }
}

// The cycle line of the single-pattern form carries the range; units 3 and 4 have none.
void AppendSingleCycleLine(const Job& job, ControlLines& lines) {
  const RunOptions& r = job.run;
  const Pattern& p = job.patterns[1];
  const Table1<float, 5>& f = r.relaxationFactor;
  const std::string head = "!NCY  Eps  R_at  R_an  R_pr  R_gl";
  if (p.IXUNIT == AbscissaUnit::kTimeOfFlight) {
    Head(job, lines, head + "    TOF-min      <Step>       TOF-max ");
    Put(lines, FmtReadBack("(I3,1X,5(F5.2,1X),3f12.4)", r.NCY, r.EPS, f[1], f[2], f[3], f[4],
                           p.THMIN, p.STEP, p.THMAX));
  } else if (p.IXUNIT == AbscissaUnit::kTwoTheta) {
    Head(job, lines, head + "     Thmin       Step       Thmax    PSD    Sent0");
    Put(lines, FmtReadBack("(I3,1X,5(F5.2,1X),3f11.4,2F8.3)", r.NCY, r.EPS, f[1], f[2], f[3], f[4],
                           p.THMIN, p.STEP, p.THMAX, p.PSD, p.Sent0));
  } else if (p.IXUNIT == AbscissaUnit::kEnergy) {
    Head(job, lines, head + "      Emin       <Step>       Emax    ");
    Put(lines, FmtReadBack("(I3,1X,5(F5.2,1X),3f11.4)", r.NCY, r.EPS, f[1], f[2], f[3], f[4],
                           p.THMIN, p.STEP, p.THMAX));
  }
}

void AppendCycleLines(const Job& job, ControlLines& lines) {
  if (job.run.NPATT > 1) {
    Head(job, lines, "!NCY  Eps  R_at  R_an  R_pr  R_gl");
    Put(lines, CycleValues(job.run));
    for (int ip = 1; ip <= job.run.NPATT; ++ip) AppendRangeLine(job, ip, lines);
  } else {
    AppendSingleCycleLine(job, lines);
  }
}

void AppendPointLists(const Job& job, int ip, ControlLines& lines) {
  const Pattern& p = job.patterns[ip];
  if (p.NBCKGD >= 2 && p.noBackgroundPoints == 0) {
    Head(job, lines, FmtReadBack("(A,I3)", "!2Theta/TOF/E(Kev)   Background  for Pattern#", ip));
    const bool coded = AnyBackgroundHeightCode(p);
    for (int j = 1; j <= p.NBCKGD; ++j) {
      Put(lines,
          coded ? FmtReadBack("(2(1X,F12.3),F9.2)", p.BackPos[j], p.BackInt[j], p.BackIntCode[j])
                : FmtReadBack("(2(1X,F12.3))", p.BackPos[j], p.BackInt[j]));
    }
    Put(lines, "! ");
  }
  if (p.NEXCRG > 0) {
    Head(job, lines, FmtReadBack("(A,I0)", "! Excluded regions (LowT  HighT) for Pattern#", ip));
    for (int j = 1; j <= p.NEXCRG; ++j)
      Put(lines, FmtReadBack("(2F12.2)", p.ExclLow[j], p.ExclHigh[j]));
    Put(lines, "! ");
  }
}

void AppendScatteringEntry(const Pattern& p, const ScatteringEntry& e, ControlLines& lines) {
  Put(lines,
      FmtReadBack("(A4,1X,F8.3,1X,F8.3,I4)", FixedText(e.NAM, 4), e.Fprime, e.Fsecond, e.ITAB));
  if (e.ITAB == 0 && IsNeutronPattern(p)) return;
  if (p.NSCAT < 0) {
    for (int i = 1; i <= e.tablePoints; ++i) {
      Put(lines, FmtReadBack("(F8.3,1X,F12.5)", e.tableX[i], e.tableY[i]));
    }
    Put(lines, "  -100.0");
  } else if (e.ITAB != 2) {
    const Table1<float, 9>& c = e.coef;
    Put(lines,
        FmtReadBack("(8(F12.5,1X),F12.5)", c[1], c[2], c[3], c[4], c[5], c[6], c[7], c[8], c[9]));
  }
}

void AppendScatteringEntries(const Job& job, int ip, ControlLines& lines) {
  const Pattern& p = job.patterns[ip];
  Head(job, lines, FmtReadBack("(A,I0)", "! Additional scattering factors for Pattern#", ip));
  for (int j = 1; j <= p.scatteringCount; ++j) AppendScatteringEntry(p, p.scattering[j], lines);
}

void AppendGlobalLine(const Job& job, int ip, ControlLines& lines) {
  const Pattern& p = job.patterns[ip];
  const auto& g = p.GLB;
  Put(lines, "!");
  if (IsTofOrEnergy(p.IXUNIT)) {
    const char* words = p.IXUNIT == AbscissaUnit::kTimeOfFlight
                            ? "!    Zero    Code      Dtt1    Code"
                            : "!    Zero    Code      StE1    Code";
    const char* more = p.IXUNIT == AbscissaUnit::kTimeOfFlight
                           ? "      Dtt2    Code    2sinTh  -> Patt#"
                           : "      StE2    Code    2sinTh  -> Patt#";
    Head(job, lines, FmtReadBack("(A,A,I0)", words, more, ip));
    Put(lines, FmtReadBack("(3(F10.3,f8.2),f10.7)", g[1], GlobalCode(p, 1), g[8], GlobalCode(p, 8),
                           g[9], GlobalCode(p, 9), p.TwoSinTh));
  } else {
    Head(job, lines,
         FmtReadBack(
             "(A,I0)",
             "!  Zero    Code    Sycos    Code   Sysin    Code  Lambda     Code MORE ->Patt#", ip));
    Put(lines,
        FmtReadBack("(3(F8.4,f8.2),f9.6,f8.2,i4)", g[1], GlobalCode(p, 1), g[8], GlobalCode(p, 8),
                    g[9], GlobalCode(p, 9), g[26], GlobalCode(p, 26), p.MORE));
  }
  if (p.MORE != 0) {
    Put(lines, "!");
    Head(job, lines, FmtReadBack("(A,I0)", "! Microabsorption coefficients for Pattern#", ip));
    Head(job, lines, "!   P0    Cod_P0    Cp   Cod_Cp     Tau  Cod_Tau");
    Put(lines, FmtReadBack("(3(F8.4,F8.2))", g[27], GlobalCode(p, 27), g[28], GlobalCode(p, 28),
                           g[29], GlobalCode(p, 29)));
  }
}

// Values of `count` slots from `first` on one line, their codes on the next.
std::string SlotsAndCodes(const Pattern& p, int first, int count, const char* format) {
  std::vector<FormatValue> values;
  for (int s = first; s < first + count; ++s) values.emplace_back(p.GLB[s]);
  for (int s = first; s < first + count; ++s) values.emplace_back(GlobalCode(p, s));
  return FormatText(format, values, FieldFit::kReadBack);
}

void AppendBackgroundLines(const Job& job, int ip, ControlLines& lines) {
  const Pattern& p = job.patterns[ip];
  const int typed = TypedBackground(p);
  if (typed == -2) {
    Put(lines, "!");
    Put(lines, FmtReadBack("(F10.2,A,I3)", p.FourierWindow,
                           "    Window for Fourier filtering for Pattern#", ip));
  }
  if (typed == 0 || typed == -1 || typed == -3) {
    Head(job, lines, FmtReadBack("(A,I0)", "!   Background coefficients/codes  for Pattern#", ip));
    Put(lines, SlotsAndCodes(p, 2, 6, "(6E12.5/6F12.3)"));
  }
  if (typed == -3) Put(lines, SlotsAndCodes(p, 30, 6, "(6E12.5/6F12.3)"));
  if (typed == 1) {
    Head(job, lines,
         FmtReadBack("(A,I0)", "!   Background Tranf_coefficients/codes for Pattern#", ip));
    Put(lines, SlotsAndCodes(p, 22, 4, "(4F14.5/4F14.5)"));
  }
  if (typed == -1) {
    Head(job, lines,
         FmtReadBack("(A,I0)", "!  Additional background coefficients/codes for Pattern#", ip));
    Put(lines, SlotsAndCodes(p, 10, 6, "(6E12.5/6F12.3)"));
    Put(lines, SlotsAndCodes(p, 16, 6, "(6E12.5/6F12.3)"));
  }
}

}  // namespace

void AppendPatternBlock(const Job& job, ControlLines& lines) {
  const RunOptions& r = job.run;
  if (r.ICRYG == 0) {
    for (int ip = 1; ip <= r.NPATT; ++ip) AppendInstrumentLine(job, ip, lines);
  }
  Put(lines, "!");
  AppendCycleLines(job, lines);
  Put(lines, "!");
  for (int ip = 1; ip <= r.NPATT; ++ip) {
    if (r.ICRYG == 0) AppendPointLists(job, ip, lines);
  }
  for (int ip = 1; ip <= r.NPATT; ++ip) {
    if (job.patterns[ip].NSCAT != 0) AppendScatteringEntries(job, ip, lines);
  }
  Put(lines, "!");
  Put(lines, FmtReadBack("(I8,A)", r.MAXS, "    !Number of refined parameters"));
  if (r.ICRYG != 0) return;
  for (int ip = 1; ip <= r.NPATT; ++ip) {
    AppendGlobalLine(job, ip, lines);
    AppendBackgroundLines(job, ip, lines);
  }
}

}  // namespace corvinet
