// Radix-2 complex and real transforms, spectral smoothing and the Fourier-filter background pass.
#include "observations/fourier.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "format/bisection.h"
#include "format/fortran_format.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr double kTwoPi = 6.28318530717959;

// Factor on the smoothed residual when it is added to the background.
constexpr float kFilterUpdateFactor = 2.0f;

// Reorders the 2n reals into bit-reversed order of their complex index.
void BitReverse(std::span<float> d, int n) {
  const int size = 2 * n;
  int j = 1;
  for (int i = 1; i < size; i += 2) {
    if (j > i) {
      std::swap(d[j - 1], d[i - 1]);
      std::swap(d[j], d[i]);
    }
    int m = n;
    while (m >= 2 && j > m) {
      j -= m;
      m /= 2;
    }
    j += m;
  }
}

// One Danielson-Lanczos stage combining transforms of length mmax/2 complex
// numbers; the twiddle factors come from a double-precision recurrence.
void ButterflyStage(std::span<float> d, int size, int mmax, int sign) {
  const int istep = 2 * mmax;
  const double theta = kTwoPi / (sign * mmax);
  const double wtemp0 = std::sin(0.5 * theta);
  const double wpr = -2.0 * wtemp0 * wtemp0;
  const double wpi = std::sin(theta);
  double wr = 1.0;
  double wi = 0.0;
  for (int m = 1; m < mmax; m += 2) {
    const float wrs = static_cast<float>(wr);
    const float wis = static_cast<float>(wi);
    for (int i = m; i <= size; i += istep) {
      const int j = i + mmax;
      const float tempr = wrs * d[j - 1] - wis * d[j];
      const float tempi = wrs * d[j] + wis * d[j - 1];
      d[j - 1] = d[i - 1] - tempr;
      d[j] = d[i] - tempi;
      d[i - 1] += tempr;
      d[i] += tempi;
    }
    const double wtemp = wr;
    wr = wr * wpr - wi * wpi + wr;
    wi = wi * wpr + wtemp * wpi + wi;
  }
}

// Index of the last point at or below x (0 below the first, NPTS at or above
// the last), by bisection of the ascending abscissa.
int LocatePoint(const Pattern& p, float x) {
  return LastAtOrBelow(
      p.NPTS, [&p](int i) { return p.X[i]; }, x);
}

// Point index of an edge of an excluded region, clamped to 1..NPTS.
int EdgeIndex(const Pattern& p, float edge) {
  int j = 0;
  if (p.equalStep == 1) {
    j = static_cast<int>((edge - p.THMIN) / p.STEP + 1.0f);
  } else {
    j = LocatePoint(p, edge);
  }
  return std::clamp(j, 1, p.NPTS);
}

// Sets the residual to 0 inside every excluded region above THMIN.
void ZeroExcludedRegions(const Pattern& p, std::vector<float>& w) {
  for (int r = 1; r <= p.NEXCRG; ++r) {
    if (p.ExclHigh[r] <= p.THMIN) continue;
    const int j1 = EdgeIndex(p, p.ExclLow[r]);
    const int j2 = EdgeIndex(p, p.ExclHigh[r]);
    for (int j = j1; j <= j2; ++j) w[static_cast<std::size_t>(j - 1)] = 0.0f;
  }
}

// The window in points: FourierWindow rounded half away from zero.
float FilterWindow(float fourierWindow) {
  const float half = fourierWindow >= 0.0f ? 0.5f : -0.5f;
  return std::trunc(fourierWindow + half);
}

}  // namespace

void ComplexTransform(std::span<float> data, int n, int sign) {
  BitReverse(data, n);
  const int size = 2 * n;
  for (int mmax = 2; size > mmax; mmax *= 2) ButterflyStage(data, size, mmax, sign);
}

