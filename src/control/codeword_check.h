// Decoding of a typed code with the check that its parameter fits the normal equations.
#pragma once

#include "records/codeword.h"
#include "records/job.h"

namespace corvinet {

// Decodes a typed code; a parameter number above MSZ shows the code and the
// capacity and stops the run with " Error in a code ".
Codeword DecodeCheckedCode(Job& job, float typed);

}  // namespace corvinet
