// The extracted intensities of a profile-matching phase and their regrouping into clusters of
// overlapped peaks.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace corvinet {

// One reflection of a profile-matching phase as the final report extracted it.
struct ExtractedReflection {
  int h = 0, k = 0, l = 0;
  int vector = 0;          // satellite index (0: no propagation vector)
  int multiplicity = 0;    // of the reflection in the Laue class
  float twoTheta = 0.0f;   // position
  float fwhm = 0.0f;       // full width at half maximum at the position
  float intensity = 0.0f;  // extracted Iobs divided by the phase scale
  float sigma = 0.0f;      // its standard deviation from the point variances
};

// The two tolerances of the grouping: Cw (Rmub of the phase, 1.0 below
// 0.01) and Ci (Rmuc of the phase, 0.2 below 0.01).
struct RegroupRules {
  float Cw = 1.0f;
  float Ci = 0.2f;
};
RegroupRules RegroupRulesOf(float Rmub, float Rmuc);

// One record of the regrouped file: the first member of a cluster carries the
// cluster's sum and code 1, the others 0 and code 0.
struct ClusterRecord {
  ExtractedReflection reflection;
  float intensity = 0.0f;
  float sigma = 0.0f;
  int code = 0;
};

// The reflections in position order, each cluster growing while the next
// reflection i+1 satisfies a) or b):
//   a) TwTh(i+1) - TwTh(i) < (Fwhm(i) + Fwhm(i+1)) Cw / 2
//   b) TwTh(i+1) - TwTh(i) < (Fwhm(i) + Fwhm(i+1)) / 2 and Io(i+1) < Isum Ci
// with Isum the running sum of the cluster. The sigma of a cluster is the
// root of the sum of its members' variances.
std::vector<ClusterRecord> RegroupOverlaps(std::vector<ExtractedReflection> reflections,
                                           const RegroupRules& rules);

// The lines of the .out file that state the two rules.
std::vector<std::string> RegroupRuleLines(int phase, const RegroupRules& rules);

// What the head of the regrouped file says: it is the heading of a list of
// powder clusters (DATATYPE 2) read by a phase with Irf 4.
struct RegroupedFileHead {
  int phase = 1;
  float wavelength = 0.0f;
  bool xray = true;                           // X-ray phase: the monochromator line follows
  float cosMono = 0.0f;                       // COSMONO of that line
  std::vector<std::array<float, 3>> vectors;  // propagation vectors of the phase
};
std::vector<std::string> RegroupedFileLines(const RegroupedFileHead& head,
                                            const std::vector<ClusterRecord>& records);

// One row of the extracted-intensity file: h k l (ivk) mult 2T FWHM I sigma.
std::string ExtractedIntensityRow(const ExtractedReflection& r, bool withVectors);

}  // namespace corvinet
