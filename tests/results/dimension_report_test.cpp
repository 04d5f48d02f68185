// Tests of the report of the table capacities.
#include "results/dimension_report.h"

#include <gtest/gtest.h>

#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

TEST(Dimensions, ReportListsEveryCapacityInOrder) {
  CapturedJob job;
  ReportDimensions(*job, DimensionLimits{}, Unit::Console);
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

TEST(Dimensions, ReportShowsTheLargeCapacitiesInForce) {
  CapturedJob job;
  ReportDimensions(*job, LargeDimensionLimits(), Unit::Console);
  const auto lines = testing::SplitLines(job.Console());
  ASSERT_EQ(lines.size(), 4u + 22u);
  EXPECT_EQ(lines[5],
            "IDSZ          200000 Max.num. of points(+int. Inten.)/diffraction pattern       ");
  EXPECT_EQ(lines[6],
            "IRS            60000 Max.num. of reflections/diffraction pattern                ");
  EXPECT_EQ(lines[9],
            "MSZ             2000 Max.num. of refinable parameters                           ");
  EXPECT_EQ(lines[10],
            "NOV             1536 Max.num. of overlapping reflections                        ");
  // The memory line grows with them and stays one number of bytes.
  EXPECT_EQ(lines[3].rfind(" => Approximate array memory: ", 0), 0u);
  const long long bytes = std::stoll(lines[3].substr(30));
  EXPECT_GT(bytes, 7928230);
}

}  // namespace
}  // namespace corvinet
