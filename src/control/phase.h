// Phase and atom records of the control file, with the codewords that tie parameters to refinement.
#pragma once

#include <string>

#include "control/codeword.h"
#include "run/dimension_limits.h"
#include "run/table1.h"

namespace corvinet {

struct Phase {
  std::string PhaseTitle;        // at most 70 characters
  std::string SpaceGroupSymbol;  // at most 20 characters
  std::string SpaceGroupRemark;  // text behind the symbol, at most 10 characters
  int Nat = 0;                   // number of atoms
  int Jbt = 0;                   // type of phase
  int refinedAtomParameters = 0; // parameter numbers found among the atom codes
};

struct AtomSite {
  std::string label;    // atom label
  std::string species;  // scattering species label
  Table1<float, DimensionLimits::NAT_P> ATP;
  Table1<float, DimensionLimits::NAT_P> ATCtyped;  // codes as typed
  Table1<Codeword, DimensionLimits::NAT_P> ATC;    // decoded codes
};

}  // namespace corvinet
