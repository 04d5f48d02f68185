// Tests of the pattern block: instrument and cycle lines, points, scattering entries, globals,
// closing lines and checks.
#include "control/body_checks.h"
#include "control/closing_lines.h"
#include "control/global_parameters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "io/file_set.h"
#include "records/codeword.h"
#include "run/defaults.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// A job whose control unit holds `lines` and whose reports are open.
struct BlockJob {
  ScratchDir dir;
  CapturedJob job;
  explicit BlockJob(const std::string& lines) { testing::OpenControlText(dir, *job, lines); }
  Job& operator*() { return *job; }
  Job* operator->() { return job.operator->(); }
  std::string Out() { return testing::FlushedReport(dir, *job); }
  bool Stops(void (*step)(Job&)) { return !testing::RunsWithoutStop(*job, step); }
};

TEST(Codewords, DecodeParameterAndMultiplier) {
  EXPECT_EQ(DecodeCodeword(0.0f).parameterNumber, 0);
  EXPECT_EQ(DecodeCodeword(1.0f).parameterNumber, 0);
  EXPECT_FLOAT_EQ(DecodeCodeword(1.0f).multiplier, 1.0f);
  EXPECT_EQ(DecodeCodeword(11.0f).parameterNumber, 1);
  EXPECT_FLOAT_EQ(DecodeCodeword(11.0f).multiplier, 1.0f);
  EXPECT_EQ(DecodeCodeword(10.0f).parameterNumber, 1);
  EXPECT_FLOAT_EQ(DecodeCodeword(10.0f).multiplier, 0.0f);
  EXPECT_EQ(DecodeCodeword(21.0f).parameterNumber, 2);
  EXPECT_EQ(DecodeCodeword(-31.5f).parameterNumber, 3);
  EXPECT_FLOAT_EQ(DecodeCodeword(-31.5f).multiplier, -1.5f);
  EXPECT_EQ(DecodeCodeword(-10.5f).parameterNumber, 1);
  EXPECT_FLOAT_EQ(DecodeCodeword(-10.5f).multiplier, -0.5f);
  EXPECT_EQ(DecodeCodeword(3000.0f).parameterNumber, 300);
  EXPECT_EQ(DecodeCodeword(3010.0f).parameterNumber, 301);
}

TEST(PatternBlock, SharedParameterNumbersAreNoHole) {
  BlockJob job("");
  job->run.MAXS = 2;
  job->patterns[1].GLBcode[1] = 21.0f;
  job->patterns[1].GLBcode[8] = 21.0f;
  job->patterns[1].GLBcode[9] = 11.0f;
  DecodeGlobalCodes(*job);
  EXPECT_FALSE(job.Stops(CheckParameterHoles));
}

TEST(PatternBlock, OppositeAtomCodesShareTheirParameter) {
  BlockJob job("");
  job->run.MAXS = 1;
  job->run.NPHASE = 1;
  job->phases[1].Nat = 2;
  job->atoms[1].ATC[1] = DecodeCodeword(11.0f);
  job->atoms[2].ATC[1] = DecodeCodeword(-11.0f);
  EXPECT_FALSE(job.Stops(CheckParameterHoles));
  EXPECT_EQ(job->phases[1].refinedAtomParameters, 1);
}

TEST(PatternBlock, UnusedParameterNumberIsAHoleReportedAfterTheOthers) {
  BlockJob job("");
  job->run.MAXS = 6;
  const float codes[] = {11.0f, 21.0f, 41.0f, 61.0f};
  const int slots[] = {1, 2, 3, 4};
  for (int i = 0; i < 4; ++i) job->patterns[1].GLBcode[slots[i]] = codes[i];
  DecodeGlobalCodes(*job);
  EXPECT_TRUE(job.Stops(CheckParameterHoles));
  const std::string console = job.job.Console();
  const auto three = console.find(" => Hole in the matrix!, missing element:   3");
  const auto five = console.find(" => Hole in the matrix!, missing element:   5");
  ASSERT_NE(three, std::string::npos);
  ASSERT_NE(five, std::string::npos);
  EXPECT_LT(three, five);
  EXPECT_LT(five, console.find(" Hole(s) in the Normal Matrix"));
  EXPECT_TRUE(testing::HasNormalisedLine(
      job.Out(), " => Hole in the matrix!, element    5in the Normal matrix is missing"));
}

