// Tests of the field-mask scanner: fields, descriptors, values, and the caret reports of bad lines.
#include "io/field_reader.h"

#include <gtest/gtest.h>

#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

struct Scan {
  std::string line;
  std::string format;
  int position = 0;
  int lineNumber = 1;
  int error = 0;
};

// Scans a given line (no file) under the mask.
Scan ScanLine(Job& job, const std::string& text, const std::string& maskText) {
  Scan s;
  s.line = text;
  std::string mask = maskText;
  FindFMT(job, 0, s.line, mask, s.format, s.position, s.lineNumber, s.error);
  return s;
}

template <typename... T>
void ReadValues(const Scan& s, T*... targets) {
  const ReadTarget list[] = {ReadTarget(targets)...};
  ASSERT_NE(ReadFormattedLine(s.format, s.line, list), ReadStatus::BadValue) << s.format;
}

TEST(FieldReader, ShortLineReadsMissingFieldsAsZero) {
  CapturedJob job;
  Scan s = ScanLine(*job, "1 2 3", "iiiii");
  EXPECT_EQ(s.error, 0);
  EXPECT_EQ(s.format, "(I1,I2,I2,I1,I1)");
  int a = -1, b = -1, c = -1, d = -1, e = -1;
  ReadValues(s, &a, &b, &c, &d, &e);
  EXPECT_EQ(a, 1);
  EXPECT_EQ(b, 2);
  EXPECT_EQ(c, 3);
  EXPECT_EQ(d, 0);
  EXPECT_EQ(e, 0);
}

TEST(FieldReader, ExponentRealFieldSpansItsLeadingBlanks) {
  CapturedJob job;
  Scan s = ScanLine(*job, "  -12.50E-2 7", "fi");
  EXPECT_EQ(s.error, 0);
  // The first field runs from column 1 to the end of the number, the second
  // takes its separating blank.
  EXPECT_EQ(s.format, "(F11.0,I2)");
  float x = 0;
  int n = 0;
  ReadValues(s, &x, &n);
  EXPECT_FLOAT_EQ(x, -0.125f);
  EXPECT_EQ(n, 7);
}

TEST(FieldReader, RealInIntegerFieldStopsWithCaretUnderTheDot) {
  CapturedJob job;
  EXPECT_THROW(ScanLine(*job, "1.5 2", "ii"), ProcessStop);
  const auto lines = testing::SplitLines(job.Console());
  ASSERT_GE(lines.size(), 4u);
  EXPECT_EQ(lines[0], "FindFMT: integer field found real !");
  EXPECT_EQ(lines[1], "\"1.5 2\"");
  // The dot stands in column 3 of the quoted line; so does the caret.
  EXPECT_EQ(lines[2], "  ^----");
  EXPECT_EQ(lines[2].find('^'), lines[1].find('.'));
  EXPECT_NE(job.Console().find(" => Please check your input file at line: 1 !"), std::string::npos);
}

TEST(FieldReader, CaretFollowsTheBadColumnFurtherRight) {
  CapturedJob job;
  EXPECT_THROW(ScanLine(*job, "10 20 3x", "iii"), ProcessStop);
  const auto lines = testing::SplitLines(job.Console());
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(lines[0], "FindFMT: invalid character in a numeric field !");
  EXPECT_EQ(lines[2], " -------^");
  EXPECT_EQ(lines[2].find('^'), lines[1].find('x'));
}

TEST(FieldReader, SignStartsANewIntegerField) {
  CapturedJob job;
  Scan s = ScanLine(*job, "12-3", "ii");
  EXPECT_EQ(s.error, 0);
  int a = 0, b = 0;
  ReadValues(s, &a, &b);
  EXPECT_EQ(a, 12);
  EXPECT_EQ(b, -3);
}

