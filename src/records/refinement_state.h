// What the refinement cycles keep between points and cycles: normal equations, derivative ring,
// work arrays.
#pragma once

#include <cstdint>
#include <string>

#include "records/dimension_limits.h"
#include "records/normal_matrix.h"
#include "records/run_table.h"
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
  // The tables of parameters hold the default capacity and grow, before the
  // cycles, to the parameters of a large run (GrowParameterTables).
  RunTable2<float> DerivativeRing{DimensionLimits::NOV, DimensionLimits::kDefaultMSZ};
  RunTable1<float> PointDerivative{DimensionLimits::kDefaultMSZ};
  RunTable1<float> LastShift{DimensionLimits::kDefaultMSZ};
  // Family of each parameter number (see parameter_families.h).
  RunTable1<std::uint8_t> family{DimensionLimits::kDefaultMSZ};
  // First and last reflection reaching each point while the order table is
  // built; as long as the longest pattern.
  RunTable1<int> first{DimensionLimits::kDefaultIDSZ};
  RunTable1<int> last{DimensionLimits::kDefaultIDSZ};
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
