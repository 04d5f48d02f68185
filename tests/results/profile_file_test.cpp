// Tests of the fixed-field and tab-separated profile files and of the extremes taken for plotting.
#include <gtest/gtest.h>

#include "plot_case.h"
#include "results/profile_files.h"

namespace corvinet::testing {
namespace {

const std::string kTitle70 = "Test pattern" + std::string(58, ' ');

TEST(ProfileFile, FixedLayoutFollowsTheRowOrderOfThePlottingProgram) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  WriteFixedProfileFile(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> expected = {
      kTitle70,
      "3111   1.0000   0.0100",
      "  11.500  10.000 0.50000       8       0",
      "  1      4   1.54056   1.54439   0.01000   0.00000   0.00000",
      "    2    0    0    0    0    0    0    0  0  0  0  0  0  0  0  0",
      "   100.    201.    300.     50.",
      "    90.    211.    280.     50.",
      " 159482240 159547520",
      "  10.510  11.010",
      "       1",
      "   10.90   11.10",
      "  0  0",
  };
  EXPECT_EQ(FileLines(dir, "x.prf"), expected);
}

TEST(ProfileFile, FixedLayoutBreaksLongBlocksAfterEightValues) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  Pattern& p = job->patterns[1];
  p.NPTS = 9;
  for (int i = 1; i <= 9; ++i) p.Ytotal[i] = p.Ycalc[i] = static_cast<float>(i);
  WriteFixedProfileFile(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_GE(lines.size(), 9u);
  EXPECT_EQ(lines[5], "     1.      2.      3.      4.      5.      6.      7.      8.");
  EXPECT_EQ(lines[6], "     9.");
}

TEST(ProfileFile, FixedLayoutListsPropagationVectorsAndSatelliteIndices) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->phases[1].Nvk = 1;
  job->phases[1].vectors[1].KVEC = Table1<float, 3>{{0.5f, 0.0f, 0.25f}};
  job->patterns[1].reflections.slot[2].satelliteIndex = -1;
  WriteFixedProfileFile(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_EQ(lines.size(), 13u);
  EXPECT_EQ(lines[4], "    2    0    0    0    0    0    0    0  1  0  0  0  0  0  0  0");
  EXPECT_EQ(lines[11], "   0.50000   0.00000   0.25000");
  EXPECT_EQ(lines[12], "  0 -1");
}

TEST(ProfileFile, TabbedLayoutWritesProfileThenReflections) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  WriteTabbedProfileFile(*job, 1, PlotCaseExtremes());
  // DiffOffset 75, BackOffset 5, TickStep 18.
  std::vector<std::string> expected = {
      kTitle70,
      "  1      4     1.54056     1.54439     0.01000     0.00000     0.00000    0",
      "    2    0    0    0    0    0    0    0  0  0  0  0  0  0  0  0  1",
      "      10.90000      11.10000",
      " 2Theta\tYobs\tYcal\tYobs-Ycal\tBackg\tPosr\t(hkl)\tK",
      "     10.0000\t     100\t      90\t     -65\t      15",
      "     10.5000\t     201\t     211\t     -85\t      15",
      "     11.0000\t     300\t     280\t     -75\t      15",
      "     11.5000\t      50\t      50\t     -75\t      15",
      "     10.5100\t        \t        \t        \t        \t       0\t(  1  1  0)\t  0",
      "     11.0100\t        \t        \t        \t        \t       0\t(  2  0  0)\t  0",
  };
  EXPECT_EQ(FileLines(dir, "x.prf"), expected);
}

TEST(ProfileFile, TabbedLayoutWithoutVectorsWritesNoVectorLines) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->patterns[1].NEXCRG = 0;
  WriteTabbedProfileFile(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_GE(lines.size(), 4u);
  EXPECT_EQ(lines[3], " 2Theta\tYobs\tYcal\tYobs-Ycal\tBackg\tPosr\t(hkl)\tK");
}

TEST(ProfileFile, TabbedLayoutWithVectorsWritesOneLinePerVector) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->run.NPHASE = 2;
  job->phases[2].Nvk = 2;
  job->phases[2].vectors[1].KVEC = Table1<float, 3>{{0.5f, 0.0f, 0.0f}};
  job->phases[2].vectors[2].KVEC = Table1<float, 3>{{0.0f, 0.0f, 0.5f}};
  WriteTabbedProfileFile(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_GE(lines.size(), 6u);
  EXPECT_EQ(lines[2], "    2    0    0    0    0    0    0    0  0  2  0  0  0  0  0  0  1");
  EXPECT_EQ(lines[3], "   0.50000   0.00000   0.00000");
  EXPECT_EQ(lines[4], "   0.00000   0.00000   0.50000");
  EXPECT_EQ(lines[5], "      10.90000      11.10000");
}

TEST(ProfileFile, PointInsideExcludedRegionHasDifferenceMinusDiffOffset) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  WriteTabbedProfileFile(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_GE(lines.size(), 8u);
  // Point 3 (x = 11.0) lies in 10.9..11.1: Yobs - Ycal = 20 is written as 0 - 75.
  EXPECT_EQ(lines[7], "     11.0000\t     300\t     280\t     -75\t      15");
}

TEST(ProfileFile, FirstPointInsideExcludedRegionStillAppears) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->patterns[1].ExclLow[1] = 9.0f;
  job->patterns[1].ExclHigh[1] = 10.2f;
  WriteTabbedProfileFile(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_GE(lines.size(), 6u);
  EXPECT_EQ(lines[5], "     10.0000\t     100\t      90\t     -75\t      15");
}

TEST(ProfileFile, TicksOfEachPhaseLieOneTickStepBelowThoseOfThePhaseBefore) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->run.NPHASE = 2;
  job->patterns[1].reflections.count[1] = 1;
  job->patterns[1].reflections.count[2] = 1;
  job->patterns[1].reflections.slot[2].key = ReflectionKey(1, 2, 2, 0, 0);
  WriteTabbedProfileFile(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_EQ(lines.size(), 11u);
  EXPECT_EQ(lines[2], "    1    1    0    0    0    0    0    0  0  0  0  0  0  0  0  0  1");
  // TickStep = trunc(0.0625 * 300) = 18.
  EXPECT_EQ(lines[10],
            "     11.0100\t        \t        \t        \t        \t     -18\t(  2  0  0)\t  0");
}

TEST(ProfileFile, PlottedPositionAddsTheCosineAndSineShifts) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  Pattern& p = job->patterns[1];
  p.GLB[1] = 0.0f;
  p.GLB[8] = 0.1f;   // Sycos
  p.GLB[9] = 0.05f;  // Sysin
  p.reflections.slot[1].position = 60.0f;
  WriteTabbedProfileFile(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_GE(lines.size(), 10u);
  // 60 + 0.1 cos(30) + 0.05 sin(60) = 60 + 0.0866025 + 0.0433013 = 60.1299.
  EXPECT_EQ(lines[9].substr(0, 12), "     60.1299");
}

TEST(ProfileFile, PlottedPositionOfTimeOfFlightAddsTheDSquaredTerm) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  Pattern& p = job->patterns[1];
  p.IXUNIT = AbscissaUnit::kTimeOfFlight;
  p.GLB[1] = 5.0f;
  p.Dtt1 = 1000.0f;
  p.Dtt2 = 2.0f;
  p.reflections.slot[1].position = 2000.0f;
  WriteTabbedProfileFile(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_GE(lines.size(), 10u);
  EXPECT_EQ(lines[4].substr(0, 8), " T.O.F.\t");
  // d = 2000/1000 = 2; 5 + 2000 + 2 * 4 = 2013.
  EXPECT_EQ(lines[9].substr(0, 12), "   2013.0000");
}

TEST(ProfileFile, SideBySideLayoutPutsReflectionsBesideTheFirstPoints) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  WriteSideBySideProfileFile(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_EQ(lines.size(), 9u);
  EXPECT_EQ(lines[4], " 2Theta\tYobs\tYcal\tYobs-Ycal\tBackg\tBragg\tPosr\t(hkl)\tK");
  EXPECT_EQ(lines[5],
            "     10.0000\t     100\t      90\t     -65\t      15\t     10.5100\t       0\t"
            "(  1  1  0)\t  0");
  EXPECT_EQ(lines[6],
            "     10.5000\t     201\t     211\t     -85\t      15\t     11.0100\t       0\t"
            "(  2  0  0)\t  0");
  EXPECT_EQ(lines[7], "     11.0000\t     300\t     280\t     -75\t      15");
  EXPECT_EQ(lines[8], "     11.5000\t      50\t      50\t     -75\t      15");
}

TEST(ProfileFile, CalculationJobHasZeroDifferenceInEveryRow) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  Pattern& p = job->patterns[1];
  p.JOBTYP = 2;
  p.NEXCRG = 0;
  // Bragg part only before the background is added.
  for (int i = 1; i <= 4; ++i) p.Ycalc[i] = 10.0f * static_cast<float>(i);
  const PlotExtremes e = AddBackgroundForPlots(*job, 1);
  // Totals: 30.8, 40.8, 50, 60: Ymax 60, BackMin 20.
  EXPECT_FLOAT_EQ(e.Ymax, 60.0f);
  EXPECT_FLOAT_EQ(e.BackMin, 20.0f);
  WriteTabbedProfileFile(*job, 1, e);
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_EQ(lines.size(), 10u);
  // DiffOffset trunc(15) = 15, BackOffset 5.
  EXPECT_EQ(lines[4], "     10.0000\t      31\t      31\t     -15\t      15");
  EXPECT_EQ(lines[5], "     10.5000\t      41\t      41\t     -15\t      15");
  EXPECT_EQ(lines[6], "     11.0000\t      50\t      50\t     -15\t      15");
  EXPECT_EQ(lines[7], "     11.5000\t      60\t      60\t     -15\t      15");
}

