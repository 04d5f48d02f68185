// The families of refined parameters: which quantity of a peak a parameter moves.
#pragma once

#include <cstdint>

namespace corvinet {

// The reflection calculation stores, for each parameter, the derivative of
// the quantity of its family; the point loop multiplies it by the slope of
// the point's value with respect to that quantity.
enum Family : std::uint8_t {
  kNoFamily = 0,
  kIntensity,    // ln of the integrated intensity: scale, Bov, texture, roughness, structure
  kPosition,     // peak position: zero, displacements, wavelength, shifts
  kBraggAngle,   // peak position through the Bragg angle, with the Lp factor: cell, vectors
  kWidth,        // FWHM H (the left width of the split profile)
  kGaussWidth,   // Gaussian width of the TCH profile
  kWidthRight,   // right width of the split profile
  kWidthSquare,  // half the square of every Gaussian width term at once: the strain terms
  kShapeX,       // slot 15
  kShapeY,       // slot 16
  kShape1,       // slot 17
  kShp1,         // slot 41, as a shape parameter
  kShp2,         // slot 42, as a shape parameter
  kEtar,         // slot 49
  kXr,           // slot 50
  kAsym1,        // slots 14, 35, 36, 37
  kAsym2,
  kAsym3,
  kAsym4,
  kBackground,  // added at the point, not through a reflection
  kFamilyCount
};

}  // namespace corvinet
