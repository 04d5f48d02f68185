// Reading the list of observed integrated intensities of a phase with |Irf| 4.
#pragma once

#include "records/job.h"

namespace corvinet {

// What the Lorentz-polarisation factor of a cluster member needs.
struct IntensityLpInputs {
  float sinThetaOverLambda = 0.0f;
  float wavelength = 0.0f;
  bool xray = true;       // the phase sees X-rays (Jtyp 0 or 2)
  float cosMono = 0.0f;   // COSMONO
  float polConst = 0.0f;  // POLCONST
};

// 1/(2 sin²θ cosθ), times the polarisation of an X-ray phase: with
// c2 = (1 - 2 sin²θ)², 1 - POLCONST + POLCONST c2 when POLCONST is positive,
// otherwise 1 + COSMONO c2.
float IntensityLorentzPolarisation(const IntensityLpInputs& in);

// The multiplicity of a powder-cluster member: the rule of the Laue class on
// the absolute indices (h and k exchanged for the classes 4, 5, 10, 11, 12,
// h and l for 14) times the group's multiplicity factor.
int ClusterMultiplicity(const SpaceGroup& group, int h, int k, int l);

// The variance of an observation by the weighting w = IWGT of the pattern:
// ((1-w)(2-w)/2) sigma² + w(2-w) F2obs - w(1-w)/2; sigma² for 0, F2obs for 1,
// 1 for 2.
float IntensityVariance(int IWGT, float F2obs, float sigmaF2);

// Reads the intensity file of phase k in pattern ip (file kind 6) into the
// pattern's intensity table: heading lines, the records up to the end of the
// file or a record of zeros, the conversion of F to F², the sums of the
// observed ones, and the reports. Returns the observations read.
int ReadIntensities(Job& job, int k, int ip);

}  // namespace corvinet
