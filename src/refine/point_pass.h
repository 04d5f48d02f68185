// One pass over the points of a pattern, chunk by chunk, on the threads of the point loop.
#pragma once

#include "records/job.h"
#include "refine/cycle_work.h"

namespace corvinet {

// The threads of the point loop: those of the work if set, else
// CORVINET_THREADS as the driver read it, else one per core.
int PointThreads(const Job& job, const CycleWork& work);

// Sizes the work of the point loop for the fitted parameters and the
// threads, once per pass and before its first point.
void PreparePointPass(Job& job, CycleWork& work);

// Walks the points of pattern ip in chunks of consecutive points: the
// reflections the chunk needs are computed in order, its points are
// calculated side by side, and their rows are added to the normal equations
// in the order of the points. The results do not depend on the number of
// threads.
void CalculatePatternPoints(Job& job, CycleWork& work, int ip);

}  // namespace corvinet
