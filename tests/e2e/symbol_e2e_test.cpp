// End-to-end runs of a pattern calculation whose space group is written in other forms.
#include <gtest/gtest.h>

#include <array>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::RunBinary;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// The cubic calculation of head/calc.pcr with the symbol `symbol` and the range up to 40 degrees.
std::string CalculationWith(const std::string& symbol) {
  std::string text = TestData("head/calc.pcr");
  const std::string line = "P m 3 m                  <--Space group symbol";
  std::string written = symbol;
  written.resize(25, ' ');
  text.replace(text.find(line), line.size(), written + "<--Space group symbol");
  const std::string range = "20.0000   0.000";
  text.replace(text.find(range), range.size(), "40.0000   0.000");
  return text;
}

// The reflection lines of the report: from the column heads to the phase summary.
std::vector<std::string> ReflectionLines(const std::string& out) {
  std::vector<std::string> rows;
  bool inside = false;
  for (const std::string& line : SplitLines(out)) {
    if (line.rfind(" => Phase:", 0) == 0) inside = false;
    if (inside) rows.push_back(line);
    if (line.rfind(" Code h   k   l", 0) == 0) inside = true;
  }
  return rows;
}

// The hkl of the reflection lines.
std::set<std::array<int, 3>> Indices(const std::vector<std::string>& rows) {
  std::set<std::array<int, 3>> hkl;
  for (const std::string& row : rows) {
    std::istringstream in(row);
    int code = 0;
    std::array<int, 3> h{};
    if (in >> code >> h[0] >> h[1] >> h[2]) hkl.insert(h);
  }
  return hkl;
}

struct Calculation {
  ScratchDir dir;
  int exitCode = -1;
  std::string console;
  std::string out;
  explicit Calculation(const std::string& symbol) {
    dir.Write("x.pcr", CalculationWith(symbol));
    const auto run = RunBinary(dir.path, "x");
    exitCode = run.exitCode;
    console = run.output;
    out = dir.Read("x.out");
  }
};

TEST(SymbolEndToEnd, SymbolWithoutBlanksCalculatesThePatternOfTheProgramsSymbol) {
  const Calculation own("F m 3 m");
  const Calculation alias("Fm-3m");
  ASSERT_EQ(own.exitCode, 0);
  ASSERT_EQ(alias.exitCode, 0);
  EXPECT_EQ(
      testing::CountLines(alias.out, " => Space group symbol read as: F m 3 m (written Fm-3m)"), 1);
  EXPECT_EQ(own.out.find("Space group symbol read as"), std::string::npos);
  const std::vector<std::string> rows = ReflectionLines(alias.out);
  EXPECT_EQ(rows, ReflectionLines(own.out));
  // F centring up to 40 degrees (d above 2.25 A for a = 9 A): h, k, l all odd or all even.
  const std::set<std::array<int, 3>> expected = {
      {1, 1, 1}, {0, 0, 2}, {0, 2, 2}, {1, 1, 3}, {2, 2, 2}};
  EXPECT_EQ(Indices(rows), expected);
  EXPECT_EQ(rows.size(), 10u);  // each reflection for both lines of the doublet
}

TEST(SymbolEndToEnd, AnUnknownCharacterStopsWithACaretUnderIt) {
  const Calculation bad("R -3 q");
  EXPECT_EQ(bad.exitCode, 2);
  EXPECT_TRUE(testing::HasLine(bad.console, "\"R -3 q\"")) << bad.console;
  EXPECT_TRUE(testing::HasLine(bad.console, " -----^")) << bad.console;
  EXPECT_TRUE(testing::HasLine(bad.console, " Error in S.G. symbol")) << bad.console;
  EXPECT_TRUE(ReflectionLines(bad.out).empty());
}

}  // namespace
}  // namespace corvinet
