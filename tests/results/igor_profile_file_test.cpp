// Tests of the profile file written as IGOR commands.
#include <gtest/gtest.h>

#include <algorithm>

#include "plot_case.h"
#include "results/profile_files.h"

namespace corvinet::testing {
namespace {

ProfileFileContext Context() {
  ProfileFileContext c;
  c.extremes = PlotCaseExtremes();
  c.date = "01/02/2024";
  c.time = "10:11:12";
  return c;
}

TEST(IgorProfileFile, RefinementFileHoldsWavesTicksRegionsAndCommands) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->refinement.GlobalChi2 = 1.5f;
  WriteIgorProfileFile(*job, 1, Context());
  // Inside the limits: Dmax = 300 - 280 = 20, Imax = 300. TickHeight = 10,
  // TickGap = 2, DiffShift = -(12 + 20) = -32, ExclTop = -10.
  const std::vector<std::string> expected = {
      "IGOR",
      "WAVES     TwoTheta,       Iobs,   Icalc,  Diff",
      "BEGIN",
      "      10.000      100.40       90.20       10.20",
      "      10.500      200.60      210.70      -10.10",
      "      11.000      300.00      280.00       20.00",
      "      11.500       50.00       50.00        0.00",
      "END",
      "WAVES     Phase1, tik1",
      "BEGIN",
      "      10.510        -10",
      "      11.010        -10",
      "END",
      "WAVES Excrg1, excl1",
      "BEGIN",
      "      10.900        -10",
      "      11.100        -10",
      "END",
      "X Silent 1",
      "X DefaultFont Times",
      "X Display Iobs, Icalc, Diff vs TwoTheta",
      "X Modify mode(Iobs)=2, rgb(Iobs)=(0,0,0), rgb(Diff)=(3800,44400,4000)",
      "X SetAxis bottom     10.000,     11.500",
      "X Modify lsize(Iobs)=2",
      "X Modify offset(Diff)={0,-32}",
      "X Append excl1 vs Excrg1",
      "X Modify mode(excl1)=7, hbFill(excl1)=4",
      "X Modify rgb(excl1)=(6421,62320,64794)",
      "X Append tik1 vs Phase1",
      "X Modify offset(tik1)={0,0}",
      "X TextBox /F=2/S=3/A=RT \"Files: x\\rDate of fit: \\Z09 / 01/02/2024/ 10:11:12"
      "\\rTest pattern\\rPhase one\\rChi2 = 1.50\"",
      "X Label left \"\\Z14Intensity\"",
      "X Label bottom \"\\Z142-Theta (in degrees)\"",
      "X TileWindows/O=1/C",
      "X ShowInfo",
      "X | Title of data set: Test pattern",
      "X | Date: 01/02/2024  Time: 10:11:12",
  };
  EXPECT_EQ(FileLines(dir, "x.prf"), expected);
}

TEST(IgorProfileFile, PointsOutsideTheLimitsAreLeftOut) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->patterns[1].THMAX = 11.2f;
  WriteIgorProfileFile(*job, 1, Context());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_GE(lines.size(), 7u);
  EXPECT_EQ(lines[5], "      11.000      300.00      280.00       20.00");
  EXPECT_EQ(lines[6], "END");
}

TEST(IgorProfileFile, SecondPhaseTicksAreOffsetByTickHeightAndGap) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->run.NPHASE = 2;
  job->phases[2].PhaseTitle = "Phase two";
  job->patterns[1].NEXCRG = 0;
  job->patterns[1].reflections.slot[2].key = ReflectionKey(1, 2, 2, 0, 0);
  WriteIgorProfileFile(*job, 1, Context());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  // DiffShift = -((10 + 2) * 2 + 20) = -44.
  const std::vector<std::string> waves(lines.begin() + 8, lines.begin() + 16);
  const std::vector<std::string> expectedWaves = {
      "WAVES     Phase1, tik1", "BEGIN", "      10.510        -10", "END",
      "WAVES     Phase2, tik2", "BEGIN", "      11.010        -10", "END",
  };
  EXPECT_EQ(waves, expectedWaves);
  EXPECT_NE(std::find(lines.begin(), lines.end(), "X Modify offset(Diff)={0,-44}"), lines.end());
  EXPECT_NE(std::find(lines.begin(), lines.end(), "X Append tik2 vs Phase2"), lines.end());
  EXPECT_NE(std::find(lines.begin(), lines.end(), "X Modify offset(tik2)={0,-12}"), lines.end());
}

TEST(IgorProfileFile, CalculationFileHasOnlyIcalcAndNotesPoissonNoise) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->patterns[1].JOBTYP = 2;
  job->patterns[1].NEXCRG = 0;
  ProfileFileContext c = Context();
  c.poissonNoise = true;
  WriteIgorProfileFile(*job, 1, c);
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_EQ(lines.size(), 25u);
  EXPECT_EQ(lines[1], "WAVES     TwoTheta,       Icalc");
  EXPECT_EQ(lines[3], "      10.000       90.20");
  // Imax from Ycalc only: 280 gives TickHeight 9.
  EXPECT_EQ(lines[10], "      10.510         -9");
  EXPECT_EQ(lines[15], "X Display Icalc vs TwoTheta");
  EXPECT_EQ(lines[18],
            "X TextBox /F=2/S=3/A=RT \"Files: x\\rPattern calculation: \\Z09 / 01/02/2024/ "
            "10:11:12\\rTest pattern\\rPhase one\\Z12\\rRandomized with Poisson noise\\r\"");
}

TEST(IgorProfileFile, TimeOfFlightJobUsesTofWavesAndLabel) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->patterns[1].JOBTYP = -1;
  WriteIgorProfileFile(*job, 1, Context());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines[1], "WAVES     TOF,       Iobs,   Icalc,  Diff");
  EXPECT_NE(std::find(lines.begin(), lines.end(), "X Display Iobs, Icalc, Diff vs TOF"),
            lines.end());
  EXPECT_NE(std::find(lines.begin(), lines.end(), "X Label bottom \"\\Z14 TOF(in micro-seconds)\""),
            lines.end());
}

TEST(IgorProfileFile, RegionOutsideTheLimitsIsNotDrawn) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->patterns[1].ExclLow[1] = 0.0f;
  job->patterns[1].ExclHigh[1] = 5.0f;
  WriteIgorProfileFile(*job, 1, Context());
  const std::vector<std::string> lines = FileLines(dir, "x.prf");
  for (const std::string& line : lines) EXPECT_EQ(line.find("xcrg"), std::string::npos) << line;
}

}  // namespace
}  // namespace corvinet::testing
