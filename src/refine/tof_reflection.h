// The calculation of one time-of-flight reflection for a cycle, and its peak at a point.
#pragma once

#include "model/tof_widths.h"
#include "records/job.h"
#include "refine/cycle_work.h"

namespace corvinet {

// Computes reflection k of time-of-flight pattern ip: position T = Zero +
// Dtt1 d + Dtt2 d^2, widths, absorption and extinction at its wavelength,
// intensity, and the derivative row by families. A negative sigma^2 or gamma,
// or an alpha or beta at or below 0, stops the run with its lines.
void ComputeReflectionProfileTof(Job& job, CycleWork& work, int ip, int k);

// The first fault of the widths or exponentials of the reflections of time-of-flight
// pattern ip as the parameters stand, found without stopping or changing them.
TofWidthStatus TofPeakStatus(const Job& job, int ip);

// The FWHM and position (Dtt1 d) of every reflection of pattern ip, for the first order table.
void FillTofReflectionWidths(Job& job, int ip);

// Omega of the ring entry at x (0 outside its base); with `slope` given, the
// slope of ln(Omega) for each family of a time-of-flight parameter.
float TofPeakAtPoint(const RingEntry& e, float x, float* slope);

}  // namespace corvinet
