// The JSON file of a run, read with Python's json parser and compared with the summary and the
// new control file; and the JSON of a run that stops on an error.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <regex>
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

// The script's lines by their first word (the last line of a word wins, except parameters).
struct JsonReading {
  std::map<std::string, std::string> first;
  std::vector<std::vector<std::string>> parameters;
  std::vector<std::vector<std::string>> patterns;
  std::vector<std::vector<std::string>> phases;
};

std::vector<std::string> Words(const std::string& line) {
  std::istringstream in(line);
  std::vector<std::string> words;
  std::string w;
  while (in >> w) words.push_back(w);
  return words;
}

bool ReadJson(const ScratchDir& dir, const std::string& name, JsonReading& r) {
  const std::string script =
      (std::filesystem::path(CORVINET_TEST_DATA) / "results" / "read_json.py").string();
  const std::string command = "python3 '" + script + "' '" + (dir.path / name).string() + "' > '" +
                              (dir.path / "json.txt").string() + "' 2>&1";
  const int status = std::system(command.c_str());
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    ADD_FAILURE() << dir.Read("json.txt");
    return false;
  }
  for (const std::string& line : SplitLines(dir.Read("json.txt"))) {
    const std::vector<std::string> w = Words(line);
    if (w.empty()) continue;
    if (w[0] == "parameter") r.parameters.push_back(w);
    if (w[0] == "pattern") r.patterns.push_back(w);
    if (w[0] == "phase") r.phases.push_back(w);
    r.first[w[0]] = line.substr(w[0].size() + 1);
  }
  return true;
}

TEST(RunJsonEndToEnd, JsonOfARefinementAgreesWithTheSummaryAndTheControlFile) {
  ScratchDir dir;
  ASSERT_EQ(testing::SimulateThenRefine(dir, "report/two_phase_sim.pcr",
                                        "report/two_phase_fractions.pcr", "two_phase_fractions"),
            0);
  JsonReading r;
  ASSERT_TRUE(ReadJson(dir, "two_phase_fractions.json", r));
  EXPECT_EQ(r.first["exit_status"], "0");
  EXPECT_EQ(r.first["reason"], "normal end");
  EXPECT_EQ(r.first["parameters"], "2");
  EXPECT_TRUE(r.first["converged"] == "true" || r.first["converged"] == "false");
  EXPECT_EQ(r.first["cycles"], "10");

  // " => Rp:0.103E-04 Rwp:0.322E-04 Rexp:0.662E-01 Chi2: 0.237E-06  L.S. refinement" of the
  // summary: all points, three significant digits.
  const std::string sum = dir.Read("two_phase_fractions.sum");
  std::smatch m;
  const std::regex factors(R"( => Rp:\s*(\S+) Rwp:\s*(\S+) Rexp:\s*(\S+) Chi2:\s*(\S+))");
  ASSERT_TRUE(std::regex_search(sum, m, factors));
  ASSERT_EQ(r.patterns.size(), 1u);
  for (int i = 0; i < 4; ++i) {
    const double expected = std::stod(m[i + 1]);
    EXPECT_NEAR(std::stod(r.patterns[0][2 + i]), expected, 0.006 * std::fabs(expected)) << i;
  }
  ASSERT_EQ(r.phases.size(), 2u);
  const std::regex bragg(R"( => Bragg R-factor:\s*(\S+) )");
  ASSERT_TRUE(std::regex_search(sum, m, bragg));
  EXPECT_NEAR(std::stod(r.phases[0][3]), std::stod(m[1]), 0.006 * std::stod(m[1]));
  const std::regex fract(R"(Fract\(%\):\s*(\S+)\()");
  ASSERT_TRUE(std::regex_search(sum, m, fract));
  EXPECT_NEAR(std::stod(r.phases[0][4]), std::stod(m[1]), 0.006);

  // The scales of the new control file, parameters 1 and 2.
  ASSERT_EQ(r.parameters.size(), 2u);
  EXPECT_NEAR(std::stod(r.parameters[0][2]), 4.0, 1e-3);
  EXPECT_NEAR(std::stod(r.parameters[1][2]), 9.0, 1e-3);
  EXPECT_EQ(r.parameters[0][5], "Scale");
  EXPECT_GT(std::stod(r.parameters[0][3]), 0.0);
}

TEST(RunJsonEndToEnd, RunThatStopsOnAnErrorSaysWhyInItsJson) {
  ScratchDir dir;
  std::string pcr = TestData("report/two_phase_sim.pcr");
  const std::string ca = "Ca   CA   0.00000";
  pcr.replace(pcr.find(ca), ca.size(), "Ca   QQ   0.00000");  // a species no table holds
  dir.Write("bad.pcr", pcr);
  dir.Write("bad.dat", "");
  const auto run = RunBinary(dir.path, "bad");
  ASSERT_EQ(run.exitCode, 2);
  JsonReading r;
  ASSERT_TRUE(ReadJson(dir, "bad.json", r));
  EXPECT_EQ(r.first["exit_status"], "2");
  EXPECT_EQ(r.first["reason"], "Some scattering coefficients NOT FOUND");
  EXPECT_TRUE(r.patterns.empty());
  EXPECT_TRUE(r.parameters.empty());
}

}  // namespace
}  // namespace corvinet
