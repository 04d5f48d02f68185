// The normalised peak of a reflection at one point: per-reflection constants, value, slopes.
#pragma once

#include "model/peak_width.h"
#include "model/pearson_constants.h"
#include "model/tch_widths.h"
#include "records/pattern.h"

namespace corvinet {

// The constants of one reflection's peak, made once per reflection by
// PreparePeakShape and then read at every point under the peak. Plain data:
// it can be copied into a ring slot next to the reflection's derivatives.
struct PeakShape {
  ProfileCode code{};     // profile of the reflection
  float position = 0.0f;  // corrected peak position T, in degrees
  float twoTheta = 0.0f;  // Bragg position, in degrees
  float tanTheta = 0.0f;
  float cosTheta = 1.0f;
  float H = 0.0f;  // FWHM; the left width for code 12
  float invH = 0.0f;
  float eta = 0.0f;        // mixing; the left mixing for code 12
  float H2 = 0.0f;         // right width (code 12)
  float eta2 = 0.0f;       // right mixing (code 12)
  float splitInvW = 0.0f;  // 1/W, the common normaliser of both halves (code 12)
  float D = 0.0f;          // spacing of the side peaks, degrees (code 5)
  float w1 = 0.0f;         // weight of the peak at T - D (code 5)
  float w2 = 0.0f;         // weight of the peak at T + D (code 5)
  PearsonShape pearson;    // code 7
  TchSlopes tch;           // slopes of H and eta in HG and HL (code 8)
  const NumericalProfile* numerical = nullptr;  // code 9
};

// One data point under one peak: set by PointInBase, with dOmega set by the
// evaluation. dOmega is -(1/Omega) dOmega/d(x2), the logarithmic slope of the
// profile that the point loop turns into position and width derivatives.
struct ProfilePoint {
  float x = 0.0f;      // abscissa of the point, degrees
  float delta = 0.0f;  // x - T
  float H = 0.0f;   // width of the side the point lies on (the right width for code 12, delta > 0)
  float x2 = 0.0f;  // (delta/H)^2
  float dOmega = 0.0f;  // logarithmic slope in x2
};

// Derivatives of ln(Omega) at the point, (1/Omega) dOmega/dp, for each
// quantity p the shape depends on; those a code lacks are 0, and all are 0
// where Omega is 0.
struct ProfileSlopes {
  float position = 0.0f;    // the peak position T
  float width = 0.0f;       // H (the left width for code 12), eta held fixed
  float width2 = 0.0f;      // the right width (code 12)
  float eta = 0.0f;         // the mixing (left for code 12): codes 5, 6, 8, 12
  float eta2 = 0.0f;        // the right mixing (code 12)
  float m = 0.0f;           // the Pearson VII exponent (code 7)
  float D = 0.0f;           // the side-peak spacing (code 5)
  float w1 = 0.0f;          // the weight of the peak at T - D (code 5)
  float w2 = 0.0f;          // the weight of the peak at T + D (code 5)
  float gaussian = 0.0f;    // HG, through H and eta (code 8)
  float lorentzian = 0.0f;  // HL, through H and eta (code 8)
  float asymmetry = 0.0f;   // Asy1 (the five-point asymmetric average only)
};

// Places the point x under the peak: delta, the width of its side, x2.
// Returns true when the point lies inside the base, x2 <= Wdt^2.
inline bool PointInBase(const PeakShape& shape, float x, float wdt, ProfilePoint& point) {
  point.x = x;
  point.delta = x - shape.position;
  point.H =
      (shape.code == ProfileCode::kSplitPseudoVoigt && point.delta > 0.0f) ? shape.H2 : shape.H;
  const float u = point.delta / point.H;
  point.x2 = u * u;
  return point.x2 <= wdt * wdt;
}

// Omega at the point placed by PointInBase, with dOmega set. Codes 10, 11
// (time of flight) and 13 (axial divergence) have their own evaluators and
// give 0 here.
float ProfileValue(const PeakShape& shape, ProfilePoint& point);

// The same value, with the logarithmic slopes of Omega as well.
float ProfileValueWithSlopes(const PeakShape& shape, ProfilePoint& point, ProfileSlopes& slopes);

}  // namespace corvinet
