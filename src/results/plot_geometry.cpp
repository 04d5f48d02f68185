// Offsets, ticks, plotted positions and header pieces shared by the profile-file layouts.
#include "results/plot_geometry.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "format/text.h"
#include "records/reflection.h"
#include "refine/order_reflections.h"
#include "surface/console.h"

namespace corvinet {

long long PlotCount(double value, bool nearest) {
  constexpr double kLargest = 1.0e15;
  if (!(value > -kLargest)) value = -kLargest;
  if (!(value < kLargest)) value = kLargest;
  return nearest ? std::llround(value) : static_cast<long long>(value);
}

namespace {

// An offset of the plots; those of a diverged fit are held within the range of int.
int PlotOffset(double value) {
  constexpr double kLargest = 1.0e9;
  return static_cast<int>(PlotCount(std::max(-kLargest, std::min(kLargest, value)), false));
}

}  // namespace

PlotOffsets OffsetsOf(const PlotExtremes& extremes) {
  PlotOffsets o;
  o.DiffOffset = PlotOffset(0.25f * extremes.Ymax);
  o.BackOffset = PlotOffset(0.25f * extremes.BackMin);
  o.TickStep = PlotOffset(0.0625f * extremes.Ymax);
  return o;
}

float PlottedPosition(const Job& job, int ip, int k) {
  return PeakIntervalOf(job, ip, k).position;
}

int ReflectionTick(const Job& job, int ip, int k, const PlotOffsets& offsets) {
  const int phase = KeyPhase(job.patterns[ip].reflections.slot[k].key);
  return -(phase - 1) * offsets.TickStep;
}

int VectorCount(const Job& job) {
  int n = 0;
  for (int f = 1; f <= job.run.NPHASE; ++f) n += std::abs(job.phases[f].Nvk);
  return n;
}

std::string Title70(const Job& job) {
  return FixedText(job.run.Title, 70);
}

void WriteValues(Job& job, int unit, std::string_view format,
                 const std::vector<FormatValue>& values) {
  if (values.empty()) return;
  for (const std::string& record : FormatRecords(CompileFormat(format), values)) {
    WriteLine(job, unit, record);
  }
}

std::string PhaseCountsLine(const Job& job, int ip, bool withRegions) {
  std::vector<FormatValue> values;
  for (int f = 1; f <= DimensionLimits::NPHT; ++f) {
    values.emplace_back(f <= job.run.NPHASE ? job.patterns[ip].reflections.count[f] : 0);
  }
  for (int f = 1; f <= DimensionLimits::NPHT; ++f) {
    values.emplace_back(f <= job.run.NPHASE ? std::abs(job.phases[f].Nvk) : 0);
  }
  if (!withRegions) return FormatText("(8I5,8I3)", values);
  values.emplace_back(job.patterns[ip].NEXCRG);
  return FormatText("(8I5,8I3,I3)", values);
}

void WriteVectorLines(Job& job, int unit) {
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    const Phase& phase = job.phases[f];
    for (int v = 1; v <= std::abs(phase.Nvk); ++v) {
      const Table1<float, 3>& k = phase.vectors[v].KVEC;
      WriteLine(job, unit, Fmt("(3F10.5)", k[1], k[2], k[3]));
    }
  }
}

}  // namespace corvinet