TEST(FieldReader, SignStartsANewRealFieldUnlessBehindAnExponent) {
  CapturedJob job;
  Scan s = ScanLine(*job, "12-3", "ff");
  float a = 0, b = 0;
  ReadValues(s, &a, &b);
  EXPECT_FLOAT_EQ(a, 12.0f);
  EXPECT_FLOAT_EQ(b, -3.0f);
  Scan t = ScanLine(*job, "1.0E-3-2", "ff");
  EXPECT_EQ(t.error, 0);
  ReadValues(t, &a, &b);
  EXPECT_FLOAT_EQ(a, 0.001f);
  EXPECT_FLOAT_EQ(b, -2.0f);
  Scan u = ScanLine(*job, "1.5-2.5", "ff");
  ReadValues(u, &a, &b);
  EXPECT_FLOAT_EQ(a, 1.5f);
  EXPECT_FLOAT_EQ(b, -2.5f);
}

TEST(FieldReader, CommaIsAnInvalidCharacter) {
  CapturedJob job;
  EXPECT_THROW(ScanLine(*job, "1,2", "ii"), ProcessStop);
  const auto lines = testing::SplitLines(job.Console());
  EXPECT_EQ(lines[0], "FindFMT: invalid character in a numeric field !");
  EXPECT_EQ(lines[2].find('^'), lines[1].find(','));
}

TEST(FieldReader, TextFieldsTakeWordsUpToTheirLength) {
  CapturedJob job;
  Scan s = ScanLine(*job, "Fe+3 Ni 3.5", "44f");
  EXPECT_EQ(s.error, 0);
  std::string a, b;
  float x = 0;
  ReadValues(s, &a, &b, &x);
  EXPECT_EQ(a, "Fe+3");
  EXPECT_EQ(b, "Ni");
  EXPECT_FLOAT_EQ(x, 3.5f);
}

TEST(FieldReader, WordLongerThanItsFieldLeavesNoSeparator) {
  CapturedJob job;
  EXPECT_THROW(ScanLine(*job, "Fe+3x 2.0", "4f"), ProcessStop);
  const auto lines = testing::SplitLines(job.Console());
  EXPECT_EQ(lines[0], "FindFMT: separator missing !");
  EXPECT_EQ(lines[2].find('^'), lines[1].find('x'));
}

TEST(FieldReader, TabSeparatesNumbers) {
  CapturedJob job;
  Scan s = ScanLine(*job, "15\t27", "ii");
  EXPECT_EQ(s.error, 0);
  int a = 0, b = 0;
  ReadValues(s, &a, &b);
  EXPECT_EQ(a, 15);
  EXPECT_EQ(b, 27);
}

TEST(FieldReader, TabAsFirstCharacterOfLaterFieldBecomesBlank) {
  CapturedJob job;
  Scan s = ScanLine(*job, "1\t2", "ii");
  EXPECT_EQ(s.error, 0);
  EXPECT_EQ(s.line, "1 2");
}

// A leading tab used to end the first field before it began: every field of
// the line then read 0.
TEST(FieldReader, TabBeforeTheFirstFieldCountsAsABlank) {
  CapturedJob job;
  Scan s = ScanLine(*job, "\t1", "i");
  EXPECT_EQ(s.error, 0);
  EXPECT_EQ(s.line, " 1");
  int a = 0;
  ReadValues(s, &a);
  EXPECT_EQ(a, 1);
  EXPECT_EQ(job.Console(), "");
}

TEST(FieldReader, TabsBeforeAndBetweenFieldsReadAsBlanks) {
  CapturedJob job;
  Scan s = ScanLine(*job, "\t\t12\t \t-3.5\t\tABC\t7", "if3i");
  EXPECT_EQ(s.error, 0);
  int a = 0, d = 0;
  float b = 0;
  std::string c;
  ReadValues(s, &a, &b, &c, &d);
  EXPECT_EQ(a, 12);
  EXPECT_FLOAT_EQ(b, -3.5f);
  EXPECT_EQ(c, "ABC");
  EXPECT_EQ(d, 7);
}

TEST(FieldReader, TabAfterASignIsAnIncompleteNumber) {
  CapturedJob job;
  Scan s;
  s.line = "1 -\t2";
  std::string mask = "ii";
  EXPECT_THROW(FindFMT(*job, 0, s.line, mask, s.format, s.position, s.lineNumber, s.error),
               ProcessStop);
  EXPECT_EQ(testing::SplitLines(job.Console())[0], "FindFMT: incomplete number !");
}

