// The update of one refined value by its share of the shift, with the hard limits of its parameter.
#pragma once

#include "records/codeword.h"
#include "records/job.h"
#include "records/parameter_limits.h"

namespace corvinet {

// Relaxation classes of the control file (R_at, R_an, R_pr, R_gl), as indices
// of RunOptions::relaxationFactor.
namespace Relaxation {
constexpr int kAtom = 1;         // atom slots 1 to 12: positions, B, occupancy, moments
constexpr int kAnisotropic = 2;  // atom slots 13 to 32: betas, form-factor parameters
constexpr int kProfile = 3;      // peak slots, the cell and the propagation vectors
constexpr int kGlobal = 4;       // global slots of a pattern
}  // namespace Relaxation

// What the update did to one value.
struct ValueShift {
  float shift = 0.0f;    // the change of the value in this pass
  float sigma = 0.0f;    // sqrt|C(L,L)|, without the multiplier; 0 when not refined
  bool limited = false;  // the value went through ApplyShift (NRELL > 0, L <= FittedCount)
};

// Clears LimitTouched and the list of breaks: the start of an update pass.
void ClearLimitPass(ParameterLimits& limits);

// Appends a signed parameter number to the list, at most MSZ entries.
void AddLimitBreak(LimitBreaks& breaks, int signedParameter);

// value += delta under the limits of parameter L. The first value holding L
// is kept inside [low, high] (a break is listed when it is not) and its
// effective shift stored; every later value holding L moves by
// multiplier * that stored shift.
void ApplyShift(ParameterLimits& limits, float& value, float delta, float multiplier, int L,
                LimitBreaks& breaks);

// The update of one value with its codeword and relaxation factor, from the
// covariance matrix and the shift vector of the cycle. A value without a
// parameter number does not change and reports shift and sigma 0.
ValueShift ShiftValue(Job& job, float& value, const Codeword& word, float relaxation);

// The relaxation factor of a class.
float RelaxationFactor(const Job& job, int relaxationClass);

// The limit report of the pass on the .out file and, with writeSum, on the
// .sum file; nothing when the list is empty.
void ReportLimitBreaks(Job& job, bool writeSum, const LimitBreaks& breaks, int fittedCount);

}  // namespace corvinet
