// The symmetry report of a phase on .out, line by line, against tabulated general positions.
//
// The expected report is built here from the general positions of
// tests/data/crystal/report_groups.txt (copied from the shared space-group
// tables) and from the fixed texts of the report typed below: rotation rows,
// Seitz-like symbols, centring texts. Only the field widths of the numbers
// follow the report's own format strings.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "crystal/phase_symmetry.h"
#include "io/file_set.h"
#include "run/defaults.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

using Matrix = std::array<std::array<int, 3>, 3>;
using Translation = std::array<int, 3>;  // in twelfths, 0..11

// ---------------------------------------------------------------------------
// Fixed texts of the report.

// The 36 rotations of the table, (x', y', z'): 1..24 the point group 432,
// 25..36 the point group 622 on hexagonal axes.
constexpr std::array<std::string_view, 36> kRotationRows = {
    "(x,y,z)",    "(-x,-y,z)",   "(-x,y,-z)",    "(x,-y,-z)",  "(z,x,y)",     "(z,-x,-y)",
    "(-z,-x,y)",  "(-z,x,-y)",   "(y,z,x)",      "(-y,z,-x)",  "(y,-z,-x)",   "(-y,-z,x)",
    "(y,x,-z)",   "(-y,-x,-z)",  "(y,-x,z)",     "(-y,x,z)",   "(x,z,-y)",    "(-x,z,y)",
    "(-x,-z,-y)", "(x,-z,y)",    "(z,y,-x)",     "(z,-y,x)",   "(-z,y,x)",    "(-z,-y,-x)",
    "(x,y,z)",    "(-y,x-y,z)",  "(-x+y,-x,z)",  "(-x,-y,z)",  "(y,-x+y,z)",  "(x-y,x,z)",
    "(y,x,-z)",   "(x-y,-y,-z)", "(-x,-x+y,-z)", "(-y,-x,-z)", "(-x+y,y,-z)", "(x,x-y,-z)",
};

// Seitz-like symbols of the cubic family: rows 1..24, then their negatives.
constexpr std::array<std::string_view, 48> kCubicSeitz = {
    "  1           ", "  2 ( 0, 0, z)", "  2 ( 0, y, 0)", "  2 ( x, 0, 0)", " 3+ ( x, x, x)",
    " 3+ (-x, x,-x)", " 3+ ( x,-x,-x)", " 3+ (-x,-x, x)", " 3- ( x, x, x)", " 3- ( x,-x,-x)",
    " 3- (-x,-x, x)", " 3- (-x, x,-x)", "  2 ( x, x, 0)", "  2 ( x,-x, 0)", " 4- ( 0, 0, z)",
    " 4+ ( 0, 0, z)", " 4- ( x, 0, 0)", "  2 ( 0, y, y)", "  2 ( 0, y,-y)", " 4+ ( x, 0, 0)",
    " 4+ ( 0, y, 0)", "  2 ( x, 0, x)", " 4- ( 0, y, 0)", "  2 (-x, 0, x)", " -1           ",
    "  m ( x, y, 0)", "  m ( x, 0, z)", "  m ( 0, y, z)", "-3+ ( x, x, x)", "-3+ (-x, x,-x)",
    "-3+ ( x,-x,-x)", "-3+ (-x,-x, x)", "-3- ( x, x, x)", "-3- ( x,-x,-x)", "-3- (-x,-x, x)",
    "-3- (-x, x,-x)", "  m ( x,-x, z)", "  m ( x, x, z)", "-4- ( 0, 0, z)", "-4+ ( 0, 0, z)",
    "-4- ( x, 0, 0)", "  m ( x, y,-y)", "  m ( x, y, y)", "-4+ ( x, 0, 0)", "-4+ ( 0, y, 0)",
    "  m (-x, y, x)", "-4- ( 0, y, 0)", "  m ( x, y, x)",
};

// Seitz-like symbols of the hexagonal family: rows 25..36, then their negatives.
constexpr std::array<std::string_view, 24> kHexagonalSeitz = {
    "  1           ", " 3+ ( 0, 0, z)", " 3- ( 0, 0, z)", "  2 ( 0, 0, z)", " 6- ( 0, 0, z)",
    " 6+ ( 0, 0, z)", "  2 ( x, x, 0)", "  2 ( x, 0, 0)", "  2 ( 0, y, 0)", "  2 ( x,-x, 0)",
    "  2 ( x,2x, 0)", "  2 (2x, x, 0)", " -1           ", "-3+ ( 0, 0, z)", "-3- ( 0, 0, z)",
    "  m ( x, y, 0)", "-6- ( 0, 0, z)", "-6+ ( 0, 0, z)", "  m ( x,-x, z)", "  m ( x,2x, z)",
    "  m (2x, x, z)", "  m ( x, x, z)", "  m ( x, 0, z)", "  m ( 0, y, z)",
};

