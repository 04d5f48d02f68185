// Every tabulated symbol: each allowed form generated once with its multiplicity, none absent.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "crystal/equivalents.h"
#include "crystal/metric.h"
#include "crystal/reflection_generation.h"
#include "crystal/space_group_symbol.h"
#include "crystal/symmetry_operators.h"
#include "model/lorentz_polarisation.h"
#include "test_support.h"

namespace corvinet {
namespace {

using Triple = std::array<int, 3>;
using Rotation = std::array<int, 9>;

constexpr int kBox = 6;
constexpr int kSide = 2 * kBox + 1;
constexpr int kCentre = ((kBox * kSide) + kBox) * kSide + kBox;

int BoxIndex(const Triple& v) {
  return ((v[0] + kBox) * kSide + (v[1] + kBox)) * kSide + (v[2] + kBox);
}

bool InBox(const Triple& v) {
  return std::abs(v[0]) <= kBox && std::abs(v[1]) <= kBox && std::abs(v[2]) <= kBox;
}

// One symbol with the facts of the tables over the box.
struct TabulatedForms {
  int id = 0;
  std::string category;
  std::string symbol;
  std::vector<Rotation> rotations;  // rotation parts of the general position
  std::vector<int> multiplicity;    // per box index, Friedel mates counted
  std::vector<bool> absent;         // per box index
};

std::vector<std::string> SplitBars(const std::string& text) {
  std::vector<std::string> parts;
  std::string part;
  std::istringstream in(text);
  while (std::getline(in, part, '|')) parts.push_back(part);
  return parts;
}

// Rotations and categories of space_groups.txt, by id.
void LoadRotations(std::map<int, TabulatedForms>& forms) {
  std::ifstream in(std::string(CORVINET_TEST_DATA) + "/crystal/space_groups.txt");
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    const std::vector<std::string> f = SplitBars(line);
    TabulatedForms& t = forms[std::stoi(f[0])];
    t.id = std::stoi(f[0]);
    t.category = f[1];
    t.symbol = f[8];
    std::set<Rotation> distinct;
    std::istringstream tokens(f[9]);
    std::string token;
    while (tokens >> token) {
      Rotation r{};
      for (int i = 0; i < 9; ++i) r[i] = token[i] == '+' ? 1 : token[i] == '-' ? -1 : 0;
      distinct.insert(r);
    }
    t.rotations.assign(distinct.begin(), distinct.end());
  }
}

int HexDigit(char c) {
  return c <= '9' ? c - '0' : c - 'a' + 10;
}

// Multiplicity grids and absence bitmaps of reflection_forms.txt.
void LoadForms(std::map<int, TabulatedForms>& forms) {
  const std::string digits = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  std::map<int, std::string> grids;
  std::ifstream in(std::string(CORVINET_TEST_DATA) + "/crystal/reflection_forms.txt");
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream s(line);
    std::string kind;
    s >> kind;
    if (kind == "M") {
      int n = 0;
      s >> n >> grids[n];
    } else if (kind == "S") {
      int id = 0, n = 0;
      std::string bits;
      s >> id >> n >> bits;
      TabulatedForms& t = forms[id];
      t.multiplicity.assign(kSide * kSide * kSide, 0);
      t.absent.assign(kSide * kSide * kSide, false);
      const std::string& grid = grids.at(n);
      for (int i = 0; i < kCentre; ++i) {
        const int m = static_cast<int>(digits.find(grid[static_cast<std::size_t>(i)]));
        const std::size_t digit = static_cast<std::size_t>(i / 4);
        const bool a = bits != "0" && (HexDigit(bits[digit]) >> (3 - i % 4) & 1) != 0;
        t.multiplicity[kCentre + 1 + i] = t.multiplicity[kCentre - 1 - i] = m;
        t.absent[kCentre + 1 + i] = t.absent[kCentre - 1 - i] = a;
      }
    }
  }
}

const std::vector<TabulatedForms>& AllForms() {
  static const std::vector<TabulatedForms> all = [] {
    std::map<int, TabulatedForms> forms;
    LoadRotations(forms);
    LoadForms(forms);
    std::vector<TabulatedForms> list;
    for (auto& [id, t] : forms) list.push_back(t);
    return list;
  }();
  return all;
}

// The form {±hR} of a triple under the tabulated rotations.
std::set<Triple> Form(const TabulatedForms& t, const Triple& h) {
  std::set<Triple> form;
  for (const Rotation& r : t.rotations) {
    Triple q;
    for (int j = 0; j < 3; ++j) q[j] = h[0] * r[j] + h[1] * r[3 + j] + h[2] * r[6 + j];
    form.insert(q);
    form.insert({-q[0], -q[1], -q[2]});
  }
  return form;
}

