// The check that no value read from the control file waits on a model this version lacks.
#pragma once

#include "records/job.h"

namespace corvinet {

// Stops when a phase holds a value that the reader accepts (and writes back)
// but no model of this version uses: the axial-divergence profile (Npr 12),
// non-zero or refined size, strain and shift parameters that the models the
// phase selects (Str, Strain-Model, Size-Model, ModS) do not read, size terms
// with a profile other than TCH, the hkl-dependent asymmetry parameter, and
// the further parameters, restraints in a rigid-body phase; on a time-of-flight pattern also Xt,
// Yt, Z0, LSiz and any size, strain or shift model. The console and the reports name the phase and
// what it holds, then the stop box follows. The run calls it once the control file is read, before
// the first cycle. The search (ICRYG 2) is left alone.
void StopOnUnmodelledInputs(Job& job);

}  // namespace corvinet
