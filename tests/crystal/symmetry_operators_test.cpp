// Operators of the general position: IROT, decoding, matching, reduction and the point-group words.
#include "crystal/symmetry_operators.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "crystal/rotation_table.h"
#include "crystal/space_group_symbol.h"

namespace corvinet {
namespace {

IntMatrix3 Matrix(std::array<int, 9> rows) {
  IntMatrix3 m;
  for (int i = 0; i < 9; ++i) m(i / 3 + 1, i % 3 + 1) = rows[static_cast<std::size_t>(i)];
  return m;
}

IntMatrix3 Product(const IntMatrix3& a, const IntMatrix3& b) {
  IntMatrix3 p;
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 3; ++j) {
      for (int k = 1; k <= 3; ++k) p(i, j) += a(i, k) * b(k, j);
    }
  }
  return p;
}

bool Same(const IntMatrix3& a, const IntMatrix3& b) {
  return a.data == b.data;
}

int IndexInRange(const IntMatrix3& m, int first, int last) {
  for (int i = first; i <= last; ++i) {
    if (Same(m, IROT(i))) return i;
  }
  return 0;
}

SpaceGroup Built(const std::string& symbol) {
  SpaceGroup group;
  const SymmetryMessages messages = SpaceGroupFromSymbol(symbol, group);
  EXPECT_TRUE(messages.ok()) << symbol << ": " << messages.stop;
  return group;
}

TEST(SymmetryOperators, RotationTableHoldsTwoClosedProperGroups) {
  for (int i = 1; i <= kRotationTableSize; ++i) EXPECT_EQ(Determinant(IROT(i)), 1) << i;
  for (int family = 0; family < 2; ++family) {
    const int first = family == 0 ? 1 : 25;
    const int last = family == 0 ? 24 : 36;
    for (int i = first; i <= last; ++i) {
      for (int j = first; j <= last; ++j) {
        if (i != j) {
          EXPECT_FALSE(Same(IROT(i), IROT(j))) << i << " " << j;
        }
        EXPECT_NE(IndexInRange(Product(IROT(i), IROT(j)), first, last), 0) << i << " " << j;
      }
    }
  }
}

TEST(SymmetryOperators, RotationTableEntriesReadAsTheirTexts) {
  EXPECT_TRUE(Same(IROT(1), Matrix({1, 0, 0, 0, 1, 0, 0, 0, 1})));
  EXPECT_TRUE(Same(IROT(5), Matrix({0, 0, 1, 1, 0, 0, 0, 1, 0})));      // (z,x,y)
  EXPECT_TRUE(Same(IROT(15), Matrix({0, 1, 0, -1, 0, 0, 0, 0, 1})));    // (y,-x,z)
  EXPECT_TRUE(Same(IROT(24), Matrix({0, 0, -1, 0, -1, 0, -1, 0, 0})));  // (-z,-y,-x)
  EXPECT_TRUE(Same(IROT(26), Matrix({0, -1, 0, 1, -1, 0, 0, 0, 1})));   // (-y,x-y,z)
  EXPECT_TRUE(Same(IROT(36), Matrix({1, 0, 0, 1, -1, 0, 0, 0, -1})));   // (x,x-y,-z)
}

TEST(SymmetryOperators, RotationRangeGoesByTheLaueClassAlone) {
  for (int laue = 1; laue <= 14; ++laue) {
    const RotationRange range = RotationRangeOfClass(laue);
    const bool hexagonal = laue >= 6 && laue <= 12;
    EXPECT_EQ(range.first, hexagonal ? 25 : 1) << laue;
    EXPECT_EQ(range.last, hexagonal ? 36 : 24) << laue;
  }
}

TEST(SymmetryOperators, SymbolOnRhombohedralAxesMatchesTheCubicRows) {
  EXPECT_EQ(RotationRangeOfSymbol(kLaue3R).first, 1);
  EXPECT_EQ(RotationRangeOfSymbol(kLaue3mR).last, 24);
  EXPECT_EQ(RotationRangeOfSymbol(kLaue3).first, 25);
  const SpaceGroup group = Built("R 3 R");
  ASSERT_EQ(group.NSYM, 3);
  std::set<int> isl;
  for (int n = 1; n <= group.NSYM; ++n) isl.insert(group.isl[n]);
  EXPECT_EQ(isl, (std::set<int>{1, 5, 9}));
}

