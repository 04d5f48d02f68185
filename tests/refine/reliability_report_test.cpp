// Tests of the reliability report lines on .out, .sum, the console and the .rpa record.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "refine/reliability.h"
#include "refine/reliability_case.h"
#include "refine/reliability_report_lines.h"

namespace corvinet {
namespace {

using testing::kBragg;
using testing::kNoReflection;
using testing::ReliabilityCase;

ReliabilityFactors SampleFactors() {
  ReliabilityFactors f;
  f.Rp = 12.345f;
  f.Rwp = 15.678f;
  f.Rexp = 10.0f;
  f.Chi2 = 2.3456f;
  f.DwStat = 1.23456f;
  f.DwExp = 1.5f;
  f.GoF = 1.7678f;
  f.NP = 42;
  f.NSigma = 6.25f;
  f.conventionalRp = 20.5f;
  f.conventionalRwp = 25.25f;
  f.conventionalRexp = 16.5f;
  f.conventionalChi2 = 2.3456f;
  f.Deviance = 123.5f;
  f.DevStar = 0.5f;
  return f;
}

int Count(const std::vector<std::string>& lines, const std::string& head) {
  return static_cast<int>(std::count_if(
      lines.begin(), lines.end(), [&](const std::string& l) { return l.rfind(head, 0) == 0; }));
}

TEST(ReliabilityReport, RFactorsAndExpectedLinesHaveTheirFields) {
  const std::vector<std::string> lines =
      ReliabilityOutLines(1, SampleFactors(), false, 0.0f, false);
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(lines[0], " ==> RELIABILITY FACTORS WITH ALL NON-EXCLUDED POINTS FOR PATTERN:  1");
  EXPECT_EQ(lines[1],
            " => R-Factors:  12.3     15.7     Chi2:  2.35     DW-Stat.:  1.2346   Patt#:  1");
  // Rexp stands under Rwp and DW-exp under DW-Stat.
  // G9.3 leaves four blanks behind 10.0, then 26X, then F8.4 with two leading blanks.
  EXPECT_EQ(lines[2], " => Expected :           10.0" + std::string(4 + 26 + 2, ' ') + "1.5000");
  EXPECT_EQ(lines[1].find("15.7"), lines[2].find("10.0"));
  EXPECT_EQ(lines[1].find("1.2346"), lines[2].find("1.5000"));
}

TEST(ReliabilityReport, GoodnessAndFreedomLines) {
  const std::vector<std::string> lines = ReliabilityOutLines(2, SampleFactors(), true, 0.0f, false);
  EXPECT_EQ(lines[0],
            " ==> RELIABILITY FACTORS FOR POINTS WITH BRAGG CONTRIBUTIONS FOR PATTERN:  2");
  EXPECT_EQ(lines[4], " => GoF-index: 1.8         Sqrt(Residual/N)");
  EXPECT_EQ(lines[5], " => N-P+C:    42");
  EXPECT_EQ(lines[6],
            " =>  SumYdif       SumYobs      SumYcal      SumwYobsSQ  Residual      Condition");
  EXPECT_EQ(lines[9], " => (Values obtained using Ynet, but true sigma(y))");
}

TEST(ReliabilityReport, SumsLineHasSixFieldsOfFourteen) {
  ReliabilityFactors f = SampleFactors();
  f.sums.SumYdif = 1.0f;
  f.sums.SumYobs = 2.0f;
  f.sums.SumYcal = 3.0f;
  f.sums.SumwYobsSQ = 4.0f;
  f.sums.Residual = 5.0f;
  const std::string line = ReliabilityOutLines(1, f, false, 6.0f, false)[7];
  EXPECT_EQ(line.size(), 4u + 6u * 14u);
  EXPECT_EQ(line.substr(4, 14), "     1.000    ");
  EXPECT_EQ(line.substr(4 + 5 * 14, 14), "     6.000    ");
}

TEST(ReliabilityReport, NSigmaLineOnlyInTheLastPass) {
  const ReliabilityFactors f = SampleFactors();
  EXPECT_EQ(Count(ReliabilityOutLines(1, f, false, 0.0f, false), " => N-sigma of the GoF:"), 0);
  const std::vector<std::string> last = ReliabilityOutLines(1, f, false, 0.0f, true);
  EXPECT_EQ(last.back(), " => N-sigma of the GoF:      6.250");
}

TEST(ReliabilityReport, SummaryBlockCarriesCycleMethodAndFactors) {
  const std::vector<std::string> lines =
      ReliabilitySumLines(1, SampleFactors(), false, 7, 10, "M.L.");
  const std::vector<std::string> expected = {
      " ==> RELIABILITY FACTORS WITH ALL NON-EXCLUDED POINTS FOR PATTERN:  1",
      " => Cycle:    7 => MaxCycle:   10",
      " =>  R-factors (not corrected for background) for Pattern:  1",
      " => Rp: 12.3     Rwp: 15.7     Rexp: 10.0     Chi2:  2.35      M.L. refinement",
      " => Conventional Rietveld R-factors for Pattern:  1",
      " => Rp: 20.5     Rwp: 25.2     Rexp: 16.5     Chi2:  2.35    ",
      " => Deviance:    123.5         Dev*  :   0.5000    ",
      " => DW-Stat.:   1.2346     DW-exp:   1.5000",
      " => N-sigma of the GoF:      6.250",
  };
  EXPECT_EQ(lines, expected);
}

TEST(ReliabilityReport, ConsoleLinesOfACycle) {
  const std::vector<std::string> lines = ReliabilityConsoleLines(3, SampleFactors());
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0].rfind(" => R-Factors:", 0), 0u);
  EXPECT_EQ(lines[1].rfind(" => Expected :", 0), 0u);
  EXPECT_EQ(lines[2], " Conventional Rietveld R-factors for Pattern:  3");
  EXPECT_EQ(lines[3], " => Rp: 20.5     Rwp: 25.2     Rexp: 16.5     Chi2:  2.35    ");
}

