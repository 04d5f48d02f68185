// The symmetry report of a phase on .out, and the operator listing of the .sym file.
#include <cstdlib>
#include <string>

#include "crystal/phase_symmetry.h"
#include "crystal/rotation_table.h"
#include "crystal/space_group_symbol.h"
#include "crystal/symmetry_texts.h"
#include "format/fortran_format.h"
#include "surface/console.h"

namespace corvinet {
namespace {

constexpr const char* kOperatorHeader =
    "  No.  IT   Symmetry symbol    Rotation part     Associated Translation";

const char* CentricityWord(bool centric) {
  return centric ? " centrosymmetric" : " non-centrosymmetric";
}

void ReportSymbolCase(Job& job, const SpaceGroup& g, std::string_view banner) {
  if (!banner.empty()) WriteLine(job, Unit::Out, banner);
  WriteLine(
      job, Unit::Out,
      Fmt("(A,I4)", " -> The multiplicity of the general position is:", g.generalPositionCount));
  WriteLine(job, Unit::Out,
            std::string(" -> The space group is") + CentricityWord(g.isAcentric == 0));
  WriteLine(job, Unit::Out, " -> Lattice type" + std::string(CentringText(g.latticeIndex)));
  WriteLine(job, Unit::Out, " -> Reduced set of symmetry operators:");
}

void ReportFileCase(Job& job, const SpaceGroup& g) {
  WriteLine(job, Unit::Out, " => Symmetry operators read from file");
  WriteLine(job, Unit::Out,
            Fmt("(A,I3,A,I3)", " => Laue class (LAUE):", g.LAUE,
                "   Magnetic matrices per operator (NMAGM):", g.NMAGM));
  WriteLine(
      job, Unit::Out,
      Fmt("(A,I4)", " -> The multiplicity of the general position is:", g.NSYM * g.ICENT * g.NLAT));
  WriteLine(job, Unit::Out,
            std::string(" -> The structure is treated as") + CentricityWord(g.ICENT == 2));
}

void ReportOperator(Job& job, const SpaceGroup& g, int n) {
  const int isl = g.isl[n];
  WriteLine(job, Unit::Out,
            Fmt("(I4,A,I2,A,A,A,A,A,3F8.4,A)", n, ": (", SymbolTableIndex(isl), ") ",
                SeitzSymbol(isl), " --> ", RotationText(isl), " + {", g.translation(1, n),
                g.translation(2, n), g.translation(3, n), "}"));
  for (int m = 1; m <= g.NMAGM; ++m) {
    const int rotation = g.magneticRotation(m, n);
    if (rotation == 0) continue;
    WriteLine(job, Unit::Out,
              Fmt("(A,I1,A,A,A,F8.4)", "  (", m, "): ", MomentText(rotation),
                  " MPhas: ", g.magneticPhase(m, n)));
  }
}

// The count and lattice letter, then per operator the rows of its matrix
// each with its translation.
void ListOnSymFile(Job& job, const SpaceGroup& g) {
  WriteLine(job, Unit::Sym, Fmt("(I4,2X,A)", g.NSYM, std::string(1, g.latticeLetter)));
  for (int n = 1; n <= g.NSYM; ++n) {
    const int isl = g.isl[n];
    const IntMatrix3& r = IROT(std::abs(isl));
    const int s = isl < 0 ? -1 : 1;
    WriteLine(job, Unit::Sym,
              Fmt("(3(3I3,F10.5))", s * r(1, 1), s * r(1, 2), s * r(1, 3), g.translation(1, n),
                  s * r(2, 1), s * r(2, 2), s * r(2, 3), g.translation(2, n), s * r(3, 1),
                  s * r(3, 2), s * r(3, 3), g.translation(3, n)));
  }
}

}  // namespace

void SymmetryReport(Job& job, int k, std::string_view banner) {
  const SpaceGroup& g = job.phases[k].group;
  if (g.Isy == 0) {
    ReportSymbolCase(job, g, banner);
  } else {
    ReportFileCase(job, g);
  }
  WriteLine(job, Unit::Out, kOperatorHeader);
  for (int n = 1; n <= g.NSYM; ++n) ReportOperator(job, g, n);
  if (job.run.JSY == 1) ListOnSymFile(job, g);
}

}  // namespace corvinet
