// The update of the atom table of a phase: positions, B and occupancy, betas, form-factor and user
// parameters.
#pragma once

#include "records/job.h"
#include "records/phase.h"
#include "refine/parameter_report.h"
#include "refine/update_pass.h"

namespace corvinet {

// The row before the first atom of a phase: the atoms of all phases lie one
// behind the other in job.atoms.
int AtomOffset(const Job& job, int phase);

// A phase whose atom slots are the parameters of a user model (|Jbt| 4).
bool IsUserModelPhase(const Phase& phase);

// Updates one atom slot with the relaxation factor of its class (R_at for
// slots 1 to 12, R_an above) and returns what the table shows.
ReportedValue UpdateAtomSlot(Job& job, AtomSite& atom, int slot);

// Sigma shown for slots 1 to 5 of an atom that is not a user model: a value
// above 0.99999994 would not fit the printed field and becomes 0.99999899.
float CappedPositionSigma(float sigma);

// The atoms of a phase, in the order positions (slots 1 to 5), betas (13 to
// 18), form-factor parameters (19 to 32); for a user model p1..p5, then
// p6..p16. Each group is printed after it is updated.
void UpdateAtoms(Job& job, int phase, const UpdatePass& pass);

}  // namespace corvinet