TEST(PatternBlock, ZeroCountsAreFixedWithTheirMessages) {
  BlockJob job("");
  Pattern& p = job->patterns[1];
  p.NPTS = 3;
  p.X[1] = 10.0f;
  p.X[2] = 10.5f;
  p.X[3] = 11.0f;
  p.Ytotal[1] = 5.0f;
  p.Variance[1] = 5.0f;
  p.Ytotal[2] = 0.0f;
  p.Variance[2] = 0.0f;
  p.Ytotal[3] = 7.0f;
  p.Variance[3] = 1.0e-6f;
  FixZeroCounts(*job);
  EXPECT_FLOAT_EQ(p.Ytotal[1], 5.0f);
  EXPECT_FLOAT_EQ(p.Ytotal[2], 1.0f);
  EXPECT_FLOAT_EQ(p.Variance[2], 1.0e6f);
  EXPECT_FLOAT_EQ(p.Ytotal[3], 1.0f);
  EXPECT_FLOAT_EQ(p.Variance[3], 1.0e6f);
  EXPECT_TRUE(testing::HasNormalisedLine(
      job.Out(), " => Zero counts at step no.     2 at 2theta/TOF/E(KeV):      10.5000"));
  const std::string console = job.job.Console();
  EXPECT_NE(console.find(" Zero counts al point no.      3"), std::string::npos);
  EXPECT_NE(console.find(" Program fix intensity at 1.0 and Variance at 1E6"), std::string::npos);
}

TEST(PatternBlock, PointsAndReflectionsMustShareTheStorage) {
  BlockJob job("");
  job->patterns[1].NPTS = 19000;
  try {
    CheckPointCapacity(*job, 1, 900, 99);
  } catch (const ProcessStop&) {
    FAIL() << "19000 points and 999 reflections fit";
  }
  EXPECT_THROW(CheckPointCapacity(*job, 1, 900, 100), ProcessStop);
  EXPECT_NE(job.job.Console().find(" Too many reflections or too many points!"), std::string::npos);
  EXPECT_NE(
      job.job.Console().find(" => Pattern 1: 19000 points +  1000 reflections reach the 20000 "
                             "places of a pattern: raise Ste or shorten the data range"),
      std::string::npos);
}

TEST(PatternBlock, PointsAndReflectionsHaveCapacitiesOfTheirOwnInALargeRun) {
  BlockJob job("");
  job->dimensions = LargeDimensionLimits();
  job->patterns[1].NPTS = 200000;
  try {
    CheckPointCapacity(*job, 1, 59000, 1000);
  } catch (const ProcessStop&) {
    FAIL() << "200000 points and 60000 reflections fit a large run";
  }
}

TEST(PatternBlock, PolynomialCorrectionDividesIntensityAndPropagatesVariance) {
  Pattern p;
  p.NPTS = 1;
  p.X[1] = 2.0f;
  p.Ytotal[1] = 100.0f;
  p.Variance[1] = 100.0f;
  p.corrForm = 1;
  p.corrCount = 2;
  p.corrY[1] = 1.0f;  // c = 1 + 0.5 x = 2
  p.corrY[2] = 0.5f;
  p.corrX[1] = 0.1f;  // S = 0.01 + 0.04 x^2 = 0.17
  p.corrX[2] = 0.2f;
  ApplyIntensityCorrection(p);
  EXPECT_FLOAT_EQ(p.Ytotal[1], 50.0f);
  EXPECT_NEAR(p.Variance[1], 0.17 / 100.0 + 100.0 / 4.0, 1e-5);
}

TEST(PatternBlock, ExponentialCorrectionKeepsItsMinusSigns) {
  Pattern p;
  p.NPTS = 1;
  const double x = 1.5;
  p.X[1] = static_cast<float>(x);
  p.Ytotal[1] = 200.0f;
  p.Variance[1] = 50.0f;
  p.corrForm = 2;
  p.corrCount = 5;
  const double a[] = {0, 1.2, 0.3, 0.4, 0.05, 0.2};
  const double s[] = {0, 0.01, 0.02, 0.03, 0.004, 0.0};
  for (int j = 1; j <= 5; ++j) {
    p.corrY[j] = static_cast<float>(a[j]);
    p.corrX[j] = static_cast<float>(s[j]);
  }
  ApplyIntensityCorrection(p);
  const double t = std::exp(-a[3] / (x * x)) / std::pow(x, 5);
  const double e = std::exp(-a[5] * x * x);
  const double c = a[1] + a[2] * t + a[4] * e;
  const double S = s[1] * s[1] + t * t * (s[2] * s[2] - s[3] * s[3] * a[2] * a[2] / (x * x)) +
                   e * e * (s[4] * s[4] - (a[4] * x) * (a[4] * x));
  EXPECT_NEAR(p.Ytotal[1], 200.0 / c, 1e-3);
  EXPECT_NEAR(p.Variance[1], S / 200.0 + 50.0 / (c * c), 1e-3);
}

