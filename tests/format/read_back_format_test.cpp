// Tests of the writing of numbers for a file that is read again (FieldFit::kReadBack): six
// significant digits in the field where they fit, exponent form where not, separated numbers,
// and no non-finite number.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include "format/fortran_format.h"

namespace corvinet {
namespace {

// The numbers of a record as the free-format reader separates them: blanks
// separate and a sign that does not follow an exponent letter starts a number.
std::vector<double> ReadNumbers(const std::string& record) {
  static const std::regex number(R"([-+]?(\d+\.?\d*|\.\d+)([eEdD][-+]?\d+)?)");
  std::vector<double> values;
  for (auto it = std::sregex_iterator(record.begin(), record.end(), number);
       it != std::sregex_iterator(); ++it) {
    values.push_back(std::strtod(it->str().c_str(), nullptr));
  }
  return values;
}

bool SixDigits(double read, double value) {
  return std::fabs(read - value) <= 5.0e-6 * std::fabs(value);
}

TEST(ReadBackFormat, ValueThatFitsItsColumnsIsWrittenAsFortranWritesIt) {
  EXPECT_EQ(FmtReadBack("(3F10.5)", 0.012f, -0.008f, 0.01f), "   0.01200  -0.00800   0.01000");
  EXPECT_EQ(FmtReadBack("(E12.5)", 1.0f), " 0.10000E+01");
  EXPECT_EQ(FmtReadBack("(17I4)", 0, 5, 1, 0, 2, 0, 1, 1, 1, 0, 1, 0, 0, 0, 0, 0, 0),
            Fmt("(17I4)", 0, 5, 1, 0, 2, 0, 1, 1, 1, 0, 1, 0, 0, 0, 0, 0, 0));
}

TEST(ReadBackFormat, SynchrotronWidthIsWrittenInExponentForm) {
  const float W = 4.12345e-5f;
  const std::string text = FmtReadBack("(3F10.5)", 0.0f, 0.0f, W);
  EXPECT_EQ(text, "   0.00000   0.00000  0.412345E-04");
  const auto values = ReadNumbers(text);
  ASSERT_EQ(values.size(), 3u);
  EXPECT_TRUE(SixDigits(values[2], W));
}

TEST(ReadBackFormat, MoreDecimalsInTheSameColumnsWhenTheyHoldSixDigits) {
  EXPECT_EQ(FmtReadBack("(F9.5)", 0.1875432f), " 0.187543");
  EXPECT_EQ(FmtReadBack("(2F10.5)", 0.0115931f, 0.0085211f), " 0.0115931 0.0085211");
}

// A negative number right behind another would read back, but the eye takes the two for one:
// it is parted by a blank, in exponent form when its columns cannot hold both.
TEST(ReadBackFormat, NegativeNumberBehindAnotherIsPartedByABlank) {
  EXPECT_EQ(FmtReadBack("(2F10.5)", 0.0115931f, -0.0085211f), " 0.0115931  -0.852110E-02");
}

TEST(ReadBackFormat, FewerDecimalsWhenTheIntegerPartFillsTheField) {
  // A diverged B of 627.40906 in F9.5 would run into the number before it.
  const std::string text = FmtReadBack("(2F9.5)", 5.53691f, 627.40906f);
  EXPECT_EQ(text, "  5.53691 627.4091");
  const auto values = ReadNumbers(text);
  ASSERT_EQ(values.size(), 2u);
  EXPECT_TRUE(SixDigits(values[1], 627.40906));
}

TEST(ReadBackFormat, IntegerWiderThanItsFieldGetsABlankAndItsDigits) {
  EXPECT_EQ(FmtReadBack("(3I4)", 0, 1000000, 0), "   0 1000000   0");
  EXPECT_EQ(FmtReadBack("(3I4)", 0, 5000, 0), "   0 5000   0");
  EXPECT_EQ(FmtReadBack("(F4.1,I4)", 1.0f, 1000), " 1.0 1000");
  // The first field of a record needs no blank.
  EXPECT_EQ(FmtReadBack("(I4)", 1000), "1000");
}

TEST(ReadBackFormat, NumberTooLargeForItsFieldIsWrittenInExponentForm) {
  const std::string text = FmtReadBack("(F8.2,F8.2)", 1.0f, 3.0e30f);
  const auto values = ReadNumbers(text);
  ASSERT_EQ(values.size(), 2u) << text;
  EXPECT_EQ(text.find('*'), std::string::npos);
  EXPECT_TRUE(SixDigits(values[1], 3.0e30f));
}

TEST(ReadBackFormat, NumberAfterATextNeedsNoBlank) {
  EXPECT_EQ(FmtReadBack("(A,I0)", "! Pattern#", 1), "! Pattern#1");
}

TEST(ReadBackFormat, NonFiniteNumberIsNeverWritten) {
  EXPECT_THROW(FmtReadBack("(F10.5)", std::nanf("")), NonFiniteValue);
  EXPECT_THROW(FmtReadBack("(E12.5)", INFINITY), NonFiniteValue);
  EXPECT_EQ(Fmt("(F10.5)", std::nanf("")), "       NaN");
}

// Values from 1e-6 to 1e6 in every layout of the control file's reals: each
// reads back to six significant digits, as many numbers as were written.
TEST(ReadBackFormat, ValuesFromOneMillionthToOneMillionReadBack) {
  const char* formats[] = {"(3F8.5)", "(3F9.5)",  "(3F10.5)", "(3F11.6)", "(3F12.3)", "(3F9.2)",
                           "(3F5.2)", "(3F4.1)",  "(3E12.5)", "(3E11.4)", "(3F14.5)", "(3F7.3)",
                           "(3F8.2)", "(3F10.3)", "(3F12.5)", "(3F6.3)"};
  for (const char* format : formats) {
    for (double magnitude = 1.0e-6; magnitude <= 1.0e6; magnitude *= 3.7) {
      for (const double sign : {1.0, -1.0}) {
        const float a = static_cast<float>(sign * magnitude * 1.234567);
        const float b = static_cast<float>(-magnitude * 9.87654);
        const float c = static_cast<float>(magnitude * 5.55555);
        const std::string text = FmtReadBack(format, a, b, c);
        const auto values = ReadNumbers(text);
        ASSERT_EQ(values.size(), 3u) << format << " " << text;
        EXPECT_TRUE(SixDigits(values[0], a)) << format << " " << text;
        EXPECT_TRUE(SixDigits(values[1], b)) << format << " " << text;
        EXPECT_TRUE(SixDigits(values[2], c)) << format << " " << text;
      }
    }
  }
}

}  // namespace
}  // namespace corvinet
