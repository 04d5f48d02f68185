// The comments of the report on a conical magnetic phase: how its structure factor is formed and
// how its reflections are best generated.
#include "results/magnetic_comments.h"

#include <cstdlib>

#include "format/fortran_format.h"

namespace corvinet {

std::vector<std::string> ConicalComments(int phase, int Jbt) {
  if (std::abs(Jbt) != 5) return {};
  return {Fmt("(A,I3)", " ==> Comments on Magnetic Refinement of phase:", phase),
          "    Magnetic structure factor calculated for a conical",
          "   It is recommended to generate the reflections using L-1 as ",
          "   Space group symbol and use for conical structures the value",
          "   IRF=0 (Generates satellites+ fundamentals). For a pure helix",
          "   IFR=-1 (only satellites are generated)",
          "   L=P,A,B,C,F,I,R is the lattice type -> Primitive or Centered)"};
}

}  // namespace corvinet
