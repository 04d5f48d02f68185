// A Rietveld refinement of a public neutron pattern of PbSO4 (skipped when the shared data folder
// is absent).
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "format/fortran_format.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::ScratchDir;
using testing::SplitLines;

// The D1A file stores per point the number of counters and their mean count
// in records of 10(I2,F6.0). The mean is kept as the intensity, with the
// variance of a mean, and written as "2theta y sigma" rows.
bool ConvertD1A(const std::filesystem::path& from, const ScratchDir& dir, const std::string& name) {
  std::ifstream in(from);
  if (!in) return false;
  std::string line;
  std::getline(in, line);
  std::getline(in, line);
  std::string rows = "! PbSO4 D1A, 2theta y sigma\n";
  int point = 0;
  while (std::getline(in, line) && point < 2919) {
    line.resize(80, ' ');
    for (int f = 0; f < 10 && point < 2919; ++f) {
      const std::string field = line.substr(static_cast<std::size_t>(8 * f), 8);
      if (field.find_first_not_of(' ') == std::string::npos) continue;
      const std::string counters = field.substr(0, 2);
      const int n = counters.find_first_not_of(' ') == std::string::npos ? 1 : std::stoi(counters);
      const float y = std::stof(field.substr(2));
      rows += Fmt("(F9.3,F10.2,F9.3)", 10.0f + 0.05f * static_cast<float>(point), y,
                  std::sqrt(y / static_cast<float>(n)));
      rows += "\n";
      ++point;
    }
  }
  dir.Write(name, rows);
  return point == 2919;
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
  ScratchDir dir;
  ASSERT_TRUE(ConvertD1A(data, dir, "pbso4xy.dat"));
  dir.Write("pbso4xy.pcr", testing::TestData("real/pbso4_d1a.pcr"));
  const auto run = testing::RunBinary(dir.path, "pbso4xy");
  ASSERT_EQ(run.exitCode, 0);
  const std::string out = dir.Read("pbso4xy.out");
  ASSERT_NE(out.find(" =>  Convergence reached at this CYCLE !!!!"), std::string::npos);
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

}  // namespace
}  // namespace corvinet
