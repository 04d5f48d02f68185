// The calculation of one time-of-flight reflection for a cycle, and its peak at a point.
#include "refine/tof_reflection.h"

#include <cmath>
#include <cstdlib>

#include "crystal/metric.h"
#include "format/fortran_format.h"
#include "model/intensity_factors.h"
#include "model/lorentz_polarisation.h"
#include "model/tof_factors.h"
#include "model/tof_widths.h"
#include "records/reflection.h"
#include "refine/parameter_families.h"
#include "refine/reflection_parts.h"
#include "refine/reflection_structure.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr float kLog4 = 1.3862944f;

// Where a reflection stands on the time axis: Q = 1/d^2, d, T and dT/dQ.
struct TofPlace {
  double Q = 0.0;
  double d = 0.0;
  double T = 0.0;
  double dTdQ = 0.0;
};

bool PlaceOnTimeAxis(const Pattern& p, const PhasePattern& c, const std::array<double, 3>& h,
                     TofPlace& t) {
  t.Q = InverseDSquared(CellCoefficients(c), h);
  if (!(t.Q > 0.0)) return false;
  t.d = 1.0 / std::sqrt(t.Q);
  t.T = p.GLB[1] + p.Dtt1 * t.d + p.Dtt2 * t.d * t.d;
  t.dTdQ = -0.5 * p.Dtt1 * t.d / t.Q - p.Dtt2 / (t.Q * t.Q);
  return true;
}

[[noreturn]] void StopOnTofWidth(Job& job, const TofWidths& w, const PhasePattern& c, float T,
                                 int phase) {
  using namespace ProfileSlot;
  if (w.status == TofWidthStatus::kNonPositiveDecay) {
    WriteLine(job, Unit::Out,
              Fmt("(A,F12.3,A,I3)", " => Alpha or beta <=0 at TOF:", T, "  Phase:", phase));
    ConsoleLine(job, Fmt("(A,F12.3)", " Alpha or beta <=0 at TOF:", T));
    ConsoleLine(job, Fmt("(A,4F12.5)", " alph0, alph1, beta0, beta1: ", c.PAR[Asy1], c.PAR[Asy3],
                         c.PAR[Asy2], c.PAR[Asy4]));
    StopBox(job, " Exponential rise or decay <=0 ");
  }
  if (w.status == TofWidthStatus::kNegativeSigma2) {
    WriteLine(job, Unit::Out,
              Fmt("(A,F12.3,A,I3)", " => Square of G-FWHM <0 at TOF:", T, "  Phase:", phase));
    ConsoleLine(job, Fmt("(A,F12.3)", " Square of G-FWHM <0 at TOF:", T));
    ConsoleLine(job, Fmt("(A,3F12.5)", "Values of Gaussian-FWHM parameters: ", c.PAR[U], c.PAR[V],
                         c.PAR[W]));
    StopBox(job, " Square of FWHM <0 ");
  }
  WriteLine(job, Unit::Out,
            Fmt("(A,F12.3,A,I3)", " => Lorentzian-FWHM <0 at position ", T, "  Phase:", phase));
  ConsoleLine(job, Fmt("(A,F12.3)", " Lorentzian-FWHM <0 at TOF:", T));
  ConsoleLine(job,
              Fmt("(A,3F12.5)", " Lorentzian-FWHM parameters: ", c.PAR[Ur], c.PAR[Vr], c.PAR[Wr]));
  StopBox(job, " Lorentzian-FWHM <0 ");
}

// The widths, or the stop of the first fault; the exponentials are checked
// only when the peak itself is wanted.
TofWidths WidthsOrStop(Job& job, const PhasePattern& c, const TofPlace& t, int phase,
                       bool withExponentials) {
  const TofWidths w = TofPeakWidths(c.PAR, t.d);
  const bool fault = withExponentials ? w.status != TofWidthStatus::kValid
                                      : w.status == TofWidthStatus::kNegativeSigma2 ||
                                            w.status == TofWidthStatus::kNegativeGamma;
  if (fault) StopOnTofWidth(job, w, c, static_cast<float>(t.T), phase);
  return w;
}

