// Tests of the widths of a time-of-flight reflection and of its absorption and extinction.
#include "model/tof_widths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "model/tof_factors.h"
#include "records/profile_slots.h"

namespace corvinet {
namespace {

using namespace ProfileSlot;

Table1<float, DimensionLimits::MPAR> Slots(float sig2, float sig1, float sig0, float gam1) {
  Table1<float, DimensionLimits::MPAR> par;
  par.Fill(0.0f);
  par[U] = sig2;
  par[V] = sig1;
  par[W] = sig0;
  par[Vr] = gam1;
  par[Asy2] = 5.0e3f;  // beta0 and alph0 large: the exponentials become sharp
  par[Asy1] = 5.0e3f;
  return par;
}

// The full width at half maximum of the peak, on a fine grid.
double Fwhm(const TofPeakShape& s) {
  double top = 0.0;
  for (double x = -2000.0; x <= 2000.0; x += 0.25)
    top = std::max(top, TofProfile(s, x, false).omega);
  double lo = 1e30, hi = -1e30;
  for (double x = -2000.0; x <= 2000.0; x += 0.25) {
    if (TofProfile(s, x, false).omega >= 0.5 * top) {
      lo = std::min(lo, x);
      hi = std::max(hi, x);
    }
  }
  return hi - lo;
}

TEST(TofWidths, PeakOfSigmaAndGammaHasTheWidthOfTheirVoigt) {
  // The Voigt of a Gaussian of FWHM fG and a Lorentzian of FWHM fL has the FWHM
  // 0.5346 fL + sqrt(0.2166 fL^2 + fG^2) (Olivero and Longbothum, 0.02 %).
  // Mixing a Gaussian of sigma with a Lorentzian of gamma directly would give
  // about 40 % of it at d = 2.94 here.
  const double d = 2.9394;
  const TofWidths w = TofPeakWidths(Slots(203.581f, 10.0f, 0.0f, 10.651f), d);
  ASSERT_EQ(w.status, TofWidthStatus::kValid);
  const double fG = std::sqrt(8.0 * std::log(2.0) * w.sigma2);
  const double fL = w.gamma;
  const double voigt = 0.5346 * fL + std::sqrt(0.2166 * fL * fL + fG * fG);
  EXPECT_NEAR(Fwhm(TofPeakShapeOf(w)), voigt, 0.015 * voigt);
  EXPECT_NEAR(w.sigma2, 203.581 * std::pow(d, 4) + 10.0 * d * d, 1e-6 * w.sigma2);
  EXPECT_NEAR(w.gamma, 10.651 * d, 1e-5);
}

TEST(TofWidths, SlopesOfHAndEtaFollowFiniteDifferences) {
  const double d = 1.7;
  const auto par = Slots(20.0f, 30.0f, 5.0f, 8.0f);
  const TofWidths w = TofPeakWidths(par, d);
  auto at = [&](float dsig0, float dgam0) {
    auto p = par;
    p[W] += dsig0;
    p[Wr] += dgam0;
    return TofPeakWidths(p, d);
  };
  const float h = 0.5f;
  EXPECT_NEAR(w.dHdSigma2, (at(h, 0).H - at(-h, 0).H) / (2 * h), 1e-3 * std::fabs(w.dHdSigma2));
  EXPECT_NEAR(w.dHdGamma, (at(0, h).H - at(0, -h).H) / (2 * h), 1e-3 * std::fabs(w.dHdGamma));
  EXPECT_NEAR(w.dEtadSigma2, (at(h, 0).eta - at(-h, 0).eta) / (2 * h),
              2e-3 * std::fabs(w.dEtadSigma2));
  EXPECT_NEAR(w.dEtadGamma, (at(0, h).eta - at(0, -h).eta) / (2 * h),
              2e-3 * std::fabs(w.dEtadGamma));
  EXPECT_NEAR(w.dSigma2dd,
              (TofPeakWidths(par, d + 1e-4).sigma2 - TofPeakWidths(par, d - 1e-4).sigma2) / 2e-4,
              1e-3 * std::fabs(w.dSigma2dd));
}

TEST(TofWidths, NegativeWidthsAreSaid) {
  EXPECT_EQ(TofPeakWidths(Slots(0.0f, 0.0f, -1.0f, 1.0f), 1.0).status,
            TofWidthStatus::kNegativeSigma2);
  EXPECT_EQ(TofPeakWidths(Slots(1.0f, 1.0f, 1.0f, -2.0f), 1.0).status,
            TofWidthStatus::kNegativeGamma);
}

TEST(TofWidths, AlphaOrBetaAtOrBelowZeroIsSaid) {
  // beta = beta0 + beta1/d^4 crosses 0 below d = (-beta1/beta0)^(1/4) = 1.0905 when beta1 < 0.
  Table1<float, DimensionLimits::MPAR> par = Slots(200.0f, 10.0f, 0.0f, 10.0f);
  par[Asy1] = 0.0f;
  par[Asy3] = 0.5f;
  par[Asy2] = 0.165f;
  par[Asy4] = -0.2334f;
  EXPECT_EQ(TofPeakWidths(par, 1.2).status, TofWidthStatus::kValid);
  EXPECT_EQ(TofPeakWidths(par, 1.0).status, TofWidthStatus::kNonPositiveDecay);
  par[Asy4] = 0.01f;
  par[Asy3] = -0.5f;  // alpha = alph1/d < 0 everywhere
  EXPECT_EQ(TofPeakWidths(par, 2.0).status, TofWidthStatus::kNonPositiveDecay);
  par[Asy3] = 0.0f;  // alpha = 0: no rise at all
  EXPECT_EQ(TofPeakWidths(par, 2.0).status, TofWidthStatus::kNonPositiveDecay);
}

TEST(TofFactors, AbsorptionOfEachModelAndItsSlopes) {
  for (int model : {1, 2, 3}) {
    const double lambda = 1.8, a1 = 0.3, a2 = 0.05, s = 1.4142;
    const TofAbsorption v = TofAbsorptionFactor(model, lambda, a1, a2, s);
    const double h = 1e-6;
    const double n1 = (TofAbsorptionFactor(model, lambda, a1 + h, a2, s).A -
                       TofAbsorptionFactor(model, lambda, a1 - h, a2, s).A) /
                      (2 * h);
    const double n2 = (TofAbsorptionFactor(model, lambda, a1, a2 + h, s).A -
                       TofAbsorptionFactor(model, lambda, a1, a2 - h, s).A) /
                      (2 * h);
    EXPECT_NEAR(v.dAbs1, n1, 1e-6) << model;
    EXPECT_NEAR(v.dAbs2, n2, 1e-6) << model;
  }
  // Model 1 at x = 0.59: (1 - exp(-1.18))/1.18; model 3: exp(-0.54).
  EXPECT_NEAR(TofAbsorptionFactor(1, 1.8, 0.3, 0.05, 1.0).A, (1 - std::exp(-1.18)) / 1.18, 1e-12);
  EXPECT_NEAR(TofAbsorptionFactor(3, 1.8, 0.3, 0.0, 1.0).A, std::exp(-0.54), 1e-12);
  EXPECT_EQ(TofAbsorptionFactor(0, 1.8, 0.3, 0.0, 1.0).A, 1.0);
}

TEST(TofFactors, ExtinctionOnBothSidesOfXOneAndItsSlope) {
  // x = Extinc * 2 * 50 * (2/100)^2 = 0.04 Extinc: Extinc 10 gives x 0.4, Extinc 100 gives 4.
  for (double extinc : {10.0, 100.0}) {
    const TofExtinction v = TofExtinctionFactor(extinc, 2.0, 50.0, 2.0, 100.0, 1.2);
    const double h = 1e-4 * extinc;
    const double n = (TofExtinctionFactor(extinc + h, 2.0, 50.0, 2.0, 100.0, 1.2).E -
                      TofExtinctionFactor(extinc - h, 2.0, 50.0, 2.0, 100.0, 1.2).E) /
                     (2 * h);
    EXPECT_NEAR(v.dExtinc, n, 1e-4 * std::fabs(n) + 1e-12) << extinc;
    EXPECT_LT(v.E, 1.0);
    EXPECT_GT(v.E, 0.0);
  }
  // Sabine's EB = 1/sqrt(1+x) at sin^2(theta) = 1: TwoSinTh = 2.
  EXPECT_NEAR(TofExtinctionFactor(10.0, 2.0, 50.0, 2.0, 100.0, 2.0).E, 1.0 / std::sqrt(1.4), 1e-12);
  EXPECT_EQ(TofExtinctionFactor(0.0, 2.0, 50.0, 2.0, 100.0, 2.0).E, 1.0);
}

}  // namespace
}  // namespace corvinet
