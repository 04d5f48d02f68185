// Order codes of the points of a pattern, the excluded regions, the point table and the overlap
// limit.
#include "refine/order_reflections.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "crystal/reflection_generation.h"
#include "format/bisection.h"
#include "format/fortran_format.h"
#include "model/axial_divergence.h"
#include "records/profile_slots.h"
#include "records/reflection.h"
#include "refine/excluded_points.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr float kDegree = 0.017453292f;
constexpr float kLog4 = 1.3862944f;

// The first index of an interval: raised to 1 when below 2.
int LowIndex(const Pattern& p, float value) {
  return std::max(PointIndexOf(p, value), 1);
}

}  // namespace

PeakInterval PeakIntervalOf(const Job& job, int ip, int k) {
  const Reflection& r = job.patterns[ip].reflections.slot[k];
  const Pattern& p = job.patterns[ip];
  const PhasePattern& c = job.phases[KeyPhase(r.key)].pat[ip];
  const Table1<float, DimensionLimits::MPAR>& par = c.PAR;
  const float H = r.Fwhm;
  float left = p.Wdt * H;
  float right = left;
  float shift = 0.0f;
  const ProfileCode code = ProfileOf(c);
  if (p.IXUNIT == AbscissaUnit::kTwoTheta) {
    const float theta = 0.5f * r.position * kDegree;
    shift = p.GLB[8] * std::cos(theta) + p.GLB[9] * std::sin(2.0f * theta);
    if (code == ProfileCode::kSplitPseudoVoigt) right = p.Wdt * r.FwhmRight;
    if (code == ProfileCode::kAxialDivergence) {
      // The axial-divergence tail reaches Emin, below the peak under 90 degrees, above it beyond.
      const AxialReach reach = AxialDivergenceReach(par[ProfileSlot::Shp1], par[ProfileSlot::Shp2],
                                                    r.position + shift + p.GLB[1]);
      left += static_cast<float>(reach.below);
      right += static_cast<float>(reach.above);
    }
  } else if (p.IXUNIT == AbscissaUnit::kEnergy) {
    // The stored energy is Dtt1/d: the shift is the Dtt2 q term.
    const float q = (r.position / p.GLB[8]) * (r.position / p.GLB[8]);
    shift = p.GLB[9] * q;
  } else {
    const float d = r.position / p.Dtt1;
    shift = p.Dtt2 * d * d;
    if (p.IXUNIT == AbscissaUnit::kTimeOfFlight) {
      using namespace ProfileSlot;
      const float alpha0 = par[Asy1], beta0 = par[Asy2], alpha1 = par[Asy3], beta1 = par[Asy4];
      // An exponential without a rate is stopped on when the peak is calculated.
      const float alpha = alpha1 / d + alpha0, beta = beta1 / (d * d * d * d) + beta0;
      left = (H + (alpha > 0.0f ? kLog4 / alpha : 0.0f)) * p.Wdt;
      right = (H + (beta > 0.0f ? kLog4 / beta : 0.0f)) * p.Wdt;
    }
  }
  return {r.position + shift + p.GLB[1], left, right};
}

