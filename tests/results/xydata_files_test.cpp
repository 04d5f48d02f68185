// Tests of the XYDATA background and difference files.
#include <gtest/gtest.h>

#include "plot_case.h"
#include "results/profile_files.h"

namespace corvinet::testing {
namespace {

const std::vector<std::string> kHeader = {
    "XYDATA",
    "",  // the title line of each kind
    "INTER   1.0  1.0  0",
    "TEMP  ",
    "2Theta/TOF/E(KeV)     Intensity         Sigma",
    "---------------------------------------------",
};

std::vector<std::string> WithHeader(const std::string& title,
                                    const std::vector<std::string>& rows) {
  std::vector<std::string> all = kHeader;
  all[1] = title;
  all.insert(all.end(), rows.begin(), rows.end());
  return all;
}

TEST(XyDataFiles, BackgroundFileWithConstantStepGivesTheRangeThenValues) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  WriteXyDataFile(*job, 1, XyDataKind::Background);
  // Sigma is the square root of the variance: 2, 2.828, 3.464, 4.
  const std::vector<std::string> expected =
      WithHeader("  Background of: Test pattern",
                 {"         10.00000          0.50000         11.50000  Test pattern",
                  "                         20.800         2.000",
                  "                         20.800         2.828",
                  "                         20.000         3.464",
                  "                         20.000         4.000"});
  EXPECT_EQ(FileLines(dir, "x_bac.xy"), expected);
}

TEST(XyDataFiles, DifferenceFileWithListedPointsGivesXYAndSigma) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->patterns[1].equalStep = 0;
  // Ycalc is the Bragg part here: Yobs - Ycalc - background.
  WriteXyDataFile(*job, 1, XyDataKind::Difference);
  const std::vector<std::string> expected = WithHeader(
      "  Difference of: Test pattern", {"         10.00000       -10.600         2.000",
                                        "         10.50000       -30.900         2.828",
                                        "         11.00000         0.000         3.464",
                                        "         11.50000       -20.000         4.000"});
  EXPECT_EQ(FileLines(dir, "x_dif.xy"), expected);
}

TEST(XyDataFiles, ZeroCorrectedDifferenceKeepsTheBackgroundAndRemovesZero) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->patterns[1].equalStep = 0;
  WriteXyDataFile(*job, 1, XyDataKind::ZeroCorrectedDifference);
  const std::vector<std::string> lines = FileLines(dir, "x_zdif.xy");
  ASSERT_EQ(lines.size(), 10u);
  EXPECT_EQ(lines[1], "Zero-corrected difference pattern + background of:Test pattern");
  EXPECT_EQ(lines[6], "          9.99000        10.200         2.000");
}

TEST(XyDataFiles, IplChoosesBackgroundOrDifference) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->patterns[1].IPL = 3;
  WriteBackgroundPlotFiles(*job, 1);
  EXPECT_EQ(FileLines(dir, "x_dif.xy")[1], "  Difference of: Test pattern");
  EXPECT_FALSE(dir.Exists("x_bac.xy"));
  job->patterns[1].IPL = 2;
  WriteBackgroundPlotFiles(*job, 1);
  EXPECT_EQ(FileLines(dir, "x_bac.xy")[1], "  Background of: Test pattern");
}

TEST(XyDataFiles, MultiPatternBackgroundFileCarriesTheSuffix) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->files.multiPattern = true;
  job->patterns[2] = job->patterns[1];
  WriteXyDataFile(*job, 2, XyDataKind::Background);
  EXPECT_TRUE(dir.Exists("x_2_bac.xy"));
}

// The background file of the data code is an input: the curves used to be
// written over it, so that the next run stopped at its end of file.
TEST(XyDataFiles, TheBackgroundFileThatARunReadsIsLeftAlone) {
  ScratchDir dir;
  const std::string bac = "background\n10.0 20.0\n11.5 20.0\n";
  dir.Write("d.bac", bac);
  CapturedJob job;
  FillPlotCase(*job);
  for (XyDataKind kind :
       {XyDataKind::Background, XyDataKind::Difference, XyDataKind::ZeroCorrectedDifference}) {
    WriteXyDataFile(*job, 1, kind);
  }
  EXPECT_EQ(dir.Read("d.bac"), bac);
  EXPECT_TRUE(dir.Exists("x_bac.xy"));
  EXPECT_TRUE(dir.Exists("x_dif.xy"));
  EXPECT_TRUE(dir.Exists("x_zdif.xy"));
}

TEST(XyDataFiles, TheReportNamesTheFileWritten) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  ASSERT_TRUE(OpenUnit(job->files.units[Unit::Out], "x.out", OpenStatus::Unknown));
  WriteXyDataFile(*job, 1, XyDataKind::Background);
  WriteXyDataFile(*job, 1, XyDataKind::Difference);
  CloseUnit(job->files.units[Unit::Out]);
  const std::vector<std::string> expected = {" => Background written on file: x_bac.xy",
                                             " => Difference pattern written on file: x_dif.xy"};
  EXPECT_EQ(FileLines(dir, "x.out"), expected);
}

}  // namespace
}  // namespace corvinet::testing
