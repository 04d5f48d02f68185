// The time-of-flight peak: back-to-back exponentials convoluted with a pseudo-Voigt, with the
// complementary error function and the exponential integral it needs.
#include "model/tof_profile.h"

#include <cmath>

namespace corvinet {

namespace {

constexpr double kTwoOverSqrtPi = 1.1283791670955126;
constexpr double kTwoOverPi = 0.63661977236758134;
constexpr double kPi = 3.14159265358979324;
constexpr double kEulerGamma = 0.57721566490153286;
constexpr int kFractionTerms = 400;  // most steps of the continued fraction of E1
// From |z| = 24 on the smallest term of the asymptotic series of exp(z)E1(z)
// is below 1e-9 of the sum, and the series is used in every direction.
constexpr double kAsymptoticModulus = 24.0;
// The power series is used while |z| + Re z is below this: it then loses fewer
// than 7 of its 16 digits (exp(16) ~ 1e7) to the cancellation of its terms.
constexpr double kSeriesReach = 16.0;

// One exponential-Gaussian term exp(u)*erfc(y), with u - y^2 = -Delta^2/(2 sigma^2),
// taken as exp(-Delta^2/(2 sigma^2))*exp(y^2)erfc(y) when y >= 0 so that it stays
// finite however sharp the exponential is.
struct EdgeTerm {
  double value;  // exp(u)*erfc(y)
  double gauss;  // exp(u - y^2) = exp(-Delta^2/(2 sigma^2))
};

EdgeTerm ExponentialGaussian(double u, double y, double gaussExponent) {
  const double gauss = std::exp(gaussExponent);
  if (y >= 0.0) return {gauss * ScaledErfc(y), gauss};
  return {std::exp(u) * std::erfc(y), gauss};
}

// 1/z without the library's guards against overflow, which the moduli here never approach.
inline std::complex<double> Inverse(std::complex<double> z) {
  return std::conj(z) / std::norm(z);
}

// 1/k for the terms of the power series, so that its loop multiplies only.
constexpr int kSeriesTerms = 500;
struct Reciprocals {
  double of[kSeriesTerms] = {};
  constexpr Reciprocals() {
    for (int k = 1; k < kSeriesTerms; ++k) of[k] = 1.0 / k;
  }
};
constexpr Reciprocals kReciprocals;

std::complex<double> SeriesExpE1(std::complex<double> z) {
  const double* inverse = kReciprocals.of;
  const double zr = -z.real(), zi = -z.imag();
  // (-1)^(k+1) z^k / k! as (pr, pi), in real arithmetic: the library's
  // complex product checks for infinities at every step.
  double pr = 1.0, pi = 0.0, sr = 0.0, si = 0.0;
  for (int k = 1; k < kSeriesTerms; ++k) {
    const double nr = (pr * zr - pi * zi) * inverse[k];
    pi = (pr * zi + pi * zr) * inverse[k];
    pr = nr;
    const double br = sr, bi = si;
    sr -= pr * inverse[k];
    si -= pi * inverse[k];
    if (sr == br && si == bi) break;
  }
  const std::complex<double> e1 = -kEulerGamma - std::log(z) + std::complex<double>(sr, si);
  return std::exp(z) * e1;
}

// exp(z)E1(z) = 1/(z + 1 - 1/(z + 3 - 4/(z + 5 - 9/(z + 7 - ...)))), the even
// form of the fraction, evaluated forwards by Lentz's method until a step
// changes it by less than 1e-13; at most kFractionTerms steps.
std::complex<double> FractionExpE1(std::complex<double> z) {
  constexpr double kTiny = 1e-300;
  std::complex<double> b = z + 1.0;
  std::complex<double> c = 1.0 / kTiny;
  std::complex<double> d = Inverse(b);
  std::complex<double> h = d;
  for (int k = 1; k <= kFractionTerms; ++k) {
    const double a = -static_cast<double>(k) * k;
    b += 2.0;
    d = Inverse(a * d + b);
    c = b + a * Inverse(c);
    const std::complex<double> step = c * d;
    h *= step;
    if (std::norm(step - 1.0) < 1e-26) break;
  }
  return h;
}

// exp(z)E1(z) ~ sum over n of (-1)^n n!/z^(n+1), summed while the terms fall.
std::complex<double> AsymptoticExpE1(std::complex<double> z) {
  const std::complex<double> inverse = Inverse(z);
  std::complex<double> term = inverse;
  std::complex<double> sum = term;
  double size = std::norm(term);
  for (int n = 1; n < 200; ++n) {
    const std::complex<double> next = term * inverse * static_cast<double>(-n);
    const double nextSize = std::norm(next);
    if (nextSize >= size) break;
    term = next;
    size = nextSize;
    sum += term;
    if (size < 1e-34 * std::norm(sum)) break;
  }
  return sum;
}

// d/dx of exp(x)E1(x): exp(x)E1(x) - 1/x.
std::complex<double> ExpE1Slope(std::complex<double> z, std::complex<double> f) {
  return f - 1.0 / z;
}

}  // namespace

double Erfc(double x) {
  return std::erfc(x);
}

double ErfcSlope(double x) {
  return -kTwoOverSqrtPi * std::exp(-x * x);
}

double ScaledErfc(double x) {
  if (x < 26.0) return std::exp(x * x) * std::erfc(x);
  // Asymptotic series: 1/(x sqrt(pi)) (1 - 1/(2x^2) + 3/(4x^4) - 15/(8x^6)).
  const double r = 1.0 / (x * x);
  return (kTwoOverSqrtPi * 0.5 / x) * (1.0 - r * (0.5 - r * (0.75 - r * 1.875)));
}

std::complex<double> ExpE1Complex(std::complex<double> z) {
  if (z.imag() == 0.0) z = {z.real(), 0.0};  // the upper side of the cut
  if (std::signbit(z.imag())) return std::conj(ExpE1Complex(std::conj(z)));
  const double r = std::sqrt(std::norm(z));
  if (r == 0.0) return {1.0e300, 0.0};
  if (r >= kAsymptoticModulus) {
    std::complex<double> f = AsymptoticExpE1(z);
    // Left of the imaginary axis the part of the cut, -i pi exp(z), is switched
    // on by the Stokes factor erfc(theta sqrt(|z|/2)), theta the angle to the
    // negative real axis: 1 on the axis, nothing where it is not small.
    if (z.real() < 0.0) {
      const double theta = kPi - std::atan2(z.imag(), z.real());
      f -= std::complex<double>(0.0, kPi) * std::exp(z) * std::erfc(theta * std::sqrt(0.5 * r));
    }
    return f;
  }
  // The terms of the power series grow to about exp(|z|)/|z| while E1(z) is
  // about exp(-Re z)/|z|: the series keeps its digits while |z| + Re z stays
  // small, that is near the negative real axis and at small |z|; the
  // continued fraction elsewhere.
  const bool series = z.real() > 0.0 ? r <= 2.0 : r + z.real() < kSeriesReach;
  return series ? SeriesExpE1(z) : FractionExpE1(z);
}

double TofGaussianReach(const TofPeakShape& s) {
  // exp(-Delta^2/(2 sigma^2)) < 1e-12 beyond 7.44 sigma, and the exponential
  // tails exp(alpha Delta), exp(-beta Delta) times their Gaussian factors as well.
  const double sigma = std::sqrt(s.sigma2);
  const double tail = 27.7 / std::fmin(s.alpha, s.beta);
  return 7.44 * sigma + tail + s.sigma2 * std::fmax(s.alpha, s.beta);
}

TofPeakValue TofProfile(const TofPeakShape& s, double delta, bool withDerivatives) {
  const double a = s.alpha, b = s.beta, s2 = s.sigma2;
  const double n = 0.5 * a * b / (a + b);
  const double r = 1.0 / std::sqrt(2.0 * s2);
  const double u = 0.5 * a * (s2 * a + 2.0 * delta);
  const double v = 0.5 * b * (s2 * b - 2.0 * delta);
  const double y = (a * s2 + delta) * r;
  const double z = (b * s2 - delta) * r;
  const double gaussExponent = -delta * delta * r * r;
  const EdgeTerm left = ExponentialGaussian(u, y, gaussExponent);
  const EdgeTerm right = ExponentialGaussian(v, z, gaussExponent);
  const double g = left.value + right.value;

  const std::complex<double> p(a * delta, 0.5 * a * s.gamma);
  const std::complex<double> q(-b * delta, 0.5 * b * s.gamma);
  const std::complex<double> fp = ExpE1Complex(p);
  const std::complex<double> fq = ExpE1Complex(q);
  const double lz = -fp.imag() - fq.imag();

  TofPeakValue out;
  const double mix = (1.0 - s.eta) * g + kTwoOverPi * s.eta * lz;
  out.omega = n * mix;
  if (!withDerivatives) return out;

  // The Gaussian part: d[exp(u)erfc(y)] = exp(u)erfc(y) du - 2/sqrt(pi) exp(u-y^2) dy.
  const double el = -kTwoOverSqrtPi * left.gauss;
  const double er = -kTwoOverSqrtPi * right.gauss;
  const double gDelta = left.value * a + el * r - right.value * b - er * r;
  const double gAlpha = left.value * (a * s2 + delta) + el * s2 * r;
  const double gBeta = right.value * (b * s2 - delta) + er * s2 * r;
  const double gSigma2 = left.value * 0.5 * a * a + el * (a * r - y * r * r) +
                         right.value * 0.5 * b * b + er * (b * r - z * r * r);

  // The Lorentzian part through d[exp(p)E1(p)]/dp = exp(p)E1(p) - 1/p.
  const std::complex<double> sp = ExpE1Slope(p, fp);
  const std::complex<double> sq = ExpE1Slope(q, fq);
  const std::complex<double> i(0.0, 1.0);
  const double lDelta = -(sp * a).imag() + (sq * b).imag();
  const double lGamma = -(sp * (0.5 * a) * i).imag() - (sq * (0.5 * b) * i).imag();
  const double lAlpha = -(sp * std::complex<double>(delta, 0.5 * s.gamma)).imag();
  const double lBeta = -(sq * std::complex<double>(-delta, 0.5 * s.gamma)).imag();

  const double nAlpha = n * b / (a * (a + b));
  const double nBeta = n * a / (b * (a + b));
  const double wg = n * (1.0 - s.eta);
  const double wl = n * kTwoOverPi * s.eta;
  out.dDelta = wg * gDelta + wl * lDelta;
  out.dAlpha = nAlpha * mix + wg * gAlpha + wl * lAlpha;
  out.dBeta = nBeta * mix + wg * gBeta + wl * lBeta;
  out.dSigma2 = wg * gSigma2;
  out.dGamma = wl * lGamma;
  out.dEta = n * (kTwoOverPi * lz - g);
  return out;
}

}  // namespace corvinet
