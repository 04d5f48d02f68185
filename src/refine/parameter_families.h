// Which quantity of a peak each refined parameter moves: intensity, position, widths, shape or
// asymmetry.
#pragma once

#include "records/job.h"
#include "records/parameter_family.h"
#include "records/profile_slots.h"

namespace corvinet {

// The family of global slot n of a pattern.
Family FamilyOfGlobalSlot(int n);

// Fills job.refinement.family for parameters 1..MAXS from all the codes of
// the model; a parameter held by several values takes the family of the
// first one met (globals, profile slots, atoms, vectors).
void BuildParameterFamilies(Job& job);

}  // namespace corvinet
