// Interpolation in the tabulated form factor of a chemical species.
#include "model/chemical_species.h"

namespace corvinet {

float InterpolateFormFactor(const ChemicalSpecies& species, float s) {
  const int n = species.nTable;
  if (s <= species.sTable[1]) return species.coeff[1];
  if (s >= species.sTable[n]) return species.coeff[n];
  for (int i = 1; i < n; ++i) {
    if (species.sTable[i] <= s && s < species.sTable[i + 1]) {
      const float m =
          (species.coeff[i + 1] - species.coeff[i]) / (species.sTable[i + 1] - species.sTable[i]);
      return species.coeff[i] - species.sTable[i] * m + s * m;
    }
  }
  return species.coeff[n];
}

}  // namespace corvinet
