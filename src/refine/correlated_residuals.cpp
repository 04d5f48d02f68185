// The correlated-residuals factor Scor over runs of same-sign residuals of the Bragg points.
#include <cmath>
#include <vector>

#include "observations/background.h"
#include "refine/excluded_points.h"
#include "refine/order_reflections.h"
#include "refine/reliability.h"

namespace corvinet {

namespace {

constexpr float kTwoPi = 6.2831855f;

// The walk over the points: the previous point, the open run and the total.
struct RunWalk {
  int lastIndex = -1;
  float prevD = 0.0f;
  float prevVar = 1.0f;
  bool inRun = false;
  float runSum = 0.0f;
  float total = 0.0f;
};

// A gap in the points or a change of sign closes the run; the new run
// starts from the previous residual.
void BreakRun(RunWalk& w) {
  w.total += w.runSum * w.runSum;
  w.runSum = std::fabs(w.prevD) / std::sqrt(w.prevVar);
  w.inRun = false;
}

// A residual of the same sign as its neighbour extends the run.
void ExtendRun(RunWalk& w, float d, float v) {
  if (!w.inRun) {
    w.total += w.runSum * w.runSum;
    w.inRun = true;
    w.runSum = 0.0f;
  }
  const float t = w.prevD * w.prevD / w.prevVar;
  const float u = d * d / v + t;
  const float q = std::sqrt(kTwoPi * u);
  const float r = q / (2.0f + q);
  w.runSum += std::sqrt(t) * r;
  w.total += (1.0f - r * r) * t;
}

}  // namespace

float CorrelatedResidualsFactor(const Pattern& pattern, float residualB) {
  const std::vector<bool> excluded = ExcludedPointMarks(pattern);
  RunWalk w;
  for (int i = 1; i <= pattern.NPTS; ++i) {
    const int code = pattern.OrderCode[i];
    if (excluded[static_cast<std::size_t>(i)] || !IsBraggCode(code)) continue;
    const float d = pattern.Ytotal[i] - BackgroundAt(pattern, i) - pattern.Ycalc[i];
    const float v = pattern.Variance[i];
    if (i - w.lastIndex != 1 || d * w.prevD <= 0.0f) {
      BreakRun(w);
    } else {
      ExtendRun(w, d, v);
    }
    w.lastIndex = i;
    w.prevD = d;
    w.prevVar = v;
  }
  w.total += w.runSum * w.runSum;
  return std::sqrt(w.total / residualB);
}

}  // namespace corvinet
