// The exports of a pattern in the final report: structure plot files, the SHELX file, the map
// template, the Fourier file, the collected results and the reflection file; and the line naming
// what this version does not write.
#pragma once

#include <string>

#include "records/job.h"

namespace corvinet {

// The structure plot files of the first pattern (phases with More and Jvi 1 or 2), the
// phase-number check (Jdi 2), the SHELX file (|JFOU| 2) or map template (3, 4), the collected
// results (JCIL 2), and the opening of the Fourier file (JFOU not 0, its rows written with the
// reflection rows) and of the reflection file (JLKH not 0).
void WritePatternExports(Job& job, int ip);

// A line on the .out file saying which file this version does not write.
void NotWrittenLine(Job& job, const std::string& what);

}  // namespace corvinet
