// Tabulated form factors: fit of the four-Gaussian coefficients to (s, f) points, and linear
// interpolation in a table.
#pragma once

#include <array>
#include <span>

#include "records/chemical_species.h"
#include "records/pattern.h"

namespace corvinet {

// Fits a1 b1 a2 b2 a3 b3 a4 b4 c to the points (s[i], f[i]) by two passes of
// a variable-metric (Davidon-Fletcher-Powell) descent from the start 1, 2, 3, ...
// Element 3 (a2) comes out negative, -1.0E-6, when the fit leaves it not positive.
// Returns the ten elements of the fitted vector; the first nine are the coefficients.
std::array<float, 10> FitGaussianCoefficients(std::span<const float> s, std::span<const float> f);

// Fits the points of a scattering entry and puts the coefficients in its coef.
void FitGaussianFormFactor(ScatteringEntry& entry);

// Linear interpolation in the tabulated form factor of a species (sTable, coeff,
// nTable points of rising s); the end values hold beyond the ends.
float InterpolateFormFactor(const ChemicalSpecies& species, float s);

}  // namespace corvinet
