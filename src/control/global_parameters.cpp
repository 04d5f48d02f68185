// Global-parameter lines of a pattern: zero, shifts, wavelength, microabsorption and background
// coefficients.
#include "control/global_parameters.h"

#include <cmath>

#include "format/fortran_format.h"
#include "io/field_reader.h"
#include "refine/global_update.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// Reads the values of slots first..last on one line and their codes on the next.
void ReadSlotsAndCodes(Job& job, Pattern& p, int first, int last, const char* mask) {
  std::vector<ReadTarget> values;
  std::vector<ReadTarget> codes;
  for (int s = first; s <= last; ++s) {
    values.emplace_back(&p.GLB[s]);
    codes.emplace_back(&p.GLBcode[s]);
  }
  ReadMaskedLineList(job, Unit::Control, mask, job.LINE, values);
  ReadMaskedLineList(job, Unit::Control, mask, job.LINE, codes);
}

void WriteSlotTable(Job& job, const Pattern& p, int first) {
  const auto& g = p.GLB;
  const auto& c = p.GLBcode;
  const int f = first;
  WriteReports(job, Fmt("(6E12.5)", g[f], g[f + 1], g[f + 2], g[f + 3], g[f + 4], g[f + 5]));
  WriteReports(job, Fmt("(6F12.3)", c[f], c[f + 1], c[f + 2], c[f + 3], c[f + 4], c[f + 5]));
}

void WriteValueAndCode(Job& job, const char* word, const Pattern& p, int slot) {
  WriteReports(job, Fmt("(A,F12.6,F10.2)", word, p.GLB[slot], p.GLBcode[slot]));
}

void WriteBackgroundTables(Job& job, const Pattern& p) {
  const int typed = TypedBackground(p);
  if (typed == 0 || typed == -1 || typed == -3) {
    WriteReports(job, " => Background parameters and codes ==>");
    WriteReports(job, Fmt("(A,F12.4)", " => Origin of polynomial at 2theta/TOF/E(KeV): ", p.Bkpos));
    if (typed == -1) WriteReports(job, " => Background Polynomial parameters and codes ==>");
    WriteSlotTable(job, p, 2);
    if (typed == -3) WriteSlotTable(job, p, 30);
    if (typed == -1) {
      WriteReports(job, " => Background Bc(i) parameters and codes ==>");
      WriteSlotTable(job, p, 10);
      WriteReports(job, " => Background D(i) parameters and codes ==>");
      WriteSlotTable(job, p, 16);
    }
  } else if (typed == 1) {
    WriteReports(job, " => Background read from file and transformed according to:");
    WriteReports(job, "    Back(2q) = a * BackRead[ (1+c)*2q+d ] + b");
    WriteReports(job, " => Background coefficients a,b,c,d and codes ==>");
    const auto& g = p.GLB;
    const auto& c = p.GLBcode;
    WriteReports(job, Fmt("(4F14.5)", g[22], g[23], g[24], g[25]));
    WriteReports(job, Fmt("(4F14.5)", c[22], c[23], c[24], c[25]));
  }
}

void WriteShiftWords(Job& job, const Pattern& p) {
  if (p.IXUNIT == AbscissaUnit::kTimeOfFlight) {
    WriteValueAndCode(job, " => D-spacing to T.O.F. coefficient 1 and code: ", p, 8);
    WriteValueAndCode(job, " => D-spacing to T.O.F. coefficient 2 and code: ", p, 9);
    WriteValueAndCode(job, " => T.O.F. 2theta average detector angle      : ", p, 26);
  } else if (p.IXUNIT == AbscissaUnit::kEnergy) {
    WriteValueAndCode(job, " =>    s=1/d to Energy(Kev) coefficient 1 and code: ", p, 8);
    WriteValueAndCode(job, " =>    s=1/d to Energy(Kev) coefficient 2 and code: ", p, 9);
    WriteValueAndCode(job, " => X-rays Energy Dispersive 2theta detector angle: ", p, 26);
  } else {
    WriteValueAndCode(job, " => Displacement peak-shift parameter and code: ", p, 8);
    WriteValueAndCode(job, " => Transparency peak-shift parameter and code: ", p, 9);
  }
}

