// Tests of the moment slots: angles brought into one turn, the magnetic phase, moment norms and
// their warning.
#include <gtest/gtest.h>

#include <cmath>

#include "refine/magnetic_update.h"
#include "refine/update_case.h"

namespace corvinet {
namespace {

using testing::HasLine;
using testing::UpdateCase;

Table1<float, 6> Cell(float alpha, float beta, float gamma) {
  Table1<float, 6> cell;
  cell[1] = cell[2] = cell[3] = 4.0f;
  cell[4] = alpha;
  cell[5] = beta;
  cell[6] = gamma;
  return cell;
}

TEST(MagneticUpdate, AnAngleOf725IsReportedAs5AfterTheUpdate) {
  UpdateCase c;
  c->phases[1].Jbt = -1;
  AtomSite& atom = c.AddAtom("Fe");
  atom.ATP[6] = 4.0f;
  atom.ATP[7] = 700.0f;
  atom.ATC[7] = UpdateCase::Code(1);
  c.SetParameter(1, 25.0f, 0.0f);
  UpdateMagneticMoments(*c, 1, c.Pass());
  EXPECT_EQ(atom.ATP[7], 5.0f);
  const std::vector<std::string> out = c.Out();
  const int row = testing::FindLine(out, "      Value:");
  ASSERT_GE(row, 0);
  EXPECT_EQ(out[static_cast<std::size_t>(row)].substr(12, 24), "    4.000000    5.000000");
}

TEST(MagneticUpdate, SphericalAnglesTakeOneTurnButModulusAndSlotNineDoNot) {
  Phase phase;
  phase.Jbt = -1;
  AtomSite atom;
  atom.ATP[6] = 725.0f;   // modulus
  atom.ATP[8] = -370.0f;  // theta
  atom.ATP[9] = 725.0f;   // imaginary modulus
  atom.ATP[10] = 1085.0f;
  atom.ATP[11] = 360.0f;
  ReduceMomentAngles(phase, atom);
  EXPECT_EQ(atom.ATP[6], 725.0f);
  EXPECT_EQ(atom.ATP[8], -10.0f);
  EXPECT_EQ(atom.ATP[9], 725.0f);
  EXPECT_EQ(atom.ATP[10], 5.0f);
  EXPECT_EQ(atom.ATP[11], 0.0f);
}

TEST(MagneticUpdate, CartesianComponentsAreNotTurned) {
  Phase phase;
  phase.Jbt = 1;
  AtomSite atom;
  atom.ATP[7] = 725.0f;
  ReduceMomentAngles(phase, atom);
  EXPECT_EQ(atom.ATP[7], 725.0f);
}

TEST(MagneticUpdate, WithJbt5SlotsFromSevenTurnExceptEight) {
  Phase phase;
  phase.Jbt = 5;
  AtomSite atom;
  atom.ATP[7] = 400.0f;
  atom.ATP[8] = 400.0f;
  atom.ATP[9] = 400.0f;
  atom.ATP[12] = 1.5f;  // with Jbt 5 slot 12 is an angle, not a phase
  ReduceMomentAngles(phase, atom);
  EXPECT_EQ(atom.ATP[7], 40.0f);
  EXPECT_EQ(atom.ATP[8], 400.0f);
  EXPECT_EQ(atom.ATP[9], 40.0f);
  EXPECT_EQ(atom.ATP[12], 1.5f);
}

TEST(MagneticUpdate, TheMagneticPhaseKeepsItsFractionalPart) {
  Phase phase;
  phase.Jbt = 1;
  AtomSite atom;
  atom.ATP[12] = 1.25f;
  ReduceMomentAngles(phase, atom);
  EXPECT_EQ(atom.ATP[12], 0.25f);
  atom.ATP[12] = -2.75f;
  ReduceMomentAngles(phase, atom);
  EXPECT_EQ(atom.ATP[12], -0.75f);
}

TEST(MomentNorm, OrthogonalAxesGiveTheEuclideanNormAndItsSigma) {
  const float m[3] = {3.0f, 4.0f, 0.0f};
  const float s[3] = {0.1f, 0.2f, 0.5f};
  const MomentNorm norm = MomentNormOf(m, s, Cell(90.0f, 90.0f, 90.0f));
  EXPECT_NEAR(norm.moment, 5.0f, 1e-6);
  // sigma^2 = ((3*0.1)^2 + (4*0.2)^2) / 25
  EXPECT_NEAR(norm.sigma, std::sqrt((0.09 + 0.64) / 25.0), 1e-6);
  EXPECT_FALSE(norm.warned);
}

TEST(MomentNorm, TheCellAnglesWeightTheCrossTerms) {
  const float m[3] = {1.0f, 1.0f, 0.0f};
  const float s[3] = {0.0f, 0.0f, 0.0f};
  // Two unit components 120 degrees apart: M^2 = 1 + 1 + 2 cos 120 = 1.
  EXPECT_NEAR(MomentNormOf(m, s, Cell(90.0f, 90.0f, 120.0f)).moment, 1.0f, 1e-6);
  const float n[3] = {0.0f, 2.0f, 1.0f};
  // b and c at alpha = 60: M^2 = 4 + 1 + 2*2*0.5 = 7.
  EXPECT_NEAR(MomentNormOf(n, s, Cell(60.0f, 90.0f, 90.0f)).moment, std::sqrt(7.0f), 1e-5);
}

TEST(MomentNorm, AZeroMomentIsReportedAndKeptAtTheSmallestSquare) {
  const float m[3] = {0.0f, 0.0f, 0.0f};
  const float s[3] = {0.1f, 0.1f, 0.1f};
  const MomentNorm norm = MomentNormOf(m, s, Cell(90.0f, 90.0f, 90.0f));
  EXPECT_TRUE(norm.warned);
  EXPECT_NEAR(norm.moment, 1.0e-5f, 1e-9);
  EXPECT_EQ(norm.sigma, 0.0f);
}

TEST(MomentNorm, AnImpossibleCellGivesANegativeSquareThatIsTakenInMagnitude) {
  // Three axes all 180 degrees apart cannot exist: M^2 = 3 - 6 = -3, and the
  // quadratic form of (m_i sigma_i) is -3 as well.
  const float m[3] = {1.0f, 1.0f, 1.0f};
  const float s[3] = {1.0f, 1.0f, 1.0f};
  const MomentNorm norm = MomentNormOf(m, s, Cell(180.0f, 180.0f, 180.0f));
  EXPECT_TRUE(norm.warned);
  EXPECT_NEAR(norm.moment, std::sqrt(3.0f), 1e-5);
  EXPECT_NEAR(norm.sigma, 1.0f, 1e-5);
}

TEST(MagneticUpdate, AZeroMomentOfAJbt1PhaseShowsTheWarningOnTheConsole) {
  UpdateCase c;
  c->phases[1].Jbt = 1;
  c.AddAtom("Mn");
  UpdateMagneticMoments(*c, 1, c.Pass());
  EXPECT_TRUE(HasLine(c.Console(), " Something is going wrong in magnetic moment!"));
}

TEST(MagneticUpdate, MomentsTakeRatAndTheirNormIsPrinted) {
  UpdateCase c;
  c->run.relaxationFactor[1] = 0.5f;
  c->run.relaxationFactor[2] = 0.25f;
  c->phases[1].Jbt = 1;
  AtomSite& atom = c.AddAtom("Mn");
  atom.ATP[6] = 2.0f;
  atom.ATC[6] = UpdateCase::Code(1);
  atom.ATP[7] = 4.0f;
  c.SetParameter(1, 2.0f, 0.0f);
  UpdateMagneticMoments(*c, 1, c.Pass());
  EXPECT_EQ(atom.ATP[6], 3.0f);
  EXPECT_TRUE(HasLine(c.Out(), "   Mn Real moment:   5.00000 (  0.00000)"));
  EXPECT_FALSE(HasLine(c.Console(), " Something is going wrong in magnetic moment!"));
}

TEST(MagneticUpdate, NuclearAtomsOfAJbt10PhaseHaveNoMoment) {
  UpdateCase c;
  c->phases[1].Jbt = 10;
  c.AddAtom("O");
  UpdateMagneticMoments(*c, 1, c.Pass());
  EXPECT_TRUE(c.Out().empty());
  EXPECT_TRUE(c.Console().empty());
}

}  // namespace
}  // namespace corvinet
