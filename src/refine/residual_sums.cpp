// Residual sums of a pattern over its non-excluded points, turned into reliability factors.
#include <cmath>
#include <vector>

#include "observations/background.h"
#include "refine/excluded_points.h"
#include "refine/order_reflections.h"
#include "refine/reliability.h"
#include "refine/reliability_report_lines.h"

namespace corvinet {

namespace {

// Below this magnitude Yo or Yc gives no deviance term.
constexpr float kDevianceFloor = 1.0e-10f;

// The terms one point adds to the sums, each in single precision.
struct PointTerms {
  float absD, yo, yc, wYo2, wD2, yn, wYn2, dev, invYc;
  float scaled;  // d sqrt(w), for the Durbin-Watson sum
};

PointTerms TermsOf(const Pattern& p, int i) {
  const float yo = p.Ytotal[i];
  const float yb = BackgroundAt(p, i);
  const float yc = yb + p.Ycalc[i];
  const float d = yo - yc;
  const float w = 1.0f / p.Variance[i];
  const float yn = yo - yb;
  PointTerms t{};
  t.absD = std::fabs(d);
  t.yo = yo;
  t.yc = yc;
  t.wYo2 = w * yo * yo;
  t.wD2 = w * d * d;
  t.yn = yn;
  t.wYn2 = w * yn * yn;
  t.dev = 0.0f;
  if (std::fabs(yo) > kDevianceFloor && std::fabs(yc) > kDevianceFloor) {
    t.dev = yo * std::log(std::fabs(yo / yc)) - d;
  }
  t.invYc = 1.0f / yc;
  t.scaled = d * std::sqrt(w);
  return t;
}

// The sums of one set while they are formed: each point term is computed in
// single precision and added in double precision, so that the Bragg set, the
// deviance and the sums of a long pattern keep their digits.
struct DoubleSums {
  double SumYdif = 0.0, SumYobs = 0.0, SumYcal = 0.0, SumwYobsSQ = 0.0, Residual = 0.0;
  double SumYnet = 0.0, SumwYnetSQ = 0.0, DwSum = 0.0, DevSum = 0.0, InvYcalSum = 0.0;
  int points = 0;
};

// Adds the point; `dw` is its Durbin-Watson term, absent for the first point.
void AddTerms(DoubleSums& s, const PointTerms& t, const float* dw) {
  s.SumYdif += t.absD;
  s.SumYobs += t.yo;
  s.SumYcal += t.yc;
  s.SumwYobsSQ += t.wYo2;
  s.Residual += t.wD2;
  s.SumYnet += t.yn;
  s.SumwYnetSQ += t.wYn2;
  if (dw != nullptr) s.DwSum += *dw;
  s.DevSum += t.dev;
  s.InvYcalSum += t.invYc;
  ++s.points;
}

ResidualSums Stored(const DoubleSums& d) {
  ResidualSums s;
  s.SumYdif = static_cast<float>(d.SumYdif);
  s.SumYobs = static_cast<float>(d.SumYobs);
  s.SumYcal = static_cast<float>(d.SumYcal);
  s.SumwYobsSQ = static_cast<float>(d.SumwYobsSQ);
  s.Residual = static_cast<float>(d.Residual);
  s.SumYnet = static_cast<float>(d.SumYnet);
  s.SumwYnetSQ = static_cast<float>(d.SumwYnetSQ);
  s.DwSum = static_cast<float>(d.DwSum);
  s.DevSum = static_cast<float>(d.DevSum);
  s.InvYcalSum = static_cast<float>(d.InvYcalSum);
  s.points = d.points;
  return s;
}

bool IsNonBraggCode(int code) {
  return !IsBraggCode(code);
}

}  // namespace

void AccumulateResidualSums(const Pattern& pattern, ResidualSums& all, ResidualSums& nonBragg,
                            ResidualSums& bragg) {
  DoubleSums sumAll, sumNonBragg, sumBragg;
  const std::vector<bool> excluded = ExcludedPointMarks(pattern);
  bool first = true;
  float previous = 0.0f;
  for (int i = 1; i <= pattern.NPTS; ++i) {
    if (excluded[static_cast<std::size_t>(i)]) continue;
    const PointTerms t = TermsOf(pattern, i);
    // The Durbin-Watson term links each point to its predecessor among all
    // used points, also when the point is counted in the non-Bragg sums.
    const float step = t.scaled - previous;
    const float dw = step * step;
    const float* term = first ? nullptr : &dw;
    AddTerms(sumAll, t, term);
    AddTerms(IsNonBraggCode(pattern.OrderCode[i]) ? sumNonBragg : sumBragg, t, term);
    previous = t.scaled;
    first = false;
  }
  all = Stored(sumAll);
  nonBragg = Stored(sumNonBragg);
  bragg = Stored(sumBragg);
}

void ResidualStatistics(Job& job, int ip, int cycle, int endMarker) {
  PatternReliability& state = job.reliability.pattern[ip];
  const Pattern& pattern = job.patterns[ip];
  AccumulateResidualSums(pattern, state.all, state.nonBragg, state.bragg);
  ReliabilityIndices(job, ip);
  if (cycle == job.run.NCY || endMarker == kConvergedEndMarker) {
    state.Scor = CorrelatedResidualsFactor(pattern, state.setB.sums.Residual);
    WriteScorLines(job, state.Scor);
  }
}

}  // namespace corvinet
