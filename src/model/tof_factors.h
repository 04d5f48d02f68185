// Absorption and extinction of a time-of-flight reflection, at its own wavelength.
#pragma once

namespace corvinet {

// Atof and its derivatives with respect to the phase slots Abs1 and Abs2.
struct TofAbsorption {
  double A = 1.0;
  double dAbs1 = 0.0;
  double dAbs2 = 0.0;
};

// The absorption of model Iabscor (1 flat-plate like, 2 cylinder, 3 exponential,
// other none) at the wavelength lambdaT = TwoSinTh*T/Dtt1.
TofAbsorption TofAbsorptionFactor(int Iabscor, double lambdaT, double Abs1, double Abs2,
                                  double twoSinTh);

// Sabine's extinction and its derivative with respect to Extinc.
struct TofExtinction {
  double E = 1.0;
  double dExtinc = 0.0;
};

// x = Extinc*PhaseMult*F2*(lambdaT/V)^2; Ext = EL + (EB - EL) sin^2(theta), with
// sin^2(theta) = TwoSinTh^2/4. Extinc at or below 0 gives 1.
TofExtinction TofExtinctionFactor(double Extinc, double phaseMult, double F2, double lambdaT,
                                  double volume, double twoSinTh);

}  // namespace corvinet
