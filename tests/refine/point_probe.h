// Test helper: the calculated value of one point and its row of derivatives, from a fresh cycle.
#pragma once

#include <vector>

#include "observations/background.h"
#include "records/job.h"
#include "refine/cycle_work.h"
#include "refine/order_reflections.h"
#include "refine/parameter_families.h"
#include "refine/point_calculation.h"
#include "refine/reflection_calculation.h"

namespace corvinet::testing {

// Runs the steps of a cycle that point i of pattern 1 needs (families,
// background, order, every reflection) and returns Ycalc + Backg there; the
// first MAXS derivatives go to `derivative` when it is given.
inline double PointWithDerivatives(Job& j, CycleWork& work, int i, std::vector<float>* derivative) {
  BuildParameterFamilies(j);
  FillBackground(j, 1);
  OrderReflections(j, 1);
  for (int k = 1; k <= j.patterns[1].reflections.total; ++k) {
    ComputeReflectionProfile(j, work, 1, k);
  }
  CalculatePoint(j, work, 1, i);
  if (derivative != nullptr) {
    derivative->assign(j.refinement.PointDerivative.begin(),
                       j.refinement.PointDerivative.begin() + j.run.MAXS);
  }
  return static_cast<double>(j.patterns[1].Ycalc[i] + j.patterns[1].Backg[i]);
}

}  // namespace corvinet::testing
