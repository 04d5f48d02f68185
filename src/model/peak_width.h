// The width law of a constant-wavelength reflection: FWHM from U, V, W and the shape terms.
#pragma once

#include "model/peak_error.h"
#include "records/dimension_limits.h"
#include "records/pattern.h"

namespace corvinet {

// The profile parameters of a phase in a pattern (PAR).
using WidthParameters = Table1<float, DimensionLimits::MPAR>;

// What the width law needs of one reflection of one phase in one pattern.
struct WidthInput {
  ProfileCode code = ProfileCode::kPseudoVoigt;  // Npr of the phase in the pattern
  int phase = 1;            // phase number, for the report of a negative square
  int wavelengthIndex = 1;  // 2 for the lambda(2) member of a doublet
  float twoTheta = 0.0f;    // Bragg position in degrees
  float tanTheta = 0.0f;
  float cos2Theta = 1.0f;        // cos^2(theta)
  float deltaU = 0.0f;           // strain addition to U
  float deltaY = 0.0f;           // size addition to Y (code 8)
  float extraGaussian2 = 0.0f;   // extra Gaussian width squared (resolution file)
  float extraLorentzian = 0.0f;  // extra Lorentzian width (resolution file)
  float previousFwhm = 0.0f;     // the FWHM held before, kept by a TCH sum of exactly 0
};

// The widths a reflection keeps. For code 8, HG and HL are the Gaussian and
// Lorentzian widths and eta their TCH mixing; for code 12, HG is the left
// width (equal to H) and HL the right width; for the other codes HG = H and
// HL = 0, and eta is 0 (their mixing is set from the shape parameters).
struct PeakWidths {
  float H = 0.0f;
  float HG = 0.0f;
  float HL = 0.0f;
  float eta = 0.0f;
};

// The width step of a reflection of the phase of parameters `par` in
// `pattern`, for the constant-wavelength codes (not the time-of-flight codes
// 10 and 11). Uses U2, V2, W2 for wavelength index 2 when the pattern reads
// them. A square of a width at or below 0 throws PeakError NegativeWidth with
// the position (for the right width of code 12, its displaced position) and
// the phase.
PeakWidths PeakWidth(const Pattern& pattern, const WidthParameters& par, const WidthInput& in);

// The position of a code-12 reflection that chooses between the left and the
// right extra term: 2theta + Sycos cos(theta) + Sysin sin(2theta), in degrees.
float SplitSidePosition(const Pattern& pattern, float twoTheta);

}  // namespace corvinet
