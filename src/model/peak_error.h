// Why the width or the shape of a peak could not be set up.
#pragma once

namespace corvinet {

enum class PeakFailure {
  NegativeWidth,    // a square of a width at or below 0
  PearsonExponent,  // a Pearson VII exponent m below 0.6
  UnknownCode,      // a profile code outside 1 to 13
};

// Thrown by the width law, the Pearson VII constants and the shape set-up;
// the calculation of the reflection turns it into its stop.
struct PeakError {
  PeakFailure failure = PeakFailure::UnknownCode;
  float value = 0.0f;  // NegativeWidth: the position; PearsonExponent: m
  int phase = 0;       // NegativeWidth: the phase of the reflection
  int code = 0;        // UnknownCode: the code asked for
};

}  // namespace corvinet
