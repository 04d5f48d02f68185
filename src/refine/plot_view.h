// What the plot pages show of a pattern of the run: points, calculated curve, regions and ticks.
#pragma once

#include <vector>

#include "records/job.h"
#include "surface/pattern_plot.h"

namespace corvinet {

// The arrays a view of a pattern points into.
struct PlotViewBuffers {
  std::vector<float> x;
  std::vector<float> yobs;
  std::vector<float> ycalc;
  std::vector<PlotRegion> regions;
  std::vector<PlotTick> ticks;
};

// The view of pattern ip. During the cycles Ycalc is the Bragg part and the
// background is added (`ycalcHasBackground` false); after the final report
// has added it, Ycalc is taken as it is.
PatternPlotView PatternView(const Job& job, int ip, bool ycalcHasBackground,
                            PlotViewBuffers& buffers);

}  // namespace corvinet
