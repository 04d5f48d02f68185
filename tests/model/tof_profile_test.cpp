// Tests of the time-of-flight peak: erfc and exp(z)E1(z) against mpmath, unit area, the limits,
// and every derivative against central finite differences.
#include "model/tof_profile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <functional>

namespace corvinet {
namespace {

constexpr double kPi = 3.14159265358979324;

// exp(z)E1(z) from mpmath at 30 digits (tests/model/reference/tof_functions.py).
struct E1Reference {
  std::complex<double> z, value;
};
const E1Reference kE1[] = {
    {{0.5, 0.0}, {0.92291063248373047, 0.0}},
    {{3.0, 4.0}, {0.12221459566956696, -0.12848500180921379}},
    {{-2.0, 0.5}, {-0.47482073299284499, -0.46486115995215238}},
    {{12.0, 1.0}, {0.07686037603584536, -0.005970732104239653}},
    {{15.0, -3.0}, {0.060557120265588404, 0.011428642254735949}},
    {{-25.0, 0.0}, {-0.04174647745066453, -4.3630262419638407e-11}},
    {{-25.0, 0.001}, {-0.041746477377382175, -1.7465210778255595e-6}},
    {{50.0, 30.0}, {0.014567224922198982, -0.0085736734213270714}},
    {{-5.0, 0.0}, {-0.2707662554910572, -0.021167884792604297}},
    {{0.0, 0.01}, {4.0433858273767353, -1.5204392192982373}},
    {{-12.0, 15.0}, {-0.031632168090402495, -0.043388556644272794}},
    {{-0.3, 8.0}, {0.010074705003773232, -0.12248289042418907}},
    {{300.0, 2.0}, {0.0033221488856502191, -2.2074561467502782e-5}},
    {{-45.0, 3.0}, {-0.022634089991582012, -0.0015449438559526701}},
    {{-30.0, 0.5}, {-0.034516790237020784, -0.00059671504910586377}},
    {{-55.0, 1.0}, {-0.018518763531332012, -0.0003431898052428074}},
    {{-70.0, 0.0}, {-0.014495892115101026, -1.2489243685031803e-30}},
    {{-80.0, 0.2}, {-0.012660229343473534, -3.2061905069187512e-5}},
    {{2.5, 0.0}, {0.3035258364859841, 0.0}},
    {{7.5, 0.5}, {0.1185929822547895, -0.0071277589199738427}},
    {{1.5, 1.5}, {0.29389525793700597, -0.20575066579031239}},
};

TEST(TofFunctions, ExpE1ComplexMatchesReferenceTo1e7) {
  for (const E1Reference& r : kE1) {
    const std::complex<double> f = ExpE1Complex(r.z);
    EXPECT_NEAR(f.real(), r.value.real(), 1e-7 * std::abs(r.value.real()) + 1e-300) << r.z;
    EXPECT_NEAR(f.imag(), r.value.imag(), 1e-7 * std::abs(r.value.imag()) + 1e-300) << r.z;
  }
}

// exp(z)E1(z) in the left half-plane at moduli of 12 to 84, where the terms of the power
// series grow to exp(|z|)/|z| while the sum stays near 1/|z| (the peak centre of a broad
// reflection has p = alpha Delta + i alpha gamma / 2 there), from mpmath at 40 digits
// (tests/model/reference/tof_e1_left_plane.py).
const E1Reference kE1LeftPlane[] = {
    {{-0.001, 12.0}, {0.0066804105683059058, -0.082258437772632436}},
    {{-0.001, 20.0}, {0.0024617421615016268, -0.049757245534862434}},
    {{-0.001, 32.0}, {0.00096997697032070077, -0.031189720510699221}},
    {{-0.001, 45.0}, {0.00049188575171579298, -0.0222004243428975}},
    {{-0.001, 58.0}, {0.00029644133638794304, -0.017231175241417948}},
    {{-0.5, 12.0}, {0.0033168168023137405, -0.082659370521067198}},
    {{-0.5, 20.0}, {0.0012283786873541483, -0.049847999127878168}},
    {{-0.5, 32.0}, {0.00048488936033909343, -0.031212274954632978}},
    {{-0.5, 45.0}, {0.00024603815785388318, -0.022208582580887145}},
    {{-0.5, 58.0}, {0.00014831413988939158, -0.017234994725899964}},
    {{-3.0, 12.0}, {-0.013335364604170739, -0.080565711245905577}},
    {{-3.0, 20.0}, {-0.0049262037231302095, -0.049385115045050752}},
    {{-3.0, 32.0}, {-0.0019417532134766481, -0.031098388089718603}},
    {{-3.0, 45.0}, {-0.00098473730936516995, -0.022167530678517355}},
    {{-3.0, 58.0}, {-0.00059347196822513884, -0.017215803163218338}},
    {{-10.0, 12.0}, {-0.039692771598936904, -0.05340319952894157}},
    {{-10.0, 20.0}, {-0.018621267832831681, -0.041542653360310794}},
    {{-10.0, 32.0}, {-0.0081258065799903475, -0.028939373001164439}},
    {{-10.0, 45.0}, {-0.0042680808946898626, -0.021358644608495796}},
    {{-10.0, 58.0}, {-0.0026104239772529534, -0.016831479476550973}},
    {{-25.0, 12.0}, {-0.033340929200467593, -0.016721803126169616}},
    {{-25.0, 20.0}, {-0.02457178587730294, -0.020520966675987052}},
    {{-25.0, 32.0}, {-0.014984719325392869, -0.020004985922946412}},
    {{-25.0, 45.0}, {-0.0092196270898932473, -0.01729998570895157}},
    {{-25.0, 58.0}, {-0.0060876457328748089, -0.014719129004099661}},
    {{-40.0, 12.0}, {-0.023432893400333999, -0.0072194565461274832}},
    {{-40.0, 20.0}, {-0.020303472464632886, -0.010423543239430897}},
    {{-40.0, 32.0}, {-0.015320182469736464, -0.012580651766024891}},
    {{-40.0, 45.0}, {-0.010994167553398715, -0.012692860187718535}},
    {{-40.0, 58.0}, {-0.0079806972401342721, -0.011873613415498683}},
    {{-60.0, 12.0}, {-0.016279750747302455, -0.0033130593350804215}},
    {{-60.0, 20.0}, {-0.015204603308520746, -0.0051568856042829899}},
    {{-60.0, 32.0}, {-0.013096777637963325, -0.0071066094681531524}},
    {{-60.0, 45.0}, {-0.010714605207925048, -0.0081752046760112679}},
    {{-60.0, 58.0}, {-0.0086181696877176822, -0.0084746181526317321}},
};

TEST(TofFunctions, ExpE1KeepsItsDigitsInTheLeftHalfPlaneAtLargeModulus) {
  for (const E1Reference& r : kE1LeftPlane) {
    const std::complex<double> f = ExpE1Complex(r.z);
    EXPECT_NEAR(f.real(), r.value.real(), 1e-7 * std::abs(r.value)) << r.z;
    EXPECT_NEAR(f.imag(), r.value.imag(), 1e-7 * std::abs(r.value)) << r.z;
  }
}

TEST(TofProfile, BroadPeakIsSmoothAcrossItsCentre) {
  // A reflection at d = 4.16 A of a high-resolution bank: H = 650 us, so that p and q reach
  // |z| = 39 and 42 on the imaginary axis at the centre. The second differences over 0.05 us
  // are those of a curve of width 650 us, below 1e-6 of its height.
  const double H = 650.0;
  const TofPeakShape s{0.12, 0.13, H * H / (8.0 * std::log(2.0)), H, 0.5};
  const double h = 0.05;
  for (double delta = -3.0; delta <= 3.0; delta += h) {
    const double before = TofProfile(s, delta - h, false).omega;
    const double at = TofProfile(s, delta, false).omega;
    const double after = TofProfile(s, delta + h, false).omega;
    EXPECT_LT(std::fabs(after - 2.0 * at + before), 1e-6 * at) << delta;
  }
}

TEST(TofFunctions, ExpE1OnTheNegativeAxisIsTheUpperSideOfTheCut) {
  // Both the series (|z| < 20) and the continued fraction (|z| >= 20) give Im = -pi exp(z).
  for (double x : {-3.0, -19.0, -21.0, -40.0}) {
    const std::complex<double> f = ExpE1Complex({x, 0.0});
    EXPECT_NEAR(f.imag(), -kPi * std::exp(x), 1e-9 * kPi * std::exp(x)) << x;
    const std::complex<double> above = ExpE1Complex({x, 1e-9});
    EXPECT_NEAR(f.real(), above.real(), 1e-7 * std::abs(f.real())) << x;
  }
  EXPECT_EQ(ExpE1Complex({0.0, 0.0}).real(), 1.0e300);
}

TEST(TofFunctions, ErfcAndScaledErfcMatchReferenceTo1e7) {
  struct Row {
    double x, erfc, scaled;
  };
  const Row rows[] = {
      {-1.5, 1.9661051464753107, 18.653886256262734},
      {0.3, 0.67137324054087258, 0.73459933456765515},
      {2.0, 0.0046777349810472658, 0.25539567631050574},
      {5.0, 1.5374597944280349e-12, 0.11070463773306863},
      {10.0, 2.0884875837625448e-45, 0.056140992743822586},
      {26.5, 2.2109076642637343e-307, 0.021275046685371106},
      {40.0, 0.0, 0.014100335983377814},
  };
  for (const Row& r : rows) {
    if (r.erfc > 1e-300) {
      EXPECT_NEAR(Erfc(r.x), r.erfc, 1e-7 * r.erfc) << r.x;
    }
    if (r.x >= 0.0) {
      EXPECT_NEAR(ScaledErfc(r.x), r.scaled, 1e-7 * r.scaled) << r.x;
    }
  }
  EXPECT_NEAR(ErfcSlope(0.7), -2.0 / std::sqrt(kPi) * std::exp(-0.49), 1e-15);
}

// Simpson's rule over Delta = c*tan(t), which takes the Lorentzian tails in full.
double AreaOf(const TofPeakShape& s, double centre, double scale) {
  const int n = 40000;
  const double h = kPi / n;
  double sum = 0.0;
  for (int k = 1; k < n; ++k) {
    const double t = -0.5 * kPi + k * h;
    const double c = std::cos(t);
    const double f = TofProfile(s, centre + scale * std::tan(t), false).omega * scale / (c * c);
    sum += f * (k % 2 == 1 ? 4.0 : 2.0);
  }
  return sum * h / 3.0;
}

TEST(TofProfile, UnitAreaOverItsBase) {
  const TofPeakShape shapes[] = {
      {0.08, 0.03, 25.0, 0.0, 0.0},  // Gaussian only
      {0.08, 0.03, 25.0, 6.0, 0.5},
      {0.5, 0.2, 4.0, 10.0, 1.0},  // Lorentzian only
      {2.0, 0.05, 100.0, 3.0, 0.2},
  };
  for (const TofPeakShape& s : shapes) {
    EXPECT_NEAR(AreaOf(s, 0.0, 20.0), 1.0, 2e-5) << s.alpha << " " << s.eta;
  }
}

TEST(TofProfile, TendsToThePseudoVoigtWhenAlphaAndBetaGrow) {
  TofPeakShape s{2.0e4, 3.0e4, 4.0, 3.0, 0.4};
  for (double delta : {-8.0, -2.5, 0.0, 1.0, 4.0, 12.0}) {
    const double gauss = std::exp(-delta * delta / (2 * s.sigma2)) / std::sqrt(2 * kPi * s.sigma2);
    const double hw = 0.5 * s.gamma;
    const double lorentz = hw / (kPi * (delta * delta + hw * hw));
    const double pv = (1 - s.eta) * gauss + s.eta * lorentz;
    EXPECT_NEAR(TofProfile(s, delta, false).omega, pv, 2e-3 * pv) << delta;
  }
}

TEST(TofProfile, ZeroLorentzianWidthGivesTheBareExponentialsOnTheRealAxis) {
  // eta 1 and gamma 0: the Lorentzian is a delta, so Omega = 2N exp(alpha Delta) before the
  // peak and 2N exp(-beta Delta) after it, through the branch of exp(z)E1(z) on the real axis.
  const TofPeakShape s{0.3, 0.1, 1.0, 0.0, 1.0};
  const double n = 0.5 * s.alpha * s.beta / (s.alpha + s.beta);
  EXPECT_NEAR(TofProfile(s, -3.0, false).omega, 2 * n * std::exp(-0.9), 1e-9);
  EXPECT_NEAR(TofProfile(s, -80.0, false).omega, 2 * n * std::exp(-24.0), 1e-15);
  EXPECT_NEAR(TofProfile(s, 2.0, false).omega, 2 * n * std::exp(-0.2), 1e-9);
  EXPECT_NEAR(TofProfile(s, 250.0, false).omega, 2 * n * std::exp(-25.0), 1e-14);
}

TEST(TofProfile, FarLeftTailVanishesSmoothlyWithNoOverflow) {
  // Delta very negative: u < 0 and v large; the trailing term stays finite and small.
  const TofPeakShape s{0.05, 0.02, 50.0, 0.0, 0.0};
  double before = TofProfile(s, -400.0, true).omega;
  EXPECT_TRUE(std::isfinite(before));
  for (double delta = -500.0; delta >= -5000.0; delta -= 500.0) {
    const TofPeakValue v = TofProfile(s, delta, true);
    EXPECT_TRUE(std::isfinite(v.omega) && std::isfinite(v.dDelta) && std::isfinite(v.dSigma2));
    EXPECT_GE(v.omega, 0.0);
    EXPECT_LT(v.omega, before);
    before = v.omega;
  }
}

TEST(TofProfile, EtaZeroStillEvaluatesTheLorentzianForItsDerivative) {
  // The value needs no exponential integral, but dOmega/deta = N*(2/pi*L - G) does.
  const TofPeakShape s{0.08, 0.03, 25.0, 6.0, 0.0};
  const TofPeakValue v = TofProfile(s, 3.0, true);
  TofPeakShape up = s;
  up.eta = 1e-4;
  const double fd = (TofProfile(up, 3.0, false).omega - v.omega) / 1e-4;
  EXPECT_NEAR(v.dEta, fd, 1e-6 * std::abs(fd));
}

TEST(TofProfile, GaussianReachBoundsTheGaussianPart) {
  const TofPeakShape s{0.08, 0.03, 25.0, 0.0, 0.0};
  const double peak = TofProfile(s, 0.0, false).omega;
  const double reach = TofGaussianReach(s);
  EXPECT_LT(TofProfile(s, reach, false).omega, 1e-11 * peak);
  EXPECT_LT(TofProfile(s, -reach, false).omega, 1e-11 * peak);
}

// Central finite difference of Omega in one parameter.
double Difference(const TofPeakShape& s, double delta, double TofPeakShape::*field, double step) {
  TofPeakShape up = s, down = s;
  up.*field += step;
  down.*field -= step;
  return (TofProfile(up, delta, false).omega - TofProfile(down, delta, false).omega) / (2 * step);
}

TEST(TofProfile, EveryDerivativeMatchesCentralDifferences) {
  // Small and large arguments of the exponential integral (|p| up to 40: the
  // continued fraction), both signs of y and z, and a sharp exponential.
  const TofPeakShape shapes[] = {
      {0.08, 0.03, 25.0, 6.0, 0.4},
      {0.5, 0.2, 4.0, 10.0, 0.7},
      {3.0, 0.5, 2.0, 2.0, 0.3},
  };
  for (const TofPeakShape& s : shapes) {
    for (double delta : {-60.0, -15.0, -3.0, 0.0, 2.0, 9.0, 40.0, 150.0}) {
      const TofPeakValue v = TofProfile(s, delta, true);
      const double scale = std::abs(TofProfile(s, 0.0, false).omega);
      auto expect = [&](double analytic, double fd, const char* what) {
        EXPECT_NEAR(analytic, fd, 1e-5 * std::abs(fd) + 1e-9 * scale)
            << what << " alpha " << s.alpha << " delta " << delta;
      };
      const double hd = 1e-4;
      const double fdDelta =
          (TofProfile(s, delta + hd, false).omega - TofProfile(s, delta - hd, false).omega) /
          (2 * hd);
      expect(v.dDelta, fdDelta, "Delta");
      expect(v.dAlpha, Difference(s, delta, &TofPeakShape::alpha, 1e-6 * s.alpha), "alpha");
      expect(v.dBeta, Difference(s, delta, &TofPeakShape::beta, 1e-6 * s.beta), "beta");
      expect(v.dSigma2, Difference(s, delta, &TofPeakShape::sigma2, 1e-5 * s.sigma2), "sigma2");
      expect(v.dGamma, Difference(s, delta, &TofPeakShape::gamma, 1e-5 * s.gamma), "gamma");
      expect(v.dEta, Difference(s, delta, &TofPeakShape::eta, 1e-5), "eta");
    }
  }
}

}  // namespace
}  // namespace corvinet
