// Lists of observed integrated intensities of the phases with |Irf| 4, kept apart from the profile
// reflections.
#pragma once

#include <array>
#include <string>

#include "records/dimension_limits.h"
#include "records/reflection.h"
#include "records/run_table.h"
#include "records/table1.h"

namespace corvinet {

// One observed intensity: a single-crystal-like F² or a member of a powder
// cluster. The reflection part carries the key, the multiplicity, the
// satellite index, LpM, Corr, the calculated F² and the partial A', B' of
// the file values of an Irf -4 list.
struct IntensityObservation {
  Reflection reflection;
  float F2obs = 0.0f;    // observed F² or cluster intensity
  float sigmaF2 = 0.0f;  // its standard deviation (0.001 when typed below 1e-8)
  int group = 1;         // group code 1..6: the scale of the observation (0 and 7 up read as 1)
  bool clusterStart =
      true;  // first member of a powder cluster (code not 0), or a single observation
  float sinThetaOverLambda = 0.0f;   // from the real indices and the metric of the phase
  float lpFactor = 1.0f;             // Lorentz-polarisation factor of a powder cluster member
  std::array<float, 3> direction{};  // the three trailing numbers of the record
  float variance = 1.0f;             // variance of the observation in the last evaluation
  float F2cal = 0.0f;                // scaled calculated value of the last evaluation
};

// What the file of a phase says about its list, and the sums of its evaluation.
struct IntensityPhaseData {
  std::string title;        // line 1 of the file
  std::string dataFormat;   // line 2: the format of the records
  float WAVELENGTH = 0.0f;  // of the list
  int CONV = 0;             // 1: the file holds F and sigma(F)
  int DATATYPE = 1;         // 1 single-crystal F², 2 powder clusters
  float COSMONO = 0.0f;     // cos² of the monochromator angle (X-ray clusters)
  float POLCONST = 0.0f;    // polarization constant (X-ray clusters)
  int NOBSERVED = 0;        // observations at or above Rmub sigma
  float SumF = 0.0f;        // sum of F of the observed ones
  float SumF2 = 0.0f;       // sum of F² of the observed ones
  float SumF2w = 0.0f;      // sum of (F2obs/sigmaF2)² of the observed ones
  float CHI2 = 1.0f;        // chi-square of the last evaluation
  float RF2 = 0.0f;         // reliability factors of the last evaluation
  float RF2w = 0.0f;
  float RF = 0.0f;
};

// The observations of all |Irf| 4 phases of one pattern: phase p holds the
// slots start[p]+1 .. start[p]+count[p]. Profile reflections and observations
// of a pattern share the capacity IRS.
// The slots hold the default capacity and grow as observations are read; the
// capacity is that of the pattern's reflection table.
struct IntensityTable {
  RunTable1<IntensityObservation> slot{DimensionLimits::kDefaultIRS};
  Table1<int, DimensionLimits::NPHT> start;
  Table1<int, DimensionLimits::NPHT> count;
  Table1<IntensityPhaseData, DimensionLimits::NPHT> phase;
  int total = 0;
};

}  // namespace corvinet
