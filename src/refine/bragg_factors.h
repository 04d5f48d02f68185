// Bragg R-factor and RF-factor per phase by the Rietveld partition; F2 of profile matching.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "records/job.h"

namespace corvinet {

// Where the peak of a reflection lies in its pattern and how far it reaches,
// as the order table computes it.
struct PeakReach {
  float position = 0.0f;  // xk: position plus zero shift and the cos/sin (or d^2) terms
  float left = 0.0f;      // L, reach below xk
  float right = 0.0f;     // R, reach above xk
};

// What the partition needs from the point calculation, for the reflections
// of the present cycle (positions, widths and shapes as the points used them).
struct BraggProfile {
  // For pattern ip and reflection slot k (1-based, in the sorted list):
  // the corrected position xk and the left and right reaches L and R of
  // the ordering of the reflections.
  std::function<PeakReach(int ip, int k)> reach;
  // For pattern ip, reflection slot k and point i: the peak value Omega*a of
  // the point calculation at X[i], that is the profile value times the
  // asymmetry factor (Omega from the five-point average when IASYM is 1),
  // without scale, LpM, Corr and F2; 0 when (X[i]-xk)^2/H^2 > Wdt^2.
  std::function<float(int ip, int k, int i)> peak;
  // Optional: the calculated Bragg intensity of point i of pattern ip, the
  // divisor of the partition. When empty, Ycalc of the pattern, which holds
  // just the Bragg part while the cycles run.
  std::function<float(int ip, int i)> braggCalc;
  // Optional: the Bragg factors of a phase whose Irf is 4 or -4, which come
  // from the integrated-intensity evaluation (mode 0). May be empty.
  std::function<void(int ip, int phase)> integratedIntensities;
};

// The share of one reflection in the observed pattern.
struct ReflectionShare {
  bool counted = false;  // false when an excluded region covers the peak
  float Iobs = 0.0f;
  float Icalc = 0.0f;
  float Fobs = 0.0f;
  float Fcalc = 0.0f;
  float IobsVariance = 0.0f;  // variance of Iobs from the variances of the points it shares
};

// The Rietveld partition of reflection slot k of pattern ip: Iobs and Icalc
// summed over the Bragg points under its peak, scaled by LpM*Scale*F2*Corr.
ReflectionShare PartitionReflection(const Job& job, int ip, int k, const BraggProfile& profile);

// Profile matching: the new F2 of reflection slot k from its Iobs; a second
// wavelength component copies the F2 of its first-wavelength partner.
void ExtractIntensity(Job& job, int ip, int k, float iobs);

// The sums of a phase over its counted reflections.
struct PhaseBraggSums {
  float SumAbsI = 0.0f;  // sum |Iobs - Icalc|
  float SumIobs = 0.0f;
  float SumAbsF = 0.0f;  // sum |Fobs - Fcalc|
  float SumFobs = 0.0f;
  float SumIcalc = 0.0f;
};

// Receives reflection slot k of a phase and its share, once the share is summed.
using ShareVisitor = std::function<void(int k, const ReflectionShare& share)>;

// The partition of every reflection of the phase in pattern ip, in the order
// of the sorted list: the sums of the counted reflections, each of which is
// then handed to `visit` when one is given.
PhaseBraggSums SumPhaseShares(const Job& job, int ip, int phase, const BraggProfile& profile,
                              const ShareVisitor& visit);

// The partition of the phase with, for a phase with |Jbt| 2, the extraction
// of each F2.
PhaseBraggSums PartitionPhase(Job& job, int ip, int phase, const BraggProfile& profile);

// 100*sumAbs/sumObs, with the divisor 1.0 unless the sum is at least 1.0.
float BraggRatio(float sumAbs, float sumObs);

// The report lines of a phase: magnetic phases (|Jbt| 1 or 5) have one factor.
std::vector<std::string> BraggFactorLines(int phase, int jbt, float rb, float rf);

// Bragg factors of every phase of every pattern from the parameters as they
// stand, stored in job.reliability.pattern[ip].braggR and .rfFactor (and,
// for profile matching, the extracted F2); returns the report lines, a
// pattern heading and the lines of each phase.
std::vector<std::string> ComputeBraggFactors(Job& job, const BraggProfile& profile);

// The lines of ComputeBraggFactors on the console and, with writeOut, on the
// .out file.
void ReportBraggFactors(Job& job, bool writeOut, const std::vector<std::string>& lines);

// ComputeBraggFactors and its report at once.
void BraggFactors(Job& job, bool writeOut, const BraggProfile& profile);

}  // namespace corvinet
