// Lorentz-polarisation factor of a reflection for every geometry and unit, with the .cor term.
#include "model/lorentz_polarisation.h"

#include <cmath>

#include "crystal/reflection_range.h"

namespace corvinet {
namespace {

constexpr float kHalfDegree = 0.008726646f;  // radians in half a degree

bool IsXrayJob(const Pattern& p) {
  return p.JOBTYP == 0 || p.JOBTYP == 2;
}

// Linear interpolation in the correction table; the interval by bisection.
float TableCorrection(const Pattern& p, float x) {
  const int n = p.corrCount;
  if (n <= 0) return 1.0f;
  if (n == 1) return p.corrY[1];
  int low = 1;
  int high = n;
  while (high - low > 1) {
    const int middle = (low + high) / 2;
    if (x >= p.corrX[middle]) {
      low = middle;
    } else {
      high = middle;
    }
  }
  const float x0 = p.corrX[low];
  const float y0 = p.corrY[low];
  const float slope = (p.corrY[low + 1] - y0) / (p.corrX[low + 1] - x0);
  return y0 + slope * (x - x0);
}

// c1 + c2 x + c3 x² + ... by Horner's rule.
float PolynomialCorrection(const Pattern& p, float x) {
  float value = 0.0f;
  for (int j = p.corrCount; j >= 1; --j) value = value * x + p.corrY[j];
  return value;
}

// S: below the angle Sent0/2 an X-ray pattern in reflection geometry is scaled by
// sinθ/sin(Sent0/2).
float LowAngleScale(const Pattern& p, float sinTheta) {
  if (!(p.Sent0 > 0.0f) || (p.ILOR != 0 && p.ILOR != 3) || !IsXrayJob(p)) return 1.0f;
  const float g = std::sin(kHalfDegree * p.Sent0);
  return sinTheta < g ? sinTheta / g : 1.0f;
}

// The position-sensitive detector term of a flat plate (ILOR 1), angles in degrees.
float DetectorTerm(const Pattern& p, float twoTheta) {
  if (p.ILOR != 1) return 1.0f;
  return 1.0f +
         std::sin(2.0f * kHalfDegree * p.PSD) / std::sin(2.0f * kHalfDegree * (twoTheta - p.PSD));
}

// The absorption of a flat plate in reflection (ILOR 0) or in transmission (ILOR 2).
float Absorption(const Pattern& p, float s2, float cosTheta) {
  if (!(p.muR >= 1.0e-06f)) return 1.0f;
  if (p.ILOR == 0) {
    return std::exp(-(1.7133f - 0.0368f * s2) * p.muR + (0.0927f + 0.375f * s2) * p.muR * p.muR);
  }
  if (p.ILOR == 2) return std::exp(-p.muR / cosTheta) / cosTheta;
  return 1.0f;
}

// The polarisation of an X-ray pattern, with the low-angle scale where the geometry takes it.
float Polarisation(const Pattern& p, float s2, float scale) {
  const float cos2Theta = 1.0f - 2.0f * s2;
  const float c2 = cos2Theta * cos2Theta;
  if (p.INSTR == 4) return 1.0f - p.Rpolarz + c2 * p.Rpolarz;
  if (p.ILOR < 2) return (1.0f + p.Cthm * c2) * scale;
  if (p.ILOR == 2) {
    const float k = std::sqrt(p.Cthm);
    return scale * (p.Rpolarz * (1.0f + p.Cthm * c2) / (1.0f + p.Cthm) +
                    (1.0f - p.Rpolarz) * (1.0f + k * c2) / (1.0f + k));
  }
  if (p.ILOR == 3) return 1.0f - p.Rpolarz + c2 * p.Rpolarz;
  return 1.0f;
}

float AngleLorentzPolarisation(const Pattern& p, float s2, float cosTheta, float twoTheta) {
  const float sinTheta = std::sqrt(s2);
  const float scale = LowAngleScale(p, sinTheta);
  const float detector = DetectorTerm(p, twoTheta);
  const float absorption = Absorption(p, s2, cosTheta);
  const bool xray = IsXrayJob(p);
  // X-ray transmission: 1/sin2θ; every other case 1/(sinθ sin2θ).
  float lp = (p.ILOR == 2 && xray) ? absorption / (2.0f * sinTheta * cosTheta)
                                   : absorption / (2.0f * s2 * cosTheta * detector);
  if (xray) lp *= Polarisation(p, s2, scale);
  if (p.ICORR != 0) lp *= IntensityCorrection(p, twoTheta);
  return lp;
}

}  // namespace

float IntensityCorrection(const Pattern& p, float x) {
  return p.ICORR == 1 ? TableCorrection(p, x) : PolynomialCorrection(p, x);
}

float LorentzPolarisation(const Pattern& p, float sin2Theta, float cosTheta, float twoTheta) {
  if (p.IXUNIT == AbscissaUnit::kTimeOfFlight) {
    const float d = sin2Theta;
    const float d2 = d * d;
    float lp = 0.5f * p.TwoSinTh * d2 * d2;
    if (p.ICORR != 0) lp *= IntensityCorrection(p, twoTheta);
    return lp;
  }
  if (p.IXUNIT == AbscissaUnit::kEnergy) {
    const float d = sin2Theta;
    return d * d;
  }
  return AngleLorentzPolarisation(p, sin2Theta, cosTheta, twoTheta);
}

float ReflectionLorentzPolarisation(const Pattern& p, double q, int w, float position) {
  if (!(q > 0.0)) return 0.0f;
  if (IsTofOrEnergy(p.IXUNIT)) {
    const float d = static_cast<float>(1.0 / std::sqrt(q));
    return LorentzPolarisation(p, d, 0.0f, position);
  }
  const double lambda = p.LAMBDA[w];
  const double sin2 = lambda * lambda * q / 4.0;
  if (!(sin2 > 0.0 && sin2 < 1.0)) return 0.0f;
  const float cosTheta = static_cast<float>(std::sqrt(1.0 - sin2));
  return LorentzPolarisation(p, static_cast<float>(sin2), cosTheta, position);
}

}  // namespace corvinet
