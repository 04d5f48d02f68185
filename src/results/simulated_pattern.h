// The simulated pattern of a calculation job, optionally with Poisson noise, as integer counts.
#pragma once

#include "records/job.h"

namespace corvinet {

// The .sim file of a calculation job (|JOBTYP| > 1) with IDUM not 0; with
// IDUM negative Ytotal is first replaced by Poisson counts of its mean.
void WriteSimulatedPattern(Job& job, int ip);

// Rounds half away from zero and truncates.
int RoundedCount(float y);

}  // namespace corvinet
