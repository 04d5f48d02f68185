// Helpers of the peak-shape tests: shapes from a job, quadrature, half-maximum search.
#pragma once

#include <cmath>
#include <functional>
#include <memory>
#include <numbers>

#include "model/peak_error_stop.h"
#include "model/peak_shape.h"
#include "model/peak_shape_setup.h"
#include "model/peak_width.h"
#include "model/tch_widths.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet::testing {

// A geometry where x = T + delta is exact for deltas in steps of 1/1024.
constexpr float kTwoTheta = 32.0f;
inline float TanTheta(float twoTheta) {
  return static_cast<float>(std::tan(0.5 * twoTheta * std::numbers::pi / 180.0));
}

// The profile parameters of phase 1 in pattern 1.
inline Table1<float, DimensionLimits::MPAR>& Par(Job& job) {
  return job.phases[1].pat[1].PAR;
}

// Widths of a code other than 8 and 12: H alone.
inline PeakWidths PlainWidths(float h) {
  return PeakWidths{h, h, 0.0f, 0.0f};
}

// Widths of code 12: left and right.
inline PeakWidths SplitWidthsOf(float left, float right) {
  return PeakWidths{left, left, right, 0.0f};
}

// Widths of code 8 by the TCH combination of HG and HL.
inline PeakWidths TchWidthsOf(float hg, float hl) {
  TchState t;
  t.HG = hg;
  t.HL = hl;
  TchWidths(TchMode::kWidths, t);
  return PeakWidths{t.H, hg, hl, t.eta};
}

// The input of the shape of a reflection at 2theta.
inline ReflectionShapeInput ShapeInputAt(int code, const PeakWidths& widths, float twoTheta) {
  ReflectionShapeInput in;
  in.code = ProfileCodeOf(code);
  in.twoTheta = twoTheta;
  in.tanTheta = TanTheta(twoTheta);
  in.widths = widths;
  return in;
}

// A pattern, the profile parameters of one phase in it and the numerical
// shapes, without a job.
struct PeakCase {
  std::unique_ptr<Pattern> pattern = std::make_unique<Pattern>();
  std::unique_ptr<NumericalProfile> numerical = std::make_unique<NumericalProfile>();
  WidthParameters par{};
  PeakWidths Width(const WidthInput& in) const { return PeakWidth(*pattern, par, in); }
  PeakShape Shape(int code, const PeakWidths& widths, float twoTheta = kTwoTheta) const {
    return PreparePeakShape(*pattern, par, *numerical, ShapeInputAt(code, widths, twoTheta));
  }
};

// Runs `step` and turns a PeakError it throws into the stop that the
// calculation of a reflection makes of it.
template <typename Step>
auto ThroughPeakStop(Job& job, Step step) -> decltype(step()) {
  try {
    return step();
  } catch (const PeakError& error) {
    StopOnPeakError(job, error);
  }
}

// The shape of a reflection of phase 1 in pattern 1 at 2theta, from the
// pattern, the parameters and the numerical shapes held by the job; a
// refusal stops as in the calculation of a reflection.
inline PeakShape PrepareShape(Job& job, int code, const PeakWidths& widths,
                              float twoTheta = kTwoTheta) {
  const ReflectionShapeInput in = ShapeInputAt(code, widths, twoTheta);
  return ThroughPeakStop(
      job, [&] { return PreparePeakShape(job.patterns[1], Par(job), job.numericalProfile, in); });
}

// Omega at the given distance from the peak position, for a base that holds every point.
inline double OmegaAt(const PeakShape& s, double delta, ProfilePoint* out = nullptr) {
  ProfilePoint p;
  PointInBase(s, s.position + static_cast<float>(delta), 1.0e18f, p);
  const double value = ProfileValue(s, p);
  if (out != nullptr) *out = p;
  return value;
}

inline double OmegaWithSlopes(const PeakShape& s, double delta, ProfilePoint& p, ProfileSlopes& d) {
  PointInBase(s, s.position + static_cast<float>(delta), 1.0e18f, p);
  return ProfileValueWithSlopes(s, p, d);
}

// The integral of f over the whole line, by the substitution delta = (scale/2) tan(phi)
// and the midpoint rule on n panels of (-pi/2, pi/2).
inline double WholeLineIntegral(const std::function<double(double)>& f, double scale, int n) {
  const double pi = std::numbers::pi;
  const double step = pi / n;
  double sum = 0.0;
  for (int i = 0; i < n; ++i) {
    const double phi = -0.5 * pi + (i + 0.5) * step;
    const double c = std::cos(phi);
    sum += f(0.5 * scale * std::tan(phi)) * 0.5 * scale / (c * c);
  }
  return sum * step;
}

inline double AreaOverWholeLine(const PeakShape& s, double scale, int n = 200000) {
  return WholeLineIntegral([&s](double delta) { return OmegaAt(s, delta); }, scale, n);
}

// The distance from the position, on the side of `sign`, at which f falls to
// half of f(0), by bisection between 0 and `limit`.
inline double HalfMaximumDistance(const std::function<double(double)>& f, double sign,
                                  double limit) {
  const double half = 0.5 * f(0.0);
  double lo = 0.0;
  double hi = limit;
  for (int i = 0; i < 200; ++i) {
    const double mid = 0.5 * (lo + hi);
    if (f(sign * mid) > half) {
      lo = mid;
    } else {
      hi = mid;
    }
  }
  return 0.5 * (lo + hi);
}

// Central difference of ln(g(t)) at t = 0 with step h.
inline double LogDifference(const std::function<double(double)>& g, double h) {
  return (std::log(g(h)) - std::log(g(-h))) / (2.0 * h);
}

// Central difference of g at t = 0 with step h.
inline double Difference(const std::function<double(double)>& g, double h) {
  return (g(h) - g(-h)) / (2.0 * h);
}

// Tolerance of a slope found by differences of 32-bit values.
inline double SlopeTolerance(double expected) {
  return 2.0e-3 * (1.0 + std::fabs(expected));
}

}  // namespace corvinet::testing
