// The pseudo-Voigt convoluted with the asymmetry of axial divergence (Finger, Cox and Jephcoat).
#include "model/axial_divergence.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace corvinet {

namespace {

constexpr double kDegree = 0.017453292519943295;
constexpr double kPi = 3.14159265358979324;
constexpr std::array<int, 14> kRuleSizes = {6,   10,  20,  40,  60,  80,  100,
                                            150, 200, 300, 400, 600, 800, 1000};

// The upper halves of the Gauss-Legendre rules on [-1, 1], made once.
struct GaussLegendreTable {
  std::array<std::vector<double>, 14> x;
  std::array<std::vector<double>, 14> w;
  GaussLegendreTable() {
    for (std::size_t r = 0; r < kRuleSizes.size(); ++r) Build(kRuleSizes[r], x[r], w[r]);
  }
  // Newton on P_n from the Chebyshev guesses; positive roots, largest last.
  static void Build(int n, std::vector<double>& xs, std::vector<double>& ws) {
    for (int i = n / 2; i >= 1; --i) {
      double z = std::cos(kPi * (i - 0.25) / (n + 0.5));
      double dp = 0.0;
      for (int it = 0; it < 100; ++it) {
        double p0 = 1.0, p1 = 0.0;
        for (int k = 1; k <= n; ++k) {
          const double p2 = p1;
          p1 = p0;
          p0 = ((2.0 * k - 1.0) * z * p1 - (k - 1.0) * p2) / k;
        }
        dp = n * (z * p0 - p1) / (z * z - 1.0);
        const double step = p0 / dp;
        z -= step;
        if (std::fabs(step) < 1e-15) break;
      }
      xs.push_back(z);
      ws.push_back(2.0 / ((1.0 - z * z) * dp * dp));
    }
  }
};

const GaussLegendreTable& Table() {
  static const GaussLegendreTable table;
  return table;
}

// The rule whose size first reaches k = trunc((2theta0 - Emin)*400), at most the last.
int RuleFor(double extent) {
  const double k = std::trunc(extent * 400.0);
  if (k <= 6.0) return 1;
  for (int r = 1; r <= 14; ++r) {
    if (kRuleSizes[static_cast<std::size_t>(r - 1)] >= k) return r;
  }
  return 14;
}

// pV of unit area at distance delta (degrees) with FWHM gamma, and its slopes.
struct PseudoVoigtAt {
  double value, dDelta, dGamma, dEta;
};

PseudoVoigtAt PseudoVoigtOf(double delta, double gamma, double eta) {
  const double u = delta / gamma;
  const double x2 = u * u;
  const double lor = 1.0 / (1.0 + 4.0 * x2);
  const double gau = std::exp(-4.0 * std::log(2.0) * x2);
  const double cl = 2.0 / (kPi * gamma);
  const double cg = 2.0 * std::sqrt(std::log(2.0) / kPi) / gamma;
  const double value = eta * cl * lor + (1.0 - eta) * cg * gau;
  // d/dx2 of the two shapes, then x2 = delta^2/gamma^2.
  const double dx2 =
      eta * cl * (-4.0 * lor * lor) + (1.0 - eta) * cg * gau * (-4.0 * std::log(2.0));
  const double dDelta = dx2 * 2.0 * delta / (gamma * gamma);
  const double dGamma = -value / gamma + dx2 * (-2.0 * x2 / gamma);
  return {value, dDelta, dGamma, cl * lor - cg * gau};
}

}  // namespace

int GaussLegendreRuleCount() {
  return static_cast<int>(kRuleSizes.size());
}

int GaussLegendreRuleSize(int rule) {
  return kRuleSizes[static_cast<std::size_t>(rule - 1)];
}

const double* GaussLegendreAbscissae(int rule) {
  return Table().x[static_cast<std::size_t>(rule - 1)].data();
}

const double* GaussLegendreWeights(int rule) {
  return Table().w[static_cast<std::size_t>(rule - 1)].data();
}

double AxialDivergenceMinimum(double SL, double DL, double twoTheta0) {
  const double c0 = std::cos(twoTheta0 * kDegree);
  const double apb = SL + DL;
  const double t = std::sqrt(1.0 + apb * apb) * c0;
  if (std::fabs(t) <= 1.0) return std::acos(t) / kDegree;
  return t > 0.0 ? 0.0 : 180.0;
}

AxialReach AxialDivergenceReach(double SL, double DL, double twoTheta0) {
  if (SL == 0.0 && DL == 0.0) return {};
  const double tail = twoTheta0 - AxialDivergenceMinimum(SL, DL, twoTheta0);
  return {std::max(tail, 0.0), std::max(-tail, 0.0)};
}