TEST(SymmetryOperators, MatchRotationGivesSignedIndex) {
  int isl = 0;
  EXPECT_TRUE(MatchRotation(Matrix({-1, 0, 0, 0, -1, 0, 0, 0, -1}), 1, 24, isl).ok());
  EXPECT_EQ(isl, -1);
  EXPECT_TRUE(MatchRotation(Matrix({0, -1, 0, 1, -1, 0, 0, 0, 1}), 25, 36, isl).ok());
  EXPECT_EQ(isl, 26);
  EXPECT_TRUE(MatchRotation(Matrix({0, 1, 0, -1, 1, 0, 0, 0, -1}), 25, 36, isl).ok());
  EXPECT_EQ(isl, -26);
}

TEST(SymmetryOperators, MatchRotationOutsideTheRangeStops) {
  int isl = 7;
  const IntMatrix3 cubicThreeFold = Matrix({0, 0, 1, 1, 0, 0, 0, 1, 0});
  SymmetryMessages messages = MatchRotation(cubicThreeFold, 25, 36, isl);
  EXPECT_EQ(messages.stop, "Illegal Symmetry Operator");
  EXPECT_EQ(isl, 0);
  ASSERT_FALSE(messages.console.empty());
  EXPECT_EQ(messages.console.front(), " => The supplied S.O. is not standard :");
  EXPECT_EQ(messages.console.back(), "    identical to a S.O. of the space group P 6/m m m");

  const IntMatrix3 hexagonal = Matrix({0, -1, 0, 1, -1, 0, 0, 0, 1});
  messages = MatchRotation(hexagonal, 1, 24, isl);
  EXPECT_EQ(messages.console.back(), "    identical to a S.O. of the space group P m -3 m");

  const IntMatrix3 shear = Matrix({1, 1, 0, 0, 1, 0, 0, 0, 1});
  messages = MatchRotation(shear, 1, 36, isl);
  ASSERT_GE(messages.console.size(), 2u);
  EXPECT_EQ(messages.console[messages.console.size() - 2],
            "    identical to a S.O. of the space group P m -3 m");
  EXPECT_EQ(messages.console.back(), " or identical to a S.O. of the space group P 6/m m m");
}

TEST(SymmetryOperators, DeterminantOfImproperRotationIsMinusOne) {
  EXPECT_EQ(Determinant(Matrix({-1, 0, 0, 0, 1, 0, 0, 0, 1})), -1);
  EXPECT_EQ(Determinant(Matrix({1, 1, 0, 1, 1, 0, 0, 0, 1})), 0);
}

TEST(SymmetryOperators, DecodePositionReadsRotationAndTwelfths) {
  // (-y + 1/2, x - y, z + 1/3) applied to the test point (2, 3, 4)/108.
  const float x = 2.0f / 108.0f, y = 3.0f / 108.0f, z = 4.0f / 108.0f;
  const std::array<float, 3> image = {-y + 0.5f, x - y + 1.0f, z + 1.0f / 3.0f};
  SymmetryOperator op;
  ASSERT_TRUE(DecodePosition(image, op));
  EXPECT_TRUE(Same(op.rotation, Matrix({0, -1, 0, 1, -1, 0, 0, 0, 1})));
  EXPECT_FLOAT_EQ(op.translation[1], 0.5f);
  EXPECT_FLOAT_EQ(op.translation[2], 0.0f);
  EXPECT_EQ(op.translation[3], 4.0f / 12.0f);
}

TEST(SymmetryOperators, PositionWithoutAxisCodeIsRejected) {
  SymmetryOperator op;
  // 108 * 0.5 = 54 has no axis code: (54 + 4) mod 9 - 4 = 0.
  EXPECT_FALSE(DecodePosition({0.5f, 3.0f / 108.0f, 4.0f / 108.0f}, op));
}

TEST(SymmetryOperators, POneHasOneOperator) {
  const SpaceGroup group = Built("P 1");
  EXPECT_EQ(group.NSYM, 1);
  EXPECT_EQ(group.ICENT, 1);
  EXPECT_EQ(group.generalPositionCount, 1);
  EXPECT_EQ(group.multiplicityFactor, 1);
  EXPECT_EQ(group.isl[1], 1);
  for (int a = 1; a <= 3; ++a) EXPECT_EQ(group.translation(a, 1), 0.0f);
}

