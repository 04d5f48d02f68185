// The update of the global slots of a pattern and the recoveries that follow it.
#pragma once

#include "records/dimension_limits.h"
#include "records/job.h"
#include "records/table1.h"
#include "refine/parameter_report.h"
#include "refine/update_pass.h"

namespace corvinet {

// Whether the pattern has the microabsorption correction: MORE set and the
// geometry (ILOR) 0 or 3.
bool HasMicroabsorption(const Pattern& pattern);

// Updates the NGL global slots of the pattern with R_gl, then: the refined
// wavelength copied into both wavelengths; the transforming coefficients c
// and d reset to 0 (sigma 0.9999) when out of range; the microabsorption
// clamps with their warnings; Dtt1 and Dtt2 copied into the conversion
// constants for time of flight and energy. Returns what the table shows.
Table1<ReportedValue, DimensionLimits::NGL> ShiftGlobalParameters(Job& job, int ip,
                                                                  const UpdatePass& pass);

// The global step of a pattern: the update of the global slots and of the
// refined background heights, and their table (the heights after the slots).
void UpdateGlobalParameters(Job& job, int ip, const UpdatePass& pass);

}  // namespace corvinet