struct CentringRow {
  char letter;
  std::string_view text;  // padded to 51 columns when used
  int count;              // NLAT
};

constexpr std::array<CentringRow, 7> kCentrings = {{
    {'P', "  P: { 000 }", 1},
    {'A', "  A: { 000;  0  1/2 1/2 }+", 2},
    {'B', "  B: { 000; 1/2  0  1/2 }+", 2},
    {'C', "  C: { 000; 1/2 1/2  0  }+", 2},
    {'I', "  I: { 000; 1/2 1/2 1/2 }+", 2},
    {'R', "  R: { 000; 2/3 1/3 1/3; 1/3 2/3 2/3   }+", 3},
    {'F', "  F: { 000;  0  1/2 1/2; 1/2  0  1/2; 1/2 1/2  0 }+", 4},
}};

constexpr std::size_t kCentringWidth = 51;

const CentringRow& CentringOf(char letter) {
  for (const CentringRow& c : kCentrings) {
    if (c.letter == letter) return c;
  }
  ADD_FAILURE() << "no centring " << letter;
  return kCentrings[0];
}

std::string CentringText(char letter) {
  std::string text(CentringOf(letter).text);
  text.resize(kCentringWidth, ' ');
  return text;
}

// ---------------------------------------------------------------------------
// Rotations and their texts.

// "(-x+y,-x,z)" as a matrix, row i holding the coefficients of coordinate i'.
Matrix ParseRotationRow(std::string_view text) {
  Matrix m{};
  int row = 0;
  int sign = 1;
  for (const char c : text) {
    switch (c) {
      case ',':
        ++row;
        sign = 1;
        break;
      case '+':
        sign = 1;
        break;
      case '-':
        sign = -1;
        break;
      case 'x':
      case 'y':
      case 'z':
        m[static_cast<std::size_t>(row)][static_cast<std::size_t>(c - 'x')] = sign;
        sign = 1;
        break;
      default:
        break;
    }
  }
  return m;
}

Matrix Rotation(int index) {
  return ParseRotationRow(kRotationRows[static_cast<std::size_t>(index - 1)]);
}

Matrix Negated(Matrix m) {
  for (auto& row : m) {
    for (int& v : row) v = -v;
  }
  return m;
}

bool HexagonalClass(int laue) {
  return laue >= 6 && laue <= 12;
}

// Signed index of `m` in the rows of the family: +i when it equals row i,
// -i when it equals minus row i; 0 when it is in neither.
int SignedRow(const Matrix& m, bool hexagonal) {
  const int first = hexagonal ? 25 : 1;
  const int last = hexagonal ? 36 : 24;
  for (int i = first; i <= last; ++i) {
    if (Rotation(i) == m) return i;
  }
  for (int i = first; i <= last; ++i) {
    if (Negated(Rotation(i)) == m) return -i;
  }
  return 0;
}

// Position in the symbol tables: cubic |isl| (+24 when negative),
// hexagonal |isl| - 24 (+12 when negative).
int SymbolIndex(int isl) {
  const int a = isl < 0 ? -isl : isl;
  if (a > 24) return a - 24 + (isl < 0 ? 12 : 0);
  return a + (isl < 0 ? 24 : 0);
}

std::string_view Seitz(int isl) {
  const int a = isl < 0 ? -isl : isl;
  const auto index = static_cast<std::size_t>(SymbolIndex(isl) - 1);
  return a > 24 ? kHexagonalSeitz[index] : kCubicSeitz[index];
}

// A term of two columns: " x", "-x", or blanks for a zero coefficient; a
// positive term behind another one takes "+".
std::string Term(int coefficient, char letter, bool behindAnother) {
  if (coefficient == 0) return "  ";
  std::string text(1, coefficient < 0 ? '-' : (behindAnother ? '+' : ' '));
  text += letter;
  return text;
}

