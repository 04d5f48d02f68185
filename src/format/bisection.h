// Bisection in an ascending 1-based table: the last entry at or below a value.
#pragma once

namespace corvinet {

// The largest j in 1..n with at(j) <= v, where at(j) gives entry j of an
// ascending table; 0 when there are no entries or v lies below the first.
template <typename At>
int LastAtOrBelow(int n, const At& at, float v) {
  if (n < 1 || v < at(1)) return 0;
  int lo = 1;
  int hi = n + 1;
  while (hi - lo > 1) {
    const int mid = (lo + hi) / 2;
    if (at(mid) <= v) {
      lo = mid;
    } else {
      hi = mid;
    }
  }
  return lo;
}

}  // namespace corvinet
