// A powder pattern and a list of integrated intensities refined together (skipped when the shared
// data folder is absent).
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::ScratchDir;
using testing::SplitLines;

// The number after `words` on the last line of `text` that holds them.
double LastValueAfter(const std::string& text, const std::string& words) {
  double value = -1.0;
  for (const std::string& line : SplitLines(text)) {
    const std::size_t at = line.find(words);
    if (at != std::string::npos) value = std::stod(line.substr(at + words.size()));
  }
  return value;
}

// x and z of the first S line of a control file.
std::pair<double, double> SulphurXZ(const std::string& pcr) {
  for (const std::string& line : SplitLines(pcr)) {
    if (line.rfind("S    S ", 0) != 0) continue;
    std::istringstream in(line);
    std::string name, species;
    double x = 0, y = 0, z = 0;
    in >> name >> species >> x >> y >> z;
    return {x, z};
  }
  return {-1.0, -1.0};
}

TEST(CombinedRefinement, APatternAndAnIntensityListMoveADisplacedAtomBackTogether) {
  const std::filesystem::path data =
      std::filesystem::path(CORVINET_SHARED_DIR) / "data" / "pbso4-cpd-rr" / "PBSO4.XRA";
  if (!std::filesystem::exists(data)) GTEST_SKIP() << "shared data folder absent";
  const char* kGlobal = " => Global user-weigthed Chi2 (Bragg contrib.):";

  ScratchDir alone;
  std::filesystem::copy_file(data, alone.path / "pbso4.dat");
  alone.Write("pbso4.pcr", testing::TestData("real/pbso4_xray_pv.pcr"));
  ASSERT_EQ(testing::RunBinary(alone.path, "pbso4").exitCode, 0);
  const double patternChi2 = LastValueAfter(alone.Read("pbso4.sum"), kGlobal);

  ScratchDir both;
  std::filesystem::copy_file(data, both.path / "pbso4.dat");
  both.Write("comb.pcr", testing::TestData("intensities/pbso4_combined.pcr"));
  both.Write("comb2.hkl", testing::TestData("intensities/pbsc1.hkl"));
  const auto run = testing::RunBinary(both.path, "comb pbso4");
  ASSERT_EQ(run.exitCode, 0) << run.output;

  // S, displaced by 0.017 and 0.016 in both phases, comes back to the
  // structure of the list (0.0654, 0.6841) in both.
  const std::string refined = both.Read("comb.pcr");
  const auto [x, z] = SulphurXZ(refined);
  EXPECT_NEAR(x, 0.0654, 0.0015);
  EXPECT_NEAR(z, 0.6841, 0.0015);

  // The final global chi-square is the mean of that of the pattern and that
  // of the list: without the list's share it would fall short of the
  // pattern's own value by about 14%.
  const std::string out = both.Read("comb.out");
  const double listChi2 = LastValueAfter(out, " =>    Chi2(Intens):");
  const double global = LastValueAfter(both.Read("comb.sum"), kGlobal);
  ASSERT_GT(listChi2, 0.0);
  ASSERT_GT(patternChi2, 0.0);
  EXPECT_NEAR(2.0 * global - listChi2, patternChi2, 0.03 * patternChi2);
}

}  // namespace
}  // namespace corvinet
