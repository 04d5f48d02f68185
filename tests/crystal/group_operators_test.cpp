// Tests of the operators of a built group: the reduced list, the whole general position and the
// rows of a matrix as letters.
#include "crystal/group_operators.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <string>

#include "crystal/symmetry_operators.h"

namespace corvinet {
namespace {

std::string Key(const SymmetryOperator& op) {
  std::string key;
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 3; ++j) key += std::to_string(op.rotation(i, j)) + " ";
    key += std::to_string(static_cast<int>(std::lround(op.translation[i] * 12.0))) + ";";
  }
  return key;
}

// P n m a: 4 operators in the reduced list, 8 in the general position, all distinct.
TEST(GroupOperators, CentrosymmetricGroupDoublesItsReducedList) {
  SpaceGroup g;
  ASSERT_TRUE(SpaceGroupFromSymbol("P n m a", g).ok());
  ASSERT_EQ(g.NSYM, 4);
  const auto ops = GeneralPositionOperators(g);
  EXPECT_EQ(ops.size(), 8u);
  std::set<std::string> keys;
  for (const auto& op : ops) keys.insert(Key(op));
  EXPECT_EQ(keys.size(), 8u);
}

// F m 3 m: 192 operators, every translation inside [0, 1).
TEST(GroupOperators, CentredCubicGroupHasItsWholeOrder) {
  SpaceGroup g;
  ASSERT_TRUE(SpaceGroupFromSymbol("F m 3 m", g).ok());
  const auto ops = GeneralPositionOperators(g);
  ASSERT_EQ(static_cast<int>(ops.size()), g.generalPositionCount);
  EXPECT_EQ(ops.size(), 192u);
  for (const auto& op : ops) {
    for (int i = 1; i <= 3; ++i) {
      EXPECT_GE(op.translation[i], 0.0f);
      EXPECT_LT(op.translation[i], 1.0f);
    }
  }
}

TEST(GroupOperators, MatrixRowIsWrittenAsLetters) {
  IntMatrix3 m;
  m.Fill(0);
  m(1, 1) = 1;
  m(1, 2) = -1;
  m(2, 3) = -2;
  EXPECT_EQ(MatrixRowText(m, 1, {"x", "y", "z"}), "x-y");
  EXPECT_EQ(MatrixRowText(m, 2, {"u", "v", "w"}), "-2w");
  EXPECT_EQ(MatrixRowText(m, 3, {"x", "y", "z"}), "0");
}

}  // namespace
}  // namespace corvinet
