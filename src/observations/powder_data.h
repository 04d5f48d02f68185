// Reading of a pattern's file of observed intensities, in the format that INSTR selects.
#pragma once

#include "records/job.h"

namespace corvinet {

// Opens the data file of pattern `ip` on unit 4, reads it in the format that
// the pattern's INSTR selects, fills X, Ytotal, Variance, CountNorm, NPTS,
// THMIN, STEP, THMAX, stepKind, Cnorm and the header values, writes its report
// lines on the .out file and closes unit 4. With a step reduction ISTEP above
// 1 it keeps every ISTEP-th point (1, 1+ISTEP, ...): NPTS div ISTEP points,
// STEP times ISTEP, THMAX the last point kept; the file may then hold ISTEP
// times the capacity of a pattern.
// A bad, short or empty file stops the run with the format's message and
// leaves the Pattern as it was.
void ReadPattern(Job& job, int ip);

}  // namespace corvinet
