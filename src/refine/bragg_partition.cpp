// The Rietveld partition of the observed intensity among the reflections; extraction of F2.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "observations/background.h"
#include "records/profile_slots.h"
#include "records/reflection.h"
#include "refine/bragg_factors.h"
#include "refine/excluded_points.h"
#include "refine/order_reflections.h"

namespace corvinet {

namespace {

constexpr float kSmallestIobs = 1.0e-6f;

// True when an excluded region, widened by the peak base when idumScale is
// 1.0, covers the position of the peak.
bool PeakExcluded(const Pattern& p, const PeakReach& reach) {
  const float low = reach.left * p.idumScale;
  const float high = reach.right * p.idumScale;
  for (int r = 1; r <= p.NEXCRG; ++r) {
    if (p.ExclLow[r] - low <= reach.position && reach.position <= p.ExclHigh[r] + high) {
      return true;
    }
  }
  return false;
}

int ClampedIndex(const Pattern& p, float x) {
  return std::clamp(PointIndexOf(p, x), 1, std::max(p.NPTS, 1));
}

// The abscissa interval that point i stands for: up to the next point; the
// last point takes the interval before it.
float PointInterval(const Pattern& p, int i) {
  if (i < p.NPTS) return p.X[i + 1] - p.X[i];
  return i > 1 ? p.X[i] - p.X[i - 1] : 0.0f;
}

bool IsBraggPoint(int code) {
  return code != 0 && code != kExcludedPoint;
}

}  // namespace

ReflectionShare PartitionReflection(const Job& job, int ip, int k, const BraggProfile& profile) {
  const Pattern& p = job.patterns[ip];
  const Reflection& r = p.reflections.slot[k];
  const PeakReach reach = profile.reach(ip, k);
  ReflectionShare share;
  if (PeakExcluded(p, reach)) return share;
  share.counted = true;
  const int first = ClampedIndex(p, reach.position - reach.left);
  const int last = ClampedIndex(p, reach.position + reach.right);
  float iobs = 0.0f;
  float icalc = 0.0f;
  float variance = 0.0f;
  for (int i = first; i <= last; ++i) {
    if (!IsBraggPoint(p.OrderCode[i])) continue;
    const float omega = profile.peak(ip, k, i);
    const float delta = PointInterval(p, i);
    icalc += delta * omega;
    // A weak calculated intensity is not allowed to magnify the observed one.
    const float calculated = profile.braggCalc ? profile.braggCalc(ip, i) : p.Ycalc[i];
    const float y = calculated <= 1.0f ? 1.0f : calculated;
    iobs += (p.Ytotal[i] - BackgroundAt(p, i)) / y * delta * omega;
    const float share = delta * omega / y;
    variance += share * share * p.Variance[i];
  }
  if (iobs < 0.0f) iobs = kSmallestIobs;
  const float scale = job.phases[KeyPhase(r.key)].pat[ip].PAR[ProfileSlot::Scale];
  const float c = r.LpM * scale * r.F2 * r.Corr;
  share.Iobs = iobs * c;
  share.Icalc = icalc * c;
  share.IobsVariance = variance * c * c;
  share.Fcalc = std::sqrt(std::fabs(share.Icalc / (scale * r.LpM)));
  share.Fobs = std::sqrt(std::fabs(share.Iobs / (scale * r.LpM)));
  return share;
}

void ExtractIntensity(Job& job, int ip, int k, float iobs) {
  ReflectionTable& table = job.patterns[ip].reflections;
  Reflection& r = table.slot[k];
  if (KeyWavelength(r.key) >= 2) {
    // The second wavelength component takes the F2 of its partner.
    const int phase = KeyPhase(r.key);
    for (int j = k - 1; j >= 1; --j) {
      const Reflection& other = table.slot[j];
      if (KeyPhase(other.key) == phase && KeyH(other.key) == KeyH(r.key) &&
          KeyK(other.key) == KeyK(r.key) && KeyL(other.key) == KeyL(r.key) &&
          other.satelliteIndex == r.satelliteIndex) {
        r.F2 = other.F2;
        return;
      }
    }
  }
  const float scale = job.phases[KeyPhase(r.key)].pat[ip].PAR[ProfileSlot::Scale];
  // A reflection with nothing observed loses a factor 1.0E-6 per cycle: its F2
  // stays at the smallest normal float instead of reaching 0, which would read
  // as a reflection never extracted and start again from a unit intensity.
  r.F2 = std::max(iobs / (r.Corr * scale * r.LpM), std::numeric_limits<float>::min());
}

PhaseBraggSums SumPhaseShares(const Job& job, int ip, int phase, const BraggProfile& profile,
                              const ShareVisitor& visit) {
  PhaseBraggSums sums;
  const ReflectionTable& table = job.patterns[ip].reflections;
  for (int k = 1; k <= table.total; ++k) {
    if (KeyPhase(table.slot[k].key) != phase) continue;
    const ReflectionShare share = PartitionReflection(job, ip, k, profile);
    if (!share.counted) continue;
    sums.SumAbsI += std::fabs(share.Iobs - share.Icalc);
    sums.SumIobs += share.Iobs;
    sums.SumAbsF += std::fabs(share.Fobs - share.Fcalc);
    sums.SumFobs += share.Fobs;
    sums.SumIcalc += share.Icalc;
    if (visit) visit(k, share);
  }
  return sums;
}

PhaseBraggSums PartitionPhase(Job& job, int ip, int phase, const BraggProfile& profile) {
  if (std::abs(job.phases[phase].Jbt) != 2) return SumPhaseShares(job, ip, phase, profile, {});
  // Each new F2 is set after the share of its reflection has been taken.
  return SumPhaseShares(job, ip, phase, profile, [&job, ip](int k, const ReflectionShare& share) {
    ExtractIntensity(job, ip, k, share.Iobs);
  });
}

float BraggRatio(float sumAbs, float sumObs) {
  const float divisor = sumObs >= 1.0f ? sumObs : 1.0f;
  return 100.0f * sumAbs / divisor;
}

}  // namespace corvinet
