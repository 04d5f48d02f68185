// Tests of the counts of the plot columns: the counts of a diverged fit, beyond the range of int,
// are held in 64 bits and come out as stars in their columns.
#include <gtest/gtest.h>

#include <cmath>

#include "format/fortran_format.h"
#include "results/plot_geometry.h"

namespace corvinet {
namespace {

TEST(PlotCount, CountsBeyondTheRangeOfIntAreKept) {
  EXPECT_EQ(PlotCount(3.0e9, true), 3000000000LL);
  EXPECT_EQ(PlotCount(-2.5e9, false), -2500000000LL);
  EXPECT_EQ(PlotCount(12.5, true), 13);
  EXPECT_EQ(PlotCount(12.7, false), 12);
  // The difference of two counts near the range of int, as a diverged fit gave it.
  EXPECT_EQ(PlotCount(-1944064000.0, false) - 585931840LL, -2529995840LL);
}

TEST(PlotCount, InfiniteAndNotANumberAreHeldWithin1e15) {
  EXPECT_EQ(PlotCount(INFINITY, true), 1000000000000000LL);
  EXPECT_EQ(PlotCount(-INFINITY, false), -1000000000000000LL);
  EXPECT_EQ(PlotCount(std::nan(""), false), -1000000000000000LL);
}

TEST(PlotCount, CountTooWideForItsColumnIsWrittenAsStars) {
  EXPECT_EQ(Fmt("(I8)", PlotCount(3.0e9, true)), "********");
}

TEST(PlotCount, OffsetsOfADivergedFitStayWithinTheRangeOfInt) {
  PlotExtremes extremes;
  extremes.Ymax = 1.0e30f;
  extremes.BackMin = -1.0e30f;
  const PlotOffsets o = OffsetsOf(extremes);
  EXPECT_EQ(o.DiffOffset, 1000000000);
  EXPECT_EQ(o.BackOffset, -1000000000);
  EXPECT_EQ(o.TickStep, 1000000000);
}

}  // namespace
}  // namespace corvinet
