// The Thompson-Cox-Hastings combination of Gaussian and Lorentzian widths.
#pragma once

namespace corvinet {

// What TchWidths reads and writes. Mode 0 reads HG, HL (and H, kept when the
// fifth-power sum is exactly 0) and writes H, q and eta; mode 1 reads HG, HL,
// H and writes dHdG, dHdL; mode 2 reads q and writes dEtaDq.
struct TchState {
  float HG = 0.0f;      // Gaussian FWHM
  float HL = 0.0f;      // Lorentzian FWHM
  float H = 0.0f;       // combined FWHM
  float q = 0.0f;       // HL/H
  float eta = 0.0f;     // Lorentzian fraction of the pseudo-Voigt
  float dHdG = 0.0f;    // dH/dHG
  float dHdL = 0.0f;    // dH/dHL
  float dEtaDq = 0.0f;  // d(eta)/dq
};

// The modes of TchWidths.
namespace TchMode {
constexpr int kWidths = 0;       // H and eta from HG and HL
constexpr int kWidthSlopes = 1;  // dH/dHG and dH/dHL
constexpr int kEtaSlope = 2;     // d(eta)/dq
}  // namespace TchMode

// The width combination in one of its three modes; other modes do nothing.
void TchWidths(int mode, TchState& state);

// The slopes of H and eta with respect to both widths, by the chain through q.
struct TchSlopes {
  float dHdG = 0.0f;
  float dHdL = 0.0f;
  float dEtadG = 0.0f;
  float dEtadL = 0.0f;
};

// Slopes at the state left by mode 0 (HG, HL, H and q set).
TchSlopes TchWidthSlopes(const TchState& widths);

}  // namespace corvinet
