// Tests of the fixed-column format writer and reader; expected texts were produced by gfortran 12.
#include "format/fortran_format.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace corvinet {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();

std::vector<std::string> Records(std::string_view format,
                                 std::initializer_list<FormatValue> values) {
  return FormatRecords(CompileFormat(format),
                       std::span<const FormatValue>(values.begin(), values.size()));
}

std::vector<std::string> Lines(std::initializer_list<const char*> lines) {
  return std::vector<std::string>(lines.begin(), lines.end());
}

// One real value written under one format.
struct RealCase {
  const char* format;
  double value;
  const char* expected;
};

void ExpectReals(std::initializer_list<RealCase> cases) {
  for (const RealCase& c : cases) {
    SCOPED_TRACE(std::string(c.format) + " of " + std::to_string(c.value));
    EXPECT_EQ(Fmt(c.format, c.value), c.expected);
  }
}

// Supplies the records after the first one and counts the requests.
struct RecordSource {
  std::vector<std::string> lines;
  std::size_t next = 0;
  int requests = 0;
  NextRecord Callback() {
    return [this](std::string& record) {
      ++requests;
      if (next >= lines.size()) return false;
      record = lines[next++];
      return true;
    };
  }
};

// ---------------------------------------------------------------------------
// Compiling format texts

TEST(FormatCompile, ReadsRepeatCountsWidthsAndDigits) {
  const CompiledFormat f = CompileFormat("(3i4,2f12.2,i4,3f8.0)");
  ASSERT_EQ(f.items.size(), 4u);
  EXPECT_EQ(f.items[0].kind, FormatItem::Kind::I);
  EXPECT_EQ(f.items[0].repeat, 3);
  EXPECT_EQ(f.items[0].width, 4);
  EXPECT_EQ(f.items[1].kind, FormatItem::Kind::F);
  EXPECT_EQ(f.items[1].repeat, 2);
  EXPECT_EQ(f.items[1].width, 12);
  EXPECT_EQ(f.items[1].digits, 2);
  EXPECT_EQ(f.items[2].kind, FormatItem::Kind::I);
  EXPECT_EQ(f.items[2].repeat, 1);
  EXPECT_EQ(f.items[3].repeat, 3);
  EXPECT_EQ(f.items[3].width, 8);
  EXPECT_EQ(f.items[3].digits, 0);
  EXPECT_EQ(f.reversionStart, 0);
}

TEST(FormatCompile, KeepsPositionsAndLiterals) {
  const CompiledFormat f = CompileFormat("(10X,'    CPU Time:',F10.3,' seconds')");
  ASSERT_EQ(f.items.size(), 4u);
  EXPECT_EQ(f.items[0].kind, FormatItem::Kind::X);
  EXPECT_EQ(f.items[0].width, 10);
  EXPECT_EQ(f.items[1].kind, FormatItem::Kind::Literal);
  EXPECT_EQ(f.items[1].text, "    CPU Time:");
  EXPECT_EQ(f.items[2].kind, FormatItem::Kind::F);
  EXPECT_EQ(f.items[3].text, " seconds");
}

TEST(FormatCompile, ReadsExponentDigitsMinimumDigitsAndDLetter) {
  const CompiledFormat f = CompileFormat("(E14.5E3,I5.3,G12.4,D12.5,I7,A,A8)");
  ASSERT_EQ(f.items.size(), 7u);
  EXPECT_EQ(f.items[0].kind, FormatItem::Kind::E);
  EXPECT_EQ(f.items[0].width, 14);
  EXPECT_EQ(f.items[0].digits, 5);
  EXPECT_EQ(f.items[0].exponent, 3);
  EXPECT_EQ(f.items[1].digits, 3);
  EXPECT_EQ(f.items[2].kind, FormatItem::Kind::G);
  EXPECT_EQ(f.items[2].exponent, 0);
  EXPECT_EQ(f.items[3].kind, FormatItem::Kind::E);
  EXPECT_TRUE(f.items[3].dLetter);
  EXPECT_FALSE(f.items[0].dLetter);
  EXPECT_EQ(f.items[4].digits, 1);  // Iw means Iw.1
  EXPECT_EQ(f.items[5].kind, FormatItem::Kind::A);
  EXPECT_EQ(f.items[5].width, 0);
  EXPECT_EQ(f.items[6].width, 8);
}

TEST(FormatCompile, IsCaseInsensitiveAndIgnoresBlanksOutsideLiterals) {
  const CompiledFormat a = CompileFormat("( 2 i 3 , f 8 . 3 ,' a b ')");
  const CompiledFormat b = CompileFormat("(2I3,F8.3,' a b ')");
  ASSERT_EQ(a.items.size(), b.items.size());
  for (std::size_t k = 0; k < a.items.size(); ++k) {
    EXPECT_EQ(a.items[k].kind, b.items[k].kind);
    EXPECT_EQ(a.items[k].repeat, b.items[k].repeat);
    EXPECT_EQ(a.items[k].width, b.items[k].width);
    EXPECT_EQ(a.items[k].digits, b.items[k].digits);
    EXPECT_EQ(a.items[k].text, b.items[k].text);
  }
}

TEST(FormatCompile, MatchesGroupsAndRevertsToTheLastTopLevelGroup) {
  const CompiledFormat f = CompileFormat("(a,5(i5,3x))");
  ASSERT_EQ(f.items.size(), 5u);
  EXPECT_EQ(f.items[1].kind, FormatItem::Kind::GroupOpen);
  EXPECT_EQ(f.items[1].repeat, 5);
  EXPECT_EQ(f.items[1].match, 4);
  EXPECT_EQ(f.items[4].kind, FormatItem::Kind::GroupClose);
  EXPECT_EQ(f.items[4].match, 1);
  EXPECT_EQ(f.reversionStart, 1);

  const CompiledFormat nested = CompileFormat("(i2,2(a,3(i1)),i3,(x),i4)");
  // items: i2 ( a ( i1 ) ) i3 ( x ) i4, numbered 0 to 11
  ASSERT_EQ(nested.items.size(), 12u);
  EXPECT_EQ(nested.items[3].kind, FormatItem::Kind::GroupOpen);
  EXPECT_EQ(nested.items[3].match, 5);
  EXPECT_EQ(nested.items[1].match, 6);
  EXPECT_EQ(nested.reversionStart, 8);

  EXPECT_EQ(CompileFormat("(1X,2I5/3F10.4)").reversionStart, 0);
}

TEST(FormatCompile, DoubledQuoteInsideALiteralIsOneQuote) {
  const CompiledFormat f = CompileFormat("('it''s',\"q\"\"q\",'say \"hi\"')");
  ASSERT_EQ(f.items.size(), 3u);
  EXPECT_EQ(f.items[0].text, "it's");
  EXPECT_EQ(f.items[1].text, "q\"q");
  EXPECT_EQ(f.items[2].text, "say \"hi\"");
}

TEST(FormatCompile, SlashTakesARepeatCount) {
  const CompiledFormat f = CompileFormat("(i2,2/,i2//)");
  ASSERT_EQ(f.items.size(), 5u);
  EXPECT_EQ(f.items[1].kind, FormatItem::Kind::Slash);
  EXPECT_EQ(f.items[1].repeat, 2);
  EXPECT_EQ(f.items[3].repeat, 1);
  EXPECT_EQ(f.items[4].kind, FormatItem::Kind::Slash);
}

TEST(FormatCompile, RejectsMalformedText) {
  for (const char* text :
       {"",        "   ",    "i3",        "(i3",       "(i3,,i4)",  "(,i3)",   "(f8)",
        "(e8)",    "(i)",    "(a0)",      "(0i3)",     "(i3,0x)",   "(2'x')",  "(i3,'abc)",
        "(i3,q5)", "(i3.)",  "(f8.)",     "(e12.5e)",  "(i3) junk", "(i3))",   "(i5.6)",
        "(e0.3)",  "(2(i3)", "(d12.5e3)", "(e12.5e0)", "(3)",       "(5h ab)", "(f8.3.2)"}) {
    SCOPED_TRACE(text);
    EXPECT_THROW(CompileFormat(text), FormatTextError);
  }
}

