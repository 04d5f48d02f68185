// Reading of a pattern's file of observed intensities, in the format that INSTR selects.
#pragma once

#include "records/job.h"

namespace corvinet {

// Opens the data file of pattern `ip` on unit 4, reads it in the format that
// the pattern's INSTR selects, fills X, Ytotal, Variance, CountNorm, NPTS,
// THMIN, STEP, THMAX, stepKind, Cnorm and the header values, writes its report
// lines on the .out file, closes unit 4 and applies the ISTEP reduction.
// A bad, short or empty file stops the run with the format's message and
// leaves the Pattern as it was.
void ReadPattern(Job& job, int ip);

// Keeps every ISTEP-th point (1, 1+ISTEP, ...): NPTS div ISTEP points, STEP
// times ISTEP, THMAX the position of the last point kept. Nothing for ISTEP
// of 1 or less.
void ReduceSteps(Pattern& pattern);

}  // namespace corvinet
