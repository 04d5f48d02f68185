// Tests of the refined heights of an interpolated background: their shift, the background that
// follows them and their rows in the global table.
#include "refine/background_height_update.h"

#include <gtest/gtest.h>

#include <string>

#include "observations/background.h"
#include "refine/global_update.h"
#include "refine/update_case.h"

namespace corvinet {
namespace {

using testing::HasLine;
using testing::UpdateCase;

// Three points at 10, 11 and 12 under a background through (9, 100),
// (11, 80), (13, 90) and (15, 95), linear (typed 4) or spline (typed -4),
// height 2 refined as parameter 2.
void SetPointHeights(UpdateCase& c, int typed) {
  Pattern& p = c.pattern();
  p.NBCKGD = 4;
  p.backgroundSign = typed < 0 ? -1 : 1;
  const float positions[4] = {9.0f, 11.0f, 13.0f, 15.0f};
  const float heights[4] = {100.0f, 80.0f, 90.0f, 95.0f};
  for (int k = 1; k <= 4; ++k) {
    p.BackPos[k] = positions[k - 1];
    p.BackInt[k] = heights[k - 1];
  }
  p.BackIntCode[2] = 21.0f;
  FillBackground(*c, 1);
}

TEST(BackgroundHeightUpdate, AShiftMovesTheHeightWithRglAndTheRefillMovesBackg) {
  UpdateCase c;
  SetPointHeights(c, 4);
  Pattern& p = c.pattern();
  ASSERT_EQ(p.Backg[2], 80.0f);
  c->run.relaxationFactor[4] = 0.5f;
  c.SetParameter(2, 6.0f, 4.0f);
  const std::vector<ShownHeight> shown = ShiftBackgroundHeights(*c, 1);
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].point, 2);
  EXPECT_EQ(shown[0].shown.value, 83.0f);
  EXPECT_EQ(shown[0].shown.shift, 3.0f);
  EXPECT_EQ(shown[0].shown.sigma, 2.0f);
  EXPECT_EQ(p.BackInt[2], 83.0f);
  EXPECT_EQ(p.BackInt[1], 100.0f);
  EXPECT_EQ(p.BackInt[3], 90.0f);
  // The background of this cycle stays until the next cycle refills it.
  EXPECT_EQ(p.Backg[2], 80.0f);
  ASSERT_TRUE(RefilledEachCycle(p));
  FillBackground(*c, 1);
  EXPECT_EQ(p.Backg[2], 83.0f);
  EXPECT_EQ(p.Backg[1], 0.5f * (100.0f + 83.0f));
  EXPECT_EQ(p.Backg[3], 0.5f * (83.0f + 90.0f));
}

TEST(BackgroundHeightUpdate, TheSplineBackgroundFollowsItsShiftedHeight) {
  UpdateCase c;
  SetPointHeights(c, -4);
  Pattern& p = c.pattern();
  const float before = p.Backg[1];
  c.SetParameter(2, 10.0f, 1.0f);
  ShiftBackgroundHeights(*c, 1);
  EXPECT_EQ(p.BackInt[2], 90.0f);
  FillBackground(*c, 1);
  // The spline passes through its points: at 11 it is the new height.
  EXPECT_FLOAT_EQ(p.Backg[2], 90.0f);
  EXPECT_NE(p.Backg[1], before);
}

TEST(BackgroundHeightUpdate, HeightsUnderHardLimitsStopAtTheLimit) {
  UpdateCase c;
  SetPointHeights(c, 4);
  c.SetParameter(2, 50.0f, 1.0f);
  c.SetLimit(2, 0.0f, 100.0f);
  ShiftBackgroundHeights(*c, 1);
  EXPECT_EQ(c.pattern().BackInt[2], 100.0f);
  ASSERT_EQ(c->limits.breaks.count, 1);
}

TEST(BackgroundHeightUpdate, OtherModelsAndUnrefinedHeightsShowNothing) {
  UpdateCase c;
  SetPointHeights(c, 4);
  // The codes are decoded when the background is filled, as after reading.
  c.pattern().BackIntCode[2] = 0.0f;
  FillBackground(*c, 1);
  c.SetParameter(2, 6.0f, 4.0f);
  EXPECT_TRUE(ShiftBackgroundHeights(*c, 1).empty());
  EXPECT_EQ(c.pattern().BackInt[2], 80.0f);
  c.pattern().BackIntCode[2] = 21.0f;
  c.pattern().NBCKGD = 0;  // the polynomial keeps its coefficients in GLB
  EXPECT_TRUE(ShiftBackgroundHeights(*c, 1).empty());
  EXPECT_EQ(c.pattern().BackInt[2], 80.0f);
}

TEST(BackgroundHeightUpdate, TheGlobalTableShowsEachRefinedHeightAfterTheSlots) {
  UpdateCase c;
  SetPointHeights(c, 4);
  c.pattern().GLB[1] = 0.5f;
  c->run.relaxationFactor[4] = 0.5f;
  c.SetParameter(2, 6.0f, 4.0f);
  UpdateGlobalParameters(*c, 1, c.Pass());
  const auto out = c.Out();
  const std::string heightLine =
      std::string(15, ' ') + "BckPt2    83.0000        3.00000        2.00000";
  EXPECT_TRUE(HasLine(out, heightLine));
  const int zero = testing::FindLine(out, std::string(17, ' ') + "Zero");
  const int height = testing::FindLine(out, std::string(15, ' ') + "BckPt2");
  ASSERT_GE(zero, 0);
  EXPECT_EQ(height, zero + 1);
}

}  // namespace
}  // namespace corvinet
