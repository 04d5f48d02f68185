// Intensity factors of a reflection: displacement, texture, surface roughness, wavelength weight.
#pragma once

#include <array>

#include "records/job.h"
#include "records/table1.h"

namespace corvinet {

// Preferred-orientation models (NORI).
namespace OrientationModel {
constexpr int kRietveldToraya = 0;  // exponential in the squared angle
constexpr int kMarchDollase = 1;
constexpr int kPecharskii = 2;  // announced by the reader, not computed
}  // namespace OrientationModel

// The factor P and its slopes with respect to Pref1 and Pref2. `alpha2`
// (model 0) is the squared angle between the reflection and the axis, `E`
// the exponential exp(Pref1 α²); `t` (model 1) is the March-Dollase sum.
struct PreferredOrientation {
  float P = 1.0f;
  float dPdPref1 = 0.0f;
  float dPdPref2 = 0.0f;
  float alpha2 = 0.0f;
  float E = 0.0f;
  float t = 0.0f;
};

// c = cos² of the angle between the reciprocal vector h and the axis p, both
// in the reciprocal metric G*: (h G* p)² / (Q p G* p), with Q = h G* h.
float OrientationCos2(const std::array<double, 3>& h, const Table1<float, 3>& pref,
                      const Table2<double, 3, 3>& gStar, float Q);

// The preferred-orientation factor of model NORI at c:
// 0: α² = (π/2)² when c = 0, else atan(sqrt(|(1−c)/c|))²;
//    P = Pref2 + (1 − Pref2) exp(Pref1 α²).
// 1: t = |1 − c|/Pref1 + Pref1² c; P = Pref2 + (1 − Pref2) t^(−1.5).
//    Pref1 = 0 is not guarded: no texture is Pref1 = 1.
// 2 stops with " P.Orient. Model not available ", any other value with
// " Illegal value of NORI  ".
PreferredOrientation PreferredOrientationFactor(Job& job, int NORI, float pref1, float pref2,
                                                float c);

// Whether the phase in the pattern has a preferred orientation: Pref1, Pref2
// or either of their codes non-zero.
bool UsesPreferredOrientation(const PhasePattern& c);

// The surface roughness SR = 1 − P0 − Cp t (1 − t), t = Tau/sinθ, and its
// slopes with respect to P0, Cp and Tau (GLB 27 to 29).
struct SurfaceRoughness {
  float SR = 1.0f;
  float t = 0.0f;
  float dSRdP0 = 0.0f;
  float dSRdCp = 0.0f;
  float dSRdTau = 0.0f;
};

// Whether the pattern takes the roughness: MORE set, ILOR 0 or 3, X-ray job.
bool UsesSurfaceRoughness(const Pattern& p);

// The roughness at sinθ; SR = 1 with no slope when the pattern does not take it.
SurfaceRoughness SurfaceRoughnessFactor(const Pattern& p, float sinTheta);

// What the corrections need of one reflection.
struct CorrectionInput {
  int wavelengthIndex = 1;
  std::array<double, 3> h{};  // the working vector: h, or h + k for a satellite
  float Q = 0.0f;             // 1/d² = h G* h
  float s2 = 0.0f;            // (sinθ/λ)² = Q/4
  float sin2Theta = 0.0f;     // sin²θ
  float F2 = 0.0f;            // squared structure factor before the corrections
};

// The corrections of a reflection and the derivatives of its intensity
// I = F² Corr with respect to Bov, Pref1, Pref2, P0, Cp and Tau (zero when
// no parameters are refined, or when the factor they belong to is not used).
// The caller stores Corr, takes `intensity` as the new F², and multiplies the
// d(F²) row it holds by Corr before adding these.
struct IntensityCorrections {
  float Corr = 1.0f;
  float P = 1.0f;
  float SR = 1.0f;
  float intensity = 0.0f;  // F² Corr
  float dBov = 0.0f;
  float dPref1 = 0.0f;
  float dPref2 = 0.0f;
  float dP0 = 0.0f;
  float dCp = 0.0f;
  float dTau = 0.0f;
};

// Corr = exp(−2 Bov s²) P SR R(λ) of a constant-wavelength reflection of
// phase k in pattern ip, R(λ) being 1 for the first wavelength and RATIO[2]
// for the second; `gStar` is the reciprocal metric of the phase. With
// `refined`, the derivatives are made; there a NORI of 2 stops the run even
// when the phase has no preferred orientation.
IntensityCorrections IntensityFactors(Job& job, int ip, int k, const CorrectionInput& in,
                                      const Table2<double, 3, 3>& gStar, bool refined);

// The energy-dispersive form: Corr = exp(−2 Bov s²) P with s² = Q/4, no
// roughness and no wavelength weight; derivatives for Bov, Pref1, Pref2.
IntensityCorrections EnergyIntensityFactors(Job& job, int ip, int k, const CorrectionInput& in,
                                            const Table2<double, 3, 3>& gStar, bool refined);

}  // namespace corvinet
