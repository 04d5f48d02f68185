// Tests of the names of refined parameters in the messages that point at one of them.
#include "refine/parameter_names.h"

#include <gtest/gtest.h>

#include <string>

#include "format/text.h"
#include "records/profile_slots.h"
#include "refine/cycle_stop_tests.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

// One pattern and one phase with an atom: Zero is parameter 1, the scale 2,
// x of O1 3, the cell constant a 4, B of O1 5 (also held by y of O1).
void FillModel(Job& job) {
  job.run.NPATT = 1;
  job.run.NPHASE = 1;
  job.run.MAXS = 5;
  job.patterns[1].GLBword[1].parameterNumber = 1;
  Phase& ph = job.phases[1];
  ph.Nat = 1;
  ph.pat[1].Contribution = 1;
  ph.pat[1].PAC[1].parameterNumber = 2;
  ph.pat[1].PAC[ProfileSlot::FirstCell].parameterNumber = 4;
  job.atoms[1].label = "O1";
  job.atoms[1].ATC[1].parameterNumber = 3;
  job.atoms[1].ATC[2].parameterNumber = 5;
  job.atoms[1].ATC[4].parameterNumber = 5;
}

TEST(ParameterNames, EachParameterIsNamedWithItsPatternPhaseAndAtom) {
  CapturedJob job;
  FillModel(*job);
  EXPECT_EQ(ParameterDescription(*job, 1), "Zero of pattern 1");
  EXPECT_EQ(ParameterDescription(*job, 2), "Scale in phase 1, pattern 1");
  EXPECT_EQ(ParameterDescription(*job, 3), "x of atom O1 in phase 1");
  EXPECT_EQ(ParameterDescription(*job, 4), "a in phase 1, pattern 1");
  // A parameter held by two values is named by the first one met.
  EXPECT_EQ(ParameterDescription(*job, 5), "y of atom O1 in phase 1");
  EXPECT_EQ(ParameterDescription(*job, 6), "");
  EXPECT_EQ(ParameterDescription(*job, 0), "");
}

TEST(ParameterNames, AtomsOfALaterPhaseAreFoundByTheirOwnPhase) {
  CapturedJob job;
  FillModel(*job);
  job->run.NPHASE = 2;
  job->phases[2].Nat = 1;
  job->atoms[2].label = "Pb";
  job->atoms[2].ATC[5].parameterNumber = 6;
  EXPECT_EQ(ParameterDescription(*job, 6), "occ. of atom Pb in phase 2");
}

// The singular-matrix stop used to give the number alone.
TEST(ParameterNames, TheSingularMatrixStopNamesTheParameter) {
  testing::ScratchDir dir;
  CapturedJob job;
  FillModel(*job);
  ASSERT_TRUE(OpenUnit(job->files.units[Unit::Out], "s.out", OpenStatus::Unknown));
  for (int i = 1; i <= 5; ++i) job->refinement.normal.A(i, i) = 1.0f;
  job->refinement.normal.A(3, 3) = 0.0f;
  EXPECT_THROW(StopOnSingularMatrix(*job, 5), ProcessStop);
  CloseUnit(job->files.units[Unit::Out]);
  EXPECT_EQ(dir.Read("s.out"),
            " ==> Singular matrix!!, problem with parameter no.:   3\n"
            " ==> Parameter no.:   3: x of atom O1 in phase 1\n");
  EXPECT_TRUE(testing::HasLine(job.Console(), " ==> Parameter no.:   3: x of atom O1 in phase 1"));
}

TEST(ParameterNames, TheSolverStopNamesThePivotParameter) {
  testing::ScratchDir dir;
  CapturedJob job;
  FillModel(*job);
  // The cycle solves the double-precision sums of the point loop.
  NormalMatrix& normal = job->refinement.normal;
  // Parameters 1 and 2 move the same thing: their rows are equal.
  normal.SumA(1, 1) = normal.SumA(1, 2) = normal.SumA(2, 1) = normal.SumA(2, 2) = 1.0;
  normal.SumA(3, 3) = 1.0;
  EXPECT_THROW(SolveCycleEquations(*job, 3, 0.0), ProcessStop);
  EXPECT_TRUE(testing::HasLine(job.Console(), " Singular matrix!!, fix some parameters!"));
  EXPECT_TRUE(
      testing::HasLine(job.Console(), " ==> Parameter no.:   2: Scale in phase 1, pattern 1"))
      << job.Console();
}

}  // namespace
}  // namespace corvinet
