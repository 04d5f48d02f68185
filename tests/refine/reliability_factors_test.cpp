// Tests of the residual sums and the derived reliability factors of both point sets.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "refine/excluded_points.h"
#include "refine/reliability.h"
#include "refine/reliability_case.h"

namespace corvinet {
namespace {

using testing::kBragg;
using testing::kExcludedCode;
using testing::kNoReflection;
using testing::ReliabilityCase;
using testing::TestPoint;

// The factors of a set computed in double precision straight from their
// definitions, over the points marked as used (and Bragg, for set B).
struct Expected {
  int n = 0, np = 0;
  double rp, rwp, rexp, chi2, convRp, convRwp, convRexp, dwStat, dwExp, deviance, devStar, gof,
      nSigma, residual;
};

Expected Reference(const std::vector<TestPoint>& points, const std::vector<bool>& used,
                   bool braggOnly, int fitted) {
  double ydif = 0, yobs = 0, ynet = 0, wYobs2 = 0, residual = 0, wYnet2 = 0, dw = 0, dev = 0,
         inv = 0;
  int n = 0;
  bool first = true;
  double previous = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (!used[i]) continue;
    const TestPoint& t = points[i];
    const double yc = double(t.yb) + t.ycalc;
    const double d = t.yo - yc;
    const double w = 1.0 / t.var;
    const double s = d * std::sqrt(w);
    const bool bragg = t.code != 0 && t.code != kExcludedCode;
    if (!braggOnly || bragg) {
      ++n;
      ydif += std::fabs(d);
      yobs += t.yo;
      ynet += t.yo - t.yb;
      wYobs2 += w * t.yo * t.yo;
      residual += w * d * d;
      wYnet2 += w * (t.yo - t.yb) * (t.yo - t.yb);
      if (!first) dw += (s - previous) * (s - previous);
      dev += t.yo * std::log(std::fabs(t.yo / yc)) - d;
      inv += 1.0 / yc;
    }
    previous = s;
    first = false;
  }
  Expected e;
  e.n = n;
  e.np = n - fitted;
  e.residual = residual;
  e.rp = 100 * ydif / yobs;
  e.rwp = 100 * std::sqrt(residual / wYobs2);
  e.rexp = 100 * std::sqrt(e.np / wYobs2);
  e.chi2 = residual / e.np;
  e.convRp = 100 * ydif / ynet;
  e.convRwp = 100 * std::sqrt(residual / wYnet2);
  e.convRexp = 100 * std::sqrt(e.np / wYnet2);
  e.dwStat = dw / residual;
  e.dwExp = 2 * (double(n - 1) / e.np - 3.0902 / std::sqrt(n + 2.0));
  e.deviance = 2 * dev;
  e.devStar = e.deviance / (inv / 6 + e.np);
  e.gof = std::sqrt(residual / n);
  e.nSigma = std::sqrt(0.5 * e.np) * (e.chi2 - 1);
  return e;
}

void ExpectClose(float actual, double expected, const char* what) {
  EXPECT_NEAR(actual, expected, 2e-4 * std::fabs(expected) + 1e-6) << what;
}

void ExpectFactors(const ReliabilityFactors& f, const Expected& e) {
  EXPECT_EQ(f.N, e.n);
  EXPECT_EQ(f.NP, e.np);
  ExpectClose(f.sums.Residual, e.residual, "Residual");
  ExpectClose(f.Rp, e.rp, "Rp");
  ExpectClose(f.Rwp, e.rwp, "Rwp");
  ExpectClose(f.Rexp, e.rexp, "Rexp");
  ExpectClose(f.Chi2, e.chi2, "Chi2");
  ExpectClose(f.conventionalRp, e.convRp, "conventional Rp");
  ExpectClose(f.conventionalRwp, e.convRwp, "conventional Rwp");
  ExpectClose(f.conventionalRexp, e.convRexp, "conventional Rexp");
  ExpectClose(f.conventionalChi2, e.chi2, "conventional Chi2");
  ExpectClose(f.DwStat, e.dwStat, "DW-Stat");
  ExpectClose(f.DwExp, e.dwExp, "DW-exp");
  ExpectClose(f.Deviance, e.deviance, "Deviance");
  ExpectClose(f.DevStar, e.devStar, "Dev*");
  ExpectClose(f.GoF, e.gof, "GoF");
  ExpectClose(f.NSigma, e.nSigma, "N-sigma");
}

// Eight points at x = 10..17: non-Bragg points 1, 6 and 8, point 3 in an
// excluded region, Bragg points 2, 4, 5 and 7.
const std::vector<TestPoint> kMixedPoints = {
    {120, 100, 5, 120, kNoReflection},   {135, 101, 30, 135, kBragg},
    {400, 102, 250, 400, kExcludedCode}, {260, 103, 170, 260, kBragg},
    {180, 104, 60, 180, kBragg},         {110, 105, 2, 110, kNoReflection},
    {150, 106, 50, 150, kBragg},         {99, 107, 0, 99, kNoReflection},
};
const std::vector<bool> kMixedUsed = {true, true, false, true, true, true, true, true};

struct MixedCase : ReliabilityCase {
  MixedCase() {
    SetPoints(kMixedPoints);
    Exclude(12.0f, 12.4f);
    job->run.MAXS = 2;
    ResidualStatistics(*job, 1, 1, 0);
  }
};

TEST(ReliabilityFactors, AllPointsSetMatchesIndependentDoubleSums) {
  MixedCase c;
  ExpectFactors(c.job->reliability.pattern[1].setA, Reference(kMixedPoints, kMixedUsed, false, 2));
}

TEST(ReliabilityFactors, BraggSetMatchesIndependentDoubleSumsOverBraggPoints) {
  MixedCase c;
  const Expected e = Reference(kMixedPoints, kMixedUsed, true, 2);
  EXPECT_EQ(e.n, 4);
  ExpectFactors(c.job->reliability.pattern[1].setB, e);
}

TEST(ReliabilityFactors, NonBraggSumsHoldPointsWithCodeZeroOrMarker) {
  MixedCase c;
  const PatternReliability& r = c.job->reliability.pattern[1];
  EXPECT_EQ(r.all.points, 7);
  EXPECT_EQ(r.nonBragg.points, 3);
  EXPECT_FLOAT_EQ(r.nonBragg.SumYobs, 120.0f + 110.0f + 99.0f);
}

TEST(ReliabilityFactors, HandComputedTwoPointPattern) {
  ReliabilityCase c;
  // d = 2 with w = 1, then d = -3 with w = 1/4: s = 2 then -1.5.
  c.SetPoints({{10, 0, 8, 1, kBragg}, {20, 0, 23, 4, kBragg}});
  c.job->run.MAXS = 0;
  ResidualStatistics(*c.job, 1, 1, 0);
  const ReliabilityFactors& f = c.job->reliability.pattern[1].setA;
  EXPECT_FLOAT_EQ(f.sums.SumYdif, 5.0f);
  EXPECT_FLOAT_EQ(f.sums.Residual, 6.25f);
  EXPECT_FLOAT_EQ(f.sums.SumwYobsSQ, 200.0f);
  EXPECT_FLOAT_EQ(f.Rp, 100.0f * 5.0f / 30.0f);
  EXPECT_FLOAT_EQ(f.Rwp, 17.677670f);
  EXPECT_FLOAT_EQ(f.Rexp, 10.0f);
  EXPECT_FLOAT_EQ(f.Chi2, 3.125f);
  EXPECT_FLOAT_EQ(f.DwStat, 12.25f / 6.25f);
  EXPECT_FLOAT_EQ(f.DwExp, 2.0f * (0.5f - 3.0902f / 2.0f));
  EXPECT_FLOAT_EQ(f.GoF, std::sqrt(3.125f));
  EXPECT_FLOAT_EQ(f.NSigma, 2.125f);
}

TEST(ReliabilityFactors, GoodnessOfFitDividesByPointsNotByFreedom) {
  ReliabilityCase c;
  c.SetPoints({{10, 0, 8, 1, kBragg}, {20, 0, 23, 4, kBragg}, {5, 0, 5, 1, kBragg}});
  c.job->run.MAXS = 2;
  ResidualStatistics(*c.job, 1, 1, 0);
  const ReliabilityFactors& f = c.job->reliability.pattern[1].setA;
  EXPECT_EQ(f.NP, 1);
  EXPECT_FLOAT_EQ(f.GoF, std::sqrt(6.25f / 3.0f));
  EXPECT_FLOAT_EQ(f.Chi2, 6.25f);
}

TEST(ReliabilityFactors, TinyObservedOrCalculatedIntensityAddsNoDeviance) {
  ReliabilityCase c;
  // Only the first point has a deviance term; the second has Yo at the
  // threshold, the third Yc at it.
  c.SetPoints({{10, 0, 5, 1, kBragg}, {1.0e-10f, 0, 5, 1, kBragg}, {4, 0, 1.0e-10f, 1, kBragg}});
  ResidualStatistics(*c.job, 1, 1, 0);
  const ResidualSums& s = c.job->reliability.pattern[1].all;
  EXPECT_NEAR(s.DevSum, 10.0 * std::log(2.0) - 5.0, 1e-5);
  EXPECT_NEAR(c.job->reliability.pattern[1].setA.Deviance, 2 * (10.0 * std::log(2.0) - 5.0), 1e-5);
}

TEST(ReliabilityFactors, FirstUsedPointAddsNothingToDurbinWatsonSum) {
  ReliabilityCase c;
  // Point 1 is excluded; s = 3 at point 2 and -2 at point 3.
  c.SetPoints({{50, 0, 0, 1, kExcludedCode}, {10, 0, 7, 1, kBragg}, {10, 0, 12, 1, kBragg}});
  c.Exclude(9.5f, 10.2f);
  ResidualStatistics(*c.job, 1, 1, 0);
  EXPECT_EQ(c.job->reliability.pattern[1].all.DwSum, 25.0f);
}

TEST(ReliabilityFactors, SinglePointHasZeroDurbinWatsonSum) {
  ReliabilityCase c;
  c.SetPoints({{10, 0, 7, 1, kBragg}});
  ResidualStatistics(*c.job, 1, 1, 0);
  EXPECT_EQ(c.job->reliability.pattern[1].all.DwSum, 0.0f);
}

TEST(ReliabilityFactors, NonBraggDurbinWatsonTermLinksToPreviousUsedPoint) {
  ReliabilityCase c;
  // s = 3 (Bragg), then -2 (no reflection): the non-Bragg term is 25.
  c.SetPoints({{10, 0, 7, 1, kBragg}, {10, 0, 12, 1, kNoReflection}, {10, 0, 10, 1, kBragg}});
  ResidualStatistics(*c.job, 1, 1, 0);
  const PatternReliability& r = c.job->reliability.pattern[1];
  EXPECT_EQ(r.nonBragg.DwSum, 25.0f);
  EXPECT_EQ(r.all.DwSum, 25.0f + 4.0f);
}

TEST(ReliabilityFactors, AllBraggPointsGiveTheSameFactorsInBothSets) {
  ReliabilityCase c;
  c.SetPoints({{120, 100, 5, 120, kBragg},
               {135, 101, 30, 135, kBragg},
               {260, 103, 170, 260, kBragg},
               {180, 104, 60, 180, kBragg},
               {150, 106, 50, 150, kBragg}});
  c.job->run.MAXS = 1;
  ResidualStatistics(*c.job, 1, 1, 0);
  const ReliabilityFactors& a = c.job->reliability.pattern[1].setA;
  const ReliabilityFactors& b = c.job->reliability.pattern[1].setB;
  EXPECT_EQ(a.N, b.N);
  EXPECT_EQ(a.Rp, b.Rp);
  EXPECT_EQ(a.Rwp, b.Rwp);
  EXPECT_EQ(a.Rexp, b.Rexp);
  EXPECT_EQ(a.Chi2, b.Chi2);
  EXPECT_EQ(a.conventionalRp, b.conventionalRp);
  EXPECT_EQ(a.conventionalRwp, b.conventionalRwp);
  EXPECT_EQ(a.conventionalRexp, b.conventionalRexp);
  EXPECT_EQ(a.conventionalChi2, b.conventionalChi2);
  EXPECT_EQ(a.Deviance, b.Deviance);
  EXPECT_EQ(a.DevStar, b.DevStar);
  EXPECT_EQ(a.DwExp, b.DwExp);
  EXPECT_EQ(a.GoF, b.GoF);
  EXPECT_EQ(a.NSigma, b.NSigma);
  // DW-Stat of the Bragg set is formed as (DW-Stat * Residual)/Residual.
  EXPECT_FLOAT_EQ(a.DwStat, b.DwStat);
}

TEST(ReliabilityFactors, ExcludedRegionIsTestedByPointIndexNotAbscissa) {
  ReliabilityCase c;
  // The region 11.4..11.6 holds no abscissa, but its limits turn into the
  // indices trunc(1.4 + 1.5) = 2 and trunc(1.6 + 1.5) = 3.
  c.SetPoints(
      {{10, 0, 9, 1, kBragg}, {10, 0, 9, 1, kBragg}, {10, 0, 9, 1, kBragg}, {10, 0, 9, 1, kBragg}});
  c.Exclude(11.4f, 11.6f);
  ResidualStatistics(*c.job, 1, 1, 0);
  EXPECT_EQ(c.job->reliability.pattern[1].all.points, 2);
}

TEST(ReliabilityFactors, ExcludedRegionOfUnequalStepsUsesBisection) {
  ReliabilityCase c;
  c.SetPoints(
      {{10, 0, 9, 1, kBragg}, {10, 0, 9, 1, kBragg}, {10, 0, 9, 1, kBragg}, {10, 0, 9, 1, kBragg}});
  c.pattern().equalStep = 0;
  c.Exclude(11.4f, 11.6f);  // the last point at or below both limits is point 2
  const std::vector<bool> marks = ExcludedPointMarks(c.pattern());
  EXPECT_EQ(marks, (std::vector<bool>{false, false, true, false, false}));
  ResidualStatistics(*c.job, 1, 1, 0);
  EXPECT_EQ(c.job->reliability.pattern[1].all.points, 3);
}

TEST(ReliabilityFactors, CodeMarkerOutsideExcludedRegionsCountsInAllPointsOnly) {
  ReliabilityCase c;
  c.SetPoints({{10, 0, 9, 1, kBragg}, {10, 0, 8, 1, kExcludedCode}, {10, 0, 9, 1, kBragg}});
  ResidualStatistics(*c.job, 1, 1, 0);
  const PatternReliability& r = c.job->reliability.pattern[1];
  EXPECT_EQ(r.setA.N, 3);
  EXPECT_EQ(r.setB.N, 2);
  EXPECT_FLOAT_EQ(r.setA.sums.Residual, 6.0f);
  EXPECT_FLOAT_EQ(r.setB.sums.Residual, 2.0f);
}

TEST(ReliabilityFactors, BackgroundEntersCalculatedButNotNetIntensity) {
  ReliabilityCase c;
  c.SetPoints({{50, 20, 25, 5, kBragg}});
  ResidualStatistics(*c.job, 1, 1, 0);
  const ResidualSums& s = c.job->reliability.pattern[1].all;
  EXPECT_FLOAT_EQ(s.SumYcal, 45.0f);
  EXPECT_FLOAT_EQ(s.SumYdif, 5.0f);
  EXPECT_FLOAT_EQ(s.SumYnet, 30.0f);
  EXPECT_FLOAT_EQ(s.SumwYnetSQ, 900.0f / 5.0f);
  EXPECT_FLOAT_EQ(s.InvYcalSum, 1.0f / 45.0f);
}

}  // namespace
}  // namespace corvinet
