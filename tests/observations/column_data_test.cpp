// Tests of x, y, sigma columns with comment lines (INSTR 14), as Mantid writes .xye files.
#include <gtest/gtest.h>

#include <string>

#include "data_file_case.h"

namespace corvinet {
namespace {

using testing::DataFileCase;
using testing::ExpectPoint;

std::string Excerpt(const std::string& name) {
  return std::string(CORVINET_TEST_DATA) + "/formats/" + name;
}

TEST(ColumnData, MantidXyeWithQuoteComments) {
  DataFileCase c(14, DataFileCase::LinkTo{Excerpt("PG3_20254-2_10K_excerpt.xye")});
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 30);
  ExpectPoint(p, 1, {7004.38458f, 53.09113752f, 1.9578626f});
  ExpectPoint(p, 30, {7168.71949f, 56.61836248f, 1.5583558f});
  EXPECT_FLOAT_EQ(p.THMIN, 7004.38458f);
  EXPECT_FLOAT_EQ(p.THMAX, 7168.71949f);
}

TEST(ColumnData, HashCommentsAndTwoColumnsTakeVariancesFromCounts) {
  DataFileCase c(14,
                 "# a comment\n"
                 "XYDATA\n"
                 "# another\n"
                 "10.0 100\n"
                 "10.5 144\n"
                 "# inside\n"
                 "11.0 -3\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 3);
  ExpectPoint(p, 1, {10.0f, 100.0f, 100.0f});
  ExpectPoint(p, 2, {10.5f, 144.0f, 144.0f});
  ExpectPoint(p, 3, {11.0f, -3.0f, 0.0f});
}

TEST(ColumnData, SpectrumChosenInTheHundredsOfInstr) {
  const std::string text =
      "' Data for spectra :1\n"
      "1.0 10 1\n"
      "2.0 20 2\n"
      "' Data for spectra :2\n"
      "1.5 30 3\n"
      "2.5 40 4\n"
      "3.5 50 5\n";
  DataFileCase first(14, text);
  first.Read();
  EXPECT_EQ(first.pattern().NPTS, 2);
  DataFileCase second(214, text);
  second.Read();
  ASSERT_EQ(second.pattern().NPTS, 3);
  ExpectPoint(second.pattern(), 1, {1.5f, 30.0f, 9.0f});
  ExpectPoint(second.pattern(), 3, {3.5f, 50.0f, 25.0f});
}

TEST(ColumnData, MalformedPointLineStopsWithItsNumber) {
  DataFileCase c(14, "' head\n1.0 10 1\n2.0 2O 2\n");
  const std::string console = c.ReadExpectingStop();
  EXPECT_NE(console.find(" => Malformed line 3 of data file "), std::string::npos) << console;
  EXPECT_NE(console.find("2.0 2O 2 (x, y, sigma expected)"), std::string::npos) << console;
}

TEST(ColumnData, AbsentSpectrumStops) {
  DataFileCase c(314, "' Data for spectra :1\n1.0 10 1\n2.0 20 2\n");
  const std::string console = c.ReadExpectingStop();
  EXPECT_NE(console.find(" => Spectrum 3 not found in the data file"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