namespace {

void ListReflections(Job& job, const ReflectionTable& table) {
  bool vectors = false;
  for (int k = 1; k <= job.run.NPHASE; ++k) vectors |= job.phases[k].Nvk > 0;
  const char* heading = vectors
                            ? "1No.  Code    H   K   L  IVK   Phase  Hw       2THETA            "
                            : "1No.  Code    H   K   L  Phase  Hw       2THETA            ";
  for (int k = 1; k <= table.total; ++k) {
    if ((k - 1) % 60 == 0) WriteLine(job, Unit::Out, heading);
    const Reflection& r = table.slot[k];
    const std::string indices = vectors ? Fmt("(I4,I6,4I4)", k, KeyWavelength(r.key), KeyH(r.key),
                                              KeyK(r.key), KeyL(r.key), r.satelliteIndex)
                                        : Fmt("(I4,I6,3I4)", k, KeyWavelength(r.key), KeyH(r.key),
                                              KeyK(r.key), KeyL(r.key));
    WriteLine(job, Unit::Out,
              indices + Fmt("(I6,F9.4,F15.4)", KeyPhase(r.key), r.Fwhm, r.position));
  }
}

void MarkExcludedRegions(Pattern& p, RunTable1<int>& k11, RunTable1<int>& k21) {
  for (int j = 1; j <= p.NEXCRG; ++j) {
    if (!(p.ExclHigh[j] > p.THMIN)) continue;
    const auto [lo, hi] = ExcludedPointRange(p, j);
    for (int i = lo; i <= hi; ++i) {
      k21[i] = 1;
      k11[i] = 0;
    }
    if (hi >= p.NPTS) break;
  }
}

const char* UnitText(AbscissaUnit ixunit) {
  switch (ixunit) {
    case AbscissaUnit::kTimeOfFlight:
      return " T.O.F. us";
    case AbscissaUnit::kEnergy:
      return "Energy Kev";
    case AbscissaUnit::kQ:
      return "  Q-value ";
    case AbscissaUnit::kInverseD:
      return "  S-value ";
    default:
      return "  2theta  ";
  }
}

void WritePointTable(Job& job, const Pattern& p, const RunTable1<int>& k11,
                     const RunTable1<int>& k21) {
  WriteLine(job, Unit::Out,
            Fmt("(A,F12.4,A,F12.4,A,F10.5,1X,A)", "Pattern from ", p.X[1], " to ", p.X[p.NPTS],
                " in steps of ", p.STEP, UnitText(p.IXUNIT)));
  WriteLine(job, Unit::Out,
            std::string(UnitText(p.IXUNIT)) + "       Ytotal         Backg" +
                "         Ynet      Variance  K11  K21");
  for (int i = 1; i <= p.NPTS; ++i) {
    WriteLine(job, Unit::Out,
              Fmt("(F10.4,4F14.3,2I5)", p.X[i], p.Ytotal[i], p.Backg[i], p.Ytotal[i] - p.Backg[i],
                  p.Variance[i], k11[i], k21[i]));
  }
}

[[noreturn]] void StopOnOverlap(Job& job, const Pattern& p, int point, int count) {
  ConsoleLine(job, " Excessive peak overlap! (see *.OUT)");
  WriteLine(job, Unit::Out, " => Excessive peak overlap");
  WriteLine(
      job, Unit::Out,
      Fmt("(A,I6,A,I6,A)", "    at the ", point, "th step there are ", count, " reflections"));
  WriteLine(job, Unit::Out, " => Solutions: ");
  WriteLine(job, Unit::Out,
            Fmt("(A,F8.3)", "    Decrease the value of *WDT* which is now ", p.Wdt));
  WriteLine(job, Unit::Out, "    Perhaps the U,V,W parameters give too broad peaks");
  WriteLine(job, Unit::Out, "    Change the starting values of U,V,W!");
  WriteLine(job, Unit::Out, "    The maximun allowed number of reflections contributing");
  WriteLine(job, Unit::Out, Fmt("(A,I5)", "    to a single point is: ", DimensionLimits::NOV));
  StopBox(job, " Excessive peak overlap");
}

[[noreturn]] void StopWithReport(Job& job, const char* words) {
  WriteLine(job, Unit::Out, words);
  ConsoleLine(job, words);
  StopBox(job, words);
}

// Codes that cannot act: asymmetry refined with no peak under its limit, and
// the second preferred-orientation value refined while both are zero.
void CheckRefinedShapeCodes(Job& job, const Pattern& p, int ip, int firstValid) {
  if (p.IXUNIT == AbscissaUnit::kTwoTheta && firstValid > 0) {
    const Reflection& r = p.reflections.slot[firstValid];
    const Phase& first = job.phases[1];
    if (r.position >= p.AsyLim && first.pat[ip].PAC[ProfileSlot::Asy1].parameterNumber != 0) {
      StopWithReport(job, " => Asymmetry parameters usage invalid !!");
    }
  }
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    const PhasePattern& c = job.phases[k].pat[ip];
    if (c.Contribution == 0) continue;
    if (c.PAR[ProfileSlot::Pref1] == 0.0f && c.PAR[ProfileSlot::Pref2] == 0.0f &&
        c.PAC[ProfileSlot::Pref2].parameterNumber != 0) {
      StopWithReport(job, " => Preferred orientation usage invalid !!");
    }
  }
}

}  // namespace

int Locate(int n, const RunTable1<float>& x, float value) {
  return LastAtOrBelow(
      n, [&x](int i) { return x[i]; }, value);
}

