// Reading of the instrument lines, cycle lines, background points, excluded regions and
// scattering entries of every pattern.
#pragma once

#include "records/job.h"

namespace corvinet {

// Instrument lines, cycle lines, background points, excluded regions and
// scattering entries of every pattern.
void ReadInstrumentLines(Job& job);

}  // namespace corvinet
