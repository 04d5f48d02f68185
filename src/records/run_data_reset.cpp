// The rebuild of a run's data from its member defaults, before each run.
#include "records/run_data_reset.h"

#include <algorithm>
#include <memory>

namespace corvinet {

void ResetRunData(RunData& data) {
  // The capacities are those of the process: they outlive the run.
  const DimensionLimits dimensions = data.dimensions;
  // The run records are too large for a temporary on the stack: rebuilt in place.
  std::destroy_at(&data);
  std::construct_at(&data);
  data.dimensions = dimensions;
  // Member defaults give zeros, blanks and the table of defaults; the
  // correction tables start as factors of 1.
  for (Pattern& pattern : data.patterns) {
    pattern.reflections.capacity = dimensions.IRS;
    pattern.corrX.Fill(1.0f);
    pattern.corrY.Fill(1.0f);
  }
}

void GrowParameterTables(RunData& data, int n) {
  n = std::min(n, data.dimensions.MSZ);
  RefinementState& r = data.refinement;
  if (n <= r.PointDerivative.size()) return;
  NormalMatrix& m = r.normal;
  m.A.Resize(n, n);
  m.SumA.Resize(n, n);
  r.solver.Work.Resize(n, n);
  r.DerivativeRing.Resize(DimensionLimits::NOV, n);
  for (RunTable1<float>* t : {&m.B, &r.PointDerivative, &r.LastShift, &data.limits.low,
                              &data.limits.high, &data.limits.LimitedShift}) {
    t->Grow(n);
  }
  for (RunTable1<double>* t : {&m.SumB, &r.solver.Rhs, &r.solver.RowScale}) t->Grow(n);
  for (RunTable1<int>* t : {&r.solver.Perm, &data.limits.limited, &data.limits.LimitTouched,
                            &data.limits.breaks.entry}) {
    t->Grow(n);
  }
  r.family.Grow(n);
}

void GrowPointTables(RunData& data, int ip, int n) {
  GrowPointTables(data.patterns[ip], n);
  data.refinement.first.Grow(n);
  data.refinement.last.Grow(n);
}

}  // namespace corvinet
