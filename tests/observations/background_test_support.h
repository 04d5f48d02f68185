// Helpers of the background tests: patterns on a grid, refilled values and central differences.
#pragma once

#include "observations/background.h"
#include "records/job.h"

namespace corvinet::testing {

// Puts npts equidistant points from thmin by step on the pattern.
inline void SetGrid(Pattern& p, float thmin, float step, int npts) {
  p.THMIN = thmin;
  p.STEP = step;
  p.THMAX = thmin + static_cast<float>(npts - 1) * step;
  p.NPTS = npts;
  p.equalStep = 1;
  for (int i = 1; i <= npts; ++i) p.X[i] = thmin + static_cast<float>(i - 1) * step;
}

// Sets the typed background code as the control-file reader stores it.
inline void SetTypedBackground(Pattern& p, int typed) {
  p.NBCKGD = typed < 0 ? -typed : typed;
  p.backgroundSign = typed < 0 ? -1 : 1;
}

// Makes GLB slot n follow parameter L with the given multiplier.
inline void Refine(Pattern& p, int slot, int L, float multiplier = 1.0f) {
  p.GLBword[slot].parameterNumber = L;
  p.GLBword[slot].multiplier = multiplier;
}

// The background at point i once the model has been refilled.
inline double RefilledAt(Job& job, int ip, int i) {
  FillBackground(job, ip);
  return static_cast<double>(BackgroundAt(job.patterns[ip], i));
}

// (B(v + h) - B(v - h)) / 2h at point i for the parameter value *v; *v is restored.
inline double CentralDifference(Job& job, int ip, int i, float* v, float h) {
  const float saved = *v;
  *v = saved + h;
  const double up = RefilledAt(job, ip, i);
  *v = saved - h;
  const double down = RefilledAt(job, ip, i);
  *v = saved;
  FillBackground(job, ip);
  const double step = (static_cast<double>(saved + h) - static_cast<double>(saved - h));
  return (up - down) / step;
}

// The derivative vector of point i, starting from zeros.
inline DerivativeVector DerivativesAt(const Pattern& p, int i, float scaleSin = 1.0f) {
  DerivativeVector d(DimensionLimits::kDefaultMSZ);
  BackgroundDerivatives(p, i, scaleSin, d);
  return d;
}

}  // namespace corvinet::testing
