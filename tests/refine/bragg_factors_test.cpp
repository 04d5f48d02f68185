// Tests of the Rietveld partition, the Bragg R-factors and the extraction of F2.
#include "refine/bragg_factors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include "refine/reliability_case.h"

namespace corvinet {
namespace {

using testing::kBragg;
using testing::kNoReflection;
using testing::ReliabilityCase;
using testing::TestPoint;

// Two overlapping reflections of phase 1 on eleven points x = 0..10, step 1,
// background 10 everywhere.
//   reflection 1 at x = 4: peak 0.1, 0.3, 0.1 at x = 3, 4, 5; c = LpM 5 * scale 2 * F2 10 * Corr 1
//   = 100 reflection 2 at x = 6: peak 0.1, 0.4, 0.1 at x = 5, 6, 7; c = 4 * 2 * 5 * 1.5 = 60
// Ycalc = c1 peak1 + c2 peak2 = 10, 30, 16, 24, 6 at x = 3..7; the net
// observed intensity there is 12, 27, 20, 30, 5.
struct OverlapCase : ReliabilityCase {
  std::map<std::pair<int, float>, float> peaks;  // (reflection, x) -> peak value
  std::map<int, PeakReach> reaches;
  BraggProfile profile;

  OverlapCase(int jbt = 0) {
    std::vector<TestPoint> points(11, TestPoint{10, 10, 0, 10, kNoReflection});
    const float ycalc[] = {10, 30, 16, 24, 6};
    const float net[] = {12, 27, 20, 30, 5};
    for (int j = 0; j < 5; ++j) {
      points[static_cast<std::size_t>(3 + j)] = {10 + net[j], 10, ycalc[j], 10, kBragg};
    }
    SetPoints(points, 0.0f, 1.0f);
    Phase& phase = job->phases[1];
    phase.Jbt = jbt;
    phase.pat[1].Contribution = 1;
    phase.pat[1].PAR[1] = 2.0f;
    AddReflection(ReflectionKey(1, 1, 1, 0, 0), 5.0f, 10.0f, 1.0f, {4.0f, 2.5f, 2.5f});
    AddReflection(ReflectionKey(1, 1, 1, 1, 0), 4.0f, 5.0f, 1.5f, {6.0f, 2.5f, 2.5f});
    SetPeak(1, {{3, 0.1f}, {4, 0.3f}, {5, 0.1f}});
    SetPeak(2, {{5, 0.1f}, {6, 0.4f}, {7, 0.1f}});
    profile.reach = [this](int, int k) { return reaches.at(k); };
    profile.peak = [this](int ip, int k, int i) {
      const auto it = peaks.find({k, job->patterns[ip].X[i]});
      return it == peaks.end() ? 0.0f : it->second;
    };
  }

  int AddReflection(std::int32_t key, float lpm, float f2, float corr, PeakReach reach) {
    ReflectionTable& t = pattern().reflections;
    const int k = ++t.total;
    t.slot[k].key = key;
    t.slot[k].LpM = lpm;
    t.slot[k].F2 = f2;
    t.slot[k].Corr = corr;
    t.slot[k].position = reach.position;
    reaches[k] = reach;
    return k;
  }

  void SetPeak(int k, std::initializer_list<std::pair<float, float>> values) {
    for (const auto& [x, v] : values) peaks[{k, x}] = v;
  }