// Valid Fortran, but not needed by this program's formats.
TEST(FormatCompile, RejectsDescriptorsThisProgramDoesNotUse) {
  for (const char* text : {"(i3,t5,i2)", "(tr2,i2)", "(1p,e12.5)", "(es12.5)", "(g0)", "(g0.3)",
                           "(l2)", "(z8)", "(i3,:,i3)", "(bn,i3)", "(sp,i3)"}) {
    SCOPED_TRACE(text);
    EXPECT_THROW(CompileFormat(text), FormatTextError);
  }
}

TEST(FormatCompile, RejectsGroupsNestedTooDeeply) {
  std::string text = "(";
  for (int k = 0; k < 40; ++k) text += "(";
  text += "i1";
  for (int k = 0; k < 40; ++k) text += ")";
  text += ")";
  EXPECT_THROW(CompileFormat(text), FormatTextError);
}

// gfortran accepts these at run time; so do we.
TEST(FormatCompile, AcceptsOmittedCommasAndATrailingComma) {
  EXPECT_EQ(Records("(1XI5)", {1, 2}), Lines({"     1", "     2"}));
  EXPECT_EQ(Records("(2(i3)i4)", {1, 2}), Lines({"  1  2"}));
  EXPECT_EQ(Records("(i3'x')", {1, 2}), Lines({"  1x", "  2x"}));
  EXPECT_EQ(Records("('x'i3)", {1, 2}), Lines({"x  1", "x  2"}));
  EXPECT_EQ(Records("(i3/i4)", {1, 2}), Lines({"  1", "   2"}));
  EXPECT_EQ(Records("(i3,)", {1, 2}), Lines({"  1", "  2"}));
  EXPECT_EQ(Records("(i2,x,i2)", {1, 2}), Lines({" 1  2"}));
  // Blanks are insignificant, so "i3 2x" is I32 followed by X.
  EXPECT_EQ(Records("(i3 2x, i3)", {1, 2}), Lines({"                               1   2"}));
}

// ---------------------------------------------------------------------------
// Writing integers

TEST(FormatWriteInteger, RightJustifiesAndFillsStarsWhenTooWide) {
  EXPECT_EQ(Fmt("(i5)", 42), "   42");
  EXPECT_EQ(Fmt("(i5)", -42), "  -42");
  EXPECT_EQ(Fmt("(i2)", 123), "**");
  EXPECT_EQ(Fmt("(i3)", -12), "-12");
  EXPECT_EQ(Fmt("(i2)", -12), "**");
  EXPECT_EQ(Fmt("(i1)", 0), "0");
  EXPECT_EQ(Fmt("(3i4)", 1, 2, 3), "   1   2   3");
}

TEST(FormatWriteInteger, MinimumDigitsPadWithZeros) {
  EXPECT_EQ(Fmt("(i5.3)", 7), "  007");
  EXPECT_EQ(Fmt("(i5.3)", -7), " -007");
  EXPECT_EQ(Fmt("(i4.3)", -7), "-007");
  EXPECT_EQ(Fmt("(i3.3)", -7), "***");
  EXPECT_EQ(Fmt("(i3.3)", 0), "000");
  EXPECT_EQ(Fmt("(i5.5)", 123), "00123");
  EXPECT_EQ(Fmt("(I5 .3)", 1), "  001");
}

TEST(FormatWriteInteger, ZeroMinimumDigitsWriteZeroAsBlanks) {
  EXPECT_EQ(Fmt("(i5.0)", 0), "     ");
  EXPECT_EQ(Fmt("(i5.0)", 3), "    3");
}

TEST(FormatWriteInteger, ZeroWidthTakesTheDigitsNeeded) {
  EXPECT_EQ(Fmt("(i0)", -15), "-15");
  EXPECT_EQ(Fmt("(i0)", 0), "0");
  EXPECT_EQ(Fmt("(i0.3)", 5), "005");
  EXPECT_EQ(Fmt("(i0.0)", 0), " ");
}

TEST(FormatWriteInteger, HandlesTheMostNegativeValue) {
  EXPECT_EQ(Fmt("(i20)", LLONG_MIN), "-9223372036854775808");
  EXPECT_EQ(Fmt("(i19)", LLONG_MIN), "*******************");
}

TEST(FormatWriteInteger, UnsignedCountsAreWritten) {
  const std::size_t count = 12;
  EXPECT_EQ(Fmt("(i4)", count), "  12");
  EXPECT_EQ(Fmt("(i4)", 7u), "   7");
}

// A real value under I is rounded to the nearest integer, halves away from
// zero (std::llround); values beyond the integer range fill the field with '*'.
TEST(FormatWriteInteger, RealValueIsRoundedToTheNearestInteger) {
  EXPECT_EQ(Fmt("(i5)", 2.5), "    3");
  EXPECT_EQ(Fmt("(i5)", -2.5), "   -3");
  EXPECT_EQ(Fmt("(i5)", 2.4999), "    2");
  EXPECT_EQ(Fmt("(i5)", 3.0f), "    3");
  EXPECT_EQ(Fmt("(i5)", 1e30), "*****");
  EXPECT_EQ(Fmt("(i5)", kNaN), "*****");
  EXPECT_EQ(Fmt("(i0)", -kInf), "*");
}

// ---------------------------------------------------------------------------
// Writing Fw.d

TEST(FormatWriteFixed, RoundsTheExactBinaryValueWithTiesToEven) {
  ExpectReals({
      {"(f5.2)", 0.125, " 0.12"},
      {"(f5.2)", 0.375, " 0.38"},
      {"(f3.0)", 2.5, " 2."},
      {"(f3.0)", 3.5, " 4."},
      {"(f3.0)", 0.5, " 0."},
      {"(f3.0)", 0.4, " 0."},
      {"(f5.2)", 1.005, " 1.00"},  // 1.00499999999999989...
      {"(f5.2)", 2.675, " 2.67"},
      {"(f5.1)", 0.05, "  0.1"},  // 0.05000000000000000277...
      {"(f5.1)", 0.25, "  0.2"},
      {"(f5.1)", 0.35, "  0.3"},
      {"(f12.4)", 123456.12345, " 123456.1234"},
      {"(f12.4)", 1234567.12345, "1234567.1235"},
  });
}

TEST(FormatWriteFixed, DropsTheLeadingZeroOnlyWhenTheFieldIsTooNarrow) {
  ExpectReals({
      {"(f4.3)", 0.5, ".500"},
      {"(f5.3)", 0.5, "0.500"},
      {"(f5.3)", -0.5, "-.500"},
      {"(f4.3)", -0.5, "****"},
      {"(f4.3)", 0.0, ".000"},
      {"(f3.3)", 0.0, "***"},
      {"(f3.1)", 0.25, "0.2"},
      {"(f2.1)", 0.25, ".2"},
      {"(f2.0)", 0.0, "0."},
      {"(f2.0)", 0.2, "0."},
      {"(f1.0)", 0.0, "*"},
      {"(f1.0)", 0.2, "*"},
  });
}

TEST(FormatWriteFixed, KeepsTheSignOfNegativeZeroAndOfValuesRoundingToZero) {
  ExpectReals({
      {"(f6.3)", -0.0001, "-0.000"},
      {"(f6.3)", -0.0, "-0.000"},
      {"(f6.3)", 0.0, " 0.000"},
      {"(f5.3)", -0.0001, "-.000"},
      {"(f4.3)", -0.0001, "****"},
      {"(f3.0)", -0.5, "-0."},
      {"(f3.0)", -0.4, "-0."},
      {"(f4.0)", -0.5, " -0."},
      {"(f4.0)", -0.4, " -0."},
      {"(f5.2)", -1e-10, "-0.00"},
      {"(f5.2)", 1e-10, " 0.00"},
      {"(f5.1)", -0.05, " -0.1"},
      {"(f5.1)", -0.04, " -0.0"},
      {"(f2.0)", -0.2, "**"},
  });
}

