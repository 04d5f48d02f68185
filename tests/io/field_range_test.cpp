// Tests of the range checks of read values: the columns of fields, the eight-digit bound of
// integers, the refusal of non-finite reals and the named bounds, each with the caret report.
#include "io/field_range.h"

#include <gtest/gtest.h>

#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;
using testing::SplitLines;

// The console lines from the first that starts with " => " to the end.
std::vector<std::string> ReportFrom(const std::string& console) {
  const auto lines = SplitLines(console);
  std::vector<std::string> report;
  for (const std::string& line : lines) {
    if (report.empty() && line.rfind(" => ", 0) != 0) continue;
    report.push_back(line);
  }
  return report;
}

struct OneLineFile {
  ScratchDir dir;
  CapturedJob job;
  int lineNumber = 0;
  explicit OneLineFile(const std::string& text) {
    dir.Write("c.txt", "! head\n" + text + "\n");
    EXPECT_TRUE(OpenUnit(job->files.units[1], "c.txt", OpenStatus::Old));
  }
};

TEST(FieldRange, LastColumnOfEachFieldCountsSkipsAndWidths) {
  EXPECT_EQ(FieldLastColumn("(I4,F8.0,2X,A4,I3)", 1), 4);
  EXPECT_EQ(FieldLastColumn("(I4,F8.0,2X,A4,I3)", 2), 12);
  EXPECT_EQ(FieldLastColumn("(I4,F8.0,2X,A4,I3)", 3), 18);
  EXPECT_EQ(FieldLastColumn("(I4,F8.0,2X,A4,I3)", 4), 21);
  EXPECT_EQ(FieldLastColumn("(I4,F8.0,2X,A4,I3)", 5), 0);
  EXPECT_EQ(FieldLastColumn("(I12,F10.0)", 2), 22);
}

TEST(FieldRange, IntegerBeyondEightDigitsStopsWithTheCaretUnderItsField) {
  OneLineFile f("   2   0   -2147483648   0");
  int a = 0, b = 0, c = 0, d = 0;
  EXPECT_THROW(ReadMaskedLine(*f.job, 1, "iiii", f.lineNumber, {&a, &b, &c, &d}), ProcessStop);
  const auto report = ReportFrom(f.job.Console());
  ASSERT_GE(report.size(), 5u) << f.job.Console();
  EXPECT_EQ(report[0],
            " => Integer field 3 = -2147483648 is outside its range: -99999999 to 99999999");
  EXPECT_EQ(report[1], "\"   2   0   -2147483648   0\"");
  // The field ends in column 22: the caret stands under its last digit.
  EXPECT_EQ(report[2], " " + std::string(21, '-') + "^");
  EXPECT_EQ(report[4], " => Please check your input file at line: 2 !");
}

TEST(FieldRange, IntegersOfEightDigitsAreAccepted) {
  OneLineFile f("99999999 -99999999");
  int a = 0, b = 0;
  ReadMaskedLine(*f.job, 1, "ii", f.lineNumber, {&a, &b});
  EXPECT_EQ(a, 99999999);
  EXPECT_EQ(b, -99999999);
}

TEST(FieldRange, RealThatOverflowsToInfinityIsRefused) {
  OneLineFile f("1.0 1e39");
  float x = 0.0f, y = 0.0f;
  EXPECT_THROW(ReadMaskedLine(*f.job, 1, "ff", f.lineNumber, {&x, &y}), ProcessStop);
  const std::string console = f.job.Console();
  EXPECT_NE(console.find(" => Please check your input file at line: 2 !"), std::string::npos)
      << console;
}

TEST(FieldRange, NamedBoundReportsTheHeaderWordAndItsRange) {
  OneLineFile f("  1000  0.10  1.00");
  int cycles = 0;
  float eps = 0.0f, factor = 0.0f;
  const FieldLine line = ReadFieldLine(*f.job, 1, "iff", f.lineNumber, {&cycles, &eps, &factor});
  EXPECT_EQ(line.lineNumber, 2);
  EXPECT_THROW(CheckIntegerField(*f.job, line, 1, "NCY", cycles, 0, DimensionLimits::MAXCYC),
               ProcessStop);
  const auto report = ReportFrom(f.job.Console());
  ASSERT_GE(report.size(), 3u);
  EXPECT_EQ(report[0], " => NCY = 1000 is outside its range: 0 to 999");
  EXPECT_EQ(report[2], " " + std::string(5, '-') + "^");
}

TEST(FieldRange, ValueWithinItsNamedBoundPasses) {
  OneLineFile f("  999");
  int cycles = 0;
  const FieldLine line = ReadFieldLine(*f.job, 1, "i", f.lineNumber, {&cycles});
  CheckIntegerField(*f.job, line, 1, "NCY", cycles, 0, DimensionLimits::MAXCYC);
  EXPECT_EQ(cycles, 999);
}

}  // namespace
}  // namespace corvinet
