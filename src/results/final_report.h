// The final report of a run: new control file, correlation matrix, the blocks of each pattern and
// the calls of the profile and plot writers.
#pragma once

#include "records/job.h"

namespace corvinet {

struct CycleWork;

// Everything the report writes, in its order; called once after cycles that
// ended normally. The peaks of the reflections come from `work`, the ring of
// the last cycle, or are computed again where the ring no longer holds them.
void FinalReport(Job& job, CycleWork& work);

// The same with a fresh ring: every peak is computed again.
void FinalReport(Job& job);

}  // namespace corvinet
