// Tests of the report of the table capacities.
#include "results/dimension_report.h"

#include <gtest/gtest.h>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

TEST(Dimensions, ReportListsEveryCapacityInOrder) {
  CapturedJob job;
  ReportDimensions(*job, Unit::Console);
  const auto lines = testing::SplitLines(job.Console());
  ASSERT_EQ(lines.size(), 4u + 22u);
  EXPECT_EQ(lines[0], " ----------------------------------------------------");
  EXPECT_EQ(lines[1], " => Dimensions of arrays in this release of Corvinet:");
  EXPECT_EQ(lines[2], lines[0]);
  EXPECT_EQ(lines[3], " => Approximate array memory:  7928230 bytes");
  EXPECT_EQ(lines[4],
            "NPATT              5 Max.num. of powder diffraction patterns                    ");
  EXPECT_EQ(lines[5],
            "IDSZ           20000 Max.num. of points(+int. Inten.)/diffraction pattern       ");
  EXPECT_EQ(
      lines[16],
      "NEQV              48 Max.num. of user-supplied symmetry operators/propagation vectors");
  EXPECT_EQ(lines[25],
            "NSOL              10 Max.num. of solutions to be stored in Montecarlo searchs   ");
}

}  // namespace
}  // namespace corvinet