void ReadMicroabsorption(Job& job, Pattern& p) {
  auto& g = p.GLB;
  auto& c = p.GLBcode;
  ReadMaskedLine(job, Unit::Control, "ffffff", job.LINE,
                 {&g[27], &c[27], &g[28], &c[28], &g[29], &c[29]});
  if (p.ILOR == 0 || p.ILOR == 3) {
    WriteReports(job, " => Microabsorption is refined");
    WriteReports(job, Fmt("(A,6F10.4)", " => Microabsorption parameters P0,Cp,Tau: ", g[27], c[27],
                          g[28], c[28], g[29], c[29]));
  }
}

void ReadBackgroundLines(Job& job, Pattern& p) {
  const int typed = TypedBackground(p);
  if (typed == -2) {
    ReadMaskedLine(job, Unit::Control, "f", job.LINE, {&p.FourierWindow});
    WriteReports(job, Fmt("(A,F10.3)", " => Window for Fourier filtering :", p.FourierWindow));
  }
  if (typed == 0 || typed == -1 || typed == -3) ReadSlotsAndCodes(job, p, 2, 7, "ffffff");
  if (typed == -3) ReadSlotsAndCodes(job, p, 30, 35, "ffffff");
  if (typed == -1) {
    ReadSlotsAndCodes(job, p, 10, 15, "ffffff");
    std::vector<ReadTarget> values;
    std::vector<ReadTarget> codes;
    for (int s = 16; s <= 21; ++s) {
      values.emplace_back(&p.GLB[s]);
      codes.emplace_back(&p.GLBcode[s]);
    }
    ReadMaskedLineList(job, Unit::Control, "ffffff", job.LINE, values);
    // A Debye distance of zero has no meaning: it becomes 1.
    for (int s = 16; s <= 21; ++s) {
      if (p.GLB[s] < 1.0e-5f) p.GLB[s] = 1.0f;
    }
    ReadMaskedLineList(job, Unit::Control, "ffffff", job.LINE, codes);
  }
  for (int s = 22; s <= 25; ++s) {
    p.GLBcode[s] = 0.0f;
    p.GLB[s] = 0.0f;
  }
  p.GLB[22] = 1.0f;
  if (typed == 1) {
    ReadSlotsAndCodes(job, p, 22, 25, "ffff");
    if (p.GLB[22] < 1.0e-10f) p.GLB[22] = 1.0f;
  }
}

}  // namespace

int TypedBackground(const Pattern& pattern) {
  return pattern.backgroundSign * pattern.NBCKGD;
}

void ReadGlobalParameters(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  auto& g = p.GLB;
  auto& c = p.GLBcode;
  WriteReports(job, Fmt("(A,I3)", " =>------->  PATTERN number: ", ip));
  WriteReports(job, " =>--------------------------->");
  ReadMaskedLine(job, Unit::Control, "ffffffffi", job.LINE,
                 {&g[1], &c[1], &g[8], &c[8], &g[9], &c[9], &g[26], &c[26], &p.MORE});
  if (IsTofOrEnergy(p.IXUNIT)) {
    p.Dtt1 = g[8];
    p.Dtt2 = g[9];
    p.TwoSinTh = g[26];
    c[26] = 0.0f;
  }
  if (c[26] > 0.5f && g[26] > 0.01f && p.IXUNIT == AbscissaUnit::kTwoTheta) {
    MoveWavelengths(p, g[26]);
    WriteReports(job, " => Wavelength is refined");
    WriteReports(job, Fmt("(A,F10.5)", " => Refined Wavelength: ", g[26]));
  }
  if (p.MORE != 0) ReadMicroabsorption(job, p);
  ReadBackgroundLines(job, p);
  WriteBackgroundTables(job, p);
  WriteShiftWords(job, p);
}

void DecodeGlobalCodes(Job& job) {
  for (Pattern& p : job.patterns) {
    for (int s = 1; s <= DimensionLimits::NGL; ++s) p.GLBword[s] = DecodeCodeword(p.GLBcode[s]);
  }
}

}  // namespace corvinet
