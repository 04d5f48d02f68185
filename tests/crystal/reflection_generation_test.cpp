// Generation of the reflection list: range, positions, satellites, report and failures.
#include "crystal/reflection_generation.h"
#include "model/lorentz_polarisation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "crystal/reflection_range.h"
#include "reflection_case.h"

namespace corvinet {
namespace {

using testing::Cell;
using testing::HasLine;
using GenerationCase = testing::ReflectionCase;

constexpr double kPi = 3.14159265358979323846;

void Generate(Job& job) {
  GenerateReflections(job, 1, 1, ReflectionLorentzPolarisation);
}

const Reflection* Find(const std::vector<Reflection>& slots, int h, int k, int l, int sat = 0,
                       int w = 1) {
  for (const Reflection& r : slots) {
    if (KeyH(r.key) == h && KeyK(r.key) == k && KeyL(r.key) == l && r.satelliteIndex == sat &&
        KeyWavelength(r.key) == w) {
      return &r;
    }
  }
  return nullptr;
}

// --- Range limits -----------------------------------------------------------

TEST(ReflectionRange, TwoThetaUpperLimitAddsTheMarginOfThePeakTails) {
  Pattern p;
  p.IXUNIT = AbscissaUnit::kTwoTheta;
  p.THMIN = 10.0f;
  p.THMAX = 100.0f;
  p.LAMBDA[1] = p.LAMBDA[2] = 1.5f;
  p.Wdt = 8.0f;
  const MarginWidths w{0.0f, 0.0f, 0.01f};
  const ReflectionRange r = RangeOfPattern(p, w, false);
  const double lowTheta = 5.0 * kPi / 180.0;
  EXPECT_NEAR(r.sLow, std::pow(std::sin(lowTheta) / 1.5, 2), 1e-9);
  // Margin min(50, 10*8*0.01) = 0.8 degrees of two-theta, 0.4 of theta.
  EXPECT_NEAR(r.sHigh, std::pow(std::sin(50.4 * kPi / 180.0) / 1.5, 2), 1e-7);
  const ReflectionRange fixed = RangeOfPattern(p, w, true);
  EXPECT_NEAR(fixed.sHigh, std::pow(std::sin(50.0 * kPi / 180.0) / 1.5, 2), 1e-7);
}

TEST(ReflectionRange, TwoThetaMarginIsAtMostHalfOfThmax) {
  Pattern p;
  p.THMAX = 20.0f;
  p.LAMBDA[1] = p.LAMBDA[2] = 1.0f;
  p.Wdt = 100.0f;
  const ReflectionRange r = RangeOfPattern(p, MarginWidths{0.0f, 0.0f, 1.0f}, false);
  EXPECT_NEAR(r.sHigh, std::pow(std::sin(15.0 * kPi / 180.0), 2), 1e-7);
}

TEST(ReflectionRange, ThmaxInsideTheLastExcludedRegionUsesItsLowerEdge) {
  Pattern p;
  p.THMIN = 5.0f;
  p.THMAX = 110.0f;
  p.LAMBDA[1] = p.LAMBDA[2] = 1.0f;
  p.NEXCRG = 2;
  p.ExclLow[1] = 0.0f;
  p.ExclHigh[1] = 6.0f;
  p.ExclLow[2] = 90.0f;
  p.ExclHigh[2] = 180.0f;
  const ReflectionRange r = RangeOfPattern(p, MarginWidths{}, true);
  EXPECT_NEAR(r.sHigh, std::pow(std::sin(45.0 * kPi / 180.0), 2), 1e-7);
}

TEST(ReflectionRange, DoubletWidensTheRangeForTheOtherWavelength) {
  Pattern p;
  p.THMIN = 20.0f;
  p.THMAX = 60.0f;
  p.LAMBDA[1] = 1.5f;
  p.LAMBDA[2] = 1.6f;
  const ReflectionRange longer = RangeOfPattern(p, MarginWidths{}, true);
  EXPECT_NEAR(longer.sLow, std::pow(std::sin(10.0 * kPi / 180.0) / 1.6, 2), 1e-7);
  EXPECT_NEAR(longer.sHigh, std::pow(std::sin(30.0 * kPi / 180.0) / 1.5, 2), 1e-9);
  p.LAMBDA[2] = 1.4f;
  const ReflectionRange shorter = RangeOfPattern(p, MarginWidths{}, true);
  EXPECT_NEAR(shorter.sLow, std::pow(std::sin(10.0 * kPi / 180.0) / 1.5, 2), 1e-9);
  EXPECT_NEAR(shorter.sHigh, std::pow(std::sin(30.0 * kPi / 180.0) / 1.4, 2), 1e-7);
}

TEST(ReflectionRange, TimeOfFlightRangeTakesItsLowEndFromTheFirstExcludedRegion) {
  Pattern p;
  p.IXUNIT = AbscissaUnit::kTimeOfFlight;
  p.Dtt1 = 5000.0f;
  p.THMIN = 2000.0f;
  p.THMAX = 20000.0f;
  ReflectionRange r = RangeOfPattern(p, MarginWidths{}, false);
  EXPECT_NEAR(r.sLow, 0.25 * std::pow(5000.0 / 20000.0, 2), 1e-9);
  EXPECT_NEAR(r.sHigh, 0.25 * std::pow(5000.0 / 2000.0, 2), 1e-9);
  p.NEXCRG = 1;
  p.ExclLow[1] = 1000.0f;
  p.ExclHigh[1] = 2500.0f;
  r = RangeOfPattern(p, MarginWidths{}, false);
  EXPECT_NEAR(r.sHigh, 0.25 * std::pow(5000.0 / 2500.0, 2), 1e-9);
}

TEST(ReflectionRange, EnergyQAndInverseDRanges) {
  Pattern p;
  p.THMIN = 2.0f;
  p.THMAX = 8.0f;
  p.Dtt1 = 20.0f;
  p.IXUNIT = AbscissaUnit::kEnergy;
  ReflectionRange r = RangeOfPattern(p, MarginWidths{}, false);
  EXPECT_NEAR(r.sLow, 0.25 * std::pow(2.0 / 20.0, 2), 1e-9);
  EXPECT_NEAR(r.sHigh, 0.25 * std::pow(8.0 / 20.0, 2), 1e-9);
  p.IXUNIT = AbscissaUnit::kQ;
  r = RangeOfPattern(p, MarginWidths{}, false);
  EXPECT_NEAR(r.sHigh, 64.0 / (16.0 * kPi * kPi), 1e-7);  // s = 1/(2d) = Q/(4 pi)
  p.IXUNIT = AbscissaUnit::kInverseD;
  r = RangeOfPattern(p, MarginWidths{}, false);
  EXPECT_NEAR(r.sLow, 1.0, 1e-12);
  EXPECT_NEAR(r.sHigh, 16.0, 1e-12);
}

TEST(ReflectionRange, SecondWavelengthOnlyWhenDistinctWithPositiveRatio) {
  Pattern p;
  p.LAMBDA[1] = 1.54056f;
  p.LAMBDA[2] = 1.54439f;
  p.RATIO[2] = 0.5f;
  EXPECT_EQ(WavelengthCount(p), 2);
  p.RATIO[2] = 0.0f;
  EXPECT_EQ(WavelengthCount(p), 1);
  p.RATIO[2] = 0.5f;
  p.LAMBDA[2] = 0.0f;
  EXPECT_EQ(WavelengthCount(p), 1);
  p.LAMBDA[2] = 1.5410f;
  EXPECT_EQ(WavelengthCount(p), 1);
}

// --- Positions in every unit -------------------------------------------------

TEST(ReflectionPosition, TwoThetaFollowsBraggsLawWithZeroAndDisplacements) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 0);
  Pattern& p = c.P();
  p.THMIN = 5.0f;
  p.THMAX = 150.0f;
  p.GLB[1] = 0.05f;  // zero
  p.GLB[8] = -0.1f;  // cos(theta) displacement
  p.GLB[9] = 0.02f;  // sin(2 theta) transparency
  ASSERT_TRUE(c.Runs(Generate));
  const std::vector<Reflection> slots = c.Slots();
  // Wedge representatives of m3m: 0 <= h <= k <= l.
  for (const auto& [h, k, l] : {std::array<int, 3>{0, 0, 1}, {1, 1, 1}, {1, 2, 2}, {0, 2, 4}}) {
    const Reflection* r = Find(slots, h, k, l);
    ASSERT_NE(r, nullptr) << h << k << l;
    const double d = 4.0 / std::sqrt(h * h + k * k + l * l);
    const double theta = std::asin(1.54056 / (2.0 * d));
    const double expected =
        0.05 + 2.0 * theta * 180.0 / kPi - 0.1 * std::cos(theta) + 0.02 * std::sin(2.0 * theta);
    EXPECT_NEAR(r->position, expected, 2e-4) << h << k << l;
    EXPECT_NEAR(r->tanTheta, std::tan(theta), 1e-5);
  }
}

