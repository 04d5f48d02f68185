// The cycle loop of a refinement: point passes, the equations, damping, update and the convergence
// tests.
#include "refine/cycle_driver.h"

#include <cmath>
#include <cstdlib>
#include <memory>

#include "observations/background.h"
#include "refine/cycle_work.h"
#include "refine/order_reflections.h"
#include "refine/point_calculation.h"
#include "refine/reflection_calculation.h"
#include "run/fortran_format.h"
#include "surface/console.h"

namespace corvinet {

namespace {

bool PolynomialBackground(const Pattern& p) {
  return p.NBCKGD == 0 || (p.backgroundSign < 0 && (p.NBCKGD == 1 || p.NBCKGD == 3));
}

// Walks the points of pattern ip; each reflection is computed just before the
// first point that needs it.
void CalculatePattern(Job& job, CycleWork& work, int ip) {
  Pattern& p = job.patterns[ip];
  RefinementState& s = job.refinement;
  s.braggPoints[ip] = 0;
  s.usedPoints[ip] = 0;
  const bool polynomial = PolynomialBackground(p);
  if (polynomial) FillBackground(job, ip);
  ConsoleLineWithNumber(job, " Calculation for pattern:", ip, 0.0f, 1);
  int next = 1;
  for (int i = 1; i <= p.NPTS; ++i) {
    const int code = p.OrderCode[i];
    if (code == kExcludedPoint) continue;
    ++s.usedPoints[ip];
    const int first = FirstReflection(code);
    const int last = LastReflection(code);
    if (first == 0 || last == 0) {
      if (polynomial) CalculatePoint(job, work, ip, i);
      continue;
    }
    ++s.braggPoints[ip];
    for (; next <= last; ++next) ComputeReflectionProfile(job, work, ip, next);
    CalculatePoint(job, work, ip, i);
  }
}

}  // namespace

void CalculatePatterns(Job& job, CycleWork& work, int cycle) {
  if (job.run.ICRYG != 0) return;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (job.run.IASG == 1 || cycle == 1) {
      ConsoleLineWithNumber(
          job, " Ordering reflections contributing to each point for pattern:", ip, 0.0f, 1);
      OrderReflections(job, ip);
    }
  }
  ConsoleLine(job, " Calculation of Yi for all points + Normal Matrix & Vector...");
  for (int ip = 1; ip <= job.run.NPATT; ++ip) CalculatePattern(job, work, ip);
}

void DampOscillations(Job& job, int fitted) {
  RefinementState& s = job.refinement;
  for (int i = 1; i <= fitted; ++i) {
    const float shift = s.normal.B[i];
    const float last = s.LastShift[i];
    const bool opposite = (shift < 0.0f) != (last < 0.0f);
    const float size = std::fabs(shift);
    if (opposite && size >= 0.8f * std::fabs(last) && size <= 1.2f * std::fabs(last)) {
      s.normal.B[i] = 0.5f * shift;
    } else {
      s.LastShift[i] = shift;
    }
  }
}

}  // namespace corvinet
