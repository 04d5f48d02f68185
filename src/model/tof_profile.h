// The time-of-flight peak: back-to-back exponentials convoluted with a pseudo-Voigt, with the
// complementary error function and the exponential integral it needs.
#pragma once

#include <complex>

namespace corvinet {

// The shape of one time-of-flight reflection, in microseconds.
struct TofPeakShape {
  double alpha = 0.0;   // rise rate of the leading exponential (1/us)
  double beta = 0.0;    // decay rate of the trailing exponential (1/us)
  double sigma2 = 0.0;  // variance of the Gaussian (us^2)
  double gamma = 0.0;   // full width of the Lorentzian (us)
  double eta = 0.0;     // Lorentzian share of the pseudo-Voigt
};

// Omega at a distance Delta = t - T from the peak, and its derivatives.
struct TofPeakValue {
  double omega = 0.0;
  double dDelta = 0.0, dAlpha = 0.0, dBeta = 0.0, dSigma2 = 0.0, dGamma = 0.0, dEta = 0.0;
};

// erfc(x) and its slope -2/sqrt(pi)*exp(-x^2).
double Erfc(double x);
double ErfcSlope(double x);

// exp(x^2)*erfc(x), finite for every x >= 0.
double ScaledErfc(double x);

// exp(z)*E1(z) for a complex z; on the negative real axis the value of the
// upper side of the cut (Im z = +0). z = 0 gives 1.0E+300.
std::complex<double> ExpE1Complex(std::complex<double> z);

// Omega(Delta) = N*((1-eta)*G + (2/pi)*eta*L) with N = alpha*beta/(2*(alpha+beta)),
// G = exp(u)*erfc(y) + exp(v)*erfc(z) and L = -Im[exp(p)E1(p)] - Im[exp(q)E1(q)]:
// unit area over the time axis. The derivatives are filled when asked.
TofPeakValue TofProfile(const TofPeakShape& shape, double delta, bool withDerivatives);

// The distance beyond which the Lorentzian share is all that remains of the
// peak: past it the Gaussian terms are below 1e-12 of their height.
double TofGaussianReach(const TofPeakShape& shape);

}  // namespace corvinet