TEST(ReflectionPosition, TimeOfFlightIsLinearAndQuadraticInD) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 1);
  Pattern& p = c.P();
  p.Dtt1 = 5000.0f;
  p.Dtt2 = -3.0f;
  p.GLB[1] = 7.0f;
  p.THMIN = 1000.0f;
  p.THMAX = 25000.0f;
  ASSERT_TRUE(c.Runs(Generate));
  const std::vector<Reflection> slots = c.Slots();
  const Reflection* r = Find(slots, 0, 1, 1);
  ASSERT_NE(r, nullptr);
  const double d = 4.0 / std::sqrt(2.0);
  EXPECT_NEAR(r->position, 7.0 + 5000.0 * d - 3.0 * d * d, 0.01);
}

TEST(ReflectionPosition, EnergyIsLinearInInverseDAndQuadraticInQ) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 2);
  Pattern& p = c.P();
  p.Dtt1 = 20.0f;
  p.Dtt2 = 0.5f;
  p.GLB[1] = 0.1f;
  p.THMIN = 1.0f;
  p.THMAX = 40.0f;
  ASSERT_TRUE(c.Runs(Generate));
  const std::vector<Reflection> slots = c.Slots();
  const Reflection* r = Find(slots, 1, 1, 2);
  ASSERT_NE(r, nullptr);
  const double q = 6.0 / 16.0;
  EXPECT_NEAR(r->position, 0.1 + 20.0 * std::sqrt(q) + 0.5 * q, 1e-4);
}