TEST(ProfileFile, BackgroundIsAddedOnceAndExtremesTracked) {
  CapturedJob job;
  FillPlotCase(*job);
  Pattern& p = job->patterns[1];
  p.Ycalc[1] = 500.0f;
  p.Backg[2] = 3.0f;
  const PlotExtremes e = AddBackgroundForPlots(*job, 1);
  EXPECT_FLOAT_EQ(p.Ycalc[1], 520.8f);
  EXPECT_FLOAT_EQ(p.Ycalc[2], 213.7f);
  EXPECT_FLOAT_EQ(p.Ytotal[1], 100.4f);  // a refinement keeps its observations
  EXPECT_FLOAT_EQ(e.Ymax, 520.8f);
  EXPECT_FLOAT_EQ(e.BackMin, 3.0f);
}

TEST(ProfileFile, MultiPatternProfileFileCarriesThePatternSuffix) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->files.multiPattern = true;
  job->run.NPATT = 2;
  job->patterns[2] = job->patterns[1];
  job->patterns[2].IPL2 = 3;
  ProfileFileContext context;
  context.extremes = PlotCaseExtremes();
  WriteProfileFile(*job, 2, context);
  EXPECT_TRUE(dir.Exists("x_2.prf"));
  EXPECT_FALSE(dir.Exists("x.prf"));
}

TEST(ProfileFile, LayoutZeroWritesNoFile) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->patterns[1].IPL2 = 0;
  ProfileFileContext context;
  context.extremes = PlotCaseExtremes();
  WriteProfileFile(*job, 1, context);
  EXPECT_FALSE(dir.Exists("x.prf"));
  EXPECT_FALSE(dir.Exists("x.pl1"));
}

TEST(ProfileFile, DispatchFollowsIpl2) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  ProfileFileContext context;
  context.extremes = PlotCaseExtremes();
  job->patterns[1].IPL2 = 5;
  WriteProfileFile(*job, 1, context);
  EXPECT_TRUE(dir.Exists("x.pl1"));
  EXPECT_TRUE(dir.Exists("x.pl2"));
  EXPECT_FALSE(dir.Exists("x.prf"));
  job->patterns[1].IPL2 = 1;
  WriteProfileFile(*job, 1, context);
  EXPECT_EQ(FileLines(dir, "x.prf")[1], "3111   1.0000   0.0100");
}

}  // namespace
}  // namespace corvinet::testing
