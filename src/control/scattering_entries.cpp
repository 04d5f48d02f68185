// Additional scattering entries of a pattern: names, anomalous terms, lengths, coefficients and
// tables.
#include "control/scattering_entries.h"

#include <cmath>

#include "format/fortran_format.h"
#include "format/text.h"
#include "io/field_reader.h"
#include "model/form_factor_fit.h"
#include "model/scattering_species.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr int kTablePoints = 59;

bool IsEndMark(float x) {
  return std::fabs(100.0f + x) < 0.0001f;
}

[[noreturn]] void TooManyPoints(Job& job) {
  WriteReports(job, " => Too many scattering factor entries");
  StopBox(job, " Too many scattering factor entries ");
}

// Coefficient lines of an entry: nine coefficients, or points of a table when
// the third number is zero.
void ReadCoefficientLines(Job& job, ScatteringEntry& e) {
  for (;;) {
    Table1<float, 9>& c = e.coef;
    ReadMaskedLine(job, Unit::Control, "fffffffff", job.LINE,
                   {&c[1], &c[2], &c[3], &c[4], &c[5], &c[6], &c[7], &c[8], &c[9]});
    if (100.0f + c[1] < 0.0001f) {
      // The mark line: the points so far become coefficients. A fitted a2
      // that is not positive is kept as -1.0E-6, which still ends the entry.
      FitGaussianFormFactor(e);
      return;
    }
    if (std::fabs(c[3]) > 1.0e-6f) return;
    if (e.tablePoints >= kTablePoints) TooManyPoints(job);
    ++e.tablePoints;
    e.tableX[e.tablePoints] = c[1];
    e.tableY[e.tablePoints] = c[2];
  }
}

// Points x, y of a table, ended by x = -100 or by the 59th point.
void ReadTableLines(Job& job, ScatteringEntry& e) {
  e.tablePoints = 0;
  for (int line = 1; line <= kTablePoints; ++line) {
    float x = 0.0f;
    float y = 0.0f;
    ReadMaskedLine(job, Unit::Control, "ff", job.LINE, {&x, &y});
    if (IsEndMark(x)) return;
    e.tablePoints = line;
    e.tableX[line] = x;
    e.tableY[line] = y;
  }
}

void ReadEntry(Job& job, Pattern& p, ScatteringEntry& e) {
  ReadMaskedLine(job, Unit::Control, "4ffi", job.LINE, {&e.NAM, &e.Fprime, &e.Fsecond, &e.ITAB});
  p.scatteringTypeSum += e.ITAB;
  if (e.ITAB == 0) {
    if (IsNeutronPattern(p)) return;
    ToLower(e.NAM);
  }
  if (e.ITAB == 2) {
    LookupScatteringByLabel(job, e);
    return;
  }
  if (p.NSCAT > 0) {
    ReadCoefficientLines(job, e);
  } else {
    ReadTableLines(job, e);
  }
}

void WriteEntries(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  const bool neutron = p.JOBTYP != 0 && p.JOBTYP != 2;
  if (neutron && p.scatteringTypeSum == 0) {
    WriteReports(job, " => Scattering lengths ==>");
    for (int j = 1; j <= p.scatteringCount; ++j) {
      ScatteringEntry& e = p.scattering[j];
      e.coef.Fill(0.0f);
      e.Fsecond = 0.0f;
      WriteReports(job, Fmt("(4X,A4,F10.5)", FixedText(e.NAM, 4), e.Fprime));
    }
    return;
  }
  WriteReports(job, " => Scattering factors ==>");
  for (int j = 1; j <= p.scatteringCount; ++j) {
    const ScatteringEntry& e = p.scattering[j];
    WriteReports(job, Fmt("(4X,A4,2F10.5,I4)", FixedText(e.NAM, 4), e.Fprime, e.Fsecond, e.ITAB));
    if (p.NSCAT < 0) {
      WriteReports(job, "     *(Tables for Linear Interpolation)*");
      for (int i = 1; i <= e.tablePoints; ++i) {
        WriteReports(job, Fmt("(4X,F8.3,1X,F12.5)", e.tableX[i], e.tableY[i]));
      }
    } else {
      const Table1<float, 9>& c = e.coef;
      WriteReports(job, Fmt("(4X,9F12.5)", c[1], c[2], c[3], c[4], c[5], c[6], c[7], c[8], c[9]));
    }
  }
}

}  // namespace

void ReadScatteringEntries(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  if (p.scatteringCount > DimensionLimits::N_SPE) {
    ConsoleLine(job, Fmt("(A,I6,A,I3)", " => Number of scattering entries:", p.scatteringCount,
                         "  maximum:", DimensionLimits::N_SPE));
    StopBox(job, " => Too many additional scattering entries!");
  }
  p.scatteringTypeSum = 0;
  for (int j = 1; j <= p.scatteringCount; ++j) ReadEntry(job, p, p.scattering[j]);
  WriteEntries(job, ip);
}

}  // namespace corvinet
