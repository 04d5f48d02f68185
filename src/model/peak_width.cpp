// The width law of a constant-wavelength reflection: FWHM from U, V, W and the shape terms.
#include "model/peak_width.h"

#include <cmath>

#include "format/fortran_format.h"
#include "model/tch_widths.h"
#include "records/profile_slots.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr float kDegreesToRadians = 0.017453292f;
constexpr float kLorentzFloor = 1.0e-06f;

namespace Slot = ProfileSlot;

// Global slots of the pattern: the cos and sin displacement terms.
constexpr int kSycos = 8;
constexpr int kSysin = 9;

void StopOnNegativeSquare(Job& job, float position, int phase) {
  WriteLine(job, Unit::Out,
            Fmt("(A,F12.4,A,I3)", " => Square of FWHM <0 at 2theta/TOF/E(KeV):", position,
                "  Phase:", phase));
  ConsoleLine(job, Fmt("(A,F12.4)", " Square of FWHM <0 at 2theta/TOF/E(KeV):", position));
  StopBox(job, " Square of FWHM <0 ");
}

// (U' tn + V) tn + W + GauSiz/c2: the Caglioti law with the Gaussian size term.
float CagliotiSquare(float u, float v, float w, float gauSiz, const WidthInput& in) {
  const float tn = in.tanTheta;
  return (u * tn + v) * tn + w + gauSiz / in.cos2Theta;
}

// The square of the left (or only) width, with the extra Gaussian width.
float MainWidthSquare(const Job& job, int ip, const WidthInput& in) {
  const Pattern& pattern = job.patterns[ip];
  const auto& par = job.phases[in.phase].pat[ip].PAR;
  const bool second = in.wavelengthIndex == 2 && pattern.separateUVW2;
  const float u = (second ? par[Slot::U2] : par[Slot::U]) + in.deltaU;
  const float v = second ? par[Slot::V2] : par[Slot::V];
  const float w = second ? par[Slot::W2] : par[Slot::W];
  return CagliotiSquare(u, v, w, par[Slot::GauSiz], in) + in.extraGaussian2;
}

// Code 8: the Lorentzian width X tn + Y'/cos(theta) + extra, and the TCH combination.
void CombineTch(const Job& job, int ip, const WidthInput& in, PeakWidths& out) {
  const auto& par = job.phases[in.phase].pat[ip].PAR;
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
void SplitWidths(Job& job, int ip, const WidthInput& in, float leftSquare, PeakWidths& out) {
  const auto& par = job.phases[in.phase].pat[ip].PAR;
  const float side = SplitSidePosition(job.patterns[ip], in.twoTheta);
  const float tn2 = in.tanTheta * in.tanTheta;
  if (side <= 90.0f) leftSquare += par[Slot::Shp1] / tn2;
  if (leftSquare <= 0.0f) StopOnNegativeSquare(job, in.twoTheta, in.phase);
  float rightSquare = CagliotiSquare(par[Slot::Ur] + in.deltaU, par[Slot::Vr], par[Slot::Wr],
                                     par[Slot::GauSiz], in);
  if (side > 90.0f) rightSquare += par[Slot::Shp2] / tn2;
  if (rightSquare <= 0.0f) StopOnNegativeSquare(job, side, in.phase);
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

PeakWidths PeakWidth(Job& job, int ip, const WidthInput& in) {
  const float square = MainWidthSquare(job, ip, in);
  PeakWidths out;
  if (in.code == ProfileCode::kSplitPseudoVoigt) {
    SplitWidths(job, ip, in, square, out);
    return out;
  }
  if (square <= 0.0f) StopOnNegativeSquare(job, in.twoTheta, in.phase);
  out.HG = std::sqrt(square);
  out.H = out.HG;
  if (in.code == ProfileCode::kTchPseudoVoigt) CombineTch(job, ip, in, out);
  return out;
}

}  // namespace corvinet