// A cell of the Laue class with no accidental equality of spacings that
// matters here; the lengths stay near 1 so that the box fits the table.
Table1<float, 6> CellOfClass(int laue, int uniqueAxis) {
  Table1<float, 6> cell;
  cell[1] = 1.0f;
  cell[2] = 1.07f;
  cell[3] = 0.93f;
  cell[4] = cell[5] = cell[6] = 90.0f;
  if (laue == 1) {
    cell[4] = 84.0f;
    cell[5] = 95.0f;
    cell[6] = 99.0f;
  }
  if (laue == 2) cell[3 + uniqueAxis] = 97.0f;
  if (laue == 6 || laue == 7) cell[4] = 80.0f;
  ForceCellToLaueClass(cell, laue, uniqueAxis);
  return cell;
}

// A job whose pattern 1 runs in 1/d from just above 0 to `maxInverseD`.
struct GenerationJob {
  testing::CapturedJob job;
  void SetUp(const SpaceGroup& group, const Table1<float, 6>& coefficients, float maxInverseD) {
    Pattern& p = job->patterns[1];
    p.IXUNIT = AbscissaUnit::kInverseD;
    p.THMIN = 0.001f;
    p.THMAX = maxInverseD;
    p.LAMBDA[1] = p.LAMBDA[2] = 1.0f;
    p.reflections.total = 0;
    job->run.NPHASE = 1;
    Phase& ph = job->phases[1];
    ph.group = group;
    ph.Nvk = 0;
    ph.Jbt = 0;
    ph.pat[1].Contribution = 1;
    ph.pat[1].Irf = 0;
    for (int i = 1; i <= 6; ++i) ph.pat[1].PAR[5 + i] = coefficients[i];
  }
};

double QOf(const Table1<float, 6>& c, const Triple& v) {
  const double h = v[0], k = v[1], l = v[2];
  return c[1] * h * h + c[2] * k * k + c[3] * l * l + c[4] * k * l + c[5] * h * l + c[6] * h * k;
}

struct SymbolOutcome {
  int duplicates = 0, missing = 0, absentGenerated = 0, wrongMultiplicity = 0, generated = 0;
  std::string firstProblem;
  void Note(const std::string& problem) {
    if (firstProblem.empty()) firstProblem = problem;
  }
  bool Clean() const {
    return duplicates == 0 && missing == 0 && absentGenerated == 0 && wrongMultiplicity == 0;
  }
};

std::string Text(const Triple& v) {
  return "(" + std::to_string(v[0]) + " " + std::to_string(v[1]) + " " + std::to_string(v[2]) + ")";
}

SymbolOutcome CheckGeneratedList(GenerationJob& g, const TabulatedForms& t) {
  SymbolOutcome out;
  SpaceGroup group;
  if (!SpaceGroupFromSymbol(t.symbol, group).ok()) {
    out.Note("symbol not read");
    out.missing = 1;
    return out;
  }
  const Table1<float, 6> cell = CellOfClass(group.LAUE, group.UniqueAxis);
  CellMetric metric;
  BuildCellMetric(cell, metric);
  const Table1<float, 6> coefficients = ReciprocalCoefficients(metric);
  double maxQ = 0.0;
  for (int h = -kBox; h <= kBox; ++h) {
    for (int k = -kBox; k <= kBox; ++k) {
      for (int l = -kBox; l <= kBox; ++l) maxQ = std::max(maxQ, QOf(coefficients, {h, k, l}));
    }
  }
  g.SetUp(group, coefficients, static_cast<float>(std::sqrt(maxQ) * 1.001));
  GenerateReflections(*g.job, 1, 1, ReflectionLorentzPolarisation);
  const ReflectionTable& table = g.job->patterns[1].reflections;
  out.generated = table.total;
  std::map<Triple, int> seen;
  for (int s = 1; s <= table.total; ++s) {
    const Reflection& r = table.slot[s];
    const Triple v = {KeyH(r.key), KeyK(r.key), KeyL(r.key)};
    const std::set<Triple> form = Form(t, v);
    if (++seen[*form.rbegin()] == 2) {
      ++out.duplicates;
      out.Note("twice: " + Text(v));
    }
    for (const Triple& q : form) {
      if (!InBox(q)) continue;
      if (t.absent[BoxIndex(q)]) {
        ++out.absentGenerated;
        out.Note("absent generated: " + Text(v));
      } else if (r.multiplicity != t.multiplicity[BoxIndex(q)]) {
        ++out.wrongMultiplicity;
        out.Note("multiplicity of " + Text(v) + ": " + std::to_string(r.multiplicity) +
                 " instead of " + std::to_string(t.multiplicity[BoxIndex(q)]));
      }
      break;
    }
  }
  for (int h = -kBox; h <= kBox; ++h) {
    for (int k = -kBox; k <= kBox; ++k) {
      for (int l = -kBox; l <= kBox; ++l) {
        const Triple v = {h, k, l};
        if (v == Triple{0, 0, 0} || t.absent[BoxIndex(v)]) continue;
        if (seen.count(*Form(t, v).rbegin()) == 0) {
          ++out.missing;
          out.Note("missing: " + Text(v));
        }
      }
    }
  }
  return out;
}

