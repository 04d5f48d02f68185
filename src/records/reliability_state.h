// Residual sums, reliability factors and Bragg R-factors of each pattern, kept for the reports.
#pragma once

#include "records/dimension_limits.h"
#include "records/table1.h"

namespace corvinet {

// The point-by-point sums of one set of points, summed in double precision
// and kept in single precision.
// With Yo = Ytotal, Yb = BackgroundAt, Yc = Yb + Ycalc, d = Yo - Yc,
// w = 1/Variance and Yn = Yo - Yb.
struct ResidualSums {
  float SumYdif = 0.0f;     // sum |d|
  float SumYobs = 0.0f;     // sum Yo
  float SumYcal = 0.0f;     // sum Yc
  float SumwYobsSQ = 0.0f;  // sum w Yo^2
  float Residual = 0.0f;    // sum w d^2
  float SumYnet = 0.0f;     // sum Yn
  float SumwYnetSQ = 0.0f;  // sum w Yn^2
  float DwSum = 0.0f;       // sum of squared differences of successive d sqrt(w)
  float DevSum = 0.0f;      // sum Yo ln|Yo/Yc| - d
  float InvYcalSum = 0.0f;  // sum 1/Yc
  int points = 0;           // points summed
};

// The factors derived from the sums of one set of points.
struct ReliabilityFactors {
  ResidualSums sums;  // the sums of the set (for the Bragg set: all minus non-Bragg)
  int N = 0;          // points of the set
  int NP = 0;         // N minus the number of refined parameters
  float Rp = 0.0f, Rwp = 0.0f, Rexp = 0.0f, Chi2 = 0.0f;
  float conventionalRp = 0.0f, conventionalRwp = 0.0f;  // from Ynet
  float conventionalRexp = 0.0f, conventionalChi2 = 0.0f;
  float DwStat = 0.0f, DwExp = 0.0f;  // Durbin-Watson statistic and its expected value
  float Deviance = 0.0f, DevStar = 0.0f;
  float GoF = 0.0f;     // sqrt(Residual/N)
  float NSigma = 0.0f;  // N-sigma of the goodness of fit
};

// Everything this pattern's reliability pass keeps.
struct PatternReliability {
  ResidualSums all;         // all non-excluded points
  ResidualSums nonBragg;    // non-excluded points with order code 0 or 6000
  ResidualSums bragg;       // the other non-excluded points: those with a Bragg contribution
  ReliabilityFactors setA;  // all non-excluded points
  ReliabilityFactors setB;  // points with a Bragg contribution
  float Scor = 0.0f;        // correlated-residuals factor of the last pass
  // Bragg R-factor and RF-factor of each phase in this pattern.
  Table1<float, DimensionLimits::NPHT> braggR;
  Table1<float, DimensionLimits::NPHT> rfFactor;
};

struct ReliabilityState {
  Table1<PatternReliability, DimensionLimits::NPATT> pattern;
};

}  // namespace corvinet
