// Tests of the table of profile slots: numbers, report names and families.
#include "records/profile_slots.h"

#include <gtest/gtest.h>

#include <string>

namespace corvinet {
namespace {

TEST(ProfileSlots, ScaleIsTheFirstSlotAndAnIntensity) {
  const ProfileSlotRow* row = ProfileSlotRowOf(ProfileSlot::Scale);
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(ProfileSlot::Scale, 1);
  EXPECT_EQ(row->slot, 1);
  EXPECT_STREQ(row->name, "Scale");
  EXPECT_STREQ(row->timeOfFlight, "Scale");
  EXPECT_EQ(row->family, kIntensity);
}

TEST(ProfileSlots, UIsAWidthAndTheGaussianWidthOfTheTchProfile) {
  const ProfileSlotRow* row = ProfileSlotRowOf(ProfileSlot::U);
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(ProfileSlot::U, 3);
  EXPECT_STREQ(row->name, "U");
  EXPECT_STREQ(row->timeOfFlight, "Sig-2");
  EXPECT_EQ(ProfileSlotFamily(ProfileSlot::U, ProfileCode::kPseudoVoigt), kWidth);
  EXPECT_EQ(ProfileSlotFamily(ProfileSlot::U, ProfileCode::kTchPseudoVoigt), kGaussWidth);
  EXPECT_EQ(ProfileSlotFamily(ProfileSlot::W2, ProfileCode::kTchPseudoVoigt), kGaussWidth);
}

TEST(ProfileSlots, AsymmetrySlotsKeepTheirNumbersNamesAndFamilies) {
  struct Expected {
    int slot;
    const char* name;
    const char* timeOfFlight;
    Family family;
  };
  const Expected expected[] = {{14, "Asy1", "alph0", kAsym1},
                               {35, "Asy2", "beta0", kAsym2},
                               {36, "Asy3", "alph1", kAsym3},
                               {37, "Asy4", "beta1", kAsym4}};
  const int named[] = {ProfileSlot::Asy1, ProfileSlot::Asy2, ProfileSlot::Asy3, ProfileSlot::Asy4};
  for (int i = 0; i < 4; ++i) {
    const Expected& e = expected[i];
    EXPECT_EQ(named[i], e.slot);
    const ProfileSlotRow* row = ProfileSlotRowOf(e.slot);
    ASSERT_NE(row, nullptr) << e.slot;
    EXPECT_STREQ(row->name, e.name);
    EXPECT_STREQ(row->timeOfFlight, e.timeOfFlight);
    EXPECT_EQ(ProfileSlotFamily(e.slot, ProfileCode::kSplitPseudoVoigt), e.family);
  }
}

TEST(ProfileSlots, TimeOfFlightRenamesTheShapeSlots) {
  EXPECT_STREQ(ProfileSlotRowOf(ProfileSlot::Shape1)->name, "Shape1");
  EXPECT_STREQ(ProfileSlotRowOf(ProfileSlot::Shape1)->timeOfFlight, "Extinc");
  EXPECT_STREQ(ProfileSlotRowOf(ProfileSlot::Xr)->name, "Xr");
  EXPECT_STREQ(ProfileSlotRowOf(ProfileSlot::Xr)->timeOfFlight, "LSiz");
  EXPECT_STREQ(ProfileSlotRowOf(ProfileSlot::Str10)->timeOfFlight, "Str10");
}

TEST(ProfileSlots, ShapePairWidensTheSplitProfile) {
  EXPECT_EQ(ProfileSlotFamily(ProfileSlot::Shp1, ProfileCode::kTripledPseudoVoigt), kShp1);
  EXPECT_EQ(ProfileSlotFamily(ProfileSlot::Shp2, ProfileCode::kTripledPseudoVoigt), kShp2);
  EXPECT_EQ(ProfileSlotFamily(ProfileSlot::Shp1, ProfileCode::kSplitPseudoVoigt), kWidth);
  EXPECT_EQ(ProfileSlotFamily(ProfileSlot::Shp2, ProfileCode::kSplitPseudoVoigt), kWidthRight);
}

TEST(ProfileSlots, EverySlotOfTheTableHasItsNumberNamesAndAFamily) {
  for (int s = 1; s <= ProfileSlot::Last; ++s) {
    const ProfileSlotRow* row = ProfileSlotRowOf(s);
    ASSERT_NE(row, nullptr) << s;
    EXPECT_EQ(row->slot, s);
    EXPECT_FALSE(std::string(row->name).empty()) << s;
    EXPECT_FALSE(std::string(row->timeOfFlight).empty()) << s;
    EXPECT_NE(row->family, kNoFamily) << s;
    EXPECT_LT(row->family, kBackground) << s;
  }
}

TEST(ProfileSlots, SlotsOutsideTheTableHaveNoRowAndBroadenThePeak) {
  EXPECT_EQ(ProfileSlotRowOf(0), nullptr);
  EXPECT_EQ(ProfileSlotRowOf(ProfileSlot::Last + 1), nullptr);
  EXPECT_EQ(ProfileSlotFamily(ProfileSlot::Last + 1, ProfileCode::kPseudoVoigt), kWidth);
  EXPECT_EQ(ProfileSlotFamily(ProfileSlot::FirstCell, ProfileCode::kPseudoVoigt), kBraggAngle);
  EXPECT_EQ(ProfileSlotFamily(ProfileSlot::Shift2, ProfileCode::kPseudoVoigt), kPosition);
}

TEST(ProfileSlots, IntegratedSlotsShareTheNumbersOfTheProfileSlots) {
  EXPECT_EQ(IntegratedSlot::Sc1, ProfileSlot::Scale);
  EXPECT_EQ(IntegratedSlot::Sc6, ProfileSlot::Pref1);
  EXPECT_EQ(IntegratedSlot::Ext1, ProfileSlot::Pref2);
  EXPECT_EQ(IntegratedSlot::Ext7, 19);
}

}  // namespace
}  // namespace corvinet
