// Tests of the order table: the reflections reaching each point, excluded points, the overlap limit
// and checks.
#include "refine/order_reflections.h"

#include <gtest/gtest.h>

#include "records/dimension_limits.h"
#include "records/reflection.h"
#include "run/defaults.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

// One pattern of 101 points from 10 to 20 degrees and one phase.
struct OrderCase {
  testing::ScratchDir dir;
  CapturedJob job;
  OrderCase() {
    ResetDefaults(*job);
    Pattern& p = job->patterns[1];
    p.NPTS = 101;
    p.THMIN = 10.0f;
    p.STEP = 0.1f;
    p.THMAX = 20.0f;
    p.equalStep = 1;
    p.Wdt = 2.0f;
    p.AsyLim = 0.0f;
    for (int i = 1; i <= p.NPTS; ++i) p.X[i] = 10.0f + 0.1f * static_cast<float>(i - 1);
    job->run.NPHASE = 1;
    job->phases[1].pat[1].Contribution = 1;
    job->phases[1].pat[1].Npr = 6;
    OpenUnit(job->files.units[Unit::Out], "x.out", OpenStatus::Unknown);
  }
  void Add(float position, float fwhm) {
    ReflectionTable& t = job->patterns[1].reflections;
    ++t.total;
    t.slot.MakeRoomFor(t.total);
    t.slot[t.total].key = ReflectionKey(1, 1, 1, 0, t.total);
    t.slot[t.total].position = position;
    t.slot[t.total].Fwhm = fwhm;
    t.count[1] = t.total;
  }
  int Code(int i) { return job->patterns[1].OrderCode[i]; }
  bool Orders() {
    return testing::RunsWithoutStop(*job, [](Job& j) { OrderReflections(j, 1); });
  }
  bool Follows() {
    return testing::RunsWithoutStop(*job, [](Job& j) { FollowReflections(j, 1); });
  }
};

TEST(OrderReflections, PointsUnderAPeakGetItsNumber) {
  OrderCase c;
  c.Add(12.0f, 0.1f);  // base 11.8 .. 12.2: points 19 .. 23
  c.Add(12.1f, 0.1f);  // base 11.9 .. 12.3: points 20 .. 24
  ASSERT_TRUE(c.Orders());
  EXPECT_EQ(c.Code(18), 0);
  EXPECT_EQ(c.Code(19), OrderCodeOf(1, 1));
  EXPECT_EQ(c.Code(21), OrderCodeOf(1, 2));
  EXPECT_EQ(c.Code(24), OrderCodeOf(2, 2));
  EXPECT_EQ(c.Code(25), 0);
  EXPECT_EQ(FirstReflection(c.Code(21)), 1);
  EXPECT_EQ(LastReflection(c.Code(21)), 2);
}

TEST(OrderReflections, ExcludedRegionsGetTheMarker) {
  OrderCase c;
  c.Add(12.0f, 0.1f);
  Pattern& p = c.job->patterns[1];
  p.NEXCRG = 2;
  p.ExclLow[1] = 0.0f;
  p.ExclHigh[1] = 10.5f;  // points 1 .. 6
  p.ExclLow[2] = 12.05f;  // points 22 .. 101 reach the last point
  p.ExclHigh[2] = 30.0f;
  ASSERT_TRUE(c.Orders());
  EXPECT_EQ(c.Code(1), kExcludedPoint);
  EXPECT_EQ(c.Code(6), kExcludedPoint);
  EXPECT_EQ(c.Code(7), 0);
  EXPECT_EQ(c.Code(21), OrderCodeOf(1, 1));
  EXPECT_EQ(c.Code(22), kExcludedPoint);
  EXPECT_EQ(c.Code(101), kExcludedPoint);
}

