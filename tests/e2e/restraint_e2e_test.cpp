// Refinements with soft restraints on public neutron data: S-O distances of PbSO4 and the moment
// of Mn in LaMnO3 (skipped when the shared data folder is absent); the restraints go into the new
// control file and the next run reads them.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::ScratchDir;
using testing::SplitLines;

// The numbers of the last line of `text` that begins with `prefix`, after the prefix.
std::vector<double> LastLineNumbers(const std::string& text, const std::string& prefix) {
  std::vector<double> values;
  for (const std::string& line : SplitLines(text)) {
    if (line.rfind(prefix, 0) != 0) continue;
    values.clear();
    std::istringstream rest(line.substr(prefix.size()));
    std::string word;
    while (rest >> word) {
      char* end = nullptr;
      const double x = std::strtod(word.c_str(), &end);
      if (end != word.c_str()) values.push_back(x);
    }
  }
  return values;
}

// The chi-square of the last " => R-Factors:" line.
double LastChi2(const std::string& out) {
  double chi2 = -1.0;
  for (const std::string& line : SplitLines(out)) {
    const std::size_t at = line.find(" => R-Factors:");
    const std::size_t word = line.find("Chi2:");
    if (at == std::string::npos || word == std::string::npos) continue;
    chi2 = std::stod(line.substr(word + 5));
  }
  return chi2;
}

const std::filesystem::path kPbso4Data =
    std::filesystem::path(CORVINET_SHARED_DIR) / "data" / "pbso4-cpd-rr" / "PBSO4.CWN";

// The PbSO4 control file with the three S-O distances restrained to 1.47 A with `sigma`.
std::string RestrainedPbso4(const std::string& sigma) {
  std::string pcr = testing::TestData("real/pbso4_d1a.pcr");
  const std::string flags = "   5   0   0 0.0 0.0 1.0   0   0   0";
  const std::size_t at = pcr.find(flags);
  EXPECT_NE(at, std::string::npos);
  pcr.replace(at, flags.size(), "   5   3   0 0.0 0.0 1.0   0   0   0");
  for (const char* oxygen : {"O1", "O2", "O3"}) {
    pcr += std::string("S    ") + oxygen + "     1   0.0 0.0 0.0  1.47 " + sigma + "\n";
  }
  return pcr;
}

// The refined PbSO4 model of a run's report.
struct Pbso4Model {
  double a = 0, b = 0, c = 0;
  std::vector<double> S, O1, O2, O3;  // x, y, z
  double chi2 = 0;
  explicit Pbso4Model(const std::string& out) {
    a = LastLineNumbers(out, "                    a ").at(0);
    b = LastLineNumbers(out, "                    b ").at(0);
    c = LastLineNumbers(out, "                    c ").at(0);
    for (auto [label, xyz] :
         {std::pair{"    S ", &S}, {"   O1 ", &O1}, {"   O2 ", &O2}, {"   O3 ", &O3}}) {
      const std::vector<double> v = LastLineNumbers(out, label);
      *xyz = {v.at(0), v.at(3), v.at(6)};
    }
    chi2 = LastChi2(out);
  }
  // The S-O distance in the orthorhombic cell, worked out here from the coordinates.
  double SulphurTo(const std::vector<double>& o) const {
    const double dx = (S[0] - o[0]) * a, dy = (S[1] - o[1]) * b, dz = (S[2] - o[2]) * c;
    return std::sqrt(dx * dx + dy * dy + dz * dz);
  }
};

Pbso4Model RunPbso4(ScratchDir& dir, const std::string& name, const std::string& pcr) {
  std::filesystem::copy_file(kPbso4Data, dir.path / (name + ".dat"));
  dir.Write(name + ".pcr", pcr);
  const testing::BinaryRun run = testing::RunBinary(dir.path, name);
  EXPECT_EQ(run.exitCode, 0);
  const std::string out = dir.Read(name + ".out");
  EXPECT_NE(out.find(" =>  Convergence reached at this CYCLE !!!!"), std::string::npos);
  return Pbso4Model(out);
}

