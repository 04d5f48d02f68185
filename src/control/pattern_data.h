// The data of a pattern as its control lines ask: read from its data file or built from the range
// of the cycle line, then its background.
#pragma once

#include "records/job.h"

namespace corvinet {

// The observed data of pattern ip (|JOBTYP| <= 1) or the abscissa of a
// calculated one, the capacity check of its points and its background.
void ReadPatternData(Job& job, int ip);

}  // namespace corvinet
