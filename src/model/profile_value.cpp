// The normalised peak of each profile code at one point, with its logarithmic slopes.
#include <cmath>

#include "model/numerical_profile.h"
#include "model/peak_shape.h"
#include "model/pseudo_voigt.h"

namespace corvinet {

namespace {

using namespace ShapeConstant;

// The slopes every shape of the form Omega = f(x2)/H has: with Psi = dOmega,
// d ln(Omega)/dT = 2 delta Psi/H^2 and d ln(Omega)/dH = (2 Psi x2 - 1)/H.
void DistanceSlopes(const ProfilePoint& p, ProfileSlopes& d) {
  const float invH = 1.0f / p.H;
  d.position = 2.0f * p.delta * p.dOmega * invH * invH;
  d.width = (2.0f * p.dOmega * p.x2 - 1.0f) * invH;
}

// Code 1: Gaussian.
template <bool kSlopes>
float Gaussian(const PeakShape& s, ProfilePoint& p, ProfileSlopes* d) {
  p.dOmega = kGaussExponent;
  if constexpr (kSlopes) DistanceSlopes(p, *d);
  return kGaussNorm * s.invH * std::exp(-kGaussExponent * p.x2);
}

// Code 2: Lorentzian.
template <bool kSlopes>
float Lorentzian(const PeakShape& s, ProfilePoint& p, ProfileSlopes* d) {
  const float t = 1.0f / (1.0f + 4.0f * p.x2);
  p.dOmega = 4.0f * t;
  if constexpr (kSlopes) DistanceSlopes(p, *d);
  return kLorentzNorm * s.invH * t;
}

// Code 3: modified Lorentzian, squared.
template <bool kSlopes>
float ModifiedLorentzian1(const PeakShape& s, ProfilePoint& p, ProfileSlopes* d) {
  const float t = 1.0f / (1.0f + 1.656854f * p.x2);
  p.dOmega = 3.313709f * t;
  if constexpr (kSlopes) DistanceSlopes(p, *d);
  return 0.8194497f * s.invH * t * t;
}

// Code 4: modified Lorentzian, to the power 3/2.
template <bool kSlopes>
float ModifiedLorentzian2(const PeakShape& s, ProfilePoint& p, ProfileSlopes* d) {
  const float t = 1.0f / (1.0f + 2.349604f * p.x2);
  p.dOmega = 3.524406f * t;
  if constexpr (kSlopes) DistanceSlopes(p, *d);
  return 0.766421f * s.invH * t * std::sqrt(t);
}

// Codes 6 and 8: pseudo-Voigt. Code 8 adds the chain through the TCH widths.
template <bool kSlopes>
float PseudoVoigtShape(const PeakShape& s, ProfilePoint& p, ProfileSlopes* d) {
  const PseudoVoigtParts t = PseudoVoigtPartsAt(p.x2);
  const float pv = PseudoVoigt(t, s.eta);
  const float invPv = pv != 0.0f ? 1.0f / pv : 0.0f;
  p.dOmega = PseudoVoigtSlope(t, s.eta) * invPv;
  if constexpr (kSlopes) {
    DistanceSlopes(p, *d);
    if (pv == 0.0f) d->width = 0.0f;
    d->eta = PseudoVoigtEtaSlope(t) * invPv;
    if (s.code == ProfileCode::kTchPseudoVoigt) {
      d->gaussian = d->width * s.tch.dHdG + d->eta * s.tch.dEtadG;
      d->lorentzian = d->width * s.tch.dHdL + d->eta * s.tch.dEtadL;
    }
  }
  return s.invH * pv;
}

// Code 7: Pearson VII.
template <bool kSlopes>
float PearsonVII(const PeakShape& s, ProfilePoint& p, ProfileSlopes* d) {
  const PearsonShape& c = s.pearson;
  const float base = 1.0f + c.k4 * p.x2;
  p.dOmega = c.m * c.k4 / base;
  if constexpr (kSlopes) {
    DistanceSlopes(p, *d);
    d->m = PearsonExponentSlope(c, p.x2);
  }
  return c.C * s.invH * std::pow(base, -c.m);
}

// Code 5: a pseudo-Voigt at T with weight 1 - w1 - w2 and two copies at T - D
// (weight w1) and T + D (weight w2). dOmega is the same mix of the slopes over
// the mix of the values, all taken in their own distances.
template <bool kSlopes>
float TripledPseudoVoigt(const PeakShape& s, ProfilePoint& p, ProfileSlopes* d) {
  const float z[3] = {p.delta * s.invH, (p.delta + s.D) * s.invH, (p.delta - s.D) * s.invH};
  const float weight[3] = {1.0f - s.w1 - s.w2, s.w1, s.w2};
  float pv[3];
  float dpv[3];
  float mix = 0.0f;
  float mixSlope = 0.0f;
  float mixEta = 0.0f;
  for (int i = 0; i < 3; ++i) {
    const PseudoVoigtParts t = PseudoVoigtPartsAt(z[i] * z[i]);
    pv[i] = PseudoVoigt(t, s.eta);
    dpv[i] = PseudoVoigtSlope(t, s.eta);
    mix += weight[i] * pv[i];
    mixSlope += weight[i] * dpv[i];
    if constexpr (kSlopes) mixEta += weight[i] * PseudoVoigtEtaSlope(t);
  }
  const float invMix = mix != 0.0f ? 1.0f / mix : 0.0f;
  p.dOmega = mixSlope * invMix;
  if constexpr (kSlopes) {
    // d pV(z^2) = -dpV 2z dz, with dz/dT = -1/H, dz/dH = -z/H, dz1/dD = 1/H, dz2/dD = -1/H.
    float moment = 0.0f;
    float spread = 0.0f;
    for (int i = 0; i < 3; ++i) {
      moment += weight[i] * dpv[i] * 2.0f * z[i];
      spread += weight[i] * dpv[i] * 2.0f * z[i] * z[i];
    }
    d->position = moment * s.invH * invMix;
    d->width = (spread * invMix - (mix != 0.0f ? 1.0f : 0.0f)) * s.invH;
    d->D = 2.0f * (s.w2 * dpv[2] * z[2] - s.w1 * dpv[1] * z[1]) * s.invH * invMix;
    d->w1 = (pv[1] - pv[0]) * invMix;
    d->w2 = (pv[2] - pv[0]) * invMix;
    d->eta = mixEta * invMix;
  }
  return s.invH * mix;
}

// Code 12: each half a pseudo-Voigt of its own width and mixing, both under
// the common normaliser W. dOmega keeps its former value where the mix is
// below 1.0E-06.
template <bool kSlopes>
float SplitPseudoVoigt(const PeakShape& s, ProfilePoint& p, ProfileSlopes* d) {
  const bool right = p.delta > 0.0f;
  const float eta = right ? s.eta2 : s.eta;
  const PseudoVoigtParts t = PseudoVoigtPartsAt(p.x2);
  const float v = eta * t.lorentz + (1.0f - eta) * t.gauss;
  if (std::fabs(v) >= 1.0e-06f) {
    p.dOmega = (4.0f * eta * t.lorentz * t.lorentz + kGaussExponent * (1.0f - eta) * t.gauss) / v;
  }
  if constexpr (kSlopes) {
    const float invV = v != 0.0f ? 1.0f / v : 0.0f;
    const float psi =
        (4.0f * eta * t.lorentz * t.lorentz + kGaussExponent * (1.0f - eta) * t.gauss) * invV;
    const float invSide = 1.0f / p.H;
    const float quarterInvW = 0.25f * s.splitInvW;
    // ln W = ln(0.25 (HL (a + b etaL) + HR (a + b etaR))).
    const float dLnWdH = (kSplitGauss + kSplitLorentz * s.eta) * quarterInvW;
    const float dLnWdH2 = (kSplitGauss + kSplitLorentz * s.eta2) * quarterInvW;
    const float dLnWdEta = kSplitLorentz * s.H * quarterInvW;
    const float dLnWdEta2 = kSplitLorentz * s.H2 * quarterInvW;
    const float sideWidth = v != 0.0f ? 2.0f * psi * p.x2 * invSide : 0.0f;
    const float sideEta = (t.lorentz - t.gauss) * invV;
    d->position = 2.0f * p.delta * psi * invSide * invSide;
    d->width = (right ? 0.0f : sideWidth) - dLnWdH;
    d->width2 = (right ? sideWidth : 0.0f) - dLnWdH2;
    d->eta = (right ? 0.0f : sideEta) - dLnWdEta;
    d->eta2 = (right ? sideEta : 0.0f) - dLnWdEta2;
    if (v == 0.0f) *d = ProfileSlopes{};
  }
  return v * s.splitInvW;
}

// Code 9: the user's table.
template <bool kSlopes>
float Numerical(const PeakShape& s, ProfilePoint& p, ProfileSlopes* d) {
  const float u = p.delta * s.invH;
  const NumericalSample n = NumericalShapeAt(*s.numerical, p.x, u);
  p.dOmega = NumericalLogSlope(n, u);
  if constexpr (kSlopes) {
    if (n.y != 0.0f) {
      // Omega = y(u)/H with u = delta/H.
      d->position = -n.slope * s.invH / n.y;
      d->width = -(n.y + n.slope * u) * s.invH / n.y;
    }
  }
  return n.y * s.invH;
}

template <bool kSlopes>
float Evaluate(const PeakShape& s, ProfilePoint& p, ProfileSlopes* d) {
  switch (s.code) {
    case ProfileCode::kGaussian:
      return Gaussian<kSlopes>(s, p, d);
    case ProfileCode::kLorentzian:
      return Lorentzian<kSlopes>(s, p, d);
    case ProfileCode::kModifiedLorentzian1:
      return ModifiedLorentzian1<kSlopes>(s, p, d);
    case ProfileCode::kModifiedLorentzian2:
      return ModifiedLorentzian2<kSlopes>(s, p, d);
    case ProfileCode::kTripledPseudoVoigt:
      return TripledPseudoVoigt<kSlopes>(s, p, d);
    case ProfileCode::kPseudoVoigt:
    case ProfileCode::kTchPseudoVoigt:
      return PseudoVoigtShape<kSlopes>(s, p, d);
    case ProfileCode::kPearsonVII:
      return PearsonVII<kSlopes>(s, p, d);
    case ProfileCode::kNumerical:
      return Numerical<kSlopes>(s, p, d);
    case ProfileCode::kSplitPseudoVoigt:
      return SplitPseudoVoigt<kSlopes>(s, p, d);
    default:
      // Dispatch point of codes 10, 11 (time of flight) and 13 (axial
      // divergence): their evaluators, in their own modules, are called here.
      // PreparePeakShape has refused every other code.
      p.dOmega = 0.0f;
      return 0.0f;
  }
}

}  // namespace

float ProfileValue(const PeakShape& shape, ProfilePoint& point) {
  return Evaluate<false>(shape, point, nullptr);
}

float ProfileValueWithSlopes(const PeakShape& shape, ProfilePoint& point, ProfileSlopes& slopes) {
  slopes = ProfileSlopes{};
  return Evaluate<true>(shape, point, &slopes);
}

}  // namespace corvinet
