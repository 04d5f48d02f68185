// The pseudo-Voigt convoluted with the asymmetry of axial divergence (Finger, Cox and Jephcoat).
#pragma once

namespace corvinet {

// The value of the profile at one point and its derivatives.
struct AxialDivergenceValue {
  double value = 0.0;
  double dTwoTheta = 0.0;  // with respect to the point's 2theta (degrees)
  double dGamma = 0.0;     // with respect to the FWHM (degrees)
  double dEta = 0.0;
  double dSL = 0.0;
  double dDL = 0.0;
  int nodes = 0;  // the size of the Gauss-Legendre rule used (0 without asymmetry)
};

// The smallest angle the axial divergence reaches from a peak at twoTheta0 (degrees), Emin.
double AxialDivergenceMinimum(double SL, double DL, double twoTheta0);

// How far the tail of a peak at twoTheta0 widens its base (degrees): below the peak under 90
// degrees, above it beyond; nothing when both ratios are 0.
struct AxialReach {
  double below = 0.0;
  double above = 0.0;
};
AxialReach AxialDivergenceReach(double SL, double DL, double twoTheta0);

// The profile at 2theta of a peak at twoTheta0 with FWHM gamma and mixing eta
// (angles in degrees), S_L = SL, D_L = DL. With both ratios 0 it is the plain
// pseudo-Voigt of unit area, with zero derivatives for S_L and D_L.
AxialDivergenceValue AxialDivergenceProfile(double eta, double gamma, double SL, double DL,
                                            double twoTheta, double twoTheta0);

// The sizes of the Gauss-Legendre rules (6 to 1000 nodes) and the upper half
// of each: abscissae in (0, 1] of the rule on [-1, 1], with their weights.
int GaussLegendreRuleCount();
int GaussLegendreRuleSize(int rule);  // rule 1..14
const double* GaussLegendreAbscissae(int rule);
const double* GaussLegendreWeights(int rule);

}  // namespace corvinet
