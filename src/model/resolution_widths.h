// The instrumental widths of a reflection from the resolution function of its pattern.
#pragma once

#include "records/resolution_function.h"

namespace corvinet {

// The widths a resolution function adds to a reflection.
struct InstrumentWidths {
  float gaussian2 = 0.0f;   // Gaussian width squared
  float lorentzian = 0.0f;  // Lorentzian width
};

// The widths at `position` (degrees) with tan(theta) `tanTheta`, for wavelength `wavelength`
// (1 or 2) of laws 1 to 3. A table takes the linear interpolation of the first interval that
// holds the position (a position on a row starts its interval), the end rows outside it; the
// Gaussian width is squared after the interpolation.
InstrumentWidths ResolutionWidths(const ResolutionFunction& f, int wavelength, float position,
                                  float tanTheta);

}  // namespace corvinet
