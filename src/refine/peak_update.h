// The update of the peak slots of a phase in a pattern, their clamps, the cell and the propagation
// vectors.
#pragma once

#include "records/dimension_limits.h"
#include "records/job.h"
#include "records/table1.h"
#include "refine/parameter_report.h"
#include "refine/update_pass.h"

namespace corvinet {

// What the walk over the peak slots leaves for the clamps and the report.
struct PeakSlots {
  Table1<ReportedValue, DimensionLimits::MPAR> shown;
  // The value moved on the path without limits (NRELL 0 or L above FittedCount).
  Table1<bool, DimensionLimits::MPAR> plainPath;
};

// Updates slots 1..MPAR of the phase in the pattern with R_pr.
PeakSlots ShiftPeakSlots(Job& job, int phase, int ip);

// The clamps of the peak slots after their shifts, in this order: X and Y of
// profiles 5 and 8 (plain path only), the scale factors, the extinction of
// time-of-flight data, Pref2 into [0, 1], Pref1 of the March-Dollase model.
void ClampPeakParameters(Job& job, int phase, int ip, const UpdatePass& pass, PeakSlots& slots);

// The whole peak step of a phase in a pattern: shifts, clamps, the cell
// rebuilt from slots 6..11, and the report.
void UpdatePeakParameters(Job& job, int phase, int ip, const UpdatePass& pass);

// The components of the propagation vectors of a phase, with R_pr.
void UpdatePropagationVectors(Job& job, int phase, const UpdatePass& pass);

}  // namespace corvinet
