// Tests of the final report: whole reports after the cycles of a profile-matching job.
#include "results/final_report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "format/fortran_format.h"
#include "observations/poisson.h"
#include "records/reflection.h"
#include "refine/cycle_driver.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::CountLines;
using testing::ScratchDir;
using testing::SplitLines;

std::size_t LineIndex(const std::string& text, const std::string& start) {
  const auto lines = SplitLines(text);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].rfind(start, 0) == 0) return i;
  }
  return std::string::npos;
}

// --- Whole reports after the cycles of a profile-matching job ---

// The one-cycle profile matching of the simulated cubic pattern, with its
// output options replaced by `outputLine` (Ipr Ppl Ioc Mat Pcr ... Ana).
struct ReportRun {
  ScratchDir dir;
  CapturedJob job;
  std::string pcr;
  bool cycled = false;
  explicit ReportRun(const std::string& outputLine, int cycles = 1) {
    pcr = testing::TestData("cycle/cycle1.pcr");
    const std::string blank =
        "   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0";
    const std::size_t at = pcr.find(blank, pcr.find("!Ipr"));
    pcr.replace(at, blank.size(), outputLine);
    pcr.replace(pcr.find("  1  0.10"), 3, Fmt("(I3)", cycles));
    dir.Write("x.dat", testing::TestData("cycle/cycle.dat"));
    EXPECT_TRUE(testing::ReadControlText(dir, job, pcr, false)) << job.Console();
    OpenUnit(job->files.units[Unit::Out], "x.out", OpenStatus::Append);
    OpenUnit(job->files.units[Unit::Sum], "x.sum", OpenStatus::Append);
    cycled = testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); });
  }
  bool Report() {
    return testing::RunsWithoutStop(*job, [](Job& j) { FinalReport(j); });
  }
  std::string Out() { return testing::FlushedReport(dir, *job); }
  std::string Sum() {
    std::fflush(job->files.units[Unit::Sum].file);
    return dir.Read("x.sum");
  }
};

TEST(FinalReport, StepsComeInTheirOrder) {
  //              Ipr Ppl Ioc Mat Pcr Ls1 Ls2 Ls3 Syo Prf Ins Rpa Sym Hkl Fou Sho Ana
  ReportRun run("   1   1   0   1   1   0   0   0   0   1   0   1   0   1   0   0   0", 2);
  ASSERT_TRUE(run.cycled) << run.job.Console();
  ASSERT_TRUE(run.Report()) << run.job.Console();
  const std::string out = run.Out();
  const std::size_t matrix = LineIndex(out, " => Correlation matrix ==>");
  const std::size_t phase = LineIndex(out, " Pattern#  1 Phase No:   1 Phase name: Cubic phase");
  const std::size_t bragg = LineIndex(out, " => Bragg R-factor:");
  const std::size_t table = LineIndex(out, "2THETA   YOBS    YCALC VARIANCE ");
  const std::size_t dimensions = LineIndex(out, " => Dimensions of arrays");
  ASSERT_NE(matrix, std::string::npos);
  ASSERT_NE(phase, std::string::npos);
  ASSERT_NE(bragg, std::string::npos);
  ASSERT_NE(table, std::string::npos);
  ASSERT_NE(dimensions, std::string::npos);
  EXPECT_LT(matrix, phase);
  EXPECT_LT(phase, bragg);
  // The line-printer table reads the totals, after the phase blocks.
  EXPECT_LT(bragg, table);
  EXPECT_LT(table, dimensions);
  // Six reflections of the cubic cell in range, each with its row.
  EXPECT_EQ(SplitLines(run.dir.Read("x.hkl")).size(), 7u);
  EXPECT_TRUE(run.dir.Exists("x.prf"));
  EXPECT_TRUE(run.dir.Exists("x1.int"));
  // The control file now holds the refined background.
  EXPECT_NE(run.dir.Read("x.pcr"), run.pcr);
  EXPECT_NE(run.dir.Read("x.pcr").find("! Iscale    Idif   --> Pattern#1"), std::string::npos);
  const std::string sum = run.Sum();
  EXPECT_NE(LineIndex(sum, " => Bragg R-factor:"), std::string::npos);
  EXPECT_NE(LineIndex(sum, " => Rf-factor="), std::string::npos);
  std::fflush(run.job->files.units[Unit::Rpa].file);
  const auto rpa = SplitLines(run.dir.Read("x.rpa"));
  ASSERT_GE(rpa.size(), 2u);
  EXPECT_EQ(rpa[rpa.size() - 2].rfind("BRAG    1", 0), 0u);
  EXPECT_EQ(rpa.back(), std::string(80, '-'));
  // The matching phase leaves its regrouped clusters and states the rules.
  EXPECT_TRUE(run.dir.Exists("x1_grp.int"));
  EXPECT_EQ(CountLines(out, " Phase No:   1 Overlaped Reflections Re-grouped "), 1);
}

