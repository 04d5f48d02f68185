// The peaks of the point loop as the Bragg partition reads them after a cycle.
#pragma once

#include "records/job.h"
#include "refine/bragg_factors.h"
#include "refine/cycle_work.h"

namespace corvinet {

// Reach and peak value of each reflection as the points of the cycle used
// them; a reflection whose ring slot has been reused is computed again.
BraggProfile PointLoopProfile(Job& job, CycleWork& work);

}  // namespace corvinet
