// The five-point low-angle average of the pseudo-Voigt (asymmetry model 1).
#pragma once

#include "model/peak_shape.h"

namespace corvinet {

// The mean of pV over the distances a + b t^2, t = 0, 1/4, 1/2, 3/4, 1, by
// Boole's weights 7, 32, 12, 32, 7 over 90, divided by H; a = delta/H and
// b = asy1/(H tan2Theta). The mixing and the width are those of the shape
// (of the point's side for code 12); dOmega is the same mix of the slopes dpV
// over the mix of the values.
float BooleAverageProfile(const PeakShape& shape, float asy1, float tan2Theta, ProfilePoint& point);

// The same, with the logarithmic slopes: position, width, eta and asymmetry.
float BooleAverageProfileWithSlopes(const PeakShape& shape, float asy1, float tan2Theta,
                                    ProfilePoint& point, ProfileSlopes& slopes);

}  // namespace corvinet
