// Fit of four-Gaussian form-factor coefficients to tabulated points, and linear interpolation in
// a tabulated form factor.
#include "model/form_factor_fit.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace corvinet {

namespace {

constexpr int kSpace = 10;  // elements of the fitted vector
constexpr int kPasses = 2;  // passes of the descent
using Vector = std::array<double, kSpace>;
using Matrix = std::array<Vector, kSpace>;

// The sum of squares of the misfit at x, over points of squared abscissa q,
// and its gradient in the first `slots` elements (the others are held).
struct Misfit {
  const std::vector<double>& q;
  const std::vector<double>& f;
  int slots = 0;

  double Value(const Vector& x, Vector* gradient) const {
    if (gradient != nullptr) gradient->fill(0.0);
    double sum = 0.0;
    for (std::size_t i = 0; i < q.size(); ++i) {
      // One exponential per pair (amplitude, exponent), for the model and its slopes.
      std::array<double, kSpace / 2> e{};
      double model = 0.0;
      for (int j = 0; j < kSpace; j += 2) {
        e[j / 2] = std::exp(-x[j + 1] * q[i]);
        model += x[j] * e[j / 2];
      }
      const double r = f[i] - model;
      sum += r * r;
      if (gradient == nullptr) continue;
      for (int j = 0; j < slots; ++j) {
        const int amplitude = j - j % 2;
        const double ej = e[j / 2];
        (*gradient)[j] += (j % 2 == 0) ? -2.0 * r * ej : 2.0 * r * x[amplitude] * q[i] * ej;
      }
    }
    return sum;
  }
};

double Dot(const Vector& a, const Vector& b) {
  double s = 0.0;
  for (int i = 0; i < kSpace; ++i) s += a[i] * b[i];
  return s;
}

Vector Times(const Matrix& h, const Vector& v) {
  Vector r{};
  for (int i = 0; i < kSpace; ++i) r[i] = Dot(h[i], v);
  return r;
}

Vector Along(const Vector& x, const Vector& p, double t) {
  Vector r{};
  for (int i = 0; i < kSpace; ++i) r[i] = x[i] + t * p[i];
  return r;
}

// Minimum of the cubic through (0, f0, d0) and (step, f1, d1); NaN when it has none.
double CubicMinimum(double step, double f0, double d0, double f1, double d1) {
  const double z = 3.0 * (f0 - f1) / step + d0 + d1;
  const double disc = z * z - d0 * d1;
  if (disc < 0.0) return std::nan("");
  const double w = std::sqrt(disc);
  const double denominator = d1 - d0 + 2.0 * w;
  if (denominator == 0.0) return std::nan("");
  return step - step * (d1 + w - z) / denominator;
}

// The rank-two Davidon-Fletcher-Powell update of the inverse Hessian.
void UpdateInverseHessian(Matrix& h, const Vector& s, const Vector& y) {
  const double sy = Dot(s, y);
  const Vector hy = Times(h, y);
  const double yhy = Dot(y, hy);
  if (!(sy > 0.0) || !(yhy > 0.0)) return;
  for (int i = 0; i < kSpace; ++i) {
    for (int j = 0; j < kSpace; ++j) h[i][j] += s[i] * s[j] / sy - hy[i] * hy[j] / yhy;
  }
}

// One pass: direction -H.g, step min(1, |2F/(g.H.g)|), one cubic interpolation
// on the values and slopes at both ends, then the update of H.
void DescentPass(const Misfit& misfit, Vector& x, double& value, Vector& gradient, Matrix& h) {
  Vector p = Times(h, gradient);
  for (double& e : p) e = -e;
  const double slope0 = Dot(gradient, p);
  if (!(slope0 < 0.0)) return;
  const double step = std::min(1.0, std::fabs(2.0 * value / slope0));
  Vector endGradient{};
  const Vector end = Along(x, p, step);
  const double endValue = misfit.Value(end, &endGradient);
  const double slope1 = Dot(endGradient, p);

  Vector bestX = x, bestGradient = gradient;
  double bestValue = value;
  if (std::isfinite(endValue) && endValue < bestValue) {
    bestX = end;
    bestGradient = endGradient;
    bestValue = endValue;
  }
  const double t = CubicMinimum(step, value, slope0, endValue, slope1);
  if (std::isfinite(t) && t > 0.0) {
    Vector trialGradient{};
    const Vector trial = Along(x, p, t);
    const double trialValue = misfit.Value(trial, &trialGradient);
    if (std::isfinite(trialValue) && trialValue <= bestValue) {
      bestX = trial;
      bestGradient = trialGradient;
      bestValue = trialValue;
    }
  }
  Vector s{}, y{};
  for (int i = 0; i < kSpace; ++i) {
    s[i] = bestX[i] - x[i];
    y[i] = bestGradient[i] - gradient[i];
  }
  UpdateInverseHessian(h, s, y);
  x = bestX;
  gradient = bestGradient;
  value = bestValue;
}

}  // namespace

std::array<float, 10> FitGaussianCoefficients(std::span<const float> s, std::span<const float> f) {
  const std::size_t n = std::min(s.size(), f.size());
  std::vector<double> q(n), y(n);
  for (std::size_t i = 0; i < n; ++i) {
    q[i] = static_cast<double>(s[i]) * static_cast<double>(s[i]);
    y[i] = f[i];
  }
  const Misfit misfit{q, y, static_cast<int>(std::min<std::size_t>(n, 9))};
  Vector x{};
  for (int i = 0; i < misfit.slots; ++i) x[i] = i + 1;
  Matrix h{};
  for (int i = 0; i < kSpace; ++i) h[i][i] = 1.0;
  Vector gradient{};
  double value = misfit.Value(x, &gradient);
  for (int pass = 0; pass < kPasses; ++pass) DescentPass(misfit, x, value, gradient, h);

  std::array<float, 10> result{};
  for (int i = 0; i < kSpace; ++i) result[i] = static_cast<float>(x[i]);
  if (!(result[2] > 0.0f)) result[2] = -1.0e-6f;
  return result;
}

void FitGaussianFormFactor(ScatteringEntry& entry) {
  const std::size_t n = static_cast<std::size_t>(std::max(entry.tablePoints, 0));
  const std::array<float, 10> x = FitGaussianCoefficients(
      std::span<const float>(entry.tableX.ptr(), n), std::span<const float>(entry.tableY.ptr(), n));
  for (int j = 1; j <= 9; ++j) entry.coef[j] = x[static_cast<std::size_t>(j - 1)];
}

float InterpolateFormFactor(const ChemicalSpecies& species, float s) {
  const int n = species.nTable;
  if (n <= 0) return 0.0f;
  const auto& x = species.sTable;
  const auto& f = species.coeff;
  if (s <= x[1]) return f[1];
  if (s >= x[n]) return f[n];
  for (int i = 1; i <= n - 1; ++i) {
    if (x[i] <= s && s < x[i + 1]) {
      const float m = (f[i + 1] - f[i]) / (x[i + 1] - x[i]);
      return f[i] - x[i] * m + s * m;
    }
  }
  return f[n];
}

}  // namespace corvinet
