// The Bragg R-factors of every phase and pattern, with their report lines.
#include <cstdlib>
#include <string>
#include <vector>

#include "format/fortran_format.h"
#include "refine/bragg_factors.h"
#include "surface/console.h"

namespace corvinet {

namespace {

void BraggFactorsOfPattern(Job& job, int ip, const BraggProfile& profile,
                           std::vector<std::string>& lines) {
  lines.push_back(Fmt("(A,I3)", " => ---------> Pattern#", ip));
  PatternReliability& state = job.reliability.pattern[ip];
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    const Phase& phase = job.phases[f];
    if (std::abs(phase.pat[ip].Irf) == 4) {
      if (profile.integratedIntensities) profile.integratedIntensities(ip, f);
      continue;
    }
    if (phase.pat[ip].Contribution == 0) continue;
    const PhaseBraggSums sums = PartitionPhase(job, ip, f, profile);
    state.braggR[f] = BraggRatio(sums.SumAbsI, sums.SumIobs);
    state.rfFactor[f] = BraggRatio(sums.SumAbsF, sums.SumFobs);
    for (const std::string& line :
         BraggFactorLines(f, phase.Jbt, state.braggR[f], state.rfFactor[f])) {
      lines.push_back(line);
    }
  }
}

}  // namespace

std::vector<std::string> BraggFactorLines(int phase, int jbt, float rb, float rf) {
  if (IsMagneticKind(jbt)) {
    return {Fmt("(A,I3)", " => Phase:", phase), Fmt("(A,G9.3)", " => Magnetic R-factor:", rb)};
  }
  return {Fmt("(A,I3)", " => Phase:", phase), Fmt("(A,G9.3)", " =>    Bragg R-factor:", rb),
          Fmt("(A,G9.3)", " =>    RF-factor     :", rf)};
}

std::vector<std::string> ComputeBraggFactors(Job& job, const BraggProfile& profile) {
  std::vector<std::string> lines;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) BraggFactorsOfPattern(job, ip, profile, lines);
  return lines;
}

void ReportBraggFactors(Job& job, bool writeOut, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    if (writeOut) WriteLine(job, Unit::Out, line);
    ConsoleLine(job, line);
  }
}

void BraggFactors(Job& job, bool writeOut, const BraggProfile& profile) {
  ReportBraggFactors(job, writeOut, ComputeBraggFactors(job, profile));
}

}  // namespace corvinet