TEST(RestraintEndToEnd, PbSO4SulphurOxygenDistancesRestrainedTo147) {
  if (!std::filesystem::exists(kPbso4Data)) GTEST_SKIP() << "shared data folder absent";
  ScratchDir dir;
  const Pbso4Model free = RunPbso4(dir, "free", testing::TestData("real/pbso4_d1a.pcr"));
  const Pbso4Model held = RunPbso4(dir, "held", RestrainedPbso4("0.01"));
  for (const std::vector<double>* o : {&held.O1, &held.O2, &held.O3}) {
    EXPECT_NEAR(held.SulphurTo(*o), 1.47, 0.02);
  }
  // The restraint is worth little beside the data: chi2 rises by at most one per cent.
  ASSERT_GT(free.chi2, 0.0);
  EXPECT_LE(held.chi2, free.chi2 * 1.01);
  // The report gives each restraint with its wanted and obtained distance.
  const std::string out = dir.Read("held.out");
  EXPECT_TRUE(testing::HasLine(out, " => Distance constraints:      Dobs     Dcalc  diff/sigma"));
  const std::vector<double> row = LastLineNumbers(out, "   S    O3     1");
  ASSERT_GE(row.size(), 3u);
  EXPECT_DOUBLE_EQ(row[0], 1.47);
  EXPECT_NEAR(row[1], held.SulphurTo(held.O3), 2.0e-4);
}

TEST(RestraintEndToEnd, PbSO4WithATightSigmaPullsTheDistancesCloser) {
  if (!std::filesystem::exists(kPbso4Data)) GTEST_SKIP() << "shared data folder absent";
  ScratchDir dir;
  const Pbso4Model loose = RunPbso4(dir, "loose", RestrainedPbso4("0.01"));
  const Pbso4Model tight = RunPbso4(dir, "tight", RestrainedPbso4("0.001"));
  double looseSpread = 0.0, tightSpread = 0.0;
  for (int n = 0; n < 3; ++n) {
    const std::vector<double>* lo[] = {&loose.O1, &loose.O2, &loose.O3};
    const std::vector<double>* ti[] = {&tight.O1, &tight.O2, &tight.O3};
    looseSpread += std::fabs(loose.SulphurTo(*lo[n]) - 1.47);
    tightSpread += std::fabs(tight.SulphurTo(*ti[n]) - 1.47);
  }
  EXPECT_LT(tightSpread, 0.5 * looseSpread);
  EXPECT_GT(tight.chi2, loose.chi2);
}

TEST(RestraintEndToEnd, PbSO4WithAVeryLargeSigmaEqualsTheUnrestrainedRefinement) {
  if (!std::filesystem::exists(kPbso4Data)) GTEST_SKIP() << "shared data folder absent";
  ScratchDir dir;
  const Pbso4Model free = RunPbso4(dir, "free", testing::TestData("real/pbso4_d1a.pcr"));
  const Pbso4Model wide = RunPbso4(dir, "wide", RestrainedPbso4("1000.0"));
  EXPECT_EQ(wide.chi2, free.chi2);
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(wide.S[i], free.S[i], 2.0e-5);
    EXPECT_NEAR(wide.O1[i], free.O1[i], 2.0e-5);
    EXPECT_NEAR(wide.O2[i], free.O2[i], 2.0e-5);
    EXPECT_NEAR(wide.O3[i], free.O3[i], 2.0e-5);
  }
  EXPECT_NEAR(wide.a, free.a, 1.0e-5);
}

