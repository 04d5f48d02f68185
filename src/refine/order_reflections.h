// The order table of a pattern: for each point the first and last reflection whose peak reaches it.
#pragma once

#include "records/job.h"

namespace corvinet {

// The order code of a point packs the first reflection reaching it, K11, and
// how many more reach it, K21 - K11 (below NOV): (K21 - K11)*radix + K11.
// The radix is above the reflections of any run, so the code of the largest
// tables still fits an int. No reflection is code 0; an excluded point is
// K11 = 0, K21 = 1.
constexpr int kOrderRadix = 65536;
static_assert(DimensionLimits::kLargeIRS < kOrderRadix);
static_assert(static_cast<long long>(DimensionLimits::NOV) * kOrderRadix < 2147483647LL);
constexpr int kExcludedPoint = kOrderRadix;

// The code of a point reached by reflections first..last (0 and 0 for none).
constexpr int OrderCodeOf(int first, int last) {
  return (last - first) * kOrderRadix + first;
}

// Added to the code of a point that the widened bases of a table built again
// during the cycles reach, but no present base: its peaks are calculated, and
// it counts as a point without Bragg contributions, as a table of the present
// bases would have it. It stands above every code of reflections.
constexpr int kTailOnlyPoint = 1 << 27;
static_assert(static_cast<long long>(DimensionLimits::NOV) * kOrderRadix <= kTailOnlyPoint);

// Whether the point of `code` has Bragg contributions: reflections, not
// excluded, not reached by widened bases alone.
inline bool IsBraggCode(int code) {
  return code != 0 && code != kExcludedPoint && code < kTailOnlyPoint;
}

// First and last reflection of an order code (0 when none).
inline int FirstReflection(int code) {
  return code % kOrderRadix;
}
inline int LastReflection(int code) {
  return code % kOrderRadix + code % kTailOnlyPoint / kOrderRadix;
}

// The largest j with x[j] <= value among the first n points, 0 below x[1].
int Locate(int n, const RunTable1<float>& x, float value);

// The interval of abscissa that reflection k of pattern ip covers: its
// corrected position and reaches below and above it.
struct PeakInterval {
  float position = 0.0f;
  float left = 0.0f;
  float right = 0.0f;
};
PeakInterval PeakIntervalOf(const Job& job, int ip, int k);

// Builds OrderCode of every point of pattern ip from the peak bases of its
// reflections and the excluded regions, with the listings and checks that go
// with it. Stops on excessive overlap, on a pattern without reflections, and
// on asymmetry or preferred-orientation codes that cannot act.
void OrderReflections(Job& job, int ip);

// Builds OrderCode of every point of pattern ip again, without the listings
// and the code checks, when a peak's present base (its position and width
// moved by the cell, the zero or the widths) reaches a point whose code leaves
// it out; the bases are then widened by half, so that the table stays put for
// the next small moves, and the points they alone reach marked with
// kTailOnlyPoint. Stops only on excessive overlap.
void FollowReflections(Job& job, int ip);

}  // namespace corvinet
