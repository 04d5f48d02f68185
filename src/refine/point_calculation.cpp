// Calculated intensity and normal-equation row of one constant-wavelength point.
#include "refine/point_calculation.h"

#include <cmath>
#include <cstdlib>

#include "model/asymmetry_factor.h"
#include "model/axial_divergence.h"
#include "model/boole_average.h"
#include "model/peak_shape_setup.h"
#include "observations/background.h"
#include "records/reflection.h"
#include "refine/order_reflections.h"
#include "refine/parameter_families.h"
#include "refine/tof_reflection.h"

namespace corvinet {

namespace {

// The asymmetry of IASYM 0 at a point with its logarithmic slopes in the
// position and the width of the peak.
struct PointAsymmetryTerms {
  AsymmetryFactorTerms terms;
  float dlnAdT = 0.0f;
  float dlnAdH = 0.0f;
};

PointAsymmetryTerms AsymmetryAt(const RingEntry& e, const AsymmetryParameters& asy,
                                const ProfilePoint& point) {
  PointAsymmetryTerms out;
  const float tanTheta = e.shape.tanTheta;
  out.terms = AsymmetryFactor(point.delta, point.H, tanTheta, e.tan2Theta, asy);
  // Fa = 2z exp(-z²) and Fb = (4z² - 3) Fa, differentiated in z.
  const float z = point.delta / point.H;
  const float dFa = 2.0f * std::exp(-z * z) * (1.0f - 2.0f * z * z);
  const float dFb = 8.0f * z * out.terms.Fa + (4.0f * z * z - 3.0f) * dFa;
  const float dAdz = -((asy.Asy1 * dFa + asy.Asy2 * dFb) / tanTheta +
                       (asy.Asy3 * dFa + asy.Asy4 * dFb) / e.tan2Theta);
  // Where the factor is held at its floor it does not move.
  const float a = out.terms.A;
  if (a > 1.0e-4f) {
    out.dlnAdT = dAdz / a * (-1.0f / point.H);
    out.dlnAdH = dAdz / a * (-z / point.H);
  }
  return out;
}

// The slope of ln(a Omega) with respect to the quantity of each family.
void FamilySlopes(const RingEntry& e, const ProfilePoint& point, const ProfileSlopes& sl,
                  const PointAsymmetryTerms& asym, bool asymmetryRows, float* slope) {
  const ShapeSlotSlopes shape = ShapeParameterSlopes(e.shape, sl);
  const float tanTheta = e.shape.tanTheta;
  // The asymmetry factor moves with the width of the side the point is on;
  // through the TCH widths it moves with X and Y as well.
  const bool rightSide = e.shape.code == ProfileCode::kSplitPseudoVoigt && point.delta > 0.0f;
  const float lorentzScale =
      e.shape.code == ProfileCode::kTchPseudoVoigt ? asym.dlnAdH * e.shape.tch.dHdL : 0.0f;
  slope[kIntensity] = 1.0f;
  slope[kPosition] = sl.position + asym.dlnAdT;
  slope[kBraggAngle] = slope[kPosition] + e.dlnLpdT;
  slope[kWidth] = sl.width + (rightSide ? 0.0f : asym.dlnAdH);
  slope[kGaussWidth] = sl.gaussian + asym.dlnAdH * e.shape.tch.dHdG;
  slope[kWidthRight] = sl.width2 + (rightSide ? asym.dlnAdH : 0.0f);
  // Half the square of a width moves the width by 1/H of it; the strain terms
  // move both sides of the split profile and the Gaussian part of TCH.
  if (e.shape.code == ProfileCode::kSplitPseudoVoigt) {
    slope[kWidthSquare] = slope[kWidth] * e.shape.invH + slope[kWidthRight] / e.shape.H2;
  } else if (e.shape.code == ProfileCode::kTchPseudoVoigt) {
    slope[kWidthSquare] = slope[kGaussWidth] * e.invGaussWidth;
  } else {
    slope[kWidthSquare] = slope[kWidth] * e.invGaussWidth;
  }
  slope[kShapeX] = shape.X + lorentzScale * tanTheta;
  slope[kShapeY] = shape.Y + lorentzScale / e.shape.cosTheta;
  slope[kShape1] = shape.Shape1;
  slope[kShp1] = shape.Shp1;
  slope[kShp2] = shape.Shp2;
  slope[kEtar] = shape.Etar;
  slope[kXr] = shape.Xr;
  const bool underLimit = e.asymmetric != 0;
  slope[kAsym1] =
      asymmetryRows ? -asym.terms.FaOverA / tanTheta : (underLimit ? sl.asymmetry : 0.0f);
  slope[kAsym2] = asymmetryRows ? -asym.terms.FbOverA / tanTheta : 0.0f;
  slope[kAsym3] = asymmetryRows ? -asym.terms.FaOverA / e.tan2Theta : 0.0f;
  slope[kAsym4] = asymmetryRows ? -asym.terms.FbOverA / e.tan2Theta : 0.0f;
}

// The pseudo-Voigt with the axial-divergence asymmetry at the point, over its
// base widened by the tail; with `slope` given, the slopes of its families.
float AxialPeakAtPoint(const Job& job, int ip, const RingEntry& e, float x, float* slope) {
  const Pattern& p = job.patterns[ip];
  const PhasePattern& c = job.phases[e.phase].pat[ip];
  const double SL = c.PAR[ProfileSlot::Shp1], DL = c.PAR[ProfileSlot::Shp2];
  const double t0 = e.shape.position;
  const double delta = x - t0;
  const double base = p.Wdt * e.shape.H;
  if (delta < -base - e.axialReach.below || delta > base + e.axialReach.above) return 0.0f;
  const AxialDivergenceValue v = AxialDivergenceProfile(e.shape.eta, e.shape.H, SL, DL, x, t0);
  if (!(v.value > 1.0e-30)) return 0.0f;
  if (slope == nullptr) return static_cast<float>(v.value);
  const double inv = 1.0 / v.value;
  ProfileSlopes sl;
  sl.eta = static_cast<float>(v.dEta * inv);
  const ShapeSlotSlopes shape = ShapeParameterSlopes(e.shape, sl);
  for (int f = 0; f < kFamilyCount; ++f) slope[f] = 0.0f;
  slope[kIntensity] = 1.0f;
  slope[kPosition] = static_cast<float>(-v.dTwoTheta * inv);
  slope[kBraggAngle] = slope[kPosition] + e.dlnLpdT;
  slope[kWidth] = static_cast<float>(v.dGamma * inv);
  slope[kShape1] = shape.Shape1;
  slope[kShapeX] = shape.X;
  slope[kShp1] = static_cast<float>(v.dSL * inv);
  slope[kShp2] = static_cast<float>(v.dDL * inv);
  return static_cast<float>(v.value);
}

// The peak of a reflection at the point, a Omega, without its integrated
// intensity; with `slope` given, also the slope of each family.
float PeakAtPoint(const Job& job, const Pattern& p, int ip, const RingEntry& e, float x,
                  float* slope) {
  if (p.IXUNIT == AbscissaUnit::kTimeOfFlight) return TofPeakAtPoint(e, x, slope);
  if (e.shape.code == ProfileCode::kAxialDivergence) return AxialPeakAtPoint(job, ip, e, x, slope);
  ProfilePoint point;
  if (!PointInBase(e.shape, x, p.Wdt, point)) return 0.0f;
  const AsymmetryParameters asy = AsymmetryParametersOf(job.phases[e.phase].pat[ip]);
  const bool underLimit = e.asymmetric != 0;
  const bool averaged = underLimit && p.IASYM == 1;
  const bool asymmetryRows = underLimit && p.IASYM == 0;
  ProfileSlopes sl;
  float omega = 0.0f;
  if (averaged) {
    omega = slope != nullptr
                ? BooleAverageProfileWithSlopes(e.shape, asy.Asy1, e.tan2Theta, point, sl)
                : BooleAverageProfile(e.shape, asy.Asy1, e.tan2Theta, point);
  } else {
    omega = slope != nullptr ? ProfileValueWithSlopes(e.shape, point, sl)
                             : ProfileValue(e.shape, point);
  }
  // Far in a Gaussian tail the value underflows and its slopes are not finite:
  // such a point takes nothing from the reflection.
  if (!(omega > 1.0e-30f)) return 0.0f;
  PointAsymmetryTerms asym;
  if (asymmetryRows) {
    asym = AsymmetryAt(e, asy, point);
  }
  if (slope != nullptr) FamilySlopes(e, point, sl, asym, asymmetryRows, slope);
  return asym.terms.A * omega;
}

// Points whose rows are summed in 32 bits before they go to the double sums.
constexpr int kPointsPerBlock = 16;

// Adds the point's weighted row to the normal equations (upper triangle);
// every kPointsPerBlock points the 32-bit block goes to the double-precision
// sums: over thousands of points a 32-bit running sum loses the digits that
// the shifts near the minimum are made of.
void AccumulatePoint(NormalMatrix& normal, const float* derivative, float weight, float residual,
                     int fitted) {
  for (int L = 1; L <= fitted; ++L) {
    const float u = weight * derivative[L - 1];
    normal.B[L] += u * residual;
    float* row = &normal.A(L, 1);
    for (int m = L; m <= fitted; ++m) row[m - 1] += u * derivative[m - 1];
  }
  if (++normal.pendingPoints == kPointsPerBlock) FlushNormalBlock(normal, fitted);
}

}  // namespace

void FlushNormalBlock(NormalMatrix& normal, int fitted) {
  for (int L = 1; L <= fitted; ++L) {
    normal.SumB[L] += normal.B[L];
    normal.B[L] = 0.0f;
    float* row = &normal.A(L, 1);
    double* sum = &normal.SumA(L, 1);
    for (int m = L; m <= fitted; ++m) {
      sum[m - 1] += row[m - 1];
      row[m - 1] = 0.0f;
    }
  }
  normal.pendingPoints = 0;
}

float PeakValueAt(const Job& job, const RingEntry& entry, int ip, float x) {
  if (!entry.active || entry.intensity == 0.0f) return 0.0f;
  return PeakAtPoint(job, job.patterns[ip], ip, entry, x, nullptr);
}

void CalculatePoint(Job& job, CycleWork& work, int ip, int i) {
  Pattern& p = job.patterns[ip];
  RefinementState& state = job.refinement;
  const int fitted = FittedCount(job);
  const bool refine = !IsCalculatedPattern(p);
  float* derivative = state.PointDerivative.ptr();
  if (refine) {
    for (int L = 0; L < fitted; ++L) derivative[L] = 0.0f;
  }
  const int code = p.OrderCode[i];
  const int first = FirstReflection(code);
  const int last = LastReflection(code);
  const float x = p.X[i];
  const std::uint8_t* family = state.family.ptr();
  float y = 0.0f;
  float slope[kFamilyCount] = {};
  // A calculation, or a refinement with nothing refined, needs the values only.
  float* slopes = refine && fitted > 0 ? slope : nullptr;
  for (int k = first; first != 0 && k <= last; ++k) {
    const RingEntry& e = work.ring[RingSlot(k)];
    if (!e.active) continue;
    const float contribution = e.intensity * PeakAtPoint(job, p, ip, e, x, slopes);
    if (contribution == 0.0f) continue;
    y += contribution;
    if (slopes == nullptr) continue;
    const float* ring = &state.DerivativeRing(RingSlot(k), 1);
    for (int L = 0; L < fitted; ++L) derivative[L] += contribution * slope[family[L]] * ring[L];
    for (int t = 0; t < e.intensityTermCount; ++t) {
      derivative[e.intensityParameter[t] - 1] += contribution * e.intensitySlope[t];
    }
  }
  p.Ycalc[i] = y;
  if (!refine) return;
  BackgroundDerivatives(p, i, 1.0f, state.PointDerivative);
  const float background = BackgroundAt(p, i);
  const float residual = p.Ytotal[i] - background - y;
  if (p.IWGT == 1) {
    p.Variance[i] = std::fabs((background + y) / static_cast<float>(p.CountNorm[i])) * p.Cnorm;
  }
  AccumulatePoint(state.normal, derivative, (1.0f / p.Variance[i]) * p.W_PAT, residual, fitted);
}

}  // namespace corvinet