TEST(FieldReader, ExclamationInColumnTwoIsNoComment) {
  ScratchDir dir;
  dir.Write("c.txt", " !not a comment\n");
  CapturedJob job;
  ASSERT_TRUE(OpenUnit(job->files.units[1], "c.txt", OpenStatus::Old));
  int lineNumber = 1;
  int n = 0;
  EXPECT_THROW(ReadMaskedLine(*job, 1, "i", lineNumber, {&n}), ProcessStop);
  EXPECT_NE(job.Console().find("FindFMT: invalid character in a numeric field !"),
            std::string::npos);
}

TEST(FieldReader, CommentAndBlankLinesAreSkippedAndCounted) {
  ScratchDir dir;
  dir.Write("c.txt", "! head\n1\n\n! remark\n   \n2\n");
  CapturedJob job;
  ASSERT_TRUE(OpenUnit(job->files.units[1], "c.txt", OpenStatus::Old));
  int lineNumber = 0;
  int n = 0;
  ReadMaskedLine(*job, 1, "i", lineNumber, {&n});
  EXPECT_EQ(n, 1);
  EXPECT_EQ(lineNumber, 2);
  ReadMaskedLine(*job, 1, "i", lineNumber, {&n});
  EXPECT_EQ(n, 2);
  EXPECT_EQ(lineNumber, 6);
}

TEST(FieldReader, ErrorReportNamesTheLineOfTheFile) {
  ScratchDir dir;
  dir.Write("c.txt", "1\n! remark\n\n2.5\n");
  CapturedJob job;
  ASSERT_TRUE(OpenUnit(job->files.units[1], "c.txt", OpenStatus::Old));
  int lineNumber = 0;
  int n = 0;
  ReadMaskedLine(*job, 1, "i", lineNumber, {&n});
  EXPECT_THROW(ReadMaskedLine(*job, 1, "i", lineNumber, {&n}), ProcessStop);
  EXPECT_NE(job.Console().find(" => Please check your input file at line: 4 !"), std::string::npos);
}

TEST(FieldReader, EndOfControlFileEndsTheProcessInSpiteOfTheWords) {
  ScratchDir dir;
  dir.Write("c.txt", "! only a comment\n");
  CapturedJob job;
  ASSERT_TRUE(OpenUnit(job->files.units[1], "c.txt", OpenStatus::Old));
  int lineNumber = 0;
  int n = 0;
  EXPECT_THROW(ReadMaskedLine(*job, 1, "i", lineNumber, {&n}), ProcessStop);
  EXPECT_NE(job.Console().find(" => Not FATAL End of file !,  logical unit:   1"),
            std::string::npos);
  EXPECT_EQ(job.Console().find("Stop/Warning Box"), std::string::npos);
}

TEST(FieldReader, EndOfDataFileReturnsMinusOne) {
  ScratchDir dir;
  dir.Write("d.dat", "5\n");
  CapturedJob job;
  ASSERT_TRUE(OpenUnit(job->files.units[4], "d.dat", OpenStatus::Old));
  int lineNumber = 0;
  int n = 0;
  EXPECT_EQ(ReadMaskedLine(*job, 4, "i", lineNumber, {&n}), 0);
  EXPECT_EQ(n, 5);
  EXPECT_EQ(ReadMaskedLine(*job, 4, "i", lineNumber, {&n}), FieldError::EndOfFile);
  EXPECT_NE(job.Console().find(" => Not FATAL End of file !,  logical unit:   4"),
            std::string::npos);
}

struct BadLine {
  const char* line;
  const char* mask;
  int error;
};

class FieldReaderErrors : public ::testing::TestWithParam<BadLine> {};

TEST_P(FieldReaderErrors, StopWithTheirCode) {
  const BadLine& bad = GetParam();
  CapturedJob job;
  Scan s;
  s.line = bad.line;
  std::string mask = bad.mask;
  EXPECT_THROW(FindFMT(*job, 0, s.line, mask, s.format, s.position, s.lineNumber, s.error),
               ProcessStop);
  EXPECT_EQ(s.error, bad.error);
  EXPECT_EQ(testing::SplitLines(job.Console()).at(0), FieldErrorText(bad.error));
}

