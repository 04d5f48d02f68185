// The name of a refined parameter by its number, in the words of the parameter report.
#pragma once

#include <string>

#include "records/job.h"

namespace corvinet {

// What refined parameter L moves, as the report names it, with the pattern,
// phase and atom that hold it: "Zero of pattern 1", "Scale of phase 1 in
// pattern 1", "x of atom O1 in phase 2". A parameter held by several values
// is named by the first one met (globals, profile slots, atoms, vectors);
// empty when no value of the model holds it.
std::string ParameterDescription(const Job& job, int L);

}  // namespace corvinet
