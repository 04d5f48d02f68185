// The numbers of the refinement analysis: classes of the refined parameters, the effective number
// of reflections under overlap, the expected profile R-factors and the verdict in words.
#include "results/refinement_analysis.h"

#include <algorithm>
#include <cmath>

#include "observations/background.h"
#include "observations/poisson.h"
#include "records/abscissa_unit.h"
#include "records/reflection.h"
#include "refine/excluded_points.h"
#include "refine/order_reflections.h"

namespace corvinet {

namespace {

// Peak slots of preferred orientation: intensity parameters.
constexpr int kFirstOrientationSlot = 12;
constexpr int kLastOrientationSlot = 13;
// The starting value of the sharpest width of a phase.
constexpr float kNoWidth = 1000.0f;
constexpr float kTwoPi = 6.2831853f;
constexpr float kHalfDegree = 0.008726646f;
// pi^2/90: a width in degrees of 2theta into Q, with (4 pi/lambda) cos(theta).
constexpr float kWidthToQ = 0.10966227f;
// Below this ratio Yobs/variance a point is taken as counted with unit weight.
constexpr float kSmallCountRatio = 1.0e-4f;

// Calls use(parameter, class, phase) for every coded value of pattern ip, in
// the order of the classification: global slots, then for each phase its peak
// slots, its vector components and its atoms.
template <typename Use>
void ForEachCodedValue(const Job& job, int ip, Use use) {
  const Pattern& p = job.patterns[ip];
  for (int j = 1; j <= DimensionLimits::NGL; ++j) {
    use(p.GLBword[j].parameterNumber, ParameterClass::kGlobal, 0, false);
  }
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    const Phase& ph = job.phases[f];
    const PhasePattern& pp = ph.pat[ip];
    for (int j = 1; j <= DimensionLimits::MPAR; ++j) {
      const bool orientation = j >= kFirstOrientationSlot && j <= kLastOrientationSlot;
      use(pp.PAC[j].parameterNumber,
          orientation ? ParameterClass::kIntensity : ParameterClass::kProfile, f, orientation);
    }
    for (int n = 1; n <= std::min(std::abs(ph.Nvk), DimensionLimits::NEQV); ++n) {
      for (int c = 1; c <= 3; ++c) {
        use(ph.vectors[n].KCODE[c].parameterNumber, ParameterClass::kVector, f, false);
      }
    }
    for (int a = ph.atomOffset + 1; a <= ph.atomOffset + ph.Nat && a <= DimensionLimits::NATS;
         ++a) {
      for (int j = 1; j <= DimensionLimits::NAT_P; ++j) {
        use(job.atoms[a].ATC[j].parameterNumber, ParameterClass::kIntensity, f, false);
      }
    }
  }
}

// Whether the peak of width H at x lies within its base of an excluded region.
bool NearExcludedRegion(const Pattern& p, float x, float H) {
  const float margin = p.idumScale * p.Wdt * H;
  for (int r = 1; r <= p.NEXCRG && r <= DimensionLimits::IEXCL; ++r) {
    if (p.ExclLow[r] - margin <= x && x <= p.ExclHigh[r] + margin) return true;
  }
  return false;
}

bool InsideExcludedRegion(const Pattern& p, float x) {
  for (int r = 1; r <= p.NEXCRG && r <= DimensionLimits::IEXCL; ++r) {
    if (p.ExclLow[r] <= x && x <= p.ExclHigh[r]) return true;
  }
  return false;
}

// The background in closed form: polynomial kinds.
bool PolynomialKind(const Pattern& p) {
  const BackgroundModel model = BackgroundModelOf(p);
  return model == BackgroundModel::Polynomial || model == BackgroundModel::Debye ||
         model == BackgroundModel::Polynomial12;
}

float FloorOne(float v) {
  return v > 1.0f ? v : 1.0f;
}

}  // namespace

float InverseSpacing(const Pattern& p, float x) {
  if (p.IXUNIT == AbscissaUnit::kTimeOfFlight) return x != 0.0f ? p.Dtt1 / x : 0.0f;
  if (p.IXUNIT == AbscissaUnit::kEnergy) return p.Dtt1 != 0.0f ? x / p.Dtt1 : 0.0f;
  return p.LAMBDA[1] != 0.0f ? 2.0f * std::sin(x * kHalfDegree) / p.LAMBDA[1] : 0.0f;
}

