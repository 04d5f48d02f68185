// The mass of the contents of a cell from its atom lines: the weight term of the phase fractions.
#pragma once

#include <string>

#include "records/job.h"

namespace corvinet {

// The mass of the cell contents of phase k, Z times the formula weight (g/mol), or the label
// that names no element.
struct CellMass {
  double mass = 0.0;         // sum over atoms of Occ x weight x order of the general position
  std::string unknownLabel;  // the first species label that names no element; empty if none
};

// The cell mass of phase k from its atoms. The occupancies are those of the atom lines: the
// chemical occupancy times the site multiplicity over the order of the general position, so
// that order times the sum of Occ x atomic weight is the mass of the cell contents. Atoms that
// bear a moment in a nuclear and magnetic phase are named by their magnetic label (MFE3: Fe).
CellMass CellMassOfPhase(const Job& job, int k);

}  // namespace corvinet
