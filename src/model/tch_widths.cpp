// The Thompson-Cox-Hastings combination of Gaussian and Lorentzian widths.
#include "model/tch_widths.h"

#include <cmath>

namespace corvinet {

namespace {

constexpr float kEtaFloor = 1.0e-06f;

// H and eta from HG and HL.
void CombineWidths(TchState& s) {
  const float g = s.HG;
  const float l = s.HL;
  const float g2 = g * g;
  const float l2 = l * l;
  const float sum = g2 * g2 * g + 2.69269f * g2 * g2 * l + 2.42843f * g2 * g * l2 +
                    4.47163f * g2 * l2 * l + 0.07842f * g * l2 * l2 + l2 * l2 * l;
  if (sum > 0.0f) {
    s.H = std::pow(sum, 0.2f);
  } else if (sum < 0.0f) {
    s.H = 0.01f;
  }
  s.q = l / s.H;
  s.eta = s.q * (1.36603f + s.q * (-0.47719f + s.q * 0.11116f));
  if (s.eta <= kEtaFloor) s.eta = kEtaFloor;
}

// dH/dHG and dH/dHL: the slopes of the fifth-power sum over 5 H^4.
void WidthSlopes(TchState& s) {
  const float g = s.HG;
  const float l = s.HL;
  const float g2 = g * g;
  const float l2 = l * l;
  const float h2 = s.H * s.H;
  const float scale = 1.0f / (5.0f * h2 * h2);
  s.dHdG = scale * (5.0f * g2 * g2 + 10.77076f * g2 * g * l + 7.28529f * g2 * l2 +
                    8.94326f * g * l2 * l + 0.07842f * l2 * l2);
  s.dHdL = scale * (2.69269f * g2 * g2 + 4.85686f * g2 * g * l + 13.41489f * g2 * l2 +
                    0.31368f * g * l2 * l + 5.0f * l2 * l2);
}

void EtaSlope(TchState& s) {
  s.dEtaDq = 1.36603f + s.q * (-0.95438f + s.q * 0.33348f);
}

}  // namespace

void TchWidths(int mode, TchState& state) {
  switch (mode) {
    case TchMode::kWidths:
      CombineWidths(state);
      break;
    case TchMode::kWidthSlopes:
      WidthSlopes(state);
      break;
    case TchMode::kEtaSlope:
      EtaSlope(state);
      break;
    default:
      break;
  }
}

TchSlopes TchWidthSlopes(const TchState& widths) {
  TchState s = widths;
  TchWidths(TchMode::kWidthSlopes, s);
  TchWidths(TchMode::kEtaSlope, s);
  // eta = f(q), q = HL/H: d(eta) = f'(q) (dHL - q dH)/H.
  TchSlopes out;
  out.dHdG = s.dHdG;
  out.dHdL = s.dHdL;
  out.dEtadG = -s.dEtaDq * s.q * s.dHdG / s.H;
  out.dEtadL = s.dEtaDq * (1.0f - s.q * s.dHdL) / s.H;
  return out;
}

}  // namespace corvinet
