// The report of the table capacities that closes a run.
#pragma once

#include "records/channels.h"
#include "records/dimension_limits.h"

namespace corvinet {

// Writes the capacities in force, `limits`, on `unit`.
void ReportDimensions(Channels& channels, const DimensionLimits& limits, int unit);

}  // namespace corvinet
