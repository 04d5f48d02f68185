// Calculated intensity and normal-equation row of one constant-wavelength point.
#include "refine/point_calculation.h"

#include <cmath>
#include <cstdlib>

#include "crystal/reflection.h"
#include "model/asymmetry_factor.h"
#include "model/boole_average.h"
#include "model/peak_shape_setup.h"
#include "observations/background.h"
#include "refine/order_reflections.h"
#include "refine/parameter_families.h"

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
  out.terms = AsymmetryFactor(point.delta, point.H, e.tanTheta, e.tan2Theta, asy);
  const float z = point.delta / point.H;
  const float ez = std::exp(-z * z);
  const float fa = 2.0f * z * ez;
  const float dFa = 2.0f * ez * (1.0f - 2.0f * z * z);
  const float dFb = 8.0f * z * fa + (4.0f * z * z - 3.0f) * dFa;
  const float dAdz = -((asy.Asy1 * dFa + asy.Asy2 * dFb) / e.tanTheta +
                       (asy.Asy3 * dFa + asy.Asy4 * dFb) / e.tan2Theta);
  // Where the factor is held at its floor it does not move.
  const float a = out.terms.A;
  if (a > 1.0e-4f) {
    out.dlnAdT = dAdz / a * (-1.0f / point.H);
    out.dlnAdH = dAdz / a * (-z / point.H);
  }
  return out;
}

// Value of one reflection at the point, with the slopes of each family.
float ReflectionAtPoint(const Job& job, const Pattern& p, int ip, const RingEntry& e, float x,
                        float* slope) {
  ProfilePoint point;
  if (!PointInBase(e.shape, x, p.Wdt, point)) return 0.0f;
  const PhasePattern& c = job.phases[e.phase].pat[ip];
  ProfileSlopes sl;
  float omega = 0.0f;
  PointAsymmetryTerms asym;
  const AsymmetryParameters asy = AsymmetryParametersOf(c);
  const bool underLimit = e.asymmetric != 0;
  if (underLimit && p.IASYM == 1) {
    omega = BooleAverageProfileWithSlopes(e.shape, asy.Asy1, e.tan2Theta, point, sl);
  } else {
    omega = ProfileValueWithSlopes(e.shape, point, sl);
    if (underLimit && p.IASYM == 0) asym = AsymmetryAt(e, asy, point);
  }
  // Far in a Gaussian tail the value underflows and its slopes are not finite:
  // such a point takes nothing from the reflection.
  if (!(omega > 1.0e-30f)) return 0.0f;
  const float a = asym.terms.A;
  const ShapeSlotSlopes shape = ShapeParameterSlopes(e.shape, sl);
  // The asymmetry factor moves with the width of the side the point is on;
  // through the TCH widths it moves with X and Y as well.
  const bool rightSide = e.shape.code == 12 && point.delta > 0.0f;
  const float lorentzScale = e.shape.code == 8 ? asym.dlnAdH * e.shape.tch.dHdL : 0.0f;
  slope[kIntensity] = 1.0f;
  slope[kPosition] = sl.position + asym.dlnAdT;
  slope[kWidth] = sl.width + (rightSide ? 0.0f : asym.dlnAdH);
  slope[kGaussWidth] = sl.gaussian + asym.dlnAdH * e.shape.tch.dHdG;
  slope[kWidthRight] = sl.width2 + (rightSide ? asym.dlnAdH : 0.0f);
  slope[kShapeX] = shape.X + lorentzScale * e.tanTheta;
  slope[kShapeY] = shape.Y + lorentzScale / e.shape.cosTheta;
  slope[kShape1] = shape.Shape1;
  slope[kShp1] = shape.Shp1;
  slope[kShp2] = shape.Shp2;
  slope[kEtar] = shape.Etar;
  slope[kXr] = shape.Xr;
  const bool rows = underLimit && p.IASYM == 0;
  slope[kAsym1] = rows ? -asym.terms.FaOverA / e.tanTheta : (underLimit ? sl.asymmetry : 0.0f);
  slope[kAsym2] = rows ? -asym.terms.FbOverA / e.tanTheta : 0.0f;
  slope[kAsym3] = rows ? -asym.terms.FaOverA / e.tan2Theta : 0.0f;
  slope[kAsym4] = rows ? -asym.terms.FbOverA / e.tan2Theta : 0.0f;
  return e.intensity * a * omega;
}

// Adds the point's weighted row to the normal equations (upper triangle).
void AccumulatePoint(NormalMatrix& normal, const float* derivative, float weight, float residual,
                     int fitted) {
  for (int L = 1; L <= fitted; ++L) {
    const float u = weight * derivative[L - 1];
    normal.B[L] += u * residual;
    float* row = &normal.A(L, 1);
    for (int m = L; m <= fitted; ++m) row[m - 1] += u * derivative[m - 1];
  }
}

}  // namespace

float PeakValueAt(const Job& job, const RingEntry& entry, int ip, float x) {
  if (!entry.active || entry.intensity == 0.0f) return 0.0f;
  float slope[kFamilyCount] = {};
  const RingEntry unit = [&] {
    RingEntry e = entry;
    e.intensity = 1.0f;
    return e;
  }();
  return ReflectionAtPoint(job, job.patterns[ip], ip, unit, x, slope);
}

void CalculatePoint(Job& job, CycleWork& work, int ip, int i) {
  Pattern& p = job.patterns[ip];
  RefinementState& state = job.refinement;
  const int fitted = std::min(job.run.MAXS, DimensionLimits::MSZ);
  float* derivative = state.PointDerivative.ptr();
  for (int L = 0; L < fitted; ++L) derivative[L] = 0.0f;
  const bool refine = std::abs(p.JOBTYP) < 2;
  const int code = p.OrderCode[i];
  const int first = FirstReflection(code);
  const int last = LastReflection(code);
  const float x = p.X[i];
  const std::uint8_t* family = state.family.ptr();
  float y = 0.0f;
  float slope[kFamilyCount] = {};
  for (int k = first; first != 0 && k <= last; ++k) {
    const RingEntry& e = work.ring[RingSlot(k)];
    if (!e.active) continue;
    const float contribution = ReflectionAtPoint(job, p, ip, e, x, slope);
    if (contribution == 0.0f) continue;
    y += contribution;
    if (!refine) continue;
    const float* ring = &state.DerivativeRing(RingSlot(k), 1);
    for (int L = 0; L < fitted; ++L) derivative[L] += contribution * slope[family[L]] * ring[L];
  }
  BackgroundDerivatives(p, i, 1.0f, state.PointDerivative);
  p.Ycalc[i] = y;
  if (!refine) return;
  const float background = BackgroundAt(p, i);
  const float residual = p.Ytotal[i] - background - y;
  if (p.IWGT == 1) {
    p.Variance[i] = std::fabs((background + y) / static_cast<float>(p.CountNorm[i])) * p.Cnorm;
  }
  AccumulatePoint(state.normal, derivative, (1.0f / p.Variance[i]) * p.W_PAT, residual, fitted);
}

}  // namespace corvinet