TEST(FormatWriteFixed, FillsStarsWhenTheValueDoesNotFit) {
  ExpectReals({
      {"(f5.0)", 12.0, "  12."},
      {"(f3.0)", 12.0, "12."},
      {"(f2.0)", 12.0, "**"},
      {"(f3.1)", 12.0, "***"},
      {"(f8.3)", 12345.678, "********"},
      {"(f9.3)", -12345.678, "*********"},
      {"(f10.3)", -12345.678, "-12345.678"},
      {"(f10.4)", 9.99995, "   10.0000"},
      {"(f6.4)", 9.99995, "******"},
      {"(f6.4)", 9.99996, "******"},
      {"(f10.3)", 1e20, "**********"},
      {"(f25.3)", 1e20, "100000000000000000000.000"},
      {"(f12.2)", 1e300, "************"},
  });
}

TEST(FormatWriteFixed, WritesTheExactDecimalExpansion) {
  EXPECT_EQ(Fmt("(f40.20)", 0.1), "                  0.10000000000000000555");
  EXPECT_EQ(Fmt("(f12.9)", 0.1f), " 0.100000001");
  EXPECT_EQ(Fmt("(f10.4)", 0.1f), "    0.1000");
}

TEST(FormatWriteFixed, WritesInfinityAndNaN) {
  ExpectReals({
      {"(f8.3)", kInf, "Infinity"},
      {"(f8.3)", -kInf, "    -Inf"},
      {"(f8.3)", kNaN, "     NaN"},
      {"(f3.3)", -kInf, "***"},
      {"(f2.3)", kInf, "**"},
      {"(f3.3)", kInf, "Inf"},
      {"(f4.3)", -kInf, "-Inf"},
      {"(f0.3)", kInf, "Inf"},
      {"(f0.3)", -kInf, "-Inf"},
      {"(f0.3)", kNaN, "NaN"},
  });
}

TEST(FormatWriteFixed, ZeroWidthTakesTheCharactersNeeded) {
  ExpectReals({
      {"(f0.3)", 1.5, "1.500"},
      {"(f0.2)", 0.5, ".50"},
      {"(f0.2)", 0.0, ".00"},
      {"(f0.2)", -0.5, "-.50"},
      {"(f0.2)", -0.0, "-.00"},
      {"(f0.0)", 0.0, "0."},
      {"(f0.0)", -0.4, "-0."},
      {"(f0.0)", 12.5, "12."},
      {"(f0.1)", 123.45, "123.5"},
      {"(f0.3)", 123456.0, "123456.000"},
  });
}

// An integer value under F, E or G (other than Gw.d, see below) is converted to double.
TEST(FormatWriteFixed, IntegerValueIsConvertedToReal) {
  EXPECT_EQ(Fmt("(f8.2)", 3), "    3.00");
  EXPECT_EQ(Fmt("(f8.2)", -3LL), "   -3.00");
  EXPECT_EQ(Fmt("(e12.5)", 12345), " 0.12345E+05");
}

// ---------------------------------------------------------------------------
// Writing Ew.d, Ew.dEe and Dw.d

TEST(FormatWriteExponential, WritesTheLeadingZeroWhenThereIsRoom) {
  ExpectReals({
      {"(e12.5)", 1.2345, " 0.12345E+01"},
      {"(e12.5)", -1.2345, "-0.12345E+01"},
      {"(e11.5)", 1.2345, "0.12345E+01"},
      {"(e11.5)", -1.2345, "-.12345E+01"},
      {"(e10.5)", 1.2345, ".12345E+01"},
      {"(e10.3)", 123456.0, " 0.123E+06"},
      {"(e10.3)", 0.000123456, " 0.123E-03"},
      {"(e7.1)", 3.5, "0.4E+01"},
      {"(e6.1)", 3.5, ".4E+01"},
      {"(e6.1)", -3.5, "******"},
      {"(e3.1)", 1.5, "***"},
  });
}

TEST(FormatWriteExponential, WritesZeroAndNegativeZero) {
  ExpectReals({
      {"(e12.5)", 0.0, " 0.00000E+00"},
      {"(e12.5)", -0.0, "-0.00000E+00"},
      {"(e14.5e4)", 0.0, " 0.00000E+0000"},
  });
}

TEST(FormatWriteExponential, RoundsTiesToEven) {
  ExpectReals({
      {"(e10.3)", 0.125, " 0.125E+00"},
      {"(e10.2)", 0.125, "  0.12E+00"},
      {"(e10.2)", 0.135, "  0.14E+00"},
      {"(e10.1)", 0.25, "   0.2E+00"},
      {"(e10.1)", 0.35, "   0.3E+00"},
      {"(e8.1)", 8.5, " 0.8E+01"},
      {"(e8.1)", 0.95, " 0.9E+00"},
      {"(e8.1)", 0.85, " 0.8E+00"},
  });
}

TEST(FormatWriteExponential, RoundingCarriesIntoTheExponent) {
  ExpectReals({
      {"(e12.5)", 9.999995, " 0.10000E+02"},
      {"(e12.5)", 9.9999951, " 0.10000E+02"},
      {"(e12.5)", 0.9999951, " 0.10000E+01"},
      {"(e12.5)", 0.999995, " 0.99999E+00"},  // 0.99999499999999995...
      {"(e12.5)", 0.9999949, " 0.99999E+00"},
      {"(e12.5)", 0.99999999e-99, " 0.10000E-98"},
      {"(e12.5)", 9.999999e-101, " 0.10000E-99"},
      {"(e12.5)", 9.99999e99, " 0.10000+101"},
      {"(e8.1)", 9.5, " 0.1E+02"},
      {"(e12.5e1)", 9.999999e8, "************"},
  });
}

TEST(FormatWriteExponential, ThreeDigitExponentsTakeThePlaceOfTheLetter) {
  ExpectReals({
      {"(e12.5)", 1e100, " 0.10000+101"},
      {"(e12.5)", 1e99, " 0.10000+100"},
      {"(e12.5)", 1.5e-100, " 0.15000E-99"},
      {"(e12.5)", 1.5e-99, " 0.15000E-98"},
      {"(e12.5)", -1.5e-100, "-0.15000E-99"},
      {"(e12.5)", 1.5e-300, " 0.15000-299"},
      {"(e12.5)", 1.7976931348623157e308, " 0.17977+309"},
      {"(e12.5)", 2.2250738585072014e-308, " 0.22251-307"},
      {"(e11.5)", -1.5e-300, "-.15000-299"},
      {"(e10.5)", -1.5e-300, "**********"},
  });
}

TEST(FormatWriteExponential, ExponentDigitsAreZeroPaddedOrOverflowToStars) {
  ExpectReals({
      {"(e14.5e3)", 1.5e-300, "  0.15000E-299"},
      {"(e14.5e3)", 1.5, "  0.15000E+001"},
      {"(e14.5e1)", 1.5, "    0.15000E+1"},
      {"(e14.5e1)", 1.5e10, "**************"},
      {"(e14.5e2)", 1.5e100, "**************"},
      {"(e14.5e4)", 1.5e100, " 0.15000E+0101"},
      {"(e13.5e3)", -1.5e-300, "-0.15000E-299"},
      {"(e12.5e3)", -1.5e-300, "-.15000E-299"},
      {"(e12.5e1)", 0.1, "  0.10000E+0"},
      {"(e12.5e1)", 0.01, "  0.10000E-1"},
      {"(e12.5e1)", 1.5e-9, "  0.15000E-8"},
      {"(e12.5e1)", 1.5e-10, "  0.15000E-9"},
  });
}

TEST(FormatWriteExponential, WritesManyDigitsExactly) {
  ExpectReals({
      {"(e25.17)", 0.1, "  0.10000000000000001E+00"},
      {"(e40.30)", 0.1, "    0.100000000000000005551115123126E+00"},
  });
}

TEST(FormatWriteExponential, WritesInfinityAndNaN) {
  ExpectReals({
      {"(e12.5)", kInf, "    Infinity"},
      {"(e12.5)", -kInf, "   -Infinity"},
      {"(e12.5)", kNaN, "         NaN"},
  });
}

TEST(FormatWriteExponential, DDescriptorWritesTheLetterD) {
  ExpectReals({
      {"(d12.5)", 1.5, " 0.15000D+01"},
      {"(d12.5)", 1.5e100, " 0.15000+101"},
  });
}

