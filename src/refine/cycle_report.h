// The reports of a refinement cycle: the cycle head on the console, the diagonal of the normal
// matrix and the results of the cycle.
#pragma once

#include "records/job.h"

namespace corvinet {

struct BraggProfile;

// The head of cycle `cycle` on the console: the cycle number, the control file and the data files.
void ShowCycleHead(Job& job, int cycle);

// The diagonal of the normal matrix before its inversion (MAT 2).
void WriteDiagonal(Job& job, int cycle, int fitted);

// " Writing results for cycle" on the console and the results of the cycle on the reports.
void ReportCycle(Job& job, int cycle, const BraggProfile& profile);

}  // namespace corvinet
