// One point of a constant-wavelength pattern: its calculated intensity and its row of the normal equations.
#pragma once

#include "refine/cycle_work.h"
#include "run/job.h"

namespace corvinet {

// Sums the contributions of the reflections K11..K21 that reach point i of
// pattern ip, adds the background rows, stores Ycalc and, for a refinement,
// sets the variance of maximum-likelihood weights and adds the point's
// weighted row to the normal equations.
void CalculatePoint(Job& job, CycleWork& work, int ip, int i);


}  // namespace corvinet
