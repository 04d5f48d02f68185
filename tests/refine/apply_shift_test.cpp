// Tests of the update of one value: shifts, multipliers, relaxation, hard limits and their report.
#include <gtest/gtest.h>

#include "refine/apply_shift.h"
#include "refine/atom_update.h"
#include "refine/update_case.h"

namespace corvinet {
namespace {

using testing::HasLine;
using testing::UpdateCase;

ParameterLimits LimitsOf(int L, float low, float high) {
  ParameterLimits limits;
  limits.low[L] = low;
  limits.high[L] = high;
  limits.limited[L] = 1;
  return limits;
}

TEST(ApplyShift, WithoutALimitAddsTheDeltaAndTouchesNothing) {
  ParameterLimits limits;
  float value = 0.25f;
  ApplyShift(limits, value, 0.5f, 1.0f, 3, limits.breaks);
  EXPECT_EQ(value, 0.75f);
  EXPECT_EQ(limits.LimitTouched[3], 0);
  EXPECT_EQ(limits.breaks.count, 0);
}

TEST(ApplyShift, InsideTheLimitsKeepsTheShiftForThePartners) {
  ParameterLimits limits = LimitsOf(2, 0.0f, 1.0f);
  float value = 0.5f;
  ApplyShift(limits, value, 0.25f, 1.0f, 2, limits.breaks);
  EXPECT_EQ(value, 0.75f);
  EXPECT_EQ(limits.LimitTouched[2], 1);
  EXPECT_EQ(limits.LimitedShift[2], 0.25f);
  EXPECT_EQ(limits.breaks.count, 0);
}

TEST(ApplyShift, BelowTheLowerLimitFixesToItAndListsTheNegativeNumber) {
  ParameterLimits limits = LimitsOf(4, 0.0f, 1.0f);
  float value = 0.25f;
  ApplyShift(limits, value, -0.75f, 1.0f, 4, limits.breaks);
  EXPECT_EQ(value, 0.0f);
  EXPECT_EQ(limits.LimitedShift[4], -0.25f);
  ASSERT_EQ(limits.breaks.count, 1);
  EXPECT_EQ(limits.breaks.entry[1], -4);
}

TEST(ApplyShift, AboveTheUpperLimitFixesToItAndListsThePositiveNumber) {
  ParameterLimits limits = LimitsOf(5, 0.0f, 1.0f);
  float value = 0.75f;
  ApplyShift(limits, value, 0.5f, 1.0f, 5, limits.breaks);
  EXPECT_EQ(value, 1.0f);
  EXPECT_EQ(limits.LimitedShift[5], 0.25f);
  ASSERT_EQ(limits.breaks.count, 1);
  EXPECT_EQ(limits.breaks.entry[1], 5);
}

TEST(ApplyShift, AShiftToExactlyTheLimitIsInsideTheRange) {
  ParameterLimits limits = LimitsOf(1, -1.0f, 1.0f);
  float high = 0.5f;
  ApplyShift(limits, high, 0.5f, 1.0f, 1, limits.breaks);
  EXPECT_EQ(high, 1.0f);
  ParameterLimits lower = LimitsOf(1, -1.0f, 1.0f);
  float low = -0.5f;
  ApplyShift(lower, low, -0.5f, 1.0f, 1, lower.breaks);
  EXPECT_EQ(low, -1.0f);
  EXPECT_EQ(limits.breaks.count, 0);
  EXPECT_EQ(lower.breaks.count, 0);
}

TEST(ApplyShift, LaterValuesMoveByTheirPlainMultiplierTimesTheFirstShift) {
  ParameterLimits limits = LimitsOf(6, 0.0f, 1.0f);
  float first = 0.5f;
  // The first value's delta already holds its multiplier 2 and a relaxation of 0.5.
  ApplyShift(limits, first, 0.125f, 2.0f, 6, limits.breaks);
  float partner = 3.0f;  // far outside the limits: a partner is not limited
  ApplyShift(limits, partner, 99.0f, -1.5f, 6, limits.breaks);
  EXPECT_EQ(partner, 3.0f - 1.5f * 0.125f);
  EXPECT_EQ(limits.breaks.count, 0);
}

TEST(ShiftValue, SigmaIsTheRootOfTheDiagonalWithoutTheMultiplier) {
  UpdateCase c;
  c.SetParameter(3, 0.5f, -0.0625f);  // a negative diagonal counts by its magnitude
  c->run.relaxationFactor[1] = 0.5f;
  float value = 1.0f;
  const ValueShift r = ShiftValue(*c, value, UpdateCase::Code(3, -2.0f), 0.5f);
  EXPECT_EQ(r.sigma, 0.25f);
  EXPECT_EQ(value, 1.0f - 0.5f);  // B * m * R = 0.5 * -2 * 0.5
  EXPECT_EQ(r.shift, -0.5f);
  EXPECT_FALSE(r.limited);
}

TEST(ShiftValue, AValueWithoutParameterNumberStaysAndReportsZeros) {
  UpdateCase c;
  c.SetParameter(1, 0.5f, 4.0f);
  float value = 2.0f;
  const ValueShift r = ShiftValue(*c, value, UpdateCase::Code(0), 1.0f);
  EXPECT_EQ(value, 2.0f);
  EXPECT_EQ(r.shift, 0.0f);
  EXPECT_EQ(r.sigma, 0.0f);
}

TEST(ShiftValue, WithNrellZeroTheLimitTableIsIgnoredAndNoBreakIsListed) {
  UpdateCase c;
  c.SetLimit(2, 0.0f, 1.0f);
  c->run.NRELL = 0;
  c.SetParameter(2, 5.0f, 1.0f);
  float value = 0.5f;
  ShiftValue(*c, value, UpdateCase::Code(2), 1.0f);
  EXPECT_EQ(value, 5.5f);
  EXPECT_EQ(c->limits.breaks.count, 0);
  EXPECT_EQ(c->limits.LimitTouched[2], 0);
}

TEST(ShiftValue, AParameterAboveFittedCountTakesThePathWithoutLimits) {
  UpdateCase c;
  c->run.MAXS = 3;
  c.SetLimit(4, 0.0f, 1.0f);
  c.SetParameter(4, 5.0f, 1.0f);
  float value = 0.5f;
  const ValueShift r = ShiftValue(*c, value, UpdateCase::Code(4), 1.0f);
  EXPECT_EQ(value, 5.5f);
  EXPECT_FALSE(r.limited);
  EXPECT_EQ(c->limits.breaks.count, 0);
}

TEST(ShiftValue, TheShiftIsScaledByMultiplierAndRelaxation) {
  UpdateCase c;
  c.SetParameter(1, 0.25f, 0.0f);
  float value = 1.0f;
  ShiftValue(*c, value, UpdateCase::Code(1, 3.0f), 0.5f);
  EXPECT_EQ(value, 1.0f + 0.25f * 3.0f * 0.5f);
}

TEST(ShiftValue, ThreeAtomsSharingAParameterFollowTheLimitedShiftOfTheFirst) {
  UpdateCase c;
  c.SetLimit(1, 0.0f, 1.0f);
  c.SetParameter(1, 0.25f, 0.0f);
  c->run.relaxationFactor[1] = 1.0f;
  AtomSite& a = c.AddAtom("A");
  AtomSite& b = c.AddAtom("B");
  AtomSite& d = c.AddAtom("D");
  a.ATP[1] = 0.875f;  // 0.875 + 0.25 breaks the upper limit: the shift becomes 0.125
  b.ATP[1] = 0.25f;
  d.ATP[1] = 0.5f;
  a.ATC[1] = UpdateCase::Code(1, 1.0f);
  b.ATC[1] = UpdateCase::Code(1, 1.0f);
  d.ATC[1] = UpdateCase::Code(1, -1.0f);
  ClearLimitPass(c->limits);
  UpdateAtoms(*c, 1, c.Pass());
  EXPECT_EQ(a.ATP[1], 1.0f);
  EXPECT_EQ(b.ATP[1], 0.375f);
  EXPECT_EQ(d.ATP[1], 0.375f);
  ASSERT_EQ(c->limits.breaks.count, 1);
  EXPECT_EQ(c->limits.breaks.entry[1], 1);
}

TEST(ShiftValue, AFirstValueWithMultiplierZeroLetsItsPartnersStay) {
  UpdateCase c;
  c.SetLimit(2, -5.0f, 5.0f);
  c.SetParameter(2, 1.0f, 0.0f);
  AtomSite& a = c.AddAtom("A");
  AtomSite& b = c.AddAtom("B");
  a.ATC[4] = UpdateCase::Code(2, 0.0f);
  b.ATC[4] = UpdateCase::Code(2, 1.0f);
  a.ATP[4] = b.ATP[4] = 0.5f;
  ClearLimitPass(c->limits);
  UpdateAtoms(*c, 1, c.Pass());
  EXPECT_EQ(a.ATP[4], 0.5f);
  EXPECT_EQ(b.ATP[4], 0.5f);
}

TEST(ReportLimitBreaks, WritesTheWarningTheParametersWithTheirLimitAndABlankLine) {
  UpdateCase c;
  c.SetLimit(3, -0.5f, 2.0f);
  c.SetLimit(12, 0.0f, 1.5f);
  LimitBreaks breaks;
  AddLimitBreak(breaks, 3);
  AddLimitBreak(breaks, -12);
  ReportLimitBreaks(*c, false, breaks, 20);
  const std::vector<std::string> out = c.Out();
  ASSERT_EQ(out.size(), 4u);
  EXPECT_EQ(out[0], " => WARNING!! the following parameters have gone out of limits!");
  EXPECT_EQ(out[1], "  -> Parameter no.:    3 Fixed to:    2.00000    ");
  EXPECT_EQ(out[2], "  -> Parameter no.:   12 Fixed to:    0.00000    ");
  EXPECT_EQ(out[3], " ");
  EXPECT_TRUE(c.Sum().empty());
}

TEST(ReportLimitBreaks, GoesAlsoToTheSummaryInTheLastPass) {
  UpdateCase c;
  c.SetLimit(1, 0.0f, 1.0f);
  LimitBreaks breaks;
  AddLimitBreak(breaks, -1);
  ReportLimitBreaks(*c, true, breaks, 5);
  EXPECT_TRUE(HasLine(c.Sum(), " => WARNING!! the following parameters have gone out of limits!"));
  EXPECT_EQ(c.Sum().size(), 3u);
}

TEST(ReportLimitBreaks, AnEmptyListWritesNothing) {
  UpdateCase c;
  LimitBreaks breaks;
  ReportLimitBreaks(*c, true, breaks, 5);
  EXPECT_TRUE(c.Out().empty());
  EXPECT_TRUE(c.Sum().empty());
}

}  // namespace
}  // namespace corvinet
