// Point indices of abscissa values and the index test of the excluded regions.
#include "refine/excluded_points.h"

#include <algorithm>
#include <cmath>

#include "refine/order_reflections.h"

namespace corvinet {

int PointIndexOf(const Pattern& pattern, float x) {
  if (pattern.equalStep != 1) return Locate(pattern.NPTS, pattern.X, x);
  // Truncated in double so that a value far outside the range cannot overflow.
  const double raw = std::trunc((x - pattern.THMIN) / pattern.STEP + 1.5f);
  return static_cast<int>(std::clamp(raw, -1.0, static_cast<double>(pattern.NPTS)));
}

std::pair<int, int> ExcludedPointRange(const Pattern& pattern, int r) {
  int low = PointIndexOf(pattern, pattern.ExclLow[r]);
  int high = PointIndexOf(pattern, pattern.ExclHigh[r]);
  if (low < 2) low = 1;
  low = std::min(low, pattern.NPTS);
  high = std::min(high, pattern.NPTS);
  return {low, high};
}

std::vector<bool> ExcludedPointMarks(const Pattern& pattern) {
  std::vector<bool> marks(static_cast<std::size_t>(std::max(pattern.NPTS, 0)) + 1, false);
  for (int r = 1; r <= pattern.NEXCRG; ++r) {
    const auto [low, high] = ExcludedPointRange(pattern, r);
    for (int i = std::max(low, 1); i <= high; ++i) marks[static_cast<std::size_t>(i)] = true;
  }
  return marks;
}

}  // namespace corvinet
