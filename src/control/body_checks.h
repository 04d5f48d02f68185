// The checks that close the reading of the control file, and the intensity correction of a pattern.
#pragma once

#include "records/job.h"

namespace corvinet {

// Every parameter number from 1 to MAXS must be used by some code; stops otherwise.
void CheckParameterHoles(Job& job);

// Points of zero variance get intensity 1 and variance 1E6, with a message.
void FixZeroCounts(Job& job);

// Points and reflections share storage by default; stops when they would not
// fit. A large run bounds each by its own capacity.
void CheckPointCapacity(Job& job, int ip, int reflections, int extraReflections);

// Divides the data of a pattern by the correction table of its .cor file.
void ApplyIntensityCorrection(Pattern& pattern);

}  // namespace corvinet