void RealTransform(std::span<float> data, int n, int sign) {
  auto d = [&](int i) -> float& { return data[static_cast<std::size_t>(i - 1)]; };
  double theta = 3.141592653589793 / n;
  const float c1 = 0.5f;
  float c2 = -0.5f;
  if (sign == 1) {
    ComplexTransform(data, n, 1);
  } else {
    c2 = 0.5f;
    theta = -theta;
  }
  const double wtemp0 = std::sin(0.5 * theta);
  const double wpr = -2.0 * wtemp0 * wtemp0;
  const double wpi = std::sin(theta);
  double wr = 1.0 + wpr;
  double wi = wpi;
  const int n2p3 = 2 * n + 3;
  for (int i = 2; i <= n / 2 + 1; ++i) {
    const int i1 = 2 * i - 1;
    const int i2 = i1 + 1;
    const int i3 = n2p3 - i2;
    const int i4 = i3 + 1;
    const float wrs = static_cast<float>(wr);
    const float wis = static_cast<float>(wi);
    const float h1r = c1 * (d(i1) + d(i3));
    const float h1i = c1 * (d(i2) - d(i4));
    const float h2r = -c2 * (d(i2) + d(i4));
    const float h2i = c2 * (d(i1) - d(i3));
    d(i1) = h1r + wrs * h2r - wis * h2i;
    d(i2) = h1i + wrs * h2i + wis * h2r;
    d(i3) = h1r - wrs * h2r + wis * h2i;
    d(i4) = -h1i + wrs * h2i + wis * h2r;
    const double wtemp = wr;
    wr = wr * wpr - wi * wpi + wr;
    wi = wi * wpr + wtemp * wpi + wi;
  }
  const float h1r = d(1);
  if (sign == 1) {
    d(1) = h1r + d(2);
    d(2) = h1r - d(2);
  } else {
    d(1) = c1 * (h1r + d(2));
    d(2) = c1 * (h1r - d(2));
    ComplexTransform(data, n, -1);
  }
}

void Smooth(Job& job, std::span<float> y, int n, float window) {
  int m = 2;
  while (m < n) m *= 2;
  if (static_cast<std::size_t>(m) > y.size()) {
    StopBox(job, "=> Too many points for Fourier filtering!");
  }
  auto d = [&](int i) -> float& { return y[static_cast<std::size_t>(i - 1)]; };
  const float ratio = window / static_cast<float>(m);
  const float c = ratio * ratio;
  for (int i = n + 1; i <= m; ++i) d(i) = 0.0f;
  const int mo2 = m / 2;
  RealTransform(y, mo2, 1);
  d(1) /= static_cast<float>(mo2);
  float fac = 1.0f;
  for (int j = 1; j <= mo2 - 1; ++j) {
    const int k = 2 * j + 1;
    if (fac != 0.0f) {
      const float fj = static_cast<float>(j);
      fac = std::max(0.0f, (1.0f - c * fj * fj) / static_cast<float>(mo2));
      d(k) *= fac;
      d(k + 1) *= fac;
    } else {
      d(k) = 0.0f;
      d(k + 1) = 0.0f;
    }
  }
  d(2) *= fac;
  RealTransform(y, mo2, -1);
}

void FourierFilter(Job& job, int ip, const float* bragg) {
  Pattern& p = job.patterns[ip];
  // Twice the points must fit in the point capacity of the run; the work
  // array is twice that capacity.
  if (p.NPTS > job.dimensions.IDSZ / 2) StopBox(job, " Too many points for Fourier filtering");
  std::vector<float> w(2 * static_cast<std::size_t>(job.dimensions.IDSZ), 0.0f);
  for (int i = 1; i <= p.NPTS; ++i) {
    const float calculated = bragg != nullptr ? bragg[i - 1] : 0.0f;
    w[static_cast<std::size_t>(i - 1)] = p.Ytotal[i] - calculated - p.Backg[i];
  }
  ZeroExcludedRegions(p, w);
  Smooth(job, w, 2 * p.NPTS, FilterWindow(p.FourierWindow));
  for (int i = 1; i <= p.NPTS; ++i) {
    p.Backg[i] += kFilterUpdateFactor * w[static_cast<std::size_t>(i - 1)];
  }
}

}  // namespace corvinet
