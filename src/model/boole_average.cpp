// The five-point low-angle average of the peak shape (asymmetry model 1).
#include "model/boole_average.h"

#include "model/pseudo_voigt.h"
#include "records/profile_code.h"

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

// The pseudo-Voigt codes average the kernel above; every other shape is
// averaged through its own evaluation.
bool AveragesThePseudoVoigt(ProfileCode code) {
  return code == ProfileCode::kPseudoVoigt || code == ProfileCode::kTchPseudoVoigt ||
         code == ProfileCode::kSplitPseudoVoigt;
}

// The same rule over the shape of the reflection's own code: node i is the
// point moved by t_i^2 Asy1/tan2Theta, so it keeps H and moves with T as the
// point does. dOmega and each logarithmic slope are the value-weighted means
// of those of the nodes; the Asy1 slope is that of the position at each node
// times -t_i^2/tan2Theta.
template <bool kSlopes>
float ShapeAverage(const PeakShape& s, float asy1, float tan2Theta, ProfilePoint& p,
                   ProfileSlopes* d) {
  const float step = asy1 / tan2Theta;
  float sum = 0.0f;
  float slopeSum = 0.0f;
  ProfileSlopes mean;
  float asySum = 0.0f;
  for (int i = 0; i < kNodes; ++i) {
    ProfilePoint node;
    node.x = p.x + kOffset[i] * step;
    node.delta = p.delta + kOffset[i] * step;
    node.H = p.H;
    const float u = node.delta / node.H;
    node.x2 = u * u;
    ProfileSlopes n;
    const float value = kSlopes ? ProfileValueWithSlopes(s, node, n) : ProfileValue(s, node);
    const float weighted = kWeight[i] * value;
    sum += weighted;
    slopeSum += weighted * node.dOmega;
    if constexpr (kSlopes) {
      mean.position += weighted * n.position;
      mean.width += weighted * n.width;
      mean.eta += weighted * n.eta;
      mean.m += weighted * n.m;
      mean.D += weighted * n.D;
      mean.w1 += weighted * n.w1;
      mean.w2 += weighted * n.w2;
      asySum += weighted * kOffset[i] * n.position;
    }
  }
  const float invSum = sum != 0.0f ? 1.0f / sum : 0.0f;
  p.dOmega = slopeSum * invSum;
  if constexpr (kSlopes) {
    d->position = mean.position * invSum;
    d->width = mean.width * invSum;
    d->eta = mean.eta * invSum;
    d->m = mean.m * invSum;
    d->D = mean.D * invSum;
    d->w1 = mean.w1 * invSum;
    d->w2 = mean.w2 * invSum;
    d->asymmetry = -asySum * invSum / tan2Theta;
  }
  return sum * (1.0f / 90.0f);
}

}  // namespace

float BooleAverageProfile(const PeakShape& shape, float asy1, float tan2Theta,
                          ProfilePoint& point) {
  if (!AveragesThePseudoVoigt(shape.code))
    return ShapeAverage<false>(shape, asy1, tan2Theta, point, nullptr);
  return Average<false>(shape, asy1, tan2Theta, point, nullptr);
}

float BooleAverageProfileWithSlopes(const PeakShape& shape, float asy1, float tan2Theta,
                                    ProfilePoint& point, ProfileSlopes& slopes) {
  slopes = ProfileSlopes{};
  if (!AveragesThePseudoVoigt(shape.code))
    return ShapeAverage<true>(shape, asy1, tan2Theta, point, &slopes);
  return Average<true>(shape, asy1, tan2Theta, point, &slopes);
}

}  // namespace corvinet
