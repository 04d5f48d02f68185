// The widths of a time-of-flight reflection: Gaussian variance, Lorentzian width, TCH mixing.
#pragma once

#include "model/tof_profile.h"
#include "records/dimension_limits.h"
#include "records/table1.h"

namespace corvinet {

// Why the widths of a time-of-flight reflection could not be made.
enum class TofWidthStatus {
  kValid,
  kNegativeSigma2,    // sigma^2 at or below 0
  kNegativeGamma,     // gamma below 0
  kNonPositiveDecay,  // alpha or beta at or below 0: the peak has no finite area
};

// The widths at d-spacing d, with the slopes of eta that the refinement needs.
struct TofWidths {
  TofWidthStatus status = TofWidthStatus::kValid;
  double sigma2 = 0.0;  // (Sig-2 + Z1) d^4 + Sig-1 d^2 + Sig-0, us^2
  double gamma = 0.0;   // Gam-2 d^2 + (Gam-1 + LStr) d + Gam-0, us
  double H = 0.0;       // combined FWHM of HG = sqrt(8 ln2 sigma^2) and gamma
  double eta = 0.0;     // mixing from the TCH combination
  double dHdSigma2 = 0.0, dHdGamma = 0.0;
  double dEtadSigma2 = 0.0, dEtadGamma = 0.0;
  double alpha = 0.0;  // alph0 + alph1/d
  double beta = 0.0;   // beta0 + beta1/d^4
  // Slopes of sigma^2, gamma, alpha and beta with d, for the terms that move with the cell.
  double dSigma2dd = 0.0, dGammadd = 0.0, dAlphadd = 0.0, dBetadd = 0.0;
};

// The widths of a reflection at d of a phase whose profile slots are `PAR`.
// The peak is the pseudo-Voigt of the Thompson-Cox-Hastings combination:
// its Gaussian and its Lorentzian both have the FWHM H, mixed by eta, so that
// it stands for the Voigt of sigma^2 and gamma (TofPeakShapeOf).
TofWidths TofPeakWidths(const Table1<float, DimensionLimits::MPAR>& PAR, double d);

// The shape the time-of-flight peak is evaluated with: the Gaussian of FWHM H
// (variance H^2/(8 ln2)) and the Lorentzian of FWHM H, mixed by eta.
TofPeakShape TofPeakShapeOf(const TofWidths& w);

}  // namespace corvinet
