// Report listing of the reflections of one phase in one pattern.
#include "crystal/reflection_list.h"

#include <cstdlib>

#include "format/fortran_format.h"
#include "records/reflection.h"
#include "surface/console.h"

namespace corvinet {

namespace {

std::string Heading(bool satellites, bool separateWidths) {
  std::string head =
      satellites ? "1No.  Code    H   K   L  IVK   Mult       Hw     2theta/TOF       L-factor"
                 : "1No.  Code    H   K   L   Mult       Hw     2theta/TOF       L-factor";
  if (separateWidths) head += "        HWL        HWG        ETA";
  return head;
}

}  // namespace

int LaueWidthFlag(int laue) {
  switch (laue) {
    case 3:
    case 6:
    case 7:
    case 8:
    case 9:
    case 11:
    case 12:
      return 1;
    default:
      return 2;
  }
}

void WriteReflectionList(Job& job, int k, int ip) {
  const Phase& ph = job.phases[k];
  const ReflectionTable& table = job.patterns[ip].reflections;
  const bool satellites = ph.Nvk > 0;
  const bool separateWidths = ProfileOf(ph.pat[ip]) != ProfileCode::kTchPseudoVoigt;
  WriteLine(job, Unit::Out, Heading(satellites, separateWidths));
  int number = 0;
  for (int s = 1; s <= table.total; ++s) {
    const Reflection& r = table.slot[s];
    if (KeyPhase(r.key) != k) continue;
    ++number;
    std::string line = satellites ? Fmt("(I4,I6,4I4,I7)", number, KeyWavelength(r.key), KeyH(r.key),
                                        KeyK(r.key), KeyL(r.key), r.satelliteIndex, r.multiplicity)
                                  : Fmt("(I4,I6,3I4,I7)", number, KeyWavelength(r.key), KeyH(r.key),
                                        KeyK(r.key), KeyL(r.key), r.multiplicity);
    line += Fmt("(F9.4,F15.4,F15.4)", r.Fwhm, r.position, r.LpM);
    if (separateWidths) {
      line += Fmt("(3F11.5)", r.lorentzianHW, r.gaussianHWSquared, r.eta);
    }
    WriteLine(job, Unit::Out, line);
  }
}

}  // namespace corvinet
