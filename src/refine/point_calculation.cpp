// Calculated intensity and normal-equation row of one constant-wavelength point.
#include "refine/point_calculation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <span>
#include <vector>

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
  const AsymmetryParameters& asy = e.asy;
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

// Points whose rows are summed in 32 bits before they go to the double sums:
// over thousands of points a 32-bit running sum loses the digits that the
// shifts near the minimum are made of.
constexpr int kPointsPerBlock = 16;

// row[b..e) += c ring[b..e); cloned for AVX2 (no fused multiply-add, so every
// clone gives the same bits).
__attribute__((target_clones("avx2", "default"))) void AddScaledSpan(float* row, const float* ring,
                                                                     float c, int b, int e) {
  for (int L = b; L < e; ++L) row[L] += c * ring[L];
}

// Adds the contribution of one reflection to the point's row, family run by
// family run, over the span of its non-zero derivatives.
void AddReflectionRow(float* row, const float* ring, const RingEntry& e, float contribution,
                      const float* slope, std::span<const FamilyRun> runs) {
  for (const FamilyRun& run : runs) {
    if (run.end <= e.rowBegin) continue;
    if (run.begin >= e.rowEnd) break;
    const int b = run.begin > e.rowBegin ? run.begin : e.rowBegin;
    const int end = run.end < e.rowEnd ? run.end : e.rowEnd;
    AddScaledSpan(row, ring, contribution * slope[run.family], b, end);
  }
}

// Adds the rows of the points of one block, from its first point `p0` to
// `p1`, to rows L = first..last-1 (from 0) of the upper triangle of A and B.
// Each entry takes the block's points in their order; a point whose
// derivative in L is 0 adds nothing to row L.
__attribute__((target_clones("avx2", "default"))) void AddBlockRows(NormalMatrix& normal,
                                                                    const PointRows& rows, int p0,
                                                                    int p1, int first, int last,
                                                                    int* touched) {
  int hi = 0;
  for (int p = p0; p < p1; ++p) hi = rows.rowEnd[p] > hi ? rows.rowEnd[p] : hi;
  for (int L = first; L < last && L < hi; ++L) {
    float b = normal.B[L + 1];
    float* a = &normal.A(L + 1, 1);
    for (int p = p0; p < p1; ++p) {
      const float* d = rows.rows + static_cast<std::ptrdiff_t>(p) * rows.stride;
      const float u = rows.weight[p] * d[L];
      if (u == 0.0f) continue;
      b += u * rows.residual[p];
      const int end = rows.rowEnd[p];
      for (int m = L; m < end; ++m) a[m] += u * d[m];
      if (end > touched[L]) touched[L] = end;
    }
    normal.B[L + 1] = b;
  }
}

// Adds rows first..last-1 of the block to the double sums and clears them.
void FlushBlockRows(NormalMatrix& normal, int first, int last, int* touched) {
  for (int L = first; L < last; ++L) {
    normal.SumB[L + 1] += normal.B[L + 1];
    normal.B[L + 1] = 0.0f;
    float* a = &normal.A(L + 1, 1);
    double* sum = &normal.SumA(L + 1, 1);
    for (int m = L; m < touched[L]; ++m) {
      sum[m] += a[m];
      a[m] = 0.0f;
    }
    touched[L] = 0;
  }
}

}  // namespace

void BuildFamilyRuns(const std::uint8_t* family, int fitted, std::vector<FamilyRun>& runs) {
  runs.clear();
  for (int L = 0; L < fitted; ++L) {
    if (!runs.empty() && runs.back().family == family[L] && runs.back().end == L) {
      ++runs.back().end;
    } else {
      runs.push_back(FamilyRun{L, L + 1, family[L]});
    }
  }
}

void AddPointRows(NormalMatrix& normal, const PointRows& rows, int first, int last, int* touched) {
  int pending = rows.pending;
  for (int p0 = 0; p0 < rows.count;) {
    const int take = std::min(kPointsPerBlock - pending, rows.count - p0);
    AddBlockRows(normal, rows, p0, p0 + take, first, last, touched);
    pending += take;
    if (pending == kPointsPerBlock) {
      FlushBlockRows(normal, first, last, touched);
      pending = 0;
    }
    p0 += take;
  }
}

int PendingAfter(const PointRows& rows) {
  return (rows.pending + rows.count) % kPointsPerBlock;
}

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

bool CalculatePointRow(Job& job, const CycleWork& work, int ip, int i, DerivativeVector& row,
                       PointTerms& terms) {
  Pattern& p = job.patterns[ip];
  const RefinementState& state = job.refinement;
  const int fitted = FittedCount(job);
  const bool refine = !IsCalculatedPattern(p);
  float* derivative = row.ptr();
  if (refine) {
    for (int L = 0; L < fitted; ++L) derivative[L] = 0.0f;
  }
  const int code = p.OrderCode[i];
  const int first = FirstReflection(code);
  const int last = LastReflection(code);
  const float x = p.X[i];
  float y = 0.0f;
  float slope[kFamilyCount] = {};
  // A calculation, or a refinement with nothing refined, needs the values only.
  float* slopes = refine && fitted > 0 ? slope : nullptr;
  const std::span<const FamilyRun> runs(work.familyRuns);
  for (int k = first; first != 0 && k <= last; ++k) {
    const RingEntry& e = work.ring[RingSlot(k)];
    if (!e.active) continue;
    const float contribution = e.intensity * PeakAtPoint(job, p, ip, e, x, slopes);
    if (contribution == 0.0f) continue;
    y += contribution;
    if (slopes == nullptr) continue;
    AddReflectionRow(derivative, &state.DerivativeRing(RingSlot(k), 1), e, contribution, slope,
                     runs);
    for (int t = 0; t < e.intensityTermCount; ++t) {
      derivative[e.intensityParameter[t] - 1] += contribution * e.intensitySlope[t];
    }
  }
  p.Ycalc[i] = y;
  if (!refine) return false;
  BackgroundDerivatives(p, i, 1.0f, row);
  const float background = BackgroundAt(p, i);
  terms.residual = p.Ytotal[i] - background - y;
  if (p.IWGT == 1) {
    p.Variance[i] = std::fabs((background + y) / static_cast<float>(p.CountNorm[i])) * p.Cnorm;
  }
  terms.weight = (1.0f / p.Variance[i]) * p.W_PAT;
  return true;
}

int RowEnd(const float* row, int fitted) {
  int end = fitted;
  while (end > 0 && row[end - 1] == 0.0f) --end;
  return end;
}

void CalculatePoint(Job& job, CycleWork& work, int ip, int i) {
  RefinementState& state = job.refinement;
  const int fitted = FittedCount(job);
  BuildFamilyRuns(state.family.ptr(), fitted, work.familyRuns);
  PointTerms terms;
  if (!CalculatePointRow(job, work, ip, i, state.PointDerivative, terms)) return;
  work.touched.resize(static_cast<std::size_t>(fitted) + 1, fitted);
  PointRows rows;
  rows.rows = state.PointDerivative.ptr();
  rows.stride = fitted;
  rows.weight = &terms.weight;
  rows.residual = &terms.residual;
  const int end = RowEnd(rows.rows, fitted);
  rows.rowEnd = &end;
  rows.count = 1;
  rows.pending = state.normal.pendingPoints;
  AddPointRows(state.normal, rows, 0, fitted, work.touched.data());
  state.normal.pendingPoints = PendingAfter(rows);
}

}  // namespace corvinet
