// Absorption and extinction of a time-of-flight reflection, at its own wavelength.
#include "model/tof_factors.h"

#include <cmath>

namespace corvinet {

TofAbsorption TofAbsorptionFactor(int Iabscor, double lambdaT, double Abs1, double Abs2,
                                  double twoSinTh) {
  TofAbsorption out;
  switch (Iabscor) {
    case 1: {
      const double x = lambdaT * Abs1 + Abs2;
      double dAdx = 0.0;
      if (x <= 0.001) {
        out.A = 1.0 - (1.0 - (2.0 / 3.0) * x) * x;
        dAdx = -1.0 + (4.0 / 3.0) * x;
      } else {
        const double e = std::exp(-2.0 * x);
        out.A = (1.0 - e) / (2.0 * x);
        dAdx = e / x - out.A / x;
      }
      out.dAbs1 = dAdx * lambdaT;
      out.dAbs2 = dAdx;
      return out;
    }
    case 2: {
      const double y = lambdaT * Abs1;
      const double s2 = twoSinTh * twoSinTh;
      const double c1 = 1.71133 - 0.25 * 0.0368 * s2;
      const double c2 = -0.0927 - 0.25 * 0.375 * s2;
      out.A = std::exp(-c1 * y - c2 * y * y);
      out.dAbs1 = out.A * (-c1 - 2.0 * c2 * y) * lambdaT;
      return out;
    }
    case 3:
      out.A = std::exp(-lambdaT * Abs1);
      out.dAbs1 = -lambdaT * out.A;
      return out;
    default:
      return out;
  }
}

TofExtinction TofExtinctionFactor(double Extinc, double phaseMult, double F2, double lambdaT,
                                  double volume, double twoSinTh) {
  TofExtinction out;
  if (!(Extinc > 0.0) || !(volume > 0.0)) return out;
  const double k = phaseMult * F2 * (lambdaT / volume) * (lambdaT / volume);
  const double x = Extinc * k;
  const double eb = 1.0 / std::sqrt(1.0 + x);
  const double debdx = -0.5 / std::pow(1.0 + x, 1.5);
  double el = 0.0;
  double deldx = 0.0;
  if (x < 1.0) {
    el = 1.0 - x * (0.5 - (0.25 - 0.1041667 * x) * x);
    deldx = -(0.5 - (0.5 - 0.3125 * x) * x);
  } else {
    // EL = c x^(-1/2) b(x), b = 1 - 0.125/x - 0.0234375/x^2 - 0.01464844/x^3.
    const double r = 1.0 / x;
    const double b = 1.0 - r * (0.125 + (0.0234375 + 0.01464844 * r) * r);
    const double dbdx = r * r * (0.125 + (2.0 * 0.0234375 + 3.0 * 0.01464844 * r) * r);
    const double c = 0.7978846 * std::sqrt(r);
    el = c * b;
    deldx = -0.5 * el * r + c * dbdx;
  }
  const double sin2 = 0.25 * twoSinTh * twoSinTh;
  out.E = el + (eb - el) * sin2;
  out.dExtinc = (deldx + (debdx - deldx) * sin2) * k;
  return out;
}

}  // namespace corvinet
