// The pseudo-Voigt kernel in the squared normalised distance, with its slopes.
#pragma once

#include <cmath>

namespace corvinet {

// The constants of the normalised shapes, as the program stores them.
namespace ShapeConstant {
constexpr float kLorentzNorm = 0.6366197f;   // 2/pi
constexpr float kGaussNorm = 0.9394373f;     // 2*sqrt(ln2/pi)
constexpr float kGaussExponent = 2.772589f;  // 4*ln2
constexpr float kLorentzSlope = 2.546479f;   // 4*2/pi
constexpr float kGaussSlope = 2.604673f;     // 4*ln2 * 2*sqrt(ln2/pi)
constexpr float kSplitGauss = 2.128934f;     // sqrt(pi/ln2)
constexpr float kSplitLorentz = 1.012659f;   // pi - sqrt(pi/ln2)
}  // namespace ShapeConstant

// The two components of a pseudo-Voigt at one x2 = (delta/H)^2, before mixing.
struct PseudoVoigtParts {
  float lorentz;  // 1/(1 + 4x2)
  float gauss;    // exp(-4 ln2 x2)
};

// Below this exponent exp() of a float is 0 exactly; the library's underflow
// path that would say so costs far more than the test.
constexpr float kGaussUnderflow = -104.0f;

inline PseudoVoigtParts PseudoVoigtPartsAt(float x2) {
  const float exponent = -ShapeConstant::kGaussExponent * x2;
  return {1.0f / (1.0f + 4.0f * x2), exponent < kGaussUnderflow ? 0.0f : std::exp(exponent)};
}

// pV(x2): the pseudo-Voigt of unit FWHM and unit area.
inline float PseudoVoigt(const PseudoVoigtParts& t, float eta) {
  return eta * ShapeConstant::kLorentzNorm * t.lorentz +
         (1.0f - eta) * ShapeConstant::kGaussNorm * t.gauss;
}

// dpV(x2): the negative slope of pV with respect to x2.
inline float PseudoVoigtSlope(const PseudoVoigtParts& t, float eta) {
  return ShapeConstant::kLorentzSlope * eta * t.lorentz * t.lorentz +
         ShapeConstant::kGaussSlope * (1.0f - eta) * t.gauss;
}

// The slope of pV with respect to the mixing eta.
inline float PseudoVoigtEtaSlope(const PseudoVoigtParts& t) {
  return ShapeConstant::kLorentzNorm * t.lorentz - ShapeConstant::kGaussNorm * t.gauss;
}

}  // namespace corvinet
