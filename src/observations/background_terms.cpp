// Values and parameter derivatives of the polynomial and Debye-like background terms.
#include "observations/background_terms.h"

#include <cmath>

namespace corvinet {

namespace {

constexpr int kDebyeTerms = 6;

// sin(x)/x and its derivative with respect to the distance R, x = uR; both
// take their limits at x = 0.
struct DebyeRatio {
  float value = 1.0f;
  float distanceSlope = 0.0f;  // (x cos x - sin x)/(x R), without the amplitude
};

DebyeRatio RatioAt(float u, float distance) {
  DebyeRatio r;
  const float x = u * distance;
  if (x == 0.0f) return r;
  const float s = std::sin(x);
  r.value = s / x;
  r.distanceSlope = (x * std::cos(x) - s) / (x * distance);
  return r;
}

}  // namespace

float PolynomialValue(const Pattern& pattern, float x, int terms) {
  const float u = x / pattern.Bkpos - 1.0f;
  float value = pattern.GLB[PolynomialSlot(0)];
  float power = 1.0f;
  for (int j = 1; j < terms; ++j) {
    power *= u;
    value += pattern.GLB[PolynomialSlot(j)] * power;
  }
  return value;
}

void AddPolynomialDerivatives(const Pattern& pattern, float x, int terms, float factor,
                              DerivativeVector& derivative) {
  const float u = x / pattern.Bkpos - 1.0f;
  float power = 1.0f;
  for (int j = 0; j < terms; ++j) {
    AddBackgroundTerm(derivative, pattern.GLBword[PolynomialSlot(j)], factor, power);
    power *= u;
  }
}

float DebyeReciprocal(const Pattern& pattern, float x) {
  switch (pattern.IXUNIT) {
    case AbscissaUnit::kTwoTheta:
      return 12.566371f * std::sin(0.008726646f * x) / pattern.LAMBDA[1];
    case AbscissaUnit::kTimeOfFlight:
      return 6.2831855f * pattern.Dtt1 / x;
    case AbscissaUnit::kEnergy:
      return 6.2831855f * x / pattern.Dtt1;
    case AbscissaUnit::kQ:
      return x;
    case AbscissaUnit::kInverseD:
      return 0.07957747f * x;
    default:
      return 0.0f;
  }
}

float DebyeValue(const Pattern& pattern, float x) {
  const float u = DebyeReciprocal(pattern, x);
  // A point with no positive, finite reciprocal value has no Debye-like term.
  if (!(u > 0.0f) || !std::isfinite(u)) return 0.0f;
  float value = 0.0f;
  for (int n = 1; n <= kDebyeTerms; ++n) {
    const float amplitude = pattern.GLB[DebyeAmplitudeSlot(n)];
    value += amplitude * RatioAt(u, pattern.GLB[DebyeDistanceSlot(n)]).value;
  }
  return value;
}

void AddDebyeDerivatives(const Pattern& pattern, float x, float factor,
                         DerivativeVector& derivative) {
  const float u = DebyeReciprocal(pattern, x);
  if (!(u > 0.0f) || !std::isfinite(u)) return;
  for (int n = 1; n <= kDebyeTerms; ++n) {
    const Codeword& amplitudeWord = pattern.GLBword[DebyeAmplitudeSlot(n)];
    const Codeword& distanceWord = pattern.GLBword[DebyeDistanceSlot(n)];
    if (amplitudeWord.parameterNumber == 0 && distanceWord.parameterNumber == 0) continue;
    const float amplitude = pattern.GLB[DebyeAmplitudeSlot(n)];
    const DebyeRatio r = RatioAt(u, pattern.GLB[DebyeDistanceSlot(n)]);
    AddBackgroundTerm(derivative, amplitudeWord, factor, r.value);
    AddBackgroundTerm(derivative, distanceWord, factor, amplitude * r.distanceSlope);
  }
}

}  // namespace corvinet
