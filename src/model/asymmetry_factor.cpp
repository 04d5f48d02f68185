// Asymmetry factor of a point under a low-angle peak (IASYM 0) and the tan 2θ it divides by.
#include "model/asymmetry_factor.h"

#include <cmath>

#include "records/profile_slots.h"

namespace corvinet {
namespace {

constexpr float kDegree = 0.01745329f;  // radians in a degree
constexpr float kFloor = 1.0e-04f;      // the smallest factor a point keeps

}  // namespace

AsymmetryParameters AsymmetryParametersOf(const PhasePattern& c) {
  using namespace ProfileSlot;
  return AsymmetryParameters{c.PAR[Asy1], c.PAR[Asy2], c.PAR[Asy3], c.PAR[Asy4]};
}

AsymmetryFactorTerms AsymmetryFactor(float delta, float H, float tanTheta, float tan2Theta,
                                     const AsymmetryParameters& asy) {
  AsymmetryFactorTerms terms;
  const float z = delta / H;
  terms.Fa = 2.0f * z * std::exp(-z * z);
  terms.Fb = (4.0f * z * z - 3.0f) * terms.Fa;
  terms.A = 1.0f - ((asy.Asy1 * terms.Fa + asy.Asy2 * terms.Fb) / tanTheta +
                    (asy.Asy3 * terms.Fa + asy.Asy4 * terms.Fb) / tan2Theta);
  if (terms.A <= 0.0f) terms.A = kFloor;
  terms.FaOverA = terms.Fa / terms.A;
  terms.FbOverA = terms.Fb / terms.A;
  return terms;
}

AsymmetryFactorTerms PointAsymmetry(int IASYM, float delta, float H, float tanTheta,
                                    float tan2Theta, const AsymmetryParameters& asy) {
  if (IASYM != 0) return AsymmetryFactorTerms{};
  return AsymmetryFactor(delta, H, tanTheta, tan2Theta, asy);
}

float AsymmetryTan2Theta(float twoTheta) {
  const float radians = kDegree * twoTheta;
  if (std::fabs(radians - 90.0f) < 1.0e-05f) return 1.0e+38f;
  return std::tan(radians);
}

float Tan2ThetaFromSquares(float sin2Theta, float cos2Theta) {
  return 2.0f * std::sqrt(cos2Theta * sin2Theta) / (cos2Theta - sin2Theta);
}

}  // namespace corvinet
