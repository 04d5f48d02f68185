// The final report of a run: new control file, correlation matrix, reflection lists, fractions,
// Bragg factors, simulated data and the calls of the profile and plot writers.
#pragma once

#include <string>
#include <vector>

#include "records/job.h"
#include "records/normal_matrix.h"
#include "refine/bragg_factors.h"

namespace corvinet {

struct CycleWork;

// Everything the report writes, in its order; called once after cycles that
// ended normally. The peaks of the reflections come from `work`, the ring of
// the last cycle, or are computed again where the ring no longer holds them.
void FinalReport(Job& job, CycleWork& work);

// The same with a fresh ring: every peak is computed again.
void FinalReport(Job& job);

// Number of refined parameters, as many as the normal matrix holds.

// --- Correlation matrix ---

// trunc(100 C(i,j) / (s sqrt|C(i,i) C(j,j)|) + 0.5), s the sign of C(i,i) C(j,j).
int CorrelationPercent(float cij, float cii, float cjj);

// " => Correlation matrix ==>" and blocks of at most 19 columns; nothing for
// fewer than two parameters.
std::vector<std::string> CorrelationMatrixLines(const NormalMatrix& normal, int fitted);

// --- Weight and volume fractions of the phases of a pattern ---

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

// --- Exports of a pattern ---

// The structure exports of the first pattern (phases with More and Jvi 1 or
// 2), the phase-number check (Jdi 2), the Fourier, SHELX and collected-results
// files of the pattern, and the opening of its reflection file (JLKH not 0).
void WritePatternExports(Job& job, int ip);

// --- The phase blocks ---

// What the Bragg lines and the BRAG row show of the reflection rows of a phase.
struct PhaseReportSums {
  float SumIobs = 0.0f;
  float SumIcalc = 0.0f;
  float FinalRB = 0.0f;
  float FinalRF = 0.0f;
};

// Header lines of the reflection file for the JLKH value of pattern ip and phase f.
std::vector<std::string> ReflectionFileHeader(const Job& job, int ip, int f);

// The values of one reflection row.
struct ReflectionRowValues {
  int h = 0, k = 0, l = 0, vector = 0, multiplicity = 0, phase = 0;
  float twoTheta = 0.0f;  // position in the abscissa unit
  float d = 0.0f;         // lambda / (2 sin theta)
  float Q = 0.0f;         // 2 pi / d
  float sinThetaOverLambda = 0.0f;
  float fwhm = 0.0f;
  float Iobs = 0.0f, Icalc = 0.0f;
  float Fobs = 0.0f, Fcalc = 0.0f;
  float Freal = 0.0f, Fimag = 0.0f;
};

// The values of reflection slot k with its share of the observed intensity.
ReflectionRowValues ReflectionRow(const Job& job, int ip, int k, const ReflectionShare& share);

// The row of the .out file and the row of the reflection file for the JLKH
// value (empty when JLKH is 0).
std::string ReportReflectionRow(const ReflectionRowValues& v);
std::string ReflectionFileRow(const Job& job, int ip, int f, const ReflectionRowValues& v);

// The Bragg factor lines of the .out and .sum files for phase f.
std::vector<std::string> FinalBraggLines(const Job& job, int ip, int f, const PhaseFractions& fr,
                                         const PhaseReportSums& sums);

// The "BRAG" row of the parameter record.
std::string BraggRecordRow(int f, const PhaseFractions& fr, const PhaseReportSums& sums);

// Mean wavelength of a pattern: (L1 + Ratio L2) / (1 + Ratio).
float MeanWavelength(const Pattern& p);

// --- Simulated pattern ---

// The .sim file of a calculation job (|JOBTYP| > 1) with IDUM not 0; with
// IDUM negative Ytotal is first replaced by Poisson counts of its mean.
void WriteSimulatedPattern(Job& job, int ip);

// Rounds half away from zero and truncates.
int RoundedCount(float y);

// A line on the .out file saying which file this version does not write.
void NotWrittenLine(Job& job, const std::string& what);

}  // namespace corvinet
