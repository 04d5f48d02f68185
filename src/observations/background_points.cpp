// Linear and cubic-spline backgrounds through the user's points, with height derivatives.
#include "observations/background_points.h"

#include <span>
#include <vector>

#include "observations/spline.h"
#include "records/codeword.h"
#include "surface/console.h"

namespace corvinet {

namespace {

std::span<const float> Positions(const Pattern& p) {
  return std::span<const float>(p.BackPos.ptr(), static_cast<std::size_t>(p.NBCKGD));
}
std::span<const float> Heights(const Pattern& p) {
  return std::span<const float>(p.BackInt.ptr(), static_cast<std::size_t>(p.NBCKGD));
}

[[noreturn]] void StopOnZeroWidth(Job& job) {
  ConsoleLine(job, " => Problem with interpolation!, check your background points! ");
  throw ProcessStop{ExitStatus::kError, "Problem with interpolation of the background points"};
}

// The bracket of abscissa t and the linear weights of its two points.
struct PointWeights {
  SplineBracket b;
  float width = 0.0f;
  float low = 0.0f;   // weight of point klo
  float high = 0.0f;  // weight of point khi
};

PointWeights WeightsAt(const Pattern& p, float t) {
  PointWeights w;
  w.b = FindSplineBracket(Positions(p), p.NBCKGD, t);
  w.width = p.BackPos[w.b.khi] - p.BackPos[w.b.klo];
  if (w.width == 0.0f) return w;
  w.low = (p.BackPos[w.b.khi] - t) / w.width;
  w.high = (t - p.BackPos[w.b.klo]) / w.width;
  return w;
}

// Row k of backSplineGain: the second derivatives of the natural spline through
// height 1 at point k and 0 at the others.
void PrepareSplineGain(Pattern& p, int k) {
  const int n = p.NBCKGD;
  std::vector<float> unit(static_cast<std::size_t>(n), 0.0f);
  unit[static_cast<std::size_t>(k - 1)] = 1.0f;
  SplineSetup(Positions(p), unit, n, kNaturalSplineEnd, kNaturalSplineEnd,
              std::span<float>(&p.backSplineGain(k, 1), static_cast<std::size_t>(n)));
}

}  // namespace

void PreparePointBackground(Pattern& pattern, bool spline) {
  const int n = pattern.NBCKGD;
  pattern.backRefinedPoints = 0;
  for (int k = 1; k <= n; ++k) {
    pattern.backPointWord[k] = DecodeCodeword(pattern.BackIntCode[k]);
    if (pattern.backPointWord[k].parameterNumber != 0) ++pattern.backRefinedPoints;
  }
  if (!spline) return;
  SplineSetup(Positions(pattern), Heights(pattern), n, kNaturalSplineEnd, kNaturalSplineEnd,
              std::span<float>(pattern.backSplineY2.ptr(), static_cast<std::size_t>(n)));
  for (int k = 1; k <= n; ++k) {
    if (pattern.backPointWord[k].parameterNumber != 0) PrepareSplineGain(pattern, k);
  }
}

void FillLinearBackground(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  PreparePointBackground(p, false);
  for (int i = 1; i <= p.NPTS; ++i) {
    const PointWeights w = WeightsAt(p, p.X[i]);
    if (w.width == 0.0f) StopOnZeroWidth(job);
    p.Backg[i] = w.low * p.BackInt[w.b.klo] + w.high * p.BackInt[w.b.khi];
  }
}

void FillSplineBackground(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  PreparePointBackground(p, true);
  const std::span<const float> y2(p.backSplineY2.ptr(), static_cast<std::size_t>(p.NBCKGD));
  for (int i = 1; i <= p.NPTS; ++i) {
    p.Backg[i] = SplineValue(job, Positions(p), Heights(p), y2, p.NBCKGD, p.X[i]);
  }
}

void AddPointDerivatives(const Pattern& pattern, int i, bool spline, float factor,
                         DerivativeVector& derivative) {
  if (pattern.backRefinedPoints == 0) return;
  const PointWeights w = WeightsAt(pattern, pattern.X[i]);
  if (w.width == 0.0f) return;
  const int klo = w.b.klo;
  const int khi = w.b.khi;
  // Cubic terms of the spline weights: (a^3 - a) h^2/6 and (b^3 - b) h^2/6.
  const float h2 = w.width * w.width / 6.0f;
  const float cubicLow = spline ? (w.low * w.low * w.low - w.low) * h2 : 0.0f;
  const float cubicHigh = spline ? (w.high * w.high * w.high - w.high) * h2 : 0.0f;
  for (int k = 1; k <= pattern.NBCKGD; ++k) {
    const Codeword& word = pattern.backPointWord[k];
    if (word.parameterNumber == 0) continue;
    float weight = (k == klo ? w.low : 0.0f) + (k == khi ? w.high : 0.0f);
    if (spline) {
      weight +=
          cubicLow * pattern.backSplineGain(k, klo) + cubicHigh * pattern.backSplineGain(k, khi);
    }
    AddBackgroundTerm(derivative, word, factor, weight);
  }
}

}  // namespace corvinet
