// Tests of the general two-axis (INSTR 5), DMC (8) and variable-time (11) formats.
#include <gtest/gtest.h>

#include <string>

#include "data_file_case.h"

namespace corvinet {
namespace {

using testing::DataFileCase;
using testing::ExpectPoint;
using testing::HasLine;

// Three titles; I6,1X,2F10.3,I5,2F10.1 (count, monitor, norm, sigma flag,
// temperatures); 3F10.0 range; free-format intensities.
std::string TwoAxisFile(const std::string& monitorNormFlag, const std::string& tail = "") {
  return std::string("title 1\ntitle 2\ntitle 3\n") + "     5 " + monitorNormFlag +
         "     295.0     300.0\n" + "      10.0       0.1      10.4\n" + "100 200 300\n400 500\n" +
         tail;
}

TEST(TwoAxisData, MonitorAndNormAboveOneScaleTheVariance) {
  DataFileCase c(5, TwoAxisFile("  1000.000  2000.000    0"));
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 5);
  EXPECT_FLOAT_EQ(p.THMIN, 10.0f);
  EXPECT_FLOAT_EQ(p.STEP, 0.1f);
  EXPECT_FLOAT_EQ(p.THMAX, 10.4f);
  EXPECT_FLOAT_EQ(p.Temperature, 295.0f);
  EXPECT_FLOAT_EQ(p.TSET, 300.0f);
  EXPECT_FLOAT_EQ(p.MONITOR, 1000.0f);
  EXPECT_FLOAT_EQ(p.Cnorm, 2.0f);  // 2000/1000
  ExpectPoint(p, 1, {10.0f, 100.0f, 200.0f});
  ExpectPoint(p, 5, {10.4f, 500.0f, 1000.0f});
  const std::string report = c.Report();
  EXPECT_TRUE(HasLine(report, "   -> Standard deviations of Yi assumed SQRT(Yi*Cnorm/Monitor) "));
  EXPECT_NE(report.find("   -> NPTS: "), std::string::npos);
  EXPECT_NE(report.find(" Temperature (Sample & Regul): "), std::string::npos);
}

TEST(TwoAxisData, WithoutMonitorTheVarianceIsTheCount) {
  DataFileCase c(5, TwoAxisFile("     0.000     0.000    0"));
  c.Read();
  ExpectPoint(c.pattern(), 3, {10.2f, 300.0f, 300.0f});
  EXPECT_FLOAT_EQ(c.pattern().Cnorm, 1.0f);
  EXPECT_TRUE(HasLine(c.Report(), "   -> Standard deviations of Yi assumed SQRT(Yi) "));
}

TEST(TwoAxisData, FlagOneReadsTheSigmasFromTheFile) {
  DataFileCase c(5, TwoAxisFile("  1000.000  2000.000    1", "1 2 3\n4 5\n"));
  c.Read();
  ExpectPoint(c.pattern(), 2, {10.1f, 200.0f, 4.0f});
  ExpectPoint(c.pattern(), 5, {10.4f, 500.0f, 25.0f});
  EXPECT_TRUE(HasLine(c.Report(), "   -> Standard deviations of Yi read from file "));
}

TEST(TwoAxisData, MissingSigmasStopAtEndOfFile) {
  DataFileCase c(5, TwoAxisFile("  1000.000  2000.000    1", "1 2 3\n"));
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

TEST(TwoAxisData, LetterInTheCountFieldStops) {
  DataFileCase c(5, "t\nt\nt\n    x5    1000.0\n");
  EXPECT_NE(c.ReadExpectingStop().find("  Error on Intensity file, check your instr parameter!"),
            std::string::npos);
}

TEST(DmcData, IntensityAndSigmaBlocksInTenColumnsOfEight) {
  // trunc((11 - 10)/0.2 + 1.5) = 6 points.
  DataFileCase c(8,
                 "DMC run 1234\n"
                 "Sample: LaMnO3\n"
                 "10.0 0.2 11.0\n"
                 "   100.0   200.0   300.0   400.0   500.0   600.0\n"
                 "    10.0    14.0    17.0    20.0    22.0    24.0\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 6);
  ExpectPoint(p, 1, {10.0f, 100.0f, 100.0f});
  ExpectPoint(p, 2, {10.2f, 200.0f, 196.0f});
  ExpectPoint(p, 6, {11.0f, 600.0f, 576.0f});
}

TEST(DmcData, MissingSigmaBlockStopsAtEndOfFile) {
  DataFileCase c(8, "t\nt\n10.0 0.2 11.0\n   100.0   200.0   300.0   400.0   500.0   600.0\n");
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

// Four titles, the range, then time/count pairs in 5(F6.0,F10.0).
const char kLhpmHead[] = "t1\nt2\nt3\nt4\n20.0 0.5 21.5\n";

TEST(VariableTimeData, CountsAreNormalisedToTheMeanTime) {
  // Times 1, 2, 1, 4: the mean is 2.
  DataFileCase c(11, std::string(kLhpmHead) +
                         "   1.0     100.0   2.0     300.0   1.0      50.0   4.0     800.0\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 4);  // trunc(1.5/0.5 + 1.5)
  // Ytotal = count*2/time, Variance = Ytotal*2/time.
  ExpectPoint(p, 1, {20.0f, 200.0f, 400.0f});
  ExpectPoint(p, 2, {20.5f, 300.0f, 300.0f});
  ExpectPoint(p, 3, {21.0f, 100.0f, 200.0f});
  ExpectPoint(p, 4, {21.5f, 400.0f, 200.0f});
  const std::string report = c.Report();
  EXPECT_NE(report.find("   -> THMIN,STEP,THMAX, NPTS: "), std::string::npos);
  EXPECT_NE(report.find(" => Variable time data collection, Normalizing Time: "),
            std::string::npos);
}

TEST(VariableTimeData, ZeroTimeStops) {
  DataFileCase c(11, std::string(kLhpmHead) +
                         "   1.0     100.0   0.0     300.0   1.0      50.0   4.0     800.0\n");
  EXPECT_NE(c.ReadExpectingStop().find(" Zero time in *.DAT"), std::string::npos);
  EXPECT_EQ(c.pattern().NPTS, 0);
}

TEST(VariableTimeData, MissingTitlesStopAtEndOfFile) {
  DataFileCase c(11, "t1\nt2\n");
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
