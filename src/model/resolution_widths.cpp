// The instrumental widths of a reflection from a resolution law or table.
#include "model/resolution_widths.h"

namespace corvinet {

namespace {

// The terms of a law, in the order of the file.
enum Term : int { kGaussU = 1, kGaussV, kGaussW, kLorentzX, kLorentzY, kLorentzZ };

InstrumentWidths FromTable(const ResolutionFunction& f, float x) {
  const int n = f.nTable;
  if (n < 1) return {};
  int lo = 1;
  int hi = 1;
  if (n >= 2 && x > f.tablePosition[1]) {
    lo = hi = n;
    for (int i = 1; i <= n - 1; ++i) {
      if (f.tablePosition[i] <= x && x <= f.tablePosition[i + 1]) {
        lo = i;
        hi = i + 1;
        break;
      }
    }
  }
  float g = f.tableGaussian[lo];
  float l = f.tableLorentzian[lo];
  if (hi != lo) {
    const float t = (x - f.tablePosition[lo]) / (f.tablePosition[hi] - f.tablePosition[lo]);
    g += t * (f.tableGaussian[hi] - f.tableGaussian[lo]);
    l += t * (f.tableLorentzian[hi] - f.tableLorentzian[lo]);
  }
  return {g * g, l};
}

}  // namespace

InstrumentWidths ResolutionWidths(const ResolutionFunction& f, int wavelength, float position,
                                  float tanTheta) {
  const int w = wavelength == 2 ? 2 : 1;
  const auto term = [&](Term t) { return f.law(t, w); };
  const float t = tanTheta;
  switch (f.IRESOL) {
    case ResolutionLaw::kTangent:
      return {(term(kGaussU) * t + term(kGaussV)) * t + term(kGaussW),
              term(kLorentzX) * t + term(kLorentzZ)};
    case ResolutionLaw::kTangentSquare:
      return {(term(kGaussU) * t + term(kGaussV)) * t + term(kGaussW),
              t * (t * term(kLorentzX) + term(kLorentzY)) + term(kLorentzZ)};
    case ResolutionLaw::kPosition: {
      const float x = position;
      return {x * (x * term(kGaussU) + term(kGaussV)) + term(kGaussW),
              x * (x * term(kLorentzX) + term(kLorentzY)) + term(kLorentzZ)};
    }
    case ResolutionLaw::kTable:
      return FromTable(f, position);
    case ResolutionLaw::kNone:
      break;
  }
  return {};
}

}  // namespace corvinet