TEST(ReflectionPosition, QIsTwoPiOverDAndInverseDIsOneOverD) {
  GenerationCase q("P m 3 m", Cell(4, 4, 4), 3);
  q.P().THMIN = 0.1f;
  q.P().THMAX = 6.0f;
  q.P().GLB[1] = -0.01f;
  ASSERT_TRUE(q.Runs(Generate));
  const std::vector<Reflection> qslots = q.Slots();
  const Reflection* r = Find(qslots, 0, 1, 3);
  ASSERT_NE(r, nullptr);
  EXPECT_NEAR(r->position, -0.01 + 2.0 * kPi * std::sqrt(10.0) / 4.0, 1e-5);

  GenerationCase inv("P m 3 m", Cell(4, 4, 4), 4);
  inv.P().THMIN = 0.1f;
  inv.P().THMAX = 1.0f;
  ASSERT_TRUE(inv.Runs(Generate));
  const std::vector<Reflection> invslots = inv.Slots();
  const Reflection* s = Find(invslots, 1, 2, 2);
  ASSERT_NE(s, nullptr);
  EXPECT_NEAR(s->position, 3.0 / 4.0, 1e-6);
}

TEST(ReflectionPosition, HexagonalCellUsesTheFullReciprocalMetric) {
  GenerationCase c("P 6/m m m", Cell(3, 3, 5, 90, 90, 120), 4);
  c.P().THMIN = 0.1f;
  c.P().THMAX = 1.2f;
  ASSERT_TRUE(c.Runs(Generate));
  const std::vector<Reflection> slots = c.Slots();
  const Reflection* r = Find(slots, 1, 1, 2);
  ASSERT_NE(r, nullptr);
  // 1/d² = 4/3 (h² + hk + k²)/a² + l²/c²
  EXPECT_NEAR(r->position, std::sqrt(4.0 / 3.0 * 3.0 / 9.0 + 4.0 / 25.0), 1e-6);
  EXPECT_EQ(r->multiplicity, 12);
}

