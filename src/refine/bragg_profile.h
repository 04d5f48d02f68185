// The peaks of the point loop as the Bragg partition reads them after a cycle.
#pragma once

#include "records/job.h"
#include "refine/bragg_factors.h"
#include "refine/cycle_work.h"

namespace corvinet {

// Reach and peak value of each reflection as the points of the cycle used
// them; a reflection whose ring slot has been reused is computed again.
BraggProfile PointLoopProfile(Job& job, CycleWork& work);

// The same while the parameters are those of the last pass over the points:
// a reflection whose ring slot has been reused takes the entry the pass
// kept of it instead of being computed again.
BraggProfile PassProfile(Job& job, CycleWork& work);

}  // namespace corvinet
