// The results pass of a refinement cycle: every refined value takes its shift, and values, shifts
// and sigmas are printed.
#pragma once

#include <string>

#include "records/job.h"
#include "refine/bragg_factors.h"

namespace corvinet {

// "M.L." for a pattern weighted by the model (IWGT > 0), "L.S." otherwise.
std::string MethodLabel(const Pattern& pattern);

// The pass of cycle `cycle`, called after the equations are solved (A holds
// the covariance, B the shifts). In order: the limit records cleared; the
// pass headings and, after a convergence (endMarker 123), its messages; the
// reliability indices of each pattern (ICRYG 0); for each phase its atoms,
// magnetic moments, propagation vectors and, for each pattern it contributes
// to, the peak parameters and the cell; for each pattern (ICRYG 0) the global
// parameters, the limit report and the reliability report; the global chi2;
// the Bragg factors (with `profile`); the Fourier-filter background refresh.
// Lines go to the .out file at each cycle when ISHOR is 0 and in the last
// pass, to the .sum file in the last pass only.
void WriteCycleResults(Job& job, int cycle, int endMarker, const BraggProfile& profile);

}  // namespace corvinet