TEST(ReflectionPosition, DoubletGivesEachReflectionASlotPerWavelength) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 0);
  Pattern& p = c.P();
  p.LAMBDA[2] = 1.54439f;
  p.RATIO[2] = 0.5f;
  p.THMIN = 20.0f;
  p.THMAX = 60.0f;
  ASSERT_TRUE(c.Runs(Generate));
  const std::vector<Reflection> slots = c.Slots();
  const Reflection* one = Find(slots, 0, 1, 1, 0, 1);
  const Reflection* two = Find(slots, 0, 1, 1, 0, 2);
  ASSERT_NE(one, nullptr);
  ASSERT_NE(two, nullptr);
  const double d = 4.0 / std::sqrt(2.0);
  EXPECT_NEAR(one->position, 2.0 * std::asin(1.54056 / (2 * d)) * 180.0 / kPi, 2e-4);
  EXPECT_NEAR(two->position, 2.0 * std::asin(1.54439 / (2 * d)) * 180.0 / kPi, 2e-4);
  const int pairs = static_cast<int>(std::count_if(
      slots.begin(), slots.end(), [](const Reflection& r) { return KeyWavelength(r.key) == 2; }));
  EXPECT_EQ(2 * pairs, static_cast<int>(slots.size()));
}

TEST(ReflectionPosition, SecondWavelengthOfZeroMakesOneSlotPerReflection) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 0);
  c.P().LAMBDA[2] = 0.0f;
  c.P().RATIO[2] = 0.5f;
  c.P().THMIN = 20.0f;
  c.P().THMAX = 60.0f;
  ASSERT_TRUE(c.Runs(Generate));
  for (const Reflection& r : c.Slots()) EXPECT_EQ(KeyWavelength(r.key), 1);
  // Two-theta of h²+k²+l² = 1..6 runs from 22.2 to 56.6 degrees, 8 is at 66.3.
  EXPECT_EQ(c.Slots().size(), 6u);  // 100 110 111 200 210 211
}

TEST(ReflectionPosition, ReflectionsExactlyAtThminAndThmaxAreKept) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 4);
  c.P().THMIN = 0.25f;  // 1/d of (1 0 0), exact in binary
  c.P().THMAX = 0.5f;   // 1/d of (2 0 0)
  ASSERT_TRUE(c.Runs(Generate));
  const std::vector<Reflection> slots = c.Slots();
  EXPECT_NE(Find(slots, 0, 0, 1), nullptr);
  EXPECT_NE(Find(slots, 0, 0, 2), nullptr);
  EXPECT_EQ(Find(slots, 0, 2, 2), nullptr);
}

TEST(ReflectionGeneration, NoReflectionInRangeLeavesTheBlockEmpty) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 4);
  c.P().THMIN = 0.01f;
  c.P().THMAX = 0.2f;
  ASSERT_TRUE(c.Runs([](Job& job) { MakeReflections(job, 1, 1, ReflectionLorentzPolarisation); }));
  EXPECT_EQ(c.P().reflections.total, 0);
  EXPECT_EQ(c.P().reflections.count[1], 0);
}

TEST(ReflectionGeneration, MultiplicityAndKeyOfACubicList) {
  GenerationCase c("F m 3 m", Cell(5, 5, 5), 4);
  c.P().THMIN = 0.1f;
  c.P().THMAX = 0.75f;
  ASSERT_TRUE(c.Runs(Generate));
  std::set<std::array<int, 4>> got;
  for (const Reflection& r : c.Slots()) {
    EXPECT_EQ(KeyPhase(r.key), 1);
    got.insert({KeyH(r.key), KeyK(r.key), KeyL(r.key), r.multiplicity});
  }
  // 1/d up to 0.75 with a = 5: h²+k²+l² up to 14, F: unmixed parities.
  EXPECT_EQ(got, (std::set<std::array<int, 4>>{
                     {1, 1, 1, 8}, {0, 0, 2, 6}, {0, 2, 2, 12}, {1, 1, 3, 24}, {2, 2, 2, 8}}));
}