// The derivative of the family quantity of profile slot s of a reflection at d.
double TofSlotDerivative(int s, const TofPlace& t, const IntensityCorrections& corr,
                         const TofAbsorption& abs, const TofExtinction& ext, double scale) {
  using namespace ProfileSlot;
  const double d = t.d, d2 = t.d * t.d;
  const double per = corr.intensity != 0.0f ? 1.0 / corr.intensity : 0.0;
  switch (s) {
    case Scale:
      return scale != 0.0 ? 1.0 / scale : 0.0;
    case Bov:
      return corr.dBov * per;
    case Pref1:
      return corr.dPref1 * per;
    case Pref2:
      return corr.dPref2 * per;
    case U:       // Sig-2: sigma^2
    case GauSiz:  // Z1
      return d2 * d2;
    case V:  // Sig-1
      return d2;
    case W:  // Sig-0
      return 1.0;
    case Ur:  // Gam-2: gamma
      return d2;
    case Vr:    // Gam-1
    case Etar:  // LStr
      return d;
    case Wr:  // Gam-0
      return 1.0;
    case Asy1:  // alph0: alpha
    case Asy2:  // beta0: beta
      return 1.0;
    case Asy3:  // alph1
      return 1.0 / d;
    case Asy4:  // beta1
      return 1.0 / (d2 * d2);
    case Shape1:  // Extinc
      return ext.E != 0.0 ? ext.dExtinc / ext.E : 0.0;
    case Shp1:  // Abs1
      return abs.A != 0.0 ? abs.dAbs1 / abs.A : 0.0;
    case Shp2:  // Abs2
      return abs.A != 0.0 ? abs.dAbs2 / abs.A : 0.0;
    default:
      break;
  }
  if (s >= FirstCell && s <= LastCell) return 1.0;  // times dT/dA, by the caller
  return 0.0;  // strain, size, shift and the shape terms Xt, Yt have no model here
}

void FillTofRow(Job& job, CycleWork& work, const PhasePattern& c, const Pattern& p,
                const std::array<double, 3>& h, const TofPlace& t, const IntensityCorrections& corr,
                const TofAbsorption& abs, const TofExtinction& ext, bool crystal,
                const Reflection& r, float* row) {
  const int fitted = FittedCount(job);
  if (crystal && r.F2 > 0.0f) {
    const float inverse = 1.0f / r.F2;
    for (int L = 0; L < fitted; ++L) row[L] += work.dF2[L + 1] * inverse;
  }
  const double dQ[6] = {h[0] * h[0], h[1] * h[1], h[2] * h[2],
                        h[1] * h[2], h[0] * h[2], h[0] * h[1]};
  for (int s = 1; s <= DimensionLimits::MPAR; ++s) {
    if (c.PAC[s].parameterNumber == 0) continue;
    double value = TofSlotDerivative(s, t, corr, abs, ext, c.PAR[ProfileSlot::Scale]);
    if (s >= ProfileSlot::FirstCell && s <= ProfileSlot::LastCell) {
      value = t.dTdQ * dQ[s - ProfileSlot::FirstCell];
    }
    AddToRow(row, c.PAC[s], value, fitted);
  }
  const double global[4] = {1.0, t.d, t.d * t.d, 0.0};  // Zero, Dtt1, Dtt2
  const int slots[3] = {1, 8, 9};
  for (int n = 0; n < 3; ++n) {
    if (p.GLBword[slots[n]].parameterNumber == 0) continue;
    AddToRow(row, p.GLBword[slots[n]], global[n], fitted);
  }
}

}  // namespace

TofWidthStatus TofPeakStatus(const Job& job, int ip) {
  const Pattern& p = job.patterns[ip];
  for (int k = 1; k <= p.reflections.total; ++k) {
    const Reflection& r = p.reflections.slot[k];
    const int phase = KeyPhase(r.key);
    const PhasePattern& c = job.phases[phase].pat[ip];
    if (c.Contribution == 0) continue;
    TofPlace t;
    if (!PlaceOnTimeAxis(p, c, WorkingVector(job.phases[phase], r), t)) continue;
    const TofWidthStatus status = TofPeakWidths(c.PAR, t.d).status;
    if (status != TofWidthStatus::kValid) return status;
  }
  return TofWidthStatus::kValid;
}

