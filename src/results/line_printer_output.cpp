// The line-printer outputs of the .out file: the table of observed and calculated points and the
// character plot of the profile.
#include <algorithm>
#include <string>

#include "results/plot_geometry.h"
#include "results/profile_files.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr int kPageLines = 60;
constexpr int kPageGroups = 4;
constexpr int kPlotWidth = 120;

const char* TableHeading(AbscissaUnit ixunit) {
  switch (ixunit) {
    case AbscissaUnit::kTimeOfFlight:
      return "T.O.F.   YOBS    YCALC VARIANCE ";
    case AbscissaUnit::kEnergy:
      return "Energy   YOBS    YCALC VARIANCE ";
    default:
      return "2THETA   YOBS    YCALC VARIANCE ";
  }
}

// Column of a value on the plot line: trunc(y/scale) + offset, kept within 2..120.
int PlotColumn(float y, float scale, int offset) {
  const float column = std::clamp(y / scale, -1.0e6f, 1.0e6f);
  return std::clamp(static_cast<int>(column) + offset, 2, kPlotWidth);
}

void Mark(std::string& line, int column, char c) {
  if (column >= 1 && column <= kPlotWidth) line[static_cast<std::size_t>(column - 1)] = c;
}

}  // namespace

void WriteLinePrinterTable(Job& job, int ip) {
  const Pattern& p = job.patterns[ip];
  std::string heading;
  for (int g = 0; g < kPageGroups; ++g) heading += TableHeading(p.IXUNIT);
  const char* group = IsTofOrEnergy(p.IXUNIT) ? "(1X,F7.0,3F8.0)" : "(1X,F7.3,3F8.0)";
  const int pageSize = kPageLines * kPageGroups;
  for (int page = 0; page < p.NPTS / pageSize; ++page) {
    WriteLine(job, Unit::Out, heading);
    for (int line = 1; line <= kPageLines; ++line) {
      std::string row;
      for (int g = 0; g < kPageGroups; ++g) {
        const int i = page * pageSize + g * kPageLines + line;
        row += Fmt(group, p.X[i], p.Ytotal[i], p.Ycalc[i], p.Variance[i]);
      }
      WriteLine(job, Unit::Out, row);
    }
  }
}

void WriteLinePrinterPlot(Job& job, int ip, float scaleY, float scaleD) {
  const Pattern& p = job.patterns[ip];
  if (scaleY == 0.0f) scaleY = 50.0f;
  if (scaleD == 0.0f) scaleD = 50.0f;
  std::vector<FormatValue> yScale, dScale;
  for (int k = 1; k <= 12; ++k) {
    yScale.emplace_back(static_cast<int>(static_cast<float>(10 * k) * scaleY));
    dScale.emplace_back(static_cast<int>(static_cast<float>(10 * k - 60) * scaleD));
  }
  WriteLine(job, Unit::Out, job.run.Title);
  WriteValues(job, Unit::Out, "(12I10)", yScale);
  WriteValues(job, Unit::Out, "(12I10)", dScale);
  for (int i = 1; i <= p.NPTS; ++i) {
    std::string line(kPlotWidth, ' ');
    Mark(line, 1, '.');
    Mark(line, 60, '.');
    Mark(line, 119, '.');
    const int observed = PlotColumn(p.Ytotal[i], scaleY, 2);
    Mark(line, observed - 1, '0');
    Mark(line, observed + 1, '0');
    Mark(line, observed, '+');
    Mark(line, PlotColumn(p.Ycalc[i], scaleY, 2), '-');
    Mark(line, PlotColumn(p.Ytotal[i] - p.Ycalc[i], scaleD, 61), '*');
    const std::string margin = i % 10 == 1 ? Fmt("(F6.2)", p.X[i]) : std::string(6, ' ');
    WriteLine(job, Unit::Out, margin + line);
  }
}

}  // namespace corvinet
