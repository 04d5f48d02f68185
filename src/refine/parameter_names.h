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

// The value that holds refined parameter L, as the description names it: the value itself
// (for a cell constant, the constant, not its metric coefficient) and, for a cell constant, its
// standard deviation from the cell statistics (otherwise -1: the caller takes that of L).
struct ParameterHolder {
  std::string name;    // empty when no value holds L
  float value = 0.0f;  // the value after the last shift
  float sigma = -1.0f;
};
ParameterHolder ParameterHolderOf(const Job& job, int L);

}  // namespace corvinet
