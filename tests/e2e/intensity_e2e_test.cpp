// Refinements against lists of integrated intensities, run on the built program.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::ScratchDir;
using testing::SplitLines;

// x y z of the atom line that begins with `label` in a written control file.
std::vector<double> Position(const std::string& text, const std::string& label) {
  std::vector<double> v = testing::AtomLineValues(text, label);
  if (v.size() > 3) v.resize(3);
  return v;
}

TEST(IntensityRun, SingleCrystalListOfAnIndependentScriptGivesBackItsPositions) {
  ScratchDir dir;
  dir.Write("pbsc.pcr", testing::TestData("intensities/pbsc.pcr"));
  dir.Write("pbsc1.hkl", testing::TestData("intensities/pbsc1.hkl"));
  const auto run = testing::RunBinary(dir.path, "pbsc", "n\nn\n");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  const std::string out = dir.Read("pbsc.out");
  EXPECT_NE(out.find(" => F2cal= scale*Corr*F2"), std::string::npos);
  EXPECT_NE(out.find(" =>    RF2 -factor : "), std::string::npos);
  const std::string written = dir.Read("pbsc.new");
  const double truth[4][3] = {{0.0654, 0.25, 0.6841},
                              {0.9083, 0.25, 0.5953},
                              {0.1935, 0.25, 0.5433},
                              {0.0812, 0.0272, 0.8088}};
  const char* labels[4] = {"S", "O1", "O2", "O3"};
  for (int a = 0; a < 4; ++a) {
    const std::vector<double> p = Position(written, labels[a]);
    ASSERT_EQ(p.size(), 3u) << labels[a];
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(p[i], truth[a][i], 2e-4) << labels[a] << " " << i;
  }
}

}  // namespace
}  // namespace corvinet
