// The five-point low-angle average of the pseudo-Voigt (asymmetry model 1).
#include "model/boole_average.h"

#include "model/pseudo_voigt.h"

namespace corvinet {

namespace {

constexpr int kNodes = 5;
// The nodes t^2 of the rule and its weights; their products 0, 2, 3, 18, 7 make the Asy1 slope.
constexpr float kOffset[kNodes] = {0.0f, 0.0625f, 0.25f, 0.5625f, 1.0f};
constexpr float kWeight[kNodes] = {7.0f, 32.0f, 12.0f, 32.0f, 7.0f};

template <bool kSlopes>
float Average(const PeakShape& s, float asy1, float tan2Theta, ProfilePoint& p, ProfileSlopes* d) {
  const float eta = (s.code == ProfileCode::kSplitPseudoVoigt && p.delta > 0.0f) ? s.eta2 : s.eta;
  const float invH = 1.0f / p.H;
  const float a = p.delta * invH;
  const float bScale = invH / tan2Theta;
  const float b = asy1 * bScale;
  float sum = 0.0f;
  float slopeSum = 0.0f;
  float moment = 0.0f;
  float spread = 0.0f;
  float etaSum = 0.0f;
  float asySum = 0.0f;
  for (int i = 0; i < kNodes; ++i) {
    const float z = a + kOffset[i] * b;
    const PseudoVoigtParts t = PseudoVoigtPartsAt(z * z);
    const float dpv = PseudoVoigtSlope(t, eta);
    sum += kWeight[i] * PseudoVoigt(t, eta);
    slopeSum += kWeight[i] * dpv;
    if constexpr (kSlopes) {
      moment += kWeight[i] * dpv * 2.0f * z;
      spread += kWeight[i] * dpv * 2.0f * z * z;
      etaSum += kWeight[i] * PseudoVoigtEtaSlope(t);
      asySum += kWeight[i] * kOffset[i] * dpv * 2.0f * z;
    }
  }
  const float invSum = sum != 0.0f ? 1.0f / sum : 0.0f;
  p.dOmega = slopeSum * invSum;
  if constexpr (kSlopes) {
    // Every node moves as delta/H: dz/dT = -1/H, dz/dH = -z/H, dz/dAsy1 = t^2 bScale.
    d->position = moment * invH * invSum;
    d->width = (spread * invSum - (sum != 0.0f ? 1.0f : 0.0f)) * invH;
    d->eta = etaSum * invSum;
    d->asymmetry = -asySum * bScale * invSum;
  }
  return sum * invH * (1.0f / 90.0f);
}

}  // namespace

float BooleAverageProfile(const PeakShape& shape, float asy1, float tan2Theta,
                          ProfilePoint& point) {
  return Average<false>(shape, asy1, tan2Theta, point, nullptr);
}

float BooleAverageProfileWithSlopes(const PeakShape& shape, float asy1, float tan2Theta,
                                    ProfilePoint& point, ProfileSlopes& slopes) {
  slopes = ProfileSlopes{};
  return Average<true>(shape, asy1, tan2Theta, point, &slopes);
}

}  // namespace corvinet
