// The Pearson VII constants for one exponent m: normaliser and the terms of the m-slope.
#include "model/pearson_constants.h"

#include <array>
#include <cmath>

namespace corvinet {

namespace {

constexpr int kTableSize = 51;
constexpr float kTableStart = 0.6f;
constexpr float kTableStep = 0.02f;
constexpr float kTableEnd = 1.6f;
constexpr float kSqrtPi = 1.7724539f;
constexpr float kLn2 = 0.6931472f;

// A(m) = Gamma(m)/Gamma(m - 1/2) and B(m) = dA/dm at m = 0.6, 0.62, ..., 1.6.
struct PearsonTables {
  std::array<float, kTableSize> ratio{};
  std::array<float, kTableSize> slope{};
};

// The digamma function for x > 0: raised above 10 by psi(x) = psi(x+1) - 1/x,
// then the asymptotic series.
double Digamma(double x) {
  double shift = 0.0;
  while (x < 10.0) {
    shift -= 1.0 / x;
    x += 1.0;
  }
  const double r = 1.0 / (x * x);
  const double series =
      r * (1.0 / 12.0 - r * (1.0 / 120.0 - r * (1.0 / 252.0 - r * (1.0 / 240.0 - r / 132.0))));
  return shift + std::log(x) - 0.5 / x - series;
}

PearsonTables BuildPearsonTables() {
  PearsonTables t;
  for (int j = 0; j < kTableSize; ++j) {
    const double m = 0.6 + 0.02 * j;
    const double a = std::exp(std::lgamma(m) - std::lgamma(m - 0.5));
    t.ratio[static_cast<std::size_t>(j)] = static_cast<float>(a);
    t.slope[static_cast<std::size_t>(j)] = static_cast<float>(a * (Digamma(m) - Digamma(m - 0.5)));
  }
  return t;
}

const PearsonTables& Tables() {
  static const PearsonTables tables = BuildPearsonTables();
  return tables;
}

// Linear interpolation in the tables, for m in 0.6..1.6.
PearsonRatio ReadTables(float m) {
  const PearsonTables& t = Tables();
  const float at = (m - kTableStart) / kTableStep;
  int j = static_cast<int>(at);
  if (j < 0) j = 0;
  if (j > kTableSize - 2) j = kTableSize - 2;
  const float f = at - static_cast<float>(j);
  const auto lo = static_cast<std::size_t>(j);
  PearsonRatio r;
  r.A = t.ratio[lo] + f * (t.ratio[lo + 1] - t.ratio[lo]);
  r.B = t.slope[lo] + f * (t.slope[lo + 1] - t.slope[lo]);
  return r;
}

}  // namespace

PearsonRatio PearsonGammaRatio(float m) {
  if (m <= kTableEnd) return ReadTables(m);
  // Take whole steps away until the remainder lies in the tables, then carry
  // A(m+1) = A(m) m/(m - 1/2) back up, B by the product rule.
  const int steps = static_cast<int>(std::floor(m - kTableStart));
  float mr = m - static_cast<float>(steps);
  PearsonRatio r = ReadTables(mr);
  for (int i = 0; i < steps; ++i) {
    const float denominator = mr - 0.5f;
    const float factor = mr / denominator;
    r.B = r.B * factor - 0.5f * r.A / (denominator * denominator);
    r.A *= factor;
    mr += 1.0f;
  }
  return r;
}

PearsonShape PearsonConstants(float m) {
  if (!(m >= kPearsonMinimumM)) throw PeakError{PeakFailure::PearsonExponent, m};
  PearsonShape s;
  s.m = m;
  s.invM = 1.0f / m;
  const float power = std::exp2(s.invM);
  s.k = power - 1.0f;
  s.sqrtK = std::sqrt(s.k);
  s.k4 = 4.0f * s.k;
  const PearsonRatio r = PearsonGammaRatio(m);
  s.A = r.A;
  s.B = r.B;
  s.C = 2.0f * s.A * s.sqrtK / kSqrtPi;
  s.dkdm = -kLn2 * power * s.invM * s.invM;
  return s;
}

float PearsonExponentSlope(const PearsonShape& s, float x2) {
  // ln Omega = ln C - ln H - m ln(1 + 4k x2), ln C = ln(2/sqrt(pi)) + ln A + ln(k)/2.
  const float base = 1.0f + s.k4 * x2;
  return s.B / s.A + 0.5f * s.dkdm / s.k - std::log(base) - 4.0f * s.m * s.dkdm * x2 / base;
}

}  // namespace corvinet
