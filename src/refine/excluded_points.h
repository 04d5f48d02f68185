// Point indices of abscissa values and of the excluded regions, for the reliability factors.
#pragma once

#include <utility>
#include <vector>

#include "records/pattern.h"

namespace corvinet {

// The point index of abscissa x: with a constant step the truncation of
// (x - THMIN)/STEP + 1.5, kept within -1..NPTS, otherwise Locate on X.
int PointIndexOf(const Pattern& pattern, float x);

// The first and last point of excluded region r, clamped as the order table
// clamps: the first point up to 1 when it is below 2, both down to NPTS.
std::pair<int, int> ExcludedPointRange(const Pattern& pattern, int r);

// Marks for points 1..NPTS (entry 0 unused): true when some excluded region
// covers the point by the index test. Every region is tested, in input order.
std::vector<bool> ExcludedPointMarks(const Pattern& pattern);

}  // namespace corvinet
