// The atoms that the exports of a phase write: its atom lines, or the atoms its rigid-body
// groups place, each with the standard deviations of its slots.
#pragma once

#include <vector>

#include "records/job.h"

namespace corvinet {

struct ExportedAtom {
  AtomSite site;                                 // label, species and slots as written
  Table1<double, DimensionLimits::NAT_P> sigma;  // standard deviation of each slot, 0 when fixed
};

// The atoms of phase k: for a rigid-body phase (|Jbt| 4) the placed atoms of
// its groups and its free atoms (the lines of the groups' parameters left
// out), with the sigmas their group parameters give them; for any other phase
// its atom lines with the sigmas of their codes.
std::vector<ExportedAtom> ExportedAtoms(const Job& job, int k);

}  // namespace corvinet
