// Instrument lines, cycle lines, background points and excluded regions of each pattern.
#include "control/instrument_lines.h"

#include <cmath>

#include "control/global_parameters.h"
#include "control/scattering_entries.h"
#include "format/fortran_format.h"
#include "io/field_range.h"
#include "io/field_reader.h"
#include "surface/console.h"

namespace corvinet {

namespace {

void ReadNonAngleInstrument(Job& job, Pattern& p) {
  ReadMaskedLine(job, Unit::Control, "ffi", job.LINE, {&p.Bkpos, &p.Wdt, &p.Iabscor});
  WriteReports(job, Fmt("(A,I3)", " => Absorption correction type:", p.Iabscor));
  p.LAMBDA[1] = p.LAMBDA[2] = 1.0f;
  p.RATIO[1] = p.RATIO[2] = 1.0f;
}

void ReadAngleInstrument(Job& job, Pattern& p) {
  float ratio = 0.0f;
  ReadMaskedLine(job, Unit::Control, "fffffffff", job.LINE,
                 {&p.LAMBDA[1], &p.LAMBDA[2], &ratio, &p.Bkpos, &p.Wdt, &p.Cthm, &p.muR, &p.AsyLim,
                  &p.Rpolarz});
  if (ratio < 0.0f) {
    ratio = -ratio;
    p.separateUVW2 = true;
  }
  p.RATIO[1] = 1.0f;
  p.RATIO[2] = ratio;
  WriteReports(job, Fmt("(A,2F10.5)", " => Wavelengths: ", p.LAMBDA[1], p.LAMBDA[2]));
  WriteReports(job, Fmt("(A,F8.4)", " => Alpha2/Alpha1 ratio: ", ratio));
  if (p.separateUVW2) {
    WriteReports(job, " => Different U,V,W parameters for Lambda(2) will be read");
  }
  WriteReports(job, Fmt("(A,F8.4)", " => Cos(Monochromator angle)= ", p.Cthm));
  if (p.INSTR == 4) WriteReports(job, Fmt("(A,F8.4)", " => Polarization= ", p.Rpolarz));
  WriteReports(job, Fmt("(A,F8.4)", " => Absorption correction (muR-eff): ", p.muR));
  WriteReports(job, Fmt("(A,F8.3,A)", " => Asymmetry correction for angles lower than ", p.AsyLim,
                        " degrees"));
}

// The polynomial background is a series in X/Bkpos - 1: its origin cannot be 0.
void RefuseZeroPolynomialOrigin(Job& job, const Pattern& p) {
  const int typed = TypedBackground(p);
  if (p.Bkpos != 0.0f || (typed != 0 && typed != -1 && typed != -3)) return;
  ConsoleLine(job, " => The origin of the background polynomial (Bkpos) cannot be 0");
  StopBox(job, " => Bkpos = 0: give the origin of the background polynomial");
}

void ReadCycleLines(Job& job) {
  RunOptions& r = job.run;
  Table1<float, 5>& f = r.relaxationFactor;
  if (r.NPATT == 1) {
    Pattern& p = job.patterns[1];
    const FieldLine line = ReadFieldLine(job, Unit::Control, "iffffffffff", job.LINE,
                                         {&r.NCY, &r.EPS, &f[1], &f[2], &f[3], &f[4], &p.THMIN,
                                          &p.STEP, &p.THMAX, &p.PSD, &p.Sent0});
    CheckIntegerField(job, line, 1, "NCY", r.NCY, 0, DimensionLimits::MAXCYC);
  } else {
    const FieldLine line = ReadFieldLine(job, Unit::Control, "ifffff", job.LINE,
                                         {&r.NCY, &r.EPS, &f[1], &f[2], &f[3], &f[4]});
    CheckIntegerField(job, line, 1, "NCY", r.NCY, 0, DimensionLimits::MAXCYC);
    for (int ip = 1; ip <= r.NPATT; ++ip) {
      Pattern& p = job.patterns[ip];
      ReadMaskedLine(job, Unit::Control, "fffff", job.LINE,
                     {&p.THMIN, &p.STEP, &p.THMAX, &p.PSD, &p.Sent0});
    }
  }
  bool calculated = false;
  for (int ip = 1; ip <= r.NPATT; ++ip) calculated |= IsCalculatedPattern(job.patterns[ip]);
  if (r.ICRYG == 2 || calculated) r.NCY = 1;
}

void WriteCycleWords(Job& job) {
  const RunOptions& r = job.run;
  const Table1<float, 5>& f = r.relaxationFactor;
  WriteReports(job, Fmt("(A,I5)", " => Number of cycles: ", r.NCY));
  if (r.ICRYG == 0 || r.ICRYG == 1) {
    WriteReports(job, " => Relaxation factors ==>");
    WriteReports(job, Fmt("(A,F6.2)", "    for coordinates: ", f[1]));
    WriteReports(job, Fmt("(A,F6.2)", " => for anisotropic temperature factors: ", f[2]));
  }
  if (r.ICRYG == 0) {
    WriteReports(job, Fmt("(A,F6.2)", " => for halfwidth/strain/size parameters: ", f[3]));
    WriteReports(job, Fmt("(A,F6.2)", " => for lattice constants and propagation vectors: ", f[4]));
  }
  if (r.ICRYG != 2) WriteReports(job, Fmt("(A,F8.4)", " => EPS-value for convergence: ", r.EPS));
  for (int ip = 1; ip <= r.NPATT; ++ip) {
    const Pattern& p = job.patterns[ip];
    if (p.Sent0 > 0.0f && (p.ILOR == 0 || p.ILOR == 3) && p.isXray == 1) {
      WriteReports(
          job,
          Fmt("(A,F8.3)",
              " => Low angle scale factor multiplied by sin(theta)/sin(t0), where t0=", p.Sent0));
    }
  }
}

void ReadPointLists(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  if (p.NBCKGD >= 2 && p.noBackgroundPoints == 0) {
    for (int j = 1; j <= p.NBCKGD; ++j) {
      // An optional third value is the code of the height; a line of two leaves it 0.
      ReadMaskedLine(job, Unit::Control, "fff", job.LINE,
                     {&p.BackPos[j], &p.BackInt[j], &p.BackIntCode[j]});
    }
    WriteReports(job, " => Background ==> ");
    WriteReports(job, "    Position   Intensity");
    for (int j = 1; j <= p.NBCKGD; ++j) {
      WriteReports(job, Fmt("(2(1X,F12.3))", p.BackPos[j], p.BackInt[j]));
    }
  }
  if (p.NEXCRG > 0) {
    for (int j = 1; j <= p.NEXCRG; ++j) {
      ReadMaskedLine(job, Unit::Control, "ff", job.LINE, {&p.ExclLow[j], &p.ExclHigh[j]});
    }
    WriteReports(job, Fmt("(A,I3)", " => Excluded regions for Pattern#", ip));
    WriteReports(job, "    From     to");
    for (int j = 1; j <= p.NEXCRG; ++j) {
      WriteReports(job, Fmt("(2F12.2)", p.ExclLow[j], p.ExclHigh[j]));
    }
  }
}

}  // namespace

void ReadInstrumentLines(Job& job) {
  RunOptions& r = job.run;
  if (r.ICRYG != 0) {
    for (Pattern& p : job.patterns) {
      p.RATIO[1] = 1.0f;
      p.RATIO[2] = 0.0f;
    }
  } else {
    for (int ip = 1; ip <= r.NPATT; ++ip) {
      Pattern& p = job.patterns[ip];
      if (IsNonAngleUnit(p.IXUNIT)) {
        ReadNonAngleInstrument(job, p);
      } else {
        ReadAngleInstrument(job, p);
      }
      WriteReports(job, Fmt("(A,F6.2)", " => Base of peaks: 2.0*HW*", p.Wdt));
      RefuseZeroPolynomialOrigin(job, p);
    }
  }
  ReadCycleLines(job);
  WriteCycleWords(job);
  for (int ip = 1; ip <= r.NPATT; ++ip) {
    if (r.ICRYG == 0) ReadPointLists(job, ip);
  }
  for (int ip = 1; ip <= r.NPATT; ++ip) {
    if (job.patterns[ip].NSCAT != 0) ReadScatteringEntries(job, ip);
  }
}

}  // namespace corvinet
