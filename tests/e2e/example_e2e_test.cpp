// The bundled example: a Rietveld refinement of simulated anglesite data returns the structure the
// data were simulated with.
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

std::string ExampleFile(const std::string& name) {
  const auto path = std::filesystem::path(CORVINET_TEST_DATA) / ".." / ".." / "examples" /
                    "anglesite-xray" / name;
  std::ifstream in(path, std::ios::binary);
  std::stringstream all;
  all << in.rdbuf();
  return all.str();
}

// Value and sigma columns of the last atom line of `label` in the report:
// x, sx, y, sy, z, sz, B, sB (the shifts are zero after convergence).
std::vector<float> AtomColumns(const std::string& out, const std::string& label) {
  std::vector<float> columns;
  for (const std::string& line : SplitLines(out)) {
    if (line.rfind(label, 0) != 0) continue;
    std::istringstream words(line.substr(label.size()));
    std::vector<float> all;
    std::string w;
    while (words >> w) all.push_back(std::stof(w));
    if (all.size() < 15) continue;
    columns = {all[0], all[2], all[3], all[5], all[6], all[8], all[9], all[11]};
  }
  return columns;
}

TEST(BundledExample, AnglesiteRefinementReturnsTheSimulatedStructure) {
  ScratchDir dir;
  dir.Write("anglesite.pcr", ExampleFile("anglesite.pcr"));
  dir.Write("anglesite.dat", ExampleFile("anglesite.dat"));
  ASSERT_FALSE(ExampleFile("anglesite.dat").empty());
  const auto run = testing::RunBinary(dir.path, "anglesite");
  ASSERT_EQ(run.exitCode, 0);
  const std::string out = dir.Read("anglesite.out");
  ASSERT_NE(out.find(" =>  Convergence reached at this CYCLE !!!!"), std::string::npos);
  // The structure of anglesite_sim.pcr: x, y, z, B of each atom.
  struct Truth {
    const char* label;
    float x, y, z, B;
  };
  const Truth truth[] = {{"   Pb ", 0.1879f, 0.25f, 0.1670f, 1.40f},
                         {"    S ", 0.0633f, 0.25f, 0.6842f, 0.60f},
                         {"   O1 ", -0.0955f, 0.25f, 0.5960f, 2.00f},
                         {"   O2 ", 0.1922f, 0.25f, 0.5433f, 1.60f},
                         {"   O3 ", 0.0812f, 0.0266f, 0.8088f, 1.30f}};
  for (const Truth& t : truth) {
    const std::vector<float> c = AtomColumns(out, t.label);
    ASSERT_EQ(c.size(), 8u) << t.label;
    EXPECT_NEAR(c[0], t.x, 3.0f * c[1] + 1e-5f) << t.label;
    EXPECT_NEAR(c[2], t.y, 3.0f * c[3] + 1e-5f) << t.label;
    EXPECT_NEAR(c[4], t.z, 3.0f * c[5] + 1e-5f) << t.label;
    EXPECT_NEAR(c[6], t.B, 3.0f * c[7] + 1e-4f) << t.label;
  }
  // The new control file carries the refined values and reads back.
  const std::string pcr = dir.Read("anglesite.pcr");
  EXPECT_NE(pcr.find("Pb"), std::string::npos);
  EXPECT_EQ(pcr.find("0.18820"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
