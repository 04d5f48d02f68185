// Every alias of the shared alias table builds the group of its row's symbol.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <map>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "crystal/symbol_forms.h"
#include "crystal/symmetry_operators.h"
#include "records/space_group.h"
#include "test_support.h"

namespace corvinet {
namespace {

struct AliasRow {
  int id = 0;
  std::string category;
  std::string symbol;
  std::vector<std::string> aliases;
};

std::vector<AliasRow> LoadRows() {
  std::vector<AliasRow> rows;
  std::istringstream in(testing::TestData("crystal/space_group_aliases.txt"));
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::vector<std::string> f;
    std::string part;
    std::istringstream fields(line);
    while (std::getline(fields, part, '|')) f.push_back(part);
    if (f.size() < 3) continue;
    rows.push_back({std::stoi(f[0]), f[1], f[2], {f.begin() + 3, f.end()}});
  }
  return rows;
}

// One alias and the rows it may stand for under the rule of the table: the
// row written with it, else the standard row, else any of its rows.
struct AliasCase {
  std::string alias;
  std::vector<std::string> symbols;
};

std::vector<AliasCase> LoadCases() {
  const std::vector<AliasRow> rows = LoadRows();
  std::map<std::string, std::vector<const AliasRow*>> rowsOf;
  for (const AliasRow& row : rows) {
    for (const std::string& alias : row.aliases) rowsOf[NormaliseSymbolText(alias)].push_back(&row);
  }
  std::vector<AliasCase> cases;
  for (const auto& [alias, candidates] : rowsOf) {
    AliasCase c{alias, {}};
    for (const AliasRow* row : candidates) {
      if (row->symbol == alias) c.symbols = {row->symbol};
    }
    for (const AliasRow* row : candidates) {
      if (c.symbols.empty() && row->category == "standard") c.symbols = {row->symbol};
    }
    if (c.symbols.empty()) {
      for (const AliasRow* row : candidates) c.symbols.push_back(row->symbol);
    }
    cases.push_back(c);
  }
  return cases;
}

int Twelfths(float t) {
  return static_cast<int>(std::lround(t * 12.0f)) % 12;
}

using Vector12 = std::array<int, 3>;

// The smallest of the translation plus each centring vector.
Vector12 ModuloCentring(const Vector12& t, const std::set<Vector12>& centring) {
  Vector12 best = t;
  for (const Vector12& v : centring) {
    const Vector12 shifted{(t[0] + v[0]) % 12, (t[1] + v[1]) % 12, (t[2] + v[2]) % 12};
    best = std::min(best, shifted);
  }
  return best;
}

// The group as sets: Laue class, unique axis, centring vectors and operators,
// the translations modulo the centring.
using Operator = std::pair<int, Vector12>;
using GroupSets = std::tuple<int, int, int, std::set<Vector12>, std::set<Operator>>;

GroupSets Sets(const SpaceGroup& g) {
  std::set<Vector12> centring;
  for (int v = 1; v <= g.NLAT; ++v) {
    centring.insert({Twelfths(g.latticeTranslation(1, v)), Twelfths(g.latticeTranslation(2, v)),
                     Twelfths(g.latticeTranslation(3, v))});
  }
  std::set<Operator> operators;
  for (int n = 1; n <= g.NSYM; ++n) {
    const Vector12 t{Twelfths(g.translation(1, n)), Twelfths(g.translation(2, n)),
                     Twelfths(g.translation(3, n))};
    operators.insert({g.isl[n], ModuloCentring(t, centring)});
  }
  return {g.LAUE, g.UniqueAxis, g.ICENT, centring, operators};
}

void PrintTo(const AliasCase& c, std::ostream* os) {
  *os << "\"" << c.alias << "\"";
}

class SpaceGroupAlias : public ::testing::TestWithParam<AliasCase> {};

TEST_P(SpaceGroupAlias, BuildsTheGroupOfItsRow) {
  const AliasCase& c = GetParam();
  const SymbolForm form = ReadSymbolForm(c.alias);
  EXPECT_EQ(form.badColumn, 0);
  SpaceGroup group;
  const SymmetryMessages built = SpaceGroupFromSymbol(form.symbol, group);
  ASSERT_TRUE(built.ok()) << built.stop;
  for (const std::string& symbol : c.symbols) {
    SpaceGroup expected;
    ASSERT_TRUE(SpaceGroupFromSymbol(symbol, expected).ok()) << symbol;
    EXPECT_EQ(Sets(group), Sets(expected)) << "read as \"" << form.symbol << "\", row " << symbol;
  }
}

INSTANTIATE_TEST_SUITE_P(AllAliases, SpaceGroupAlias, ::testing::ValuesIn(LoadCases()));

TEST(SpaceGroupAliasData, HasEveryRowWithFourAliases) {
  const std::vector<AliasRow> rows = LoadRows();
  EXPECT_EQ(rows.size(), 554u);
  for (const AliasRow& row : rows) EXPECT_EQ(row.aliases.size(), 4u) << row.symbol;
}

TEST(SpaceGroupAliasData, OwnSymbolsReadUnchanged) {
  for (const AliasRow& row : LoadRows()) {
    const SymbolForm form = ReadSymbolForm(row.symbol);
    EXPECT_FALSE(form.renamed) << row.symbol;
    EXPECT_EQ(form.badColumn, 0) << row.symbol;
    EXPECT_EQ(form.symbol, row.symbol);
  }
}

}  // namespace
}  // namespace corvinet