INSTANTIATE_TEST_SUITE_P(Codes, FieldReaderErrors,
                         ::testing::Values(BadLine{"1 2", "   ", FieldError::EmptyMask},
                                           BadLine{"1.5", "i", FieldError::IntegerFoundReal},
                                           BadLine{".5", "i", FieldError::IntegerFoundReal},
                                           BadLine{"1..5", "f", FieldError::BeggedDot},
                                           BadLine{"1.5.", "f", FieldError::BeggedDot},
                                           BadLine{"1E+-5", "f", FieldError::BeggedDot},
                                           BadLine{"1EE5", "f", FieldError::BeggedDot},
                                           BadLine{"1e5", "i", FieldError::BadIntegerCharacter},
                                           BadLine{"e5", "i", FieldError::BadIntegerCharacter},
                                           BadLine{"1 2", "iz", FieldError::BadMaskLetter},
                                           BadLine{"1 2", "i0", FieldError::BadMaskLetter},
                                           BadLine{"abc", "f", FieldError::BadNumericCharacter},
                                           BadLine{"12x", "i", FieldError::BadNumericCharacter},
                                           BadLine{"1.5 e3", "ff", FieldError::IncompleteExponent},
                                           BadLine{"1.5E-E3", "f", FieldError::IncompleteExponent},
                                           BadLine{"- 5", "i", FieldError::IncompleteNumber},
                                           BadLine{"1 - 5", "ii", FieldError::IncompleteNumber}),
                         [](const ::testing::TestParamInfo<BadLine>& info) {
                           return "Code" + std::to_string(info.param.error) + "Case" +
                                  std::to_string(info.index);
                         });

TEST(FieldReader, FormatLongerThanALineIsRefused) {
  CapturedJob job;
  std::string line;
  for (int i = 0; i < 26; ++i) line += "   1.00000";
  Scan s;
  s.line = line;
  std::string mask(26, 'f');
  EXPECT_THROW(FindFMT(*job, 0, s.line, mask, s.format, s.position, s.lineNumber, s.error),
               ProcessStop);
  EXPECT_EQ(s.error, FieldError::FormatTooLong);
}

TEST(FieldReader, MaskIsFoldedToUpperCase) {
  CapturedJob job;
  Scan s;
  s.line = "7 A";
  std::string mask = "i1";
  FindFMT(*job, 0, s.line, mask, s.format, s.position, s.lineNumber, s.error);
  EXPECT_EQ(mask, "I1");
  EXPECT_EQ(s.format, "(I1,1X,A1)");
}

TEST(FieldReader, ErrorTextsOfEveryCode) {
  EXPECT_EQ(FieldErrorText(-1), "FindFMT: End of file !");
  EXPECT_EQ(FieldErrorText(0), "FindFMT: no error");
  EXPECT_EQ(FieldErrorText(2), "FindFMT: data string, read error !");
  EXPECT_EQ(FieldErrorText(4), "FindFMT: begged dot, sign or \"e\" character !");
  EXPECT_EQ(FieldErrorText(8), "FindFMT: 0 character in current field !");
  EXPECT_EQ(FieldErrorText(9), "FindFMT: format string length exceeded !");
  EXPECT_EQ(FieldErrorText(11), "FindFMT: incomplete E or D format !");
  EXPECT_EQ(FieldErrorText(12), "FindFMT: incomplete number !");
  EXPECT_EQ(FieldErrorText(13), "FMT decode error number:13");
  EXPECT_NE(FieldErrorText(-105).find("5"), std::string::npos);
}

TEST(FieldReader, LongLineIsShownBareWithTheCaretUnderTheColumn) {
  CapturedJob job;
  std::string line = std::string(130, '1') + " x";
  EXPECT_THROW(ScanLine(*job, line, "ii"), ProcessStop);
  const auto lines = testing::SplitLines(job.Console());
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(lines[1], line);
  EXPECT_EQ(lines[2].find('^'), line.find('x'));
}

TEST(FieldReader, ToUpperAndToLowerChangeLettersOnly) {
  std::string t = "aZ 1-b!";
  ToUpper(t);
  EXPECT_EQ(t, "AZ 1-B!");
  ToLower(t);
  EXPECT_EQ(t, "az 1-b!");
}

}  // namespace
}  // namespace corvinet