TEST(SymmetryOperators, CentringImagesNeverDoubleAnOperatorInFm3m) {
  const SpaceGroup group = Built("F m 3 m");
  EXPECT_EQ(group.generalPositionCount, 192);
  EXPECT_EQ(group.NSYM, 24);
  EXPECT_EQ(group.ICENT, 2);
  EXPECT_EQ(group.NLAT, 4);
  EXPECT_EQ(group.multiplicityFactor, 64);
  std::set<int> isl;
  for (int n = 1; n <= group.NSYM; ++n) {
    EXPECT_GT(group.isl[n], 0);
    isl.insert(group.isl[n]);
  }
  EXPECT_EQ(isl.size(), 24u);
}

TEST(SymmetryOperators, OneThirdTranslationIsExactlyFourTwelfths) {
  const SpaceGroup group = Built("P 31");
  ASSERT_EQ(group.NSYM, 3);
  bool found = false;
  for (int n = 1; n <= group.NSYM; ++n) {
    if (group.isl[n] != 26) continue;  // (-y, x-y, z + 1/3)
    found = true;
    EXPECT_EQ(group.translation(3, n), 4.0f / 12.0f);
  }
  EXPECT_TRUE(found);
}

TEST(SymmetryOperators, CentrosymmetricGroupKeepsOnlyProperOperators) {
  const SpaceGroup group = Built("P -1");
  EXPECT_EQ(group.ICENT, 2);
  EXPECT_EQ(group.generalPositionCount, 2);
  EXPECT_EQ(group.NSYM, 1);
  EXPECT_EQ(group.isl[1], 1);
  EXPECT_EQ(group.multiplicityFactor, 4);
}

TEST(SymmetryOperators, ReducedListStopsAtFortyEightOperators) {
  SpaceGroup group;
  std::vector<SymmetryOperator> operators(49);
  for (int n = 0; n < 49; ++n) {
    operators[static_cast<std::size_t>(n)].isl = n % 24 + 1;
    operators[static_cast<std::size_t>(n)].translation[1] = static_cast<float>(n / 24) * 0.25f;
  }
  const SymmetryMessages messages = ReduceOperators(group, operators.data(), 49, false);
  EXPECT_EQ(group.NSYM, 48);
  EXPECT_EQ(group.isl[48], 24);
  const std::vector<std::string> warning = {" Warning!!, symmetry op. are possibly wrong!",
                                            " Please, supply your own symmetry operators"};
  EXPECT_EQ(messages.console, warning);
}

TEST(SymmetryOperators, ReductionDropsOnlyCentringImages) {
  SpaceGroup group;
  LatticeFromSymbol("I 2", group);
  std::vector<SymmetryOperator> operators(3);
  operators[0].isl = 3;
  operators[1].isl = 3;  // the same two-fold shifted by (1/2, 1/2, 1/2): dropped
  operators[2].isl = 3;  // shifted by (1/2, 0, 0): kept
  for (int a = 1; a <= 3; ++a) operators[1].translation[a] = 0.5f;
  operators[2].translation[1] = 0.5f;
  EXPECT_TRUE(ReduceOperators(group, operators.data(), 3, false).ok());
  ASSERT_EQ(group.NSYM, 2);
  EXPECT_EQ(group.translation(1, 2), 0.5f);
  EXPECT_EQ(group.translation(2, 2), 0.0f);
}

TEST(SymmetryOperators, RedundantGeneratorListIsRejected) {
  SpaceGroup group;
  group.generatorWords[1] = 34;  // (-x, -y, z)
  group.generatorWords[2] = 34;
  group.generatorCount = 2;
  GeneralPositionList positions;
  EXPECT_EQ(GeneralPositions(group, positions).stop,
            " The program generated wrong symmetry operator");
}

TEST(SymmetryOperators, GeneralPositionsFollowTheWords) {
  SpaceGroup group;
  group.generatorWords[1] = word::kCentringR;
  group.generatorWords[2] = word::kThreeFoldC;
  group.generatorCount = 2;
  GeneralPositionList positions;
  ASSERT_TRUE(GeneralPositions(group, positions).ok());
  EXPECT_EQ(positions.count, 9);
  EXPECT_EQ(group.generalPositionCount, 9);
  // Second image: the first point shifted by (1/3, 2/3, 2/3).
  EXPECT_NEAR(positions.point[2][0], 1.0f / 54.0f + 1.0f / 3.0f, 1e-6f);
  EXPECT_NEAR(positions.point[2][1], 1.0f / 36.0f + 2.0f / 3.0f, 1e-6f);
  EXPECT_NEAR(positions.point[2][2], 1.0f / 27.0f + 2.0f / 3.0f, 1e-6f);
  for (int p = 1; p <= positions.count; ++p) {
    for (float v : positions.point[p]) {
      EXPECT_GE(v, 0.0f);
      EXPECT_LT(v, 1.0f);
    }
  }
}

