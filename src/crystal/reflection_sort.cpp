// Sorting of a block of the reflection table by position: odd-even transposition, stable.
#include <utility>
#include <vector>

#include "crystal/reflection_generation.h"

namespace corvinet {
namespace {

// One sweep over the neighbours (first, first+1), (first+2, first+3), ...;
// a pair is swapped only when the right-hand position is strictly smaller.
bool Sweep(std::vector<int>& order, const ReflectionTable& table, std::size_t first) {
  bool swapped = false;
  for (std::size_t i = first; i + 1 < order.size(); i += 2) {
    if (table.slot[order[i + 1]].position < table.slot[order[i]].position) {
      std::swap(order[i], order[i + 1]);
      swapped = true;
    }
  }
  return swapped;
}

void Permute(ReflectionTable& table, int first, const std::vector<int>& order) {
  std::vector<Reflection> copy;
  copy.reserve(order.size());
  for (int index : order) copy.push_back(table.slot[index]);
  for (std::size_t i = 0; i < copy.size(); ++i) table.slot[first + static_cast<int>(i)] = copy[i];
}

}  // namespace

void SortReflections(ReflectionTable& table, int passLimit, int phase) {
  const bool whole = phase == kWholePattern;
  const int first = whole ? 1 : table.start[phase] + 1;
  const int count = whole ? table.total : table.count[phase];
  if (count < 2) return;
  std::vector<int> order(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) order[static_cast<std::size_t>(i)] = first + i;
  for (int pass = 1; pass <= passLimit; ++pass) {
    const bool odd = Sweep(order, table, 0);
    const bool even = Sweep(order, table, 1);
    if (!odd && !even) break;
  }
  Permute(table, first, order);
}

}  // namespace corvinet
