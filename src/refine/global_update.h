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

// Sets the first wavelength of the pattern to `lambda1` and moves the second
// with it, so that the ratio LAMBDA[2]/LAMBDA[1] of a doublet is kept (a
// single wavelength, LAMBDA[2] = LAMBDA[1], stays single).
void MoveWavelengths(Pattern& pattern, float lambda1);

// Updates the NGL global slots of the pattern with R_gl, then: the refined
// wavelength moves both wavelengths at their fixed ratio; the transforming coefficients c
// and d reset to 0 (sigma 0.9999) when out of range; the microabsorption
// clamps with their warnings; Dtt1 and Dtt2 copied into the conversion
// constants for time of flight and energy. Returns what the table shows.
Table1<ReportedValue, DimensionLimits::NGL> ShiftGlobalParameters(Job& job, int ip,
                                                                  const UpdatePass& pass);

// The global step of a pattern: the update of the global slots and of the
// refined background heights, and their table (the heights after the slots).
void UpdateGlobalParameters(Job& job, int ip, const UpdatePass& pass);

}  // namespace corvinet
