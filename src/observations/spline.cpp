// Cubic-spline set-up by the tridiagonal sweep, and evaluation in the bracket found by bisection.
#include "observations/spline.h"

#include <vector>

#include "surface/console.h"

namespace corvinet {

SplineBracket FindSplineBracket(std::span<const float> x, int n, float t) {
  SplineBracket b;
  b.klo = 1;
  b.khi = n;
  while (b.khi - b.klo > 1) {
    const int k = (b.khi + b.klo) / 2;
    if (x[k - 1] > t) {
      b.khi = k;
    } else {
      b.klo = k;
    }
  }
  return b;
}

void SplineSetup(std::span<const float> x, std::span<const float> y, int n, float yp1, float ypn,
                 std::span<float> y2) {
  if (n < 2) {
    if (n == 1) y2[0] = 0.0f;
    return;
  }
  // 1-based views, so that the sweep reads as its formulas.
  auto X = [&](int i) { return x[i - 1]; };
  auto Y = [&](int i) { return y[i - 1]; };
  auto Y2 = [&](int i) -> float& { return y2[i - 1]; };
  std::vector<float> work(static_cast<std::size_t>(n) + 1, 0.0f);
  auto U = [&](int i) -> float& { return work[static_cast<std::size_t>(i)]; };

  if (yp1 >= kNaturalSplineEnd) {
    Y2(1) = 0.0f;
    U(1) = 0.0f;
  } else {
    Y2(1) = -0.5f;
    U(1) = (3.0f / (X(2) - X(1))) * ((Y(2) - Y(1)) / (X(2) - X(1)) - yp1);
  }
  for (int i = 2; i <= n - 1; ++i) {
    const float sig = (X(i) - X(i - 1)) / (X(i + 1) - X(i - 1));
    const float p = sig * Y2(i - 1) + 2.0f;
    Y2(i) = (sig - 1.0f) / p;
    U(i) = (6.0f * ((Y(i + 1) - Y(i)) / (X(i + 1) - X(i)) - (Y(i) - Y(i - 1)) / (X(i) - X(i - 1))) /
                (X(i + 1) - X(i - 1)) -
            sig * U(i - 1)) /
           p;
  }
  float qn = 0.0f;
  float un = 0.0f;
  if (ypn < kNaturalSplineEnd) {
    qn = 0.5f;
    un = (3.0f / (X(n) - X(n - 1))) * (ypn - (Y(n) - Y(n - 1)) / (X(n) - X(n - 1)));
  }
  Y2(n) = (un - qn * U(n - 1)) / (qn * Y2(n - 1) + 1.0f);
  for (int k = n - 1; k >= 1; --k) Y2(k) = Y2(k) * Y2(k + 1) + U(k);
}

float SplineValue(Job& job, std::span<const float> x, std::span<const float> y,
                  std::span<const float> y2, int n, float t) {
  const SplineBracket b = FindSplineBracket(x, n, t);
  const float h = x[b.khi - 1] - x[b.klo - 1];
  if (h == 0.0f) {
    ConsoleLine(job, " => Problem with interpolation!, check your background points! ");
    throw ProcessStop{ExitStatus::kError, "Problem with interpolation of the background points"};
  }
  const float a = (x[b.khi - 1] - t) / h;
  const float c = (t - x[b.klo - 1]) / h;
  return a * y[b.klo - 1] + c * y[b.khi - 1] +
         ((a * a * a - a) * y2[b.klo - 1] + (c * c * c - c) * y2[b.khi - 1]) * (h * h) / 6.0f;
}

}  // namespace corvinet