void FillTofReflectionWidths(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  for (int k = 1; k <= p.reflections.total; ++k) {
    Reflection& r = p.reflections.slot[k];
    const int phase = KeyPhase(r.key);
    const PhasePattern& c = job.phases[phase].pat[ip];
    if (c.Contribution == 0) continue;
    TofPlace t;
    if (!PlaceOnTimeAxis(p, c, WorkingVector(job.phases[phase], r), t)) continue;
    const TofWidths w = WidthsOrStop(job, c, t, phase, false);
    r.Fwhm = static_cast<float>(w.H);
    r.FwhmRight = r.Fwhm;
    r.eta = static_cast<float>(w.eta);
    r.position = static_cast<float>(p.Dtt1 * t.d);
  }
}

void ComputeReflectionProfileTof(Job& job, CycleWork& work, int ip, int k) {
  Pattern& p = job.patterns[ip];
  Reflection& r = p.reflections.slot[k];
  RingEntry& e = work.ring[RingSlot(k)];
  const int fitted = FittedCount(job);
  float* row = &job.refinement.DerivativeRing(RingSlot(k), 1);
  for (int L = 0; L < fitted; ++L) row[L] = 0.0f;
  e.active = false;
  work.computedPattern[RingSlot(k)] = ip;
  work.computedReflection[RingSlot(k)] = k;
  const int phase = KeyPhase(r.key);
  const Phase& ph = job.phases[phase];
  const PhasePattern& c = ph.pat[ip];
  if (c.Contribution == 0) return;
  const std::array<double, 3> h = WorkingVector(ph, r);
  TofPlace t;
  if (!PlaceOnTimeAxis(p, c, h, t)) return;
  const TofWidths w = WidthsOrStop(job, c, t, phase, true);
  r.position = static_cast<float>(p.Dtt1 * t.d);
  r.Fwhm = static_cast<float>(w.H);
  r.FwhmRight = r.Fwhm;
  r.eta = static_cast<float>(w.eta);
  e.shape.code = ProfileOf(c);
  e.shape.position = static_cast<float>(t.T);
  e.shape.H = r.Fwhm;
  e.shape.eta = r.eta;
  e.tof = TofPeakShapeOf(w);
  e.tofHSigma2 = static_cast<float>(w.dHdSigma2);
  e.tofHGamma = static_cast<float>(w.dHdGamma);
  e.tofEtaSigma2 = static_cast<float>(w.dEtadSigma2);
  e.tofEtaGamma = static_cast<float>(w.dEtadGamma);
  e.tofLeft = (r.Fwhm + kLog4 / static_cast<float>(w.alpha)) * p.Wdt;
  e.tofRight = (r.Fwhm + kLog4 / static_cast<float>(w.beta)) * p.Wdt;
  // Lp = TwoSinTh d^4 / 2: d ln(Lp)/dT = -2/Q / (dT/dQ).
  r.LpM = static_cast<float>(ph.group.multiplicityFactor * r.multiplicity) *
          ReflectionLorentzPolarisation(p, t.Q, 1, e.shape.position);
  e.dlnLpdT = t.dTdQ != 0.0 ? static_cast<float>(-2.0 / t.Q / t.dTdQ) : 0.0f;
  if (std::abs(ph.Jbt) == 2 && !(r.F2 > 0.0f)) r.F2 = 1.0f;
  const StructureParts parts = PartsOf(ph, r);
  const bool crystal = parts.nuclear || parts.magnetic;
  RealVector dF2dH{};
  if (crystal) r.F2 = ReflectionStructureF2(job, work, ip, phase, h, r, fitted, dF2dH);
  CorrectionInput ci;
  ci.wavelengthIndex = 1;
  ci.h = h;
  ci.Q = static_cast<float>(t.Q);
  ci.s2 = static_cast<float>(0.25 * t.Q);
  ci.F2 = r.F2;
  const IntensityCorrections corr =
      EnergyIntensityFactors(job, ip, phase, ci, ReciprocalTensor(CellCoefficients(c)), fitted > 0);
  // Absorption and extinction at the wavelength of the reflection, TwoSinTh T / Dtt1.
  const double lambdaT = p.Dtt1 != 0.0f ? p.TwoSinTh * t.T / p.Dtt1 : 0.0;
  const TofAbsorption abs = TofAbsorptionFactor(p.Iabscor, lambdaT, c.PAR[ProfileSlot::Shp1],
                                                c.PAR[ProfileSlot::Shp2], p.TwoSinTh);
  const TofExtinction ext =
      TofExtinctionFactor(c.PAR[ProfileSlot::Shape1], ph.group.multiplicityFactor, r.F2, lambdaT,
                          c.cellVolume, p.TwoSinTh);
  r.Corr = static_cast<float>(corr.Corr * abs.A * ext.E);
  // Both factors see the wavelength through lambda*Abs1 and Extinc*lambda^2.
  const double dlnCorrdLambda = lambdaT > 0.0
                                    ? (abs.dAbs1 * c.PAR[ProfileSlot::Shp1] / abs.A +
                                       2.0 * ext.dExtinc * c.PAR[ProfileSlot::Shape1] / ext.E) /
                                          lambdaT
                                    : 0.0;
  e.tofCorrSlope = p.Dtt1 != 0.0f ? static_cast<float>(dlnCorrdLambda * p.TwoSinTh / p.Dtt1) : 0.0f;
  const double dddT = 1.0 / (p.Dtt1 + 2.0 * p.Dtt2 * t.d);
  e.tofSigma2dT = static_cast<float>(w.dSigma2dd * dddT);
  e.tofGammadT = static_cast<float>(w.dGammadd * dddT);
  e.tofAlphadT = static_cast<float>(w.dAlphadd * dddT);
  e.tofBetadT = static_cast<float>(w.dBetadd * dddT);
  e.intensity =
      static_cast<float>(c.PAR[ProfileSlot::Scale] * r.LpM * corr.intensity * abs.A * ext.E);
  e.asymmetric = 0;
  e.phase = phase;
  e.active = true;
  if (fitted == 0) return;
  FillTofRow(job, work, c, p, h, t, corr, abs, ext, crystal, r, row);
}

