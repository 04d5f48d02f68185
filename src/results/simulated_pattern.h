// The simulated pattern of a calculation job, optionally with Poisson noise, as integer counts.
#pragma once

#include "records/job.h"

namespace corvinet {

// The .sim file of a calculation job (|JOBTYP| > 1) with IDUM not 0; with
// IDUM negative Ytotal is first replaced by Poisson counts of its mean. The
// counts go ten to a line in fields of eight characters, wider when a count
// needs it, so that a blank always parts two counts.
void WriteSimulatedPattern(Job& job, int ip);

// Rounds half away from zero and truncates; beyond 1E18 the count is held there.
long long RoundedCount(float y);

}  // namespace corvinet
