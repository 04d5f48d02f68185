// The update of one refined value by its share of the shift, with the hard limits of its parameter.
#include "refine/apply_shift.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "format/fortran_format.h"
#include "surface/console.h"

namespace corvinet {

void ClearLimitPass(ParameterLimits& limits) {
  limits.LimitTouched.Fill(0);
  limits.LimitedShift.Fill(0.0f);
  limits.breaks.count = 0;
}

void AddLimitBreak(LimitBreaks& breaks, int signedParameter) {
  if (breaks.count >= breaks.entry.size()) return;
  ++breaks.count;
  breaks.entry[breaks.count] = signedParameter;
}

void ApplyShift(ParameterLimits& limits, float& value, float delta, float multiplier, int L,
                LimitBreaks& breaks) {
  if (limits.limited[L] == 0) {
    value += delta;
    return;
  }
  if (limits.LimitTouched[L] != 0) {
    // The stored shift already holds the first value's multiplier and
    // relaxation: a partner moves by exactly multiplier times that shift.
    value += multiplier * limits.LimitedShift[L];
    return;
  }
  limits.LimitTouched[L] = 1;
  const float moved = value + delta;
  if (moved < limits.low[L]) {
    AddLimitBreak(breaks, -L);
    limits.LimitedShift[L] = limits.low[L] - value;
    value = limits.low[L];
  } else if (moved <= limits.high[L]) {
    limits.LimitedShift[L] = delta;
    value = moved;
  } else {
    AddLimitBreak(breaks, L);
    limits.LimitedShift[L] = limits.high[L] - value;
    value = limits.high[L];
  }
}

ValueShift ShiftValue(Job& job, float& value, const Codeword& word, float relaxation) {
  ValueShift result;
  const int L = word.parameterNumber;
  if (L <= 0 || L > job.refinement.normal.B.size()) return result;
  const NormalMatrix& normal = job.refinement.normal;
  result.sigma = std::sqrt(std::fabs(normal.A(L, L)));
  const float delta = normal.B[L] * word.multiplier * relaxation;
  const float before = value;
  if (job.run.NRELL == 0 || L > job.run.MAXS) {
    value += delta;
  } else {
    ApplyShift(job.limits, value, delta, word.multiplier, L, job.limits.breaks);
    result.limited = true;
  }
  result.shift = value - before;
  return result;
}

float RelaxationFactor(const Job& job, int relaxationClass) {
  return job.run.relaxationFactor[relaxationClass];
}

void ReportLimitBreaks(Job& job, bool writeSum, const LimitBreaks& breaks, int fittedCount) {
  if (breaks.count == 0) return;
  const auto write = [&](const std::string& line) {
    WriteLine(job, Unit::Out, line);
    if (writeSum) WriteLine(job, Unit::Sum, line);
  };
  write(" => WARNING!! the following parameters have gone out of limits!");
  const int shown = std::min(breaks.count, std::max(fittedCount, 0));
  for (int i = 1; i <= shown; ++i) {
    const int entry = breaks.entry[i];
    const int L = std::abs(entry);
    const float limit = entry > 0 ? job.limits.high[L] : job.limits.low[L];
    write(Fmt("(A,I4,A,G14.6)", "  -> Parameter no.: ", L, " Fixed to: ", limit));
  }
  write(" ");
}

}  // namespace corvinet