// Cubic family: one term per coordinate, "( x, y, z)". Hexagonal family: the
// first two coordinates give two columns to x and two to y, "(  -y, x-y, z)".
std::string RotationText(const Matrix& m, bool hexagonal) {
  std::string text = "(";
  for (std::size_t i = 0; i < 3; ++i) {
    if (i > 0) text += ",";
    if (hexagonal && i < 2) {
      text += Term(m[i][0], 'x', false) + Term(m[i][1], 'y', m[i][0] != 0);
      continue;
    }
    for (std::size_t j = 0; j < 3; ++j) {
      if (m[i][j] != 0) text += Term(m[i][j], static_cast<char>('x' + j), false);
    }
  }
  return text + ")";
}

// ---------------------------------------------------------------------------
// Number fields, with the widths of the report's format.

std::string Integer(int value, int width) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%*d", width, value);
  return buffer;
}

// A translation in twelfths as F8.4.
std::string TwelfthsField(int twelfths) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%8.4f", twelfths / 12.0);
  return buffer;
}

// An operator line without its number: ": (", the symbol index, ") ", the
// symbol, " --> ", the rotation text, " + {", the translation, "}".
std::string OperatorBody(int isl, bool hexagonal, const Translation& t) {
  const Matrix m = isl < 0 ? Negated(Rotation(-isl)) : Rotation(isl);
  std::string line = ": (" + Integer(SymbolIndex(isl), 2) + ") " + std::string(Seitz(isl)) +
                     " --> " + RotationText(m, hexagonal) + " + {";
  for (const int v : t) line += TwelfthsField(v);
  return line + "}";
}

// ---------------------------------------------------------------------------
// Tabulated general positions.

struct Position {
  Matrix rotation;
  Translation translation;
};

struct TabulatedGroup {
  std::vector<Position> positions;
  bool centric = false;  // -x,-y,-z with no translation is a position
};

TabulatedGroup ReadGroup(const std::string& symbol) {
  std::istringstream in(TestData("crystal/report_groups.txt"));
  std::string line;
  TabulatedGroup group;
  int remaining = -1;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    if (line.rfind("SG ", 0) == 0) {
      std::string tag;
      int id = 0, count = 0;
      fields >> tag >> id >> count;
      std::string rest;
      std::getline(fields, rest);
      rest.erase(0, rest.find_first_not_of(' '));
      remaining = rest == symbol ? count : -1;
      continue;
    }
    if (remaining <= 0) continue;
    Position p{};
    for (auto& row : p.rotation) {
      for (int& v : row) fields >> v;
    }
    for (int& v : p.translation) fields >> v;
    group.positions.push_back(p);
    --remaining;
  }
  const Matrix inversion = Negated(Rotation(1));
  for (const Position& p : group.positions) {
    if (p.rotation == inversion && p.translation == Translation{0, 0, 0}) group.centric = true;
  }
  return group;
}

// The reduced set of a tabulated group: one operator per rotation (the
// centring translations removed), and for a group with the inversion at the
// origin the proper rotations only. Each operator maps to the lines that are
// acceptable for it: its translation may be any of its centring class.
std::map<int, std::set<std::string>> ReducedOperators(const TabulatedGroup& group, int laue,
                                                      int centrings) {
  const bool hexagonal = HexagonalClass(laue);
  std::map<int, std::set<Translation>> classes;
  for (const Position& p : group.positions) {
    const int isl = SignedRow(p.rotation, hexagonal);
    EXPECT_NE(isl, 0) << "a tabulated rotation is in no row of the family";
    classes[isl].insert(p.translation);
  }
  std::map<int, std::set<std::string>> reduced;
  for (const auto& [isl, translations] : classes) {
    EXPECT_EQ(static_cast<int>(translations.size()), centrings) << "rotation " << isl;
    if (group.centric && isl < 0) continue;
    for (const Translation& t : translations) reduced[isl].insert(OperatorBody(isl, hexagonal, t));
  }
  return reduced;
}

// ---------------------------------------------------------------------------
// A phase read from a control text, with .out open in a scratch directory.

struct ReportCase {
  ScratchDir dir;
  CapturedJob job;
  std::size_t linesBefore = 0;
  ReportCase(const std::string& symbol, int isy, const std::string& lines) {
    testing::OpenControlText(dir, *job, lines);
    job->run.NPATT = 1;
    job->run.NPHASE = 1;
    Phase& ph = job->phases[1];
    ph.SpaceGroupSymbol = symbol;
    ph.Isy = isy;
    ph.Jbt = 0;
    ph.pat[1].Contribution = 1;
    ph.pat[1].Irf = 1;
  }
  std::vector<std::string> OutLines() {
    std::fflush(job->files.units[Unit::Out].file);
    return SplitLines(dir.Read("x.out"));
  }
  // The lines the symmetry of the phase adds to .out; false when the run stopped.
  bool Build(std::vector<std::string>& added) {
    const std::vector<std::string> before = OutLines();
    try {
      BuildPhaseSymmetry(*job, 1);
    } catch (const ProcessStop&) {
      return false;
    }
    const std::vector<std::string> after = OutLines();
    added.assign(after.begin() + static_cast<std::ptrdiff_t>(before.size()), after.end());
    return true;
  }
};

