// Per-cycle calculation of a constant-wavelength reflection and its row of derivatives.
#include "refine/reflection_calculation.h"

#include <omp.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <span>

#include "crystal/metric.h"
#include "model/asymmetry_factor.h"
#include "model/axial_divergence.h"
#include "model/intensity_factors.h"
#include "model/lorentz_polarisation.h"
#include "model/peak_error_stop.h"
#include "model/peak_shape_setup.h"
#include "model/peak_width.h"
#include "model/resolution_widths.h"
#include "model/size_strain.h"
#include "records/reflection.h"
#include "refine/parameter_families.h"
#include "refine/reflection_parts.h"
#include "refine/reflection_structure.h"
#include "refine/tof_reflection.h"
#include "surface/console.h"

namespace corvinet {

std::array<double, 3> WorkingVector(const Phase& ph, const Reflection& r) {
  std::array<double, 3> h = {static_cast<double>(KeyH(r.key)), static_cast<double>(KeyK(r.key)),
                             static_cast<double>(KeyL(r.key))};
  const int n = std::abs(r.satelliteIndex);
  if (n > 0 && n <= ph.Nvk) {
    const double sign = r.satelliteIndex > 0 ? 1.0 : -1.0;
    for (int i = 0; i < 3; ++i) h[static_cast<std::size_t>(i)] += sign * ph.vectors[n].KVEC[i + 1];
  }
  return h;
}

Table1<float, 6> CellCoefficients(const PhasePattern& c) {
  Table1<float, 6> coefficients;
  for (int i = 1; i <= 6; ++i) coefficients[i] = c.PAR[ProfileSlot::FirstCell - 1 + i];
  return coefficients;
}

namespace {

constexpr double kRadian = 57.29577951308232;

// The geometry of a reflection at its wavelength.
struct Geometry {
  std::array<double, 3> h{};
  double Q = 0.0;
  double lambda = 0.0;
  double sin2 = 0.0;
  double cos2 = 0.0;
  double tanTheta = 0.0;
  double twoTheta = 0.0;     // degrees
  double dTdTwoTheta = 1.0;  // of the corrected position, through the displacements
  double dTwoThetadQ = 0.0;  // degrees per unit of 1/d²
};

// Energy-dispersive geometry: E = Dtt1 sqrt(Q); the corrected position adds
// the zero and Dtt2 Q. The energy stands where the constant-wavelength
// geometry keeps tan(theta) and 2theta, so that the width law reads
// U E² + V E + W + GauSiz.
bool MakeEnergyGeometry(const Pattern& p, const PhasePattern& c, Geometry& g) {
  g.Q = InverseDSquared(CellCoefficients(c), g.h);
  if (!(g.Q > 0.0)) return false;
  const double s = std::sqrt(g.Q);
  g.twoTheta = p.GLB[8] * s;
  g.tanTheta = g.twoTheta;
  g.sin2 = 0.0;
  g.cos2 = 1.0;
  g.dTdTwoTheta = 1.0;
  g.dTwoThetadQ = p.GLB[8] / (2.0 * s) + p.GLB[9];
  return true;
}

bool MakeGeometry(const Pattern& p, const PhasePattern& c, int w, Geometry& g) {
  if (p.IXUNIT == AbscissaUnit::kEnergy) return MakeEnergyGeometry(p, c, g);
  g.Q = InverseDSquared(CellCoefficients(c), g.h);
  g.lambda = p.LAMBDA[w];
  g.sin2 = 0.25 * g.Q * g.lambda * g.lambda;
  if (!(g.sin2 > 0.0) || g.sin2 >= 1.0) return false;
  g.cos2 = 1.0 - g.sin2;
  g.tanTheta = std::sqrt(g.sin2 / g.cos2);
  g.twoTheta = 2.0 * kRadian * std::atan(g.tanTheta);
  const double theta = 0.5 * g.twoTheta / kRadian;
  g.dTdTwoTheta =
      1.0 - p.GLB[8] * std::sin(theta) * 0.5 / kRadian + p.GLB[9] * std::cos(2.0 * theta) / kRadian;
  g.dTwoThetadQ = kRadian * g.lambda * g.lambda / (4.0 * std::sqrt(g.sin2 * g.cos2));
  return true;
}

// Multiplicity times the Lorentz-polarisation factor at the Bragg angle of
// 1/d² = q, with the instrument terms at the observed position: the factor
// moves with the cell as the peak does.
float CurrentLpM(const Pattern& p, const Phase& ph, const Reflection& r, double q, int w,
                 float observed) {
  return static_cast<float>(ph.group.multiplicityFactor * r.multiplicity) *
         ReflectionLorentzPolarisation(p, q, w, observed);
}

// d ln(LpM)/dT when q moves the position T: a central difference over a
// relative step of q (Lp has a form for every geometry and correction), the
// observed position moving with it.
float LpMSlope(const Pattern& p, const Phase& ph, const Reflection& r, const Geometry& g, int w,
               float observed) {
  constexpr double kRelativeStep = 1.0e-3;
  const double dq = kRelativeStep * g.Q;
  const double dT = g.dTdTwoTheta * g.dTwoThetadQ * dq;
  const double up = CurrentLpM(p, ph, r, g.Q + dq, w, static_cast<float>(observed + dT));
  const double down = CurrentLpM(p, ph, r, g.Q - dq, w, static_cast<float>(observed - dT));
  if (!(up > 0.0 && down > 0.0) || dT == 0.0) return 0.0f;
  return static_cast<float>(std::log(up / down) / (2.0 * dT));
}

// A derivative of the intensity factors relative to the factors themselves.
double PerIntensity(const IntensityCorrections& corr, float derivative) {
  return corr.intensity != 0.0f ? derivative / corr.intensity : 0.0;
}

// Derivative of the family quantity of profile slot s for this reflection.
double ProfileSlotDerivative(int s, ProfileCode code, int w, const Pattern& p,
                             const PhasePattern& c, const Geometry& g, const PeakWidths& widths,
                             const IntensityCorrections& corr) {
  const double t = g.tanTheta;
  const bool second = w == 2 && p.separateUVW2;
  const bool split = code == ProfileCode::kSplitPseudoVoigt;
  const double H = code == ProfileCode::kTchPseudoVoigt ? widths.HG : widths.H;
  switch (s) {
    case ProfileSlot::Scale:
      return c.PAR[ProfileSlot::Scale] != 0.0f ? 1.0 / c.PAR[ProfileSlot::Scale] : 0.0;
    case ProfileSlot::Bov:
      return PerIntensity(corr, corr.dBov);
    case ProfileSlot::Pref1:
      return PerIntensity(corr, corr.dPref1);
    case ProfileSlot::Pref2:
      return PerIntensity(corr, corr.dPref2);
    case ProfileSlot::U:
      return second ? 0.0 : t * t / (2.0 * H);
    case ProfileSlot::V:
      return second ? 0.0 : t / (2.0 * H);
    case ProfileSlot::W:
      return second ? 0.0 : 1.0 / (2.0 * H);
    case ProfileSlot::U2:
      return second ? t * t / (2.0 * H) : 0.0;
    case ProfileSlot::V2:
      return second ? t / (2.0 * H) : 0.0;
    case ProfileSlot::W2:
      return second ? 1.0 / (2.0 * H) : 0.0;
    case ProfileSlot::GauSiz:
      return 1.0 / (2.0 * H * g.cos2);
    case ProfileSlot::Ur:
      return split ? t * t / (2.0 * widths.HL) : 0.0;
    case ProfileSlot::Vr:
      return split ? t / (2.0 * widths.HL) : 0.0;
    case ProfileSlot::Wr:
      return split ? 1.0 / (2.0 * widths.HL) : 0.0;
    default:
      break;
  }
  if (s >= ProfileSlot::FirstCell && s <= ProfileSlot::LastCell) {
    const double hx = g.h[0], hy = g.h[1], hz = g.h[2];
    const double dQ[6] = {hx * hx, hy * hy, hz * hz, hy * hz, hx * hz, hx * hy};
    return g.dTdTwoTheta * g.dTwoThetadQ * dQ[s - ProfileSlot::FirstCell];
  }
  if (split && (s == ProfileSlot::Shp1 || s == ProfileSlot::Shp2)) {
    const double side = SplitSidePosition(p, static_cast<float>(g.twoTheta));
    if (s == ProfileSlot::Shp1) return side <= 90.0 ? 1.0 / (2.0 * widths.H * t * t) : 0.0;
    return side > 90.0 ? 1.0 / (2.0 * widths.HL * t * t) : 0.0;
  }
  // Strain, size and shift terms come with their models.
  const bool broadening = (s >= ProfileSlot::Str1 && s <= ProfileSlot::Size6) ||
                          (s >= ProfileSlot::SizeSH1 && s <= ProfileSlot::SizeSH9) ||
                          s == ProfileSlot::Shift1 || s == ProfileSlot::Shift2;
  if (broadening) return 0.0;
  const Family f = ProfileSlotFamily(s, code);
  if (f >= kShapeX && f <= kAsym4) return 1.0;
  return 0.0;
}

// The family quantity of the size, strain and shift parameters: half the
// square of the Gaussian widths (tan²theta dU/2, the energy for tan(theta) on
// an energy pattern), Y, and the position.
double BroadeningSlotDerivative(int s, const Geometry& g, const BroadeningTerms& b) {
  const double t = g.tanTheta;
  if (s >= ProfileSlot::Str1 && s <= ProfileSlot::Str10) {
    return 0.5 * t * t * StrainSlotDerivative(b, s);
  }
  if (s == ProfileSlot::Shift1) return g.dTdTwoTheta * ShiftSlotDerivative(b, s);
  return SizeSlotDerivative(b, s);
}

double GlobalSlotDerivative(int n, const Pattern& p, const Geometry& g,
                            const IntensityCorrections& corr) {
  if (p.IXUNIT == AbscissaUnit::kEnergy) {
    if (n == 1) return 1.0;
    if (n == 8) return std::sqrt(g.Q);
    if (n == 9) return g.Q;
    return 0.0;
  }
  const double theta = 0.5 * g.twoTheta / kRadian;
  switch (n) {
    case 1:
      return 1.0;
    case 8:
      return std::cos(theta);
    case 9:
      return std::sin(2.0 * theta);
    case 26:
      // Both wavelengths move at their fixed ratio: d(2theta)/d(LAMBDA[1]) of
      // a reflection of either is 2 tan(theta)/LAMBDA[1] in radians.
      return g.dTdTwoTheta * 2.0 * kRadian * g.tanTheta / p.LAMBDA[1];
    case 27:
      return PerIntensity(corr, corr.dP0);
    case 28:
      return PerIntensity(corr, corr.dCp);
    case 29:
      return PerIntensity(corr, corr.dTau);
    default:
      return 0.0;
  }
}

// The size, strain and shift terms of reflection r of a phase at geometry g.
BroadeningTerms BroadeningOf(const Job& job, int ip, int phase, const Geometry& g,
                             const Reflection& r) {
  const Phase& ph = job.phases[phase];
  const Pattern& p = job.patterns[ip];
  BroadeningReflection in;
  in.h = g.h;
  in.tanTheta = g.tanTheta;
  in.satellite = r.satelliteIndex != 0;
  in.fileCoefficient = r.fileValue1;
  return SizeStrainBroadening(BroadeningModelOf(ph, ph.pat[ip], p, KeyWavelength(r.key)), in);
}

// What the width law needs of reflection r of a phase at wavelength w.
WidthInput WidthInputOf(const Pattern& p, ProfileCode code, int phase, int w, const Geometry& g,
                        const Reflection& r, const BroadeningTerms& b) {
  WidthInput in;
  if (p.IRESO != 0) {
    // The instrument's widths from the resolution file, at the reflection's Bragg angle.
    const InstrumentWidths instrument = ResolutionWidths(
        p.resolution, w, static_cast<float>(g.twoTheta), static_cast<float>(g.tanTheta));
    in.extraGaussian2 = instrument.gaussian2;
    in.extraLorentzian = instrument.lorentzian;
  }
  in.deltaU = static_cast<float>(b.deltaU);
  in.deltaY = static_cast<float>(b.deltaY);
  in.code = code;
  in.phase = phase;
  in.wavelengthIndex = w;
  in.twoTheta = static_cast<float>(g.twoTheta);
  in.tanTheta = static_cast<float>(g.tanTheta);
  in.cos2Theta = static_cast<float>(g.cos2);
  in.previousFwhm = r.Fwhm;
  return in;
}

// The widths of reflection r at geometry g, stored in the reflection.
PeakWidths StoreWidths(Job& job, int ip, int phase, int w, const Geometry& g,
                       const BroadeningTerms& b, Reflection& r) {
  const ProfileCode code = ProfileOf(job.phases[phase].pat[ip]);
  const WidthInput in = WidthInputOf(job.patterns[ip], code, phase, w, g, r, b);
  r.gaussianHWSquared = in.extraGaussian2;
  r.lorentzianHW = in.extraLorentzian;
  PeakWidths widths;
  try {
    widths = PeakWidth(job.patterns[ip], job.phases[phase].pat[ip].PAR, in);
  } catch (const PeakError& error) {
    StopOnPeakError(job, error);
  }
  r.Fwhm = widths.H;
  r.FwhmRight = code == ProfileCode::kSplitPseudoVoigt ? widths.HL : widths.H;
  r.HG = widths.HG;
  r.HL = widths.HL;
  r.eta = widths.eta;
  return widths;
}

// The position derivatives of a satellite with respect to the components of
// its propagation vector: the working vector is h + k (or h - k).
void AddVectorDerivatives(float* row, const Phase& ph, const PhasePattern& c, const Reflection& r,
                          const Geometry& g, int fitted) {
  const int n = std::abs(r.satelliteIndex);
  if (n == 0 || n > ph.Nvk) return;
  const double sign = r.satelliteIndex > 0 ? 1.0 : -1.0;
  const Table1<float, 6> k = CellCoefficients(c);
  const double x = g.h[0], y = g.h[1], z = g.h[2];
  const double dQ[3] = {2.0 * k[1] * x + k[5] * z + k[6] * y, 2.0 * k[2] * y + k[4] * z + k[6] * x,
                        2.0 * k[3] * z + k[4] * y + k[5] * x};
  for (int i = 1; i <= 3; ++i) {
    AddToRow(row, ph.vectors[n].KCODE[i], sign * g.dTdTwoTheta * g.dTwoThetadQ * dQ[i - 1], fitted);
  }
}

}  // namespace

void AddToRow(float* row, const Codeword& w, double value, int fitted) {
  const int L = w.parameterNumber;
  if (L < 1 || L > fitted) return;
  row[L - 1] += static_cast<float>(w.multiplier * value);
}

void FillReflectionWidths(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  if (p.IXUNIT == AbscissaUnit::kTimeOfFlight) {
    FillTofReflectionWidths(job, ip);
    return;
  }
  if (p.IXUNIT != AbscissaUnit::kTwoTheta && p.IXUNIT != AbscissaUnit::kEnergy) return;
  ReflectionTable& table = p.reflections;
  for (int k = 1; k <= table.total; ++k) {
    Reflection& r = table.slot[k];
    const int phase = KeyPhase(r.key);
    const PhasePattern& c = job.phases[phase].pat[ip];
    if (c.Contribution == 0) continue;
    Geometry g;
    g.h = WorkingVector(job.phases[phase], r);
    if (!MakeGeometry(p, c, KeyWavelength(r.key), g)) continue;
    const BroadeningTerms b = BroadeningOf(job, ip, phase, g, r);
    StoreWidths(job, ip, phase, KeyWavelength(r.key), g, b, r);
    // From here on the position is kept without the zero and displacements,
    // which the order table and the peaks add; the hkl-dependent shift is in.
    r.position = static_cast<float>(g.twoTheta + b.shift);
  }
}

namespace {

// The span of the parameters whose derivative in the reflection's row is not
// zero: the point loop walks only that span.
void SetRowSpan(RingEntry& entry, const float* row, int fitted) {
  int first = 0;
  while (first < fitted && row[first] == 0.0f) ++first;
  int last = fitted;
  while (last > first && row[last - 1] == 0.0f) --last;
  entry.rowBegin = first;
  entry.rowEnd = last;
}

// The structure factor computed ahead for reflection k of pattern ip in this
// pass, with derivatives for `fitted` parameters, taken out of the store;
// none when there is none.
StructureAhead* AheadOf(CycleWork& work, int ip, int k, int fitted) {
  const auto slot = static_cast<std::size_t>(RingSlot(k) - 1);
  if (slot >= work.ahead.size()) return nullptr;
  StructureAhead& a = work.ahead[slot];
  if (!a.ready || a.pattern != ip || a.reflection != k || a.pass != work.pass) return nullptr;
  a.ready = false;
  // Computed with the derivatives of as many parameters as asked for.
  if (fitted > 0 && work.aheadRows.size() < (slot + 1) * static_cast<std::size_t>(fitted)) {
    return nullptr;
  }
  return &a;
}

// The reflection's peak and intensity and, with `derivatives`, its row.
void ComputeAngleReflection(Job& job, CycleWork& work, int ip, int k, bool derivatives) {
  Pattern& p = job.patterns[ip];
  Reflection& r = p.reflections.slot[k];
  RingEntry& entry = work.ring[RingSlot(k)];
  const int rowLength = FittedCount(job);
  const int fitted = derivatives ? rowLength : 0;
  float* row = &job.refinement.DerivativeRing(RingSlot(k), 1);
  for (int L = 0; L < rowLength; ++L) row[L] = 0.0f;
  entry.active = false;
  entry.intensityTermCount = 0;
  work.computedPattern[RingSlot(k)] = ip;
  work.computedReflection[RingSlot(k)] = k;
  const int phase = KeyPhase(r.key);
  const int w = KeyWavelength(r.key);
  const Phase& ph = job.phases[phase];
  const PhasePattern& c = ph.pat[ip];
  if (c.Contribution == 0) return;
  Geometry g;
  g.h = WorkingVector(ph, r);
  if (!MakeGeometry(p, c, w, g)) return;
  r.tanTheta = static_cast<float>(g.tanTheta);
  const BroadeningTerms broadening = BroadeningOf(job, ip, phase, g, r);
  r.position = static_cast<float>(g.twoTheta + broadening.shift);
  const PeakWidths widths = StoreWidths(job, ip, phase, w, g, broadening, r);
  ReflectionShapeInput shapeIn;
  shapeIn.code = ProfileOf(c);
  shapeIn.twoTheta = r.position;
  shapeIn.tanTheta = r.tanTheta;
  shapeIn.widths = widths;
  try {
    entry.shape = PreparePeakShape(p, c.PAR, job.numericalProfile, shapeIn);
  } catch (const PeakError& error) {
    StopOnPeakError(job, error);
  }
  if (p.IXUNIT == AbscissaUnit::kEnergy) {
    entry.shape.position = p.GLB[1] + r.position + static_cast<float>(p.GLB[9] * g.Q);
    // HL = X E + Y: Y enters the Lorentzian width as it is, with no 1/cos(theta).
    entry.shape.cosTheta = 1.0f;
  }
  entry.dlnLpdT = 0.0f;
  // Lp follows the current cell: the angle form, and d² of an energy pattern.
  if (p.IXUNIT == AbscissaUnit::kTwoTheta || p.IXUNIT == AbscissaUnit::kEnergy) {
    r.LpM = CurrentLpM(p, ph, r, g.Q, w, entry.shape.position);
    entry.dlnLpdT = LpMSlope(p, ph, r, g, w, entry.shape.position);
  }
  CorrectionInput ci;
  ci.wavelengthIndex = w;
  ci.h = g.h;
  ci.Q = static_cast<float>(g.Q);
  ci.s2 = static_cast<float>(0.25 * g.Q);
  ci.sin2Theta = static_cast<float>(g.sin2);
  // Profile matching starts its extraction from a unit intensity.
  if (std::abs(ph.Jbt) == 2 && !(r.F2 > 0.0f)) r.F2 = 1.0f;
  const StructureParts parts = PartsOf(ph, r);
  const bool structural = parts.nuclear || parts.magnetic;
  RealVector dF2dH{};
  const float* dF2 = &work.dF2[1];
  if (structural) {
    StructureAhead* ahead = AheadOf(work, ip, k, fitted);
    if (ahead != nullptr) {
      r.F2 = ahead->F2;
      dF2dH = ahead->dF2dH;
      dF2 = &work.aheadRows[static_cast<std::size_t>(RingSlot(k) - 1) *
                            static_cast<std::size_t>(std::max(fitted, 1))];
    } else {
      r.F2 = ReflectionStructureF2(job, work, ip, phase, g.h, r, fitted, dF2dH);
    }
  }
  ci.F2 = r.F2;
  const IntensityCorrections corr =
      p.IXUNIT == AbscissaUnit::kEnergy
          ? EnergyIntensityFactors(job, ip, phase, ci, ReciprocalTensor(CellCoefficients(c)),
                                   fitted > 0)
          : IntensityFactors(job, ip, phase, ci, ReciprocalTensor(CellCoefficients(c)), fitted > 0);
  r.Corr = corr.Corr;
  entry.intensity = c.PAR[ProfileSlot::Scale] * r.LpM * corr.intensity;
  entry.tan2Theta = Tan2ThetaFromSquares(static_cast<float>(g.sin2), static_cast<float>(g.cos2));
  entry.asymmetric = p.IXUNIT == AbscissaUnit::kTwoTheta && r.position <= p.AsyLim ? 1 : 0;
  entry.asy = AsymmetryParametersOf(c);
  entry.invGaussWidth =
      1.0f / (ProfileOf(c) == ProfileCode::kTchPseudoVoigt ? widths.HG : widths.H);
  entry.phase = phase;
  entry.axialReach = shapeIn.code == ProfileCode::kAxialDivergence
                         ? AxialDivergenceReach(c.PAR[ProfileSlot::Shp1], c.PAR[ProfileSlot::Shp2],
                                                entry.shape.position)
                         : AxialReach{};
  entry.active = true;
  if (fitted == 0) return;
  // Structural derivatives enter relative to F^2, as the intensity is proportional to it.
  if (structural && r.F2 > 0.0f) {
    const float inverse = 1.0f / r.F2;
    for (int L = 0; L < fitted; ++L) row[L] += dF2[L] * inverse;
  }
  VectorIntensitySlopes(ph, r, dF2dH, fitted, entry);
  for (int s = 1; s <= DimensionLimits::MPAR; ++s) {
    if (c.PAC[s].parameterNumber == 0) continue;
    AddToRow(row, c.PAC[s], ProfileSlotDerivative(s, ProfileOf(c), w, p, c, g, widths, corr),
             fitted);
    AddToRow(row, c.PAC[s], BroadeningSlotDerivative(s, g, broadening), fitted);
  }
  AddVectorDerivatives(row, ph, c, r, g, fitted);
  for (int n = 1; n <= DimensionLimits::NGL; ++n) {
    if (p.GLBword[n].parameterNumber == 0) continue;
    AddToRow(row, p.GLBword[n], GlobalSlotDerivative(n, p, g, corr), fitted);
  }
}

}  // namespace

void ComputeReflectionProfile(Job& job, CycleWork& work, int ip, int k, bool derivatives) {
  if (job.patterns[ip].IXUNIT == AbscissaUnit::kTimeOfFlight) {
    ComputeReflectionProfileTof(job, work, ip, k);
  } else {
    ComputeAngleReflection(job, work, ip, k, derivatives);
  }
  SetRowSpan(work.ring[RingSlot(k)], &job.refinement.DerivativeRing(RingSlot(k), 1),
             FittedCount(job));
}

namespace {

// The codes whose peaks mix a Gaussian and a Lorentzian through eta.
bool MixesThroughEta(ProfileCode code) {
  return code == ProfileCode::kTripledPseudoVoigt || code == ProfileCode::kPseudoVoigt ||
         code == ProfileCode::kTchPseudoVoigt || code == ProfileCode::kSplitPseudoVoigt ||
         code == ProfileCode::kAxialDivergence;
}

bool InUnitRange(float eta) {
  return eta >= 0.0f && eta <= 1.0f;
}

PeakValidity CheckReflection(const Job& job, int ip, const Reflection& r) {
  const Pattern& p = job.patterns[ip];
  const int phase = KeyPhase(r.key);
  const PhasePattern& c = job.phases[phase].pat[ip];
  if (c.Contribution == 0) return PeakValidity::kValid;
  Geometry g;
  g.h = WorkingVector(job.phases[phase], r);
  if (!MakeGeometry(p, c, KeyWavelength(r.key), g)) return PeakValidity::kValid;
  const ProfileCode code = ProfileOf(c);
  const BroadeningTerms b = BroadeningOf(job, ip, phase, g, r);
  const WidthInput in = WidthInputOf(p, code, phase, KeyWavelength(r.key), g, r, b);
  ReflectionShapeInput shapeIn;
  shapeIn.code = code;
  shapeIn.twoTheta = static_cast<float>(g.twoTheta + b.shift);
  shapeIn.tanTheta = in.tanTheta;
  PeakShape shape;
  try {
    shapeIn.widths = PeakWidth(p, c.PAR, in);
    shape = PreparePeakShape(p, c.PAR, job.numericalProfile, shapeIn);
  } catch (const PeakError& error) {
    // The other peak errors stop the run as they did before.
    if (error.failure == PeakFailure::NegativeWidth) return PeakValidity::kNegativeWidth;
    return PeakValidity::kValid;
  }
  if (!MixesThroughEta(code)) return PeakValidity::kValid;
  const bool split = code == ProfileCode::kSplitPseudoVoigt;
  if (!InUnitRange(shape.eta) || (split && !InUnitRange(shape.eta2))) {
    return PeakValidity::kMixingOutside;
  }
  return PeakValidity::kValid;
}

}  // namespace

void ComputeStructureFactorsAhead(Job& job, CycleWork& work, int ip, int first, int last,
                                  int threads) {
  const Pattern& p = job.patterns[ip];
  if (p.IXUNIT == AbscissaUnit::kTimeOfFlight || last < first) return;
  const int fitted = FittedCount(job);
  const auto slots = static_cast<std::size_t>(DimensionLimits::NOV);
  work.ahead.resize(slots);
  work.aheadRows.resize(slots * static_cast<std::size_t>(std::max(fitted, 1)));
  while (work.threadScratch.size() < static_cast<std::size_t>(threads)) {
    work.threadScratch.push_back(std::make_unique<StructureScratch>());
  }
#pragma omp parallel for num_threads(threads) schedule(dynamic, 8)
  for (int k = first; k <= last; ++k) {
    const auto slot = static_cast<std::size_t>(RingSlot(k) - 1);
    StructureAhead& a = work.ahead[slot];
    a.ready = false;
    Reflection& r = job.patterns[ip].reflections.slot[k];
    const int phase = KeyPhase(r.key);
    const Phase& ph = job.phases[phase];
    const PhasePattern& c = ph.pat[ip];
    const StructureParts parts = PartsOf(ph, r);
    if (c.Contribution == 0 || !(parts.nuclear || parts.magnetic)) continue;
    Geometry g;
    g.h = WorkingVector(ph, r);
    if (!MakeGeometry(p, c, KeyWavelength(r.key), g)) continue;
    StructureScratch& scratch = *work.threadScratch[static_cast<std::size_t>(omp_get_thread_num())];
    float* dF2 = &work.aheadRows[slot * static_cast<std::size_t>(std::max(fitted, 1))];
    RealVector dF2dH{};
    float F2 = 0.0f;
    if (!StructureF2Into(job, scratch, dF2, ip, phase, g.h, r, fitted, dF2dH, F2)) continue;
    a.pattern = ip;
    a.reflection = k;
    a.pass = work.pass;
    a.F2 = F2;
    a.dF2dH = dF2dH;
    a.ready = true;
  }
}

PeakValidity CheckPeakShapes(const Job& job, int ip) {
  const Pattern& p = job.patterns[ip];
  if (p.IXUNIT == AbscissaUnit::kTimeOfFlight) {
    switch (TofPeakStatus(job, ip)) {
      case TofWidthStatus::kNegativeSigma2:
      case TofWidthStatus::kNegativeGamma:
        return PeakValidity::kNegativeWidth;
      case TofWidthStatus::kNonPositiveDecay:
        return PeakValidity::kNonPositiveDecay;
      case TofWidthStatus::kValid:
        break;
    }
    return PeakValidity::kValid;
  }
  if (p.IXUNIT != AbscissaUnit::kTwoTheta && p.IXUNIT != AbscissaUnit::kEnergy) {
    return PeakValidity::kValid;
  }
  for (int k = 1; k <= p.reflections.total; ++k) {
    const PeakValidity v = CheckReflection(job, ip, p.reflections.slot[k]);
    if (v != PeakValidity::kValid) return v;
  }
  return PeakValidity::kValid;
}

}  // namespace corvinet
