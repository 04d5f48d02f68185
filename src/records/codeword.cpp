// Decoding of typed refinement codes.
#include "records/codeword.h"

#include <cmath>

namespace corvinet {

Codeword DecodeCodeword(float code) {
  const float magnitude = std::fabs(code);
  // The factor is the single-precision 0.1, the product formed in extended precision.
  const long double scaled = static_cast<long double>(magnitude) * static_cast<long double>(0.1f);
  const int n = static_cast<int>(std::trunc(scaled));
  Codeword word;
  word.parameterNumber = n;
  const float rest = magnitude - 10.0f * static_cast<float>(n);
  word.multiplier = code < 0.0f ? -rest : rest;
  return word;
}

}  // namespace corvinet
