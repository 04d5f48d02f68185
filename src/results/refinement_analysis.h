// The analysis of a finished refinement on the .sum file: effective reflections, classes of the
// refined parameters, expected against observed R-factors, corrections of the sigmas, the verdict.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "records/job.h"

namespace corvinet {

// What the final report found for one phase in the pattern.
struct PhaseAnalysisInput {
  float SumIobs = 0.0f;     // sum of the observed integrated intensities
  float FinalRB = 0.0f;     // Bragg R-factor
  float FinalRF = 0.0f;     // RF-factor
  float IntChi2Sum = 0.0f;  // sum of (Iobs - Icalc)^2 / variance(Iobs) over the reflections
};
using PhaseAnalysisInputs = Table1<PhaseAnalysisInput, DimensionLimits::NPHT>;

// The class of a refined parameter.
enum class ParameterClass : int {
  kNone = 0,
  kGlobal = 1,     // a global parameter of the pattern
  kProfile = 2,    // a peak parameter of a phase other than preferred orientation
  kVector = 3,     // a component of a propagation vector (counted as profile)
  kIntensity = 4,  // an atom parameter, or preferred orientation
};

// The classes of the refined parameters of pattern ip and their counts.
struct ParameterClasses {
  RunTable1<ParameterClass> Kind;  // class of each parameter, 1..fittedCount
  RunTable1<int> Appearances;      // how many values hold it
  RunTable1<int> DistinctUses;     // uses in another class than its own
  int NGlobal = 0, NProfile = 0, NIntensity = 0;
  int preferredOrientation = 0;                       // parameters first met at PAR 12 or 13
  Table1<int, DimensionLimits::NPHT> phaseProfile;    // profile parameters of each phase
  Table1<int, DimensionLimits::NPHT> phaseIntensity;  // intensity parameters of each phase
};
ParameterClasses ClassifyParameters(const Job& job, int ip, int fittedCount);

// The three levels p = 1, 1/2, 1/4 of the effective number of reflections.
inline constexpr std::array<float, 3> kOverlapLevels = {1.0f, 0.5f, 0.25f};

// The effective number of independent reflections of pattern ip.
struct EffectiveReflections {
  std::array<float, 3> Enref{};                                    // all phases, by level
  Table1<std::array<float, 3>, DimensionLimits::NPHT> phaseEnref;  // each phase, by level
  int count = 0;                                                   // reflections counted
  Table1<int, DimensionLimits::NPHT> phaseCount;                   // by phase
  float sumFwhm = 0.0f;                                            // of the counted reflections
  float firstPosition = 0.0f, lastPosition = 0.0f;                 // first and last counted
  Table1<float, DimensionLimits::NPHT> Hmin;                       // sharpest width of each phase
  Table1<float, DimensionLimits::NPHT> Pmin;                       // and its position
};
// `fraction` holds x(f), the fraction of the observed intensity of each phase.
EffectiveReflections CountEffectiveReflections(
    const Job& job, int ip, const Table1<float, DimensionLimits::NPHT>& fraction);

// The expected profile R-factors from a simulated noise and the regional sums of Yobs - Ycalc.
struct ExpectedFactors {
  float ExRp = 0.0f;
  float ExCRp = 0.0f;
  std::array<float, 4> regionSum{};  // sums of Yobs - Ycalc over the four quarters of the points
};
ExpectedFactors ExpectedProfileFactors(Job& job, int ip);

// s = 1/d of an abscissa value of the pattern (2theta in degrees with the
// first wavelength, time of flight t = Dtt1 d, or energy E = Dtt1/d).
float InverseSpacing(const Pattern& p, float x);

// The sharpest reflection of a phase in Q = 2 pi/d: its Q, its width DQ and
// the relative width Dd/d in percent.
struct WidthInQ {
  float Q = 0.0f;
  float DQ = 0.0f;
  float relativePercent = 0.0f;
};
WidthInQ SharpestInQ(const Pattern& p, float position, float fwhm);

// The comments that close the analysis, from the Bragg-points chi-square,
// the weighted average Bragg R-factor, the eclectic ratio, the warnings of the
// correlations and the preferred-orientation count.
struct VerdictInputs {
  float chi2 = 0.0f;
  float averageRB = 0.0f;
  float eclecticRatio = 0.0f;
  int warnings = 0;
  int preferredOrientation = 0;
  int jobType = 0;
};
std::vector<std::string> VerdictLines(const VerdictInputs& in);

// The whole analysis of pattern ip on the .sum file (and the rows of the
// parameter record with JCIL not 0).
void AnalyseRefinement(Job& job, int ip, const PhaseAnalysisInputs& phases);

}  // namespace corvinet
