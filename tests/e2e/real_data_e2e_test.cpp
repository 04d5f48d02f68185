// Rietveld refinements of public neutron patterns, PbSO4 and the magnetic LaMnO3 (skipped when
// the shared data folder is absent).
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::ScratchDir;
using testing::SplitLines;

// The bytes of a file.
std::string ReadWhole(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// The numbers behind `label` on the last line of `text` that holds it.
std::vector<float> LastNumbers(const std::string& text, const std::string& label) {
  std::vector<float> values;
  for (const std::string& line : SplitLines(text)) {
    const std::size_t at = line.find(label);
    if (at == std::string::npos) continue;
    values.clear();
    std::istringstream rest(line.substr(at + label.size()));
    std::string word;
    while (rest >> word) {
      try {
        values.push_back(std::stof(word));
      } catch (...) {
      }
    }
  }
  return values;
}

TEST(RealData, PbSO4NeutronPatternRefinesToAGoodFit) {
  const std::filesystem::path data =
      std::filesystem::path(CORVINET_SHARED_DIR) / "data" / "pbso4-cpd-rr" / "PBSO4.CWN";
  if (!std::filesystem::exists(data)) GTEST_SKIP() << "shared data folder absent";
  // The GSAS file (standard records of counters and mean counts) is read as
  // it is, with INSTR 12, from a copy named after the control file.
  ScratchDir dir;
  std::filesystem::copy_file(data, dir.path / "pbso4.dat");
  dir.Write("pbso4.pcr", testing::TestData("real/pbso4_d1a.pcr"));
  const auto run = testing::RunBinary(dir.path, "pbso4");
  ASSERT_EQ(run.exitCode, 0);
  EXPECT_EQ(dir.Read("pbso4.dat"), ReadWhole(data));
  const std::string out = dir.Read("pbso4.out");
  ASSERT_NE(out.find(" =>  Convergence reached at this CYCLE !!!!"), std::string::npos);
  EXPECT_NE(out.find(" => Data read from GSAS file for pattern:  1"), std::string::npos);
  const std::vector<float> r = LastNumbers(out, " => R-Factors:");
  ASSERT_GE(r.size(), 3u);
  EXPECT_LT(r[0], 5.0f);  // Rp
  EXPECT_LT(r[1], 6.0f);  // Rwp
  const std::vector<float> bragg = LastNumbers(out, " =>    Bragg R-factor:");
  ASSERT_EQ(bragg.size(), 1u);
  EXPECT_LT(bragg[0], 6.0f);
  // The refined coordinates stay near the starting model taken from the
  // literature (Pb x, z and O3 x, y, z).
  const std::vector<float> pb = LastNumbers(out, "   Pb ");
  ASSERT_GE(pb.size(), 9u);
  EXPECT_NEAR(pb[0], 0.1882f, 0.01f);
  EXPECT_NEAR(pb[6], 0.167f, 0.01f);
  const std::vector<float> o3 = LastNumbers(out, "   O3 ");
  ASSERT_GE(o3.size(), 9u);
  EXPECT_NEAR(o3[0], 0.085f, 0.01f);
  EXPECT_NEAR(o3[3], 0.026f, 0.01f);
  EXPECT_NEAR(o3[6], 0.806f, 0.01f);
}

// LaMnO3 at 50 K (examples/lamno3-neutron-magnetic): the nuclear structure
// with the moment held at 0, then the moment on Mn released from 3 Bohr
// magnetons. The A-type order fills the magnetic peaks the first step leaves.
TEST(RealData, LaMnO3MomentOnMnRefinesFromTheNuclearStructure) {
  const std::filesystem::path data = std::filesystem::path(CORVINET_SHARED_DIR) / "data" /
                                     "lamno3-bt1-magnetic" / "LaMnO3_50k.gsas";
  if (!std::filesystem::exists(data)) GTEST_SKIP() << "shared data folder absent";
  ScratchDir dir;
  std::filesystem::copy_file(data, dir.path / "LaMnO3_50k.gsas");
  const std::string example = "../../examples/lamno3-neutron-magnetic/";
  dir.Write("lamno3.pcr", testing::TestData(example + "lamno3_nuclear.pcr"));
  ASSERT_EQ(testing::RunBinary(dir.path, "lamno3 LaMnO3_50k.gsas").exitCode, 0);
  const std::vector<float> nuclear = LastNumbers(dir.Read("lamno3.out"), " => R-Factors:");
  ASSERT_GE(nuclear.size(), 3u);
  EXPECT_GT(nuclear[2], 5.0f);  // chi2 with the magnetic peaks left out
  dir.Write("lamno3.pcr", testing::TestData(example + "lamno3_magnetic.pcr"));
  ASSERT_EQ(testing::RunBinary(dir.path, "lamno3 LaMnO3_50k.gsas").exitCode, 0);
  const std::string out = dir.Read("lamno3.out");
  ASSERT_NE(out.find(" =>  Convergence reached at this CYCLE !!!!"), std::string::npos);
  const std::vector<float> r = LastNumbers(out, " => R-Factors:");
  ASSERT_GE(r.size(), 3u);
  EXPECT_LT(r[1], 7.0f);  // Rwp
  EXPECT_LT(r[2], 2.0f);  // chi2
  const std::vector<float> moment = LastNumbers(out, "   Mn Real moment:");
  ASSERT_GE(moment.size(), 1u);
  // The ordered moment of Mn3+ at low temperature: between 3.4 and 3.9.
  EXPECT_GT(moment[0], 3.4f);
  EXPECT_LT(moment[0], 3.9f);
}

}  // namespace
}  // namespace corvinet
