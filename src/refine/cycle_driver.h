// The refinement cycles: order tables, reflections and points, equations, shifts and the stop
// tests.
#pragma once

#include "records/job.h"

namespace corvinet {

// Runs NCY cycles (or one pass for a pattern calculation). A divergence
// under IDUM = 2 stops the run.
void RunCycles(Job& job);

// The same with the caller's working store, so that the peaks of the last
// cycle remain available to the final report.
void RunCycles(Job& job, struct CycleWork& work);

// One pass over the points of every pattern: reflections computed lazily,
// Ycalc filled, and for a refinement the normal equations accumulated.
void CalculatePatterns(Job& job, struct CycleWork& work, int cycle);

// The halving of oscillating shifts (a shift within 0.8 to 1.2 times the last
// one and of the other sign); LastShift keeps the undamped shifts.
void DampOscillations(Job& job, int fitted);

}  // namespace corvinet
