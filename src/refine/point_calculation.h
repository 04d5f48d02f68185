// One point of a constant-wavelength pattern: its calculated intensity and its row of the normal
// equations.
#pragma once

#include "records/job.h"
#include "refine/cycle_work.h"

namespace corvinet {

// Sums the contributions of the reflections K11..K21 that reach point i of
// pattern ip, adds the background rows, stores Ycalc and, for a refinement,
// sets the variance of maximum-likelihood weights and adds the point's
// weighted row to the normal equations.
void CalculatePoint(Job& job, CycleWork& work, int ip, int i);

// Adds the block of rows held in A and B (upper triangle) to the double
// sums SumA and SumB and clears it; the cycle calls it once more after the
// last point.
void FlushNormalBlock(NormalMatrix& normal, int fitted);

// The peak value times the asymmetry factor of a computed reflection at the
// abscissa x, without its integrated intensity; 0 outside its base.
float PeakValueAt(const Job& job, const RingEntry& entry, int ip, float x);

}  // namespace corvinet
