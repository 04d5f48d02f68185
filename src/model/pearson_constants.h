// The Pearson VII constants for one exponent m: normaliser and the terms of the m-slope.
#pragma once

#include "model/peak_error.h"

namespace corvinet {

// The smallest exponent the Pearson VII shape accepts.
constexpr float kPearsonMinimumM = 0.6f;

// The Pearson VII shape of exponent m:
//   Omega = (C/H) / (1 + k4 x2)^m, k = 2^(1/m) - 1, k4 = 4k, C = 2 A sqrt(k)/sqrt(pi),
// with A = Gamma(m)/Gamma(m - 1/2) read from the tables and B = dA/dm.
struct PearsonShape {
  float m = 1.0f;
  float k = 1.0f;      // 2^(1/m) - 1
  float sqrtK = 1.0f;  // sqrt(k)
  float k4 = 4.0f;     // 4k, the factor of x2
  float C = 0.0f;      // area normaliser
  float A = 0.0f;      // Gamma(m)/Gamma(m - 1/2)
  float B = 0.0f;      // dA/dm
  float dkdm = 0.0f;   // dk/dm = -ln2 * 2^(1/m)/m^2
  float invM = 1.0f;   // 1/m
};

// The ratio Gamma(m)/Gamma(m - 1/2) and its slope, read from the tables (by
// linear interpolation for m in 0.6..1.6, then carried up by the recurrence
// for a larger m). m must be at least 0.6.
struct PearsonRatio {
  float A = 0.0f;
  float B = 0.0f;
};
PearsonRatio PearsonGammaRatio(float m);

// The constants for exponent m. An m below 0.6 (or not a number) throws
// PeakError PearsonExponent with m.
PearsonShape PearsonConstants(float m);

// d(ln Omega)/dm at x2 = (delta/H)^2, for the shape's exponent.
float PearsonExponentSlope(const PearsonShape& shape, float x2);

}  // namespace corvinet
