// Reading of the profile block of a phase in each pattern, and the decoding of its codes.
#pragma once

#include "records/job.h"

namespace corvinet {

// Reads the profile lines of phase k for every pattern it contributes to.
void ReadProfile(Job& job, int k);

// Decodes the profile and propagation-vector codes of phase k, with their echo.
void DecodeProfileCodes(Job& job, int k);

// Turns the typed cell of phase k in pattern ip into the reciprocal
// coefficients PAR[6..11], forced to the Laue class of the phase.
void ReciprocalMetric(Job& job, int k, int ip);

}  // namespace corvinet