// --- Satellites ---------------------------------------------------------------

void OneVector(GenerationCase& c, float kx, float ky, float kz) {
  c.Ph().Nvk = 1;
  c.Ph().vectors[1].KVEC[1] = kx;
  c.Ph().vectors[1].KVEC[2] = ky;
  c.Ph().vectors[1].KVEC[3] = kz;
}

TEST(Satellites, HelixWithIrfMinusOneHasOnlySatellites) {
  GenerationCase c("P -1", Cell(4, 4, 4), 4);
  OneVector(c, 0.0f, 0.0f, 0.3f);
  c.Ph().pat[1].Irf = -1;
  c.P().THMIN = 0.01f;
  c.P().THMAX = 0.3f;
  ASSERT_TRUE(c.Runs(Generate));
  const std::vector<Reflection> slots = c.Slots();
  ASSERT_FALSE(slots.empty());
  for (const Reflection& r : slots) {
    EXPECT_NE(r.satelliteIndex, 0);
    const double h = KeyH(r.key), k = KeyK(r.key);
    const double l = KeyL(r.key) + (r.satelliteIndex > 0 ? 0.3 : -0.3);
    EXPECT_NEAR(r.position, std::sqrt(h * h + k * k + l * l) / 4.0, 1e-5);
  }
  // (0 0 0)+k is there, its own Friedel mate (0 0 0)-k is not.
  EXPECT_NE(Find(slots, 0, 0, 0, 1), nullptr);
  EXPECT_EQ(Find(slots, 0, 0, 0, -1), nullptr);
  EXPECT_NE(Find(slots, 0, 0, 1, -1), nullptr);
}

TEST(Satellites, BothSignsFollowTheFundamentalWithItsMultiplicity) {
  GenerationCase c("P 4/m m m", Cell(4, 4, 4), 4);
  OneVector(c, 0.1f, 0.0f, 0.0f);
  c.P().THMIN = 0.01f;
  c.P().THMAX = 0.4f;
  ASSERT_TRUE(c.Runs(Generate));
  const std::vector<Reflection> slots = c.Slots();
  const Reflection* fundamental = Find(slots, 0, 1, 1);
  ASSERT_NE(fundamental, nullptr);
  const Reflection* plus = Find(slots, 0, 1, 1, 1);
  const Reflection* minus = Find(slots, 0, 1, 1, -1);
  ASSERT_NE(plus, nullptr);
  ASSERT_NE(minus, nullptr);
  EXPECT_LT(fundamental, plus);
  EXPECT_LT(plus, minus);
  EXPECT_EQ(plus->multiplicity, fundamental->multiplicity);
  EXPECT_EQ(minus->multiplicity, fundamental->multiplicity);
}

TEST(Satellites, CoincidentSatellitesOfAHalfVectorAreStoredOnce) {
  GenerationCase c("P -1", Cell(4, 4, 4), 4);
  OneVector(c, 0.0f, 0.0f, 0.5f);
  c.Ph().pat[1].Irf = -1;
  c.P().THMIN = 0.01f;
  c.P().THMAX = 0.45f;
  ASSERT_TRUE(c.Runs(Generate));
  std::set<std::array<int, 3>> triples;  // twice the real indices, up to sign
  for (const Reflection& r : c.Slots()) {
    const int s = r.satelliteIndex > 0 ? 1 : -1;
    std::array<int, 3> t = {2 * KeyH(r.key), 2 * KeyK(r.key), 2 * KeyL(r.key) + s};
    const std::array<int, 3> n = {-t[0], -t[1], -t[2]};
    EXPECT_TRUE(triples.insert(std::max(t, n)).second) << t[0] << " " << t[1] << " " << t[2];
  }
  EXPECT_FALSE(triples.empty());
}

TEST(Satellites, PropagationVectorsDoubleTheIndexLimits) {
  Table1<float, 6> coefficients;
  coefficients[1] = coefficients[2] = coefficients[3] = 1.0f / 16.0f;
  const IndexLimits plain = GenerationIndexLimits(coefficients, 0.25 * 0.25, false);
  const IndexLimits wide = GenerationIndexLimits(coefficients, 0.25 * 0.25, true);
  EXPECT_EQ(plain.hMax, 2);  // a/dmin = 4 * 0.5
  EXPECT_EQ(wide.hMax, 4);
}