TEST(OrderReflections, CodesOfTheLargestTablesKeepFirstAndLastReflection) {
  // Up to 60 000 reflections, and up to NOV of them over one point.
  for (int first : {1, 2, 5999, 6000, 6001, 30000, 58465, 60000}) {
    for (int span : {0, 1, 700, DimensionLimits::NOV - 1}) {
      const int last = first + span;
      if (last > DimensionLimits::kLargeIRS) continue;
      const int code = OrderCodeOf(first, last);
      EXPECT_GT(code, 0);
      EXPECT_NE(code, kExcludedPoint);
      EXPECT_EQ(FirstReflection(code), first) << first << " " << span;
      EXPECT_EQ(LastReflection(code), last) << first << " " << span;
      // A point reached by widened bases alone keeps its reflections.
      EXPECT_EQ(FirstReflection(code + kTailOnlyPoint), first);
      EXPECT_EQ(LastReflection(code + kTailOnlyPoint), last);
      EXPECT_FALSE(IsBraggCode(code + kTailOnlyPoint));
      EXPECT_TRUE(IsBraggCode(code));
    }
  }
  EXPECT_EQ(FirstReflection(kExcludedPoint), 0);
  EXPECT_EQ(LastReflection(kExcludedPoint), 1);
  EXPECT_EQ(FirstReflection(0), 0);
  EXPECT_EQ(LastReflection(0), 0);
}

TEST(OrderReflections, ReflectionsBeyondSixThousandGetTheirNumbersInALargeRun) {
  OrderCase c;
  c.job->dimensions = LargeDimensionLimits();
  // 59 998 narrow peaks below the range, then two at 15 degrees.
  for (int k = 1; k <= 59998; ++k) c.Add(5.0f, 0.05f);
  c.Add(15.0f, 0.1f);
  c.Add(15.0f, 0.1f);
  ASSERT_TRUE(c.Orders()) << c.job.Console();
  EXPECT_EQ(FirstReflection(c.Code(51)), 59999);
  EXPECT_EQ(LastReflection(c.Code(51)), 60000);
  EXPECT_EQ(c.Code(1), 0);
}

TEST(OrderReflections, PatternWithoutReflectionsStops) {
  OrderCase c;
  EXPECT_FALSE(c.Orders());
  EXPECT_NE(c.job.Console().find(" NO REFLECTIONS FOUND -> Check your input data"),
            std::string::npos);
}

TEST(OrderReflections, FifteenThirtySixReflectionsOverAPointPassOneMoreStops) {
  OrderCase pass;
  for (int k = 1; k <= DimensionLimits::NOV; ++k) pass.Add(15.0f, 0.1f);
  EXPECT_TRUE(pass.Orders());
  OrderCase stop;
  for (int k = 1; k <= DimensionLimits::NOV + 1; ++k) stop.Add(15.0f, 0.1f);
  EXPECT_FALSE(stop.Orders());
  EXPECT_NE(stop.job.Console().find(" Excessive peak overlap! (see *.OUT)"), std::string::npos);
  const std::string out = testing::FlushedReport(stop.dir, *stop.job);
  EXPECT_NE(out.find("    to a single point is:  1536"), std::string::npos);
  EXPECT_NE(out.find("th step there are   1537 reflections"), std::string::npos);
}

TEST(OrderReflections, RefinedAsymmetryWithoutPeaksBelowTheLimitStops) {
  OrderCase c;
  c.Add(12.0f, 0.1f);
  c.job->patterns[1].AsyLim = 11.0f;
  c.job->phases[1].pat[1].PAC[14].parameterNumber = 3;
  EXPECT_FALSE(c.Orders());
  EXPECT_NE(c.job.Console().find(" => Asymmetry parameters usage invalid !!"), std::string::npos);
}

TEST(OrderReflections, RefinedSecondOrientationValueWithBothZeroStops) {
  OrderCase c;
  c.Add(12.0f, 0.1f);
  c.job->phases[1].pat[1].PAC[13].parameterNumber = 2;
  EXPECT_FALSE(c.Orders());
  EXPECT_NE(c.job.Console().find(" => Preferred orientation usage invalid !!"), std::string::npos);
}

TEST(OrderReflections, VariableStepUsesBisection) {
  OrderCase c;
  Pattern& p = c.job->patterns[1];
  p.equalStep = 0;
  for (int i = 1; i <= p.NPTS; ++i) p.X[i] = 10.0f + 0.001f * static_cast<float>(i * i);
  c.Add(12.0f, 0.2f);  // base 11.6 .. 12.4
  ASSERT_TRUE(c.Orders());
  // X[40] = 11.6, X[48] = 12.304, X[49] = 12.401.
  EXPECT_EQ(Locate(p.NPTS, p.X, 11.6f), 40);
  EXPECT_EQ(c.Code(39), 0);
  EXPECT_EQ(c.Code(40), OrderCodeOf(1, 1));
  EXPECT_EQ(c.Code(48), OrderCodeOf(1, 1));
  EXPECT_EQ(c.Code(49), 0);
  EXPECT_EQ(Locate(p.NPTS, p.X, 9.0f), 0);
}

