// The placed atoms of a rigid-body phase kept up to date with its lines and its cell.
#pragma once

#include "records/job.h"

namespace corvinet {

// The pattern whose cell places the atoms of phase k: the first it contributes to.
int RigidCellPattern(const Job& job, int k);

// Places the atoms of the rigid-body phase k from its lines and rebuilds the
// slopes of their fields in the coded slots; the atoms of a chain group have
// their placed fractional coordinates written back on their lines. Does
// nothing for a phase that is not |Jbt| 4.
void RefreshRigidModel(Job& job, int k);

// The same for every rigid-body phase of the run.
void RefreshRigidModels(Job& job);

}  // namespace corvinet
