// Intensity factors of a reflection: displacement, texture, surface roughness, wavelength weight.
#include "model/intensity_factors.h"

#include <cmath>

#include "records/profile_slots.h"
#include "surface/console.h"

namespace corvinet {
namespace {

constexpr float kQuarterPiSquared = 2.467401f;  // (π/2)², the squared angle of c = 0

// Global slots of the microabsorption.
constexpr int kP0 = 27;
constexpr int kCp = 28;
constexpr int kTau = 29;

PreferredOrientation RietveldToraya(float pref1, float pref2, float c) {
  PreferredOrientation po;
  if (c == 0.0f) {
    po.alpha2 = kQuarterPiSquared;
  } else {
    const float alpha = std::atan(std::sqrt(std::fabs((1.0f - c) / c)));
    po.alpha2 = alpha * alpha;
  }
  po.E = std::exp(pref1 * po.alpha2);
  po.P = pref2 + (1.0f - pref2) * po.E;
  po.dPdPref1 = (1.0f - pref2) * po.alpha2 * po.E;
  po.dPdPref2 = 1.0f - po.E;
  return po;
}

PreferredOrientation MarchDollase(float pref1, float pref2, float c) {
  PreferredOrientation po;
  const float sine2 = std::fabs(1.0f - c);
  po.t = sine2 / pref1 + pref1 * pref1 * c;
  const float t15 = std::pow(po.t, -1.5f);
  const float t25 = std::pow(po.t, -2.5f);
  po.P = pref2 + (1.0f - pref2) * t15;
  po.dPdPref1 = -1.5f * (1.0f - pref2) * (2.0f * pref1 * c - sine2 / (pref1 * pref1)) * t25;
  po.dPdPref2 = 1.0f - t15;
  return po;
}

[[noreturn]] void StopModelNotAvailable(Job& job) {
  StopBox(job, " P.Orient. Model not available ");
}

// The preferred-orientation part of the corrections; P = 1 without texture.
PreferredOrientation OrientationOf(Job& job, const Pattern& p, const PhasePattern& c,
                                   const CorrectionInput& in, const Table2<double, 3, 3>& gStar) {
  if (!UsesPreferredOrientation(c)) return PreferredOrientation{};
  const float cos2 = OrientationCos2(in.h, c.PREF, gStar, in.Q);
  return PreferredOrientationFactor(job, p.NORI, c.PAR[ProfileSlot::Pref1],
                                    c.PAR[ProfileSlot::Pref2], cos2);
}

// The Pref1 and Pref2 rows of the intensity I: I (dP/dPref)/P. Without
// texture they are zero, but a NORI of 2 still stops here.
void AddOrientationDerivatives(Job& job, const Pattern& p, const PhasePattern& c,
                               const PreferredOrientation& po, IntensityCorrections& out) {
  if (!UsesPreferredOrientation(c)) {
    if (p.NORI == OrientationModel::kPecharskii) StopModelNotAvailable(job);
    return;
  }
  out.dPref1 = out.intensity * po.dPdPref1 / po.P;
  out.dPref2 = out.intensity * po.dPdPref2 / po.P;
}

}  // namespace

float OrientationCos2(const std::array<double, 3>& h, const Table1<float, 3>& pref,
                      const Table2<double, 3, 3>& gStar, float Q) {
  double hp = 0.0;
  double pp = 0.0;
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 3; ++j) {
      hp += h[static_cast<std::size_t>(i - 1)] * gStar(i, j) * pref[j];
      pp += pref[i] * gStar(i, j) * pref[j];
    }
  }
  const float hpf = static_cast<float>(hp);
  return hpf * hpf / (Q * static_cast<float>(pp));
}

PreferredOrientation PreferredOrientationFactor(Job& job, int NORI, float pref1, float pref2,
                                                float c) {
  switch (NORI) {
    case OrientationModel::kRietveldToraya:
      return RietveldToraya(pref1, pref2, c);
    case OrientationModel::kMarchDollase:
      return MarchDollase(pref1, pref2, c);
    case OrientationModel::kPecharskii:
      StopModelNotAvailable(job);
    default:
      StopBox(job, " Illegal value of NORI  ");
  }
}

bool UsesPreferredOrientation(const PhasePattern& c) {
  return c.PAR[ProfileSlot::Pref1] != 0.0f || c.PAR[ProfileSlot::Pref2] != 0.0f ||
         c.PACtyped[ProfileSlot::Pref1] != 0.0f || c.PACtyped[ProfileSlot::Pref2] != 0.0f;
}

bool UsesSurfaceRoughness(const Pattern& p) {
  return p.MORE != 0 && (p.ILOR == 0 || p.ILOR == 3) && (p.JOBTYP == 0 || p.JOBTYP == 2);
}

SurfaceRoughness SurfaceRoughnessFactor(const Pattern& p, float sinTheta) {
  SurfaceRoughness sr;
  if (!UsesSurfaceRoughness(p)) return sr;
  const float P0 = p.GLB[kP0];
  const float Cp = p.GLB[kCp];
  const float Tau = p.GLB[kTau];
  sr.t = Tau / sinTheta;
  sr.SR = 1.0f - P0 - Cp * sr.t * (1.0f - sr.t);
  sr.dSRdP0 = -1.0f;
  sr.dSRdCp = -sr.t * (1.0f - sr.t);
  sr.dSRdTau = -(Cp / sinTheta) * (1.0f - 2.0f * sr.t);
  return sr;
}

IntensityCorrections IntensityFactors(Job& job, int ip, int k, const CorrectionInput& in,
                                      const Table2<double, 3, 3>& gStar, bool refined) {
  const Pattern& p = job.patterns[ip];
  const PhasePattern& c = job.phases[k].pat[ip];
  const PreferredOrientation po = OrientationOf(job, p, c, in, gStar);
  const SurfaceRoughness sr = SurfaceRoughnessFactor(p, std::sqrt(in.sin2Theta));
  const float weight = in.wavelengthIndex == 2 ? p.RATIO[2] : 1.0f;
  IntensityCorrections out;
  out.P = po.P;
  out.SR = sr.SR;
  out.Corr = std::exp(-2.0f * c.PAR[ProfileSlot::Bov] * in.s2) * po.P * sr.SR * weight;
  out.intensity = in.F2 * out.Corr;
  if (!refined) return out;
  out.dBov = -2.0f * in.s2 * out.intensity;
  AddOrientationDerivatives(job, p, c, po, out);
  if (UsesSurfaceRoughness(p)) {
    out.dP0 = out.intensity * sr.dSRdP0 / sr.SR;
    out.dCp = out.intensity * sr.dSRdCp / sr.SR;
    out.dTau = out.intensity * sr.dSRdTau / sr.SR;
  }
  return out;
}

IntensityCorrections EnergyIntensityFactors(Job& job, int ip, int k, const CorrectionInput& in,
                                            const Table2<double, 3, 3>& gStar, bool refined) {
  const Pattern& p = job.patterns[ip];
  const PhasePattern& c = job.phases[k].pat[ip];
  const PreferredOrientation po = OrientationOf(job, p, c, in, gStar);
  const float s2 = 0.25f * in.Q;
  IntensityCorrections out;
  out.P = po.P;
  out.Corr = std::exp(-2.0f * c.PAR[ProfileSlot::Bov] * s2) * po.P;
  out.intensity = in.F2 * out.Corr;
  if (!refined) return out;
  out.dBov = -2.0f * s2 * out.intensity;
  AddOrientationDerivatives(job, p, c, po, out);
  return out;
}

}  // namespace corvinet
