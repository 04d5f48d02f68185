// Tests of the UXD text format (INSTR 9): typed lines, keywords, ranges, experiment report.
#include <gtest/gtest.h>

#include <string>

#include "data_file_case.h"

namespace corvinet {
namespace {

using testing::DataFileCase;
using testing::ExpectPoint;
using testing::HasLine;

// Keywords before and inside range 1; counts indented and not; a second
// range whose keywords and counts are not used.
const char kTwoRanges[] =
    "; UXD file written for the test\n"
    "_FILENAME='corundum.raw'\n"
    "_SAMPLE='Corundum'\n"
    "_DATEMEASURED='12-Jan-1999'\n"
    "_WL1=1.540560\n"
    "_WL2=1.544390\n"
    "_WLRATIO=0.5\n"
    "_ANODE='Cu'\n"
    "; (Data for Range number 1)\n"
    "_STEPTIME=2.0\n"
    "_STEPSIZE=0.020\n"
    "_STEPMODE='C'\n"
    "_START=20.000\n"
    "_2THETA=20.000\n"
    "_THETA=10.000\n"
    "_KV=40\n"
    "_MA=30\n"
    "_TEMPERATURE=298\n"
    "_COUNTS\n"
    "  100 200 300 400\n"
    "500 600\n"
    "\n"
    "; (Data for Range number 2)\n"
    "_STEPSIZE=0.05\n"
    "_START=40.0\n"
    "_COUNTS\n"
    "  9 9 9\n";

TEST(UxdData, CountsOfRangeOneOnTheGridOfStartAndStepSize) {
  DataFileCase c(9, kTwoRanges);
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 6);
  EXPECT_FLOAT_EQ(p.THMIN, 20.0f);
  EXPECT_FLOAT_EQ(p.STEP, 0.02f);
  EXPECT_NEAR(p.THMAX, 20.1f, 1e-5f);
  EXPECT_FLOAT_EQ(p.Temperature, 298.0f);
  for (int i = 1; i <= 6; ++i) {
    const float y = 100.0f * static_cast<float>(i);
    ExpectPoint(p, i, {20.0f + 0.02f * static_cast<float>(i - 1), y, y});
    EXPECT_EQ(p.CountNorm[i], 1.0f);
  }
}

TEST(UxdData, ExperimentIsReportedFromTheKeywords) {
  DataFileCase c(9, kTwoRanges);
  c.Read();
  const std::string report = c.Report();
  EXPECT_TRUE(HasLine(report, " => Experimental conditions:"));
  EXPECT_TRUE(HasLine(report, "    Date of experiment: 12-Jan-1999"));
  EXPECT_TRUE(HasLine(report, "    Data from file:  corundum.raw"));
  EXPECT_TRUE(HasLine(report, "    Data identifier: Corundum"));
  EXPECT_NE(report.find("    Scan mode: continuous scan Counting time:"), std::string::npos);
  EXPECT_NE(report.find(" secs/step  Sample rotation: "), std::string::npos);
  EXPECT_NE(report.find(" points   Step size = "), std::string::npos);
  EXPECT_NE(report.find("    Angles: 2-theta= "), std::string::npos);
  EXPECT_NE(report.find("                tr1= "), std::string::npos);
  EXPECT_TRUE(HasLine(report, "    Generator settings:"));
  EXPECT_NE(report.find("       KV= "), std::string::npos);
  EXPECT_TRUE(HasLine(report, "    Wavelengths:"));
  EXPECT_NE(report.find("        Anode=Cu  Wav1= "), std::string::npos);
  EXPECT_NE(report.find("1.54056"), std::string::npos);
}

TEST(UxdData, StepModeOtherThanContinuousIsAStepScan) {
  DataFileCase c(9, "_STEPSIZE=0.1\n_START=5\n_STEPMODE='S'\n_COUNTS\n1 2 3\n");
  c.Read();
  EXPECT_NE(c.Report().find("    Scan mode: step scan       Counting time:"), std::string::npos);
  EXPECT_EQ(c.pattern().NPTS, 3);
}

TEST(UxdData, SlashEndsTheFileAndCommentsAreSkipped) {
  DataFileCase c(9,
                 "_STEPSIZE=0.1\n"
                 "_START=5\n"
                 "* a comment with 77 88 99\n"
                 "_COUNTS\n"
                 "10 20\n"
                 "; 1 2 3\n"
                 "30\n"
                 "/\n"
                 "40 50\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 3);
  ExpectPoint(p, 3, {5.2f, 30.0f, 30.0f});
}

TEST(UxdData, WithoutStepSizeTheFileIsRefused) {
  DataFileCase c(9, "_START=5\n_COUNTS\n1 2 3\n");
  EXPECT_NE(c.ReadExpectingStop().find("  Error on Intensity file, check your instr parameter!"),
            std::string::npos);
}

TEST(UxdData, WithoutCountsTheFileEndsTooEarly) {
  DataFileCase c(9, "_STEPSIZE=0.1\n_START=5\n_COUNTS\n");
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

TEST(UxdData, EmptyFileEndsTooEarly) {
  DataFileCase c(9, "");
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

TEST(UxdData, WordInACountLineStops) {
  DataFileCase c(9, "_STEPSIZE=0.1\n_START=5\n_COUNTS\n1 2x 3\n");
  EXPECT_NE(c.ReadExpectingStop().find("  Error on Intensity file, check your instr parameter!"),
            std::string::npos);
}

}  // namespace
}  // namespace corvinet
