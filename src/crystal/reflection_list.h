// The listing of a phase's reflections on the report, as the control file's list option asks.
#pragma once

#include "records/job.h"

namespace corvinet {

// Writes the reflections of phase k in pattern ip on .out: number, key, h, k,
// l (and the propagation vector of satellites), multiplicity, widths, position
// and Lorentz-polarisation factor.
void WriteReflectionList(Job& job, int k, int ip);

// The width flag of a list made from the Laue class: 1 for the classes 3, 6
// to 9, 11 and 12, otherwise 2.
int LaueWidthFlag(int laue);

}  // namespace corvinet
