// Tests of the .pl1/.pl2 plot files: free format with zero boxes, and fixed format with offsets.
#include <gtest/gtest.h>

#include "plot_case.h"
#include "results/profile_files.h"

namespace corvinet::testing {
namespace {

TEST(PlotPairFiles, SinglePatternNamesAreCodeAndExtension) {
  CapturedJob job;
  job->driver.PcrCode = "abc";
  job->run.NPATT = 1;
  EXPECT_EQ(PlotFileName(*job, 1, ".pl1"), "abc.pl1");
}

TEST(PlotPairFiles, SeveralPatternsPutThePatternNumberInTheName) {
  CapturedJob job;
  job->driver.PcrCode = "abc";
  job->run.NPATT = 2;
  EXPECT_EQ(PlotFileName(*job, 2, ".pl2"), "abc_2.pl2");
  EXPECT_EQ(PlotFileName(*job, 12, ".pl1"), "abc_12.pl1");
  EXPECT_EQ(PlotFileName(*job, 123, ".pl1"), "abc_123.pl1");
}

TEST(PlotPairFiles, OffsetLayoutWritesTruncatedValuesWithOffsets) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  WriteOffsetPlotFiles(*job, 1, PlotCaseExtremes());
  // DiffOffset 75, BackOffset 5, TickStep 18; point 3 is excluded.
  const std::vector<std::string> pl1 = {
      "       10.0000      100       90      -65       15",
      "       10.5000      200      210      -85       15",
      "       11.0000      300      280      -75       15",
      "       11.5000       50       50      -75       15",
  };
  EXPECT_EQ(FileLines(dir, "x.pl1"), pl1);
  const std::vector<std::string> pl2 = {
      "       10.5100       0 (  1  1  0)   0",
      "       11.0100       0 (  2  0  0)   0",
  };
  EXPECT_EQ(FileLines(dir, "x.pl2"), pl2);
}

TEST(PlotPairFiles, OffsetLayoutKeepsFirstPointInsideExcludedRegion) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->patterns[1].ExclLow[1] = 9.0f;
  job->patterns[1].ExclHigh[1] = 10.2f;
  WriteOffsetPlotFiles(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> lines = FileLines(dir, "x.pl1");
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0], "       10.0000      100       90      -75       15");
}

TEST(PlotPairFiles, OffsetLayoutTicksAndSatellitesPerPhase) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->run.NPHASE = 2;
  ReflectionTable& t = job->patterns[1].reflections;
  t.slot[2].key = ReflectionKey(1, 2, -1, 0, 3);
  t.slot[2].satelliteIndex = 2;
  WriteOffsetPlotFiles(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> lines = FileLines(dir, "x.pl2");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[1], "       11.0100     -18 ( -1  0  3)   2");
}

TEST(PlotPairFiles, FreeLayoutBreaksTheProfileAroundExcludedRegions) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  // A region from 11.0 to 11.0: point 3 is zeroed; the point at 10.5 (low
  // less one step) is followed by a zero row at 10.5, the point at 11.0 (the
  // upper limit) by a zero row at 11.5.
  job->patterns[1].ExclLow[1] = 11.0f;
  job->patterns[1].ExclHigh[1] = 11.0f;
  WriteFreePlotFiles(*job, 1, PlotCaseExtremes());
  const std::vector<std::string> pl1 = {
      "       10.0000       100.400        90.200        10.200",
      "       10.5000       200.600       210.700       -10.100",
      "       10.5000         0.000         0.000         0.000",
      "       11.0000         0.000         0.000         0.000",
      "       11.5000         0.000         0.000         0.000",
      "       11.5000        50.000        50.000         0.000",
  };
  EXPECT_EQ(FileLines(dir, "x.pl1"), pl1);
  EXPECT_FLOAT_EQ(job->patterns[1].Ytotal[3], 0.0f);
  EXPECT_FLOAT_EQ(job->patterns[1].Ycalc[3], 0.0f);
  // Both reflections sit on the region's edge in tenths (105 and 110), not strictly inside.
  // Phase marker: 10 - 159482240 / 140000000 = 9.
  const std::vector<std::string> pl2 = {
      "       10.5100    9  0.80",
      "       11.0100    9  0.80",
  };
  EXPECT_EQ(FileLines(dir, "x.pl2"), pl2);
}

TEST(PlotPairFiles, FreeLayoutLeavesOutReflectionsStrictlyInsideARegion) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->patterns[1].ExclLow[1] = 10.0f;
  job->patterns[1].ExclHigh[1] = 11.5f;
  WriteFreePlotFiles(*job, 1, PlotCaseExtremes());
  EXPECT_TRUE(FileLines(dir, "x.pl2").empty());
}

TEST(PlotPairFiles, FreeLayoutIsWrittenOnlyWhenYmaxExceedsBackMin) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  PlotExtremes flat;
  flat.Ymax = 20.0f;
  flat.BackMin = 20.0f;
  WriteFreePlotFiles(*job, 1, flat);
  EXPECT_FALSE(dir.Exists("x.pl1"));
  EXPECT_FALSE(dir.Exists("x.pl2"));
}

TEST(PlotPairFiles, MultiPatternFilesCarryThePatternNumber) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->run.NPATT = 2;
  job->patterns[2] = job->patterns[1];
  WriteOffsetPlotFiles(*job, 2, PlotCaseExtremes());
  EXPECT_TRUE(dir.Exists("x_2.pl1"));
  EXPECT_TRUE(dir.Exists("x_2.pl2"));
}

}  // namespace
}  // namespace corvinet::testing

namespace corvinet::testing {
namespace {

TEST(PlotPairFiles, FileThatCannotBeOpenedStopsWithItsName) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  std::filesystem::create_directory(dir.path / "x.pl1");
  EXPECT_FALSE(
      RunsWithoutStop(*job, [](Job& j) { WriteOffsetPlotFiles(j, 1, PlotCaseExtremes()); }));
  EXPECT_NE(job.Console().find(" => Error opening file: x.pl1 Unit: 17"), std::string::npos)
      << job.Console();
}

}  // namespace
}  // namespace corvinet::testing
