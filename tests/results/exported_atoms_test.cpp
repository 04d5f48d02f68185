// The atoms the exports write for a rigid-body phase: the atoms its groups place, never the
// lines of the groups' parameters, in the structure files and the CIF alike.
#include "results/exported_atoms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "format/fortran_format.h"
#include "refine/rigid_case.h"
#include "results/cif_export.h"
#include "results/structure_exports.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::RigidCase;
using testing::ScratchDir;

TEST(ExportedAtoms, ARigidBodyPhaseExportsItsPlacedAtomsAndNotItsGroupLines) {
  ScratchDir dir;
  dir.Write("x.dat", "");
  CapturedJob job;
  RigidCase c;
  ASSERT_TRUE(testing::ReadControlText(dir, job, testing::RigidControlText(c), false))
      << job.Console();
  const std::vector<ExportedAtom> atoms = ExportedAtoms(*job, 1);
  ASSERT_EQ(atoms.size(), 6u);
  EXPECT_EQ(atoms[0].site.label, "Pb");
  EXPECT_EQ(atoms[1].site.species, "S");
  // The S stands at the origin of the group; the first O at R (d, d, d) from it.
  for (int s = 0; s < 3; ++s) {
    EXPECT_FLOAT_EQ(atoms[1].site.ATP[1 + s], c.origin[static_cast<std::size_t>(s)]);
  }
  EXPECT_NE(atoms[2].site.ATP[1], 0.84870f);
  for (const ExportedAtom& e : atoms) {
    EXPECT_NE(e.site.species, "RBG");
    EXPECT_EQ(e.site.ATC[1].parameterNumber, 0);
    EXPECT_EQ(e.sigma[1], 0.0);  // nothing refined
  }
  job->phases[1].Jvi = 1;
  const std::vector<std::string> plot = StructurePlotLines(*job, 1, 1);
  const std::string s =
      Fmt("(A4,1X,A4,1X,3F10.5)", "ATOM", "SO4 ", c.origin[0], c.origin[1], c.origin[2]);
  EXPECT_NE(std::find(plot.begin(), plot.end(), s), plot.end());
  for (const std::string& line : plot) EXPECT_EQ(line.find("RBG"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
