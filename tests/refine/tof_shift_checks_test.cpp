// Time-of-flight parameters that leave a peak without a finite shape: the shifts that lead there
// are rejected by the damping of the cycles, and a control file that starts there stops.
#include <gtest/gtest.h>

#include <string>

#include "records/profile_slots.h"
#include "refine/cycle_damping.h"
#include "refine/cycle_driver.h"
#include "refine/tof_text.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// The rejection the damping gives after a shift sets profile slot `slot` of the phase to
// `value`; the reflections of the simulated job run from d = 1.0 to 4.2 A (5000 to 20000 us).
ShiftRejection RejectionAfter(int slot, float value) {
  ScratchDir dir;
  CapturedJob job;
  EXPECT_TRUE(testing::ReadControlText(dir, job, TofText(TofModel{}), false)) << job.Console();
  if (slot != 0) job->phases[1].pat[1].PAR[slot] = value;
  return InvalidShiftedParameters(*job);
}

TEST(TofShiftChecks, ValidPeaksGiveNoRejection) {
  EXPECT_EQ(RejectionAfter(0, 0.0f), ShiftRejection::kNone);
}

TEST(TofShiftChecks, BetaBelowZeroAtShortSpacingsIsRejected) {
  // beta = 0.03 - 0.05/d^4 is negative below d = 1.136 A.
  EXPECT_EQ(RejectionAfter(ProfileSlot::Asy4, -0.05f), ShiftRejection::kNonPositiveDecay);
  EXPECT_EQ(RejectionWords(ShiftRejection::kNonPositiveDecay), "alpha, beta <= 0");
}

TEST(TofShiftChecks, AlphaAtZeroIsRejected) {
  EXPECT_EQ(RejectionAfter(ProfileSlot::Asy3, 0.0f), ShiftRejection::kNonPositiveDecay);
}

TEST(TofShiftChecks, NegativeGaussianVarianceIsRejectedNotStopped) {
  EXPECT_EQ(RejectionAfter(ProfileSlot::V, -40.0f), ShiftRejection::kNegativeWidth);
}

TEST(TofShiftChecks, NegativeLorentzianWidthIsRejectedNotStopped) {
  EXPECT_EQ(RejectionAfter(ProfileSlot::Vr, -1.5f), ShiftRejection::kNegativeWidth);
}

TEST(TofShiftChecks, NegativeBetaInTheControlFileStopsWithItsLines) {
  ScratchDir dir;
  TofModel m;
  m.beta1 = -0.05f;
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, TofText(m), false)) << job.Console();
  EXPECT_FALSE(testing::RunsWithoutStop(*job, [](Job& j) { RunCycles(j); }));
  const std::string console = job.Console();
  EXPECT_NE(console.find(" Alpha or beta <=0 at TOF:"), std::string::npos) << console;
  EXPECT_NE(console.find(" Exponential rise or decay <=0"), std::string::npos) << console;
}

}  // namespace
}  // namespace corvinet
