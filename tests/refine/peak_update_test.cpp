// Tests of the peak slots: relaxation, the clamps and their warnings, limits before clamps,
// propagation vectors.
#include <gtest/gtest.h>

#include "refine/apply_shift.h"
#include "refine/peak_update.h"

#include <cmath>
#include "refine/update_case.h"

namespace corvinet {
namespace {

using testing::HasLine;
using testing::UpdateCase;

TEST(PeakClamps, NegativeXOfTheTchProfileIsFixedWithSigmaOneAndAWarning) {
  UpdateCase c;
  c.peaks().Npr = 8;
  c.peaks().PAR[15] = 0.01f;
  c.peaks().PAC[15] = UpdateCase::Code(2);
  c.SetParameter(2, -0.05f, 0.0004f);
  PeakSlots slots = ShiftPeakSlots(*c, 1, 1);
  ClampPeakParameters(*c, 1, 1, c.Pass(), slots);
  EXPECT_EQ(c.peaks().PAR[15], 0.0001f);
  EXPECT_EQ(slots.shown[15].sigma, 1.0f);
  EXPECT_TRUE(HasLine(c.Console(), " WARNING, parameter X < 0, fixed to 0.0001"));
  EXPECT_TRUE(HasLine(c.Out(), " WARNING, parameter X < 0, fixed to 0.0001"));
}

TEST(PeakClamps, NegativeYOfProfileFiveIsFixed) {
  UpdateCase c;
  c.peaks().Npr = 5;
  c.peaks().PAR[16] = 0.01f;
  c.peaks().PAC[16] = UpdateCase::Code(2);
  c.SetParameter(2, -0.05f, 0.0f);
  PeakSlots slots = ShiftPeakSlots(*c, 1, 1);
  ClampPeakParameters(*c, 1, 1, c.Pass(), slots);
  EXPECT_EQ(c.peaks().PAR[16], 0.0001f);
  EXPECT_TRUE(HasLine(c.Console(), " WARNING, parameter Y < 0, fixed to 0.0001"));
}

TEST(PeakClamps, XOfOtherProfilesMayGoNegative) {
  UpdateCase c;
  c.peaks().Npr = 6;
  c.peaks().PAR[15] = 0.01f;
  c.peaks().PAC[15] = UpdateCase::Code(2);
  c.SetParameter(2, -0.05f, 0.0f);
  PeakSlots slots = ShiftPeakSlots(*c, 1, 1);
  ClampPeakParameters(*c, 1, 1, c.Pass(), slots);
  EXPECT_FLOAT_EQ(c.peaks().PAR[15], -0.04f);
}

TEST(PeakClamps, XOnThePathWithLimitsIsNotClamped) {
  UpdateCase c;
  c.peaks().Npr = 8;
  c.peaks().PAR[15] = 0.01f;
  c.peaks().PAC[15] = UpdateCase::Code(2);
  c.SetLimit(2, -1.0f, 1.0f);
  c.SetParameter(2, -0.05f, 0.0f);
  ClearLimitPass(c->limits);
  PeakSlots slots = ShiftPeakSlots(*c, 1, 1);
  ClampPeakParameters(*c, 1, 1, c.Pass(), slots);
  EXPECT_FLOAT_EQ(c.peaks().PAR[15], -0.04f);
  EXPECT_FALSE(HasLine(c.Console(), " WARNING, parameter X < 0, fixed to 0.0001"));
}

TEST(PeakClamps, ANegativeScaleIsFixedToTenToTheMinusFifteen) {
  UpdateCase c;
  c.peaks().PAR[1] = 0.1f;
  c.peaks().PAC[1] = UpdateCase::Code(1);
  c.SetParameter(1, -0.3f, 0.0f);
  PeakSlots slots = ShiftPeakSlots(*c, 1, 1);
  ClampPeakParameters(*c, 1, 1, c.Pass(), slots);
  EXPECT_EQ(c.peaks().PAR[1], 1.0e-15f);
  const std::vector<std::string> console = c.Console();
  EXPECT_TRUE(HasLine(console, " WARNING, Negative Scale factor for phase:  1"));
  EXPECT_TRUE(HasLine(console, " Program is fixing SCALE to 1.E-15"));
}

TEST(PeakClamps, TheLimitGoesFirstThenTheScaleClamp) {
  UpdateCase c;
  c.peaks().PAR[1] = 0.1f;
  c.peaks().PAC[1] = UpdateCase::Code(1);
  c.SetLimit(1, -0.5f, 1.0f);
  c.SetParameter(1, -2.0f, 0.0f);
  ClearLimitPass(c->limits);
  PeakSlots slots = ShiftPeakSlots(*c, 1, 1);
  EXPECT_EQ(c.peaks().PAR[1], -0.5f);  // the lower limit
  ClampPeakParameters(*c, 1, 1, c.Pass(), slots);
  EXPECT_EQ(c.peaks().PAR[1], 1.0e-15f);
  ASSERT_EQ(c->limits.breaks.count, 1);
  EXPECT_EQ(c->limits.breaks.entry[1], -1);
  EXPECT_EQ(c->limits.LimitedShift[1], -0.6f);
}

TEST(PeakClamps, IntegratedIntensityPhasesFixEachNegativeScaleWithItsNumber) {
  UpdateCase c;
  PhasePattern& pp = c.peaks();
  pp.Irf = -4;
  pp.PAR[3] = -0.2f;
  pp.PAR[12] = -0.1f;
  pp.PAR[13] = -0.3f;  // Ext1 of such a phase: not a preferred orientation
  PeakSlots slots = ShiftPeakSlots(*c, 1, 1);
  ClampPeakParameters(*c, 1, 1, c.Pass(), slots);
  EXPECT_EQ(pp.PAR[3], 1.0e-15f);
  EXPECT_EQ(pp.PAR[12], 1.0e-15f);
  EXPECT_EQ(pp.PAR[13], -0.3f);
  const std::vector<std::string> console = c.Console();
  EXPECT_TRUE(HasLine(console, " WARNING, Negative Scale factor number:  3"));
  EXPECT_TRUE(HasLine(console, " WARNING, Negative Scale factor number:  6"));
}

TEST(PeakClamps, NegativeExtinctionOfTimeOfFlightDataIsFixed) {
  UpdateCase c;
  c.pattern().IXUNIT = AbscissaUnit::kTimeOfFlight;
  c.peaks().PAR[17] = -0.5f;
  PeakSlots slots = ShiftPeakSlots(*c, 1, 1);
  ClampPeakParameters(*c, 1, 1, c.Pass(), slots);
  EXPECT_EQ(c.peaks().PAR[17], 0.0001f);
  const std::vector<std::string> console = c.Console();
  EXPECT_TRUE(HasLine(console, " WARNING, Negative Extinction for phase:  1"));
  EXPECT_TRUE(HasLine(console, " Program is fixing Extinction to 0.0001"));
}

TEST(PeakClamps, NegativeShapeOfConstantWavelengthDataIsKept) {
  UpdateCase c;
  c.peaks().PAR[17] = -0.5f;
  PeakSlots slots = ShiftPeakSlots(*c, 1, 1);
  ClampPeakParameters(*c, 1, 1, c.Pass(), slots);
  EXPECT_EQ(c.peaks().PAR[17], -0.5f);
}

TEST(PeakClamps, Pref2IsKeptBetweenZeroAndOneSilently) {
  UpdateCase c;
  c.peaks().PAR[13] = -0.25f;
  PeakSlots slots = ShiftPeakSlots(*c, 1, 1);
  ClampPeakParameters(*c, 1, 1, c.Pass(), slots);
  EXPECT_EQ(c.peaks().PAR[13], 0.0f);
  c.peaks().PAR[13] = 1.25f;
  ClampPeakParameters(*c, 1, 1, c.Pass(), slots);
  EXPECT_EQ(c.peaks().PAR[13], 1.0f);
  EXPECT_TRUE(c.Console().empty());
}

TEST(PeakClamps, NegativePref1BecomesOneOnlyForTheMarchDollaseModel) {
  UpdateCase c;
  c.peaks().PAR[12] = -0.5f;
  PeakSlots slots = ShiftPeakSlots(*c, 1, 1);
  ClampPeakParameters(*c, 1, 1, c.Pass(), slots);
  EXPECT_EQ(c.peaks().PAR[12], -0.5f);
  c.pattern().NORI = 1;
  ClampPeakParameters(*c, 1, 1, c.Pass(), slots);
  EXPECT_EQ(c.peaks().PAR[12], 1.0f);
}

TEST(PeakUpdate, PeakSlotsAndTheCellTakeRpr) {
  UpdateCase c;
  c->run.relaxationFactor[3] = 0.5f;
  c->run.relaxationFactor[4] = 0.25f;
  c.peaks().PAR[3] = 0.01f;
  c.peaks().PAC[3] = UpdateCase::Code(1);
  c.peaks().PAC[6] = UpdateCase::Code(2);
  c.peaks().PAC[7] = UpdateCase::Code(2);
  c.peaks().PAC[8] = UpdateCase::Code(2);
  c.SetParameter(1, 0.02f, 0.0f);
  c.SetParameter(2, -0.0016f, 0.0f);  // 1/25 - 0.0008 = 1/25.51...
  const float before = c.peaks().PAR[6];
  UpdatePeakParameters(*c, 1, 1, c.Pass());
  EXPECT_EQ(c.peaks().PAR[3], 0.01f + 0.02f * 1.0f * 0.5f);
  EXPECT_EQ(c.peaks().PAR[6], before + (-0.0016f * 1.0f * 0.5f));
  EXPECT_NEAR(c.peaks().CellConstants[1], 1.0 / std::sqrt(0.04 - 0.0008), 1e-5);
  EXPECT_EQ(c.peaks().CellConstants[4], 90.0f);
}

TEST(PeakUpdate, TheReportListsScaleCellAndVolume) {
  UpdateCase c;
  c.peaks().PAC[1] = UpdateCase::Code(1);
  c.SetParameter(1, 0.25f, 0.0001f);
  UpdatePeakParameters(*c, 1, 1, c.Pass());
  const std::vector<std::string> out = c.Out();
  EXPECT_TRUE(HasLine(out, " => Profile parameters of phase  1 in pattern  1"));
  EXPECT_TRUE(
      HasLine(out, std::string(16, ' ') + "Scale   0.750000       0.250000       0.100000E-01"));
  EXPECT_TRUE(HasLine(out, std::string(20, ' ') + "a    5.00000        0.00000        0.00000"));
  EXPECT_TRUE(
      HasLine(out, std::string(16, ' ') + "alpha    90.0000        0.00000        0.00000"));
  EXPECT_TRUE(HasLine(out, " => Cell volume:    125.0000 (    0.0000)"));
}

TEST(PropagationVectors, ComponentsTakeRprAndFollowTheirCodes) {
  UpdateCase c;
  c->run.relaxationFactor[3] = 0.5f;
  Phase& ph = c->phases[1];
  ph.Nvk = 2;
  ph.vectors[1].KVEC[1] = 0.25f;
  ph.vectors[1].KCODE[1] = UpdateCase::Code(3, 1.0f);
  ph.vectors[2].KVEC[1] = -0.25f;
  ph.vectors[2].KCODE[1] = UpdateCase::Code(3, -1.0f);
  c.SetParameter(3, 0.125f, 0.0f);
  UpdatePropagationVectors(*c, 1, c.Pass());
  EXPECT_EQ(ph.vectors[1].KVEC[1], 0.25f + 0.0625f);
  EXPECT_EQ(ph.vectors[2].KVEC[1], -0.25f - 0.0625f);
  EXPECT_EQ(ph.vectors[1].KVEC[2], 0.0f);
}

}  // namespace
}  // namespace corvinet
