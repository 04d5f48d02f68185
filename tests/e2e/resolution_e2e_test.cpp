// A pattern whose instrumental widths come from a resolution file: simulated with known sample
// widths on top of the file's, refined back from displaced sample terms with the same file.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::RunBinary;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// The file gives G^2 = 0.004 t^2 - 0.003 t + 0.006 and L = 0.02 t + 0.01; the sample adds
// U = 0.02 (Gaussian) and Y = 0.03 (Lorentzian). The fit starts from U 0.005 and Y 0.01.
TEST(ResolutionEndToEnd, SampleWidthsOnTopOfTheInstrumentRefineBack) {
  ScratchDir dir;
  dir.Write("inst.irf", TestData("results/inst.irf"));
  ASSERT_EQ(testing::SimulateThenRefine(dir, "results/zno_resolution_sim.pcr",
                                        "results/zno_resolution_fit.pcr", "fit"),
            0);
  EXPECT_NE(dir.Read("sim.out").find(", => Instrumental Resolution read from file: inst.irf"),
            std::string::npos);
  const std::string pcr = dir.Read("fit.pcr");
  const std::vector<double> widths =
      testing::NumbersIn(testing::LineAfter(pcr, "!      U        V         W"));
  ASSERT_GE(widths.size(), 5u);
  EXPECT_NEAR(widths[0], 0.02, 0.0005);
  EXPECT_NEAR(widths[4], 0.03, 0.0005);
  // The new control file still names the resolution file, and a second run reads it.
  EXPECT_NE(pcr.find("inst.irf"), std::string::npos);
  EXPECT_EQ(RunBinary(dir.path, "fit").exitCode, 0);
}

}  // namespace
}  // namespace corvinet
