// One pass over the points of a pattern, chunk by chunk, on the threads of the point loop.
#pragma once

#include "records/job.h"
#include "refine/cycle_work.h"

namespace corvinet {

// Below this much work per pass (points times fitted parameters plus a few
// columns for the profile sums) the meetings of the threads cost more than
// they save, and a machine busy with other work makes them wait for a time
// slice: such jobs run on one thread unless CORVINET_THREADS asks otherwise.
inline constexpr long long kThreadWorkThreshold = 1000000;
inline constexpr long long kThreadWorkColumns = 16;

// Whether the patterns are large enough for the point loop to share them
// among the cores.
bool WorthSeveralThreads(const Job& job);

// The threads of the point loop: those of the work if set, else
// CORVINET_THREADS as the driver read it, else one per core for a job worth
// it (one thread otherwise).
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
