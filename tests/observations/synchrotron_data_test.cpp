// Tests of the BNBL synchrotron formats (INSTR 4 with its three dated layouts, and INSTR -4).
#include <gtest/gtest.h>

#include <string>

#include "data_file_case.h"

namespace corvinet {
namespace {

using testing::DataFileCase;
using testing::ExpectPoint;

const char kQuestion[] = "     When was this data taken. OCT85,FEB86 or AUG86 ?";

// A5,A56 keyword and title; I8,F8.0,E10.0 with the count; 6F8.0 with the
// first angle, the last angle and the step.
std::string BnblHeader(const std::string& title) {
  return "BNBL " + title + "\n" + "       4     1.0 1.000E+00\n" +
         "   10.00   10.03    0.01     0.0     0.0     0.0\n";
}

TEST(SynchrotronData, Oct85RowsHoldSigmaBeforeIntensity) {
  // 51X, then sigma F10.0, 1X, intensity F10.0.
  const std::string blank51(51, ' ');
  DataFileCase c(4, BnblHeader("Silicon standard OCT85") + blank51 + "       3.0      1000.0\n" +
                        blank51 + "       4.0      1500.0\n" + blank51 +
                        "       5.0      2000.0\n" + blank51 + "       2.0       400.0\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 4);
  EXPECT_FLOAT_EQ(p.THMIN, 10.0f);
  EXPECT_FLOAT_EQ(p.STEP, 0.01f);
  EXPECT_FLOAT_EQ(p.THMAX, 10.03f);
  ExpectPoint(p, 1, {10.0f, 1000.0f, 9.0f});  // the X of point 1 is THMIN
  ExpectPoint(p, 2, {10.01f, 1500.0f, 16.0f});
  ExpectPoint(p, 4, {10.03f, 400.0f, 4.0f});
  EXPECT_EQ(c.Console().find(kQuestion), std::string::npos);  // the title named the date
}

// 24X, then intensity F7.0, 1X, sigma F7.0.
std::string LaterRows() {
  const std::string blank24(24, ' ');
  return blank24 + " 1000.0     3.0\n" + blank24 + " 1500.0     4.0\n" + blank24 +
         " 2000.0     5.0\n" + blank24 + "  400.0     2.0\n";
}

TEST(SynchrotronData, UndatedHeaderAsksTheTerminalAndFeb86RowsHoldIntensityFirst) {
  DataFileCase c(4, BnblHeader("Silicon standard") + LaterRows(), "FEB86\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 4);
  ExpectPoint(p, 1, {10.0f, 1000.0f, 9.0f});
  ExpectPoint(p, 3, {10.02f, 2000.0f, 25.0f});
  EXPECT_NE(c.Console().find(kQuestion), std::string::npos);
}

TEST(SynchrotronData, UnknownAnswerIsAskedAgain) {
  DataFileCase c(4, BnblHeader("Silicon standard") + LaterRows(), "JUL99\naug86\n");
  c.Read();
  const std::string console = c.Console();
  const std::size_t first = console.find(kQuestion);
  ASSERT_NE(first, std::string::npos);
  EXPECT_NE(console.find(kQuestion, first + 1), std::string::npos);
  ExpectPoint(c.pattern(), 4, {10.03f, 400.0f, 4.0f});
}

TEST(SynchrotronData, NoAnswerFromTheTerminalStops) {
  DataFileCase c(4, BnblHeader("Silicon standard") + LaterRows());
  EXPECT_NE(c.ReadExpectingStop().find("  Error on Intensity file, check your instr parameter!"),
            std::string::npos);
  EXPECT_EQ(c.pattern().NPTS, 0);
}

TEST(SynchrotronData, MissingRowsStopAtEndOfFile) {
  DataFileCase c(4, BnblHeader("Si AUG86") + std::string(24, ' ') + " 1000.0     3.0\n");
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

TEST(SynchrotronData, MinusFourReadsRangeThenIntensityAndSigmaBlocks) {
  // trunc((12 - 10)/0.5 + 1.5) = 5 points; 10F8.0 intensities, 10F8.1 sigmas.
  // "      25" has no dot: under F8.1 it is 2.5.
  DataFileCase c(-4,
                 "10.0 0.5 12.0\n"
                 "   100.0   200.0   300.0   400.0   500.0\n"
                 "    10.0      25     3.0     4.0     5.0\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 5);
  ExpectPoint(p, 1, {10.0f, 100.0f, 100.0f});
  ExpectPoint(p, 2, {10.5f, 200.0f, 6.25f});
  ExpectPoint(p, 5, {12.0f, 500.0f, 25.0f});
}

TEST(SynchrotronData, MinusFourWithoutSigmaBlockStopsAtEndOfFile) {
  DataFileCase c(-4, "10.0 0.5 12.0\n   100.0   200.0   300.0   400.0   500.0\n");
  EXPECT_NE(c.ReadExpectingStop().find(" End of file *.DAT"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