// --- Selection by the preferred-orientation vector ----------------------------

TEST(Selection, Pref1Above99TurnsPrefIntoDivisorsOfTheIndices) {
  EXPECT_TRUE(SelectedByPreferredVector(Table1<float, 3>{{0.0f, 0.0f, 2.0f}}, 1, 1, 2));
  EXPECT_FALSE(SelectedByPreferredVector(Table1<float, 3>{{0.0f, 0.0f, 2.0f}}, 1, 0, 3));
  EXPECT_TRUE(SelectedByPreferredVector(Table1<float, 3>{{0.0f, 0.0f, 2.0f}}, 0, 0, 0));
  EXPECT_FALSE(SelectedByPreferredVector(Table1<float, 3>{{0.0f, 0.0f, 2.0f}}, 1, 0, 2));
  EXPECT_TRUE(SelectedByPreferredVector(Table1<float, 3>{{2.6f, 0.0f, 0.0f}}, 3, 1, 2));
  EXPECT_FALSE(SelectedByPreferredVector(Table1<float, 3>{{2.4f, 0.0f, 0.0f}}, 3, 1, 2));
  EXPECT_TRUE(SelectedByPreferredVector(Table1<float, 3>{{-2.0f, 0.0f, 0.0f}}, 4, 1, 1));
}

TEST(Selection, GenerationAppliesTheSelectionOnlyWhenPref1IsAbove99) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 4);
  c.P().THMIN = 0.01f;
  c.P().THMAX = 1.0f;
  c.Ph().pat[1].PREF[3] = 2.0f;
  c.Ph().pat[1].PAR[12] = 99.0f;
  ASSERT_TRUE(c.Runs(Generate));
  const std::size_t all = c.Slots().size();
  c.P().reflections.total = 0;
  c.Ph().pat[1].PAR[12] = 100.0f;
  ASSERT_TRUE(c.Runs(Generate));
  const std::vector<Reflection> selected = c.Slots();
  EXPECT_LT(selected.size(), all);
  ASSERT_FALSE(selected.empty());
  for (const Reflection& r : selected) {
    EXPECT_EQ(KeyL(r.key) % 2, 0);
    EXPECT_EQ((KeyH(r.key) + KeyK(r.key) + KeyL(r.key)) % 2, 0);
  }
}

// --- Keys and index limits -----------------------------------------------------

TEST(ReflectionKey, PacksWavelengthPhaseAndIndicesInBytes) {
  const std::int32_t key = ReflectionKey(2, 3, -5, 7, 127);
  EXPECT_EQ(key, (((2 + 8 * 3) * 256 + 123) * 256 + 135) * 256 + 255);
  EXPECT_EQ(KeyWavelength(key), 2);
  EXPECT_EQ(KeyPhase(key), 3);
  EXPECT_EQ(KeyH(key), -5);
  EXPECT_EQ(KeyK(key), 7);
  EXPECT_EQ(KeyL(key), 127);
}

TEST(ReflectionKey, IndexOutsideItsByteWrapsAround) {
  EXPECT_EQ(KeyH(ReflectionKey(1, 1, 128, 0, 0)), -128);
  EXPECT_EQ(KeyH(ReflectionKey(1, 1, 200, 0, 0)), -56);
  EXPECT_EQ(KeyPhase(ReflectionKey(1, 1, 200, 0, 0)), 1);
}

TEST(ReflectionKey, VeryLongCellIsRefusedByTheIndexLimitsNotByTheKey) {
  GenerationCase c("P 1", Cell(300, 3, 3), 4);
  c.P().THMIN = 0.2f;
  c.P().THMAX = 0.5f;  // a/dmin = 150
  ASSERT_TRUE(c.Runs(Generate));
  int maxH = 0;
  for (const Reflection& r : c.Slots()) maxH = std::max(maxH, std::abs(KeyH(r.key)));
  EXPECT_EQ(maxH, 127);
  for (const Reflection& r : c.Slots()) {
    const double h = KeyH(r.key) / 300.0, k = KeyK(r.key) / 3.0, l = KeyL(r.key) / 3.0;
    EXPECT_NEAR(r.position, std::sqrt(h * h + k * k + l * l), 1e-4);  // the key reads back
  }
  EXPECT_TRUE(HasLine(c.Out(),
                      " => Warning: index limits above 127 cut to 127 (the reflection key holds "
                      "-128..127)"));
}

