// Tests of the free-format data file (INSTR 0), the point limit and the ISTEP reduction.
#include <gtest/gtest.h>

#include <string>

#include "data_file_case.h"

namespace corvinet {
namespace {

using testing::DataFileCase;
using testing::ExpectPoint;
using testing::HasLine;

// A title the range decoding refuses, a range of 5 points, the intensities on two lines.
const char kFivePoints[] =
    "Silicon standard, free format\n"
    "  10.0  0.5  12.0\n"
    "100 200 300\n"
    "400 500\n";

TEST(FreeFormatData, RangeLineGivesTheGridAndVarianceEqualsIntensity) {
  DataFileCase c(0, kFivePoints);
  c.Read();
  const Pattern& p = c.pattern();
  // trunc((12 - 10)/0.5 + 1.5) = 5
  ASSERT_EQ(p.NPTS, 5);
  EXPECT_FLOAT_EQ(p.THMIN, 10.0f);
  EXPECT_FLOAT_EQ(p.STEP, 0.5f);
  EXPECT_FLOAT_EQ(p.THMAX, 12.0f);
  for (int i = 1; i <= 5; ++i) {
    const float y = 100.0f * static_cast<float>(i);
    ExpectPoint(p, i, {10.0f + 0.5f * static_cast<float>(i - 1), y, y});
    EXPECT_EQ(p.CountNorm[i], 1.0f);
  }
  EXPECT_EQ(p.stepKind, 0);
  EXPECT_FLOAT_EQ(p.Cnorm, 1.0f);
  EXPECT_FALSE(c.DataUnitOpen());
}

TEST(FreeFormatData, RangeOfFewerThanFourPointsSendsTheSearchToTheNextLine) {
  // "1 2 3": trunc((3-1)/2 + 1.5) = 2 points, too few: the next line is the range.
  DataFileCase c(0,
                 "1 2 3\n"
                 "0.0 1.0 3.0\n"
                 "5 6 7 8\n");
  c.Read();
  ASSERT_EQ(c.pattern().NPTS, 4);
  EXPECT_FLOAT_EQ(c.pattern().THMIN, 0.0f);
  EXPECT_FLOAT_EQ(c.pattern().Ytotal[4], 8.0f);
}

TEST(FreeFormatData, BankLineGivesCountFromColumnFiveAndRangeFromColumnFortyThree) {
  std::string bank = "BANK 3 6 1 CONST";
  bank.resize(42, ' ');  // columns 1..42
  bank += "20.0 0.25";   // from column 43
  DataFileCase c(0, bank + "\n1 2 3 4 5 6\n");
  c.pattern().LST2 = 1;
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 6);
  EXPECT_FLOAT_EQ(p.THMIN, 20.0f);
  EXPECT_FLOAT_EQ(p.STEP, 0.25f);
  EXPECT_FLOAT_EQ(p.THMAX, 21.25f);
  ExpectPoint(p, 6, {21.25f, 6.0f, 6.0f});
  // The list copy: "DATT ", INSTR, the bank number, the monitor.
  bool found = false;
  for (const std::string& line : testing::SplitLines(c.Report())) {
    if (line.rfind("DATT ", 0) != 0) continue;
    found = true;
    int instr = -1, bankNumber = -1;
    float monitor = -1.0f;
    ASSERT_EQ(std::sscanf(line.c_str() + 5, "%d %d %f", &instr, &bankNumber, &monitor), 3);
    EXPECT_EQ(instr, 0);
    EXPECT_EQ(bankNumber, 3);
    EXPECT_EQ(monitor, 0.0f);
  }
  EXPECT_TRUE(found);
}

TEST(FreeFormatData, NoListCopyUnlessAsked) {
  DataFileCase c(0, kFivePoints);
  c.Read();
  EXPECT_EQ(c.Report().find("DATT"), std::string::npos);
}

TEST(FreeFormatData, SevenLinesWithoutARangeStop) {
  std::string text;
  for (int k = 0; k < 7; ++k) text += "a line of words only\n";
  text += "10.0 0.5 12.0\n1 2 3 4 5\n";  // an eighth line is never tried
  DataFileCase c(0, text);
  c.pattern().NPTS = 3;
  c.pattern().Ytotal[1] = 42.0f;
  const std::string console = c.ReadExpectingStop();
  EXPECT_NE(console.find(" Error on Intensity file, check your instr parameter!"),
            std::string::npos);
  // Nothing of the file reached the pattern, and unit 4 is closed.
  EXPECT_EQ(c.pattern().NPTS, 3);
  EXPECT_EQ(c.pattern().Ytotal[1], 42.0f);
  EXPECT_FALSE(c.DataUnitOpen());
}

TEST(FreeFormatData, ShortListOfIntensitiesStopsAtEndOfFile) {
  DataFileCase c(0, "10.0 0.5 12.0\n100 200 300\n");
  const std::string console = c.ReadExpectingStop();
  EXPECT_NE(console.find(" End of file *.DAT"), std::string::npos);
  EXPECT_EQ(c.pattern().NPTS, 0);
}

TEST(FreeFormatData, EmptyFileStopsAtEndOfFile) {
  DataFileCase c(0, "");
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

TEST(FreeFormatData, WordAmongIntensitiesStopsWithTheFormatMessage) {
  DataFileCase c(0, "10.0 0.5 12.0\n100 abc 300 400 500\n");
  EXPECT_NE(c.ReadExpectingStop().find("  Error on Intensity file, check your instr parameter!"),
            std::string::npos);
}

TEST(FreeFormatData, MoreThanTwentyThousandPointsStop) {
  // trunc((30000 - 0)/1 + 1.5) = 30001 points.
  DataFileCase c(0, "0 1 30000\n1 2 3\n");
  const std::string console = c.ReadExpectingStop();
  EXPECT_NE(console.find(" => Program can handle 20000 points, 30001 points were input"),
            std::string::npos);
  EXPECT_NE(console.find(" Too many points"), std::string::npos);
  EXPECT_TRUE(HasLine(c.Report(), " => Program can handle 20000 points, 30001 points were input"));
}

TEST(FreeFormatData, ThirtyThousandAndOnePointsPassInALargeRun) {
  // trunc((30000 - 0)/1 + 1.5) = 30001 points, one intensity each.
  std::string text = "0 1 30000\n";
  for (int i = 1; i <= 30001; ++i) text += std::to_string(i) + (i % 10 == 0 ? "\n" : " ");
  DataFileCase c(0, text);
  c.job().dimensions = LargeDimensionLimits();
  c.Read();
  ASSERT_EQ(c.pattern().NPTS, 30001);
  EXPECT_GE(c.pattern().X.size(), 30001);
  ExpectPoint(c.pattern(), 30001, {30000.0f, 30001.0f, 30001.0f});
  ExpectPoint(c.pattern(), 20001, {20000.0f, 20001.0f, 20001.0f});
}

TEST(FreeFormatData, MoreThanTwoHundredThousandPointsStopInALargeRun) {
  DataFileCase c(0, "0 1 200000\n1 2 3\n");
  c.job().dimensions = LargeDimensionLimits();
  const std::string console = c.ReadExpectingStop();
  EXPECT_NE(console.find(" => Program can handle 200000 points, 200001 points were input"),
            std::string::npos);
}

TEST(FreeFormatData, ExactlyTwentyThousandPointsPass) {
  std::string text = "1 1 20000\n";
  for (int i = 1; i <= 20000; ++i) text += std::to_string(i) + (i % 10 == 0 ? "\n" : " ");
  DataFileCase c(0, text);
  c.Read();
  ASSERT_EQ(c.pattern().NPTS, 20000);
  ExpectPoint(c.pattern(), 20000, {20000.0f, 20000.0f, 20000.0f});
  ExpectPoint(c.pattern(), 12345, {12345.0f, 12345.0f, 12345.0f});
}

TEST(StepReduction, KeepsEveryIstepThPointWithoutSumming) {
  DataFileCase c(0, kFivePoints);
  c.pattern().ISTEP = 2;
  c.Read();
  const Pattern& p = c.pattern();
  // 5 div 2 = 2 points: old points 1 and 3.
  ASSERT_EQ(p.NPTS, 2);
  EXPECT_FLOAT_EQ(p.STEP, 1.0f);
  ExpectPoint(p, 1, {10.0f, 100.0f, 100.0f});
  ExpectPoint(p, 2, {11.0f, 300.0f, 300.0f});
  EXPECT_FLOAT_EQ(p.THMAX, 11.0f);
}

TEST(StepReduction, IstepAboveHalfTheCountLeavesOnePoint) {
  DataFileCase c(0, kFivePoints);
  c.pattern().ISTEP = 4;
  c.Read();
  ASSERT_EQ(c.pattern().NPTS, 1);
  ExpectPoint(c.pattern(), 1, {10.0f, 100.0f, 100.0f});
  EXPECT_FLOAT_EQ(c.pattern().THMAX, 10.0f);
  EXPECT_FLOAT_EQ(c.pattern().STEP, 2.0f);
}

TEST(StepReduction, IstepAboveTheCountLeavesNoPoint) {
  DataFileCase c(0, kFivePoints);
  c.pattern().ISTEP = 7;
  c.Read();
  EXPECT_EQ(c.pattern().NPTS, 0);
  EXPECT_FLOAT_EQ(c.pattern().STEP, 3.5f);
  EXPECT_FLOAT_EQ(c.pattern().THMAX, 12.0f);  // no point to take it from
}

// The reduction thins the points as they are stored, so a file of up to ISTEP
// times the capacity of a pattern comes inside it: 49 507 points with Ste 3
// become 16 502.
TEST(StepReduction, ReductionBringsALargeFileInsideTheCapacity) {
  std::string text = "1 1 49507\n";
  for (int i = 1; i <= 49507; ++i) text += std::to_string(i) + (i % 10 == 0 ? "\n" : " ");
  DataFileCase c(0, text + "\n");
  c.pattern().ISTEP = 3;
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 16502);
  EXPECT_FLOAT_EQ(p.STEP, 3.0f);
  ExpectPoint(p, 1, {1.0f, 1.0f, 1.0f});
  ExpectPoint(p, 16502, {49504.0f, 49504.0f, 49504.0f});
  EXPECT_FLOAT_EQ(p.THMAX, 49504.0f);
}

TEST(StepReduction, AFileBeyondTheReducedCapacityStillStops) {
  // trunc((60000 - 0)/1 + 1.5) = 60001 points, above 3 x 20000.
  DataFileCase c(0, "0 1 60000\n1 2 3\n");
  c.pattern().ISTEP = 3;
  EXPECT_NE(
      c.ReadExpectingStop().find(" => Program can handle 20000 points, 60001 points were input"),
      std::string::npos);
}

TEST(StepReduction, IstepOfOneChangesNothing) {
  DataFileCase c(0, kFivePoints);
  c.pattern().ISTEP = 1;
  c.Read();
  EXPECT_EQ(c.pattern().NPTS, 5);
  EXPECT_FLOAT_EQ(c.pattern().STEP, 0.5f);
}

}  // namespace
}  // namespace corvinet
