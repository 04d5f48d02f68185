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
  EXPECT_EQ(FileLines(dir, "d.bac"), expected);
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
  EXPECT_EQ(FileLines(dir, "d.bac"), expected);
}

TEST(XyDataFiles, ZeroCorrectedDifferenceKeepsTheBackgroundAndRemovesZero) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->patterns[1].equalStep = 0;
  WriteXyDataFile(*job, 1, XyDataKind::ZeroCorrectedDifference);
  const std::vector<std::string> lines = FileLines(dir, "d.bac");
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
  EXPECT_EQ(FileLines(dir, "d.bac")[1], "  Difference of: Test pattern");
  job->patterns[1].IPL = 2;
  WriteBackgroundPlotFiles(*job, 1);
  EXPECT_EQ(FileLines(dir, "d.bac")[1], "  Background of: Test pattern");
}

TEST(XyDataFiles, MultiPatternBackgroundFileCarriesTheSuffix) {
  ScratchDir dir;
  CapturedJob job;
  FillPlotCase(*job);
  job->files.multiPattern = true;
  job->patterns[2] = job->patterns[1];
  WriteXyDataFile(*job, 2, XyDataKind::Background);
  EXPECT_TRUE(dir.Exists("d_2.bac"));
}

}  // namespace
}  // namespace corvinet::testing
