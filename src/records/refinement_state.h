// What the refinement cycles keep between points and cycles: normal equations, derivative ring,
// work arrays.
#pragma once

#include <cstdint>
#include <string>

#include "records/dimension_limits.h"
#include "records/normal_matrix.h"
#include "records/table1.h"

namespace corvinet {

// The window of the live plot: it lives from the first plotted cycle to the end of the run.
struct LivePlotWindow {
  bool open = false;  // the window exists
  std::string title;  // its title
  int pages = 0;      // pages drawn in the run
};

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
  LivePlotWindow plotWindow;  // the live plot of the cycles (LST2 = 4)
};

}  // namespace corvinet
