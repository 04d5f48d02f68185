// The CIF of a refinement, read back by gemmi through tests/data/results/check_cif.py: cell,
// symmetry operators as a set, sites, and the |F|^2 gemmi computes from the structure it read
// against those the file gives. Skipped without a Python that has gemmi.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
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

constexpr int kScriptSkips = 77;
constexpr double kEightPiSquared = 78.95683520871486;

std::string PythonWithGemmi() {
  for (const std::string candidate : {"/usr/bin/python3", "python3"}) {
    const std::string probe = candidate + " -c 'import gemmi' > /dev/null 2>&1";
    if (std::system(probe.c_str()) == 0) return candidate;
  }
  return {};
}

std::vector<double> Numbers(std::istringstream& in) {
  std::vector<double> v;
  double x = 0;
  while (in >> x) v.push_back(x);
  return v;
}

// What the script read: its lines by first word.
struct CifReading {
  std::vector<double> cell;
  int symopsMatch = -1;
  std::map<std::string, std::vector<double>> sites;  // x y z occupancy u_iso
  int reflections = 0;
  double sfMaxRelative = -1.0;
  std::map<std::string, double> lengths;             // fm
  std::map<std::string, std::vector<double>> aniso;  // u11 u22 u33 u12 u13 u23
};

CifReading ReadScriptOutput(const std::string& text) {
  CifReading r;
  for (const std::string& line : SplitLines(text)) {
    std::istringstream in(line);
    std::string word, label;
    in >> word;
    if (word == "cell") r.cell = Numbers(in);
    if (word == "symops_match") in >> r.symopsMatch;
    if (word == "site" && in >> label) r.sites[label] = Numbers(in);
    if (word == "refln_count") in >> r.reflections;
    if (word == "sf_max_relative") in >> r.sfMaxRelative;
    if (word == "b" && in >> label) in >> r.lengths[label];
    if (word == "aniso" && in >> label) r.aniso[label] = Numbers(in);
  }
  return r;
}

// The atom line of a control file by its label: x y z B Occ.
std::vector<double> AtomLine(const std::string& control, const std::string& label) {
  std::vector<double> v = testing::AtomLineValues(control, label);
  if (v.size() > 5) v.resize(5);
  return v;
}

// Simulates the PbSO4 neutron pattern, refines it with the control file `refinement` of
// tests/data/results, and reads the CIF of phase 1 with the script; false when gemmi is absent.
bool RefineAndReadBack(ScratchDir& dir, const std::string& refinement, CifReading& r) {
  const std::string python = PythonWithGemmi();
  if (python.empty()) return false;
  dir.Write("sim.pcr", TestData("independent/pbso4_neutron.pcr"));
  dir.Write("sim.dat", "");
  EXPECT_EQ(RunBinary(dir.path, "sim").exitCode, 0);
  dir.Write("pbso4.dat", dir.Read("sim.sim"));
  dir.Write("pbso4.pcr", TestData("results/" + refinement));
  const auto run = RunBinary(dir.path, "pbso4");
  EXPECT_EQ(run.exitCode, 0) << run.output;
  EXPECT_TRUE(dir.Exists("pbso4_1.cif"));
  const std::string script =
      (std::filesystem::path(CORVINET_TEST_DATA) / "results" / "check_cif.py").string();
  const std::string command = python + " '" + script + "' '" + (dir.path / "pbso4_1.cif").string() +
                              "' 'P n m a' > '" + (dir.path / "read.txt").string() + "' 2>&1";
  const int status = std::system(command.c_str());
  EXPECT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == kScriptSkips) return false;
  EXPECT_EQ(WEXITSTATUS(status), 0) << dir.Read("read.txt");
  r = ReadScriptOutput(dir.Read("read.txt"));
  return true;
}

TEST(CifExportEndToEnd, NeutronRefinementCifReadsBackToTheRefinedStructure) {
  ScratchDir dir;
  CifReading r;
  if (!RefineAndReadBack(dir, "pbso4_neutron_refine.pcr", r)) GTEST_SKIP() << "no gemmi";

  const std::string control = dir.Read("pbso4.pcr");
  ASSERT_EQ(r.cell.size(), 6u);
  const std::vector<double> cell =
      testing::NumbersIn(testing::LineAfter(control, "!     a          b         c"));
  ASSERT_EQ(cell.size(), 6u);
  for (int i = 0; i < 6; ++i) EXPECT_NEAR(r.cell[i], cell[i], 1e-4) << i;
  EXPECT_EQ(r.symopsMatch, 1);

  // Occupancies in the file are chemical: Occ x 8 / site multiplicity (4 on the mirror, 8 for
  // O3), so 1 for every atom; U = B / (8 pi^2).
  ASSERT_EQ(r.sites.size(), 5u);
  for (const std::string label : {"Pb", "S", "O1", "O2", "O3"}) {
    const std::vector<double> refined = AtomLine(control, label);
    ASSERT_EQ(refined.size(), 5u) << label;
    const std::vector<double>& site = r.sites.at(label);
    ASSERT_EQ(site.size(), 5u) << label;
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(site[j], refined[j], 1e-4) << label << " " << j;
    EXPECT_NEAR(site[3], 1.0, 1e-4) << label;
    EXPECT_NEAR(site[4], refined[3] / kEightPiSquared, 1e-4) << label;
  }

  EXPECT_GT(r.reflections, 100);
  EXPECT_NEAR(r.lengths.at("Pb"), 9.405, 1e-3);  // the program's 0.9405e-12 cm
  EXPECT_NEAR(r.lengths.at("S"), 2.847, 1e-3);
  EXPECT_NEAR(r.lengths.at("O"), 5.803, 1e-3);
  EXPECT_GE(r.sfMaxRelative, 0.0);
  EXPECT_LT(r.sfMaxRelative, 1e-3);
}

// O3 simulated with B = 1.0 and refined with six betas: U = 1 / (8 pi^2) = 0.012665 on the
// diagonal and 0 off it, read back by gemmi as anisotropic; the report analyses the betas.
TEST(CifExportEndToEnd, AnisotropicAtomCifHoldsItsUijAndTheReportItsAxes) {
  ScratchDir dir;
  CifReading r;
  if (!RefineAndReadBack(dir, "pbso4_neutron_aniso.pcr", r)) GTEST_SKIP() << "no gemmi";
  ASSERT_EQ(r.aniso.size(), 1u);
  const std::vector<double>& u = r.aniso.at("O3");
  ASSERT_EQ(u.size(), 6u);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(u[i], 1.0 / kEightPiSquared, 2e-5) << i;
  for (int i = 3; i < 6; ++i) EXPECT_NEAR(u[i], 0.0, 2e-5) << i;
  EXPECT_LT(r.sfMaxRelative, 1e-3);
  const std::string out = dir.Read("pbso4.out");
  EXPECT_NE(out.find(" => Displacement analysis of atom O3"), std::string::npos);
  EXPECT_NE(out.find("    Isotropic temperature factor B(A**2):     1.0000"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
