// Reading of the scattering entries of a pattern.
#pragma once

#include "records/job.h"

namespace corvinet {

// Scattering entries of pattern ip (lines after the excluded regions).
void ReadScatteringEntries(Job& job, int ip);

}  // namespace corvinet