// --- Report and failures ---------------------------------------------------------

TEST(GenerationReport, WritesTheLaueClassRangeAndGeneratorWords) {
  GenerationCase c("P 63/m m c", Cell(3, 3, 5, 90, 90, 120), 4);
  c.P().THMIN = 0.2f;
  c.P().THMAX = 0.5f;
  ASSERT_TRUE(c.Runs(Generate));
  const std::string out = c.Out();
  EXPECT_TRUE(HasLine(out, " => Laue symmetry 6/mmm will be used to gnerate HKL for pattern#  1"));
  EXPECT_TRUE(HasLine(out,
                      " => Reflections generated between S(1/d)min:   0.20000 A-1 and "
                      "S(1/d)max:   0.50000 A-1"));
  EXPECT_TRUE(HasLine(out,
                      " =>                                    dmax:    5.0000 A   and      "
                      "dmin:    2.0000 A"));
  EXPECT_TRUE(HasLine(out, "  NSPGRP:   12 -->  P 63/m m c"));
  EXPECT_TRUE(HasLine(out, "   M(1)   M(2)   M(3)   M(4)   M(5)   M(6)   M(7)   M(8)"));
  const SpaceGroup& g = c.Ph().group;
  char words[80];
  std::snprintf(words, sizeof words, "%7d%7d%7d%7d%7d%7d%7d%7d", g.generatorWords[1],
                g.generatorWords[2], g.generatorWords[3], g.generatorWords[4], g.generatorWords[5],
                g.generatorWords[6], g.generatorWords[7], g.generatorWords[8]);
  EXPECT_TRUE(HasLine(out, words));
}

TEST(GenerationFailure, TooManyReflectionsStopsWithTheCountAndThePattern) {
  GenerationCase c("P 1", Cell(30, 30, 30), 4);
  c.P().THMIN = 0.01f;
  c.P().THMAX = 1.0f;
  EXPECT_FALSE(c.Runs(Generate));
  EXPECT_TRUE(HasLine(c.Out(), "  6000  Too many reflections"));
  const std::string console = c.job.Console();
  EXPECT_TRUE(HasLine(console, " Too many reflections  6000"));
  EXPECT_TRUE(HasLine(console, " For pattern number:  1"));
  EXPECT_TRUE(HasLine(console, " Too many reflections"));  // the box, trimmed
  EXPECT_EQ(c.P().reflections.total, c.P().reflections.LastUsable());
}

TEST(GenerationFailure, NegativeSquareOfTheWidthStopsWithThePosition) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 0);
  c.P().THMIN = 20.0f;
  c.P().THMAX = 25.0f;
  c.Ph().pat[1].PAR[5] = -0.01f;  // W
  EXPECT_FALSE(c.Runs(Generate));
  // The first reflection, (1 0 0) at 22.2 degrees, is inside the range.
  const double position = 2.0 * std::asin(1.54056 / (2.0 * 4.0)) * 180.0 / kPi;
  char expected[80];
  std::snprintf(expected, sizeof expected, " Square of FWHM <0 at 2theta/TOF/E(KeV): %12.4f",
                position);
  EXPECT_TRUE(HasLine(c.Out(), expected));
  const std::string console = c.job.Console();
  EXPECT_TRUE(HasLine(console, expected));
  EXPECT_TRUE(HasLine(console, " For pattern number:  1"));
  EXPECT_TRUE(HasLine(console, " Square of FWHM <0"));
}

TEST(GenerationFailure, UniqueAxisAboveThreeStops) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 4);
  c.Ph().group.UniqueAxis = 4;
  EXPECT_FALSE(c.Runs(Generate));
  EXPECT_TRUE(HasLine(c.job.Console(), " Illegal SP symb:if cubic, set 3 instead of -3"));
}

