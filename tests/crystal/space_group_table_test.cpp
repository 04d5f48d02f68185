// Every symbol of the reference tables builds the tabulated group, centring, class and axis.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "crystal/rotation_table.h"
#include "crystal/symmetry_operators.h"
#include "records/space_group.h"

namespace corvinet {
namespace {

// An operator as rotation entries row-wise and translation in twelfths (0..11).
using Operator = std::array<int, 12>;
using Vector12 = std::array<int, 3>;

struct TabulatedGroup {
  int id = 0;
  std::string category;
  char lattice = 'P';
  int centrings = 1;
  bool centro = false;
  int order = 0;
  int laue = 0;
  int uniqueAxis = 0;
  std::string symbol;
  std::vector<Operator> operators;  // coset of the null centring
};

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::string part;
  std::istringstream in(text);
  while (std::getline(in, part, separator)) parts.push_back(part);
  return parts;
}

Operator DecodeToken(const std::string& token) {
  Operator op{};
  for (int i = 0; i < 9; ++i) op[i] = token[i] == '+' ? 1 : token[i] == '-' ? -1 : 0;
  for (int i = 9; i < 12; ++i)
    op[i] = static_cast<int>(std::strtol(token.substr(i, 1).c_str(), nullptr, 12));
  return op;
}

std::vector<TabulatedGroup> LoadGroups() {
  std::vector<TabulatedGroup> groups;
  std::ifstream in(std::string(CORVINET_TEST_DATA) + "/crystal/space_groups.txt");
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    const std::vector<std::string> f = Split(line, '|');
    if (f.size() != 10) continue;
    TabulatedGroup g;
    g.id = std::stoi(f[0]);
    g.category = f[1];
    g.lattice = f[2][0];
    g.centrings = std::stoi(f[3]);
    g.centro = f[4] == "1";
    g.order = std::stoi(f[5]);
    g.laue = std::stoi(f[6]);
    g.uniqueAxis = std::stoi(f[7]);
    g.symbol = f[8];
    for (const std::string& token : Split(f[9], ' ')) {
      if (token.size() == 12) g.operators.push_back(DecodeToken(token));
    }
    groups.push_back(g);
  }
  return groups;
}

// Centring vectors in twelfths, from the lattice letter and count of the table.
std::vector<Vector12> TabulatedCentring(const TabulatedGroup& g) {
  if (g.centrings == 1) return {{0, 0, 0}};
  switch (g.lattice) {
    case 'A':
      return {{0, 0, 0}, {0, 6, 6}};
    case 'B':
      return {{0, 0, 0}, {6, 0, 6}};
    case 'C':
      return {{0, 0, 0}, {6, 6, 0}};
    case 'I':
      return {{0, 0, 0}, {6, 6, 6}};
    case 'F':
      return {{0, 0, 0}, {0, 6, 6}, {6, 0, 6}, {6, 6, 0}};
    case 'R':
      return {{0, 0, 0}, {8, 4, 4}, {4, 8, 8}};
    default:
      return {};
  }
}

int Mod12(int v) {
  return ((v % 12) + 12) % 12;
}

// The translation made canonical over the centring: the smallest of t + v.
Operator ModuloCentring(Operator op, const std::vector<Vector12>& centring) {
  Operator best = op;
  for (const Vector12& v : centring) {
    Operator shifted = op;
    for (int a = 0; a < 3; ++a) shifted[9 + a] = Mod12(op[9 + a] + v[a]);
    if (shifted < best) best = shifted;
  }
  return best;
}

int Twelfths(float t) {
  return static_cast<int>(std::lround(t * 12.0f));
}

void PrintTo(const TabulatedGroup& group, std::ostream* os) {
  *os << "\"" << group.symbol << "\" (" << group.category << ")";
}

class SpaceGroupTable : public ::testing::TestWithParam<TabulatedGroup> {};

