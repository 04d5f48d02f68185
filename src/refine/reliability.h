// Reliability factors of a pattern: residual sums of both point sets, derived factors, Scor.
#pragma once

#include <string_view>

#include "records/job.h"
#include "records/pattern.h"
#include "records/reliability_state.h"

namespace corvinet {

// The last pass of the cycles: the last cycle, or the extra pass after convergence.
constexpr int kConvergedEndMarker = 123;

// Sums of pattern ip over its non-excluded points (excluded regions tested by
// point index) into job.reliability.pattern[ip].all, and over those of them
// whose order code is 0 or kExcludedPoint into .nonBragg, over the others into .bragg;
// then the derived factors of both sets (ReliabilityIndices). In the last pass (cycle = NCY or
// endMarker = 123) also Scor, reported on the .out and .sum files. For the cycle driver: the
// weighted residual sum of the pattern is .all.Residual and its count of Bragg points .setB.N.
void ResidualStatistics(Job& job, int ip, int cycle, int endMarker);

// Point sums of the pattern in double precision, kept in single precision:
// all points, the non-Bragg points and the Bragg points.
void AccumulateResidualSums(const Pattern& pattern, ResidualSums& all, ResidualSums& nonBragg,
                            ResidualSums& bragg);

// The derived factors of both sets of pattern ip from its sums and the number
// of refined parameters (MAXS).
void ReliabilityIndices(Job& job, int ip);

// The factors of the set with the given sums, N points and p refined
// parameters; deviance, the sixth of the sum of 1/Yc and the Durbin-Watson
// statistic are given because the Bragg set forms them in its own way.
ReliabilityFactors DerivedFactors(const ResidualSums& sums, int n, int p, float deviance,
                                  float invYcalSixth, float dwStat);

// The correlated-residuals factor over the non-excluded Bragg points, with
// residualB the weighted residual sum of those points.
float CorrelatedResidualsFactor(const Pattern& pattern, float residualB);

// Prints the factors of pattern ip: the .out block of both sets when
// writeOut, the .sum block of both sets and the .rpa rows (JCIL > 0) when
// writeSum, which marks the last pass; the console lines of all points
// always. `condition` is the condition value of the solver, `methodLabel`
// "L.S." or "M.L.".
void ReportReliability(Job& job, int ip, bool writeOut, bool writeSum, int cycle,
                       std::string_view methodLabel, float condition);

// The tagged rows of pattern ip on the parameter record file (unit 2).
void RecordReliability(Job& job, int ip);

}  // namespace corvinet