// gfortran refuses to write under Ew.0 ("scale factor out of range").
TEST(FormatWriteExponential, NoDigitsCannotBeWritten) {
  EXPECT_THROW(Fmt("(e10.0)", 3.5), FormatTextError);
  EXPECT_THROW(Fmt("(g10.0)", 3.5), FormatTextError);
}

// ---------------------------------------------------------------------------
// Writing Gw.d

TEST(FormatWriteGeneral, UsesTheFixedFormWithTrailingBlanksInRangeAndTheExponentFormOutside) {
  struct Row {
    double value;
    const char* g12_4;
    const char* g12_4e3;
    const char* g10_4;
    const char* g6_1;
  };
  const Row rows[] = {
      {0.0, "   0.000    ", "  0.000     ", " 0.000    ", "0.    "},
      {-0.0, "  -0.000    ", " -0.000     ", "-0.000    ", "******"},
      {1.0, "   1.000    ", "  1.000     ", " 1.000    ", "1.    "},
      {0.1, "  0.1000    ", " 0.1000     ", "0.1000    ", ".1    "},
      {0.09999, "  0.9999E-01", " 0.9999E-001", "0.9999E-01", ".1    "},
      {0.099999, "  0.1000    ", " 0.1000     ", "0.1000    ", ".1    "},
      {0.12345, "  0.1235    ", " 0.1235     ", "0.1235    ", ".1    "},
      {1.2345, "   1.234    ", "  1.234     ", " 1.234    ", "1.    "},
      {12.345, "   12.35    ", "  12.35     ", " 12.35    ", ".1E+02"},
      {123.45, "   123.5    ", "  123.5     ", " 123.5    ", ".1E+03"},
      {1234.5, "   1234.    ", "  1234.     ", " 1234.    ", ".1E+04"},
      {12345.0, "  0.1234E+05", " 0.1234E+005", "0.1234E+05", ".1E+05"},
      {99999.4, "  0.1000E+06", " 0.1000E+006", "0.1000E+06", ".1E+06"},
      {9999.95, "  0.1000E+05", " 0.1000E+005", "0.1000E+05", ".1E+05"},
      {123456.0, "  0.1235E+06", " 0.1235E+006", "0.1235E+06", ".1E+06"},
      {-1.5, "  -1.500    ", " -1.500     ", "-1.500    ", "******"},
      {-123.45, "  -123.5    ", " -123.5     ", "-123.5    ", "******"},
      {1e100, "  0.1000+101", " 0.1000E+101", "0.1000+101", ".1+101"},
      {1e-100, "  0.1000E-99", " 0.1000E-099", "0.1000E-99", ".1E-99"},
      {0.0999995, "  0.1000    ", " 0.1000     ", "0.1000    ", ".1    "},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.value);
    EXPECT_EQ(Fmt("(g12.4)", row.value), row.g12_4);
    EXPECT_EQ(Fmt("(g12.4e3)", row.value), row.g12_4e3);
    EXPECT_EQ(Fmt("(g10.4)", row.value), row.g10_4);
    EXPECT_EQ(Fmt("(g6.1)", row.value), row.g6_1);
  }
}

TEST(FormatWriteGeneral, ChoosesTheFormAtRoundingBoundariesAsGfortranDoes) {
  ExpectReals({
      {"(g8.1)", 0.95, "  1.    "},
      {"(g8.1)", 0.96, "  1.    "},
      {"(g8.1)", 9.5, " 0.1E+02"},
      {"(g8.1)", 9.6, " 0.1E+02"},
      {"(g8.1)", 8.5, "  8.    "},
      {"(g8.1)", 0.05, " 0.5E-01"},
      {"(g8.1)", 0.125, " 0.1    "},
      {"(g15.6)", 999999.5, "   0.100000E+07"},
      {"(g15.6)", 999998.5, "    999998.    "},
      {"(g15.6)", 0.1, "   0.100000    "},
      {"(g15.6)", 0.09999995, "   0.100000    "},
      {"(g15.6)", 0.09999994, "   0.999999E-01"},
      {"(g12.4)", 9.9996, "   10.00    "},
      {"(g12.4)", 9.9994, "   9.999    "},
      {"(g12.4)", 0.99996, "   1.000    "},
      {"(g14.3)", 100.5, "      100.    "},
      {"(g14.3)", 999.5, "     0.100E+04"},
      {"(g14.3)", 998.5, "      998.    "},
      {"(g14.1)", 2.5, "        2.    "},
      {"(g14.1)", 3.5, "        4.    "},
      {"(g14.1)", 0.25, "       0.2    "},
      {"(g14.1)", 0.35, "       0.3    "},
      {"(g14.2)", 2.5, "       2.5    "},
      {"(g14.6)", 2.5, "   2.50000    "},
  });
}

TEST(FormatWriteGeneral, FillsTheWholeFieldWithStarsWhenTheFixedPartDoesNotFit) {
  ExpectReals({
      {"(g3.1)", 1.0, "***"},
      {"(g4.1)", 1.0, "****"},
      {"(g5.1)", 1.0, "*****"},
      {"(g5.1)", -1.0, "*****"},
      {"(g5.1)", 0.0, "*****"},
      {"(g4.1)", 0.0, "****"},
      {"(g3.1)", 0.0, "***"},
      {"(g12.4)", -0.099999, " -0.1000    "},
      {"(g11.4)", -0.099999, "-0.1000    "},
      {"(g10.4)", -0.099999, "-.1000    "},
      {"(g10.4)", -1234.4, "-1234.    "},
      {"(g9.4)", -1234.4, "*********"},
  });
}

TEST(FormatWriteGeneral, ExponentDigitsSetTheTrailingBlanks) {
  ExpectReals({
      {"(g12.4e1)", 1.5, "    1.500   "},
      {"(g12.4e1)", 1.5e10, "************"},
      {"(g12.4e1)", 1.5e5, "   0.1500E+6"},
      {"(g12.4e2)", 1.5e100, "************"},
      {"(g12.4)", 1.5e-300, "  0.1500-299"},
      {"(g12.4)", kInf, "    Infinity"},
  });
}

// An integer under Gw.d is written as Iw, as Fortran does.
TEST(FormatWriteGeneral, IntegerValueIsWrittenAsAnIntegerField) {
  EXPECT_EQ(Fmt("(g12.4)", 42), "          42");
  EXPECT_EQ(Fmt("(g3.1)", 4242), "***");
}

// ---------------------------------------------------------------------------
// Writing text

TEST(FormatWriteText, TruncatesToTheLeftmostCharactersOrRightJustifies) {
  EXPECT_EQ(Fmt("(a4,a)", "abcdefg", "xy"), "abcdxy");
  EXPECT_EQ(Fmt("(a8,a)", "abcdefg", "xy"), " abcdefgxy");
  EXPECT_EQ(Fmt("(a,a3,a)", "", "xy", "|"), " xy|");
  EXPECT_EQ(Fmt("(2(A4,2X))", "ab", "cdefgh"), "  ab  cdef");
  const std::string owned = "owned";
  EXPECT_EQ(Fmt("(a,a)", owned, std::string_view("view")), "ownedview");
}

TEST(FormatWriteText, WrongValueKindsAreRejected) {
  EXPECT_THROW(Fmt("(i5)", "x"), std::invalid_argument);
  EXPECT_THROW(Fmt("(f8.3)", "x"), std::invalid_argument);
  EXPECT_THROW(Fmt("(e12.5)", "x"), std::invalid_argument);
  EXPECT_THROW(Fmt("(g12.5)", "x"), std::invalid_argument);
  EXPECT_THROW(Fmt("(a5)", 3), std::invalid_argument);
  EXPECT_THROW(Fmt("(a)", 3.5), std::invalid_argument);
}

// ---------------------------------------------------------------------------
// Records: literals, positions, '/', groups, reversion, end of values