namespace {

// A base built again during the cycles is widened on each side by this part
// of itself, so that the peaks may move and broaden over several cycles before
// the table has to follow them; the peak itself is cut at its base.
constexpr float kFollowWidening = 0.5f;

// The order codes of the points from the present bases, each side widened by
// `widening` of itself; with `report`, the listings, and the checks of the
// first build. Returns the first reflection reaching a point, 0 when none does.
int BuildOrderCodes(Job& job, int ip, bool report, float widening) {
  Pattern& p = job.patterns[ip];
  ReflectionTable& table = p.reflections;
  if (job.run.NPHASE > 1) SortReflections(table, table.total, kWholePattern);
  // K11 and K21 are built in the order-code array and the count array of
  // the pattern's work store, then packed.
  auto& k11 = job.refinement.first;
  auto& k21 = job.refinement.last;
  for (int i = 1; i <= p.NPTS; ++i) k11[i] = k21[i] = 0;
  if (report && p.LST3 != 0) ListReflections(job, table);
  for (int k = 1; k <= table.total; ++k) {
    const PeakInterval base = PeakIntervalOf(job, ip, k);
    const int lo = LowIndex(p, base.position - (1.0f + widening) * base.left);
    const int hi = PointIndexOf(p, base.position + (1.0f + widening) * base.right);
    for (int i = lo; i <= hi; ++i) {
      k21[i] = k;
      if (k11[i] == 0) k11[i] = k;
    }
  }
  MarkExcludedRegions(p, k11, k21);
  if (report && p.LST2 == 1) WritePointTable(job, p, k11, k21);
  int firstValid = 0;
  for (int i = 1; i <= p.NPTS; ++i) {
    // The ring of derivatives holds NOV reflections: no more may reach a point.
    const int reaching = k11[i] == 0 ? 0 : k21[i] - k11[i] + 1;
    if (reaching > DimensionLimits::NOV) StopOnOverlap(job, p, i, reaching);
    p.OrderCode[i] = OrderCodeOf(k11[i], k21[i]);
    if (firstValid == 0 && k11[i] != 0) firstValid = k11[i];
  }
  return firstValid;
}

// Marks the points that only the widened bases reach: the codes with
// reflections whose point lies inside no present base.
void MarkTailOnlyPoints(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  auto& inside = job.refinement.first;
  for (int i = 1; i <= p.NPTS; ++i) inside[i] = 0;
  for (int k = 1; k <= p.reflections.total; ++k) {
    const PeakInterval base = PeakIntervalOf(job, ip, k);
    const int lo = LowIndex(p, base.position - base.left);
    const int hi = std::min(PointIndexOf(p, base.position + base.right), p.NPTS);
    for (int i = lo; i <= hi; ++i) inside[i] = 1;
  }
  for (int i = 1; i <= p.NPTS; ++i) {
    int& code = p.OrderCode[i];
    code %= kTailOnlyPoint;
    if (code != 0 && code != kExcludedPoint && inside[i] == 0) code += kTailOnlyPoint;
  }
}

// Whether every point inside the present base of every reflection has that
// reflection within its order code (excluded points aside).
bool OrderCoversBases(const Job& job, int ip) {
  const Pattern& p = job.patterns[ip];
  for (int k = 1; k <= p.reflections.total; ++k) {
    const PeakInterval base = PeakIntervalOf(job, ip, k);
    const int lo = LowIndex(p, base.position - base.left);
    const int hi = std::min(PointIndexOf(p, base.position + base.right), p.NPTS);
    for (int i = lo; i <= hi; ++i) {
      const int code = p.OrderCode[i];
      if (code == kExcludedPoint) continue;
      if (k < FirstReflection(code) || k > LastReflection(code)) return false;
    }
  }
  return true;
}

}  // namespace

void OrderReflections(Job& job, int ip) {
  const int firstValid = BuildOrderCodes(job, ip, true, 0.0f);
  if (firstValid == 0) StopBox(job, " NO REFLECTIONS FOUND -> Check your input data");
  CheckRefinedShapeCodes(job, job.patterns[ip], ip, firstValid);
}

void FollowReflections(Job& job, int ip) {
  if (OrderCoversBases(job, ip)) return;
  BuildOrderCodes(job, ip, false, kFollowWidening);
  MarkTailOnlyPoints(job, ip);
}

}  // namespace corvinet
