// The widths of a time-of-flight reflection: Gaussian variance, Lorentzian width, TCH mixing.
#include "model/tof_widths.h"

#include <cmath>

#include "model/tch_widths.h"
#include "model/tof_profile.h"
#include "records/profile_slots.h"

namespace corvinet {

namespace {
constexpr double kEightLn2 = 5.545177444479562;
}  // namespace

TofWidths TofPeakWidths(const Table1<float, DimensionLimits::MPAR>& PAR, double d) {
  using namespace ProfileSlot;
  // Time-of-flight names of the slots: Sig-2, Sig-1, Sig-0 in U, V, W; Z1 in
  // GauSiz; Gam-2, Gam-1, Gam-0 in Ur, Vr, Wr; LStr in Etar; alph0, beta0,
  // alph1, beta1 in Asy1, Asy2, Asy3, Asy4.
  TofWidths w;
  const double d2 = d * d;
  w.sigma2 = ((PAR[U] + PAR[GauSiz]) * d2 + PAR[V]) * d2 + PAR[W];
  w.gamma = PAR[Ur] * d2 + (PAR[Vr] + PAR[Etar]) * d + PAR[Wr];
  w.alpha = PAR[Asy1] + PAR[Asy3] / d;
  w.beta = PAR[Asy2] + PAR[Asy4] / (d2 * d2);
  w.dSigma2dd = (4.0 * (PAR[U] + PAR[GauSiz]) * d2 + 2.0 * PAR[V]) * d;
  w.dGammadd = 2.0 * PAR[Ur] * d + PAR[Vr] + PAR[Etar];
  w.dAlphadd = -PAR[Asy3] / d2;
  w.dBetadd = -4.0 * PAR[Asy4] / (d2 * d2 * d);
  if (!(w.sigma2 > 0.0)) {
    w.status = TofWidthStatus::kNegativeSigma2;
    return w;
  }
  if (w.gamma < 0.0) {
    w.status = TofWidthStatus::kNegativeGamma;
    return w;
  }
  TchState tch;
  tch.HG = static_cast<float>(std::sqrt(kEightLn2 * w.sigma2));
  tch.HL = static_cast<float>(w.gamma);
  TchWidths(TchMode::kWidths, tch);
  w.H = tch.H;
  w.eta = tch.eta;
  const TchSlopes slopes = TchWidthSlopes(tch);
  // dHG/dsigma^2 = 4 ln2 / HG.
  const double dHGdSigma2 = 0.5 * kEightLn2 / tch.HG;
  w.dHdSigma2 = slopes.dHdG * dHGdSigma2;
  w.dHdGamma = slopes.dHdL;
  w.dEtadSigma2 = slopes.dEtadG * dHGdSigma2;
  w.dEtadGamma = slopes.dEtadL;
  // The widths stand without the exponentials; the peak does not.
  if (!(w.alpha > 0.0) || !(w.beta > 0.0)) w.status = TofWidthStatus::kNonPositiveDecay;
  return w;
}

TofPeakShape TofPeakShapeOf(const TofWidths& w) {
  return {w.alpha, w.beta, w.H * w.H / kEightLn2, w.H, w.eta};
}

}  // namespace corvinet
