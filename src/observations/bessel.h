// Bessel functions of the first kind of orders 0 and 1, by rational and asymptotic approximations.
#pragma once

namespace corvinet {

// J0(x): a rational function of x^2 below |x| = 8, the phase-amplitude form
// above; absolute error of the order of 1e-8. J0(0) = 1.
float BesselJ0(float x);

// J1(x), built as J0; odd in x, J1(0) = 0.
float BesselJ1(float x);

}  // namespace corvinet
