// The update of the refined point heights of an interpolated background and their report lines.
#pragma once

#include <string>
#include <vector>

#include "records/job.h"
#include "refine/parameter_report.h"

namespace corvinet {

// One refined height as the global table shows it.
struct ShownHeight {
  int point = 0;  // k of BackPos[k], BackInt[k]
  ReportedValue shown;
};

// Shifts every refined height BackInt[k] of pattern ip (linear or spline
// background) by its share of the solution, with R_gl and the hard limits
// like the global slots, and returns what the table shows for each of them.
// The background itself is recomputed from the new heights when the next
// cycle starts (FillBackground), so that this cycle's reports keep the
// background its points were calculated with.
std::vector<ShownHeight> ShiftBackgroundHeights(Job& job, int ip);

// The row name of height k in the global table: "BckPt" and k.
std::string BackgroundHeightName(int point);

}  // namespace corvinet
