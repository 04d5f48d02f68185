// Tests of the line-printer table and plot written on the .out unit.
#include <gtest/gtest.h>

#include "io/file_set.h"
#include "plot_case.h"
#include "results/profile_files.h"

namespace corvinet::testing {
namespace {

void FillRamp(Pattern& p, int n) {
  p.NPTS = n;
  for (int i = 1; i <= n; ++i) {
    p.X[i] = static_cast<float>(i);
    p.Ytotal[i] = 10.0f * static_cast<float>(i);
    p.Ycalc[i] = 10.0f * static_cast<float>(i) + 1.0f;
    p.Variance[i] = static_cast<float>(i);
  }
}

TEST(LinePrinterTable, PrintsFullPagesOfFourColumnGroups) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  FillRamp(job->patterns[1], 250);
  OpenFiles(*job, FileKind::kOutput, 1, 0);
  WriteLinePrinterTable(*job, 1);
  const std::vector<std::string> lines = SplitLines(FlushedReport(dir, *job));
  // One full page of 240 points: the heading and 60 rows; points 241..250 are not printed.
  ASSERT_EQ(lines.size(), 61u);
  std::string heading;
  for (int g = 0; g < 4; ++g) heading += "2THETA   YOBS    YCALC VARIANCE ";
  EXPECT_EQ(lines[0], heading);
  EXPECT_EQ(lines[1],
            "   1.000     10.     11.      1.  61.000    610.    611.     61."
            " 121.000   1210.   1211.    121. 181.000   1810.   1811.    181.");
  EXPECT_EQ(lines[60],
            "  60.000    600.    601.     60. 120.000   1200.   1201.    120."
            " 180.000   1800.   1801.    180. 240.000   2400.   2401.    240.");
}

TEST(LinePrinterTable, TimeOfFlightAbscissaHasNoDecimals) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  FillRamp(job->patterns[1], 240);
  job->patterns[1].IXUNIT = AbscissaUnit::kTimeOfFlight;
  job->patterns[1].X[1] = 1234.4f;
  OpenFiles(*job, FileKind::kOutput, 1, 0);
  WriteLinePrinterTable(*job, 1);
  const std::vector<std::string> lines = SplitLines(FlushedReport(dir, *job));
  ASSERT_EQ(lines.size(), 61u);
  EXPECT_EQ(lines[0].substr(0, 32), "T.O.F.   YOBS    YCALC VARIANCE ");
  EXPECT_EQ(lines[1].substr(0, 32), "   1234.     10.     11.      1.");
}

TEST(LinePrinterTable, EnergyHeadingAndShortPatternPrintsNothing) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  FillRamp(job->patterns[1], 239);
  job->patterns[1].IXUNIT = AbscissaUnit::kEnergy;
  OpenFiles(*job, FileKind::kOutput, 1, 0);
  WriteLinePrinterTable(*job, 1);
  EXPECT_TRUE(SplitLines(FlushedReport(dir, *job)).empty());
  FillRamp(job->patterns[1], 240);
  WriteLinePrinterTable(*job, 1);
  EXPECT_EQ(SplitLines(FlushedReport(dir, *job))[0].substr(0, 32),
            "Energy   YOBS    YCALC VARIANCE ");
}

// A plot line built by hand: dots at 1, 60 and 119, then the marks at the given columns.
std::string PlotLine(const std::string& margin, int observed, int calculated, int difference) {
  std::string line(120, ' ');
  line[0] = line[59] = line[118] = '.';
  line[static_cast<std::size_t>(observed - 2)] = '0';
  if (observed < 120) line[static_cast<std::size_t>(observed)] = '0';
  line[static_cast<std::size_t>(observed - 1)] = '+';
  line[static_cast<std::size_t>(calculated - 1)] = '-';
  line[static_cast<std::size_t>(difference - 1)] = '*';
  return margin + line;
}

TEST(LinePrinterPlot, ScalesDefaultTo50AndMarksGoToTheirColumns) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  Pattern& p = job->patterns[1];
  p.NPTS = 2;
  p.X[1] = 10.0f;
  p.Ytotal[1] = 1000.0f;  // column 20 + 2
  p.Ycalc[1] = 500.0f;    // column 10 + 2
  p.X[2] = 10.5f;
  p.Ytotal[2] = 1.0e6f;  // beyond the page: column 120
  p.Ycalc[2] = -100.0f;  // below: column 2
  OpenFiles(*job, FileKind::kOutput, 1, 0);
  WriteLinePrinterPlot(*job, 1, 0.0f, 0.0f);
  const std::vector<std::string> lines = SplitLines(FlushedReport(dir, *job));
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[0], "Test pattern");
  EXPECT_EQ(lines[1],
            "       500      1000      1500      2000      2500      3000"
            "      3500      4000      4500      5000      5500      6000");
  EXPECT_EQ(lines[2],
            "     -2500     -2000     -1500     -1000      -500         0"
            "       500      1000      1500      2000      2500      3000");
  // Difference 500 / 50 + 61 = 71; the second one is clamped to 120 and then
  // overwrites the observed mark.
  EXPECT_EQ(lines[3], PlotLine(" 10.00", 22, 12, 71));
  EXPECT_EQ(lines[4], PlotLine("      ", 120, 2, 120));
}

TEST(LinePrinterPlot, GivenScalesAreUsedAndEveryTenthLineCarriesX) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  Pattern& p = job->patterns[1];
  p.NPTS = 11;
  for (int i = 1; i <= 11; ++i) {
    p.X[i] = 20.0f + static_cast<float>(i);
    p.Ytotal[i] = 300.0f;
    p.Ycalc[i] = 200.0f;
  }
  OpenFiles(*job, FileKind::kOutput, 1, 0);
  WriteLinePrinterPlot(*job, 1, 100.0f, 25.0f);
  const std::vector<std::string> lines = SplitLines(FlushedReport(dir, *job));
  ASSERT_EQ(lines.size(), 14u);
  EXPECT_EQ(lines[1].substr(0, 20), "      1000      2000");
  EXPECT_EQ(lines[2].substr(0, 20), "     -1250     -1000");
  // y 300/100 + 2 = 5, 200/100 + 2 = 4, difference 100/25 + 61 = 65.
  EXPECT_EQ(lines[3], PlotLine(" 21.00", 5, 4, 65));
  EXPECT_EQ(lines[4], PlotLine("      ", 5, 4, 65));
  EXPECT_EQ(lines[13], PlotLine(" 31.00", 5, 4, 65));
}

}  // namespace
}  // namespace corvinet::testing
