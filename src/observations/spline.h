// Cubic-spline interpolation through tabulated points, and the bracket search it shares.
#pragma once

#include <span>

#include "records/job.h"

namespace corvinet {

// An end derivative at or above this value asks for a natural end (second
// derivative 0 there).
constexpr float kNaturalSplineEnd = 0.99e30f;

// The interval of the table that holds t: klo and khi = klo + 1 are 1-based
// indices into x[1..n] (x[i] is x[i - 1] of the span), n at least 2, found by
// bisection on ascending positions. A t outside the table gives the end
// interval.
struct SplineBracket {
  int klo = 1;
  int khi = 2;
};
SplineBracket FindSplineBracket(std::span<const float> x, int n, float t);

// Second derivatives y2[1..n] of the interpolating cubic spline through
// (x[i], y[i]), i = 1..n, with end first derivatives yp1 and ypn (natural at an
// end whose value is kNaturalSplineEnd or more). The spans hold at least n
// values; y2 may not alias x or y.
void SplineSetup(std::span<const float> x, std::span<const float> y, int n, float yp1, float ypn,
                 std::span<float> y2);

// Value at t of the spline prepared by SplineSetup. An interval of zero width
// writes " => Problem with interpolation!, check your background points! " on
// the console and stops the run.
float SplineValue(Job& job, std::span<const float> x, std::span<const float> y,
                  std::span<const float> y2, int n, float t);

}  // namespace corvinet
