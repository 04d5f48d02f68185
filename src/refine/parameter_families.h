// Which quantity of a peak each refined parameter moves: intensity, position, widths, shape or
// asymmetry.
#pragma once

#include <cstdint>

#include "records/job.h"

namespace corvinet {

// The reflection calculation stores, for each parameter, the derivative of
// the quantity of its family; the point loop multiplies it by the slope of
// the point's value with respect to that quantity.
enum Family : std::uint8_t {
  kNoFamily = 0,
  kIntensity,   // ln of the integrated intensity: scale, Bov, texture, roughness, structure
  kPosition,    // peak position: zero, displacements, wavelength, cell, shifts
  kWidth,       // FWHM H (the left width of the split profile)
  kGaussWidth,  // Gaussian width of the TCH profile
  kWidthRight,  // right width of the split profile
  kShapeX,      // slot 15
  kShapeY,      // slot 16
  kShape1,      // slot 17
  kShp1,        // slot 41, as a shape parameter
  kShp2,        // slot 42, as a shape parameter
  kEtar,        // slot 49
  kXr,          // slot 50
  kAsym1,       // slots 14, 35, 36, 37
  kAsym2,
  kAsym3,
  kAsym4,
  kBackground,  // added at the point, not through a reflection
  kFamilyCount
};

// The family of profile slot s for a peak of ProfileCode `code`.
Family FamilyOfProfileSlot(int s, int code);

// The family of global slot n of a pattern.
Family FamilyOfGlobalSlot(int n);

// Fills job.refinement.family for parameters 1..MAXS from all the codes of
// the model; a parameter held by several values takes the family of the
// first one met (globals, profile slots, atoms, vectors).
void BuildParameterFamilies(Job& job);

}  // namespace corvinet
