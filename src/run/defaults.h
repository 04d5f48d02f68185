// The defaults pass that opens every run, and the report of the table capacities.
#pragma once

#include "run/job.h"

namespace corvinet {

// Clears every table of the run and sets the defaults the readers rely on.
// The driver, console and file-set state of the process are kept.
void ResetDefaults(Job& job);

// Writes the capacities of the tables on `unit`.
void ReportDimensions(Job& job, int unit);

}  // namespace corvinet
