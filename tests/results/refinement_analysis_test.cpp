// The refinement analysis: classes of the parameters, the effective number of reflections of
// patterns with known overlap, the expected Rp against its analytic value, and every comment.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "records/job.h"
#include "records/reflection.h"
#include "refine/order_reflections.h"
#include "results/refinement_analysis.h"

namespace corvinet {
namespace {

// Pattern 1 of 2theta points 9..12 by 0.01, every point reached by all the
// reflections, which sit at the given positions with the given widths.
struct Reflections {
  std::unique_ptr<Job> job = std::make_unique<Job>();
  void Add(int phase, float position, float fwhm, int wavelength = 1) {
    ReflectionTable& t = job->patterns[1].reflections;
    Reflection& r = t.slot[++t.total];
    r.key = ReflectionKey(wavelength, phase, 1, 0, 0);
    r.position = position;
    r.Fwhm = fwhm;
    ++t.count[phase];
  }
  void Finish() {
    Pattern& p = job->patterns[1];
    p.THMIN = 9.0f;
    p.STEP = 0.01f;
    p.NPTS = 301;
    p.Wdt = 4.0f;
    for (int i = 1; i <= p.NPTS; ++i) {
      p.X[i] = 9.0f + 0.01f * static_cast<float>(i - 1);
      p.OrderCode[i] = OrderCodeOf(1, p.reflections.total);
    }
  }
};

Table1<float, DimensionLimits::NPHT> Fractions(float x1, float x2 = 0.0f) {
  Table1<float, DimensionLimits::NPHT> x;
  x[1] = x1;
  x[2] = x2;
  return x;
}

TEST(EffectiveReflections, OneIsolatedReflectionCountsWhole) {
  Reflections r;
  r.job->run.NPHASE = 1;
  r.Add(1, 10.0f, 0.2f);
  r.Finish();
  const EffectiveReflections e = CountEffectiveReflections(*r.job, 1, Fractions(1.0f));
  EXPECT_EQ(e.count, 1);
  for (float v : e.Enref) EXPECT_FLOAT_EQ(v, 1.0f);
  EXPECT_FLOAT_EQ(e.Hmin[1], 0.2f);
  EXPECT_FLOAT_EQ(e.Pmin[1], 10.0f);
}

TEST(EffectiveReflections, TwoEqualPhasesOverlappingGiveHalfEach) {
  Reflections r;
  r.job->run.NPHASE = 2;
  r.Add(1, 10.0f, 0.2f);
  r.Add(2, 10.0f, 0.2f);
  r.Finish();
  const EffectiveReflections e = CountEffectiveReflections(*r.job, 1, Fractions(0.5f, 0.5f));
  // S = 0.5 + 0.5 = 1.0, so each contributes 0.5/1.0; within its phase T = 0.5
  // is floored to 1.0.
  for (float v : e.Enref) EXPECT_FLOAT_EQ(v, 1.0f);
  for (int f = 1; f <= 2; ++f) {
    for (float v : e.phaseEnref[f]) EXPECT_FLOAT_EQ(v, 0.5f);
  }
}

TEST(EffectiveReflections, KnownOverlapByLevel) {
  Reflections r;
  r.job->run.NPHASE = 1;
  r.Add(1, 10.0f, 0.5f);
  r.Add(1, 10.3f, 0.5f);
  r.Add(1, 11.0f, 0.5f);
  r.Add(1, 10.0f, 0.5f, 2);  // a second wavelength: neither counted nor a neighbour
  r.Finish();
  const EffectiveReflections e = CountEffectiveReflections(*r.job, 1, Fractions(1.0f));
  // p = 1: 10.0 and 10.3 share [9.5, 10.5] and [9.8, 10.8]: 1/2 each; 11.0 alone.
  // p = 1/2 and 1/4: the reaches 0.25 and 0.125 hold each reflection alone.
  EXPECT_EQ(e.count, 3);
  EXPECT_FLOAT_EQ(e.Enref[0], 2.0f);
  EXPECT_FLOAT_EQ(e.Enref[1], 3.0f);
  EXPECT_FLOAT_EQ(e.Enref[2], 3.0f);
  EXPECT_FLOAT_EQ(e.firstPosition, 10.0f);
  EXPECT_FLOAT_EQ(e.lastPosition, 11.0f);
  EXPECT_FLOAT_EQ(e.sumFwhm, 1.5f);
}

TEST(EffectiveReflections, ReflectionsNearAnExcludedRegionAreLeftOut) {
  Reflections r;
  r.job->run.NPHASE = 1;
  r.Add(1, 10.0f, 0.1f);
  r.Add(1, 11.0f, 0.1f);
  r.Finish();
  Pattern& p = r.job->patterns[1];
  p.idumScale = 1.0f;
  p.NEXCRG = 1;
  p.ExclLow[1] = 10.5f;
  p.ExclHigh[1] = 10.7f;  // 11.0 is within 4 x 0.1 of its end
  const EffectiveReflections e = CountEffectiveReflections(*r.job, 1, Fractions(1.0f));
  EXPECT_EQ(e.count, 1);
  EXPECT_FLOAT_EQ(e.lastPosition, 10.0f);
}

TEST(ParameterClasses, FirstUseDecidesAndOtherKindsAreCounted) {
  auto job = std::make_unique<Job>();
  job->run.NPHASE = 1;
  Phase& ph = job->phases[1];
  ph.Nat = 1;
  job->patterns[1].GLBword[1].parameterNumber = 1;
  ph.pat[1].PAC[1].parameterNumber = 2;   // scale: profile class by the rule
  ph.pat[1].PAC[12].parameterNumber = 3;  // preferred orientation
  job->atoms[1].ATC[1].parameterNumber = 4;
  job->atoms[1].ATC[2].parameterNumber = 1;  // the global parameter again
  job->atoms[1].ATC[3].parameterNumber = 4;
  const ParameterClasses c = ClassifyParameters(*job, 1, 4);
  EXPECT_EQ(c.Kind[1], ParameterClass::kGlobal);
  EXPECT_EQ(c.Kind[2], ParameterClass::kProfile);
  EXPECT_EQ(c.Kind[3], ParameterClass::kIntensity);
  EXPECT_EQ(c.Kind[4], ParameterClass::kIntensity);
  EXPECT_EQ(c.NGlobal, 1);
  EXPECT_EQ(c.NProfile, 1);
  EXPECT_EQ(c.NIntensity, 2);
  EXPECT_EQ(c.preferredOrientation, 1);
  EXPECT_EQ(c.Appearances[1], 2);
  EXPECT_EQ(c.DistinctUses[1], 1);
  EXPECT_EQ(c.Appearances[4], 2);
  EXPECT_EQ(c.DistinctUses[4], 0);
  EXPECT_EQ(c.phaseIntensity[1], 2);
}

TEST(ExpectedProfileFactors, NoiseMatchesThePoissonMeanDeviation) {
  auto job = std::make_unique<Job>();
  Pattern& p = job->patterns[1];
  p.NPTS = 4000;
  const float y = 10000.0f;
  for (int i = 1; i <= p.NPTS; ++i) {
    p.X[i] = static_cast<float>(i);
    p.Ytotal[i] = y;
    p.Variance[i] = y;
    p.OrderCode[i] = OrderCodeOf(1, 1);
    // One count too many in the first quarter, two too few in the last.
    p.Ycalc[i] = i <= 1000 ? y - 1.0f : i > 3000 ? y + 2.0f : y;
  }
  p.NBCKGD = 0;
  job->reliability.pattern[1].all.SumYobs = y * 4000.0f;
  job->reliability.pattern[1].all.SumYnet = y * 2000.0f;
  const ExpectedFactors e = ExpectedProfileFactors(*job, 1);
  // For a large mean m, E|Y - m| = sqrt(2m/pi) = 79.79: Rp = 0.7979 %.
  const double expected = 100.0 * std::sqrt(2.0 * y / 3.14159265358979);
  EXPECT_NEAR(e.ExRp, expected / y, 0.04 * expected / y);
  EXPECT_NEAR(e.ExCRp, 2.0 * e.ExRp, 1e-4);
  EXPECT_FLOAT_EQ(e.regionSum[0], 1000.0f);
  EXPECT_FLOAT_EQ(e.regionSum[1], 0.0f);
  EXPECT_FLOAT_EQ(e.regionSum[3], -2000.0f);
}

TEST(SharpestInQ, ConstantWavelengthQIsTwoPiOverTheBraggSpacing) {
  auto p = std::make_unique<Pattern>();
  p->LAMBDA[1] = 1.5406f;
  const double lambda = 1.5406, twoTheta = 40.0, H = 0.08, rad = 3.14159265358979 / 180.0;
  const auto q = [&](double tt) {
    return 4.0 * 3.14159265358979 * std::sin(0.5 * tt * rad) / lambda;
  };
  const double d = lambda / (2.0 * std::sin(0.5 * twoTheta * rad));
  const WidthInQ w = SharpestInQ(*p, 40.0f, 0.08f);
  EXPECT_NEAR(w.Q, 2.0 * 3.14159265358979 / d, 1e-5);
  // The width in Q by the difference of Q across the width in 2theta.
  EXPECT_NEAR(w.DQ, q(twoTheta + 0.5 * H) - q(twoTheta - 0.5 * H), 1e-6);
  EXPECT_NEAR(w.relativePercent, 100.0 * w.DQ / w.Q, 1e-4);
  EXPECT_NEAR(InverseSpacing(*p, 40.0f), 1.0 / d, 1e-6);
}

TEST(SharpestInQ, TimeOfFlightAndEnergyQIsTwoPiOverD) {
  auto p = std::make_unique<Pattern>();
  p->IXUNIT = AbscissaUnit::kTimeOfFlight;
  p->Dtt1 = 5000.0f;  // t = Dtt1 d: 10000 microseconds is d = 2
  WidthInQ w = SharpestInQ(*p, 10000.0f, 20.0f);
  EXPECT_NEAR(w.Q, 3.14159265f, 1e-5f);
  EXPECT_NEAR(w.relativePercent, 0.2f, 1e-6f);
  EXPECT_NEAR(w.DQ, 3.14159265f * 0.002f, 1e-7f);
  p->IXUNIT = AbscissaUnit::kEnergy;
  p->Dtt1 = 50.0f;  // E = Dtt1/d: 25 is d = 2
  w = SharpestInQ(*p, 25.0f, 0.05f);
  EXPECT_NEAR(w.Q, 3.14159265f, 1e-5f);
}

bool Has(const std::vector<std::string>& lines, const std::string& line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

VerdictInputs Verdict(float chi2, float rb, float eclectic = 10.0f, int warnings = 0) {
  VerdictInputs v;
  v.chi2 = chi2;
  v.averageRB = rb;
  v.eclecticRatio = eclectic;
  v.warnings = warnings;
  v.jobType = 0;
  return v;
}

const char* kTooLow = "  Reduced Chi-square  TOO LOW, probably the standard deviations";
const char* kVeryGood = " => Your refinement seems to be very good!";
const char* kRatherGood = " => Your refinement seems to be rather good!";
const char* kImproved = " => Your refinement could still be improved!";

TEST(Verdict, LowChiSquareWarnsAndTakesAwayVeryGood) {
  // Chi2 0.89 and RB 4: comment a, and Good = 10 by c; the warning of a
  // leaves Warnings at 1, which is too many for "very good".
  const auto lines = VerdictLines(Verdict(0.89f, 4.0f));
  EXPECT_TRUE(Has(lines, " => WARNING!:"));
  EXPECT_TRUE(Has(lines, kTooLow));
  EXPECT_FALSE(Has(lines, kVeryGood));
  EXPECT_FALSE(Has(lines, kRatherGood));
}

TEST(Verdict, GoodLevelsByChiSquareAndBraggR) {
  EXPECT_TRUE(Has(VerdictLines(Verdict(2.0f, 4.0f)), kVeryGood));
  EXPECT_TRUE(Has(VerdictLines(Verdict(5.0f, 4.0f)), kRatherGood));
  EXPECT_TRUE(Has(VerdictLines(Verdict(5.0f, 6.0f)), kImproved));
  // Exactly 3 with RB below 5 leaves Good at 1.
  EXPECT_TRUE(Has(VerdictLines(Verdict(3.0f, 4.0f)), kImproved));
  // One warning still allows "rather good" but not "very good".
  EXPECT_TRUE(Has(VerdictLines(Verdict(5.0f, 4.0f, 10.0f, 1)), kRatherGood));
  EXPECT_FALSE(Has(VerdictLines(Verdict(2.0f, 4.0f, 10.0f, 1)), kVeryGood));
}

TEST(Verdict, MixedLevelsWithHighBraggR) {
  const auto mixed1 = VerdictLines(Verdict(5.0f, 9.0f));
  EXPECT_TRUE(Has(mixed1, " => Your Chi-square is NOT HIGH but the model could be improved"));
  const auto mixed5 = VerdictLines(Verdict(2.0f, 9.0f));
  EXPECT_TRUE(Has(mixed5, " => Chi-square is LOW but the HIGH R-Bragg factor can be due to"));
  EXPECT_TRUE(Has(VerdictLines(Verdict(2.0f, 20.0f)),
                  " => Your Chi-square is NOT HIGH but the model could be improved"));
}

TEST(Verdict, HighChiSquare) {
  const auto good = VerdictLines(Verdict(12.0f, 4.0f));
  EXPECT_TRUE(Has(good, "  Reduced Chi-square  TOO HIGH, the model is probably good but"));
  EXPECT_FALSE(Has(good, "  Try to improve the peak shape model!"));
  EXPECT_TRUE(Has(VerdictLines(Verdict(12.0f, 6.0f)), "  Try to improve the peak shape model!"));
  const auto bad = VerdictLines(Verdict(12.0f, 9.0f));
  EXPECT_TRUE(Has(bad, "  Reduced Chi-square and average R-Bragg are TOO HIGH"));
}

TEST(Verdict, LowEclecticRatioAndManyWarnings) {
  const auto low = VerdictLines(Verdict(2.0f, 4.0f, 3.9f));
  EXPECT_TRUE(Has(low, "  Eclectic-view-ratio is TOO LOW (<4), if there is no constraint"));
  EXPECT_FALSE(Has(low, kVeryGood));
  EXPECT_FALSE(Has(VerdictLines(Verdict(2.0f, 4.0f, 4.0f)),
                   "  Eclectic-view-ratio is TOO LOW (<4), if there is no constraint"));
  // A correlation of distinct kind gives four warnings.
  const auto many = VerdictLines(Verdict(2.0f, 4.0f, 10.0f, 4));
  EXPECT_TRUE(Has(many, " => Please, check carefully what are you doing!"));
  EXPECT_FALSE(Has(many, kVeryGood));
}

TEST(Verdict, OnePreferredOrientationParameterInANeutronRefinement) {
  VerdictInputs v = Verdict(2.0f, 4.0f);
  v.preferredOrientation = 1;
  v.jobType = 1;
  EXPECT_TRUE(
      Has(VerdictLines(v), "  Are you really dealing with a preferred orientation problem?"));
  v.jobType = 0;
  EXPECT_FALSE(
      Has(VerdictLines(v), "  Are you really dealing with a preferred orientation problem?"));
}

}  // namespace
}  // namespace corvinet
