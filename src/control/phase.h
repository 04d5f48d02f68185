// Phase and atom records of the control file, with the codewords that tie parameters to refinement.
#pragma once

#include <string>

#include "run/dimension_limits.h"
#include "run/table1.h"

namespace corvinet {

// A refinement code as typed (for instance 21.5) decoded into a parameter
// number and a multiplier: n = trunc(|c|/10), multiplier = sign(c)(|c| - 10n).
struct Codeword {
  int parameter = 0;
  float multiplier = 0.0f;
};

struct Phase {
  std::string PhaseTitle;        // at most 70 characters
  std::string SpaceGroupSymbol;  // at most 20 characters
  std::string SpaceGroupRemark;  // text behind the symbol, at most 10 characters
  int Nat = 0;                   // number of atoms
  int Jbt = 0;                   // type of phase
};

struct AtomSite {
  std::string label;    // atom label
  std::string species;  // scattering species label
  Table1<float, DimensionLimits::NAT_P> ATP;
  Table1<float, DimensionLimits::NAT_P> ATC;  // codes as typed
};

}  // namespace corvinet
