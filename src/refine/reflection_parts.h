// Pieces of the reflection calculation shared by the constant-wavelength and time-of-flight paths.
#pragma once

#include <array>

#include "records/job.h"
#include "refine/cycle_work.h"

namespace corvinet {

// h, k, l of the reflection, plus or minus its propagation vector for a satellite.
std::array<double, 3> WorkingVector(const Phase& ph, const Reflection& r);

// The reciprocal coefficients A..F of the phase in this pattern, PAR[6..11].
Table1<float, 6> CellCoefficients(const PhasePattern& c);

// Adds multiplier * value to the row entry of the parameter the codeword refines.
void AddToRow(float* row, const Codeword& w, double value, int fitted);

}  // namespace corvinet
