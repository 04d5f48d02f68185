// Tests of the ILL formats: D1A/D2B (INSTR 1), D1B (2), D1B/D20 (3), D1A/D2B SUM (6), D4/D20L (7).
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "data_file_case.h"

namespace corvinet {
namespace {

using testing::DataFileCase;
using testing::ExpectPoint;
using testing::HasLine;

// Twelve counter/intensity pairs in 10(I2,F6.0): columns 1-2 the counters,
// 3-8 the intensity. Pair 3 has no counter (0 -> 1), pair 4 a zero count,
// pair 5 a count of 1E-6 (both -> 1), pair 9 a count with its own dot.
const char kD1APairs[] =
    " 3   300 2   100 0    50 4     0 2 1.E-6 1    8010  1000 5   250 1    7. 2    64\n"
    " 1    12 3    90\n";
// The counters after the treatment, and the intensities per counter.
const float kD1ACounters[12] = {3, 2, 1, 4, 2, 1, 10, 5, 1, 2, 1, 3};
const float kD1ANormalised[12] = {100, 50, 50, 0.25f, 0.5f, 80, 100, 50, 7, 32, 12, 30};

TEST(D1AData, CountsAreDividedByTheirCountersAndVarianceIsCountOverCounters) {
  // trunc((21.1 - 20)/0.1 + 1.5) = 12 points.
  DataFileCase c(1, std::string("  20.00  0.10  21.10\n") + kD1APairs);
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 12);
  EXPECT_FLOAT_EQ(p.THMIN, 20.0f);
  EXPECT_FLOAT_EQ(p.STEP, 0.1f);
  for (int i = 1; i <= 12; ++i) {
    ExpectPoint(
        p, i,
        {20.0f + 0.1f * static_cast<float>(i - 1), kD1ANormalised[i - 1], kD1ANormalised[i - 1]});
    EXPECT_EQ(p.CountNorm[i], kD1ACounters[i - 1]) << i;
  }
  // Variance/Ytotal is 1 at every point, so is its mean.
  EXPECT_NEAR(p.Cnorm, 1.0f, 1e-6f);
}

TEST(D1AData, ZeroAndTinyCountsBecomeOne) {
  // Four points with one counter each: 0, 0.00001, 2E-5 and 5.
  DataFileCase c(1, "0 1 3\n 1     0 1 1.E-5 1 2.E-5 1     5\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 4);
  EXPECT_EQ(p.Ytotal[1], 1.0f);           // zero
  EXPECT_EQ(p.Ytotal[2], 1.0f);           // at the threshold
  EXPECT_FLOAT_EQ(p.Ytotal[3], 2.0e-5f);  // above it: kept
  EXPECT_EQ(p.Ytotal[4], 5.0f);
  EXPECT_EQ(p.Variance[1], 1.0f);
}

TEST(D1AData, MissingPairsStopAtEndOfFile) {
  DataFileCase c(1, "  20.00  0.10  21.10\n 3   300 2   100 0    50 4     0\n");
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

TEST(D1AData, LetterInACounterFieldStops) {
  DataFileCase c(1, "0 1 3\n 1   100 x   200 1   300 1   400\n");
  EXPECT_NE(c.ReadExpectingStop().find("  Error on Intensity file, check your instr parameter!"),
            std::string::npos);
}

// D1B: 2 titles, the monitor, 2 more lines, then 40 rows of F7.3,10F6.0.
std::string D1BFile(int rows) {
  std::string text =
      "D1B  Ni powder\n"
      "12-MAR-1994\n"
      "   50000\n"
      "second block of text\n"
      "third block of text\n";
  char row[80];
  for (int r = 0; r < rows; ++r) {
    // Row r starts at 5 + 2r degrees and holds 100 + 10r + k, k = 0..9.
    std::snprintf(row, sizeof row, "%7.3f", 5.0 + 2.0 * r);
    text += row;
    for (int k = 0; k < 10; ++k) {
      std::snprintf(row, sizeof row, "%6d", 100 + 10 * r + k);
      text += row;
    }
    text += "\n";
  }
  return text;
}

TEST(D1BData, FortyRowsGiveFourHundredPointsAtTwoTenthsOfADegree) {
  DataFileCase c(2, D1BFile(40));
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 400);
  EXPECT_FLOAT_EQ(p.THMIN, 5.0f);
  EXPECT_FLOAT_EQ(p.STEP, 0.2f);
  EXPECT_NEAR(p.THMAX, 5.0f + 399 * 0.2f, 1e-4f);
  EXPECT_FLOAT_EQ(p.MONITOR, 50000.0f);
  // Point 10r+k+1 holds 100+10r+k, except the first and last cells.
  ExpectPoint(p, 2, {5.2f, 101.0f, 101.0f});
  ExpectPoint(p, 1, {5.0f, 101.0f, 101.0f});     // copy of point 2
  ExpectPoint(p, 123, {29.4f, 222.0f, 222.0f});  // r = 12, k = 2
  ExpectPoint(p, 399, {84.6f, 498.0f, 498.0f});  // r = 39, k = 8
  ExpectPoint(p, 400, {84.8f, 498.0f, 498.0f});  // copy of point 399
  EXPECT_TRUE(HasLine(c.Report(), "=> Date of experiment: 12-MAR-1994"));
}

TEST(D1BData, ThirtyNineRowsStopAtEndOfFile) {
  DataFileCase c(2, D1BFile(39));
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

// D1B/D20: five header records, the pairs in 10(I2,F8.0), a closing I10.
std::string D20Header(int points) {
  char line5[120];
  // I4,1X,5(F9.3,1X),29X,I6,3X,I6: sample temperature 295, regulation 300;
  // then the point count and the monitor.
  std::snprintf(line5, sizeof line5, "%4d %9.3f %9.3f %9.3f %9.3f %9.3f %29s%6d   %6d\n", 1, 295.0,
                300.0, 0.0, 0.0, 0.0, "", points, 5000);
  return std::string("    1\n") +                        // I5: one set
         " D20  abc  xyz\n" +                            // 1X,A,2X,A,2X,A
         "  1  12345    7\n" +                           // I3,1X,I6,1X,I4: numor 12345
         "      100000.     0.05   10.000    0.000\n" +  // F13.0,F9.0,1X,10(F8.3,1X)
         line5;
}

TEST(D20Data, HeaderGivesStepThminCountMonitorAndTemperature) {
  // 10(I2,F8.0): 10 columns a pair.
  const std::string pairs =
      " 1   100.0 2   200.0 0    50.0 1     0.0 4   400.0"
      " 1   100.0 1   110.0 1   120.0 1   130.0 1   140.0\n"
      " 2   300.0 1    60.0\n";
  DataFileCase c(3, D20Header(12) + pairs + "         0\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 12);
  EXPECT_FLOAT_EQ(p.THMIN, 10.0f);
  EXPECT_FLOAT_EQ(p.STEP, 0.05f);
  EXPECT_NEAR(p.THMAX, 10.55f, 1e-5f);
  EXPECT_FLOAT_EQ(p.Temperature, 295.0f);
  EXPECT_FLOAT_EQ(p.MONITOR, 5000.0f);
  ExpectPoint(p, 1, {10.0f, 100.0f, 100.0f});
  ExpectPoint(p, 2, {10.05f, 100.0f, 100.0f});  // 200 over 2 counters
  ExpectPoint(p, 3, {10.1f, 50.0f, 50.0f});     // no counter: 1
  ExpectPoint(p, 4, {10.15f, 1.0f, 1.0f});      // zero count: 1
  ExpectPoint(p, 5, {10.2f, 100.0f, 100.0f});
  ExpectPoint(p, 11, {10.5f, 150.0f, 150.0f});
  ExpectPoint(p, 12, {10.55f, 60.0f, 60.0f});
  const std::string report = c.Report();
  EXPECT_NE(report.find("     Nset:"), std::string::npos);
  EXPECT_NE(report.find(" -> Numor & Tsample: "), std::string::npos);
  EXPECT_NE(report.find("12345"), std::string::npos);
}

TEST(D20Data, MissingClosingRecordStopsAtEndOfFile) {
  DataFileCase c(3, D20Header(2) + " 1   100.0 1   200.0\n");
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

// D1A/D2B SUM: title, 16X,F8.3 step, F8.3 thmin, 2F8.0 monitors, pairs to the end.
const char kSumHeader[] =
    "D2B sum of 4 scans                                                      \n"
    "                   0.050\n"
    "  15.000\n";

TEST(D1ASumData, PointsRunToTheEndOfTheFileAndAreCounted) {
  DataFileCase c(6, std::string(kSumHeader) +
                        "  1000.0  2000.0\n"
                        " 1   100 1   110 1   120 1   130 1   140 1   150 1   160 1   170"
                        " 1   180 1   190\n"
                        " 2   400 4   400 0    90\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 13);
  EXPECT_FLOAT_EQ(p.STEP, 0.05f);
  EXPECT_FLOAT_EQ(p.THMIN, 15.0f);
  EXPECT_NEAR(p.THMAX, 15.6f, 1e-5f);
  EXPECT_FLOAT_EQ(p.MONITOR, 2000.0f);  // the second monitor, being 1 or more
  ExpectPoint(p, 10, {15.45f, 190.0f, 190.0f});
  ExpectPoint(p, 11, {15.5f, 200.0f, 200.0f});
  ExpectPoint(p, 12, {15.55f, 100.0f, 100.0f});
  ExpectPoint(p, 13, {15.6f, 90.0f, 90.0f});
  EXPECT_EQ(p.CountNorm[12], 4.0f);
  const std::string report = c.Report();
  EXPECT_NE(report.find("   ->    Step: "), std::string::npos);
  EXPECT_NE(report.find("   ->   Thmin: "), std::string::npos);
  EXPECT_NE(report.find("   -> Monitors: "), std::string::npos);
}

TEST(D1ASumData, SecondMonitorBelowOneLeavesTheFirst) {
  DataFileCase c(6, std::string(kSumHeader) + "  1000.0     0.5\n 1   100 1   200\n");
  c.Read();
  EXPECT_EQ(c.pattern().NPTS, 2);
  EXPECT_FLOAT_EQ(c.pattern().MONITOR, 1000.0f);
}

TEST(D1ASumData, NoPointsStopAtEndOfFile) {
  DataFileCase c(6, std::string(kSumHeader) + "  1000.0  2000.0\n");
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

TEST(D4Data, TripletsGivePositionsIntensitiesAndSquaredSigmas) {
  // I5,1X,F5.0,1X,A72; then 5(F7.2,1X,F8.1,1X,F5.1): 22 columns a point.
  DataFileCase c(7,
                 "    7 1000. D4 liquid run\n"
                 "  10.00    100.0  2.5   10.50    200.0  3.0   11.00    300.0  4.0"
                 "   11.50    400.0  5.0   12.00    500.0  6.0\n"
                 "  12.50    600.0  7.0   13.00    700.0  8.0\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 7);
  EXPECT_FLOAT_EQ(p.MONITOR, 1000.0f);
  EXPECT_FLOAT_EQ(p.THMIN, 10.0f);
  EXPECT_FLOAT_EQ(p.THMAX, 13.0f);
  EXPECT_FLOAT_EQ(p.STEP, 0.5f);  // (13 - 10)/6
  ExpectPoint(p, 1, {10.0f, 100.0f, 6.25f});
  ExpectPoint(p, 5, {12.0f, 500.0f, 36.0f});
  ExpectPoint(p, 7, {13.0f, 700.0f, 64.0f});
}

TEST(D4Data, ShortPointListStopsAtEndOfFile) {
  // Seven points announced, one record of five: the second record is missing.
  DataFileCase c(7,
                 "    7 1000. D4\n"
                 "  10.00    100.0  2.5   10.50    200.0  3.0   11.00    300.0  4.0"
                 "   11.50    400.0  5.0   12.00    500.0  6.0\n");
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
