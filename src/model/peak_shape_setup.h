// The per-reflection constants of a peak: corrected position, mixing, exponent, side peaks.
#pragma once

#include "model/peak_shape.h"
#include "records/job.h"

namespace corvinet {

// What the shape needs of one reflection of one phase in one pattern.
struct ReflectionShapeInput {
  ProfileCode code = ProfileCode::kPseudoVoigt;  // profile of the reflection
  float twoTheta = 0.0f;                         // Bragg position in degrees
  float tanTheta = 0.0f;
  PeakWidths widths;  // from PeakWidth
};

// The corrected position T = 2theta + Zero + Sycos cos(theta) + Sysin sin(2theta), degrees.
float CorrectedPosition(const Pattern& pattern, float twoTheta);

// The constants of the reflection's peak: its corrected position, widths, and
// the shape parameters of the phase at its 2theta:
//   codes 6, 12, 13: eta = Shape1 + X 2theta; code 12 also eta2 = Etar + Xr 2theta;
//   code 7: m = Shape1 + 100 X/2theta + 10000 Y/2theta^2, then PearsonConstants;
//   code 8: eta, HG, HL from the widths, with the TCH slopes;
//   code 5: eta = Shape1, D = Shp1 tan(theta) 57.29578, w1 = X, w2 = Y + Shp2 tan(theta);
//   code 9: the numerical shapes `numerical`.
// `par` are the profile parameters of the phase in `pattern`. A code outside
// 1 to 13 throws PeakError UnknownCode, and a Pearson VII exponent below 0.6
// PeakError PearsonExponent. For codes 10, 11 and 13 only the position and
// widths are filled: their own modules complete the shape.
PeakShape PreparePeakShape(const Pattern& pattern, const WidthParameters& par,
                           const NumericalProfile& numerical, const ReflectionShapeInput& in);

// Logarithmic slopes of Omega with respect to the shape slots of the phase
// that enter through eta, m, D, w1, w2 or (code 8) the Lorentzian width.
struct ShapeSlotSlopes {
  float X = 0.0f;       // slot 15
  float Y = 0.0f;       // slot 16
  float Shape1 = 0.0f;  // slot 17
  float Shp1 = 0.0f;    // slot 41
  float Shp2 = 0.0f;    // slot 42
  float Etar = 0.0f;    // slot 49
  float Xr = 0.0f;      // slot 50
};
ShapeSlotSlopes ShapeParameterSlopes(const PeakShape& shape, const ProfileSlopes& slopes);

// Only code 8 may take its widths from a resolution file: any other code of a
// pattern with IRESO writes " Illegal use of resolution function for
// pattern: " with the pattern, shows " ===>>> Illegal use of resolution
// function!! " and stops with "        NPROF must be equal to 7!  ".
void RequireResolutionShape(Job& job, int ip, ProfileCode code);

}  // namespace corvinet
