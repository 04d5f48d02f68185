// C-centred tetragonal settings with a screw or glide along the cell diagonal, against the tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "crystal/equivalents.h"
#include "crystal/rotation_table.h"
#include "crystal/symmetry_operators.h"
#include "records/space_group.h"

namespace corvinet {
namespace {

// An operator as in sg_ops.txt: the rotation row-wise, then the translation in twelfths.
using Operator = std::array<int, 12>;

// A reflection of the generation wedge of 4/mmm (k >= h >= 0, l >= 0) with
// what the tables say of it: sg_grid.txt gives the multiplicity, negated when
// the reflection is systematically absent.
struct TabulatedReflection {
  int h, k, l;
  int grid;
};

int Mod12(int v) {
  return ((v % 12) + 12) % 12;
}

// The translation made canonical over the C centring: the smaller of t and t + (1/2,1/2,0).
Operator ModuloCCentring(Operator op) {
  for (int a = 9; a < 12; ++a) op[a] = Mod12(op[a]);
  Operator shifted = op;
  shifted[9] = Mod12(op[9] + 6);
  shifted[10] = Mod12(op[10] + 6);
  return std::min(op, shifted);
}

std::set<Operator> CanonicalSet(const std::vector<Operator>& operators) {
  std::set<Operator> set;
  for (const Operator& op : operators) set.insert(ModuloCCentring(op));
  return set;
}

// The reduced operator list of the group in the layout of the tables.
std::vector<Operator> BuiltOperators(const SpaceGroup& group) {
  std::vector<Operator> built;
  for (int n = 1; n <= group.NSYM; ++n) {
    const IntMatrix3& rotation = IROT(std::abs(group.isl[n]));
    const int sign = group.isl[n] > 0 ? 1 : -1;
    Operator op{};
    for (int i = 1; i <= 3; ++i) {
      for (int j = 1; j <= 3; ++j) op[(i - 1) * 3 + j - 1] = sign * rotation(i, j);
      op[8 + i] = static_cast<int>(std::lround(group.translation(i, n) * 12.0f));
    }
    built.push_back(op);
  }
  return built;
}

void ExpectTheTabulatedGroup(const std::string& symbol, const std::vector<Operator>& tabulated) {
  SpaceGroup group;
  const SymmetryMessages messages = SpaceGroupFromSymbol(symbol, group);
  ASSERT_TRUE(messages.ok()) << messages.stop;
  EXPECT_EQ(group.LAUE, 5);  // 4/mmm
  EXPECT_EQ(group.NLAT, 2);
  EXPECT_EQ(group.latticeLetter, 'C');
  EXPECT_EQ(group.ICENT, 1);
  EXPECT_EQ(group.generalPositionCount, 16);
  ASSERT_EQ(group.NSYM, 8);
  EXPECT_EQ(CanonicalSet(BuiltOperators(group)), CanonicalSet(tabulated));
}

void ExpectTheTabulatedReflections(const std::string& symbol,
                                   const std::vector<TabulatedReflection>& reflections) {
  SpaceGroup group;
  ASSERT_TRUE(SpaceGroupFromSymbol(symbol, group).ok());
  for (const TabulatedReflection& r : reflections) {
    const bool absent = r.grid < 0;
    EXPECT_EQ(IsSystematicallyAbsent(group, r.h, r.k, r.l), absent)
        << symbol << " (" << r.h << " " << r.k << " " << r.l << ")";
    if (absent) continue;
    EXPECT_EQ(FormMultiplicity(group.LAUE, group.UniqueAxis, r.h, r.k, r.l), r.grid)
        << symbol << " (" << r.h << " " << r.k << " " << r.l << ")";
  }
}

// sg_ops.txt, SG 550, the operators of the null centring. The four-fold sits
// at (1/4,1/4,z); its product with the two-fold along b is the screw along
// [110], (y + 1/2, x, -z) up to the centring.
const std::vector<Operator> kCFourTwoTwentyOne = {
    {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0},   {0, -1, 0, 1, 0, 0, 0, 0, 1, 6, 0, 0},
    {-1, 0, 0, 0, -1, 0, 0, 0, 1, 6, 6, 0}, {0, 1, 0, -1, 0, 0, 0, 0, 1, 0, 6, 0},
    {1, 0, 0, 0, -1, 0, 0, 0, -1, 0, 0, 0}, {0, -1, 0, -1, 0, 0, 0, 0, -1, 6, 0, 0},
    {-1, 0, 0, 0, 1, 0, 0, 0, -1, 6, 6, 0}, {0, 1, 0, 1, 0, 0, 0, 0, -1, 0, 6, 0},
};

// sg_ops.txt, SG 553, the operators of the null centring: the elements along
// a and b and the diagonal glide carry 1/2 along x.
const std::vector<Operator> kCBarFourTwoB = {
    {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0},   {0, 1, 0, -1, 0, 0, 0, 0, -1, 0, 0, 0},
    {-1, 0, 0, 0, -1, 0, 0, 0, 1, 0, 0, 0}, {0, -1, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0},
    {-1, 0, 0, 0, 1, 0, 0, 0, -1, 6, 0, 0}, {0, -1, 0, -1, 0, 0, 0, 0, 1, 6, 0, 0},
    {1, 0, 0, 0, -1, 0, 0, 0, -1, 6, 0, 0}, {0, 1, 0, 1, 0, 0, 0, 0, 1, 6, 0, 0},
};

TEST(CentredDiagonal, CFourTwoTwentyOneAgreesWithTheTables) {
  ExpectTheTabulatedGroup("C 4 2 21", kCFourTwoTwentyOne);
  // sg_grid.txt, id 550: the screw along [110] removes h h 0 with h odd,
  // which C 4 2 2 (id 549) keeps with multiplicity 4.
  ExpectTheTabulatedReflections("C 4 2 21", {{1, 1, 0, -4},
                                             {3, 3, 0, -4},
                                             {2, 2, 0, 4},
                                             {0, 1, 0, -4},
                                             {0, 2, 0, 4},
                                             {0, 0, 1, 2},
                                             {1, 1, 1, 8},
                                             {1, 1, 2, 8},
                                             {1, 3, 0, 8},
                                             {2, 4, 1, 16}});
  ExpectTheTabulatedReflections("C 4 2 2", {{1, 1, 0, 4}, {3, 3, 0, 4}});
}

TEST(CentredDiagonal, CBarFourTwoBAgreesWithTheTables) {
  ExpectTheTabulatedGroup("C -4 2 b", kCBarFourTwoB);
  // sg_grid.txt, id 553: the glide removes h h l with h odd, which
  // C -4 2 m (id 552) keeps.
  ExpectTheTabulatedReflections("C -4 2 b", {{1, 1, 0, -4},
                                             {1, 1, 1, -8},
                                             {1, 1, 2, -8},
                                             {3, 3, 1, -8},
                                             {2, 2, 0, 4},
                                             {2, 2, 1, 8},
                                             {0, 0, 1, 2},
                                             {0, 2, 1, 8},
                                             {1, 3, 0, 8},
                                             {2, 4, 1, 16}});
  ExpectTheTabulatedReflections("C -4 2 m", {{1, 1, 0, 4}, {1, 1, 1, 8}, {3, 3, 1, 8}});
}

}  // namespace
}  // namespace corvinet
