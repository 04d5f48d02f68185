// The check that no value read from the control file waits on a model this version lacks.
#pragma once

#include "records/job.h"

namespace corvinet {

// Stops when a phase holds a value that the reader accepts (and writes back)
// but no model of this version uses: the axial-divergence profile (Npr 12),
// non-zero or refined size and strain parameters, the hkl-dependent shift and
// asymmetry parameters, and the further parameters. The console and the
// reports name the phase and what it holds, then the stop box follows. The
// run calls it once the control file is read, before the first cycle.
// Time-of-flight patterns, which run no cycles, and the search (ICRYG 2) are
// left alone.
void StopOnUnmodelledInputs(Job& job);

}  // namespace corvinet
