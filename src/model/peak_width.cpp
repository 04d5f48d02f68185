// The width law of a constant-wavelength reflection: FWHM from U, V, W and the shape terms.
#include "model/peak_width.h"

#include <cmath>

#include "model/tch_widths.h"
#include "records/profile_slots.h"

namespace corvinet {

namespace {

constexpr float kDegreesToRadians = 0.017453292f;
constexpr float kLorentzFloor = 1.0e-06f;

namespace Slot = ProfileSlot;

// Global slots of the pattern: the cos and sin displacement terms.
constexpr int kSycos = 8;
constexpr int kSysin = 9;

[[noreturn]] void RefuseNegativeSquare(float position, int phase) {
  throw PeakError{PeakFailure::NegativeWidth, position, phase};
}

// (U' tn + V) tn + W + GauSiz/c2: the Caglioti law with the Gaussian size term.
float CagliotiSquare(float u, float v, float w, float gauSiz, const WidthInput& in) {
  const float tn = in.tanTheta;
  return (u * tn + v) * tn + w + gauSiz / in.cos2Theta;
}

// The square of the left (or only) width, with the extra Gaussian width.
float MainWidthSquare(const Pattern& pattern, const WidthParameters& par, const WidthInput& in) {
  const bool second = in.wavelengthIndex == 2 && pattern.separateUVW2;
  const float u = (second ? par[Slot::U2] : par[Slot::U]) + in.deltaU;
  const float v = second ? par[Slot::V2] : par[Slot::V];
  const float w = second ? par[Slot::W2] : par[Slot::W];
  return CagliotiSquare(u, v, w, par[Slot::GauSiz], in) + in.extraGaussian2;
}

// Code 8: the Lorentzian width X tn + Y'/cos(theta) + extra, and the TCH combination.
void CombineTch(const WidthParameters& par, const WidthInput& in, PeakWidths& out) {
  const float cosTheta = std::sqrt(in.cos2Theta);
  float hl =
      par[Slot::X] * in.tanTheta + (par[Slot::Y] + in.deltaY) / cosTheta + in.extraLorentzian;
  if (hl < 0.0f) hl = kLorentzFloor;
  TchState tch;
  tch.HG = out.HG;
  tch.HL = hl;
  tch.H = in.previousFwhm;
  TchWidths(TchMode::kWidths, tch);
  out.HL = hl;
  out.H = tch.H;
  out.eta = tch.eta;
}

// Code 12: the extra left term below 90 degrees and the right width from Ur, Vr, Wr.
void SplitWidths(const Pattern& pattern, const WidthParameters& par, const WidthInput& in,
                 float leftSquare, PeakWidths& out) {
  const float side = SplitSidePosition(pattern, in.twoTheta);
  const float tn2 = in.tanTheta * in.tanTheta;
  if (side <= 90.0f) leftSquare += par[Slot::Shp1] / tn2;
  if (leftSquare <= 0.0f) RefuseNegativeSquare(in.twoTheta, in.phase);
  float rightSquare = CagliotiSquare(par[Slot::Ur] + in.deltaU, par[Slot::Vr], par[Slot::Wr],
                                     par[Slot::GauSiz], in);
  if (side > 90.0f) rightSquare += par[Slot::Shp2] / tn2;
  if (rightSquare <= 0.0f) RefuseNegativeSquare(side, in.phase);
  out.H = std::sqrt(leftSquare);
  out.HG = out.H;
  out.HL = std::sqrt(rightSquare);
}

}  // namespace

float SplitSidePosition(const Pattern& pattern, float twoTheta) {
  const float radians = twoTheta * kDegreesToRadians;
  return twoTheta + pattern.GLB[kSycos] * std::cos(0.5f * radians) +
         pattern.GLB[kSysin] * std::sin(radians);
}

PeakWidths PeakWidth(const Pattern& pattern, const WidthParameters& par, const WidthInput& in) {
  const float square = MainWidthSquare(pattern, par, in);
  PeakWidths out;
  if (in.code == ProfileCode::kSplitPseudoVoigt) {
    SplitWidths(pattern, par, in, square, out);
    return out;
  }
  if (square <= 0.0f) RefuseNegativeSquare(in.twoTheta, in.phase);
  out.HG = std::sqrt(square);
  out.H = out.HG;
  if (in.code == ProfileCode::kTchPseudoVoigt) CombineTch(par, in, out);
  return out;
}

}  // namespace corvinet
