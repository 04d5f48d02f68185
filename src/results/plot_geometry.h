// Offsets, ticks and plotted positions shared by the profile-file layouts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "format/fortran_format.h"
#include "records/job.h"
#include "results/profile_files.h"

namespace corvinet {

// The integer offsets of the plots, from the extremes of the pattern.
struct PlotOffsets {
  int DiffOffset = 0;  // trunc(0.25 Ymax)
  int BackOffset = 0;  // trunc(0.25 BackMin)
  int TickStep = 0;    // trunc(0.0625 Ymax)
};
PlotOffsets OffsetsOf(const PlotExtremes& extremes);

// A count of the plot columns, to the nearest integer or truncated. The counts
// of a diverged fit may pass the range of int: they are held in 64 bits
// (within 1e15; too wide for their columns, they come out as stars).
long long PlotCount(double value, bool nearest);

// Plotted position of reflection k of pattern ip: the corrected position that
// the order table computes (Zero, the position and its cos/sin shift for
// 2theta, or its d-squared term for the other units).
float PlottedPosition(const Job& job, int ip, int k);

// Tick height of reflection k: one row of ticks per phase, each below the last.
int ReflectionTick(const Job& job, int ip, int k, const PlotOffsets& offsets);

// Total propagation vectors of the phases of the run.
int VectorCount(const Job& job);

// The title padded or cut to 70 characters.
std::string Title70(const Job& job);

// Writes the values under the format on a unit, format reversion starting new records.
void WriteValues(Job& job, int unit, std::string_view format,
                 const std::vector<FormatValue>& values);

// The line of reflections and propagation vectors of each phase (eight I5 and
// eight I3), with the number of excluded regions (I3) when `withRegions`.
std::string PhaseCountsLine(const Job& job, int ip, bool withRegions);

// One line of F10.5 x3 per propagation vector, phases in turn.
void WriteVectorLines(Job& job, int unit);

}  // namespace corvinet
