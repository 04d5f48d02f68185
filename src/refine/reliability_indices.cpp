// Derived factors of both point sets: R-factors, chi-square, Durbin-Watson, deviance, GoF.
#include <cmath>

#include "refine/reliability.h"

namespace corvinet {

namespace {

// 100 sqrt(numerator/denominator), the form of every weighted R-factor.
float WeightedR(float numerator, float denominator) {
  return 100.0f * std::sqrt(numerator / denominator);
}

}  // namespace

ReliabilityFactors DerivedFactors(const ResidualSums& sums, int n, int p, float deviance,
                                  float invYcalSixth, float dwStat) {
  ReliabilityFactors f;
  f.sums = sums;
  f.N = n;
  f.NP = n - p;
  const float np = static_cast<float>(f.NP);
  f.Rp = 100.0f * sums.SumYdif / sums.SumYobs;
  f.Rwp = WeightedR(sums.Residual, sums.SumwYobsSQ);
  f.Rexp = WeightedR(np, sums.SumwYobsSQ);
  const float ratio = (1.0f / f.Rexp) * f.Rwp;
  f.Chi2 = ratio * ratio;
  f.conventionalRp = 100.0f * sums.SumYdif / sums.SumYnet;
  f.conventionalRwp = WeightedR(sums.Residual, sums.SumwYnetSQ);
  f.conventionalRexp = WeightedR(np, sums.SumwYnetSQ);
  const float conventionalRatio = f.conventionalRwp / f.conventionalRexp;
  f.conventionalChi2 = conventionalRatio * conventionalRatio;
  f.DwStat = dwStat;
  f.DwExp =
      2.0f * (static_cast<float>(n - 1) / np - 3.0902f / std::sqrt(static_cast<float>(n + 2)));
  f.Deviance = deviance;
  f.DevStar = deviance / (invYcalSixth + np);
  f.GoF = std::sqrt(sums.Residual / static_cast<float>(n));
  f.NSigma = std::sqrt(0.5f * np) * (f.Chi2 - 1.0f);
  return f;
}

void ReliabilityIndices(Job& job, int ip) {
  PatternReliability& state = job.reliability.pattern[ip];
  const ResidualSums& all = state.all;
  const int p = job.run.MAXS;
  state.setA = DerivedFactors(all, all.points, p, 2.0f * all.DevSum, all.InvYcalSum / 6.0f,
                              all.DwSum / all.Residual);
  // The Bragg set is summed apart rather than formed as all points minus the
  // non-Bragg points: that difference of two large sums loses its digits.
  const ResidualSums& bragg = state.bragg;
  const float deviance = 2.0f * bragg.DevSum;
  const float invSixth = bragg.InvYcalSum / 6.0f;
  const float dwStat = bragg.DwSum / bragg.Residual;
  state.setB = DerivedFactors(bragg, bragg.points, p, deviance, invSixth, dwStat);
}

}  // namespace corvinet
