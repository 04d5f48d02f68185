// Equivalents, absences, the multiplicity rule of each Laue class and the generation wedge.
#include "crystal/equivalents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "crystal/reflection_wedge.h"
#include "crystal/space_group_symbol.h"
#include "crystal/symmetry_operators.h"

namespace corvinet {
namespace {

using Triple = std::array<int, 3>;

SpaceGroup Built(const std::string& symbol) {
  SpaceGroup group;
  EXPECT_TRUE(SpaceGroupFromSymbol(symbol, group).ok()) << symbol;
  return group;
}

std::set<Triple> Members(const EquivalentList& list) {
  std::set<Triple> members;
  for (int e = 1; e <= list.count; ++e) members.insert(list.hkl[e]);
  return members;
}

TEST(Equivalents, ScrewAxisAlongBExtinguishesOddOrdersOf0k0) {
  const SpaceGroup g = Built("P 21");
  EXPECT_TRUE(IsSystematicallyAbsent(g, 0, 1, 0));
  EXPECT_TRUE(IsSystematicallyAbsent(g, 0, -3, 0));
  EXPECT_FALSE(IsSystematicallyAbsent(g, 0, 2, 0));
  EXPECT_FALSE(IsSystematicallyAbsent(g, 1, 1, 0));
}

TEST(Equivalents, ThreeFoldScrewKeepsOnly00lWithLAMultipleOfThree) {
  const SpaceGroup g = Built("P 31");
  for (int l = 1; l <= 6; ++l) EXPECT_EQ(IsSystematicallyAbsent(g, 0, 0, l), l % 3 != 0) << l;
  EXPECT_FALSE(IsSystematicallyAbsent(g, 1, 0, 1));
}

TEST(Equivalents, FaceCentringKeepsUnmixedParities) {
  const SpaceGroup g = Built("F m 3 m");
  EXPECT_TRUE(IsSystematicallyAbsent(g, 1, 0, 0));
  EXPECT_TRUE(IsSystematicallyAbsent(g, 2, 1, 0));
  EXPECT_FALSE(IsSystematicallyAbsent(g, 1, 1, 1));
  EXPECT_FALSE(IsSystematicallyAbsent(g, 2, 0, 0));
  EXPECT_FALSE(IsSystematicallyAbsent(g, 3, 1, 1));
}

TEST(Equivalents, DiamondGlideNeedsKPlusLMultipleOfFourIn0kl) {
  const SpaceGroup g = Built("F d d d");
  EXPECT_FALSE(IsSystematicallyAbsent(g, 0, 4, 4));
  EXPECT_FALSE(IsSystematicallyAbsent(g, 0, 2, 2));
  EXPECT_TRUE(IsSystematicallyAbsent(g, 0, 2, 4));
}

TEST(Equivalents, ObverseRhombohedralCentringOnHexagonalAxes) {
  const SpaceGroup g = Built("R -3 m");
  EXPECT_TRUE(IsSystematicallyAbsent(g, 1, 0, 0));  // -h+k+l = -1
  EXPECT_FALSE(IsSystematicallyAbsent(g, 1, 0, 1));
  EXPECT_FALSE(IsSystematicallyAbsent(g, 0, 0, 3));
  EXPECT_TRUE(IsSystematicallyAbsent(g, 0, 0, 1));
}

TEST(Equivalents, FourFoldAxisGivesTheFourImagesOfAGeneralReflection) {
  const EquivalentList list = Equivalents(Built("P 4"), 1, 2, 3);
  EXPECT_FALSE(list.absent);
  EXPECT_EQ(Members(list), (std::set<Triple>{{1, 2, 3}, {-2, 1, 3}, {-1, -2, 3}, {2, -1, 3}}));
  EXPECT_EQ(list.generatorOrder, 4);
  EXPECT_EQ(list.stabiliserOrder, 1);
}

TEST(Equivalents, CentrosymmetricListHoldsOneMemberOfEachFriedelPairWithPositiveKey) {
  const EquivalentList list = Equivalents(Built("P -1"), -1, -2, -3);
  EXPECT_EQ(list.count, 1);
  EXPECT_EQ(list.hkl[1], (Triple{1, 2, 3}));
  const EquivalentList mmm = Equivalents(Built("P m m m"), 1, 2, 3);
  EXPECT_EQ(Members(mmm), (std::set<Triple>{{1, 2, 3}, {1, -2, 3}, {1, 2, -3}, {1, -2, -3}}));
  for (int e = 1; e <= mmm.count; ++e) {
    EXPECT_GT(PackedIndexKey(mmm.hkl[e][0], mmm.hkl[e][1], mmm.hkl[e][2]), 0);
  }
}

TEST(Equivalents, CentrosymmetryComesFromTheGeneratorWordsNotTheFlags) {
  // Operator lines set ICENT and isAcentric of their own; the reflections
  // are generated from the words of the symbol, and so is their Friedel rule.
  SpaceGroup centric = Built("P -1");
  centric.ICENT = 1;
  centric.isAcentric = 1;
  const EquivalentList pair = Equivalents(centric, -1, -2, -3);
  EXPECT_EQ(pair.count, 1);
  EXPECT_EQ(pair.hkl[1], (Triple{1, 2, 3}));
  SpaceGroup acentric = Built("P 1");
  acentric.ICENT = 2;
  acentric.isAcentric = 0;
  const EquivalentList single = Equivalents(acentric, -1, -2, -3);
  EXPECT_EQ(single.count, 1);
  EXPECT_EQ(single.hkl[1], (Triple{-1, -2, -3}));
}

TEST(Equivalents, StabiliserOrderIsGeneratorOrderOverDistinctEntries) {
  // P 4/m m m: 16 operations; 00l has one entry up to its Friedel mate.
  const EquivalentList axial = Equivalents(Built("P 4/m m m"), 0, 0, 1);
  EXPECT_EQ(axial.generatorOrder, 16);
  EXPECT_EQ(axial.count, 1);
  EXPECT_EQ(axial.stabiliserOrder, 16);
  const EquivalentList general = Equivalents(Built("P 4/m m m"), 1, 2, 3);
  EXPECT_EQ(general.count, 8);
  EXPECT_EQ(general.stabiliserOrder, 2);
}

TEST(Equivalents, CentringWordsCountInTheGeneratorOrder) {
  const EquivalentList list = Equivalents(Built("F m 3 m"), 1, 1, 1);
  EXPECT_FALSE(list.absent);
  EXPECT_EQ(list.generatorOrder, 192);
}

TEST(Multiplicity, ReflectionOnTheFourFoldAxisOf4mmmHasTwoMembers) {
  EXPECT_EQ(FormMultiplicity(kLaue4mmm, 0, 0, 0, 1), 2);
  EXPECT_EQ(FormMultiplicity(kLaue4mmm, 0, 0, 1, 0), 4);
  EXPECT_EQ(FormMultiplicity(kLaue4mmm, 0, 1, 2, 3), 16);
}

TEST(Multiplicity, ReflectionsInThePlaneL0OfTrigonal3HaveSixMembers) {
  EXPECT_EQ(FormMultiplicity(kLaue3, 0, 0, 1, 0), 6);
  EXPECT_EQ(FormMultiplicity(kLaue3, 0, 2, 1, 0), 6);
  EXPECT_EQ(FormMultiplicity(kLaue3, 0, 2, -1, 1), 6);
  EXPECT_EQ(FormMultiplicity(kLaue3, 0, 0, 0, 2), 2);
}

TEST(Multiplicity, Trigonal3m1CountsMirrorLinesOffThePlaneAndTheTwoFoldLinesInIt) {
  EXPECT_EQ(FormMultiplicity(kLaue3m1, 0, 0, 1, 1), 6);
  EXPECT_EQ(FormMultiplicity(kLaue3m1, 0, 1, 0, 1), 6);
  EXPECT_EQ(FormMultiplicity(kLaue3m1, 0, 2, 1, 1), 12);
  EXPECT_EQ(FormMultiplicity(kLaue3m1, 0, 1, 1, 0), 6);
  EXPECT_EQ(FormMultiplicity(kLaue3m1, 0, 1, 0, 0), 6);
  EXPECT_EQ(FormMultiplicity(kLaue3m1, 0, 2, 1, 0), 12);
}

TEST(Multiplicity, Trigonal31mGives0klOffThePlaneTwelveMembers) {
  EXPECT_EQ(FormMultiplicity(kLaue31m, 0, 0, 1, 1), 12);
  EXPECT_EQ(FormMultiplicity(kLaue31m, 0, 0, 1, -2), 12);
  EXPECT_EQ(FormMultiplicity(kLaue31m, 0, 0, 1, 0), 6);
  EXPECT_EQ(FormMultiplicity(kLaue31m, 0, 1, 1, 1), 6);
  EXPECT_EQ(FormMultiplicity(kLaue31m, 0, 1, 2, -1), 12);
}

TEST(Multiplicity, Hexagonal6mCountsTheBoundaryOfItsWedgeAsGeneral) {
  EXPECT_EQ(FormMultiplicity(kLaue6m, 0, 0, 1, 1), 12);
  EXPECT_EQ(FormMultiplicity(kLaue6m, 0, 0, 1, 0), 6);
  EXPECT_EQ(FormMultiplicity(kLaue6m, 0, 2, 1, 3), 12);
  EXPECT_EQ(FormMultiplicity(kLaue6m, 0, 0, 0, 1), 2);
}

TEST(Multiplicity, RhombohedralAxesCountPermutationsAndTheirNegatives) {
  EXPECT_EQ(FormMultiplicity(kLaue3R, 0, 1, 1, 1), 2);
  EXPECT_EQ(FormMultiplicity(kLaue3R, 0, 1, 0, -1), 6);
  EXPECT_EQ(FormMultiplicity(kLaue3R, 0, 2, 1, 0), 6);
  EXPECT_EQ(FormMultiplicity(kLaue3mR, 0, 1, 1, 1), 2);
  EXPECT_EQ(FormMultiplicity(kLaue3mR, 0, 1, 1, 0), 6);
  EXPECT_EQ(FormMultiplicity(kLaue3mR, 0, 1, 0, -1), 6);
  EXPECT_EQ(FormMultiplicity(kLaue3mR, 0, 2, 1, 0), 12);
  EXPECT_EQ(FormMultiplicity(kLaue3mR, 0, 1, 1, -2), 6);
}

TEST(Multiplicity, FriedelFactorIsOneWhereTheRuleCountsThePair) {
  for (int laue : {3, 6, 7, 8, 9, 11, 12}) EXPECT_EQ(FriedelFactor(laue), 1) << laue;
  for (int laue : {1, 2, 4, 5, 10, 13, 14}) EXPECT_EQ(FriedelFactor(laue), 2) << laue;
}

TEST(Multiplicity, MonoclinicRuleFollowsTheUniqueAxis) {
  EXPECT_EQ(FormMultiplicity(kLaue2m, 2, 1, 1, 1), 4);
  EXPECT_EQ(FormMultiplicity(kLaue2m, 2, 1, 0, 1), 2);
  EXPECT_EQ(FormMultiplicity(kLaue2m, 1, 1, 1, 1), 4);
  EXPECT_EQ(FormMultiplicity(kLaue2m, 1, 0, 1, -1), 2);
  EXPECT_EQ(FormMultiplicity(kLaue2m, 3, 1, -1, 1), 4);
  EXPECT_EQ(FormMultiplicity(kLaue2m, 3, 1, -1, 0), 2);
}

std::set<Triple> Walked(const std::string& symbol, int limit) {
  const WedgeLoops w = SetUpWedge(Built(symbol), limit, limit, limit);
  std::set<Triple> walked;
  WalkWedge(w, [&walked](int h, int k, int l) { walked.insert({h, k, l}); });
  return walked;
}

TEST(Wedge, MonoclinicUniqueAxisATakesThePairKLUpToItsSign) {
  const std::set<Triple> w = Walked("P 2/m 1 1", 2);
  EXPECT_TRUE(w.count({0, 1, -1}));
  EXPECT_TRUE(w.count({1, 1, -1}));
  EXPECT_FALSE(w.count({1, 0, -1}));
  EXPECT_TRUE(w.count({1, 0, 1}));
}

TEST(Wedge, CentringStepsStartOnTheAllowedParity) {
  for (const Triple& v : Walked("C 2/m", 3)) EXPECT_EQ((v[0] + v[1]) % 2, 0);
  for (const Triple& v : Walked("I 4/m m m", 3)) EXPECT_EQ((v[0] + v[1] + v[2]) % 2, 0);
  for (const Triple& v : Walked("R -3 m", 4)) EXPECT_EQ(((-v[0] + v[1] + v[2]) % 3 + 3) % 3, 0);
  for (const Triple& v : Walked("F m 3 m", 4)) {
    EXPECT_EQ((v[0] + v[1]) % 2, 0);
    EXPECT_EQ((v[0] + v[2]) % 2, 0);
  }
}

TEST(Wedge, BodyCentredCubicClassesUseTheirOwnLoopClass) {
  EXPECT_EQ(SetUpWedge(Built("I m 3"), 1, 1, 1).loopClass, kLoopM3I);
  EXPECT_EQ(SetUpWedge(Built("I m 3 m"), 1, 1, 1).loopClass, kLoopM3mI);
  EXPECT_EQ(SetUpWedge(Built("P m 3 m"), 1, 1, 1).loopClass, kLaueM3m);
  // (0 3 1) and (0 1 3) are not related by the cyclic three-fold of m3.
  const std::set<Triple> w = Walked("I m 3", 4);
  EXPECT_TRUE(w.count({0, 3, 1}));
  EXPECT_TRUE(w.count({0, 1, 3}));
}

TEST(Wedge, RhombohedralAxesKeepOneOfTheTwoFriedelClassesOnTheZeroSumPlane) {
  const std::set<Triple> w3 = Walked("R -3 R", 2);
  EXPECT_TRUE(w3.count({1, 0, -1}));
  EXPECT_FALSE(w3.count({1, -1, 0}));
  const std::set<Triple> w3m = Walked("R -3 m R", 2);
  EXPECT_TRUE(w3m.count({1, 0, -1}));
  EXPECT_FALSE(w3m.count({1, 1, -2}) && w3m.count({2, -1, -1}));
}

}  // namespace
}  // namespace corvinet
