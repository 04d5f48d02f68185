// One chemical species of a phase in a pattern: its form factor, anomalous terms or scattering
// length.
#pragma once

#include <string>

#include "run/table1.h"

namespace corvinet {

struct ChemicalSpecies {
  static constexpr int kTablePoints = 60;
  std::string label;                   // 4 characters, in the case of the table that gave it
  Table1<float, kTablePoints> coeff;   // analytic coefficients, or f of a tabulated form factor
  Table1<float, kTablePoints> sTable;  // s of a tabulated form factor
  int nTable = 0;                      // points of a tabulated form factor
  float fp = 0.0f;                     // f' (X-rays) or the scattering length b (neutrons)
  float fpp = 0.0f;                    // f''
  int kind = 0;                        // 0 tabulated, 1 explicit coefficients, 2 found by label
};

// Linear interpolation in a tabulated form factor; outside the table the end
// values hold.
float InterpolateFormFactor(const ChemicalSpecies& species, float s);

}  // namespace corvinet
