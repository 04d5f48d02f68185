// One chemical species of a phase in a pattern: the scattering data its atoms share.
#pragma once

#include <string>

#include "records/dimension_limits.h"
#include "records/table1.h"

namespace corvinet {

// How a species was given.
namespace SpeciesKind {
constexpr int Tabulated = 0;     // a table of (s, f) points
constexpr int Coefficients = 1;  // explicit coefficients
constexpr int ByLabel = 2;       // found in a fixed table by its label
}  // namespace SpeciesKind

struct ChemicalSpecies {
  std::string label;  // 4 characters, in the case of the table that gave it
  // The analytic coefficients (9 for X-rays, 7 for magnetic form factors) or,
  // for a tabulated form factor, its f values.
  Table1<float, DimensionLimits::N_FORM> coeff;
  Table1<float, DimensionLimits::N_FORM> sTable;  // s values of a tabulated form factor
  int nTable = 0;                                 // points of a tabulated form factor
  float fp = 0.0f;                                // f' (X-rays) or the scattering length b
  float fpp = 0.0f;                               // f''
  int kind = SpeciesKind::Tabulated;
};

}  // namespace corvinet
