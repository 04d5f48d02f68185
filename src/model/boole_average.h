// The five-point low-angle average of the peak shape (asymmetry model 1).
#pragma once

#include "model/peak_shape.h"

namespace corvinet {

// The mean of the reflection's shape over the distances a + b t^2,
// t = 0, 1/4, 1/2, 3/4, 1, by Boole's weights 7, 32, 12, 32, 7 over 90;
// a = delta/H and b = asy1/(H tan2Theta). Codes 6, 8 and 12 average pV(x2)/H
// with the mixing and the width of the shape (of the point's side for code
// 12), and dOmega is the same mix of the slopes dpV over the mix of the
// values. Every other code averages its own Omega at the five distances, so
// a Gaussian, Lorentzian or Pearson VII peak keeps its shape, and dOmega and
// the slopes are the means of those of the nodes weighted by their values.
float BooleAverageProfile(const PeakShape& shape, float asy1, float tan2Theta, ProfilePoint& point);

// The same, with the logarithmic slopes: position, width, the shape's own
// (eta, m, D, w1, w2) and asymmetry.
float BooleAverageProfileWithSlopes(const PeakShape& shape, float asy1, float tan2Theta,
                                    ProfilePoint& point, ProfileSlopes& slopes);

}  // namespace corvinet
