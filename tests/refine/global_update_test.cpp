// Tests of the global slots: relaxation, wavelength, transforming coefficients, microabsorption,
// conversion constants.
#include <gtest/gtest.h>

#include "refine/global_update.h"
#include "refine/update_case.h"

namespace corvinet {
namespace {

using testing::HasLine;
using testing::UpdateCase;

TEST(GlobalUpdate, GlobalSlotsTakeRgl) {
  UpdateCase c;
  c->run.relaxationFactor[3] = 0.5f;
  c->run.relaxationFactor[4] = 0.25f;
  c.pattern().GLB[1] = 0.01f;
  c.pattern().GLBword[1] = UpdateCase::Code(1, 2.0f);
  c.SetParameter(1, 0.5f, 0.0f);
  ShiftGlobalParameters(*c, 1, c.Pass());
  EXPECT_EQ(c.pattern().GLB[1], 0.01f + 0.5f * 2.0f * 0.25f);
}

// The shifted wavelength replaces the first and moves the second at the
// ratio of the doublet.
TEST(GlobalUpdate, ARefinedPositiveWavelengthMovesBothAtTheirRatio) {
  UpdateCase c;
  Pattern& p = c.pattern();
  p.LAMBDA[1] = 1.54056f;
  p.LAMBDA[2] = 1.54439f;
  p.GLB[26] = 1.5f;
  p.GLBword[26] = UpdateCase::Code(1);
  c.SetParameter(1, 0.25f, 0.0f);
  ShiftGlobalParameters(*c, 1, c.Pass());
  EXPECT_EQ(p.LAMBDA[1], 1.75f);
  EXPECT_FLOAT_EQ(p.LAMBDA[2], static_cast<float>(1.75 * 1.54439 / 1.54056));
}

TEST(GlobalUpdate, ARefinedSingleWavelengthStaysSingle) {
  UpdateCase c;
  Pattern& p = c.pattern();
  p.LAMBDA[1] = 1.54056f;
  p.LAMBDA[2] = 1.54056f;
  p.GLB[26] = 1.5f;
  p.GLBword[26] = UpdateCase::Code(1);
  c.SetParameter(1, 0.25f, 0.0f);
  ShiftGlobalParameters(*c, 1, c.Pass());
  EXPECT_EQ(p.LAMBDA[1], 1.75f);
  EXPECT_EQ(p.LAMBDA[2], 1.75f);
}

TEST(GlobalUpdate, ANegativeOrUnrefinedWavelengthLeavesTheWavelengths) {
  UpdateCase c;
  Pattern& p = c.pattern();
  p.LAMBDA[1] = 1.54056f;
  p.LAMBDA[2] = 1.54439f;
  p.GLB[26] = 0.25f;
  p.GLBword[26] = UpdateCase::Code(1);
  c.SetParameter(1, -0.5f, 0.0f);
  ShiftGlobalParameters(*c, 1, c.Pass());
  EXPECT_EQ(p.LAMBDA[1], 1.54056f);
  p.GLB[26] = 2.0f;
  p.GLBword[26] = UpdateCase::Code(0);
  ShiftGlobalParameters(*c, 1, c.Pass());
  EXPECT_EQ(p.LAMBDA[2], 1.54439f);
}

TEST(GlobalUpdate, OutOfRangeTransformingCoefficientsGoBackToZeroWithSigma09999) {
  UpdateCase c;
  Pattern& p = c.pattern();
  p.GLB[24] = 0.05f;
  p.GLBword[24] = UpdateCase::Code(1);
  p.GLB[25] = 2.5f;
  p.GLBword[25] = UpdateCase::Code(2);
  c.SetParameter(1, 0.0625f, 0.0001f);  // c = 0.1125
  c.SetParameter(2, -5.75f, 0.0001f);   // d = -3.25
  const auto shown = ShiftGlobalParameters(*c, 1, c.Pass());
  EXPECT_EQ(p.GLB[24], 0.0f);
  EXPECT_EQ(p.GLB[25], 0.0f);
  EXPECT_EQ(shown[24].sigma, 0.9999f);
  EXPECT_EQ(shown[25].sigma, 0.9999f);
  EXPECT_TRUE(c.Console().empty());
}

TEST(GlobalUpdate, TransformingCoefficientsInRangeOrNotRefinedStay) {
  UpdateCase c;
  Pattern& p = c.pattern();
  p.GLB[24] = 0.1f;  // exactly at the bound: inside
  p.GLBword[24] = UpdateCase::Code(1);
  p.GLB[25] = 3.5f;  // not refined
  ShiftGlobalParameters(*c, 1, c.Pass());
  EXPECT_EQ(p.GLB[24], 0.1f);
  EXPECT_EQ(p.GLB[25], 3.5f);
}

TEST(GlobalUpdate, MicroabsorptionP0AboveOneIsSetToOneHalfWithItsWarnings) {
  UpdateCase c;
  Pattern& p = c.pattern();
  p.MORE = 1;
  p.GLB[27] = 1.25f;
  p.GLB[28] = 0.5f;
  p.GLB[29] = 0.5f;
  ShiftGlobalParameters(*c, 1, c.Pass());
  EXPECT_EQ(p.GLB[27], 0.5f);
  EXPECT_TRUE(HasLine(c.Console(), " Warning! Microabsorption parameter P0 > 1 !"));
  const std::vector<std::string> out = c.Out();
  EXPECT_TRUE(HasLine(out, " ----> Warning! Microabsorption parameter P0 >1 !"));
  EXPECT_TRUE(HasLine(out, "       Program is fixing P0 to 0.5 (s.d. unreliable)"));
}

TEST(GlobalUpdate, OnlyTheFirstNegativeMicroabsorptionParameterIsFixed) {
  UpdateCase c;
  Pattern& p = c.pattern();
  p.MORE = 1;
  p.ILOR = 3;
  p.GLB[27] = 0.5f;
  p.GLB[28] = -0.25f;
  p.GLB[29] = -0.125f;
  ShiftGlobalParameters(*c, 1, c.Pass());
  EXPECT_EQ(p.GLB[28], 0.00001f);
  EXPECT_EQ(p.GLB[29], -0.125f);
  const std::vector<std::string> console = c.Console();
  EXPECT_TRUE(HasLine(console, " Warning! Some microabsorption parameter <0"));
  EXPECT_TRUE(HasLine(console, " Program is fixing such values!"));
  const std::vector<std::string> out = c.Out();
  EXPECT_TRUE(HasLine(out, " ----> Warning! Some microabsorption parameter is negative!"));
  EXPECT_TRUE(HasLine(out, "    Program is fixing such values to 0.00001 (s.d. unreliables)"));
}

TEST(GlobalUpdate, WithoutTheCorrectionMicroabsorptionSlotsAreNotClamped) {
  UpdateCase c;
  Pattern& p = c.pattern();
  p.MORE = 0;
  p.GLB[27] = 1.25f;
  ShiftGlobalParameters(*c, 1, c.Pass());
  EXPECT_EQ(p.GLB[27], 1.25f);
  p.MORE = 1;
  p.ILOR = 1;  // a geometry without the correction
  ShiftGlobalParameters(*c, 1, c.Pass());
  EXPECT_EQ(p.GLB[27], 1.25f);
}

TEST(GlobalUpdate, TimeOfFlightConversionConstantsFollowSlotsEightAndNine) {
  UpdateCase c;
  Pattern& p = c.pattern();
  p.IXUNIT = AbscissaUnit::kTimeOfFlight;
  p.GLB[8] = 7000.0f;
  p.GLB[9] = -2.0f;
  p.GLBword[8] = UpdateCase::Code(1);
  c.SetParameter(1, 4.0f, 0.0f);
  ShiftGlobalParameters(*c, 1, c.Pass());
  EXPECT_EQ(p.Dtt1, 7004.0f);
  EXPECT_EQ(p.Dtt2, -2.0f);
}

TEST(GlobalUpdate, ConstantWavelengthShiftSlotsAreNotConversionConstants) {
  UpdateCase c;
  Pattern& p = c.pattern();
  p.Dtt1 = 0.0f;
  p.GLB[8] = 0.125f;
  ShiftGlobalParameters(*c, 1, c.Pass());
  EXPECT_EQ(p.Dtt1, 0.0f);
}

TEST(GlobalUpdate, TheTableShowsRefinedAndNonZeroSlots) {
  UpdateCase c;
  Pattern& p = c.pattern();
  p.GLB[1] = 0.0f;
  p.GLBword[1] = UpdateCase::Code(1);
  p.GLB[2] = 125.5f;
  c.SetParameter(1, 0.03125f, 0.0001f);
  UpdateGlobalParameters(*c, 1, c.Pass());
  const std::vector<std::string> out = c.Out();
  EXPECT_TRUE(HasLine(out, " => Global parameters of pattern  1"));
  EXPECT_TRUE(
      HasLine(out, std::string(17, ' ') + "Zero   0.312500E-01   0.312500E-01   0.100000E-01"));
  EXPECT_TRUE(HasLine(out, std::string(17, ' ') + "Bck0    125.500        0.00000        0.00000"));
  EXPECT_EQ(testing::FindLine(out, "                 Bck1"), -1);
}

}  // namespace
}  // namespace corvinet
