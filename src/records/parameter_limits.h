// Hard limits of refined parameters, read from the closing lines of the control file, with what the
// update pass keeps per parameter and per cell.
#pragma once

#include "records/dimension_limits.h"
#include "records/run_table.h"
#include "records/table1.h"

namespace corvinet {

// Signed numbers of the parameters that went out of their limits in one update
// pass: -L for the lower limit, +L for the upper. At most MSZ entries.
// The parameter tables hold the default capacity and grow with a large run.
struct LimitBreaks {
  RunTable1<int> entry{DimensionLimits::kDefaultMSZ};
  int count = 0;
};

// What the update pass derives for the cell of a phase in a pattern, kept for
// the final report: standard deviations of a, b, c, alpha, beta, gamma, the
// shift of each constant in the last pass, the volume's standard deviation and
// the variance of the scale factor.
struct CellStatistics {
  Table1<float, 6> sigma;
  Table1<float, 6> shift;
  float volumeSigma = 0.0f;
  float scaleVariance = 0.0f;
};

struct ParameterLimits {
  RunTable1<float> low{DimensionLimits::kDefaultMSZ};
  RunTable1<float> high{DimensionLimits::kDefaultMSZ};
  RunTable1<int> limited{DimensionLimits::kDefaultMSZ};  // 1 when the parameter has limits

  // Records of one update pass, used when NRELL > 0. LimitTouched(L) is set by
  // the first value holding L; LimitedShift(L) is the shift that value took.
  RunTable1<int> LimitTouched{DimensionLimits::kDefaultMSZ};
  RunTable1<float> LimitedShift{DimensionLimits::kDefaultMSZ};
  LimitBreaks breaks;

  // Cell statistics of each phase in each pattern after the last pass.
  Table2<CellStatistics, DimensionLimits::NPHT, DimensionLimits::NPATT> cells;
};

}  // namespace corvinet
