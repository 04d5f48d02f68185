// The reflection rows of the final report, the Bragg factor lines and the BRAG row.
#pragma once

#include <string>
#include <vector>

#include "records/job.h"
#include "refine/bragg_factors.h"
#include "results/phase_fractions.h"

namespace corvinet {

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

}  // namespace corvinet
