// Hard limits of refined parameters, read from the closing lines of the control file.
#pragma once

#include "run/dimension_limits.h"
#include "run/table1.h"

namespace corvinet {

struct ParameterLimits {
  Table1<float, DimensionLimits::MSZ> low;
  Table1<float, DimensionLimits::MSZ> high;
  Table1<int, DimensionLimits::MSZ> limited;  // 1 when the parameter has limits
};

}  // namespace corvinet