TEST(ReliabilityReport, RecordRowsAreTaggedBySet) {
  const std::vector<std::string> a = ReliabilityRecordLines(SampleFactors(), false);
  const std::vector<std::string> b = ReliabilityRecordLines(SampleFactors(), true);
  ASSERT_EQ(a.size(), 3u);
  EXPECT_EQ(a[0].substr(0, 5), "RFAR ");
  EXPECT_EQ(a[1].substr(0, 5), "RFAC ");
  EXPECT_EQ(a[2].substr(0, 5), "DEVA ");
  EXPECT_EQ(b[0].substr(0, 5), "RFBR ");
  EXPECT_EQ(b[1].substr(0, 5), "RFBC ");
  EXPECT_EQ(b[2].substr(0, 5), "DEVB ");
  EXPECT_EQ(a[1].substr(a[1].size() - 8), "      42");
}

struct ReportCase : ReliabilityCase {
  ReportCase() {
    SetPoints({{120, 100, 5, 120, kNoReflection},
               {135, 101, 30, 135, kBragg},
               {260, 103, 170, 260, kBragg},
               {180, 104, 60, 180, kBragg}});
    job->run.NCY = 4;
    ResidualStatistics(*job, 1, 2, 0);
  }
};

TEST(ReliabilityReport, CycleWithShortOutputWritesOnlyTheConsole) {
  ReportCase c;
  ReportReliability(*c.job, 1, false, false, 2, "L.S.", 1.0f);
  EXPECT_TRUE(c.Lines(Unit::Out, "x.out").empty());
  EXPECT_TRUE(c.Lines(Unit::Sum, "x.sum").empty());
  EXPECT_EQ(testing::SplitLines(c.job.Console()).size(), 4u);
}

TEST(ReliabilityReport, IntermediateCycleWritesBothSetsOnOutWithoutSummary) {
  ReportCase c;
  c.job->run.JCIL = 1;
  ReportReliability(*c.job, 1, true, false, 2, "L.S.", 1.0f);
  const std::vector<std::string> out = c.Lines(Unit::Out, "x.out");
  EXPECT_EQ(Count(out, " ==> RELIABILITY FACTORS WITH ALL NON-EXCLUDED POINTS FOR PATTERN:"), 1);
  EXPECT_EQ(Count(out, " ==> RELIABILITY FACTORS FOR POINTS WITH BRAGG CONTRIBUTIONS"), 1);
  EXPECT_EQ(Count(out, " => N-sigma of the GoF:"), 0);
  EXPECT_TRUE(c.Lines(Unit::Sum, "x.sum").empty());
  EXPECT_TRUE(c.Lines(Unit::Rpa, "x.rpa").empty());
}

TEST(ReliabilityReport, LastPassWritesSummaryNSigmaAndRecord) {
  ReportCase c;
  c.job->run.JCIL = 1;
  ReportReliability(*c.job, 1, true, true, 4, "L.S.", 1.0f);
  EXPECT_EQ(Count(c.Lines(Unit::Out, "x.out"), " => N-sigma of the GoF:"), 2);
  const std::vector<std::string> sum = c.Lines(Unit::Sum, "x.sum");
  EXPECT_EQ(Count(sum, " ==> RELIABILITY FACTORS"), 2);
  EXPECT_EQ(Count(sum, " => Cycle:    4 => MaxCycle:    4"), 2);
  EXPECT_EQ(Count(sum, " => N-sigma of the GoF:"), 2);
  std::vector<std::string> tags;
  for (const std::string& l : c.Lines(Unit::Rpa, "x.rpa")) tags.push_back(l.substr(0, 5));
  EXPECT_EQ(tags, (std::vector<std::string>{"RFAR ", "RFAC ", "DEVA ", "RFBR ", "RFBC ", "DEVB "}));
}

TEST(ReliabilityReport, NoRecordRowsWithoutRecordFile) {
  ReportCase c;
  c.job->run.JCIL = 0;
  ReportReliability(*c.job, 1, true, true, 4, "L.S.", 1.0f);
  EXPECT_TRUE(c.Lines(Unit::Rpa, "x.rpa").empty());
}

TEST(ReliabilityReport, PrintedValuesAreThoseOfTheSets) {
  ReportCase c;
  ReportReliability(*c.job, 1, true, false, 2, "L.S.", 1.0f);
  const PatternReliability& r = c.job->reliability.pattern[1];
  const std::vector<std::string> out = c.Lines(Unit::Out, "x.out");
  EXPECT_EQ(out[1], ReliabilityOutLines(1, r.setA, false, 1.0f, false)[1]);
  const std::size_t braggTitle = ReliabilityOutLines(1, r.setA, false, 1.0f, false).size();
  EXPECT_EQ(out[braggTitle + 1], ReliabilityOutLines(1, r.setB, true, 1.0f, false)[1]);
  EXPECT_NE(out[1], out[braggTitle + 1]);
}

}  // namespace
}  // namespace corvinet