TEST(FinalReport, ReflectionRowsRepeatTheRietveldPartition) {
  ReportRun run("   0   0   0   0   0   0   0   0   0   0   0   0   0   1   0   0   0");
  ASSERT_TRUE(run.cycled) << run.job.Console();
  ASSERT_TRUE(run.Report()) << run.job.Console();
  // The Iobs column sums to the observed intensity of the phase, and RB is
  // 100 sum|Iobs - Icalc| / sum Iobs over the same rows.
  double sumIobs = 0.0, sumAbs = 0.0;
  const auto rows = SplitLines(run.dir.Read("x.hkl"));
  for (std::size_t i = 1; i < rows.size(); ++i) {
    const double iobs = std::stod(rows[i].substr(47, 11));
    const double icalc = std::stod(rows[i].substr(58, 9));
    sumIobs += iobs;
    sumAbs += std::fabs(iobs - icalc);
  }
  const std::string line = SplitLines(run.Out())[LineIndex(run.Out(), " => Bragg R-factor:")];
  EXPECT_NEAR(std::stod(line.substr(20, 9)), 100.0 * sumAbs / sumIobs, 0.05);
}

TEST(FinalReport, NxtZeroWritesNoNewControlFile) {
  ReportRun run("   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  ASSERT_TRUE(run.Report()) << run.job.Console();
  EXPECT_EQ(run.dir.Read("x.pcr"), run.pcr);
  EXPECT_FALSE(run.dir.Exists("x.new"));
}

TEST(FinalReport, NxtTwoWritesTheNewFileBesideTheOldOne) {
  ReportRun run("   0   0   0   0   2   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  ASSERT_TRUE(run.Report()) << run.job.Console();
  EXPECT_EQ(run.dir.Read("x.pcr"), run.pcr);
  EXPECT_TRUE(run.dir.Exists("x.new"));
}

TEST(FinalReport, OneRefinedParameterHasNoCorrelationMatrix) {
  ReportRun run("   0   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  run.job->run.MAXS = 1;
  ASSERT_TRUE(run.Report()) << run.job.Console();
  EXPECT_EQ(LineIndex(run.Out(), " => Correlation matrix ==>"), std::string::npos);
}

TEST(FinalReport, MatZeroHasNoCorrelationMatrix) {
  ReportRun run("   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  ASSERT_TRUE(run.Report());
  EXPECT_EQ(LineIndex(run.Out(), " => Correlation matrix ==>"), std::string::npos);
}

TEST(FinalReport, PhaseWithoutObservedIntensityShowsTheBoxAndGoesOn) {
  ReportRun run("   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  // An excluded region over the whole range leaves no reflection counted.
  Pattern& p = run.job->patterns[1];
  p.NEXCRG = 1;
  p.ExclLow[1] = 0.0f;
  p.ExclHigh[1] = 180.0f;
  ASSERT_TRUE(run.Report()) << run.job.Console();
  EXPECT_NE(run.job.Console().find("Sum(Iobs)=0: have you really reflections?"), std::string::npos);
  EXPECT_NE(LineIndex(run.Out(), " => Dimensions of arrays"), std::string::npos);
}

TEST(FinalReport, BackgroundIsAddedToYcalcOnce) {
  ReportRun run("   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  Pattern& p = run.job->patterns[1];
  const float bragg = p.Ycalc[100];
  const float background = p.Backg[100];
  ASSERT_TRUE(run.Report());
  EXPECT_FLOAT_EQ(p.Ycalc[100], bragg + background);
}

TEST(FinalReport, StepsOfOtherPiecesAreNamedAsNotWrittenAndTheAnalysisIsWritten) {
  //              Ipr Ppl Ioc Mat Pcr Ls1 Ls2 Ls3 Syo Prf Ins Rpa Sym Hkl Fou Sho Ana
  ReportRun run("   2   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   1");
  ASSERT_TRUE(run.cycled);
  run.job->phases[1].Sol = 1;
  ASSERT_TRUE(run.Report()) << run.job.Console();
  const std::string out = run.Out();
  const std::string prefix = " => This version of Corvinet does not write ";
  EXPECT_EQ(CountLines(out, prefix + "the refinement analysis"), 0);
  EXPECT_EQ(CountLines(run.Sum(), "       -    ANALYSIS OF THE REFINEMENT    -"), 1);
  EXPECT_EQ(CountLines(out, prefix + "the contribution table to Yi of phase 1"), 1);
  EXPECT_EQ(CountLines(out, prefix + "the structure-factor list of phase 1"), 1);
}

TEST(FinalReport, IntegratedIntensityPhaseWritesItsListInsteadOfTheBraggFactors) {
  ReportRun run("   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  run.job->phases[1].pat[1].Irf = 4;
  ASSERT_TRUE(run.Report());
  EXPECT_EQ(CountLines(run.Out(), " => F2cal= scale*Corr*F2"), 1);
  EXPECT_EQ(CountLines(run.Out(), " =>    RF2 -factor :     0.0000"), 1);
  EXPECT_EQ(LineIndex(run.Out(), " => Bragg R-factor:"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
