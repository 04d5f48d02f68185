// Range of a pattern in (sin theta/lambda)^2, wavelengths, and positions in each unit.
#pragma once

#include "records/pattern.h"

namespace corvinet {

// Limits of the generation in s² = (sin theta/lambda)^2 = 1/(4 d²).
struct ReflectionRange {
  double sLow = 0.0;
  double sHigh = 0.0;
};

// The Caglioti widths of the first reflection class that set the upper
// margin in two-theta.
struct MarginWidths {
  float U = 0.0f, V = 0.0f, W = 0.0f;
};

// The limits of the pattern's range, with the margin of the peak tails for
// two-theta (none when `noMargin`, the fixed-scale profile matching).
ReflectionRange RangeOfPattern(const Pattern& p, const MarginWidths& widths, bool noMargin);

// 2 when the second wavelength is a distinct line of positive ratio, else 1.
int WavelengthCount(const Pattern& p);

// Where a reflection of 1/d² = q falls for wavelength w (1 or 2).
struct ReflectionPlace {
  bool valid = false;  // false: no Bragg angle (two-theta) or no spacing
  double position = 0.0;
  double tanTheta = 0.0;
};

// Position = zero + main term + displacement, with `hklShift` the shift that
// depends on the indices (0 when the phase has none).
ReflectionPlace PlaceReflection(const Pattern& p, double q, int w, double hklShift);

// Whether a position lies inside [THMIN, THMAX], both ends included.
bool InsidePattern(const Pattern& p, float position);

}  // namespace corvinet
