// Tests of the pieces of CIF text: numbers with standard uncertainties, quoted texts, operators.
#include "results/cif_text.h"

#include <gtest/gtest.h>

namespace corvinet {
namespace {

TEST(CifText, UncertaintyOfNineteenOrLessKeepsTwoDigits) {
  EXPECT_EQ(CifNumber(8.478812, 0.000123), "8.47881(12)");
  EXPECT_EQ(CifNumber(0.18823, 0.00019), "0.18823(19)");
  EXPECT_EQ(CifNumber(318.4271, 0.0152), "318.427(15)");
}

TEST(CifText, UncertaintyAboveNineteenKeepsOneDigit) {
  EXPECT_EQ(CifNumber(0.18823, 0.00023), "0.1882(2)");
  EXPECT_EQ(CifNumber(5.4625, 0.0096), "5.46(1)");  // 0.0096 rounds to 0.01
  EXPECT_EQ(CifNumber(-0.09512, 0.00057), "-0.0951(6)");
}

TEST(CifText, UncertaintyOfTenOrMoreIsWholeNumbers) {
  EXPECT_EQ(CifNumber(12345.6, 23.0), "12350(20)");
  EXPECT_EQ(CifNumber(1234.5, 15.0), "1234(15)");
}

TEST(CifText, NoUncertaintyGivesSignificantDigits) {
  EXPECT_EQ(CifNumber(90.0, 0.0), "90.0000");
  EXPECT_EQ(CifNumber(0.25, 0.0), "0.250000");
  EXPECT_EQ(CifNumber(1.5406, -1.0, 5), "1.5406");
}

TEST(CifText, UncertaintyBelowThePrecisionOfTheValueIsRaised) {
  EXPECT_EQ(CifNumber(0.1882, 1.0e-12), "0.18820000(19)");
}

TEST(CifText, TextIsQuotedWhenItCouldBeMisread) {
  EXPECT_EQ(CifText("PbSO4"), "PbSO4");
  EXPECT_EQ(CifText("P n m a"), "'P n m a'");
  EXPECT_EQ(CifText("_x"), "'_x'");
  EXPECT_EQ(CifText("it's"), "\"it's\"");
  EXPECT_EQ(CifText(""), "''");
}

TEST(CifText, OperatorsAreWrittenWithFractions) {
  SymmetryOperator op;
  op.rotation.Fill(0);
  op.rotation(1, 1) = -1;
  op.rotation(2, 2) = 1;
  op.rotation(3, 3) = -1;
  op.translation[1] = 0.5f;
  op.translation[2] = 0.0f;
  op.translation[3] = 1.0f / 3.0f;
  EXPECT_EQ(OperatorXyz(op), "-x+1/2,y,-z+1/3");
  SymmetryOperator hex;  // x-y, x, z+5/6
  hex.rotation.Fill(0);
  hex.rotation(1, 1) = 1;
  hex.rotation(1, 2) = -1;
  hex.rotation(2, 1) = 1;
  hex.rotation(3, 3) = 1;
  hex.translation[1] = 0.0f;
  hex.translation[2] = 0.0f;
  hex.translation[3] = 5.0f / 6.0f;
  EXPECT_EQ(OperatorXyz(hex), "x-y,x,z+5/6");
}

}  // namespace
}  // namespace corvinet