TEST(SymmetryOperators, PointGroupWordsFlagCentrosymmetry) {
  EXPECT_EQ(Built("P -1").isAcentric, 0);
  EXPECT_EQ(Built("P 1").isAcentric, 1);
  EXPECT_EQ(Built("P -4").isAcentric, 1);
  EXPECT_EQ(Built("P -3").isAcentric, 0);
  EXPECT_EQ(Built("P 4/m").isAcentric, 0);
}

TEST(SymmetryOperators, PolarAxisMaskKeepsTheAxesNoOperatorMoves) {
  EXPECT_EQ(Built("P 1").polarAxisMask, 7);
  EXPECT_EQ(Built("P 2").polarAxisMask, 2);
  EXPECT_EQ(Built("P 1 1 2").polarAxisMask, 4);
  EXPECT_EQ(Built("P 2 1 1").polarAxisMask, 1);
  EXPECT_EQ(Built("P m").polarAxisMask, 5);
  EXPECT_EQ(Built("P m m 2").polarAxisMask, 4);
  EXPECT_EQ(Built("P 4 m m").polarAxisMask, 4);
  EXPECT_EQ(Built("P 3").polarAxisMask, 4);
  EXPECT_EQ(Built("R 3").polarAxisMask, 4);
  EXPECT_EQ(Built("P 2/m").polarAxisMask, 0);
  EXPECT_EQ(Built("P 3 2 1").polarAxisMask, 0);
}

TEST(SymmetryOperators, DecomposedGeneratorsPutTheCubicThreeFoldLast) {
  const SpaceGroup group = Built("P 2 3");
  ASSERT_EQ(group.generatorCount, 3);
  EXPECT_EQ(group.generatorWords[1], word::kThreeFold111);
  ASSERT_EQ(group.generatorTableCount, 3);
  EXPECT_EQ(group.generatorTable[1].kind, kOrdinaryGenerator);
  EXPECT_EQ(group.generatorTable[2].kind, kOrdinaryGenerator);
  EXPECT_EQ(group.generatorTable[3].kind, kThreeFoldAbout111);
  // (x, -y, -z): r2 = 2 (-y), r3 = 1 (-z).
  EXPECT_EQ(group.generatorTable[1].r1, 0);
  EXPECT_EQ(group.generatorTable[1].r2, 2);
  EXPECT_EQ(group.generatorTable[1].r3, 1);
}

TEST(SymmetryOperators, DecomposedThreeFoldAboutCKeepsItsScrew) {
  const SpaceGroup group = Built("P 32");
  ASSERT_EQ(group.generatorTableCount, 1);
  EXPECT_EQ(group.generatorTable[1].kind, kThreeFoldAboutC);
  EXPECT_EQ(group.generatorTable[1].t1, 3);  // screw 2/3, stored as screw + 1
  const SpaceGroup r = Built("R 3");
  EXPECT_EQ(r.generatorTable[1].kind, kRhombohedralCentring);
}

TEST(SymmetryOperators, MagneticCentricityLineOnlyForASign) {
  EXPECT_EQ(MagneticCentricityText(0), "");
  EXPECT_EQ(MagneticCentricityText(-1), " => The magnetic structure is non-centrosymmetric");
  EXPECT_EQ(MagneticCentricityText(1), " => The magnetic structure is centrosymmetric");
}

TEST(SymmetryOperators, MagneticRotationsCarryTheTimeReversalSign) {
  SpaceGroup group = Built("P 2/m");
  ASSERT_EQ(group.NSYM, 2);
  group.magneticSign[1] = 1;
  group.magneticSign[2] = -1;
  MagneticRotationsFromSigns(group);
  EXPECT_EQ(group.NMAGM, 1);
  EXPECT_EQ(group.magneticRotation(1, 1), group.isl[1]);
  EXPECT_EQ(group.magneticRotation(1, 2), -group.isl[2]);
}

}  // namespace
}  // namespace corvinet