TEST(GenerationReport, OperatorsFromLinesWithGenerationAnnounceTheFileOfRelevantReflections) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 4);
  c.P().THMIN = 0.2f;
  c.P().THMAX = 0.5f;
  c.Ph().Isy = 1;
  ASSERT_TRUE(c.Runs(Generate));
  EXPECT_TRUE(
      HasLine(c.Out(), " => A new file with relevant HKLs for the present model will be written"));
  EXPECT_TRUE(HasLine(c.Out(), "    because isym=1"));
  GenerationCase s("P m 3 m", Cell(4, 4, 4), 4);
  s.Ph().pat[1].Irf = -1;
  OneVector(s, 0.0f, 0.0f, 0.5f);
  ASSERT_TRUE(s.Runs(Generate));
  EXPECT_TRUE(HasLine(s.Out(), " => (hkl) progenitors generated from space group symbol"));
  EXPECT_TRUE(HasLine(s.Out(), "     a file with hkl-satellites relevant to the present model"));
  EXPECT_TRUE(HasLine(s.Out(), "     will be written"));
}

// --- The driver of the pattern block --------------------------------------------

TEST(MakeReflections, GeneratesSortsAndAnnounces) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 4);
  c.P().THMIN = 0.2f;
  c.P().THMAX = 0.9f;
  ASSERT_TRUE(c.Runs([](Job& job) { MakeReflections(job, 1, 1, ReflectionLorentzPolarisation); }));
  EXPECT_TRUE(HasLine(c.job.Console(), " => Generating reflections for pattern:  1"));
  const std::vector<Reflection> slots = c.Slots();
  ASSERT_GT(slots.size(), 3u);
  EXPECT_EQ(c.P().reflections.count[1], static_cast<int>(slots.size()));
  EXPECT_EQ(c.P().reflections.start[1], 0);
  for (std::size_t i = 1; i < slots.size(); ++i)
    EXPECT_LE(slots[i - 1].position, slots[i].position);
}

TEST(MakeReflections, IllegalIrfStops) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 4);
  c.Ph().pat[1].Irf = 7;
  EXPECT_FALSE(c.Runs([](Job& job) { MakeReflections(job, 1, 1, ReflectionLorentzPolarisation); }));
  EXPECT_TRUE(HasLine(c.job.Console(), " Illegal IRF value"));
}

TEST(MakeReflections, IntegratedIntensitiesAreReadFromTheListFile) {
  for (int irf : {4, -4}) {
    GenerationCase c("P m 3 m", Cell(4, 4, 4), 4);
    c.Ph().pat[1].Irf = irf;
    // No list file beside the job: the opener stops the run.
    EXPECT_FALSE(
        c.Runs([](Job& job) { MakeReflections(job, 1, 1, ReflectionLorentzPolarisation); }));
    EXPECT_TRUE(HasLine(c.job.Console(), " => Reading integrated intensities for pattern:  1"))
        << irf;
    EXPECT_EQ(c.P().reflections.count[1], 0);
  }
}

TEST(MakeReflections, TwoPhasesWithEqualPositionsKeepTheOrderOfTheirBlocks) {
  GenerationCase c("P m 3 m", Cell(4, 4, 4), 4);
  c.job->run.NPHASE = 2;
  c.P().THMIN = 0.2f;
  c.P().THMAX = 0.6f;
  Phase& second = c.job->phases[2];
  second = c.Ph();
  ASSERT_TRUE(c.Runs([](Job& job) {
    MakeReflections(job, 1, 1, ReflectionLorentzPolarisation);
    MakeReflections(job, 2, 1, ReflectionLorentzPolarisation);
  }));
  const ReflectionTable& t = c.P().reflections;
  EXPECT_EQ(t.start[2], t.count[1]);
  ASSERT_EQ(t.count[1], t.count[2]);
  for (int s = 1; s <= t.total; s += 2) {
    EXPECT_EQ(KeyPhase(t.slot[s].key), 1);
    EXPECT_EQ(KeyPhase(t.slot[s + 1].key), 2);
    EXPECT_EQ(t.slot[s].position, t.slot[s + 1].position);
  }
}

}  // namespace
}  // namespace corvinet
