// The calculation of one reflection for a cycle: position, widths, intensity factors and derivative
// row.
#pragma once

#include "records/job.h"
#include "refine/cycle_work.h"

namespace corvinet {

// Computes reflection k of pattern ip (constant wavelength) from the
// parameters as they stand: its Bragg position, widths, peak constants,
// corrections and integrated intensity go to its ring entry, and the
// derivative of the quantity of each parameter's family to its ring row.
// Without `derivatives` the row of a constant-wavelength reflection is left
// zero: what its peak and intensity are, for a reflection computed again
// after the pass.
void ComputeReflectionProfile(Job& job, CycleWork& work, int ip, int k, bool derivatives = true);

// Computes the structure factors (and their derivatives) of reflections
// first..last of a constant-wavelength pattern side by side on `threads`
// threads, for ComputeReflectionProfile to take in this pass; each is
// computed as ComputeReflectionProfile would, so the results are the same.
// A reflection that would stop the run is left for ComputeReflectionProfile.
void ComputeStructureFactorsAhead(Job& job, CycleWork& work, int ip, int first, int last,
                                  int threads);

// The widths of every reflection of pattern ip from the parameters read, so
// that the first order table knows how far each peak reaches (constant
// wavelength; the cycles recompute them).
void FillReflectionWidths(Job& job, int ip);

// What the parameters as they stand make of the peaks of a pattern.
enum class PeakValidity {
  kValid,
  kNegativeWidth,     // a square of a width at or below 0
  kMixingOutside,     // a mixing parameter eta outside 0..1
  kNonPositiveDecay,  // a time-of-flight alpha or beta at or below 0
};

// The first fault of the peaks of the reflections of pattern ip, found
// without stopping and without changing them.
PeakValidity CheckPeakShapes(const Job& job, int ip);

}  // namespace corvinet