const std::string kMultiplicityLabel = " -> The multiplicity of the general position is:";
const std::string kOperatorHeader =
    std::string("  No.  IT   Symmetry symbol    Rotation part") + "     Associated Translation";

// Checks the operator lines that follow the header: numbered 1, 2, ... in I4,
// each of them one of the expected operators, each operator once.
void ExpectOperatorSet(const std::vector<std::string>& lines, std::size_t first,
                       const std::map<int, std::set<std::string>>& expected) {
  ASSERT_EQ(lines.size(), first + expected.size());
  std::set<int> seen;
  for (std::size_t n = 1; n <= expected.size(); ++n) {
    const std::string& line = lines[first + n - 1];
    SCOPED_TRACE(line);
    ASSERT_GE(line.size(), 4u);
    EXPECT_EQ(line.substr(0, 4), Integer(static_cast<int>(n), 4));
    const std::string body = line.substr(4);
    int found = 0;
    for (const auto& [isl, accepted] : expected) {
      if (accepted.count(body) != 0) found = isl;
    }
    EXPECT_NE(found, 0) << "not an operator of the reduced set";
    if (found != 0) {
      EXPECT_TRUE(seen.insert(found).second) << "operator reported twice";
    }
  }
  EXPECT_EQ(seen.size(), expected.size());
}

// The whole report of a group whose operators come from its symbol.
void CheckSymbolReport(const std::string& symbol, int laue, std::size_t reducedCount) {
  SCOPED_TRACE(symbol);
  const TabulatedGroup group = ReadGroup(symbol);
  ASSERT_FALSE(group.positions.empty());
  const CentringRow& centring = CentringOf(symbol[0]);
  const auto expected = ReducedOperators(group, laue, centring.count);
  ASSERT_EQ(expected.size(), reducedCount);

  std::string typed = symbol;
  typed.resize(20, ' ');
  const std::vector<std::string> header = {
      " => The SPACE GROUP is: " + typed,
      kMultiplicityLabel + Integer(static_cast<int>(group.positions.size()), 4),
      std::string(" -> The space group is") +
          (group.centric ? " centrosymmetric" : " non-centrosymmetric"),
      " -> Lattice type" + CentringText(symbol[0]),
      " -> Reduced set of symmetry operators:",
      kOperatorHeader,
  };

  ReportCase c(symbol, 0, "");
  std::vector<std::string> lines;
  ASSERT_TRUE(c.Build(lines));
  ASSERT_GE(lines.size(), header.size());
  for (std::size_t i = 0; i < header.size(); ++i) EXPECT_EQ(lines[i], header[i]) << "line " << i;
  ExpectOperatorSet(lines, header.size(), expected);
}

// ---------------------------------------------------------------------------
// The helpers against the examples written out in the description of the report.

TEST(SymmetryReportLines, RotationTextsOfTheHelperFollowTheWrittenExamples) {
  EXPECT_EQ(RotationText(Rotation(1), false), "( x, y, z)");
  EXPECT_EQ(RotationText(Rotation(25), true), "( x  ,   y, z)");
  EXPECT_EQ(RotationText(Rotation(26), true), "(  -y, x-y, z)");
  EXPECT_EQ(RotationText(Rotation(27), true), "(-x+y,-x  , z)");
  EXPECT_EQ(RotationText(Negated(Rotation(5)), false), "(-z,-x,-y)");
  for (int i = 1; i <= 36; ++i) {
    EXPECT_EQ(RotationText(Rotation(i), i > 24).size(), i > 24 ? 14u : 10u) << i;
  }
}