TEST(FormatWriteRecords, LiteralsAndPositionsAroundValues) {
  EXPECT_EQ(Fmt("(10X,'    CPU Time:',F10.3,' seconds')", 1.5),
            "              CPU Time:     1.500 seconds");
  EXPECT_EQ(Fmt("('it''s',a,\"q\"\"q\")", "!"), "it's!q\"q");
  EXPECT_EQ(Fmt("(2(a,2(i1,'-')),'e')", "x", 1, 2, "y", 3, 4), "x1-2-y3-4-e");
  EXPECT_EQ(Fmt("(3habc)"), "abc");
  EXPECT_EQ(Fmt("(i3,3x,'x')", 1), "  1   x");
  EXPECT_EQ(Fmt("( 2 i 3 , f 8 . 3 )", 1, 2, 3.5), "  1  2   3.500");
  EXPECT_EQ(Fmt("(a,5(i5,3x),a)", "abc", 1, 2, 3, 4, 5, "z"),
            "abc    1       2       3       4       5   z");
}

TEST(FormatWriteRecords, PositionsAtTheEndOfARecordAreNotWritten) {
  EXPECT_EQ(Fmt("(i3,5x)", 1), "  1");
  EXPECT_EQ(Fmt("(3x)"), "");
  EXPECT_EQ(Records("(i2,2x/)", {1}), Lines({" 1", ""}));
  // An empty text value still writes the positions before it.
  EXPECT_EQ(Fmt("(i2,3x,a)", 1, ""), " 1   ");
  EXPECT_EQ(Fmt("(i2,3x,a,i2)", 1, "", 2), " 1    2");
}

TEST(FormatWriteRecords, StopAtTheFirstDataDescriptorWithoutAValue) {
  EXPECT_EQ(Fmt("(a,5(i5,3x))", "abc", 1, 2), "abc    1       2");
  EXPECT_EQ(Fmt("('a',i3,'b',i3,'c')", 1), "a  1b");
  EXPECT_EQ(Fmt("(10X,'    CPU Time:',F10.3,' seconds')"), "              CPU Time:");
  EXPECT_EQ(Fmt("(3x,'y',i3)"), "   y");
  EXPECT_EQ(Records("(i3)", {}), Lines({""}));
  EXPECT_EQ(Fmt("(i3,i3)", 1), "  1");
}

TEST(FormatWriteRecords, SlashesBeforeTheStoppingDescriptorStillStartRecords) {
  EXPECT_EQ(Records("('a',i3,'b',/,i3,'c')", {1}), Lines({"a  1b", ""}));
  EXPECT_EQ(Records("('a',i3,'b',/)", {1}), Lines({"a  1b", ""}));
  EXPECT_EQ(Records("('a',i3,'b',/,'x')", {1}), Lines({"a  1b", "x"}));
}

TEST(FormatWriteRecords, SlashesStartNewRecords) {
  EXPECT_EQ(Records("(i3/)", {1}), Lines({"  1", ""}));
  EXPECT_EQ(Records("(i3//i3)", {1, 2}), Lines({"  1", "", "  2"}));
  EXPECT_EQ(Records("(i2,2/,i2)", {1, 2}), Lines({" 1", "", " 2"}));
  EXPECT_EQ(Records("(1X,2I5/3F10.4)", {1, 2, 1.0, 2.0, 3.0}),
            Lines({"     1    2", "    1.0000    2.0000    3.0000"}));
}

TEST(FormatWriteRecords, ReversionRestartsAtTheLastTopLevelGroupWithItsRepeatCount) {
  EXPECT_EQ(Records("(i3,2(i2,1x))", {1, 2, 3, 4, 5, 6, 7}), Lines({"  1 2  3", " 4  5", " 6  7"}));
  EXPECT_EQ(Records("(i3,2(i2,1x),i4)", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}),
            Lines({"  1 2  3    4", " 5  6    7", " 8  9   10", "11 12"}));
  EXPECT_EQ(Records("(i3,3(2(i2),1x))", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}),
            Lines({"  1 2 3  4 5  6 7", " 8 9 1011 12"}));
  EXPECT_EQ(Records("((i2),i3)", {1, 2, 3, 4, 5}), Lines({" 1  2", " 3  4", " 5"}));
  EXPECT_EQ(Records("(i2,(i3,i4),i5)", {1, 2, 3, 4, 5, 6, 7, 8}),
            Lines({" 1  2   3    4", "  5   6    7", "  8"}));
  EXPECT_EQ(Records("(i2,(i3,/))", {1, 2, 3, 4}), Lines({" 1  2", "", "  3", "", "  4", ""}));
}

TEST(FormatWriteRecords, ReversionWithoutGroupsRestartsAtTheBeginning) {
  EXPECT_EQ(Records("(2i3)", {1, 2, 3, 4, 5}), Lines({"  1  2", "  3  4", "  5"}));
  EXPECT_EQ(Records("(1X,2I5/3F10.4)", {1, 2, 1.0, 2.0, 3.0, 4, 5, 6.0}),
            Lines({"     1    2", "    1.0000    2.0000    3.0000", "     4    5", "    6.0000"}));
}

TEST(FormatWriteRecords, FormatTextJoinsRecordsWithNewlines) {
  const FormatValue values[] = {1, 2, 3};
  EXPECT_EQ(FormatText("(i2)", values), " 1\n 2\n 3");
  EXPECT_EQ(Fmt("(i3/)", 1), "  1\n");
  // The slash before the stopping I2 still ends the record holding 3.
  EXPECT_EQ(FormatText("(i2/i2)", values), " 1\n 2\n 3\n");
}

// gfortran stops with "Insufficient data descriptors in format after reversion".
TEST(FormatWriteRecords, ValuesLeftForAFormatWithoutDataDescriptorsAreRejected) {
  EXPECT_THROW(Fmt("('abc')", 1), std::invalid_argument);
  EXPECT_THROW(Fmt("()", 1), std::invalid_argument);
  EXPECT_THROW(Fmt("(i2,(1x))", 1, 2), std::invalid_argument);
  EXPECT_EQ(Fmt("('abc')"), "abc");
  EXPECT_EQ(Fmt("()"), "");
}

// ---------------------------------------------------------------------------
// Reading fixed columns

ReadStatus ReadInt(std::string_view format, std::string_view record, int& value) {
  const ReadTarget targets[] = {&value};
  return ReadFormattedLine(format, record, targets);
}

ReadStatus ReadDouble(std::string_view format, std::string_view record, double& value) {
  const ReadTarget targets[] = {&value};
  return ReadFormattedLine(format, record, targets);
}

TEST(FormatReadColumns, IntegerFieldsIgnoreBlanksAndBlankFieldsAreZero) {
  const struct {
    const char* record;
    int value;
  } cases[] = {{"  12 ", 12}, {" 1 2 ", 12}, {"     ", 0}, {"-5   ", -5}, {" - 5 ", -5},
               {"+7", 7},     {" 0012", 12}, {"-0", 0},    {"", 0},       {"12   999", 12}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.record);
    int value = -999;
    EXPECT_EQ(ReadInt("(i5)", c.record, value), ReadStatus::Ok);
    EXPECT_EQ(value, c.value);
  }
}

TEST(FormatReadColumns, IntegerFieldsWithOtherCharactersAreBadValues) {
  for (const char* record :
       {"3.5", "1e2", "abc", "12-", "-    ", "+", "1,2", "x", "5 x", "1+2", "\t5", "1."}) {
    SCOPED_TRACE(record);
    int value = -999;
    EXPECT_EQ(ReadInt("(i5)", record, value), ReadStatus::BadValue);
    EXPECT_EQ(value, -999);
  }
}

TEST(FormatReadColumns, IntegerOverflowIsABadValue) {
  int value = -999;
  EXPECT_EQ(ReadInt("(i12)", "  2147483648", value), ReadStatus::BadValue);
  EXPECT_EQ(ReadInt("(i12)", " -2147483648", value), ReadStatus::Ok);
  EXPECT_EQ(value, INT_MIN);
  EXPECT_EQ(ReadInt("(i30)", "99999999999999999999999999", value), ReadStatus::BadValue);
}

