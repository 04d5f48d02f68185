// Atom lines of a phase: reading them with their codes, and decoding the codes into parameters.
#pragma once

#include "records/job.h"

namespace corvinet {

// Reads the `Nat` atoms of phase k (the lines depend on the kind of phase),
// echoes them to the report and sets the phase's atom offset.
void ReadAtoms(Job& job, int k);

// Decodes the typed codes of the atoms of phase k, sets `phaseAtomKind` and
// applies the helical rules of `Hel`. A code naming a parameter beyond the
// capacity stops the run.
void DecodeAtomCodes(Job& job, int k);

}  // namespace corvinet
