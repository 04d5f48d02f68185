// The tab-separated profile files: profile and reflection tables one after the other (IPL2 3) or
// side by side (IPL2 -3).
#include <cmath>
#include <string>

#include "io/file_set.h"
#include "records/reflection.h"
#include "refine/excluded_points.h"
#include "results/plot_geometry.h"
#include "results/profile_files.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr char kTab = '\t';

const char* AbscissaHeading(AbscissaUnit ixunit) {
  switch (ixunit) {
    case AbscissaUnit::kTimeOfFlight:
      return " T.O.F.";
    case AbscissaUnit::kEnergy:
      return " Energy";
    default:
      return " 2Theta";
  }
}

std::string Joined(std::initializer_list<const char*> words) {
  std::string line;
  for (const char* w : words) {
    if (!line.empty()) line += kTab;
    line += w;
  }
  return line;
}

// Title, counts, vectors and excluded regions: the lines before the tables.
void WriteTabbedHeader(Job& job, int ip) {
  const Pattern& p = job.patterns[ip];
  WriteLine(job, Unit::Profile, Title70(job));
  WriteLine(job, Unit::Profile,
            Fmt("(I3,I7,5F12.5,I5)", job.run.NPHASE, p.NPTS, p.LAMBDA[1], p.LAMBDA[2], p.GLB[1],
                p.GLB[8], p.GLB[9], ControlNumber(p.IXUNIT)));
  WriteLine(job, Unit::Profile, PhaseCountsLine(job, ip, true));
  WriteVectorLines(job, Unit::Profile);
  for (int r = 1; r <= p.NEXCRG; ++r) {
    WriteLine(job, Unit::Profile, Fmt("(2F14.5)", p.ExclLow[r], p.ExclHigh[r]));
  }
}

// x, then Yobs and Ycalc to the nearest integer, the difference (0 in an
// excluded region) less DiffOffset and the background less BackOffset.
std::string PointColumns(const Pattern& p, int i, bool excluded, const PlotOffsets& o) {
  const long long yobs = PlotCount(p.Ytotal[i], true);
  const long long ycalc = PlotCount(p.Ycalc[i], true);
  const long long difference =
      excluded ? 0 : PlotCount(static_cast<double>(p.Ytotal[i] - p.Ycalc[i]), false);
  const long long background = PlotCount(p.Backg[i], false);
  std::string line = Fmt("(F12.4)", p.X[i]);
  for (long long v : {yobs, ycalc, difference - o.DiffOffset, background - o.BackOffset}) {
    line += kTab + Fmt("(I8)", v);
  }
  return line;
}

std::string Indices(const Reflection& r) {
  return "(" + Fmt("(3I3)", KeyH(r.key), KeyK(r.key), KeyL(r.key)) + ")" + kTab +
         Fmt("(I3)", r.satelliteIndex);
}

}  // namespace

void WriteTabbedProfileFile(Job& job, int ip, const PlotExtremes& extremes) {
  const Pattern& p = job.patterns[ip];
  const PlotOffsets o = OffsetsOf(extremes);
  OpenFiles(job, FileKind::kProfile, ip, 0);
  WriteTabbedHeader(job, ip);
  WriteLine(job, Unit::Profile,
            Joined({AbscissaHeading(p.IXUNIT), "Yobs", "Ycal", "Yobs-Ycal", "Backg", "Posr",
                    "(hkl)", "K"}));
  const std::vector<bool> excluded = ExcludedPointMarks(p);
  for (int i = 1; i <= p.NPTS; ++i) {
    WriteLine(job, Unit::Profile, PointColumns(p, i, excluded[static_cast<std::size_t>(i)], o));
  }
  const std::string blank(8, ' ');
  for (int k = 1; k <= p.reflections.total; ++k) {
    std::string line = Fmt("(F12.4)", PlottedPosition(job, ip, k)) + kTab;
    for (int f = 0; f < 4; ++f) line += blank + kTab;
    line += Fmt("(I8)", ReflectionTick(job, ip, k, o)) + kTab + Indices(p.reflections.slot[k]);
    WriteLine(job, Unit::Profile, line);
  }
  CloseUnit(job.files.units[Unit::Profile]);
}

void WriteSideBySideProfileFile(Job& job, int ip, const PlotExtremes& extremes) {
  const Pattern& p = job.patterns[ip];
  const PlotOffsets o = OffsetsOf(extremes);
  OpenFiles(job, FileKind::kProfile, ip, 0);
  WriteTabbedHeader(job, ip);
  WriteLine(job, Unit::Profile,
            Joined({AbscissaHeading(p.IXUNIT), "Yobs", "Ycal", "Yobs-Ycal", "Backg", "Bragg",
                    "Posr", "(hkl)", "K"}));
  const std::vector<bool> excluded = ExcludedPointMarks(p);
  for (int i = 1; i <= p.NPTS; ++i) {
    std::string line = PointColumns(p, i, excluded[static_cast<std::size_t>(i)], o);
    if (i <= p.reflections.total) {
      line += kTab + Fmt("(F12.4)", PlottedPosition(job, ip, i)) + kTab +
              Fmt("(I8)", ReflectionTick(job, ip, i, o)) + kTab + Indices(p.reflections.slot[i]);
    }
    WriteLine(job, Unit::Profile, line);
  }
  CloseUnit(job.files.units[Unit::Profile]);
}

}  // namespace corvinet