TEST(FormatReadColumns, RealFieldsWithoutAPointHaveImpliedDecimals) {
  const struct {
    const char* record;
    double value;
  } cases[] = {{"12345", 12.345},       {"1 5", 0.015},   {"-1", -0.001},
               {"12345678", 12345.678}, {"15E2", 1.5},    {"  7", 0.007},
               {"-12345", -12.345},     {"00012", 0.012}, {"1d0", 0.001}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.record);
    double value = -999;
    EXPECT_EQ(ReadDouble("(f8.3)", c.record, value), ReadStatus::Ok);
    EXPECT_EQ(value, c.value);
  }
  double value = -999;
  EXPECT_EQ(ReadDouble("(f12.0)", "12345", value), ReadStatus::Ok);
  EXPECT_EQ(value, 12345.0);
  EXPECT_EQ(ReadDouble("(e12.4)", "12345", value), ReadStatus::Ok);
  EXPECT_EQ(value, 1.2345);
  EXPECT_EQ(ReadDouble("(f5.1)", "12345678", value), ReadStatus::Ok);
  EXPECT_EQ(value, 1234.5);  // only the first 5 columns belong to the field
}

TEST(FormatReadColumns, RealFieldsWithTheirOwnPointKeepIt) {
  const struct {
    const char* record;
    double value;
  } cases[] = {{"1.5", 1.5},   {"  1.5  ", 1.5}, {" 1 . 5 ", 1.5}, {"5.", 5.0},       {"+.5", 0.5},
               {"-1.5", -1.5}, {"0.1", 0.1},     {".5", 0.5},      {"12.345", 12.345}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.record);
    double value = -999;
    EXPECT_EQ(ReadDouble("(f8.3)", c.record, value), ReadStatus::Ok);
    EXPECT_EQ(value, c.value);
  }
}

TEST(FormatReadColumns, RealFieldsAcceptExponentForms) {
  const struct {
    const char* record;
    double value;
  } cases[] = {{"1.5E2", 150.0},  {"1.5D2", 150.0},   {"1.5e-2", 0.015},  {"1.5-3", 0.0015},
               {"1.5+3", 1500.0}, {"1.5 E 2", 150.0}, {"1.5d+02", 150.0}, {"1.5E+ 2", 150.0},
               {"-.5e1", -5.0},   {"1.e1", 10.0},     {"1e-2", 0.00001},  {"1.5e+3", 1500.0},
               {"-1.5-1", -0.15}, {"0e5", 0.0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.record);
    double value = -999;
    EXPECT_EQ(ReadDouble("(f8.3)", c.record, value), ReadStatus::Ok);
    EXPECT_EQ(value, c.value);
  }
}

TEST(FormatReadColumns, BlankOrSignOnlyRealFieldsAreZero) {
  for (const char* record : {"", "        ", "-", ".", "  +  "}) {
    SCOPED_TRACE(record);
    double value = -999;
    EXPECT_EQ(ReadDouble("(f8.3)", record, value), ReadStatus::Ok);
    EXPECT_EQ(value, 0.0);
  }
}

// "E5" and "++1" read as 0 in gfortran; a field with no digit before its
// exponent, or a second sign, is more likely damage than data, so they are bad here.
TEST(FormatReadColumns, RealFieldsWithBadCharactersAreBadValues) {
  for (const char* record : {"1.5E", "1.5x", "1.2.3", "1e2.5", "1E", "1-", "1,5", "x", "1a", "12e",
                             "1.5E-", "E5", "++1", "+-1", "1.5Q"}) {
    SCOPED_TRACE(record);
    double value = -999;
    EXPECT_EQ(ReadDouble("(f8.3)", record, value), ReadStatus::BadValue);
    EXPECT_EQ(value, -999);
  }
}

TEST(FormatReadColumns, RealFieldsAcceptInfinityAndNaN) {
  double value = 0;
  EXPECT_EQ(ReadDouble("(f8.3)", "inf", value), ReadStatus::Ok);
  EXPECT_EQ(value, kInf);
  EXPECT_EQ(ReadDouble("(f12.3)", " -Infinity", value), ReadStatus::Ok);
  EXPECT_EQ(value, -kInf);
  EXPECT_EQ(ReadDouble("(f8.3)", "nan", value), ReadStatus::Ok);
  EXPECT_TRUE(std::isnan(value));
  EXPECT_EQ(ReadDouble("(f8.3)", "info", value), ReadStatus::BadValue);
}

// gfortran stores Infinity for a value beyond the range; a data field that
// overflows is reported instead.
TEST(FormatReadColumns, OverflowIsABadValueAndUnderflowIsZero) {
  double value = -999;
  EXPECT_EQ(ReadDouble("(f8.3)", "1.5e400", value), ReadStatus::BadValue);
  EXPECT_EQ(ReadDouble("(f8.3)", "1e-400", value), ReadStatus::Ok);
  EXPECT_EQ(value, 0.0);
  float small = -999;
  const ReadTarget targets[] = {&small};
  EXPECT_EQ(ReadFormattedLine("(f8.3)", "9.99e307", targets), ReadStatus::BadValue);
  EXPECT_EQ(ReadFormattedLine("(f8.3)", "9.99e37", targets), ReadStatus::Ok);
  EXPECT_EQ(small, 9.99e37f);
}

// The decimal text is rounded once, to float precision, as gfortran reads a
// REAL: 1 + 2^-24 + tiny is just above the midpoint between 1 and the next float.
TEST(FormatReadColumns, FloatTargetsAreRoundedOnce) {
  float value = 0;
  const ReadTarget targets[] = {&value};
  EXPECT_EQ(ReadFormattedLine("(f30.0)", "1.0000000596046447753906251", targets), ReadStatus::Ok);
  EXPECT_EQ(value, std::nextafter(1.0f, 2.0f));
  EXPECT_EQ(ReadFormattedLine("(f8.3)", "0.1", targets), ReadStatus::Ok);
  EXPECT_EQ(value, 0.1f);
}

// An I field may fill a real target; a real field fills an integer target only
// with a whole number.
TEST(FormatReadColumns, IntegerAndRealFieldsConvertBetweenTargetKinds) {
  double real = 0;
  EXPECT_EQ(ReadDouble("(i5)", "   42", real), ReadStatus::Ok);
  EXPECT_EQ(real, 42.0);
  int whole = 0;
  EXPECT_EQ(ReadInt("(f8.0)", "    12.", whole), ReadStatus::Ok);
  EXPECT_EQ(whole, 12);
  EXPECT_EQ(ReadInt("(f8.0)", "    12.5", whole), ReadStatus::BadValue);
  EXPECT_EQ(ReadInt("(f8.0)", "", whole), ReadStatus::Ok);
  EXPECT_EQ(whole, 0);
}

TEST(FormatReadColumns, ShortRecordsArePaddedWithBlanks) {
  int i = -1;
  std::string s = "-";
  double x = -1;
  std::string s2 = "-";
  const ReadTarget targets[] = {&i, &s, &x, &s2};
  EXPECT_EQ(ReadFormattedLine("(i4,1x,a5,f8.2,a3)", "  12 ab", targets), ReadStatus::Ok);
  EXPECT_EQ(i, 12);
  EXPECT_EQ(s, "ab");
  EXPECT_EQ(x, 0.0);
  EXPECT_EQ(s2, "");
  EXPECT_EQ(ReadInt("(20x,i3)", "  12 ab", i), ReadStatus::Ok);
  EXPECT_EQ(i, 0);
}

TEST(FormatReadColumns, TextFieldsTakeTheirColumnsWithoutTrailingBlanks) {
  std::string s;
  const ReadTarget one[] = {&s};
  EXPECT_EQ(ReadFormattedLine("(a3)", "  12 ab", one), ReadStatus::Ok);
  EXPECT_EQ(s, "  1");
  EXPECT_EQ(ReadFormattedLine("(a)", "  12 ab   ", one), ReadStatus::Ok);
  EXPECT_EQ(s, "  12 ab");
  std::string a, b;
  int n = 0;
  const ReadTarget three[] = {&a, &n, &b};
  EXPECT_EQ(ReadFormattedLine("(a4,i3,2x,a)", "ab   42  rest of it  ", three), ReadStatus::Ok);
  EXPECT_EQ(a, "ab");
  EXPECT_EQ(n, 42);
  EXPECT_EQ(b, "rest of it");
}