TEST(PatternBlock, OtherCorrectionFormsChangeNothing) {
  Pattern p;
  p.NPTS = 1;
  p.X[1] = 2.0f;
  p.Ytotal[1] = 100.0f;
  p.Variance[1] = 9.0f;
  p.corrForm = 3;
  p.corrCount = 1;
  ApplyIntensityCorrection(p);
  EXPECT_FLOAT_EQ(p.Ytotal[1], 100.0f);
  EXPECT_FLOAT_EQ(p.Variance[1], 9.0f);
}

TEST(PatternBlock, HardLimitsAreReadAndFlagged) {
  BlockJob job("! limits\n  3   0.10   0.40\n  7  -1.0    1.0\n");
  job->run.MAXS = 8;
  job->run.NRELL = 2;
  ReadHardLimits(*job);
  EXPECT_EQ(job->limits.limited[3], 1);
  EXPECT_EQ(job->limits.limited[7], 1);
  EXPECT_EQ(job->limits.limited[4], 0);
  EXPECT_FLOAT_EQ(job->limits.low[3], 0.1f);
  EXPECT_FLOAT_EQ(job->limits.high[7], 1.0f);
  const std::string out = job.Out();
  EXPECT_TRUE(
      testing::HasNormalisedLine(out, " => The following parameter limits have been read:"));
  EXPECT_TRUE(
      testing::HasNormalisedLine(out, "  -> Parameter no.:   3 Limits:       0.1000      0.4000"));
}

TEST(PatternBlock, HardLimitBeyondTheTablesIsRefused) {
  BlockJob job("301 0 1\n");
  job->run.MAXS = 2;
  job->run.NRELL = 1;
  EXPECT_TRUE(job.Stops(ReadHardLimits));
}

TEST(PatternBlock, SearchTakesItsParameterCountFromTheLimits) {
  BlockJob job("4 0 1\n9 0 1\n2 0 1\n 5000 3 120 1\n");
  job->run.ICRYG = 2;
  job->run.NRELL = 3;
  ReadHardLimits(*job);
  EXPECT_EQ(job->run.MAXS, 9);
  ReadMonteCarloLine(*job);
  EXPECT_EQ(job->run.Nconfg, 5000);
  EXPECT_EQ(job->run.Nsolu, 3);
  EXPECT_EQ(job->run.Num_Ref, 120);
  const std::string out = job.Out();
  EXPECT_TRUE(testing::HasNormalisedLine(
      out,
      "  => A number of     5000 random configurations will be tested on    120 observations"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, "     The best    3 solutions will be printed"));
  EXPECT_TRUE(
      testing::HasNormalisedLine(out, "     The scale factor will be calculated automatically"));
}

TEST(PatternBlock, EndLinesGiveLinePrinterScalesAndRpaRange) {
  BlockJob job("! scales\n 50 20\n! range\n 10.0 90.0\n");
  job->run.NPATT = 1;
  job->patterns[1].IPL = 1;
  job->run.JCIL = 2;
  ReadEndLines(*job);
  EXPECT_EQ(job->patterns[1].Iscale, 50);
  EXPECT_EQ(job->patterns[1].Idif, 20);
  EXPECT_FLOAT_EQ(job->run.rpaRangeLow, 10.0f);
  EXPECT_FLOAT_EQ(job->run.rpaRangeHigh, 90.0f);
}

TEST(PatternBlock, EndLinesToleratetheEndOfTheFile) {
  BlockJob job("! nothing more\n");
  job->patterns[1].IPL = 1;
  job->run.JCIL = 2;
  ReadEndLines(*job);
  EXPECT_EQ(job->patterns[1].Iscale, 100);
  EXPECT_EQ(job->patterns[1].Idif, 100);
}

TEST(PatternBlock, GlobalCodesAreDecodedWithoutLimitCheck) {
  BlockJob job("");
  job->patterns[2].GLBcode[40] = 4011.0f;
  DecodeGlobalCodes(*job);
  EXPECT_EQ(job->patterns[2].GLBword[40].parameterNumber, 401);
}

}  // namespace
}  // namespace corvinet
