// The page of the pattern plot: nice scales, extents, the calls of a small page on a recording
// page, clamping, excluded points and the markers; every expected number is worked by hand.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "surface/pattern_plot.h"
#include "surface/recording_page.h"

namespace corvinet {
namespace {

using testing::RecordingPage;

void ExpectAxis(const NiceAxis& a, float step, int count, float low, float high) {
  EXPECT_FLOAT_EQ(a.step, step);
  EXPECT_EQ(a.count, count);
  EXPECT_FLOAT_EQ(a.low, low);
  EXPECT_FLOAT_EQ(a.high, high);
}

TEST(NiceScale, WholeTenthOfTheRangeIsTheStep) {
  // d = 8, u = 1, n = 8; low 10; 10 + 8c >= 90 at c = 10.
  ExpectAxis(NiceScale(10.0f, 90.0f, 1.0e-6f), 8.0f, 10, 10.0f, 90.0f);
}

TEST(NiceScale, NegativeMinimumGoesDownOneUnit) {
  // d = 126.9, u = 100, n = 1 + 1 = 2: step 200; trunc(-0.35) = 0, less 1;
  // low -100; -100 + 200c >= 1234 at c = 7, high 1300.
  ExpectAxis(NiceScale(-35.0f, 1234.0f, 1.0e-6f), 200.0f, 7, -100.0f, 1300.0f);
}

TEST(NiceScale, FractionalTenthIsRoundedUp) {
  // d = 5.55, u = 1, n = 5 + 1 = 6; low 20; 20 + 6c >= 75.5 at c = 10, high 80.
  ExpectAxis(NiceScale(20.0f, 75.5f, 1.0e-6f), 6.0f, 10, 20.0f, 80.0f);
}

TEST(NiceScale, SmallRangeHasDecimalSteps) {
  // d = 0.04, log10 = -1.4 truncated to -1: u = 0.1, n = 0 + 1; low 0.1*trunc(2) = 0.2;
  // 0.2 + 0.1c >= 0.6 at c = 4.
  ExpectAxis(NiceScale(0.2f, 0.6f, 1.0e-6f), 0.1f, 4, 0.2f, 0.6f);
}

TEST(NiceScale, EmptyRangeGetsOneUnitStep) {
  ExpectAxis(NiceScale(4.0f, 4.0f, 1.0e-6f), 1.0f, 1, 4.0f, 5.0f);
  const NiceAxis reversed = NiceScale(1.0e9f, -1.0e9f, 1.0e-6f);
  EXPECT_FLOAT_EQ(reversed.high - reversed.low, 1.0f);
}

// Three points and one reflection, worked by hand below.
struct SmallPattern {
  std::vector<float> x = {10.0f, 20.0f, 30.0f};
  std::vector<float> yobs = {100.0f, 300.0f, 200.0f};
  std::vector<float> ycalc = {110.0f, 280.0f, 200.0f};
  std::vector<PlotTick> ticks = {{20.0f, 1}};
  std::vector<PlotRegion> regions;
  PatternPlotView View() {
    PatternPlotView v;
    v.x = x;
    v.yobs = yobs;
    v.ycalc = ycalc;
    v.ticks = ticks;
    v.excluded = regions;
    v.phaseCount = 1;
    v.title = "Small pattern";
    v.dataFile = "small.dat";
    return v;
  }
};

TEST(ScanExtents, MakesRoomForTicksAndDifference) {
  SmallPattern small;
  PlotState s;
  ResetPlot(s);
  ScanExtents(s, small.View());
  EXPECT_FLOAT_EQ(s.XMin, 10.0f);
  EXPECT_FLOAT_EQ(s.XMax, 30.0f);
  EXPECT_FLOAT_EQ(s.YMax, 300.0f);
  EXPECT_FLOAT_EQ(s.DMin, -10.0f);
  EXPECT_FLOAT_EQ(s.DMax, 20.0f);
  EXPECT_FLOAT_EQ(s.Ybase, 100.0f);
  // -30 - 200 * 1.15 * 0.2
  EXPECT_FLOAT_EQ(s.DiffShift, -76.0f);
  // 100 - 76 - 10
  EXPECT_FLOAT_EQ(s.YMin, 14.0f);
}

TEST(ScanExtents, DiffShiftGrowsWithThePhases) {
  SmallPattern small;
  PatternPlotView v = small.View();
  v.phaseCount = 3;
  PlotState s;
  ResetPlot(s);
  ScanExtents(s, v);
  // -30 - 200 * 1.45 * 0.2
  EXPECT_FLOAT_EQ(s.DiffShift, -88.0f);
}

TEST(ScanExtents, AllPointsExcludedKeepTheInitialExtents) {
  SmallPattern small;
  small.regions = {{5.0f, 40.0f}};
  PlotState s;
  ResetPlot(s);
  ScanExtents(s, small.View());
  EXPECT_FLOAT_EQ(s.XMin, 1.0e9f);
  EXPECT_FLOAT_EQ(s.XMax, -1.0e9f);
  EXPECT_FLOAT_EQ(s.YMin, 1.0e9f);
  EXPECT_FLOAT_EQ(s.YMax, -1.0e9f);
  // The page is still drawn: a frame and no point.
  RecordingPage page;
  DrawPatternPanel(page, PlotFrame{}, small.View());
  EXPECT_EQ(page.Starting("rect").size(), 1u);
  EXPECT_TRUE(page.Starting("circle").empty());
}

TEST(ScanExtents, DegenerateRangeLosesOneFromBothLimits) {
  std::vector<float> x = {7.0f}, y = {5.0f};
  PatternPlotView v;
  v.x = x;
  v.yobs = y;
  v.ycalc = y;
  PlotState s;
  ResetPlot(s);
  ScanExtents(s, v);
  EXPECT_FLOAT_EQ(s.XMin, 6.0f);
  EXPECT_FLOAT_EQ(s.XMax, 6.0f);
}

TEST(ChooseScales, ScaleFactorsSpanTheFrame) {
  SmallPattern small;
  PlotState s;
  ResetPlot(s);
  ScanExtents(s, small.View());
  ChooseScales(s);
  // x: d = 2, step 2 from 10 to 30; y: 14..300, d = 28.6, u = 10, n = 3,
  // step 30 from 10, 10 + 30c >= 300 at c = 10: high 310.
  ExpectAxis(s.xAxis, 2.0f, 10, 10.0f, 30.0f);
  ExpectAxis(s.yAxis, 30.0f, 10, 10.0f, 310.0f);
  EXPECT_FLOAT_EQ(s.ScaleX, 0.7f / 20.0f);
  EXPECT_FLOAT_EQ(s.ScaleY, 0.7f / 300.0f);
  EXPECT_NEAR(PageX(s, 20.0f), 0.5f, 1e-6f);
  EXPECT_NEAR(PageY(s, 10.0f), 0.85f, 1e-6f);
  EXPECT_NEAR(PageY(s, 310.0f), 0.15f, 1e-6f);
}

TEST(DrawPattern, SmallPatternGivesTheExpectedCalls) {
  SmallPattern small;
  const PatternPlotView v = small.View();
  PlotState s;
  ResetPlot(s);
  ScanExtents(s, v);
  ChooseScales(s);
  RecordingPage page;
  DrawPattern(page, s, v);
  // Page y = 0.85 - (y - 10) * 0.7 / 300; the difference is drawn at
  // Yobs - Ycalc + 100 - 76, the tick at 100 - 200 * 0.05 = 90, 0.005 each way.
  const std::vector<std::string> expected = {
      "pen 0000FF 0.0010",           "circle 0.1500 0.6400 0.0030", "circle 0.5000 0.1733 0.0030",
      "circle 0.8500 0.4067 0.0030", "pen 000000 0.0010",           "move 0.1500 0.6167",
      "line 0.5000 0.2200",          "line 0.8500 0.4067",          "pen 000000 0.0010",
      "move 0.1500 0.8407",          "line 0.5000 0.7707",          "line 0.8500 0.8173",
      "pen 008000 0.0010",           "move 0.5000 0.6533",          "line 0.5000 0.6733"};
  EXPECT_EQ(page.calls, expected);
}

TEST(DrawAxes, FrameTicksAndLabels) {
  SmallPattern small;
  PlotState s;
  ResetPlot(s);
  ScanExtents(s, small.View());
  ChooseScales(s);
  RecordingPage page;
  DrawAxes(page, s);
  ASSERT_GE(page.calls.size(), 7u);
  EXPECT_EQ(page.calls[0], "pen 000000 0.0030");
  EXPECT_EQ(page.calls[1], "font Times New Roman 11.0000");
  EXPECT_EQ(page.calls[2], "rect 0.1500 0.1500 0.8500 0.8500");
  // The first x tick at 10, inner ticks of 0.01 from both edges, and its label
  // "10" moved left by half of two characters.
  EXPECT_EQ(page.calls[3], "move 0.1500 0.1500");
  EXPECT_EQ(page.calls[4], "line 0.1500 0.1600");
  EXPECT_EQ(page.calls[5], "move 0.1500 0.8500");
  EXPECT_EQ(page.calls[6], "line 0.1500 0.8400");
  const std::vector<std::string> texts = page.Starting("text");
  // Eleven x labels and eleven y labels (10 to 310, none negative).
  ASSERT_EQ(texts.size(), 22u);
  EXPECT_EQ(texts[0], "text 0.1400 0.8650 left 0.0000 10");
  EXPECT_EQ(texts[10], "text 0.8400 0.8650 left 0.0000 30");
  EXPECT_EQ(texts[11], "text 0.1100 0.8500 left 0.0000 10");
  EXPECT_EQ(texts[21], "text 0.1000 0.1500 left 0.0000 310");
}

TEST(DrawAxes, NoLabelsForNegativeValues) {
  PlotState s;
  ResetPlot(s);
  s.xAxis = {1.0f, 1, 0.0f, 1.0f};
  s.yAxis = {0.5f, 4, -1.0f, 1.0f};
  s.ScaleX = 0.7f;
  s.ScaleY = 0.35f;
  RecordingPage page;
  DrawAxes(page, s);
  const std::vector<std::string> texts = page.Starting("text");
  // x labels 0 and 1; y labels only for 0.0, 0.5, 1.0, with one decimal.
  ASSERT_EQ(texts.size(), 5u);
  EXPECT_EQ(texts[2], "text 0.1000 0.5000 left 0.0000 0.0");
  EXPECT_EQ(texts[4], "text 0.1000 0.1500 left 0.0000 1.0");
  // Ticks are drawn at every value, also below zero: 2 per x value, 2 per y value.
  EXPECT_EQ(page.Starting("move").size(), 2u * 2u + 2u * 5u);
}

TEST(AxisLabelFormat, DecimalsFollowTheStep) {
  EXPECT_EQ(AxisLabelFormat(200.0f), "");
  EXPECT_EQ(AxisLabelFormat(0.5f), "(F16.1)");
  EXPECT_EQ(AxisLabelFormat(0.25f), "(F16.2)");
  EXPECT_EQ(AxisLabelFormat(0.002f), "(F16.3)");
}

TEST(DrawPattern, ValuesBelowTheFrameAreClampedNotOmitted) {
  std::vector<float> x = {5.0f, 6.0f, 20.0f}, yobs = {-50.0f, 200.0f, 10.0f};
  std::vector<float> ycalc = {10.0f, 10.0f, 10.0f};
  PatternPlotView v;
  v.x = x;
  v.yobs = yobs;
  v.ycalc = ycalc;
  PlotState s;
  ResetPlot(s);
  s.xAxis = {1.0f, 10, 0.0f, 10.0f};
  s.yAxis = {10.0f, 10, 0.0f, 100.0f};
  s.ScaleX = 0.07f;
  s.ScaleY = 0.007f;
  RecordingPage page;
  DrawPattern(page, s, v);
  // -50 would be at 1.2, 200 at -0.55: both on the frame lines; x = 20 is
  // right of the frame and not drawn.
  const std::vector<std::string> circles = page.Starting("circle");
  ASSERT_EQ(circles.size(), 2u);
  EXPECT_EQ(circles[0], "circle 0.5000 0.8500 0.0030");
  EXPECT_EQ(circles[1], "circle 0.5700 0.1500 0.0030");
}

TEST(DrawPattern, ExcludedPointsAreSkippedAndBreakTheCurve) {
  SmallPattern small;
  small.regions = {{15.0f, 25.0f}};
  const PatternPlotView v = small.View();
  PlotState s;
  ResetPlot(s);
  ScanExtents(s, v);
  ChooseScales(s);
  RecordingPage page;
  DrawPattern(page, s, v);
  EXPECT_EQ(page.Starting("circle").size(), 2u);
  // Two curves of two separate points each, and no tick (its position is excluded).
  EXPECT_EQ(page.Starting("move").size(), 4u);
  EXPECT_TRUE(page.Starting("line").empty());
}

TEST(DrawMarker, EveryType) {
  RecordingPage page;
  for (int t = 1; t <= 8; ++t) DrawMarker(page, static_cast<MarkerType>(t), 1.0f, 0.5f, 0.5f);
  // h = 0.002 for size 1.
  const std::vector<std::string> expected = {
      // 1 plus
      "move 0.4980 0.5000", "line 0.5020 0.5000", "move 0.5000 0.4980", "line 0.5000 0.5020",
      // 2 cross
      "move 0.4980 0.4980", "line 0.5020 0.5020", "move 0.4980 0.5020", "line 0.5020 0.4980",
      // 3 plus and cross
      "move 0.4980 0.5000", "line 0.5020 0.5000", "move 0.5000 0.4980", "line 0.5000 0.5020",
      "move 0.4980 0.4980", "line 0.5020 0.5020", "move 0.4980 0.5020", "line 0.5020 0.4980",
      // 4 circle, 5 filled circle, 6 square, 7 filled square
      "circle 0.5000 0.5000 0.0020", "disc 0.5000 0.5000 0.0020",
      "rect 0.4980 0.4980 0.5020 0.5020", "box 0.4980 0.4980 0.5020 0.5020",
      // 8 vertical bar of 2h each way
      "move 0.5000 0.4960", "line 0.5000 0.5040"};
  EXPECT_EQ(page.calls, expected);
}

TEST(DrawAxisTitles, TitlesOfAngleAndTimeOfFlight) {
  SmallPattern small;
  PatternPlotView v = small.View();
  PlotState s;
  ResetPlot(s);
  RecordingPage page;
  DrawAxisTitles(page, s, v);
  const std::vector<std::string> texts = page.Starting("text");
  ASSERT_EQ(texts.size(), 3u);
  EXPECT_EQ(texts[0], "text 0.5000 0.9250 centre 0.0000 2 Theta (deg.)");
  EXPECT_EQ(texts[1], "text 0.1000 0.5000 centre 90.0000 Intensity (a.u.)");
  EXPECT_EQ(texts[2], "text 0.5000 0.0500 centre 0.0000 Small pattern");
  EXPECT_EQ(page.Starting("font").back(), "font Times New Roman 14.0000");
  v.timeOfFlight = true;
  RecordingPage tof;
  DrawAxisTitles(tof, s, v);
  EXPECT_EQ(tof.Starting("text")[0], "text 0.5000 0.9250 centre 0.0000 Time of flight (microsec.)");
}

TEST(DrawLegend, FiveRowsInTheirColours) {
  SmallPattern small;
  PlotState s;
  ResetPlot(s);
  RecordingPage page;
  DrawLegend(page, s, small.View());
  const std::vector<std::string> expected = {"font Times 11.0000",
                                             "pen 0000FF 0.0010",
                                             "text 0.7000 0.2000 left 0.0000 small.dat",
                                             "pen 0000FF 0.0010",
                                             "text 0.7000 0.2350 left 0.0000 Yobs",
                                             "pen 000000 0.0010",
                                             "text 0.7000 0.2700 left 0.0000 Ycalc",
                                             "pen 000000 0.0010",
                                             "text 0.7000 0.3050 left 0.0000 Yobs-Ycalc",
                                             "pen 008000 0.0010",
                                             "text 0.7000 0.3400 left 0.0000 Bragg positions",
                                             "pen 000000 0.0010"};
  EXPECT_EQ(page.calls, expected);
}

TEST(DrawPattern, FitPictureTicksTakeTheColourOfTheirPhase) {
  SmallPattern small;
  small.ticks = {{12.0f, 1}, {18.0f, 2}};
  PatternPlotView v = small.View();
  v.phaseCount = 2;
  v.phaseColours = true;
  PlotState s;
  ResetPlot(s);
  ScanExtents(s, v);
  ChooseScales(s);
  RecordingPage page;
  DrawPattern(page, s, v);
  const std::vector<std::string> pens = page.Starting("pen");
  // Red points, black curve and difference, green before the ticks, then
  // phase 1 in green and phase 2 in blue.
  ASSERT_EQ(pens.size(), 6u);
  EXPECT_EQ(pens[4], "pen 008000 0.0010");
  EXPECT_EQ(pens[5], "pen FF0000 0.0010");
}

}  // namespace
}  // namespace corvinet
