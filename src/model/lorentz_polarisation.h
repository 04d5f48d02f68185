// Lorentz-polarisation factor of a reflection for every geometry and unit, with the .cor term.
#pragma once

#include "records/pattern.h"

namespace corvinet {

// The intensity correction C(x) of a pattern with ICORR not 0, at the position
// x. ICORR 1: linear interpolation in the table (corrX, corrY) of corrCount
// rows, the interval found by bisection; below the table the first interval,
// above it the last one, is extended. An empty table gives 1, a single row its
// value. Any other ICORR: the polynomial corrY[1] + corrY[2] x + corrY[3] x²
// + ... of corrCount coefficients.
float IntensityCorrection(const Pattern& p, float x);

// The Lorentz-polarisation factor Lp of a reflection, by the pattern's IXUNIT:
// - 1, time of flight: `sin2Theta` carries d and `twoTheta` the position;
//   Lp = 0.5 TwoSinTh d⁴, times the ICORR correction at the position.
// - 2, energy dispersive: `sin2Theta` carries d; Lp = d².
// - any other: the angle form, with `sin2Theta` = sin²θ, `cosTheta` = cosθ
//   and `twoTheta` the position in degrees. It combines the low-angle scale
//   S of Sent0, the position-sensitive detector term of ILOR 1, the
//   absorption of ILOR 0 and 2, the Lorentz factor of the geometry, the
//   polarisation of an X-ray pattern by INSTR and ILOR (none for neutrons),
//   and the ICORR correction at the position.
float LorentzPolarisation(const Pattern& p, float sin2Theta, float cosTheta, float twoTheta);

// Lp of a reflection of 1/d² = q at wavelength w (1 or 2) placed at
// `position`, in the unit of the pattern: d for IXUNIT 1 and 2, sin²θ =
// LAMBDA[w]² q/4 otherwise. Without a Bragg angle (sin²θ not inside 0..1)
// the angle form has no value and 0 is returned.
float ReflectionLorentzPolarisation(const Pattern& p, double q, int w, float position);

}  // namespace corvinet
