// Tests of the watch over refined values that stop being numbers: the parameter found, the stop
// as diverged that names it, and values that are not refined left alone.
#include "refine/finite_parameters.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "records/profile_slots.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

// One pattern and one phase with an atom: Zero is parameter 1, the scale 2,
// x of O1 3, the first propagation-vector component 4.
void FillModel(Job& job) {
  job.run.NPATT = 1;
  job.run.NPHASE = 1;
  job.run.MAXS = 4;
  job.patterns[1].GLBword[1].parameterNumber = 1;
  Phase& ph = job.phases[1];
  ph.Nat = 1;
  ph.Nvk = 1;
  ph.pat[1].Contribution = 1;
  ph.pat[1].PAC[ProfileSlot::Scale].parameterNumber = 2;
  job.atoms[1].label = "O1";
  job.atoms[1].ATC[1].parameterNumber = 3;
  ph.vectors[1].KCODE[1].parameterNumber = 4;
}

TEST(FiniteParameters, AllFiniteGivesNone) {
  CapturedJob job;
  FillModel(*job);
  EXPECT_EQ(FirstNonFiniteParameter(*job), 0);
  EXPECT_TRUE(testing::RunsWithoutStop(*job, [](Job& j) { StopOnNonFiniteParameters(j, 3); }));
}

TEST(FiniteParameters, EachKindOfRefinedValueIsWatched) {
  {
    CapturedJob job;
    FillModel(*job);
    job->patterns[1].GLB[1] = INFINITY;
    EXPECT_EQ(FirstNonFiniteParameter(*job), 1);
  }
  {
    CapturedJob job;
    FillModel(*job);
    job->phases[1].pat[1].PAR[ProfileSlot::Scale] = std::nanf("");
    EXPECT_EQ(FirstNonFiniteParameter(*job), 2);
  }
  {
    CapturedJob job;
    FillModel(*job);
    job->atoms[1].ATP[1] = -INFINITY;
    EXPECT_EQ(FirstNonFiniteParameter(*job), 3);
  }
  {
    CapturedJob job;
    FillModel(*job);
    job->phases[1].vectors[1].KVEC[1] = std::nanf("");
    EXPECT_EQ(FirstNonFiniteParameter(*job), 4);
  }
}

TEST(FiniteParameters, ValueThatIsNotRefinedIsLeftAlone) {
  CapturedJob job;
  FillModel(*job);
  job->atoms[1].ATP[2] = std::nanf("");
  EXPECT_EQ(FirstNonFiniteParameter(*job), 0);
}

TEST(FiniteParameters, NonFiniteValueStopsAsDivergedNamingTheParameter) {
  CapturedJob job;
  FillModel(*job);
  job->atoms[1].ATP[1] = std::nanf("");
  EXPECT_FALSE(testing::RunsWithoutStop(*job, [](Job& j) { StopOnNonFiniteParameters(j, 3); }));
  const std::string console = job.Console();
  EXPECT_NE(console.find(" => Parameter 3 (x of atom O1 in phase 1) is no longer a finite number"),
            std::string::npos)
      << console;
  EXPECT_NE(console.find(" because of divergence"), std::string::npos);
  EXPECT_NE(console.find(" STOP because of divergence"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
