// Asymmetry factor of a point under a low-angle peak (IASYM 0) and the tan 2θ it divides by.
#pragma once

#include "records/phase.h"

namespace corvinet {

// Asy1 to Asy4 of a phase in a pattern (profile slots 14, 35, 36, 37).
struct AsymmetryParameters {
  float Asy1 = 0.0f;
  float Asy2 = 0.0f;
  float Asy3 = 0.0f;
  float Asy4 = 0.0f;
};

AsymmetryParameters AsymmetryParametersOf(const PhasePattern& c);

// The factor A of a point and the ratios the point loop multiplies the
// asymmetry rows by: the intensity at the point is proportional to A, so
// dA/dAsy1 = −Fa/tanθ gives the row −(Fa/A)/tanθ, and so on.
struct AsymmetryFactorTerms {
  float A = 1.0f;
  float Fa = 0.0f;
  float Fb = 0.0f;
  float FaOverA = 0.0f;
  float FbOverA = 0.0f;
};

// IASYM 0: z = Δ/H, Fa = 2z exp(−z²), Fb = (4z² − 3) Fa,
// A = 1 − [(Asy1 Fa + Asy2 Fb)/tanθ + (Asy3 Fa + Asy4 Fb)/tan2θ];
// an A at or below 0 becomes 1.0E-04.
AsymmetryFactorTerms AsymmetryFactor(float delta, float H, float tanTheta, float tan2Theta,
                                     const AsymmetryParameters& asy);

// The factor of a point by IASYM: the form above for 0; A = 1 with no rows
// for every other value (IASYM 1 takes its asymmetry in the averaged shape).
AsymmetryFactorTerms PointAsymmetry(int IASYM, float delta, float H, float tanTheta,
                                    float tan2Theta, const AsymmetryParameters& asy);

// tan2θ for the asymmetry, 2θ in degrees: tan(0.01745329·2θ). The guard
// value 1.0E+38 is taken when |0.01745329·2θ − 90| < 1.0E-05, a comparison
// of radians with 90 that no angle of a pattern meets; it is kept as it is,
// so 2θ = 90° gives the large finite tangent of the rounded angle.
float AsymmetryTan2Theta(float twoTheta);

// tan2θ from the squares of sinθ and cosθ: 2 sqrt(cos²θ sin²θ)/(cos²θ − sin²θ),
// the value a reflection flagged for the asymmetry keeps.
float Tan2ThetaFromSquares(float sin2Theta, float cos2Theta);

}  // namespace corvinet