TEST(FormatReadColumns, TypicalDataLine) {
  int h = 0, k = 0, l = 0, m = 0;
  double a = 0, b = 0, c = 0, d = 0, e = 0;
  const ReadTarget targets[] = {&h, &k, &l, &a, &b, &m, &c, &d, &e};
  EXPECT_EQ(
      ReadFormattedLine("(3i4,2f12.2,i4,3f8.0)",
                        "   1  -2   3      123.45       -6789   2    1.5     250  -3.E-2", targets),
      ReadStatus::Ok);
  EXPECT_EQ(h, 1);
  EXPECT_EQ(k, -2);
  EXPECT_EQ(l, 3);
  EXPECT_EQ(a, 123.45);
  EXPECT_EQ(b, -67.89);
  EXPECT_EQ(m, 2);
  EXPECT_EQ(c, 1.5);
  EXPECT_EQ(d, 250.0);
  EXPECT_EQ(e, -0.03);
}

TEST(FormatReadColumns, SlashMovesToTheNextRecord) {
  RecordSource source{{"  2", "  3"}};
  int i = -1, j = -1;
  const ReadTarget targets[] = {&i, &j};
  EXPECT_EQ(ReadFormatted(CompileFormat("(i3/i3)"), "  1", source.Callback(), targets),
            ReadStatus::Ok);
  EXPECT_EQ(i, 1);
  EXPECT_EQ(j, 2);
  EXPECT_EQ(source.requests, 1);
}

TEST(FormatReadColumns, SlashWithoutARecordIsEndOfRecords) {
  int i = -1, j = -1;
  const ReadTarget targets[] = {&i, &j};
  EXPECT_EQ(ReadFormattedLine("(i3/i3)", "  1", targets), ReadStatus::EndOfRecords);
  EXPECT_EQ(i, 1);
  EXPECT_EQ(j, -1);
  // A trailing slash is processed before the read ends, as in gfortran.
  RecordSource empty;
  const ReadTarget first[] = {&i};
  EXPECT_EQ(ReadFormatted(CompileFormat("(i3/)"), "  7", empty.Callback(), first),
            ReadStatus::EndOfRecords);
  EXPECT_EQ(i, 7);
}

TEST(FormatReadColumns, ReversionContinuesInTheNextRecord) {
  RecordSource source{{"  3  4", "  5", "  9"}};
  int v[5] = {-1, -1, -1, -1, -1};
  const ReadTarget targets[] = {&v[0], &v[1], &v[2], &v[3], &v[4]};
  EXPECT_EQ(ReadFormatted(CompileFormat("(2i3)"), "  1  2", source.Callback(), targets),
            ReadStatus::Ok);
  EXPECT_EQ(v[0], 1);
  EXPECT_EQ(v[1], 2);
  EXPECT_EQ(v[2], 3);
  EXPECT_EQ(v[3], 4);
  EXPECT_EQ(v[4], 5);
  EXPECT_EQ(source.next, 2u);  // "  9" is left for the next read

  RecordSource grouped{{" 21 22", " 31"}};
  int w[5] = {0, 0, 0, 0, 0};
  const ReadTarget five[] = {&w[0], &w[1], &w[2], &w[3], &w[4]};
  EXPECT_EQ(ReadFormatted(CompileFormat("(i2,1x,(2i3))"), " 1 11 12", grouped.Callback(), five),
            ReadStatus::Ok);
  EXPECT_EQ(w[0], 1);
  EXPECT_EQ(w[1], 11);
  EXPECT_EQ(w[2], 12);
  EXPECT_EQ(w[3], 21);
  EXPECT_EQ(w[4], 22);
  EXPECT_EQ(grouped.next, 1u);
}

TEST(FormatReadColumns, ReversionWithoutARecordIsEndOfRecords) {
  int i = 0, j = -1;
  const ReadTarget targets[] = {&i, &j};
  EXPECT_EQ(ReadFormattedLine("(i3)", "  1  2", targets), ReadStatus::EndOfRecords);
  EXPECT_EQ(i, 1);
  EXPECT_EQ(j, -1);
}

TEST(FormatReadColumns, BadValueStopsTheRead) {
  int i = -1, j = -1;
  const ReadTarget targets[] = {&i, &j};
  EXPECT_EQ(ReadFormattedLine("(2i3)", " x   2", targets), ReadStatus::BadValue);
  EXPECT_EQ(i, -1);
  EXPECT_EQ(j, -1);
}

TEST(FormatReadColumns, CarriageReturnAtTheEndOfARecordIsIgnored) {
  std::string s;
  int i = 0;
  const ReadTarget targets[] = {&i, &s};
  EXPECT_EQ(ReadFormattedLine("(i5,a)", "   12abc\r", targets), ReadStatus::Ok);
  EXPECT_EQ(i, 12);
  EXPECT_EQ(s, "abc");
}

TEST(FormatReadColumns, MisusedFormatsAndTargetsAreRejected) {
  int i = 0;
  std::string s;
  const ReadTarget text[] = {&s};
  const ReadTarget number[] = {&i};
  EXPECT_THROW(ReadFormattedLine("(i5)", "12", text), std::invalid_argument);
  EXPECT_THROW(ReadFormattedLine("(f5.1)", "12", text), std::invalid_argument);
  EXPECT_THROW(ReadFormattedLine("(a5)", "12", number), std::invalid_argument);
  EXPECT_THROW(ReadFormattedLine("(i2,'x',i2)", " 1x 2", number), std::invalid_argument);
  EXPECT_THROW(ReadFormattedLine("(i0)", "12", number), std::invalid_argument);
  EXPECT_THROW(ReadFormattedLine("('x')", "12", number), std::invalid_argument);
}

// ---------------------------------------------------------------------------
// List-directed reading

struct ThreeInts {
  int v[3] = {-1, -1, -1};
  ReadStatus Read(std::string_view record) {
    const ReadTarget targets[] = {&v[0], &v[1], &v[2]};
    return ReadListLine(record, targets);
  }
  ReadStatus ReadFrom(std::string_view record, RecordSource& source) {
    const ReadTarget targets[] = {&v[0], &v[1], &v[2]};
    return ReadList(record, source.Callback(), targets);
  }
};

struct ListIntCase {
  const char* record;
  ReadStatus status;
  int a, b, c;
};

void ExpectListInts(std::initializer_list<ListIntCase> cases) {
  for (const ListIntCase& c : cases) {
    SCOPED_TRACE(c.record);
    ThreeInts t;
    EXPECT_EQ(t.Read(c.record), c.status);
    EXPECT_EQ(t.v[0], c.a);
    EXPECT_EQ(t.v[1], c.b);
    EXPECT_EQ(t.v[2], c.c);
  }
}

TEST(FormatReadList, ValuesAreSeparatedByBlanksTabsOrOneComma) {
  ExpectListInts({
      {"1 2 3", ReadStatus::Ok, 1, 2, 3},
      {"1,2,3", ReadStatus::Ok, 1, 2, 3},
      {"1 , 2 , 3", ReadStatus::Ok, 1, 2, 3},
      {"1\t2\t3", ReadStatus::Ok, 1, 2, 3},
      {"  +4 -5 6", ReadStatus::Ok, 4, -5, 6},
      {"4,5 6,", ReadStatus::Ok, 4, 5, 6},
      {"1 2 3 4", ReadStatus::Ok, 1, 2, 3},
  });
}

TEST(FormatReadList, EmptyFieldsBetweenCommasLeaveTargetsUnchanged) {
  ExpectListInts({
      {"1,,3", ReadStatus::Ok, 1, -1, 3},
      {",2,3", ReadStatus::Ok, -1, 2, 3},
      {"1,  ,3", ReadStatus::Ok, 1, -1, 3},
      {"1,2,,", ReadStatus::Ok, 1, 2, -1},
  });
}

