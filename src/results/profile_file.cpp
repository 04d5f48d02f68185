// The profile file of a pattern: the choice of layout, the background added for plotting, and the
// fixed-field layout read by the package's plotting program.
#include <algorithm>
#include <cstdlib>

#include "io/file_set.h"
#include "observations/background.h"
#include "records/reflection.h"
#include "results/plot_geometry.h"
#include "results/profile_files.h"
#include "surface/console.h"

namespace corvinet {

PlotExtremes AddBackgroundForPlots(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  PlotExtremes e;
  const bool calculationOnly = IsCalculatedPattern(p);
  for (int i = 1; i <= p.NPTS; ++i) {
    const float background = BackgroundAt(p, i);
    p.Ycalc[i] += background;
    if (calculationOnly) p.Ytotal[i] = p.Ycalc[i];
    e.Ymax = std::max({e.Ymax, p.Ytotal[i], p.Ycalc[i]});
    e.BackMin = std::min(e.BackMin, background);
  }
  return e;
}

void WriteProfileFile(Job& job, int ip, const ProfileFileContext& context) {
  switch (job.patterns[ip].IPL2) {
    case 1:
      WriteFixedProfileFile(job, ip, context.extremes);
      return;
    case 2:
      WriteIgorProfileFile(job, ip, context);
      return;
    case 3:
      WriteTabbedProfileFile(job, ip, context.extremes);
      return;
    case -3:
      WriteSideBySideProfileFile(job, ip, context.extremes);
      return;
    case 4:
      WriteFreePlotFiles(job, ip, context.extremes);
      return;
    case 5:
      WriteOffsetPlotFiles(job, ip, context.extremes);
      return;
    default:
      return;
  }
}

namespace {

void WritePointBlock(Job& job, const RunTable1<float>& y, int n) {
  std::vector<FormatValue> values;
  values.reserve(static_cast<std::size_t>(n));
  for (int i = 1; i <= n; ++i) values.emplace_back(y[i]);
  WriteValues(job, Unit::Profile, "(8(F7.0,1X))", values);
}

void WriteReflectionBlocks(Job& job, int ip) {
  const ReflectionTable& table = job.patterns[ip].reflections;
  std::vector<FormatValue> keys, positions;
  for (int k = 1; k <= table.total; ++k) {
    keys.emplace_back(static_cast<int>(table.slot[k].key));
    positions.emplace_back(PlottedPosition(job, ip, k));
  }
  WriteValues(job, Unit::Profile, "(8I10)", keys);
  WriteValues(job, Unit::Profile, "(10F8.3)", positions);
}

void WriteRegionBlock(Job& job, const Pattern& p) {
  WriteLine(job, Unit::Profile, Fmt("(I8)", p.NEXCRG));
  for (int r = 1; r <= p.NEXCRG; ++r) {
    WriteLine(job, Unit::Profile, Fmt("(2F8.2)", p.ExclLow[r], p.ExclHigh[r]));
  }
}

void WriteSatelliteBlock(Job& job, const ReflectionTable& table) {
  std::vector<FormatValue> indices;
  for (int k = 1; k <= table.total; ++k) indices.emplace_back(table.slot[k].satelliteIndex);
  WriteValues(job, Unit::Profile, "(24I3)", indices);
}

}  // namespace

void WriteFixedProfileFile(Job& job, int ip, const PlotExtremes&) {
  const Pattern& p = job.patterns[ip];
  OpenFiles(job, FileKind::kProfile, ip, 0);
  WriteLine(job, Unit::Profile, Title70(job));
  WriteLine(job, Unit::Profile, Fmt("(A,F9.4)", "3111   1.0000", p.GLB[1]));
  WriteLine(job, Unit::Profile,
            Fmt("(2F8.3,F8.5,2I8)", p.THMAX, p.THMIN, p.STEP, 8, ControlNumber(p.IXUNIT)));
  WriteLine(job, Unit::Profile,
            Fmt("(I3,I7,5F10.5)", job.run.NPHASE, p.NPTS, p.LAMBDA[1], p.LAMBDA[2], p.GLB[1],
                p.GLB[8], p.GLB[9]));
  WriteLine(job, Unit::Profile, PhaseCountsLine(job, ip, false));
  WritePointBlock(job, p.Ytotal, p.NPTS);
  WritePointBlock(job, p.Ycalc, p.NPTS);
  WriteReflectionBlocks(job, ip);
  WriteRegionBlock(job, p);
  WriteVectorLines(job, Unit::Profile);
  WriteSatelliteBlock(job, p.reflections);
  CloseUnit(job.files.units[Unit::Profile]);
}

}  // namespace corvinet
