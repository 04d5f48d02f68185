// Tests of the reading of rigid-body groups: the checks that stop a control file, and what the
// report says of a group it accepts.
#include "control/rigid_groups.h"

#include <gtest/gtest.h>

#include <string>

#include "control/unmodelled_inputs.h"
#include "refine/rigid_case.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::RigidCase;
using testing::ScratchDir;

bool Read(ScratchDir& dir, CapturedJob& job, const RigidCase& c) {
  dir.Write("x.dat", "");
  return testing::ReadControlText(dir, job, testing::RigidControlText(c), false);
}

TEST(RigidGroups, AStandardGroupIsGatheredWithItsAtomsAndReported) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(Read(dir, job, RigidCase{})) << job.Console();
  const RigidModel& m = job->rigid[1];
  ASSERT_EQ(m.groups.size(), 1u);
  EXPECT_EQ(m.groups[0].atoms.size(), 5u);
  EXPECT_EQ(m.effective.size(), 6u);  // Pb, S and four O
  const std::string out = dir.Read("x.out");
  EXPECT_NE(out.find("Rigid-body-constraints / TLS option"), std::string::npos);
  EXPECT_NE(out.find(" ==> Standard option : rigid-body group "), std::string::npos);
  EXPECT_NE(out.find(" => Mass of RBG no.: "), std::string::npos);
  // S + 4 O = 96.06 atomic units; its centre of mass is the S at the origin.
  EXPECT_NE(out.find("  96.06"), std::string::npos) << out;
  EXPECT_NEAR(m.groups[0].centreOfMass[0], 0.0654, 1e-4);
  EXPECT_NEAR(m.groups[0].centreOfMass[2], 0.6845, 1e-4);
}

TEST(RigidGroups, ASatelliteGroupAheadOfItsMainGroupStops) {
  ScratchDir dir;
  CapturedJob job;
  RigidCase c;
  c.reference = 2;  // the group names a main group 2 that only comes after it
  std::string text = testing::RigidControlText(c);
  // A second, main group after the satellite.
  const std::string main =
      "SO4 RBG 0.1 0.1 0.1 2.0 0.0 1.0 0.0 0.0\n0 0 0 0 0 0 0 0\n"
      "0 0 0 0 0 0 0 0\n0 0 0 0 0 0 0\n";
  text.insert(text.find("SO4 S"), main);
  text.replace(text.find("  7 0 0 0.0"), 11, "  8 0 0 0.0");
  dir.Write("x.dat", "");
  EXPECT_FALSE(testing::ReadControlText(dir, job, text, false));
  EXPECT_NE(job.Console().find("Put Main Group before its satellites"), std::string::npos)
      << job.Console();
}

TEST(RigidGroups, OptionSixStops) {
  ScratchDir dir;
  CapturedJob job;
  RigidCase c;
  c.option = 6;
  EXPECT_FALSE(Read(dir, job, c));
  EXPECT_NE(job.Console().find(" abs(P6) must be equal to: 1, 2, 3, 4 OR 5"), std::string::npos)
      << job.Console();
}

TEST(RigidGroups, TwoAtomsOfAGroupWithDifferentLabelsStop) {
  ScratchDir dir;
  CapturedJob job;
  RigidCase c;
  c.memberLabel = "O";
  EXPECT_FALSE(Read(dir, job, c));
  EXPECT_NE(job.Console().find("  Atoms in a group must have the same label"), std::string::npos);
  EXPECT_NE(dir.Read("x.out").find(" =>PB : Atoms in a group must have the same label "),
            std::string::npos);
}

TEST(RigidGroups, AChainGroupOfOneAtomHasNoChainToCheck) {
  ScratchDir dir;
  CapturedJob job;
  // One group line and its S, typed at its fractional position, and the Pb.
  const std::string text = testing::RigidControlText(RigidCase{});
  std::string one = text.substr(0, text.find("SO4 O"));
  one.replace(one.find("  7 0 0 0.0"), 11, "  3 0 0 0.0");
  // Option 3, and the S typed at the origin of the group.
  one.replace(one.find("    1.00000    0.00000    1.00000"), 33,
              "    1.00000    0.00000    3.00000");
  one += text.substr(text.find("    1.000000 0.0"));
  dir.Write("x.dat", "");
  ASSERT_TRUE(testing::ReadControlText(dir, job, one, false)) << job.Console();
  const std::string out = dir.Read("x.out");
  EXPECT_NE(out.find(" ==> Generating chain coordinates for group "), std::string::npos) << out;
  EXPECT_EQ(out.find(" *** PB of distance in the main chain ***"), std::string::npos);
  ASSERT_EQ(job->rigid[1].groups[0].atoms.size(), 1u);
}

TEST(RigidGroups, ARigidBodyPhasePassesTheCheckBeforeTheCyclesUnlessItHasRestraints) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(Read(dir, job, RigidCase{})) << job.Console();
  EXPECT_TRUE(testing::RunsWithoutStop(*job, [](Job& j) { StopOnUnmodelledInputs(j); }));
  job->phases[1].Dis = 1;
  EXPECT_FALSE(testing::RunsWithoutStop(*job, [](Job& j) { StopOnUnmodelledInputs(j); }));
  EXPECT_NE(job.Console().find(
                " => Phase 1: restraints do not act on the atoms of rigid-body groups in this "
                "version"),
            std::string::npos)
      << job.Console();
}

}  // namespace
}  // namespace corvinet
