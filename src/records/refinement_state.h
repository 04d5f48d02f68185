// What the refinement cycles keep between points and cycles: normal equations, derivative ring,
// work arrays.
#pragma once

#include <cstdint>

#include "records/dimension_limits.h"
#include "records/normal_matrix.h"
#include "records/table1.h"

namespace corvinet {

struct RefinementState {
  NormalMatrix normal;
  SolverWork solver;
  // Per-reflection derivatives: the row of reflection k is (k mod NOV) + 1.
  Table2<float, DimensionLimits::NOV, DimensionLimits::MSZ> DerivativeRing;
  Table1<float, DimensionLimits::MSZ> PointDerivative;
  Table1<float, DimensionLimits::MSZ> LastShift;
  // Family of each parameter number (see parameter_families.h).
  Table1<std::uint8_t, DimensionLimits::MSZ> family;
  // First and last reflection reaching each point while the order table is built.
  Table1<int, DimensionLimits::IDSZ> first;
  Table1<int, DimensionLimits::IDSZ> last;
  int CycleNumber = 0;
  int DisplayedCycle = 0;
  int EndMarker = 0;
  float PreviousChi2 = 1.0e38f;
  float GlobalChi2 = 0.0f;
  float globalResidualSum = 0.0f;
  Table1<int, DimensionLimits::NPATT> braggPoints;
  Table1<int, DimensionLimits::NPATT> usedPoints;
};

}  // namespace corvinet