  Reflection& slot(int k) { return pattern().reflections.slot[k]; }
};

// Shares computed by hand from the table above.
constexpr double kIobs1 = 100 * (12.0 / 10 * 0.1 + 27.0 / 30 * 0.3 + 20.0 / 16 * 0.1);  // 51.5
constexpr double kIcalc1 = 100 * 0.5;
constexpr double kIobs2 = 60 * (20.0 / 16 * 0.1 + 30.0 / 24 * 0.4 + 5.0 / 6 * 0.1);  // 42.5
constexpr double kIcalc2 = 60 * 0.6;

TEST(BraggPartition, OverlappingReflectionsShareTheObservedIntensity) {
  OverlapCase c;
  const ReflectionShare s1 = PartitionReflection(*c.job, 1, 1, c.profile);
  const ReflectionShare s2 = PartitionReflection(*c.job, 1, 2, c.profile);
  EXPECT_TRUE(s1.counted);
  EXPECT_NEAR(s1.Iobs, 51.5, 1e-4);
  EXPECT_NEAR(s1.Icalc, 50.0, 1e-4);
  EXPECT_NEAR(s2.Iobs, 42.5, 1e-4);
  EXPECT_NEAR(s2.Icalc, 36.0, 1e-4);
  // With Ycalc the sum of both peaks, the shares add up to the whole net intensity.
  EXPECT_NEAR(s1.Iobs + s2.Iobs, 12 + 27 + 20 + 30 + 5, 1e-4);
  EXPECT_NEAR(s1.Fobs, std::sqrt(kIobs1 / (2 * 5)), 1e-5);
  EXPECT_NEAR(s1.Fcalc, std::sqrt(kIcalc1 / (2 * 5)), 1e-5);
  EXPECT_NEAR(s2.Fobs, std::sqrt(kIobs2 / (2 * 4)), 1e-5);
  EXPECT_NEAR(s2.Fcalc, std::sqrt(kIcalc2 / (2 * 4)), 1e-5);
}

TEST(BraggPartition, BraggAndRfFactorsOfThePhase) {
  OverlapCase c;
  BraggFactors(*c.job, true, c.profile);
  const double fo1 = std::sqrt(kIobs1 / 10), fc1 = std::sqrt(kIcalc1 / 10);
  const double fo2 = std::sqrt(kIobs2 / 8), fc2 = std::sqrt(kIcalc2 / 8);
  const double rb =
      100 * (std::fabs(kIobs1 - kIcalc1) + std::fabs(kIobs2 - kIcalc2)) / (kIobs1 + kIobs2);
  const double rf = 100 * (std::fabs(fo1 - fc1) + std::fabs(fo2 - fc2)) / (fo1 + fo2);
  EXPECT_NEAR(c.job->reliability.pattern[1].braggR[1], rb, 1e-4);
  EXPECT_NEAR(c.job->reliability.pattern[1].rfFactor[1], rf, 1e-4);
  EXPECT_NEAR(rb, 800.0 / 94.0, 1e-9);
}

TEST(BraggPartition, PointsWithoutBraggCodeAreNotSummed) {
  OverlapCase c;
  c.pattern().OrderCode[5] = kNoReflection;  // x = 4, the top of reflection 1
  const ReflectionShare s1 = PartitionReflection(*c.job, 1, 1, c.profile);
  EXPECT_NEAR(s1.Icalc, 100 * 0.2, 1e-4);
  EXPECT_NEAR(s1.Iobs, 100 * (12.0 / 10 * 0.1 + 20.0 / 16 * 0.1), 1e-4);
}

TEST(BraggPartition, PeakInsideExcludedRegionCountsNeitherObservedNorCalculated) {
  OverlapCase c;
  c.Exclude(3.8f, 4.2f);
  EXPECT_FALSE(PartitionReflection(*c.job, 1, 1, c.profile).counted);
  BraggFactors(*c.job, false, c.profile);
  EXPECT_NEAR(c.job->reliability.pattern[1].braggR[1], 100 * (kIobs2 - kIcalc2) / kIobs2, 1e-4);
}

TEST(BraggPartition, RegionNearThePeakBaseExcludesOnlyWithIdumThree) {
  OverlapCase c;
  c.Exclude(7.5f, 7.9f);  // beyond x = 6 but within its right reach of 2.5
  EXPECT_TRUE(PartitionReflection(*c.job, 1, 2, c.profile).counted);
  c.pattern().idumScale = 1.0f;
  EXPECT_FALSE(PartitionReflection(*c.job, 1, 2, c.profile).counted);
  EXPECT_TRUE(PartitionReflection(*c.job, 1, 1, c.profile).counted);
}

TEST(BraggPartition, WeakCalculatedIntensityIsReplacedByOneAsDivisor) {
  OverlapCase c;
  for (int i = 4; i <= 8; ++i) c.pattern().Ycalc[i] = 0.5f;
  const ReflectionShare s1 = PartitionReflection(*c.job, 1, 1, c.profile);
  EXPECT_NEAR(s1.Iobs, 100 * (12 * 0.1 + 27 * 0.3 + 20 * 0.1), 1e-3);
}

TEST(BraggPartition, NegativeObservedShareIsFloored) {
  OverlapCase c;
  for (int i = 1; i <= c.pattern().NPTS; ++i) c.pattern().Ytotal[i] = 5.0f;
  const ReflectionShare s1 = PartitionReflection(*c.job, 1, 1, c.profile);
  EXPECT_FLOAT_EQ(s1.Iobs, 1.0e-6f * 100.0f);
}

TEST(BraggPartition, PhaseSharesAreSummedAndHandedOnOnlyForCountedReflections) {
  OverlapCase c(2);
  c.Exclude(3.8f, 4.2f);
  std::vector<int> visited;
  const PhaseBraggSums sums =
      SumPhaseShares(*c.job, 1, 1, c.profile, [&](int k, const ReflectionShare& share) {
        visited.push_back(k);
        EXPECT_NEAR(share.Iobs, kIobs2, 1e-3);
        EXPECT_NEAR(share.Icalc, kIcalc2, 1e-3);
      });
  EXPECT_EQ(visited, std::vector<int>{2});
  EXPECT_NEAR(sums.SumIobs, kIobs2, 1e-3);
  EXPECT_NEAR(sums.SumIcalc, kIcalc2, 1e-3);
  EXPECT_NEAR(sums.SumAbsI, kIobs2 - kIcalc2, 1e-3);
  // Summing alone leaves the F2 of a profile-matching phase as it was.
  EXPECT_EQ(c.slot(2).F2, 5.0f);
}

TEST(BraggPartition, BraggRatioDividesByOneBelowUnitSum) {
  EXPECT_FLOAT_EQ(BraggRatio(0.2f, 0.5f), 20.0f);
  EXPECT_FLOAT_EQ(BraggRatio(0.2f, 1.0f), 20.0f);
  EXPECT_FLOAT_EQ(BraggRatio(1.0f, 4.0f), 25.0f);
}

TEST(BraggExtraction, ProfileMatchingPhaseTakesF2FromObservedShare) {
  OverlapCase c(2);
  BraggFactors(*c.job, false, c.profile);
  EXPECT_NEAR(c.slot(1).F2, kIobs1 / (1.0 * 2 * 5), 1e-5);
  EXPECT_NEAR(c.slot(2).F2, kIobs2 / (1.5 * 2 * 4), 1e-5);
}

TEST(BraggExtraction, ReflectionWithNothingObservedKeepsAPositiveF2CycleAfterCycle) {
  OverlapCase c(2);
  for (int i = 1; i <= c.pattern().NPTS; ++i) c.pattern().Ytotal[i] = 5.0f;
  // Below the background everywhere: each extraction keeps 1.0E-6 of F2
  // (10, then 1.0E-5, 1.0E-11, ...) until that is no normal float; from there on
  // it stays at the smallest one and is never taken for an unextracted reflection.
  for (int cycle = 1; cycle <= 12; ++cycle) {
    BraggFactors(*c.job, false, c.profile);
    EXPECT_GT(c.slot(1).F2, 0.0f) << cycle;
    EXPECT_GT(c.slot(2).F2, 0.0f) << cycle;
  }
  EXPECT_EQ(c.slot(1).F2, std::numeric_limits<float>::min());
}

TEST(BraggExtraction, NegativeProfileMatchingCodeAlsoExtracts) {
  OverlapCase c(-2);
  BraggFactors(*c.job, false, c.profile);
  EXPECT_NEAR(c.slot(1).F2, kIobs1 / 10, 1e-5);
}

TEST(BraggExtraction, StructurePhaseKeepsItsF2) {
  OverlapCase c(0);
  BraggFactors(*c.job, false, c.profile);
  EXPECT_EQ(c.slot(1).F2, 10.0f);
  EXPECT_EQ(c.slot(2).F2, 5.0f);
}

TEST(BraggExtraction, VariableScaleMatchingKeepsItsF2) {
  OverlapCase c(3);
  BraggFactors(*c.job, false, c.profile);
  EXPECT_EQ(c.slot(1).F2, 10.0f);
}

TEST(BraggExtraction, SecondWavelengthCopiesF2OfItsPartner) {
  OverlapCase c(2);
  // The second-wavelength component of reflection 1 at x = 8.
  const int k =
      c.AddReflection(ReflectionKey(2, 1, 1, 0, 0), 2.5f, 10.0f, 1.0f, {8.0f, 1.0f, 1.0f});
  c.SetPeak(k, {{8, 0.2f}});
  c.pattern().Ycalc[9] = 10.0f;
  c.pattern().Ytotal[9] = 18.0f;
  c.pattern().OrderCode[9] = kBragg;
  BraggFactors(*c.job, false, c.profile);
  EXPECT_NEAR(c.slot(k).F2, kIobs1 / 10, 1e-5);
}

TEST(BraggExtraction, SecondWavelengthWithoutPartnerUsesItsOwnShare) {
  OverlapCase c(2);
  const int k =
      c.AddReflection(ReflectionKey(2, 1, 3, 0, 0), 2.5f, 10.0f, 1.0f, {8.0f, 1.0f, 1.0f});
  c.SetPeak(k, {{8, 0.2f}});
  c.pattern().Ycalc[9] = 10.0f;
  c.pattern().Ytotal[9] = 18.0f;
  c.pattern().OrderCode[9] = kBragg;
  BraggFactors(*c.job, false, c.profile);
  // Iobs = c (8/10) 0.2 with c = 2.5 * 2 * 10; F2 = Iobs/(Corr Sc LpM).
  EXPECT_NEAR(c.slot(k).F2, 50 * 0.8 * 0.2 / (2 * 2.5), 1e-5);
}

TEST(BraggExtraction, ExcludedReflectionKeepsItsF2) {
  OverlapCase c(2);
  c.Exclude(3.8f, 4.2f);
  BraggFactors(*c.job, false, c.profile);
  EXPECT_EQ(c.slot(1).F2, 10.0f);
  EXPECT_NEAR(c.slot(2).F2, kIobs2 / 12, 1e-5);
}

TEST(BraggFactors, PhaseNotContributingIsSkipped) {
  OverlapCase c;
  c.job->phases[1].pat[1].Contribution = 0;
  c.job->reliability.pattern[1].braggR[1] = -1.0f;
  BraggFactors(*c.job, true, c.profile);
  EXPECT_EQ(c.job->reliability.pattern[1].braggR[1], -1.0f);
  EXPECT_EQ(c.Lines(Unit::Out, "x.out"), (std::vector<std::string>{" => ---------> Pattern#  1"}));
}

TEST(BraggFactors, IntegratedIntensityPhaseGoesToItsOwnEvaluation) {
  OverlapCase c;
  c.job->phases[1].pat[1].Irf = -4;
  int calls = 0;
  c.profile.integratedIntensities = [&](int ip, int phase) {
    EXPECT_EQ(ip, 1);
    EXPECT_EQ(phase, 1);
    ++calls;
  };
  c.profile.peak = [](int, int, int) -> float {
    ADD_FAILURE() << "no partition expected";
    return 0.0f;
  };
  BraggFactors(*c.job, false, c.profile);
  EXPECT_EQ(calls, 1);
}

TEST(BraggFactors, ReportLinesOnConsoleAndOnOutWhenAsked) {
  OverlapCase c;
  BraggFactors(*c.job, true, c.profile);
  const std::vector<std::string> expected = {" => ---------> Pattern#  1", " => Phase:  1",
                                             " =>    Bragg R-factor: 8.51",
                                             " =>    RF-factor     : 4.74"};
  EXPECT_EQ(testing::NormaliseLines(c.Lines(Unit::Out, "x.out")), expected);
  EXPECT_EQ(testing::SplitLines(c.job.Console()), expected);
}

TEST(BraggFactors, NoOutLinesWithoutWriteFlag) {
  OverlapCase c;
  BraggFactors(*c.job, false, c.profile);
  EXPECT_TRUE(c.Lines(Unit::Out, "x.out").empty());
  EXPECT_EQ(testing::SplitLines(c.job.Console()).size(), 4u);
}

TEST(BraggFactors, MagneticPhaseReportsOneFactor) {
  EXPECT_EQ(BraggFactorLines(2, -5, 12.345f, 3.0f),
            (std::vector<std::string>{" => Phase:  2", " => Magnetic R-factor: 12.3    "}));
  EXPECT_EQ(BraggFactorLines(3, 1, 1.5f, 3.0f).size(), 2u);
  EXPECT_EQ(BraggFactorLines(1, 10, 1.5f, 3.0f),
            (std::vector<std::string>{" => Phase:  1", " =>    Bragg R-factor: 1.50    ",
                                      " =>    RF-factor     : 3.00    "}));
}

}  // namespace
}  // namespace corvinet
