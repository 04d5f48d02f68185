// The watch over refined values that stop being numbers: such a run has diverged.
#pragma once

#include "records/job.h"

namespace corvinet {

// The number of the first refined parameter one of whose values (globals,
// background heights, profile slots, atom slots, propagation vectors) is not a
// finite number; 0 when all are finite.
int FirstNonFiniteParameter(const RunData& data);

// Stops the run as diverged when a refined value is not a finite number, naming
// the parameter. The stop comes before the final report: the control file is
// left as it was.
void StopOnNonFiniteParameters(Job& job, int cycle);

}  // namespace corvinet
