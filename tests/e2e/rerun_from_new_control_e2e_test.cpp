// A run started from the control file a refinement wrote carries on where that refinement ended:
// its first cycle has the chi2 of the last cycle before (to the precision of the written numbers)
// and it converges to the same fit. Jobs of tests/data and of examples/, and public neutron
// patterns of the shared data folder (skipped when it is absent).
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::RunBinary;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// Agreement asked of the two chi2: the written numbers carry five or six figures.
constexpr double kRelativeAgreement = 1.0e-3;

// The chi2 of the first pattern in the run summary `json` (of the last cycle run).
double SummaryChi2(const std::string& json) {
  std::smatch m;
  const std::regex chi2(R"re("chi2": ([-+0-9.eE]+))re");
  if (!std::regex_search(json, m, chi2)) return -1.0;
  return std::stod(m[1].str());
}

// `pcr` with one cycle: the first field of the line under the "!NCY" header set to 1.
std::string WithOneCycle(const std::string& pcr) {
  std::string out;
  bool next = false;
  for (const std::string& line : SplitLines(pcr)) {
    out += next ? std::regex_replace(line, std::regex(R"(^ *[0-9]+)"), "  1",
                                     std::regex_constants::format_first_only)
                : line;
    out += "\n";
    next = line.rfind("!NCY", 0) == 0;
  }
  return out;
}

// What the first run ended with and what the run from its new control file did.
struct RerunFigures {
  double lastChi2 = -1.0;   // the last cycle of the first run
  double firstChi2 = -1.0;  // the single cycle of the rerun from the new control file
  double rerunChi2 = -1.0;  // the rerun carried on to convergence
  bool rerunConverged = false;
};

// Runs `job` in `dir` (control file and data already there, `arguments` after the job name),
// then from the control file it wrote: one cycle, and then to the end.
RerunFigures RefineThenRerun(const ScratchDir& dir, const std::string& job,
                             const std::string& arguments = "") {
  RerunFigures f;
  const std::string command = arguments.empty() ? job : job + " " + arguments;
  const auto first = RunBinary(dir.path, command);
  EXPECT_EQ(first.exitCode, 0) << first.output;
  f.lastChi2 = SummaryChi2(dir.Read(job + ".json"));
  const std::string written =
      dir.Exists(job + ".new") ? dir.Read(job + ".new") : dir.Read(job + ".pcr");
  dir.Write(job + ".pcr", WithOneCycle(written));
  EXPECT_EQ(RunBinary(dir.path, command).exitCode, 0);
  f.firstChi2 = SummaryChi2(dir.Read(job + ".json"));
  dir.Write(job + ".pcr", written);
  const auto rerun = RunBinary(dir.path, command);
  EXPECT_EQ(rerun.exitCode, 0);
  f.rerunChi2 = SummaryChi2(dir.Read(job + ".json"));
  f.rerunConverged = rerun.output.find("Convergence reached at this CYCLE") != std::string::npos;
  return f;
}

void ExpectCarriesOn(const RerunFigures& f) {
  ASSERT_GT(f.lastChi2, 0.0);
  ASSERT_GT(f.firstChi2, 0.0);
  EXPECT_NEAR(f.firstChi2 / f.lastChi2, 1.0, kRelativeAgreement)
      << "last chi2 " << f.lastChi2 << ", first chi2 of the rerun " << f.firstChi2;
  EXPECT_TRUE(f.rerunConverged);
  EXPECT_LE(f.rerunChi2, f.lastChi2 * (1.0 + kRelativeAgreement));
}

std::filesystem::path SharedData(const std::string& folder, const std::string& file) {
  return std::filesystem::path(CORVINET_SHARED_DIR) / "data" / folder / file;
}

// Rutile in Cu Ka1/Ka2 from a cell 0.1 % too large: as the cell shrinks the (1 1 3) peak
// leaves the range, above THMAX, and the peaks move by more than their ordered bases at the
// start. The rerun generates its reflections from the refined cell.
TEST(RerunFromNewControl, RutileRefinedFromALargeCellCarriesOnFromItsLastCycle) {
  ScratchDir dir;
  dir.Write("rutile_sim.pcr", TestData("roundtrip/rutile_sim.pcr"));
  dir.Write("rutile_sim.dat", "");
  ASSERT_EQ(RunBinary(dir.path, "rutile_sim").exitCode, 0);
  dir.Write("rutile.dat", dir.Read("rutile_sim.sim"));
  dir.Write("rutile.pcr", TestData("roundtrip/rutile.pcr"));
  ExpectCarriesOn(RefineThenRerun(dir, "rutile"));
}

TEST(RerunFromNewControl, AnglesiteExampleCarriesOnFromItsLastCycle) {
  ScratchDir dir;
  dir.Write("anglesite.pcr", TestData("../../examples/anglesite-xray/anglesite.pcr"));
  dir.Write("anglesite.dat", TestData("../../examples/anglesite-xray/anglesite.dat"));
  ExpectCarriesOn(RefineThenRerun(dir, "anglesite"));
}

// ZnO with an instrument resolution file: the sample widths grow to four and three times their
// starting values, so that the peaks outgrow the bases of the first cycle.
TEST(RerunFromNewControl, ZnOWithAResolutionFileCarriesOnFromItsLastCycle) {
  ScratchDir dir;
  dir.Write("inst.irf", TestData("results/inst.irf"));
  dir.Write("sim.pcr", TestData("results/zno_resolution_sim.pcr"));
  dir.Write("sim.dat", "");
  ASSERT_EQ(RunBinary(dir.path, "sim").exitCode, 0);
  dir.Write("fit.dat", dir.Read("sim.sim"));
  dir.Write("fit.pcr", TestData("results/zno_resolution_fit.pcr"));
  ExpectCarriesOn(RefineThenRerun(dir, "fit"));
}

// PbSO4 on D1A: the zero moves by 0.14 degrees and the cell shrinks, so that peaks leave their
// bases of the first cycle and three reflections leave the range above THMAX.
TEST(RerunFromNewControl, PbSO4NeutronRefinementCarriesOnFromItsLastCycle) {
  const std::filesystem::path data = SharedData("pbso4-cpd-rr", "PBSO4.CWN");
  if (!std::filesystem::exists(data)) GTEST_SKIP() << "shared data folder absent";
  ScratchDir dir;
  std::filesystem::copy_file(data, dir.path / "pbso4.dat");
  dir.Write("pbso4.pcr", TestData("real/pbso4_d1a.pcr"));
  ExpectCarriesOn(RefineThenRerun(dir, "pbso4"));
}

TEST(RerunFromNewControl, LaMnO3MagneticRefinementCarriesOnFromItsLastCycle) {
  const std::filesystem::path data = SharedData("lamno3-bt1-magnetic", "LaMnO3_50k.gsas");
  if (!std::filesystem::exists(data)) GTEST_SKIP() << "shared data folder absent";
  ScratchDir dir;
  std::filesystem::copy_file(data, dir.path / "LaMnO3_50k.gsas");
  dir.Write("lamno3.pcr", TestData("../../examples/lamno3-neutron-magnetic/lamno3_magnetic.pcr"));
  ExpectCarriesOn(RefineThenRerun(dir, "lamno3", "LaMnO3_50k.gsas"));
}

}  // namespace
}  // namespace corvinet