TEST(OrderReflections, PointTableIsWrittenWhenAsked) {
  OrderCase c;
  c.Add(12.0f, 0.1f);
  c.job->patterns[1].LST2 = 1;
  ASSERT_TRUE(c.Orders());
  const auto lines = testing::SplitLines(testing::FlushedReport(c.dir, *c.job));
  ASSERT_GE(lines.size(), 103u);
  EXPECT_EQ(lines[0].substr(0, 13), "Pattern from ");
  EXPECT_EQ(lines[1], "  2theta         Ytotal         Backg         Ynet      Variance  K11  K21");
  EXPECT_EQ(lines[2 + 18].substr(lines[2 + 18].size() - 10), "    1    1");
}

TEST(OrderReflections, FollowingKeepsTheTableWhileEveryBaseIsCovered) {
  OrderCase c;
  c.Add(12.0f, 0.1f);  // base 11.8 .. 12.2: points 19 .. 23
  ASSERT_TRUE(c.Orders());
  c.job->patterns[1].reflections.slot[1].position = 12.02f;  // base 11.82 .. 12.22: 20 .. 23
  ASSERT_TRUE(c.Follows());
  EXPECT_EQ(c.Code(19), OrderCodeOf(1, 1));
  EXPECT_EQ(c.Code(23), OrderCodeOf(1, 1));
  EXPECT_EQ(c.Code(24), 0);
}

TEST(OrderReflections, FollowingRebuildsWithWidenedBasesWhenAPeakLeavesItsPoints) {
  OrderCase c;
  c.Add(12.0f, 0.1f);
  ASSERT_TRUE(c.Orders());
  // Moved by 0.33: base 12.13 .. 12.53, points 22 .. 26; widened by half of
  // each side, 12.03 .. 12.63, points 21 .. 27.
  c.job->patterns[1].reflections.slot[1].position = 12.33f;
  ASSERT_TRUE(c.Follows());
  EXPECT_EQ(c.Code(20), 0);
  EXPECT_EQ(c.Code(22), OrderCodeOf(1, 1));
  EXPECT_EQ(c.Code(26), OrderCodeOf(1, 1));
  EXPECT_EQ(c.Code(28), 0);
  // Points 21 and 27, reached by the widened base only, keep the reflection
  // for its calculation and count without Bragg contributions.
  for (int i : {21, 27}) {
    EXPECT_EQ(c.Code(i), kTailOnlyPoint + OrderCodeOf(1, 1)) << i;
    EXPECT_EQ(FirstReflection(c.Code(i)), 1);
    EXPECT_EQ(LastReflection(c.Code(i)), 1);
    EXPECT_FALSE(IsBraggCode(c.Code(i)));
  }
  EXPECT_TRUE(IsBraggCode(c.Code(22)));
}

TEST(OrderReflections, FollowingRebuildsWhenAPeakBroadensBeyondItsPoints) {
  OrderCase c;
  c.Add(12.0f, 0.1f);
  ASSERT_TRUE(c.Orders());
  // Width 0.2: base 11.6 .. 12.4, points 17 .. 25; widened 11.4 .. 12.6, 15 .. 27.
  c.job->patterns[1].reflections.slot[1].Fwhm = 0.2f;
  ASSERT_TRUE(c.Follows());
  EXPECT_EQ(c.Code(14), 0);
  EXPECT_EQ(c.Code(15), kTailOnlyPoint + OrderCodeOf(1, 1));
  EXPECT_EQ(c.Code(17), OrderCodeOf(1, 1));
  EXPECT_EQ(c.Code(25), OrderCodeOf(1, 1));
  EXPECT_EQ(c.Code(27), kTailOnlyPoint + OrderCodeOf(1, 1));
  EXPECT_EQ(c.Code(28), 0);
}

}  // namespace
}  // namespace corvinet
