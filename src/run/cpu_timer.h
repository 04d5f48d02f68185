// The CPU clock of a run and the CPU time written at its end.
#pragma once

#include "records/job.h"

namespace corvinet {

// Mode 1 records the start of the CPU clock; mode 2 records the end and, with
// `print`, writes the CPU time on the console, the report and the summary.
void CpuTimer(Job& job, int mode, bool print);

}  // namespace corvinet
