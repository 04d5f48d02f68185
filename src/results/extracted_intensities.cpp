// The extracted intensities of a profile-matching phase and their regrouping into clusters of
// overlapped peaks.
#include "results/extracted_intensities.h"

#include <algorithm>
#include <cmath>

#include "format/fortran_format.h"

namespace corvinet {

namespace {

constexpr float kUnsetTolerance = 0.01f;

// True when reflection b joins the cluster that a ends and that sums `sum`.
bool JoinsCluster(const ExtractedReflection& a, const ExtractedReflection& b, float sum,
                  const RegroupRules& rules) {
  const float gap = b.twoTheta - a.twoTheta;
  const float halfWidths = 0.5f * (a.fwhm + b.fwhm);
  const bool closeEnough = gap < halfWidths * rules.Cw;
  const bool weakNeighbour = gap < halfWidths && b.intensity < sum * rules.Ci;
  return closeEnough || weakNeighbour;
}

}  // namespace

RegroupRules RegroupRulesOf(float Rmub, float Rmuc) {
  RegroupRules rules;
  rules.Cw = Rmub < kUnsetTolerance ? 1.0f : Rmub;
  rules.Ci = Rmuc < kUnsetTolerance ? 0.2f : Rmuc;
  return rules;
}

std::vector<ClusterRecord> RegroupOverlaps(std::vector<ExtractedReflection> reflections,
                                           const RegroupRules& rules) {
  std::stable_sort(reflections.begin(), reflections.end(),
                   [](const ExtractedReflection& a, const ExtractedReflection& b) {
                     return a.twoTheta < b.twoTheta;
                   });
  std::vector<ClusterRecord> records(reflections.size());
  std::size_t first = 0;
  double sum = 0.0, variance = 0.0;
  for (std::size_t i = 0; i < reflections.size(); ++i) {
    const ExtractedReflection& r = reflections[i];
    records[i].reflection = r;
    if (i == 0 || !JoinsCluster(reflections[i - 1], r, static_cast<float>(sum), rules)) {
      first = i;
      sum = 0.0;
      variance = 0.0;
      records[i].code = 1;
    }
    sum += r.intensity;
    variance += static_cast<double>(r.sigma) * r.sigma;
    records[first].intensity = static_cast<float>(sum);
    records[first].sigma = static_cast<float>(std::sqrt(variance));
  }
  return records;
}

std::vector<std::string> RegroupRuleLines(int phase, const RegroupRules& rules) {
  return {Fmt("(A,I3,A)", " Phase No: ", phase, " Overlaped Reflections Re-grouped "),
          " ==> Conditions (\"a\" or \"b\") to group peaks in CODFILn.INT:",
          "a) TwTh(i+1)-TwTh(i) < (Fwhm(i)+Fwhm(i+1))*Cw/2",
          Fmt("(A,F8.4)", "Cw = ", rules.Cw),
          "b) TwTh(i+1)-TwTh(i) < (Fwhm(i)+Fwhm(i+1))/2 and Io(i+1)<Isum*Ci",
          Fmt("(A,F8.4)", "Ci = ", rules.Ci)};
}

std::vector<std::string> RegroupedFileLines(const RegroupedFileHead& head,
                                            const std::vector<ClusterRecord>& records) {
  const bool withVectors = !head.vectors.empty();
  const char* format = withVectors ? "(4i4,2f12.2,i4,3f8.0)" : "(3i4,2f12.2,i4,3f8.0)";
  std::vector<std::string> lines = {
      Fmt("(A,I3,A)", " Phase No: ", head.phase, " Overlaped Reflections Re-grouped "), format,
      Fmt("(F10.5,2I4)", head.wavelength, 0, 2)};
  if (head.xray) lines.push_back(Fmt("(2F10.5)", head.cosMono, 0.0f));
  if (withVectors) {
    lines.push_back(Fmt("(I4)", static_cast<int>(head.vectors.size())));
    for (std::size_t n = 0; n < head.vectors.size(); ++n) {
      const std::array<float, 3>& k = head.vectors[n];
      lines.push_back(Fmt("(I4,3F10.5)", static_cast<int>(n + 1), k[0], k[1], k[2]));
    }
  }
  for (const ClusterRecord& c : records) {
    const ExtractedReflection& r = c.reflection;
    if (withVectors) {
      lines.push_back(
          Fmt(format, r.h, r.k, r.l, r.vector, c.intensity, c.sigma, c.code, 0.0f, 0.0f, 0.0f));
    } else {
      lines.push_back(Fmt(format, r.h, r.k, r.l, c.intensity, c.sigma, c.code, 0.0f, 0.0f, 0.0f));
    }
  }
  return lines;
}

std::string ExtractedIntensityRow(const ExtractedReflection& r, bool withVectors) {
  if (withVectors) {
    return Fmt("(4I4,I5,F10.4,F9.4,2F14.3)", r.h, r.k, r.l, r.vector, r.multiplicity, r.twoTheta,
               r.fwhm, r.intensity, r.sigma);
  }
  return Fmt("(3I4,I5,F10.4,F9.4,2F14.3)", r.h, r.k, r.l, r.multiplicity, r.twoTheta, r.fwhm,
             r.intensity, r.sigma);
}

}  // namespace corvinet
