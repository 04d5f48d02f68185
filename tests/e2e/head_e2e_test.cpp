// End-to-end runs of the program on control-file heads, compared line by line with hand-written
// reports.
#include <gtest/gtest.h>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::NormaliseLines;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

void ExpectSameLines(const std::string& actual, const std::string& expected) {
  const auto a = NormaliseLines(SplitLines(actual));
  const auto e = NormaliseLines(SplitLines(expected));
  for (std::size_t i = 0; i < std::min(a.size(), e.size()); ++i) {
    EXPECT_EQ(a[i], e[i]) << "at line " << i + 1;
  }
  EXPECT_EQ(a.size(), e.size());
}

// The report begins with the expected lines (the record of the head) and the
// run reached its normal end.
void ExpectHeadAndEnd(const std::string& actual, const std::string& head) {
  const auto a = NormaliseLines(SplitLines(actual));
  const auto e = NormaliseLines(SplitLines(head));
  ASSERT_GE(a.size(), e.size());
  for (std::size_t i = 0; i < e.size(); ++i) EXPECT_EQ(a[i], e[i]) << "at line " << i + 1;
  ASSERT_GE(a.size(), 4u);
  EXPECT_EQ(a[a.size() - 4], "              CPU Time:<cpu time> seconds");
  EXPECT_EQ(a[a.size() - 3], std::string(23, ' ') + "<cpu time> minutes");
  EXPECT_EQ(a[a.size() - 2], "");
  EXPECT_EQ(a[a.size() - 1], " => Run finished at:     Date: dd/mm/yyyy  Time: hh:mm:ss.sss");
}

TEST(HeadEndToEnd, SinglePatternHeadGivesItsReportAndSummary) {
  ScratchDir dir;
  dir.Write("single.pcr", TestData("head/single.pcr"));
  dir.Write("single.dat", TestData("head/single.dat"));
  auto run = testing::RunBinary(dir.path, "single");
  EXPECT_EQ(run.exitCode, 0);
  ExpectHeadAndEnd(dir.Read("single.out"), TestData("head/single.out.head"));
  ExpectHeadAndEnd(dir.Read("single.sum"), TestData("head/single.sum.head"));
  EXPECT_FALSE(dir.Exists("single.rpa"));
  EXPECT_FALSE(dir.Exists("single.sym"));
}

TEST(HeadEndToEnd, MultiPatternHeadGivesItsReportSummaryRpaAndSym) {
  ScratchDir dir;
  dir.Write("multi.pcr", TestData("head/multi.pcr"));
  dir.Write("data_a.dat", TestData("head/data_a.dat"));
  dir.Write("data_b.dat", TestData("head/data_b.dat"));
  auto run = testing::RunBinary(dir.path, "multi");
  EXPECT_EQ(run.exitCode, 0);
  ExpectHeadAndEnd(dir.Read("multi.out"), TestData("head/multi.out.head"));
  ExpectHeadAndEnd(dir.Read("multi.sum"), TestData("head/multi.sum.head"));
  // The head of the parameter record; the rows of the reliability factors follow.
  const auto rpa = NormaliseLines(SplitLines(dir.Read("multi.rpa")));
  const auto head = NormaliseLines(SplitLines(TestData("head/multi.rpa.expected")));
  ASSERT_GE(rpa.size(), head.size());
  for (std::size_t i = 0; i < head.size(); ++i) EXPECT_EQ(rpa[i], head[i]) << "at line " << i + 1;
  ExpectSameLines(dir.Read("multi.sym"), TestData("head/multi.sym.expected"));
}

TEST(HeadEndToEnd, TerminalShowsBannerStartEndAndTheContinueQuestions) {
  ScratchDir dir;
  dir.Write("single.pcr", TestData("head/calc.pcr"));
  auto run = testing::RunBinary(dir.path, "single");
  const auto lines = NormaliseLines(SplitLines(run.output));
  const std::vector<std::string> banner = {
      "   ********************************************************",
      "   ** PROGRAM CORVINET.99 (Version 0.3  - Apr99-QMV TRX) **",
      "   ********************************************************",
      "                 M U L T I -- P A T T E R N",
      "      Rietveld, Profile Matching & Integrated Intensity",
      "           Refinement of X-ray and/or Neutron Data",
      "              (Multi_Pattern: Windows-version)",
      ""};
  ASSERT_GE(lines.size(), banner.size());
  for (std::size_t i = 0; i < banner.size(); ++i) EXPECT_EQ(lines[i], banner[i]);
  EXPECT_NE(run.output.find(" => Reading control file *.PCR ..."), std::string::npos);
  EXPECT_NE(
      NormaliseLines(SplitLines(run.output)).end(),
      std::find(lines.begin(), lines.end(), " => START Date:dd/mm/yyyy  Time => hh:mm:ss.sss"));
  EXPECT_NE(run.output.find(" => END   Date:"), std::string::npos);
  EXPECT_NE(run.output.find(" => File : single"), std::string::npos);
  EXPECT_NE(run.output.find("Corvinet Refinement: Continue with the same data?"),
            std::string::npos);
  EXPECT_NE(run.output.find("Corvinet Refinement: Continue with other data?"), std::string::npos);
  EXPECT_NE(run.output.find("=== Stop/Warning Box ===\n END"), std::string::npos);
}

TEST(HeadEndToEnd, BadFieldStopsWithCaretAndLineNumber) {
  ScratchDir dir;
  dir.Write("bad.pcr",
            "Bad\n! job line follows\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
            "0 0 1 0 1 0 0 0 x 1 0 0 0 0 0 0 0\n");
  auto run = testing::RunBinary(dir.path, "bad");
  EXPECT_EQ(run.exitCode, 2);
  const auto lines = SplitLines(run.output);
  auto at =
      std::find(lines.begin(), lines.end(), "FindFMT: invalid character in a numeric field !");
  ASSERT_NE(at, lines.end());
  ASSERT_LT(at + 2, lines.end());
  EXPECT_EQ(*(at + 1), "\"0 0 1 0 1 0 0 0 x 1 0 0 0 0 0 0 0\"");
  EXPECT_EQ((at + 2)->find('^'), (at + 1)->find('x'));
  EXPECT_NE(run.output.find(" => Please check your input file at line: 4 !"), std::string::npos);
  // The stop ends the process: no continue question follows.
  EXPECT_EQ(run.output.find("Continue with the same data?"), std::string::npos);
}

TEST(HeadEndToEnd, ControlFileThatEndsEarlyEndsTheProcess) {
  ScratchDir dir;
  dir.Write("short.pcr",
            "Short\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
            "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0\n1.54 1.54 0 40 8 0 0 0 0\n");
  auto run = testing::RunBinary(dir.path, "short");
  EXPECT_NE(run.output.find(" => Not FATAL End of file !,  logical unit:   1"), std::string::npos);
  EXPECT_EQ(run.output.find("Continue with the same data?"), std::string::npos);
}

TEST(HeadEndToEnd, MissingControlFileStops) {
  ScratchDir dir;
  auto run = testing::RunBinary(dir.path, "nothing");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_NE(run.output.find(" => Error opening file: nothing.pcr Unit:  1"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
