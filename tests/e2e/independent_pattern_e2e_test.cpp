// Calculated PbSO4 patterns (X-ray Ka1/Ka2 and neutron) against a point-by-point calculation of
// tests/data/independent/calculate_pattern.py, which takes its structure factors from the shared
// oracle; skipped without the shared folder or without a Python with numpy and gemmi.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include <sys/wait.h>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::RunBinary;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// Largest difference allowed between the program and the script, relative to the script's
// value at the point (background included).
constexpr double kRelativeTolerance = 1.0e-4;
// The exit status by which the script says that it cannot run here.
constexpr int kScriptSkips = 77;

std::filesystem::path SharedDir() {
  return std::filesystem::path(CORVINET_SHARED_DIR);
}

std::filesystem::path ScriptPath() {
  return std::filesystem::path(CORVINET_TEST_DATA) / "independent" / "calculate_pattern.py";
}

// A Python interpreter that has numpy and gemmi (the oracle needs both); empty if none.
std::string PythonWithOracleModules() {
  for (const std::string candidate : {"/usr/bin/python3", "python3"}) {
    const std::string probe = candidate + " -c 'import numpy, gemmi' > /dev/null 2>&1";
    if (std::system(probe.c_str()) == 0) return candidate;
  }
  return {};
}

// One point of the script's pattern: its value and the bounds left by a peak cut-off that
// falls too near the point to be decided.
struct ScriptPoint {
  double x = 0.0;
  double y = 0.0;
  double low = 0.0;
  double high = 0.0;
};

std::vector<ScriptPoint> ReadScriptPattern(const std::string& text) {
  std::vector<ScriptPoint> points;
  for (const std::string& line : SplitLines(text)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream in(line);
    ScriptPoint p;
    in >> p.x >> p.y >> p.low >> p.high;
    points.push_back(p);
  }
  return points;
}

// The counts of a .sim file: a title line, then the counts parted by blanks.
std::vector<double> ReadSimulatedCounts(const std::string& text) {
  std::vector<double> counts;
  const auto lines = SplitLines(text);
  for (std::size_t i = 1; i < lines.size(); ++i) {
    std::istringstream in(lines[i]);
    double count = 0.0;
    while (in >> count) counts.push_back(count);
  }
  return counts;
}

// Runs the calculation job `name` of tests/data/independent with the program and with the
// script, and compares the two patterns point by point.
void ComparePatterns(const std::string& name) {
  if (!std::filesystem::exists(SharedDir() / "oracle" / "sf_oracle.py")) {
    GTEST_SKIP() << "shared oracle absent: " << SharedDir();
  }
  const std::string python = PythonWithOracleModules();
  if (python.empty()) GTEST_SKIP() << "no python3 with numpy and gemmi";

  ScratchDir dir;
  dir.Write(name + ".pcr", TestData("independent/" + name + ".pcr"));
  dir.Write(name + ".dat", "");
  ASSERT_EQ(RunBinary(dir.path, name).exitCode, 0);
  ASSERT_TRUE(dir.Exists(name + ".sim"));
  const std::vector<double> program = ReadSimulatedCounts(dir.Read(name + ".sim"));

  const std::filesystem::path calc =
      std::filesystem::path(CORVINET_TEST_DATA) / "independent" / (name + ".calc");
  const std::string command = python + " '" + ScriptPath().string() + "' '" + calc.string() +
                              "' '" + SharedDir().string() + "' > '" +
                              (dir.path / "script.txt").string() + "'";
  const int status = std::system(command.c_str());
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == kScriptSkips) GTEST_SKIP() << "the script cannot run here";
  ASSERT_EQ(WEXITSTATUS(status), 0) << command;
  const std::vector<ScriptPoint> script = ReadScriptPattern(dir.Read("script.txt"));

  ASSERT_EQ(program.size(), script.size());
  ASSERT_GT(script.size(), 1000u);
  double largest = 0.0;
  std::size_t worst = 0;
  int failures = 0;
  for (std::size_t i = 0; i < script.size(); ++i) {
    const ScriptPoint& s = script[i];
    const double outside = std::max({s.low - program[i], program[i] - s.high, 0.0});
    const double relative = outside / std::abs(s.y);
    if (relative > largest) {
      largest = relative;
      worst = i;
    }
    if (relative > kRelativeTolerance && ++failures <= 10) {
      ADD_FAILURE() << name << " at 2theta " << s.x << ": program " << program[i] << ", script "
                    << s.y << " (relative difference " << relative << ")";
    }
  }
  EXPECT_EQ(failures, 0);
  std::cout << name << ": largest relative difference " << largest << " at 2theta "
            << script[worst].x << " over " << script.size() << " points\n";
}

TEST(IndependentPatternEndToEnd, XrayDoubletAgreesWithTheIndependentCalculation) {
  ComparePatterns("pbso4_xray");
}

TEST(IndependentPatternEndToEnd, NeutronPatternAgreesWithTheIndependentCalculation) {
  ComparePatterns("pbso4_neutron");
}

}  // namespace
}  // namespace corvinet