TEST(RestraintEndToEnd, TheNewControlFileKeepsTheRestraintsAndTheNextRunReadsThem) {
  if (!std::filesystem::exists(kPbso4Data)) GTEST_SKIP() << "shared data folder absent";
  ScratchDir dir;
  RunPbso4(dir, "held", RestrainedPbso4("0.01"));
  // NXT is 1: the control file itself is rewritten.
  EXPECT_EQ(dir.Read("held.out").find("does not read back"), std::string::npos);
  const std::string again = dir.Read("held.pcr");
  EXPECT_TRUE(testing::HasLine(again, "! Soft distance constraints:"));
  EXPECT_TRUE(testing::HasLine(
      again, "S    O2     1    0.00000    0.00000    0.00000    1.47000    0.01000"));
  const testing::BinaryRun run = testing::RunBinary(dir.path, "held");
  ASSERT_EQ(run.exitCode, 0);
  const std::string out = dir.Read("held.out");
  EXPECT_TRUE(testing::HasLine(out, " => Constraints on distances for phase 1"));
  EXPECT_TRUE(testing::HasLine(out,
                               "    Distance between S and O2 is   1.4700 with standard "
                               "error:   0.0100"));
  EXPECT_TRUE(testing::HasLine(out, " => Slack Constraints(dist):"));
}

const std::filesystem::path kLaMnO3Data =
    std::filesystem::path(CORVINET_SHARED_DIR) / "data" / "lamno3-bt1-magnetic" / "LaMnO3_50k.gsas";

// The LaMnO3 magnetic refinement with the moment of Mn restrained, when `restraint` is given.
std::vector<double> RunLaMnO3(ScratchDir& dir, const std::string& name,
                              const std::string& restraint) {
  std::string pcr = testing::TestData("../../examples/lamno3-neutron-magnetic/lamno3_magnetic.pcr");
  if (!restraint.empty()) {
    const std::string flags = "   4   0   0 0.0 0.0 1.0  10";
    const std::size_t at = pcr.find(flags);
    EXPECT_NE(at, std::string::npos);
    pcr.replace(at, flags.size(), "   4   0   1 0.0 0.0 1.0  10");
    pcr += restraint;
  }
  dir.Write(name + ".pcr", pcr);
  EXPECT_EQ(testing::RunBinary(dir.path, name + " LaMnO3_50k.gsas").exitCode, 0);
  // The moment of Mn and its sigma: "   Mn Real moment:   3.49479 (  0.01945)".
  std::vector<double> moment = LastLineNumbers(dir.Read(name + ".out"), "   Mn Real moment:");
  for (double& v : moment) v = std::fabs(v);
  return moment;
}

TEST(RestraintEndToEnd, LaMnO3MomentRestraintPullsTheMomentOfMnTowardsItsWantedValue) {
  if (!std::filesystem::exists(kLaMnO3Data)) GTEST_SKIP() << "shared data folder absent";
  ScratchDir dir;
  std::filesystem::copy_file(kLaMnO3Data, dir.path / "LaMnO3_50k.gsas");
  const std::vector<double> free = RunLaMnO3(dir, "free", "");
  const std::vector<double> held = RunLaMnO3(dir, "held", "Mn 3.000 0.05\n");
  const std::vector<double> wide = RunLaMnO3(dir, "wide", "Mn 3.000 1000.0\n");
  ASSERT_GE(free.size(), 2u);
  ASSERT_GE(held.size(), 1u);
  ASSERT_GE(wide.size(), 1u);
  EXPECT_LT(held[0], free[0] - 0.03);
  EXPECT_GT(held[0], 3.0);
  EXPECT_NEAR(wide[0], free[0], 1.0e-5);
  // Two independent estimates of one value: the data (free moment and its sigma) and the
  // restraint (3.0 and 0.05) combine as a weighted mean.
  const double wd = 1.0 / (free[1] * free[1]);
  const double wr = 1.0 / (0.05 * 0.05);
  EXPECT_NEAR(held[0], (wd * free[0] + wr * 3.0) / (wd + wr), 0.02);
  const std::string out = dir.Read("held.out");
  EXPECT_TRUE(testing::HasLine(out, " => Constraints on magnetic moments for phase 1"));
  EXPECT_TRUE(testing::HasLine(out, " => Slack Constraints(mag):"));
  EXPECT_TRUE(testing::HasLine(dir.Read("held.pcr"), "Mn   3.000 0.05000"));
  // A sigma too wide for its field goes back in exponent form and the file is replaced.
  EXPECT_TRUE(testing::HasLine(dir.Read("wide.pcr"), "Mn   3.000  0.100E+04"));
  EXPECT_EQ(dir.Read("wide.out").find("does not read back"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