WidthInQ SharpestInQ(const Pattern& p, float position, float fwhm) {
  WidthInQ w;
  w.Q = kTwoPi * InverseSpacing(p, position);
  if (p.IXUNIT == AbscissaUnit::kTwoTheta) {
    // dQ = (4 pi/lambda) cos(theta) dtheta with dtheta = H/2 in radians.
    if (p.LAMBDA[1] != 0.0f)
      w.DQ = kWidthToQ * fwhm * std::cos(position * kHalfDegree) / p.LAMBDA[1];
    w.relativePercent = w.Q != 0.0f ? 100.0f * w.DQ / w.Q : 0.0f;
  } else if (position != 0.0f) {
    w.relativePercent = 100.0f * fwhm / position;
    w.DQ = w.Q * fwhm / position;
  }
  return w;
}

ParameterClasses ClassifyParameters(const Job& job, int ip, int fittedCount) {
  ParameterClasses c;
  const int count = std::max(fittedCount, 0);
  c.Kind = RunTable1<ParameterClass>(count);
  c.Appearances = RunTable1<int>(count);
  c.DistinctUses = RunTable1<int>(count);
  c.Kind.Fill(ParameterClass::kNone);
  ForEachCodedValue(job, ip, [&](int L, ParameterClass cls, int f, bool orientation) {
    if (L < 1 || L > count) return;
    ++c.Appearances[L];
    if (c.Kind[L] != ParameterClass::kNone) {
      if (c.Kind[L] != cls) ++c.DistinctUses[L];
      return;
    }
    c.Kind[L] = cls;
    switch (cls) {
      case ParameterClass::kGlobal:
        ++c.NGlobal;
        break;
      case ParameterClass::kProfile:
      case ParameterClass::kVector:
        ++c.NProfile;
        ++c.phaseProfile[f];
        break;
      case ParameterClass::kIntensity:
        ++c.NIntensity;
        ++c.phaseIntensity[f];
        if (orientation) ++c.preferredOrientation;
        break;
      case ParameterClass::kNone:
        break;
    }
  });
  return c;
}

EffectiveReflections CountEffectiveReflections(const Job& job, int ip,
                                               const Table1<float, DimensionLimits::NPHT>& x) {
  const Pattern& p = job.patterns[ip];
  const ReflectionTable& table = p.reflections;
  EffectiveReflections e;
  e.Hmin.Fill(kNoWidth);
  for (int k = 1; k <= table.total; ++k) {
    const Reflection& r = table.slot[k];
    if (KeyWavelength(r.key) != 1) continue;
    const float H = r.Fwhm;
    const float xk = PeakIntervalOf(job, ip, k).position;
    if (NearExcludedRegion(p, xk, H)) continue;
    const int f = KeyPhase(r.key);
    if (f < 1 || f > DimensionLimits::NPHT) continue;
    if (e.count == 0) e.firstPosition = xk;
    e.lastPosition = xk;
    e.sumFwhm += H;
    ++e.count;
    ++e.phaseCount[f];
    if (H < e.Hmin[f]) {
      e.Hmin[f] = H;
      e.Pmin[f] = xk;
    }
    const int i = std::clamp(PointIndexOf(p, xk), 1, std::max(p.NPTS, 1));
    const int code = p.OrderCode[i];
    const int first = std::max(FirstReflection(code), 1);
    const int last = std::min(LastReflection(code), table.total);
    std::array<float, 3> S{}, T{};
    for (int j = first; j <= last; ++j) {
      if (KeyWavelength(table.slot[j].key) != 1) continue;
      const int fj = KeyPhase(table.slot[j].key);
      if (fj < 1 || fj > DimensionLimits::NPHT) continue;
      const float xj = PeakIntervalOf(job, ip, j).position;
      for (std::size_t n = 0; n < kOverlapLevels.size(); ++n) {
        const float reach = kOverlapLevels[n] * H;
        if (xj < xk - reach || xj > xk + reach) continue;
        S[n] += x[fj];
        if (fj == f) T[n] += x[f];
      }
    }
    for (std::size_t n = 0; n < kOverlapLevels.size(); ++n) {
      e.Enref[n] += x[f] / FloorOne(S[n]);
      e.phaseEnref[f][n] += x[f] / FloorOne(T[n]);
    }
  }
  return e;
}

