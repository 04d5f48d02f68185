// Tests of the mass of the cell contents of a phase, against Z x formula weight with IUPAC
// atomic weights.
#include "model/cell_mass.h"

#include <gtest/gtest.h>

#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

// A phase of `order` = nsym x nlat x icent general positions, atoms added by hand.
struct MassJob {
  testing::CapturedJob job;
  MassJob(int nsym, int nlat, int icent, int jbt = 0) {
    Phase& ph = job->phases[1];
    ph.group.NSYM = nsym;
    ph.group.NLAT = nlat;
    ph.group.ICENT = icent;
    ph.Jbt = jbt;
  }
  void Add(const std::string& typ, float occ, int nt = 0) {
    Phase& ph = job->phases[1];
    AtomSite& a = job->atoms[++ph.Nat];
    a.species = typ;
    a.ATP[5] = occ;
    a.N_t = nt;
  }
  CellMass Mass() { return CellMassOfPhase(*job, 1); }
};

// PbSO4, P n m a (8 general positions): Pb, S, O1, O2 on mirrors (Occ 0.5), O3 general.
// Z = 4: 4 x (207.2 + 32.06 + 4 x 15.999) = 1213.02.
TEST(CellMass, AnglesiteIsFourFormulaUnits) {
  MassJob m(4, 1, 2);
  m.Add("PB", 0.5f);
  m.Add("S", 0.5f);
  m.Add("O", 0.5f);
  m.Add("O", 0.5f);
  m.Add("O", 1.0f);
  const CellMass c = m.Mass();
  EXPECT_TRUE(c.unknownLabel.empty());
  EXPECT_NEAR(c.mass, 1213.02, 0.05);
}

// LaMnO3 nuclear and magnetic: the Mn atom bears a moment and is typed by its magnetic label.
// Z = 4: 4 x (138.905 + 54.938 + 3 x 15.999) = 967.36.
TEST(CellMass, MagneticLabelNamesItsElement) {
  MassJob m(4, 1, 2, 10);
  m.Add("LA", 0.5f);
  m.Add("MMN3", 0.5f, 1);
  m.Add("O", 0.5f);
  m.Add("O", 1.0f);
  EXPECT_NEAR(m.Mass().mass, 967.36, 0.05);
}

// NaCl, F m 3 m (192 general positions: 24 rotations x 4 centrings x inversion): Na and Cl on
// sites of multiplicity 4, Occ 4/192. Z = 4: 4 x (22.990 + 35.45) = 233.76.
TEST(CellMass, CentredCubicCountsEveryGeneralPosition) {
  MassJob m(24, 4, 2);
  m.Add("Na+1", 4.0f / 192.0f);
  m.Add("Cl-1", 4.0f / 192.0f);
  EXPECT_NEAR(m.Mass().mass, 233.76, 0.05);
}

TEST(CellMass, ObjectOrUnknownTypeIsNamed) {
  MassJob m(1, 1, 1);
  m.Add("O", 1.0f);
  m.Add("SPHS", 1.0f);
  EXPECT_EQ(m.Mass().unknownLabel, "SPHS");
  MassJob n(1, 1, 1);
  n.Add("QQ", 1.0f);
  EXPECT_EQ(n.Mass().unknownLabel, "QQ");
}

}  // namespace
}  // namespace corvinet
