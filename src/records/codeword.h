// A refinement code as typed in the control file, decoded into parameter number and multiplier.
#pragma once

namespace corvinet {

struct Codeword {
  int parameterNumber = 0;  // least-squares parameter, 0: not refined
  float multiplier = 0.0f;  // the parameter's shift times this moves the value
};

// For a typed code c: n = trunc(|c|*0.1) is the parameter number and
// sign(c)(|c| - 10n) the multiplier. A code of magnitude 3010 or more gives a
// number above the capacity; callers that check it compare with MSZ.
Codeword DecodeCodeword(float code);

}  // namespace corvinet
