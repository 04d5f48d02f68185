// The report of the table capacities that closes a run.
#pragma once

#include "records/channels.h"

namespace corvinet {

// Writes the capacities of the tables on `unit`.
void ReportDimensions(Channels& channels, int unit);

}  // namespace corvinet