AxialDivergenceValue AxialDivergenceProfile(double eta, double gamma, double SL, double DL,
                                            double twoTheta, double twoTheta0) {
  AxialDivergenceValue out;
  if (SL == 0.0 && DL == 0.0) {
    const PseudoVoigtAt pv = PseudoVoigtOf(twoTheta - twoTheta0, gamma, eta);
    out.value = pv.value;
    out.dTwoTheta = pv.dDelta;
    out.dGamma = pv.dGamma;
    out.dEta = pv.dEta;
    return out;
  }
  double c = std::cos(twoTheta0 * kDegree);
  const double c0 = c;
  if (std::fabs(c) < 1e-15) c = 1e-15;
  const double apb = SL + DL;
  const double amb = SL - DL;
  // The inflection and the minimum of the weight function, in degrees.
  double tInfl = std::sqrt(1.0 + amb * amb) * c0;
  double eInfl = std::fabs(tInfl) <= 1.0 ? std::acos(tInfl) / kDegree : 0.0;
  if (SL == 0.0 || DL == 0.0) eInfl = twoTheta0;
  const double t2 = 1.0 + apb * apb;
  const double t = std::sqrt(t2) * c0;
  double eMin = 0.0, t1 = 0.0;
  if (std::fabs(t) <= 1.0) {
    eMin = std::acos(t) / kDegree;
    t1 = t2 * (1.0 - t2 * c0 * c0);
  } else {
    eMin = t > 0.0 ? 0.0 : 180.0;
  }
  // d(Emin)/dA in degrees, A being S_L or D_L.
  const double dEmin = t1 > 0.0 && std::fabs(t) <= 1.0 ? -apb * c0 / std::sqrt(t1) / kDegree : 0.0;
  const int rule = RuleFor(twoTheta0 - eMin);
  const int half = GaussLegendreRuleSize(rule) / 2;
  const double* xs = GaussLegendreAbscissae(rule);
  const double* ws = GaussLegendreWeights(rule);
  out.nodes = GaussLegendreRuleSize(rule);
  double sumWG = 0.0, sumWRG = 0.0, sumWdGdS = 0.0, sumWdGdD = 0.0;
  double sumRdGdS = 0.0, sumRdGdD = 0.0, sum2T = 0.0, sumGam = 0.0, sumEta = 0.0;
  double sumRdS = 0.0, sumRdD = 0.0;  // w G dR/dA through delta
  // The weight function is that of the peak: cos(2theta0), kept away from 0.
  const double cPoint = c;
  for (int k = 0; k < half; ++k) {
    const double x = xs[k], w = ws[k];
    const double delta = eMin + (twoTheta0 - eMin) * x;
    const double dDeltadA = (1.0 - x) * dEmin;
    const double sd = std::sin(delta * kDegree);
    double cd = std::cos(delta * kDegree);
    if (std::fabs(cd) < 1e-15) cd = 1e-15;
    const double rc = 1.0 / cd;
    const double tt = cd * cd - cPoint * cPoint;
    double F = 1.0, dFdA = 0.0;
    if (tt > 0.0) {
      const double root = std::sqrt(tt);
      F = std::fabs(cPoint) / root;
      dFdA = cd * std::fabs(cPoint) * sd * dDeltadA * kDegree / (tt * root);
    }
    // rc depends on delta as well: d(rc)/dA = rc * tan(delta) * d(delta)/dA.
    const double drcdA = rc * (sd / cd) * dDeltadA * kDegree;
    double G = 0.0, dGdS = 0.0, dGdD = 0.0;
    if (std::fabs(delta - eMin) > std::fabs(eInfl - eMin)) {
      if (SL > DL) {
        G = 2.0 * DL * F * rc;
        const double common = 2.0 * DL * (dFdA * rc + F * drcdA);
        dGdS = common;
        dGdD = common + 2.0 * F * rc;
      } else {
        G = 2.0 * SL * F * rc;
        const double common = 2.0 * SL * (dFdA * rc + F * drcdA);
        dGdD = common;
        dGdS = common + 2.0 * F * rc;
      }
    } else {
      G = (-1.0 + apb * F) * rc;
      const double common = apb * dFdA * rc + (-1.0 + apb * F) * drcdA;
      dGdS = common + F * rc;
      dGdD = dGdS;
    }
    const PseudoVoigtAt pv = PseudoVoigtOf(twoTheta - delta, gamma, eta);
    sumWG += w * G;
    sumWRG += w * G * pv.value;
    sumWdGdS += w * dGdS;
    sumWdGdD += w * dGdD;
    sumRdGdS += w * pv.value * dGdS;
    sumRdGdD += w * pv.value * dGdD;
    sum2T += w * G * pv.dDelta;
    sumGam += w * G * pv.dGamma;
    sumEta += w * G * pv.dEta;
    // R moves with delta: dR/dA = -dR/d(distance) * d(delta)/dA.
    sumRdS += w * G * (-pv.dDelta) * dDeltadA;
    sumRdD += w * G * (-pv.dDelta) * dDeltadA;
  }
  if (sumWG == 0.0) sumWG = 1.0;
  out.value = sumWRG / sumWG;
  out.dTwoTheta = sum2T / sumWG;
  out.dGamma = sumGam / sumWG;
  out.dEta = sumEta / sumWG;
  out.dSL = (sumRdGdS + sumRdS - out.value * sumWdGdS) / sumWG;
  out.dDL = (sumRdGdD + sumRdD - out.value * sumWdGdD) / sumWG;
  return out;
}

}  // namespace corvinet
