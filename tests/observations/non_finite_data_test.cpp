// Tests of values that read as nan or inf, or beyond a 32-bit real: the run stops naming the line.
#include <gtest/gtest.h>

#include <string>

#include "data_file_case.h"

namespace corvinet {
namespace {

using testing::DataFileCase;

// Reads the case, which must stop with the non-finite message for `line`, and
// leave the data file as it was.
void ExpectStopAtLine(DataFileCase& c, const std::string& text, int line) {
  const std::string console = c.ReadExpectingStop();
  const std::string message =
      " => Non-finite value in data file: case.dat at line " + std::to_string(line);
  EXPECT_NE(console.find(message), std::string::npos) << console;
  EXPECT_EQ(console.find(message + "0"), std::string::npos) << console;  // not line 30 for 3
  EXPECT_EQ(c.DataText(), text);
  EXPECT_FALSE(c.DataUnitOpen());
}

TEST(NonFiniteData, FreeFormatNanStopsAtItsLine) {
  const std::string text =
      "10.0 0.1 10.9\n"
      "1 2 3 4 5\n"
      "6 7 nan 9 10\n";
  DataFileCase c(0, text);
  ExpectStopAtLine(c, text, 3);
}

TEST(NonFiniteData, FreeFormatInfinityOnTheFirstCountLineStopsThere) {
  const std::string text = "10.0 0.1 10.3\n1 -Infinity 3 4\n";
  DataFileCase c(0, text);
  ExpectStopAtLine(c, text, 2);
}

TEST(NonFiniteData, FreeFormatNullValuesBeforeANanStillNameItsLine) {
  // "1,,3": the second value is left as it was; the nan two lines on is found on line 4.
  const std::string text =
      "10.0 0.1 10.9\n"
      "1,,3\n"
      "4 5 6\n"
      "7 8 nan 10\n";
  DataFileCase c(0, text);
  ExpectStopAtLine(c, text, 4);
}

TEST(NonFiniteData, FreeFormatBankLineWithInfiniteStartStops) {
  // THMIN and STEP stand from column 43 on.
  const std::string bank = "BANK 1 4 1 CONST";
  const std::string text = bank + std::string(42 - bank.size(), ' ') + "inf 5.0\n1 2 3 4\n";
  DataFileCase c(0, text);
  ExpectStopAtLine(c, text, 1);
}

TEST(NonFiniteData, XYSigmaNanStopsAtItsLine) {
  // Six comment lines, then the points from line 7.
  std::string text;
  for (int k = 1; k <= 6; ++k) text += "comment " + std::to_string(k) + "\n";
  text += "10.0 100.0 10.0\n10.1 nan 10.0\n10.2 300.0 17.0\n";
  DataFileCase c(10, text);
  ExpectStopAtLine(c, text, 8);
}

TEST(NonFiniteData, XYSigmaInfAfterACommentLineStopsAtItsLine) {
  std::string text;
  for (int k = 1; k <= 6; ++k) text += "comment " + std::to_string(k) + "\n";
  text += "10.0 100.0 10.0\n! a note\n10.1 200.0 INF\n";
  DataFileCase c(10, text);
  ExpectStopAtLine(c, text, 9);
}

TEST(NonFiniteData, XYSigmaValueBeyondAThirtyTwoBitRealStops) {
  std::string text;
  for (int k = 1; k <= 6; ++k) text += "comment " + std::to_string(k) + "\n";
  text += "10.0 100.0 10.0\n10.1 1.0e39 10.0\n";
  DataFileCase c(10, text);
  ExpectStopAtLine(c, text, 8);
}

TEST(NonFiniteData, XYSigmaSigmaWhoseSquareOverflowsStops) {
  std::string text;
  for (int k = 1; k <= 6; ++k) text += "comment " + std::to_string(k) + "\n";
  text += "10.0 100.0 1.0e20\n";
  DataFileCase c(10, text);
  ExpectStopAtLine(c, text, 7);
}

TEST(NonFiniteData, GsasStandardNanStopsAtItsRecord) {
  // The nan is point 13, in the second data record (line 4).
  const std::string text =
      "title\n"
      "BANK 1 15 2 CONST 1000 5 0 0 STD\n"
      " 1   220 1   214 1   219 2   448 1   198 1   229 1   224 1   216 1   202 1   229\n"
      " 1   220 1   214 1   nan 2   448 1   198\n";
  DataFileCase c(12, text);
  ExpectStopAtLine(c, text, 4);
}

TEST(NonFiniteData, GsasStandardInfOnTheFirstRecordStopsThere) {
  const std::string text =
      "BANK 1 12 2 CONST 1000 5 0 0 STD\n"
      " 1   220 1   inf 1   219 2   448 1   198 1   229 1   224 1   216 1   202 1   229\n"
      " 1   220 1   214\n";
  DataFileCase c(12, text);
  ExpectStopAtLine(c, text, 2);
}

TEST(NonFiniteData, GsasEsdNanSigmaStopsAtItsRecord) {
  const std::string text =
      "BANK 1 6 2 CONST 2000 10 0 0 ESD\n"
      "    523.     48.    442.     44.    527.     48.    585.     51.    420.     43.\n"
      "    456.     nan\n";
  DataFileCase c(12, text);
  ExpectStopAtLine(c, text, 3);
}

TEST(NonFiniteData, GsasBankCoefficientNanStops) {
  const std::string text = "BANK 1 2 1 CONST nan 5 0 0 ESD\n    10.      1.     20.      2.\n";
  DataFileCase c(12, text);
  ExpectStopAtLine(c, text, 1);
}

TEST(NonFiniteData, D1ACountNanStopsAtItsRecord) {
  const std::string text =
      "10.0 0.05 10.55\n"
      " 1   220 1   214 1   219 2   448 1   198 1   229 1   224 1   216 1   202 1   229\n"
      " 4   nan 1   100\n";
  DataFileCase c(1, text);
  ExpectStopAtLine(c, text, 3);
}

TEST(NonFiniteData, D1ASumCountInfStopsAtItsRecord) {
  const std::string text =
      "title\n"
      "                   0.050\n"
      "  10.000\n"
      "   1000.   2000.\n"
      " 1   220 1   214\n"
      " 1   inf\n";
  DataFileCase c(6, text);
  ExpectStopAtLine(c, text, 6);
}

TEST(NonFiniteData, FiniteValuesAfterAListEndKeepTheirOldValues) {
  // A '/' ends the list: the values not read stay as they were (0), and the read goes on.
  DataFileCase c(0, "10.0 0.1 10.4\n1 2 /\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 5);
  EXPECT_EQ(p.Ytotal[1], 1.0f);
  EXPECT_EQ(p.Ytotal[2], 2.0f);
  EXPECT_EQ(p.Ytotal[3], 0.0f);
  EXPECT_EQ(p.Ytotal[5], 0.0f);
}

}  // namespace
}  // namespace corvinet
