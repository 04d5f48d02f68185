// Weight and volume fractions of the phases of a pattern, with their standard deviations.
#pragma once

#include "records/job.h"

namespace corvinet {

struct PhaseFractions {
  int reflections = 0;                                    // NR of the pattern
  Table1<float, DimensionLimits::NPHT> weight;            // W(f)
  Table1<float, DimensionLimits::NPHT> relativeVariance;  // r(f)
  Table1<float, DimensionLimits::NPHT> VolumeFraction;    // percent of W(f) in the sum
  Table1<float, DimensionLimits::NPHT> FractionSigma;     // its standard deviation
  Table1<float, DimensionLimits::NPHT> ATZ;               // 0 for magnetic phases
  Table1<float, DimensionLimits::NPHT> SqrtAtz;           // sqrt(ATZ)
  Table1<float, DimensionLimits::NPHT> Brindley;          // 1.0 when below 0.0001
  Table1<float, DimensionLimits::NPHT> volumeSigma;       // sigma of the cell volume
};

// W(f) = Scale Volume ATZ / Brindley with its relative variance, the
// percentages and their sigmas.
PhaseFractions ComputePhaseFractions(const Job& job, int ip);

}  // namespace corvinet