TEST(SymmetryReportLines, HelperTablesAreConsistent) {
  // 36 distinct proper rotations; 14-character symbols; 51-column centrings.
  std::set<Matrix> cubic, hexagonal;
  for (int i = 1; i <= 24; ++i) cubic.insert(Rotation(i));
  for (int i = 25; i <= 36; ++i) hexagonal.insert(Rotation(i));
  EXPECT_EQ(cubic.size(), 24u);
  EXPECT_EQ(hexagonal.size(), 12u);
  for (std::string_view s : kCubicSeitz) EXPECT_EQ(s.size(), 14u) << s;
  for (std::string_view s : kHexagonalSeitz) EXPECT_EQ(s.size(), 14u) << s;
  for (const CentringRow& c : kCentrings) EXPECT_LE(c.text.size(), kCentringWidth);
  EXPECT_EQ(SignedRow(Negated(Rotation(1)), false), -1);
  EXPECT_EQ(Seitz(-1), " -1           ");
  EXPECT_EQ(Seitz(-26), "-3+ ( 0, 0, z)");
}

// ---------------------------------------------------------------------------
// Operators from the symbol.

TEST(SymmetryReportLines, P1) {
  CheckSymbolReport("P 1", 1, 1);
}

TEST(SymmetryReportLines, PMinus1KeepsOnlyTheIdentity) {
  CheckSymbolReport("P -1", 1, 1);
}

TEST(SymmetryReportLines, P21c) {
  CheckSymbolReport("P 21/c", 2, 2);
}

TEST(SymmetryReportLines, Fm3m) {
  CheckSymbolReport("F m 3 m", 14, 24);
}

TEST(SymmetryReportLines, RMinus3mOnHexagonalAxes) {
  CheckSymbolReport("R -3 m", 9, 6);
}

TEST(SymmetryReportLines, P63mmc) {
  CheckSymbolReport("P 63/m m c", 12, 12);
}

TEST(SymmetryReportLines, IMinus43d) {
  CheckSymbolReport("I -4 3 d", 14, 24);
}

// ---------------------------------------------------------------------------
// Operators read as numbers from the control file: the report lists them in
// the order read, each with the translation as given.

std::string Decimal(int twelfths) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.6f", twelfths / 12.0);
  return buffer;
}

void CheckFileReport(const std::string& symbol, int laue, int centric, std::size_t count) {
  SCOPED_TRACE(symbol);
  const TabulatedGroup group = ReadGroup(symbol);
  ASSERT_FALSE(group.positions.empty());
  ASSERT_EQ(group.centric, centric == 2);
  const bool hexagonal = HexagonalClass(laue);

  // The operators of the null centring, proper ones only for a centric group,
  // in the order of the table.
  std::vector<Position> chosen;
  std::set<Matrix> rotations;
  for (const Position& p : group.positions) {
    const int isl = SignedRow(p.rotation, hexagonal);
    if (group.centric && isl < 0) continue;
    if (!rotations.insert(p.rotation).second) continue;
    chosen.push_back(p);
  }
  ASSERT_EQ(chosen.size(), count);

  std::string control =
      std::to_string(count) + " " + std::to_string(centric) + " " + std::to_string(laue) + " 0\n";
  for (const Position& p : chosen) {
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t j = 0; j < 3; ++j) control += std::to_string(p.rotation[i][j]) + " ";
      control += Decimal(p.translation[i]) + (i < 2 ? " " : "\n");
    }
  }

  std::vector<std::string> expected = {
      " => Symmetry operators read from file",
      " => Laue class (LAUE):" + Integer(laue, 3) +
          "   Magnetic matrices per operator (NMAGM):" + Integer(0, 3),
      kMultiplicityLabel + Integer(static_cast<int>(group.positions.size()), 4),
      std::string(" -> The structure is treated as") +
          (centric == 2 ? " centrosymmetric" : " non-centrosymmetric"),
      kOperatorHeader,
  };
  for (std::size_t n = 1; n <= chosen.size(); ++n) {
    const Position& p = chosen[n - 1];
    expected.push_back(Integer(static_cast<int>(n), 4) +
                       OperatorBody(SignedRow(p.rotation, hexagonal), hexagonal, p.translation));
  }

  ReportCase c(symbol, 1, control);
  std::vector<std::string> lines;
  ASSERT_TRUE(c.Build(lines));
  ASSERT_EQ(lines.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_EQ(lines[i], expected[i]) << "line " << i;
}

TEST(SymmetryReportLines, NumericOperatorLinesOfP63mmc) {
  CheckFileReport("P 63/m m c", 12, 2, 12);
}

TEST(SymmetryReportLines, NumericOperatorLinesOfIMinus43d) {
  CheckFileReport("I -4 3 d", 14, 1, 24);
}

}  // namespace
}  // namespace corvinet