class ReflectionForms : public ::testing::TestWithParam<std::string> {
 protected:
  std::vector<const TabulatedForms*> Symbols() const {
    std::vector<const TabulatedForms*> list;
    for (const TabulatedForms& t : AllForms()) {
      if (t.category == GetParam()) list.push_back(&t);
    }
    return list;
  }
};

TEST_P(ReflectionForms, GeneratedListHoldsEachAllowedFormOnceWithItsMultiplicity) {
  GenerationJob job;
  const std::vector<const TabulatedForms*> symbols = Symbols();
  ASSERT_FALSE(symbols.empty());
  for (const TabulatedForms* t : symbols) {
    const SymbolOutcome out = CheckGeneratedList(job, *t);
    EXPECT_TRUE(out.Clean()) << t->symbol << ": duplicates " << out.duplicates << ", missing "
                             << out.missing << ", absent " << out.absentGenerated
                             << ", multiplicity " << out.wrongMultiplicity << "; "
                             << out.firstProblem;
    EXPECT_GT(out.generated, 0) << t->symbol;
  }
}

TEST_P(ReflectionForms, EquivalentsFlagExactlyTheTabulatedAbsences) {
  for (const TabulatedForms* t : Symbols()) {
    SpaceGroup group;
    ASSERT_TRUE(SpaceGroupFromSymbol(t->symbol, group).ok()) << t->symbol;
    int wrong = 0;
    std::string first;
    for (int h = -kBox; h <= kBox; ++h) {
      for (int k = -kBox; k <= kBox; ++k) {
        for (int l = -kBox; l <= kBox; ++l) {
          const Triple v = {h, k, l};
          if (v == Triple{0, 0, 0}) continue;
          if (IsSystematicallyAbsent(group, h, k, l) != t->absent[BoxIndex(v)]) {
            if (wrong++ == 0) first = Text(v);
          }
        }
      }
    }
    EXPECT_EQ(wrong, 0) << t->symbol << ", first at " << first;
  }
}

INSTANTIATE_TEST_SUITE_P(Categories, ReflectionForms,
                         ::testing::Values("standard", "rhomb-axes", "mono-full", "mono-short",
                                           "mono-alt", "ortho-alt", "extra"),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                           std::string name = info.param;
                           for (char& c : name) {
                             if (c == '-') c = '_';
                           }
                           return name;
                         });

TEST(ReflectionFormsData, CoversEverySymbolOfTheTables) {
  std::map<std::string, int> categories;
  for (const TabulatedForms& t : AllForms()) {
    ++categories[t.category];
    EXPECT_FALSE(t.rotations.empty()) << t.symbol;
    EXPECT_EQ(t.multiplicity.size(), static_cast<std::size_t>(kSide * kSide * kSide)) << t.symbol;
  }
  EXPECT_EQ(categories["standard"], 230);
  EXPECT_EQ(categories["rhomb-axes"], 7);
  EXPECT_EQ(categories["mono-full"], 13);
  EXPECT_EQ(categories["mono-short"], 22);
  EXPECT_EQ(categories["mono-alt"], 92);
  EXPECT_EQ(categories["ortho-alt"], 168);
  EXPECT_EQ(categories["extra"], 22);
}

TEST(ReflectionFormsData, TabulatedMultiplicityIsTheSizeOfTheForm) {
  // The data file and the operator file come from the same tables: check
  // that they agree where both speak, so that neither was misread.
  for (const TabulatedForms& t : AllForms()) {
    for (const Triple& v : {Triple{1, 2, 3}, Triple{0, 0, 1}, Triple{1, 1, 0}, Triple{2, 0, 0}}) {
      EXPECT_EQ(static_cast<int>(Form(t, v).size()), t.multiplicity[BoxIndex(v)])
          << t.symbol << " " << Text(v);
    }
  }
}

}  // namespace
}  // namespace corvinet
