// The user's numerical peak shapes (code 9): interpolation in the table of the shape file.
#pragma once

#include "records/pattern.h"

namespace corvinet {

// The shape at one normalised distance u = delta/H, interpolated linearly
// within the abscissa interval of u and, with more than one shape, linearly
// between the two shapes whose angles bracket the point.
struct NumericalSample {
  float y = 0.0f;       // the shape value (Omega times H)
  float slope = 0.0f;   // dy/du of the interpolated shape
  float dy = 0.0f;      // the stored derivative column at u
  bool inside = false;  // u lies within the table's abscissae
};

// The sample at the point's position pos (degrees) and distance u. A u outside
// [x_1, x_n) gives an empty sample. A position outside the shapes' angles takes
// the end shape.
NumericalSample NumericalShapeAt(const NumericalProfile& table, float pos, float u);

// dOmega of the numerical shape: -0.5 dy/(y u), or 0 when |u| is below
// 1.0E-05 or y below 1.0E-05.
float NumericalLogSlope(const NumericalSample& sample, float u);

}  // namespace corvinet
