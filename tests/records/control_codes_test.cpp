// Tests of the profile codes and abscissa units against the numbers of the control file.
#include <gtest/gtest.h>

#include "records/abscissa_unit.h"
#include "records/profile_code.h"

namespace corvinet {
namespace {

TEST(ProfileCodes, TypedNumberIsTheStoredNumberLessOne) {
  EXPECT_EQ(ProfileCodeFromTyped(7), ProfileCode::kTchPseudoVoigt);
  EXPECT_EQ(ProfileCodeFromTyped(11), ProfileCode::kSplitPseudoVoigt);
  EXPECT_EQ(ProfileCodeFromTyped(12), ProfileCode::kAxialDivergence);
  EXPECT_EQ(ProfileCodeFromTyped(9), ProfileCode::kTimeOfFlight1);
  EXPECT_EQ(ProfileCodeOf(8), ProfileCode::kTchPseudoVoigt);
  EXPECT_EQ(StoredNumber(ProfileCode::kSplitPseudoVoigt), 12);
  EXPECT_EQ(TypedNumber(ProfileCode::kSplitPseudoVoigt), 11);
  EXPECT_EQ(TypedNumber(ProfileCode::kGaussian), 0);
}

TEST(ProfileCodes, NumbersOutsideTheListAreKeptAsRead) {
  for (int typed : {-3, 13, 40}) {
    const ProfileCode code = ProfileCodeFromTyped(typed);
    EXPECT_EQ(TypedNumber(code), typed);
    EXPECT_EQ(StoredNumber(code), typed + 1);
  }
}

TEST(ProfileCodes, ShapeLineFollowsTheTripledAndTheCodesFromTheNumericalOn) {
  EXPECT_TRUE(HasShapeLine(ProfileCode::kTripledPseudoVoigt));
  EXPECT_TRUE(HasShapeLine(ProfileCode::kNumerical));
  EXPECT_TRUE(HasShapeLine(ProfileCode::kSplitPseudoVoigt));
  EXPECT_TRUE(HasShapeLine(ProfileCode::kAxialDivergence));
  EXPECT_TRUE(HasShapeLine(ProfileCodeOf(20)));
  EXPECT_FALSE(HasShapeLine(ProfileCode::kPseudoVoigt));
  EXPECT_FALSE(HasShapeLine(ProfileCode::kTchPseudoVoigt));
  EXPECT_FALSE(HasShapeLine(ProfileCodeOf(0)));
}

TEST(AbscissaUnits, ControlNumbersRoundTrip) {
  EXPECT_EQ(AbscissaUnitOf(0), AbscissaUnit::kTwoTheta);
  EXPECT_EQ(AbscissaUnitOf(1), AbscissaUnit::kTimeOfFlight);
  EXPECT_EQ(AbscissaUnitOf(2), AbscissaUnit::kEnergy);
  EXPECT_EQ(AbscissaUnitOf(3), AbscissaUnit::kQ);
  EXPECT_EQ(AbscissaUnitOf(4), AbscissaUnit::kInverseD);
  for (int n = 0; n <= 4; ++n) EXPECT_EQ(ControlNumber(AbscissaUnitOf(n)), n);
}

TEST(AbscissaUnits, NumbersOutsideTheListAreKeptAsRead) {
  EXPECT_EQ(ControlNumber(AbscissaUnitOf(7)), 7);
  EXPECT_EQ(ControlNumber(AbscissaUnitOf(-1)), -1);
  EXPECT_FALSE(IsTofOrEnergy(AbscissaUnitOf(7)));
  // Any positive number reads the instrument line without wavelengths, as
  // the control file has always been read; a negative one reads the angles.
  EXPECT_TRUE(IsNonAngleUnit(AbscissaUnitOf(7)));
  EXPECT_FALSE(IsNonAngleUnit(AbscissaUnitOf(-1)));
}

TEST(AbscissaUnits, TimeOfFlightAndEnergyConvertThroughDtt) {
  EXPECT_TRUE(IsTofOrEnergy(AbscissaUnit::kTimeOfFlight));
  EXPECT_TRUE(IsTofOrEnergy(AbscissaUnit::kEnergy));
  EXPECT_FALSE(IsTofOrEnergy(AbscissaUnit::kTwoTheta));
  EXPECT_FALSE(IsTofOrEnergy(AbscissaUnit::kQ));
  EXPECT_FALSE(IsNonAngleUnit(AbscissaUnit::kTwoTheta));
  EXPECT_TRUE(IsNonAngleUnit(AbscissaUnit::kInverseD));
}

}  // namespace
}  // namespace corvinet
