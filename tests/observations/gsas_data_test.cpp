// Tests of GSAS files (INSTR 12): heading, BANK line, STD, ESD and ALT data with the RALF bins.
#include <gtest/gtest.h>

#include <string>

#include "data_file_case.h"

namespace corvinet {
namespace {

using testing::DataFileCase;
using testing::ExpectPoint;
using testing::HasLine;
using testing::PointValues;

TEST(GsasData, StandardBankReadsCounterPairsFromCentidegrees) {
  // 10(I2,F6.0): counter then mean count; a blank counter is 1.
  DataFileCase c(
      12,
      "PbSO4 test pattern\n"
      "Instrument parameter file: inst.prm\n"
      "BANK 1 12 2 CONST 1000.0 5.0 0 0 STD\n"
      " 1   220 1   214     219 2   448 1   198 1   229 1   224 1   216 1   202 1   229\n"
      " 4   800 1     0\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 12);
  EXPECT_FLOAT_EQ(p.THMIN, 10.0f);  // 1000/100
  EXPECT_FLOAT_EQ(p.STEP, 0.05f);   // 5/100
  EXPECT_NEAR(p.THMAX, 10.55f, 1e-5f);
  ExpectPoint(p, 1, {10.0f, 220.0f, 220.0f});
  ExpectPoint(p, 3, {10.1f, 219.0f, 219.0f});
  ExpectPoint(p, 4, {10.15f, 448.0f, 224.0f});  // a mean of 448 over 2 counters
  ExpectPoint(p, 11, {10.5f, 800.0f, 200.0f});  // 800 over 4
  ExpectPoint(p, 12, {10.55f, 1.0f, 1.0f});     // zero count
  EXPECT_EQ(p.CountNorm[4], 2.0f);
  EXPECT_EQ(p.CountNorm[3], 1.0f);
  const std::string report = c.Report();
  EXPECT_TRUE(HasLine(report, " => Heading of GSAS file:"));
  EXPECT_TRUE(HasLine(report, " PbSO4 test pattern"));
  EXPECT_NE(report.find(" => Number of items read in BANK line:   9"), std::string::npos);
  EXPECT_NE(report.find(" -> IBANK,NCHAN,NREC: "), std::string::npos);
  EXPECT_TRUE(HasLine(report, " -> BINTYP          : CONST"));
  EXPECT_NE(report.find(" -> COEFFS          : "), std::string::npos);
  EXPECT_TRUE(HasLine(report, " -> DATTYP          : STD"));
}

TEST(GsasData, HeadingBytesThatAreNotCharactersAreEchoedAsBlanks) {
  using namespace std::string_literals;
  // Some instrument files carry binary bytes after the title in the heading
  // line; the report must stay a text file.
  DataFileCase c(12, "LaMnO3 50K    e\x82X\x00\xf0\xf3 \x9b\r\n"s +
                         "BANK 1 2 1 CONST 2000 10 0 0 STD\n"
                         " 1   300 1   200\n");
  c.Read();
  const std::string report = c.Report();
  EXPECT_TRUE(HasLine(report, " LaMnO3 50K    e X"));
  for (char ch : report) {
    const auto byte = static_cast<unsigned char>(ch);
    EXPECT_TRUE(ch == '\n' || (byte >= 0x20 && byte <= 0x7e)) << static_cast<int>(byte);
  }
}

TEST(GsasData, StandardCountsAreMeansOverTheirCounters) {
  // NCTR then the mean count of those counters: the count is kept, its
  // variance is count/NCTR, and NCTR is the counter normalisation.
  //   " 1   300": 300, 300/1 = 300      " 2   300": 300, 300/2 = 150
  //   "     300": blank NCTR is 1: 300  "10   250": 250, 250/10 = 25
  //   " 2     0": a zero count is 1, 1/2 = 0.5
  DataFileCase c(12,
                 "BANK 1 5 1 CONST 2000 10 0 0 STD\n"
                 " 1   300 2   300     30010   250 2     0\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 5);
  const float counters[] = {1.0f, 2.0f, 1.0f, 10.0f, 2.0f};
  const PointValues points[] = {{20.0f, 300.0f, 300.0f},
                                {20.1f, 300.0f, 150.0f},
                                {20.2f, 300.0f, 300.0f},
                                {20.3f, 250.0f, 25.0f},
                                {20.4f, 1.0f, 0.5f}};
  for (int i = 1; i <= 5; ++i) {
    ExpectPoint(p, i, points[i - 1]);
    EXPECT_EQ(p.CountNorm[i], counters[i - 1]) << "CountNorm of point " << i;
  }
  // With IWGT 1 the variance of a calculated count y is |y|/CountNorm*Cnorm:
  // at the observed counts this gives the variances above.
  EXPECT_EQ(p.Cnorm, 1.0f);
}

TEST(GsasData, DataTypeIsTheFirstTypeWordAfterTheBinType) {
  // One coefficient pair only, and an item after STD that is not read.
  DataFileCase c(12, "BANK 1 2 1 CONST 1000 5 STD 00000000\n 2   100 1   200\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 2);
  EXPECT_FLOAT_EQ(p.THMIN, 10.0f);
  EXPECT_FLOAT_EQ(p.STEP, 0.05f);
  ExpectPoint(p, 1, {10.0f, 100.0f, 50.0f});
  EXPECT_TRUE(HasLine(c.Report(), " -> DATTYP          : STD"));
}

TEST(GsasData, TimeMapBankWithOneCoefficientNamesItsBinType) {
  // "TIME_MAP 1 STD 00000000": STD is the type; standard data need constant bins.
  DataFileCase c(-12, "BANK  1  2  1 TIME_MAP   1 STD 00000000\n    4957    5028\n");
  EXPECT_NE(c.ReadExpectingStop().find(" => Only BINTYP=CONST is allowed for standard data"),
            std::string::npos);
}

TEST(GsasData, ConsIsAConstantStep) {
  DataFileCase c(12, "BANK 1 2 1 CONS 4995 5 0 0 ESD\n    10.      1.     20.      2.\n");
  c.Read();
  EXPECT_FLOAT_EQ(c.pattern().THMIN, 49.95f);
  EXPECT_FLOAT_EQ(c.pattern().STEP, 0.05f);
  ExpectPoint(c.pattern(), 2, {50.0f, 20.0f, 4.0f});
  EXPECT_TRUE(HasLine(c.Report(), " -> BINTYP          : CONS"));
}

TEST(GsasData, EsdBankReadsIntensityAndEsdPairs) {
  // 10F8.0: five pairs a record.
  DataFileCase c(
      12,
      "BANK 1 6 2 CONST 2000 10 0 0 ESD\n"
      "    523.     48.    442.     44.    527.     48.    585.     51.    420.     43.\n"
      "    456.     44.\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 6);
  EXPECT_FLOAT_EQ(p.THMIN, 20.0f);
  EXPECT_FLOAT_EQ(p.STEP, 0.1f);
  ExpectPoint(p, 1, {20.0f, 523.0f, 2304.0f});
  ExpectPoint(p, 4, {20.3f, 585.0f, 2601.0f});
  ExpectPoint(p, 6, {20.5f, 456.0f, 1936.0f});
}

TEST(GsasData, NegativeInstrTakesCoefficientsUndivided) {
  DataFileCase c(-12, "BANK 1 2 1 CONST 1000 5 0 0 ESD\n    10.      1.     20.      2.\n");
  c.Read();
  EXPECT_FLOAT_EQ(c.pattern().THMIN, 1000.0f);
  EXPECT_FLOAT_EQ(c.pattern().STEP, 5.0f);
  ExpectPoint(c.pattern(), 2, {1005.0f, 20.0f, 4.0f});
}

TEST(GsasData, AltConstTripletsAreThirtySecondsOfCentidegrees) {
  // 4(F8.0,F7.4,F5.4): 20 columns a point. "   1234" has no dot: 0.1234.
  // Constant-step coefficients are centidegrees; positions are 32 x centidegrees.
  DataFileCase c(
      12,
      "BANK 1 5 2 CONST 1000 10 0 0 ALT\n"
      "  32000. 100.00 10.0  32320. 200.00 20.0  32640.   1234 .300  32960. 400.00 40.0\n"
      "  33280. 500.00 50.0\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 5);
  EXPECT_FLOAT_EQ(p.THMIN, 10.0f);  // 1000/100
  EXPECT_FLOAT_EQ(p.STEP, 0.1f);    // 10/100
  EXPECT_FLOAT_EQ(p.THMAX, 10.4f);  // the last x: 33280/32/100
  EXPECT_EQ(p.stepKind, 1);
  ExpectPoint(p, 1, {10.0f, 100.0f, 100.0f});
  ExpectPoint(p, 3, {10.2f, 0.1234f, 0.09f});
  ExpectPoint(p, 5, {10.4f, 500.0f, 2500.0f});
  // Mean of variance/max(y, 0.001): (1 + 2 + 0.09/0.1234 + 4 + 5)/5.
  EXPECT_NEAR(p.Cnorm, (1.0f + 2.0f + 0.09f / 0.1234f + 4.0f + 5.0f) / 5.0f, 1e-4f);
}

TEST(GsasData, AltConstWithNegativeInstrIsInTimeUnits) {
  // Coefficients in time units as they stand, positions 32 x time.
  DataFileCase c(-12,
                 "BANK 1 2 1 CONST 1000 10 0 0 ALT\n  32000. 100.00 10.0  32320. 200.00 20.0\n");
  c.Read();
  const Pattern& p = c.pattern();
  EXPECT_FLOAT_EQ(p.THMIN, 1000.0f);
  EXPECT_FLOAT_EQ(p.STEP, 10.0f);
  EXPECT_FLOAT_EQ(p.THMAX, 1010.0f);  // 32320/32
  ExpectPoint(p, 2, {1010.0f, 200.0f, 400.0f});
}

TEST(GsasData, AltRalfCountsBecomeCountsPerBinWidth) {
  // x/32: 1000, 1010, 1030, 1060; widths 10, 20, 30 and 30 again for the last.
  DataFileCase c(
      12,
      "BANK 1 4 1 RALF 32000 320 0.001 0 ALT\n"
      "  32000. 10.000 1.00  32320. 20.000 2.00  32960. 30.000 3.00  33920. 60.000 6.00\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 4);
  EXPECT_EQ(p.stepKind, 0);
  EXPECT_EQ(p.equalStep, 0);
  EXPECT_FLOAT_EQ(p.THMIN, 1000.0f);
  EXPECT_FLOAT_EQ(p.THMAX, 1060.0f);
  // y' = 1000 y/width, sigma' = 1000 sigma/width, variance = sigma'^2.
  ExpectPoint(p, 1, {1000.0f, 1000.0f, 10000.0f});
  ExpectPoint(p, 2, {1010.0f, 1000.0f, 10000.0f});
  ExpectPoint(p, 3, {1030.0f, 1000.0f, 10000.0f});
  ExpectPoint(p, 4, {1060.0f, 2000.0f, 40000.0f});
  const std::string report = c.Report();
  EXPECT_TRUE(HasLine(report, " => Input Data for format RALF are internally modified"));
  EXPECT_TRUE(HasLine(report, "                FMT = 4(F8.0,F7.4,F5.4)"));
  EXPECT_TRUE(HasLine(report, "    Intensities and Standard deviations are trasformed as:"));
  EXPECT_TRUE(HasLine(report, "          Ycorr(i)=1000*Yread(i)/(TOF(i+1)-TOF(i))"));
  EXPECT_TRUE(HasLine(report, "          Scorr(i)=1000*Sread(i)/(TOF(i+1)-TOF(i))"));
}

TEST(GsasData, SevenHeadingLinesThenBankIsFound) {
  std::string text;
  for (int k = 1; k <= 7; ++k) text += "heading line " + std::to_string(k) + "\n";
  DataFileCase c(12, text + "BANK 1 1 1 CONST 1000 5 0 0 ESD\n    10.      1.\n");
  c.Read();
  EXPECT_EQ(c.pattern().NPTS, 1);
  EXPECT_TRUE(HasLine(c.Report(), " heading line 7"));
}

TEST(GsasData, NoBankAfterSevenHeadingLinesStops) {
  std::string text;
  for (int k = 1; k <= 8; ++k) text += "heading line " + std::to_string(k) + "\n";
  DataFileCase c(12, text + "BANK 1 1 1 CONST 1000 5 0 0 ESD\n    10.      1.\n");
  EXPECT_NE(c.ReadExpectingStop().find(" => Error in the input GSAS-file: BANK not found!"),
            std::string::npos);
}

TEST(GsasData, EmptyFileHasNoBank) {
  DataFileCase c(12, "");
  EXPECT_NE(c.ReadExpectingStop().find(" => Error in the input GSAS-file: BANK not found!"),
            std::string::npos);
}

TEST(GsasData, StandardDataNeedsConstantBins) {
  DataFileCase c(12, "BANK 1 2 1 SLOG 1000 5 0 0 STD\n 1   100 1   200\n");
  EXPECT_NE(c.ReadExpectingStop().find(" => Only BINTYP=CONST is allowed for standard data"),
            std::string::npos);
}

TEST(GsasData, EsdDataNeedsConstantBins) {
  DataFileCase c(12, "BANK 1 2 1 RALF 1000 5 0 0 ESD\n    10.      1.     20.      2.\n");
  EXPECT_NE(c.ReadExpectingStop().find(" => Only BINTYP=CONST is allowed for ESD data"),
            std::string::npos);
}

TEST(GsasData, AltDataNeedsRalfOrConstantBins) {
  DataFileCase c(12, "BANK 1 1 1 SLOG 1000 5 0 0 ALT\n  32000. 10.000 1.00\n");
  EXPECT_NE(c.ReadExpectingStop().find(" => Only BINTYP=RALF or CONST is allowed for ALT data"),
            std::string::npos);
}

TEST(GsasData, MissingRecordsStopAtEndOfFile) {
  DataFileCase c(12, "BANK 1 12 2 CONST 1000 5 0 0 STD\n 1   220 1   214 1   219\n");
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

TEST(GsasData, BankLineWithAWordForTheCountStops) {
  DataFileCase c(12, "BANK 1 many 2 CONST 1000 5 0 0 STD\n");
  EXPECT_NE(c.ReadExpectingStop().find("  Error on Intensity file, check your instr parameter!"),
            std::string::npos);
}

TEST(GsasData, BankOfMoreThanTwentyThousandChannelsStops) {
  DataFileCase c(12, "BANK 1 132992 132992 CONST 4995 5 0 0 STD\n");
  const std::string console = c.ReadExpectingStop();
  EXPECT_NE(console.find("132992 points were input"), std::string::npos);
  EXPECT_NE(console.find(" Too many points"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