float TofPeakAtPoint(const RingEntry& e, float x, float* slope) {
  const float delta = x - e.shape.position;
  if (delta < -e.tofLeft || delta > e.tofRight) return 0.0f;
  const TofPeakValue v = TofProfile(e.tof, delta, slope != nullptr);
  if (!(v.omega > 1.0e-30)) return 0.0f;
  if (slope == nullptr) return static_cast<float>(v.omega);
  const double inv = 1.0 / v.omega;
  // The peak's Gaussian variance is H^2/(8 ln2) and its Lorentzian width H.
  const double dH = v.dSigma2 * 2.0 * e.tof.gamma / 5.545177444479562 + v.dGamma;
  const float sigma2 = static_cast<float>((dH * e.tofHSigma2 + v.dEta * e.tofEtaSigma2) * inv);
  const float gamma = static_cast<float>((dH * e.tofHGamma + v.dEta * e.tofEtaGamma) * inv);
  const float alpha = static_cast<float>(v.dAlpha * inv);
  const float beta = static_cast<float>(v.dBeta * inv);
  slope[kIntensity] = 1.0f;
  slope[kPosition] = static_cast<float>(-v.dDelta * inv) + e.tofCorrSlope;
  // The cell moves d: the position, Lp and every width with it.
  slope[kBraggAngle] = slope[kPosition] + e.dlnLpdT + sigma2 * e.tofSigma2dT +
                       gamma * e.tofGammadT + alpha * e.tofAlphadT + beta * e.tofBetadT;
  slope[kWidth] = sigma2;
  slope[kGaussWidth] = sigma2;
  slope[kWidthRight] = gamma;
  slope[kEtar] = gamma;
  slope[kAsym1] = alpha;
  slope[kAsym3] = alpha;
  slope[kAsym2] = beta;
  slope[kAsym4] = beta;
  slope[kShape1] = 1.0f;  // extinction, relative to the intensity
  slope[kShp1] = 1.0f;    // absorption
  slope[kShp2] = 1.0f;
  slope[kShapeX] = 0.0f;
  slope[kShapeY] = 0.0f;
  slope[kXr] = 0.0f;
  return static_cast<float>(v.omega);
}

}  // namespace corvinet
