// The integrated-intensity observations of a phase: calculated values, reliability factors, rows of
// the normal equations.
#pragma once

#include <string>
#include <vector>

#include "model/structure_factor.h"
#include "records/job.h"

namespace corvinet {

// What an evaluation does besides computing the values and the factors.
enum class IntensityMode {
  kFactors,    // values and factors only
  kEquations,  // also the rows of the normal equations, in a cycle
};

// The factors of an evaluation, as stored in the phase's data.
struct IntensityFactors {
  float RF2 = 0.0f, RF2w = 0.0f, RF = 0.0f, CHI2 = 0.0f;
  int observed = 0;
  bool chi2Defined = true;  // false when the observations are not more than the parameters
};

// The scale of group g (1..6) of an |Irf| 4 phase: Sc1..Sc5, Sc6.
float GroupScale(const PhasePattern& c, int g);

// Computes the calculated value of every observation of phase k in pattern
// ip: scale of the group times Corr times F² (times multiplicity and Lp for
// powder clusters, the value of a cluster being the sum over its members),
// stores it with the variance of each observation, and the factors RF2,
// RF2w, RF and CHI2 in the phase's data. With kEquations each observed value
// adds its row, weighted Rmua/variance, to the normal equations.
IntensityFactors EvaluateIntensities(Job& job, StructureFactorScratch& scratch, int ip, int k,
                                     IntensityMode mode);

// The factor lines of phase k: " => Phase:", RF2, RF2w, RF (single-crystal
// data only) and Chi2.
std::vector<std::string> IntensityFactorLines(int k, int datatype, const IntensityFactors& f);

// The evaluation of every |Irf| 4 phase of every pattern for one cycle: the
// console line, the rows of the equations, the factor lines on the console;
// returns the global chi-square of the intensity observations as step 9 of a
// cycle forms it from `previous` (the chi-square of the profiles).
float AccumulateIntensityObservations(Job& job, StructureFactorScratch& scratch, float previous);

// The global chi-square of the final pass: `profiles` (that of the patterns)
// and the chi-square of the last evaluation of every |Irf| 4 phase, averaged
// as a cycle averages them.
float GlobalChi2WithIntensities(const Job& job, float profiles);

// The list of observed and calculated values of phase k in pattern ip for the
// .out file, with the factor lines on .out, .sum and the console.
void ReportIntensityList(Job& job, StructureFactorScratch& scratch, int ip, int k);

// True when some phase of some pattern has |Irf| 4.
bool HasIntensityObservations(const Job& job);

}  // namespace corvinet
