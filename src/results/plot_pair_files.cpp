// The pairs of plot files (.pl1 profile, .pl2 reflections): free format with the excluded regions
// as zero boxes (IPL2 4), or fixed format with offsets (IPL2 5).
#include <cmath>
#include <string>

#include "format/fortran_format.h"
#include "format/text.h"
#include "records/reflection.h"
#include "refine/excluded_points.h"
#include "results/plot_geometry.h"
#include "results/profile_files.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// Divides a packed reflection code into the phase marker of the .pl2 rows.
constexpr int kMarkerDivisor = 140000000;

void OpenPlotFile(Job& job, const std::string& name) {
  if (OpenUnit(job.files.units[Unit::Profile], name, OpenStatus::Unknown)) return;
  StopBox(job, Fmt("(A,A,A,I3)", " => Error opening file: ", name, " Unit:", Unit::Profile));
}

int Tenths(float x) {
  return static_cast<int>(10.0f * x);
}

// The free-format row of a point: x, Yobs, Ycalc and their difference.
std::string FreeRow(float x, float yobs, float ycalc) {
  return Fmt("(F14.4,3F14.3)", x, yobs, ycalc, yobs - ycalc);
}

// Ytotal and Ycalc of every excluded point set to 0, so that the plots show the regions as boxes.
void ZeroExcludedPoints(Pattern& p) {
  const std::vector<bool> excluded = ExcludedPointMarks(p);
  for (int i = 1; i <= p.NPTS; ++i) {
    if (!excluded[static_cast<std::size_t>(i)]) continue;
    p.Ytotal[i] = 0.0f;
    p.Ycalc[i] = 0.0f;
  }
}

// The zero rows that follow point i: one step before each region and one step after it.
void WriteRegionBreaks(Job& job, const Pattern& p, int i, std::vector<int>& done) {
  const int t = Tenths(p.X[i]);
  for (int r = 1; r <= p.NEXCRG; ++r) {
    int& state = done[static_cast<std::size_t>(r)];
    if ((state & 1) == 0 && t == Tenths(p.ExclLow[r] - p.STEP)) {
      WriteLine(job, Unit::Profile, FreeRow(p.ExclLow[r] - p.STEP, 0.0f, 0.0f));
      state |= 1;
    }
    if ((state & 2) == 0 && t == Tenths(p.ExclHigh[r])) {
      WriteLine(job, Unit::Profile, FreeRow(p.ExclHigh[r] + p.STEP, 0.0f, 0.0f));
      state |= 2;
    }
  }
}

bool StrictlyInsideRegion(const Pattern& p, float x) {
  const int t = Tenths(x);
  for (int r = 1; r <= p.NEXCRG; ++r) {
    if (t > Tenths(p.ExclLow[r]) && t < Tenths(p.ExclHigh[r])) return true;
  }
  return false;
}

}  // namespace

std::string PlotFileName(const Job& job, int ip, const std::string& extension) {
  std::string name = TrimmedCopy(job.driver.PcrCode);
  if (job.run.NPATT > 1) name += Fmt("(A,I0)", "_", ip);
  return name + extension;
}

void WriteFreePlotFiles(Job& job, int ip, const PlotExtremes& extremes) {
  if (!(extremes.Ymax > extremes.BackMin)) return;
  Pattern& p = job.patterns[ip];
  ZeroExcludedPoints(p);
  OpenPlotFile(job, PlotFileName(job, ip, ".pl1"));
  std::vector<int> done(static_cast<std::size_t>(p.NEXCRG) + 1, 0);
  for (int i = 1; i <= p.NPTS; ++i) {
    WriteLine(job, Unit::Profile, FreeRow(p.X[i], p.Ytotal[i], p.Ycalc[i]));
    WriteRegionBreaks(job, p, i, done);
  }
  CloseUnit(job.files.units[Unit::Profile]);
  OpenPlotFile(job, PlotFileName(job, ip, ".pl2"));
  for (int k = 1; k <= p.reflections.total; ++k) {
    const float posr = PlottedPosition(job, ip, k);
    if (StrictlyInsideRegion(p, posr)) continue;
    const int marker = 10 - p.reflections.slot[k].key / kMarkerDivisor;
    WriteLine(job, Unit::Profile, Fmt("(F14.4,I5,F6.2)", posr, marker, 0.8f));
  }
  CloseUnit(job.files.units[Unit::Profile]);
}

void WriteOffsetPlotFiles(Job& job, int ip, const PlotExtremes& extremes) {
  const Pattern& p = job.patterns[ip];
  const PlotOffsets o = OffsetsOf(extremes);
  const std::vector<bool> excluded = ExcludedPointMarks(p);
  OpenPlotFile(job, PlotFileName(job, ip, ".pl1"));
  for (int i = 1; i <= p.NPTS; ++i) {
    const bool out = excluded[static_cast<std::size_t>(i)];
    const long long difference =
        out ? 0 : PlotCount(static_cast<double>(p.Ytotal[i] - p.Ycalc[i]), false);
    WriteLine(
        job, Unit::Profile,
        Fmt("(F14.4,4(1X,I8))", p.X[i], PlotCount(p.Ytotal[i], false), PlotCount(p.Ycalc[i], false),
            difference - o.DiffOffset, PlotCount(p.Backg[i], false) - o.BackOffset));
  }
  CloseUnit(job.files.units[Unit::Profile]);
  OpenPlotFile(job, PlotFileName(job, ip, ".pl2"));
  for (int k = 1; k <= p.reflections.total; ++k) {
    const Reflection& r = p.reflections.slot[k];
    WriteLine(
        job, Unit::Profile,
        Fmt("(F14.4,I8,A,3I3,A,I3)", PlottedPosition(job, ip, k), ReflectionTick(job, ip, k, o),
            " (", KeyH(r.key), KeyK(r.key), KeyL(r.key), ") ", r.satelliteIndex));
  }
  CloseUnit(job.files.units[Unit::Profile]);
}

}  // namespace corvinet
