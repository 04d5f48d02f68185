// What the plot pages show of a pattern of the run: points, calculated curve, regions and ticks.
#include "refine/plot_view.h"

#include "observations/background.h"
#include "refine/order_reflections.h"

namespace corvinet {

PatternPlotView PatternView(const Job& job, int ip, bool ycalcHasBackground, PlotViewBuffers& b) {
  const Pattern& p = job.patterns[ip];
  b.x.assign(p.X.begin(), p.X.begin() + p.NPTS);
  b.yobs.assign(p.Ytotal.begin(), p.Ytotal.begin() + p.NPTS);
  b.ycalc.resize(static_cast<std::size_t>(p.NPTS));
  for (int i = 1; i <= p.NPTS; ++i) {
    b.ycalc[static_cast<std::size_t>(i - 1)] =
        ycalcHasBackground ? p.Ycalc[i] : p.Ycalc[i] + BackgroundAt(p, i);
  }
  b.regions.clear();
  for (int n = 1; n <= p.NEXCRG && n <= DimensionLimits::IEXCL; ++n) {
    b.regions.push_back({p.ExclLow[n], p.ExclHigh[n]});
  }
  b.ticks.clear();
  for (int k = 1; k <= p.reflections.total; ++k) {
    b.ticks.push_back({PeakIntervalOf(job, ip, k).position, KeyPhase(p.reflections.slot[k].key)});
  }
  PatternPlotView v;
  v.patternNumber = ip;
  v.x = b.x;
  v.yobs = b.yobs;
  v.ycalc = b.ycalc;
  v.excluded = b.regions;
  v.ticks = b.ticks;
  v.phaseCount = job.run.NPHASE;
  v.timeOfFlight = p.JOBTYP < 0;
  v.title = job.run.Title;
  v.dataFile = p.DatCode;
  return v;
}

}  // namespace corvinet
