// Decoding of a typed code with the check that its parameter fits the normal equations.
#include "control/codeword_check.h"

#include "format/fortran_format.h"
#include "surface/console.h"

namespace corvinet {

Codeword DecodeCheckedCode(Job& job, float typed) {
  Codeword w = DecodeCodeword(typed);
  if (w.parameterNumber <= job.dimensions.MSZ) {
    GrowParameterTables(job, w.parameterNumber);
    return w;
  }
  ConsoleLine(job, Fmt("(A,F12.2)", "                        Error in a code: ", typed));
  ConsoleLine(job, Fmt("(A,I4)", "    The maximum number of parameters is: ", job.dimensions.MSZ));
  StopBox(job, " Error in a code ");
}

}  // namespace corvinet
