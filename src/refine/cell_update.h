// The cell of a phase rebuilt from its six refined metric coefficients, with standard deviations
// and volume.
#pragma once

#include <array>

#include "records/job.h"
#include "records/phase.h"
#include "records/table1.h"

namespace corvinet {

// Covariance of the six coefficients A..F of a phase in a pattern.
using CoefficientCovariance = std::array<std::array<double, 6>, 6>;

// Derivatives of a, b, c, alpha, beta, gamma (angles in degrees) with respect
// to the six coefficients: row i is the constant, column j the coefficient.
using CellJacobian = std::array<std::array<double, 6>, 6>;

// The cell constants with their standard deviations.
struct CellWithSigma {
  Table1<float, 6> cell;
  Table1<float, 6> sigma;
};

// V(i,j) = m(i) m(j) C(L(i), L(j)) over slots 6..11 of the phase in the
// pattern, 0 where a slot has no parameter number.
CoefficientCovariance CoefficientCovarianceOf(const Job& job, const PhasePattern& pp);

// Analytical derivatives of the constants with respect to the coefficients,
// through the direct metric G = (G*)^-1 and dG = -G dG* G.
CellJacobian CellDerivatives(const Table1<float, 6>& coefficients);

// The cell from the coefficients and, by the quadratic form of the
// derivatives with the covariance, the standard deviation of each constant.
CellWithSigma CellAndSigmaFromCoefficients(const Table1<float, 6>& coefficients,
                                           const CoefficientCovariance& covariance);

// Angles within 0.0001 degree of 90 or 120 are set to it exactly.
void SnapSpecialAngles(Table1<float, 6>& cell);

// sigma(V) = V sqrt((sa/a)^2 + (sb/b)^2 + (sc/c)^2); the angles do not enter.
float VolumeSigma(const Table1<float, 6>& cell, const Table1<float, 6>& sigma, double volume);

// The cell step of the pass for a phase in a pattern, after slots 6..11 were
// updated: the constants, their sigma and shifts, the volume and its sigma,
// the scale variance (in job.limits.cells), and the metric rebuilt. A
// singular cell stops the run with "Bad cell parameters!".
void UpdateCell(Job& job, int phase, int ip);

}  // namespace corvinet
