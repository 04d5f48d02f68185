// The exports of a pattern in the final report: structure files, Fourier and SHELX files, the
// collected results and the reflection file, and the line naming what this version does not write.
#pragma once

#include <string>

#include "records/job.h"

namespace corvinet {

// The structure exports of the first pattern (phases with More and Jvi 1 or
// 2), the phase-number check (Jdi 2), the Fourier, SHELX and collected-results
// files of the pattern, and the opening of its reflection file (JLKH not 0).
void WritePatternExports(Job& job, int ip);

// A line on the .out file saying which file this version does not write.
void NotWrittenLine(Job& job, const std::string& what);

}  // namespace corvinet