TEST_P(SpaceGroupTable, BuildsTheTabulatedGroup) {
  const TabulatedGroup& expected = GetParam();
  SpaceGroup group;
  const SymmetryMessages messages = SpaceGroupFromSymbol(expected.symbol, group);
  ASSERT_TRUE(messages.ok()) << messages.stop;
  EXPECT_TRUE(messages.console.empty());

  EXPECT_EQ(group.LAUE, expected.laue);
  EXPECT_EQ(group.UniqueAxis, expected.uniqueAxis);
  EXPECT_EQ(group.NLAT, expected.centrings);
  EXPECT_EQ(group.ICENT, expected.centro ? 2 : 1);
  EXPECT_EQ(group.isAcentric, expected.centro ? 0 : 1);
  EXPECT_EQ(group.generalPositionCount, expected.order);
  EXPECT_EQ(group.rotationWordCount, expected.order);
  const int reduction = expected.centrings * (expected.centro ? 2 : 1);
  EXPECT_EQ(group.NSYM, expected.order / reduction);
  EXPECT_EQ(group.multiplicityFactor, reduction * reduction);

  const std::vector<Vector12> centring = TabulatedCentring(expected);
  std::set<Vector12> ownCentring;
  for (int v = 1; v <= group.NLAT; ++v) {
    ownCentring.insert({Mod12(Twelfths(group.latticeTranslation(1, v))),
                        Mod12(Twelfths(group.latticeTranslation(2, v))),
                        Mod12(Twelfths(group.latticeTranslation(3, v)))});
  }
  EXPECT_EQ(ownCentring, std::set<Vector12>(centring.begin(), centring.end()));

  // The reduced list with the implied inversion, modulo the centring.
  std::vector<Operator> built;
  for (int n = 1; n <= group.NSYM; ++n) {
    const int isl = group.isl[n];
    ASSERT_NE(isl, 0);
    const IntMatrix3& rotation = IROT(std::abs(isl));
    for (int inversion : {1, -1}) {
      if (inversion == -1 && group.ICENT != 2) continue;
      Operator op{};
      for (int i = 1; i <= 3; ++i) {
        for (int j = 1; j <= 3; ++j)
          op[(i - 1) * 3 + j - 1] = inversion * (isl > 0 ? 1 : -1) * rotation(i, j);
      }
      for (int a = 1; a <= 3; ++a) {
        const float t = group.translation(a, n);
        EXPECT_GE(t, 0.0f);
        EXPECT_LT(t, 1.0f);
        EXPECT_NEAR(t * 12.0f, static_cast<float>(Twelfths(t)), 1e-3f);
        op[8 + a] = Mod12(inversion * Twelfths(t));
      }
      built.push_back(ModuloCentring(op, centring));
    }
  }
  std::set<Operator> builtSet(built.begin(), built.end());
  EXPECT_EQ(builtSet.size(), built.size()) << "an operator appears twice";
  std::set<Operator> expectedSet;
  for (const Operator& op : expected.operators) expectedSet.insert(ModuloCentring(op, centring));
  EXPECT_EQ(builtSet, expectedSet);
}

std::string GroupName(const ::testing::TestParamInfo<TabulatedGroup>& info) {
  std::string name = "id" + std::to_string(info.param.id) + "_";
  for (char c : info.param.symbol) {
    if (c == ' ') {
      name += '_';
    } else if (c == '/') {
      name += "over";
    } else if (c == '-') {
      name += "bar";
    } else {
      name += c;
    }
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(AllSymbols, SpaceGroupTable, ::testing::ValuesIn(LoadGroups()), GroupName);

TEST(SpaceGroupTableData, CoversEveryCategoryOfTheGrammar) {
  std::multiset<std::string> categories;
  for (const TabulatedGroup& g : LoadGroups()) categories.insert(g.category);
  EXPECT_EQ(categories.count("standard"), 230u);
  EXPECT_EQ(categories.count("rhomb-axes"), 7u);
  EXPECT_EQ(categories.count("mono-full"), 13u);
  EXPECT_EQ(categories.count("mono-short"), 22u);
  EXPECT_EQ(categories.count("mono-alt"), 92u);
  EXPECT_EQ(categories.count("ortho-alt"), 168u);
  EXPECT_EQ(categories.count("extra"), 22u);
}

}  // namespace
}  // namespace corvinet
