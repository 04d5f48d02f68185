// The CPU clock of a run and the CPU time written at its end.
#pragma once

#include "records/job.h"

namespace corvinet {

// What a call of the CPU timer does.
enum class CpuTimerMode {
  kStart,  // records the start of the CPU clock
  kEnd,    // records the end and, with `print`, writes the time used
};

// Records the start or the end of the CPU clock; at the end with `print`,
// writes the CPU time on the console, the report and the summary.
void CpuTimer(Job& job, CpuTimerMode mode, bool print);

}  // namespace corvinet
