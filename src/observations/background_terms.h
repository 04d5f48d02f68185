// Closed-form background terms: the polynomial in X/Bkpos - 1 and the Debye-like sin(x)/x terms.
#pragma once

#include "records/dimension_limits.h"
#include "records/pattern.h"
#include "records/table1.h"

namespace corvinet {

// Derivatives of the calculated value of one point, by parameter number 1..MSZ.
using DerivativeVector = RunTable1<float>;

// Adds value, times the codeword's multiplier and `factor`, to the derivative
// of the codeword's parameter; codewords without a parameter add nothing.
inline void AddBackgroundTerm(DerivativeVector& derivative, const Codeword& word, float factor,
                              float value) {
  const int L = word.parameterNumber;
  if (L < 1 || L > derivative.size()) return;
  derivative[L] += word.multiplier * factor * value;
}

// GLB slot of polynomial coefficient Bj, j = 0..11: 2 + j for B0..B5, 24 + j
// for B6..B11.
constexpr int PolynomialSlot(int j) {
  return j < 6 ? 2 + j : 24 + j;
}

// GLB slots of the amplitude and the distance of Debye-like term n = 1..6.
constexpr int DebyeAmplitudeSlot(int n) {
  return 9 + n;
}
constexpr int DebyeDistanceSlot(int n) {
  return 15 + n;
}

// B0 + B1 u + ... + B(terms-1) u^(terms-1) with u = x/Bkpos - 1; terms is 6 or 12.
float PolynomialValue(const Pattern& pattern, float x, int terms);

// Adds u^j for each refined coefficient Bj, j < terms.
void AddPolynomialDerivatives(const Pattern& pattern, float x, int terms, float factor,
                              DerivativeVector& derivative);

// The reciprocal variable of the Debye-like terms at abscissa x, by IXUNIT:
// 0 4 pi sin(theta)/LAMBDA[1], 1 2 pi Dtt1/x, 2 2 pi x/Dtt1, 3 x, 4 x/(4 pi).
// Other units give 0, that is no Debye-like term.
float DebyeReciprocal(const Pattern& pattern, float x);

// Sum over the six terms of A sin(uR)/(uR); 0 where u is not above 0. A zero
// distance takes the limit 1 of sin(x)/x.
float DebyeValue(const Pattern& pattern, float x);

// Adds sin(x)/x for each refined amplitude and A (x cos x - sin x)/(x R) for
// each refined distance, x = uR.
void AddDebyeDerivatives(const Pattern& pattern, float x, float factor,
                         DerivativeVector& derivative);

}  // namespace corvinet