ExpectedFactors ExpectedProfileFactors(Job& job, int ip) {
  const Pattern& p = job.patterns[ip];
  const bool polynomial = PolynomialKind(p);
  const int q = p.NPTS / 4;
  double noise = 0.0;
  std::array<double, 4> regions{};
  for (int i = 1; i <= p.NPTS; ++i) {
    const int code = p.OrderCode[i];
    if (code == kExcludedPoint || (polynomial && !IsBraggCode(code))) continue;
    if (InsideExcludedRegion(p, p.X[i])) continue;
    const float yobs = p.Ytotal[i];
    // A point without a variance counts with unit weight.
    float r = p.Variance[i] > 0.0f ? yobs / p.Variance[i] : 1.0f;
    if (r < kSmallCountRatio) r = 1.0f;
    const float n = PoissonDeviate(job, r * yobs);
    noise += std::fabs(yobs - n / r);
    const int region = i <= q ? 0 : i <= 2 * q ? 1 : i <= 3 * q ? 2 : 3;
    regions[static_cast<std::size_t>(region)] += yobs - p.Ycalc[i];
  }
  const ResidualSums& sums = job.reliability.pattern[ip].all;
  ExpectedFactors e;
  e.ExRp = sums.SumYobs != 0.0f ? static_cast<float>(100.0 * noise / sums.SumYobs) : 0.0f;
  e.ExCRp = sums.SumYnet != 0.0f ? static_cast<float>(100.0 * noise / sums.SumYnet) : 0.0f;
  for (std::size_t n = 0; n < 4; ++n) e.regionSum[n] = static_cast<float>(regions[n]);
  return e;
}

std::vector<std::string> VerdictLines(const VerdictInputs& in) {
  std::vector<std::string> out;
  const auto add = [&out](std::initializer_list<const char*> lines) {
    for (const char* line : lines) out.emplace_back(line);
  };
  int warnings = in.warnings, good = 0, mixed = 0;
  const float chi2 = in.chi2, rb = in.averageRB;
  if (chi2 < 0.9f) {
    add({" => WARNING!:", "  Reduced Chi-square  TOO LOW, probably the standard deviations",
         "  of the data are not correct and/or you are using an excessive",
         "  number of parameters"});
    ++warnings;
  }
  if (in.preferredOrientation == 1 && std::abs(in.jobType) == 1) {
    add({" => WARNING!:", "  Are you really dealing with a preferred orientation problem?"});
    ++warnings;
  }
  if (chi2 <= 10.0f && rb < 8.0f) {
    good = 1;
    if (rb < 5.0f && chi2 > 3.0f) good = 5;
    if (rb < 5.0f && chi2 < 3.0f) good = 10;
  }
  if (chi2 <= 10.0f && rb >= 8.0f) {
    mixed = 1;
    if (rb < 15.0f && chi2 < 3.0f) mixed = 5;
  }
  if (chi2 > 10.0f && rb < 8.0f) {
    add({" => WARNING!:", "  Reduced Chi-square  TOO HIGH, the model is probably good but",
         "  the residuals are dominated by systematic errors in profile."});
    if (rb > 5.0f) add({"  Try to improve the peak shape model!"});
  }
  if (chi2 > 10.0f && rb >= 8.0f) {
    add({" => WARNING!:", "  Reduced Chi-square and average R-Bragg are TOO HIGH",
         "  the model should be improved  "});
    ++warnings;
  }
  if (in.eclecticRatio < 4.0f) {
    add({" => WARNING!:", "  Eclectic-view-ratio is TOO LOW (<4), if there is no constraint",
         "  your intensity-dependent parameters could be rather inaccurate !"});
    ++warnings;
  }
  if (warnings > 3) add({" => Please, check carefully what are you doing!"});
  if (warnings < 2 && good == 1) add({" => Your refinement could still be improved!"});
  if (warnings < 2 && good == 5) add({" => Your refinement seems to be rather good!"});
  if (warnings < 1 && good == 10) add({" => Your refinement seems to be very good!"});
  if (warnings < 2 && mixed == 1) {
    add({" => Your Chi-square is NOT HIGH but the model could be improved",
         "    if the statistic is good enough!"});
  }
  if (warnings < 2 && mixed == 5) {
    add({" => Chi-square is LOW but the HIGH R-Bragg factor can be due to",
         "    a bad structural model and/or a rather poor statistic"});
  }
  return out;
}

}  // namespace corvinet
