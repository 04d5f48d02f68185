// Weight and volume fractions of the phases of a pattern, with their standard deviations.
#include "results/phase_fractions.h"

#include <cmath>

#include "records/profile_slots.h"

namespace corvinet {

namespace {

// Variance of a refined parameter from the covariance matrix; 0 when fixed.
float ParameterVariance(const Job& job, const Codeword& word) {
  const int n = word.parameterNumber;
  if (n < 1 || n > FittedCount(job)) return 0.0f;
  const float m = word.multiplier;
  return std::fabs(job.refinement.normal.A(n, n)) * m * m;
}

}  // namespace

PhaseFractions ComputePhaseFractions(const Job& job, int ip) {
  PhaseFractions fr;
  float sumW = 0.0f;
  float q = 0.0f;
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    const Phase& phase = job.phases[f];
    const PhasePattern& pp = phase.pat[ip];
    fr.reflections += job.patterns[ip].reflections.count[f];
    fr.ATZ[f] = IsMagneticKind(phase.Jbt) ? 0.0f : phase.ATZ;
    fr.SqrtAtz[f] = std::sqrt(std::fabs(fr.ATZ[f]));
    fr.Brindley[f] = pp.Brind < 0.0001f ? 1.0f : pp.Brind;
    fr.volumeSigma[f] = job.limits.cells(f, ip).volumeSigma;
    if (pp.Contribution == 0) continue;
    const float scale = pp.PAR[ProfileSlot::Scale];
    const float volume = static_cast<float>(pp.cellVolume);
    fr.weight[f] = scale * volume * fr.ATZ[f] / fr.Brindley[f];
    const float volumeVariance = fr.volumeSigma[f] * fr.volumeSigma[f];
    fr.relativeVariance[f] = volumeVariance / (volume * volume) +
                             ParameterVariance(job, pp.PAC[ProfileSlot::Scale]) / (scale * scale);
    sumW += fr.weight[f];
    q += fr.weight[f] * fr.weight[f] * fr.relativeVariance[f];
  }
  if (sumW < 1.0e-11f) sumW = 1.0f;
  q = q / (sumW * sumW);
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    fr.VolumeFraction[f] = 100.0f * fr.weight[f] / sumW;
    fr.FractionSigma[f] = std::sqrt(std::fabs(q + fr.relativeVariance[f])) * fr.VolumeFraction[f];
  }
  return fr;
}

}  // namespace corvinet
