// The Bragg factors of a cycle come from the parameters its points were calculated with, also
// for the reflections whose derivative ring slot another pattern has taken since.
#include <gtest/gtest.h>

#include <string>

#include "format/fortran_format.h"
#include "observations/poisson.h"
#include "refine/cycle_driver.h"
#include "refine/two_pattern_text.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;
using testing::TwoPatternText;

constexpr float kTrueA = 5.4310f;

// Both patterns calculated from the true cell, with Poisson noise, as x1.dat and x2.dat.
void SimulatePatterns(ScratchDir& dir) {
  testing::SimulateTwoPatterns(dir, kTrueA, 0.01f, -0.01f);
}

struct BraggAfterOneCycle {
  float braggR[3] = {};  // by pattern
  float rfFactor[3] = {};
  float shiftOfA = 0.0f;  // what the update did to the cell coefficient A of pattern 1
};

// One cycle from a cell and zeros off the truth; with `relaxation` 0 no value
// moves in the update, so the Bragg factors can only be those of the cycle's
// own parameters.
BraggAfterOneCycle RunOneCycle(ScratchDir& dir, float relaxation) {
  BraggAfterOneCycle result;
  CapturedJob job;
  EXPECT_TRUE(
      testing::ReadControlText(dir, job, TwoPatternText(0, 1, 5.4350f, 0.0f, 0.0f, true), false))
      << job.Console();
  Job& j = *job;
  for (int c = 1; c <= 4; ++c) j.run.relaxationFactor[c] = relaxation;
  // With the convergence test on, the single cycle is the last pass: no
  // results pass of zero shifts follows it.
  j.run.ConvergenceTestActive = true;
  const float before = j.phases[1].pat[1].PAR[6];
  EXPECT_TRUE(testing::RunsWithoutStop(j, [](Job& r) { RunCycles(r); })) << job.Console();
  for (int ip = 1; ip <= 2; ++ip) {
    result.braggR[ip] = j.reliability.pattern[ip].braggR[1];
    result.rfFactor[ip] = j.reliability.pattern[ip].rfFactor[1];
  }
  result.shiftOfA = j.phases[1].pat[1].PAR[6] - before;
  return result;
}

TEST(BraggCycleParameters, TwoPatternsGiveTheBraggFactorsOfTheCycleParameters) {
  ScratchDir dir;
  SimulatePatterns(dir);
  const BraggAfterOneCycle still = RunOneCycle(dir, 0.0f);
  const BraggAfterOneCycle moved = RunOneCycle(dir, 1.0f);
  ASSERT_EQ(still.shiftOfA, 0.0f);
  ASSERT_NE(moved.shiftOfA, 0.0f);
  for (int ip = 1; ip <= 2; ++ip) {
    EXPECT_GT(still.braggR[ip], 0.0f) << "pattern " << ip;
    EXPECT_FLOAT_EQ(moved.braggR[ip], still.braggR[ip]) << "pattern " << ip;
    EXPECT_FLOAT_EQ(moved.rfFactor[ip], still.rfFactor[ip]) << "pattern " << ip;
  }
}

}  // namespace
}  // namespace corvinet
