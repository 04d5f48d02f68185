// The rebuild of a run's data from its member defaults, before each run.
#pragma once

#include "records/job.h"

namespace corvinet {

// Rebuilds every table of the run from its member defaults and sets the
// defaults the readers rely on (correction factors of 1).
void ResetRunData(RunData& data);

}  // namespace corvinet