TEST(FormatReadList, RepeatCountsRepeatValuesOrNulls) {
  ExpectListInts({
      {"2*5 7", ReadStatus::Ok, 5, 5, 7},
      {"3*9", ReadStatus::Ok, 9, 9, 9},
      {"5*9", ReadStatus::Ok, 9, 9, 9},
      {"2* 7", ReadStatus::Ok, -1, -1, 7},
      {"2*,3", ReadStatus::Ok, -1, -1, 3},
      {"1*,8", ReadStatus::EndOfRecords, -1, 8, -1},
      {"0*5 1 2", ReadStatus::BadValue, -1, -1, -1},
  });
}

TEST(FormatReadList, SlashEndsTheListLeavingTheRestUnchanged) {
  ExpectListInts({
      {"1 /", ReadStatus::Ok, 1, -1, -1},
      {"1 2/ 9", ReadStatus::Ok, 1, 2, -1},
      {"/ 1 2 3", ReadStatus::Ok, -1, -1, -1},
      {"1,/", ReadStatus::Ok, 1, -1, -1},
  });
}

TEST(FormatReadList, RunningOutOfValuesInOneRecordIsEndOfRecords) {
  ExpectListInts({
      {"1 2", ReadStatus::EndOfRecords, 1, 2, -1},
      {"1,2,", ReadStatus::EndOfRecords, 1, 2, -1},
      {"", ReadStatus::EndOfRecords, -1, -1, -1},
  });
}

TEST(FormatReadList, IntegerTargetsRejectOtherValues) {
  ExpectListInts({
      {"3.5 1 2", ReadStatus::BadValue, -1, -1, -1},
      {"1e2 1 2", ReadStatus::BadValue, -1, -1, -1},
      {"a 2 3", ReadStatus::BadValue, -1, -1, -1},
      {"2147483648 1 2", ReadStatus::BadValue, -1, -1, -1},
      {"\"1\" 2", ReadStatus::BadValue, -1, -1, -1},
      {"1 2 x", ReadStatus::BadValue, 1, 2, -1},
  });
}

TEST(FormatReadList, ValuesContinueOnFollowingRecords) {
  {
    RecordSource source{{"2", "3"}};
    ThreeInts t;
    EXPECT_EQ(t.ReadFrom("1,", source), ReadStatus::Ok);
    EXPECT_EQ(t.v[0], 1);
    EXPECT_EQ(t.v[1], 2);
    EXPECT_EQ(t.v[2], 3);
  }
  {
    // A comma at the start of the next record closes the value before it.
    RecordSource source{{",", "3"}};
    ThreeInts t;
    EXPECT_EQ(t.ReadFrom("1", source), ReadStatus::EndOfRecords);
    EXPECT_EQ(t.v[0], 1);
    EXPECT_EQ(t.v[1], 3);
    EXPECT_EQ(t.v[2], -1);
  }
  {
    RecordSource source{{",3", "3"}};
    ThreeInts t;
    EXPECT_EQ(t.ReadFrom("1,", source), ReadStatus::Ok);
    EXPECT_EQ(t.v[0], 1);
    EXPECT_EQ(t.v[1], -1);
    EXPECT_EQ(t.v[2], 3);
  }
  {
    RecordSource source{{"", "3 4"}};
    ThreeInts t;
    EXPECT_EQ(t.ReadFrom("1", source), ReadStatus::Ok);
    EXPECT_EQ(t.v[0], 1);
    EXPECT_EQ(t.v[1], 3);
    EXPECT_EQ(t.v[2], 4);
  }
}

TEST(FormatReadList, NoRecordIsFetchedOnceTheTargetsAreFilled) {
  RecordSource source{{"4 5 6"}};
  ThreeInts t;
  EXPECT_EQ(t.ReadFrom("1 2 3", source), ReadStatus::Ok);
  EXPECT_EQ(source.requests, 0);
  RecordSource more{{"3 4"}};
  ThreeInts u;
  EXPECT_EQ(u.ReadFrom("1 2", more), ReadStatus::Ok);
  EXPECT_EQ(more.requests, 1);
  EXPECT_EQ(u.v[2], 3);
}

struct ListRealCase {
  const char* record;
  ReadStatus status;
  double a, b;
};

TEST(FormatReadList, RealValues) {
  const ListRealCase cases[] = {
      {"1.5 2", ReadStatus::Ok, 1.5, 2.0},           {"1.5D2 -3e-1", ReadStatus::Ok, 150.0, -0.3},
      {"1.5-3 2", ReadStatus::Ok, 0.0015, 2.0},      {"5 .5", ReadStatus::Ok, 5.0, 0.5},
      {"2*0.25", ReadStatus::Ok, 0.25, 0.25},        {"1.5,,", ReadStatus::Ok, 1.5, -1.0},
      {"1.5x 2", ReadStatus::BadValue, -1.0, -1.0},  {". 2", ReadStatus::BadValue, -1.0, -1.0},
      {"- 2", ReadStatus::BadValue, -1.0, -1.0},     {"1.5e 2", ReadStatus::BadValue, -1.0, -1.0},
      {"'1.5' 2", ReadStatus::BadValue, -1.0, -1.0},
  };
  for (const ListRealCase& c : cases) {
    SCOPED_TRACE(c.record);
    double a = -1, b = -1;
    const ReadTarget targets[] = {&a, &b};
    EXPECT_EQ(ReadListLine(c.record, targets), c.status);
    EXPECT_EQ(a, c.a);
    EXPECT_EQ(b, c.b);
  }
  double a = 0, b = 0;
  const ReadTarget targets[] = {&a, &b};
  EXPECT_EQ(ReadListLine("inf nan", targets), ReadStatus::Ok);
  EXPECT_EQ(a, kInf);
  EXPECT_TRUE(std::isnan(b));
  float f = 0;
  const ReadTarget single[] = {&f};
  EXPECT_EQ(ReadListLine("1.0000000596046447753906251", single), ReadStatus::Ok);
  EXPECT_EQ(f, std::nextafter(1.0f, 2.0f));
}

struct ListTextCase {
  const char* record;
  const char* a;
  const char* b;
};

TEST(FormatReadList, TextTargetsTakeQuotedStringsOrBareWords) {
  const ListTextCase cases[] = {
      {"abc def", "abc", "def"},
      {"'it''s a' b", "it's a", "b"},
      {"\"q x\" \"y\"", "q x", "y"},
      {"abc,def", "abc", "def"},
      {"123 4", "123", "4"},
      {"abc/def x", "abc", "-"},
      {"2*xy", "xy", "xy"},
      {",b", "-", "b"},
      {"abcdefghijklmn z", "abcdefghijklmn", "z"},
      {"2*'a b'", "a b", "a b"},
  };
  for (const ListTextCase& c : cases) {
    SCOPED_TRACE(c.record);
    std::string a = "-", b = "-";
    const ReadTarget targets[] = {&a, &b};
    EXPECT_EQ(ReadListLine(c.record, targets), ReadStatus::Ok);
    EXPECT_EQ(a, c.a);
    EXPECT_EQ(b, c.b);
  }
}

TEST(FormatReadList, QuotedStringsMayContinueOnTheNextRecord) {
  RecordSource source{{"def' 5"}};
  std::string s;
  int n = 0;
  const ReadTarget targets[] = {&s, &n};
  EXPECT_EQ(ReadList("'abc", source.Callback(), targets), ReadStatus::Ok);
  EXPECT_EQ(s, "abcdef");
  EXPECT_EQ(n, 5);
  std::string t;
  const ReadTarget one[] = {&t};
  EXPECT_EQ(ReadListLine("'abc", one), ReadStatus::EndOfRecords);
  EXPECT_EQ(ReadListLine("'abc'def", one), ReadStatus::BadValue);
}

TEST(FormatReadList, MixedTargets) {
  std::string name;
  int count = 0;
  double x = 0;
  float y = 0;
  const ReadTarget targets[] = {&name, &count, &x, &y};
  EXPECT_EQ(ReadListLine("  'Si 1'  , 12, 0.25 , 1.5E-3\r", targets), ReadStatus::Ok);
  EXPECT_EQ(name, "Si 1");
  EXPECT_EQ(count, 12);
  EXPECT_EQ(x, 0.25);
  EXPECT_EQ(y, 1.5e-3f);
}

}  // namespace
}  // namespace corvinet
