// The trials of a Monte Carlo search: drawing the searched parameters, RF2 of a trial, the kept
// best.
#include "search/search_trials.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "records/random_source.h"

namespace corvinet {

namespace {

// SplitMix64: spreads the seed and the trial number over 64 bits.
std::uint64_t Mix(std::uint64_t z) {
  z += 0x9E3779B97F4A7C15ull;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
  return z ^ (z >> 31);
}

float& SlotValue(TrialValues& v, const SearchSlot& slot) {
  if (slot.atom < 0) return v.scale[slot.value];
  std::vector<float>* columns[5] = {&v.x, &v.y, &v.z, &v.B, &v.occ};
  return (*columns[slot.value])[static_cast<std::size_t>(slot.atom)];
}

float StartValue(const TrialValues& v, const SearchSlot& slot) {
  if (slot.atom < 0) return v.scale[slot.value];
  const std::vector<float>* columns[5] = {&v.x, &v.y, &v.z, &v.B, &v.occ};
  return (*columns[slot.value])[static_cast<std::size_t>(slot.atom)];
}

}  // namespace

TrialStream::TrialStream(std::uint64_t seed, std::int64_t trial) {
  const std::uint64_t bits = Mix(seed ^ Mix(static_cast<std::uint64_t>(trial)));
  // 52 bits in (0, 1), never 0: the recurrence would stay there.
  x = (static_cast<double>(bits >> 12) + 0.5) / 4503599627370496.0;
}

float TrialStream::Next() {
  const double product = x * RandomSource::kMultiplier;
  x = product - std::floor(product);
  return static_cast<float>(x);
}

void DrawTrial(const SearchSetup& s, std::int64_t trial, TrialWork& work) {
  TrialValues& values = work.values;
  std::copy(s.start.x.begin(), s.start.x.end(), values.x.begin());
  std::copy(s.start.y.begin(), s.start.y.end(), values.y.begin());
  std::copy(s.start.z.begin(), s.start.z.end(), values.z.begin());
  std::copy(s.start.B.begin(), s.start.B.end(), values.B.begin());
  std::copy(s.start.occ.begin(), s.start.occ.end(), values.occ.begin());
  for (int g = 0; g < 6; ++g) values.scale[g] = s.start.scale[g];
  std::fill(work.isDrawn.begin(), work.isDrawn.end(), 0);
  TrialStream stream(s.seed, trial);
  for (const SearchSlot& slot : s.slots) {
    const std::size_t c = static_cast<std::size_t>(slot.code);
    if (!s.active[c]) continue;
    float& value = SlotValue(values, slot);
    if (work.isDrawn[c]) {
      value = StartValue(s.start, slot) + slot.multiplier * work.change[c];
      continue;
    }
    value = s.low[c] + stream.Next() * (s.high[c] - s.low[c]);
    work.isDrawn[c] = 1;
    work.change[c] = value - StartValue(s.start, slot);
    work.drawn[c] = value;
  }
}

TrialWork MakeTrialWork(const SearchSetup& s) {
  TrialWork w;
  w.values = s.start;
  const std::size_t codes = static_cast<std::size_t>(s.codes + 1);
  w.drawn.assign(codes, 0.0f);
  w.change.assign(codes, 0.0f);
  w.isDrawn.assign(codes, 0);
  w.F2.assign(static_cast<std::size_t>(s.kernel.reflections), 0.0f);
  return w;
}

float TrialRF2(const SearchSetup& s, TrialWork& work, float& scale) {
  TrialStructureFactors(s.kernel, work.values, work.F2.data());
  const int n = s.kernel.reflections;
  double sumCalc = 0.0;
  for (int r = 0; r < n; ++r) {
    const std::size_t i = static_cast<std::size_t>(r);
    work.F2[i] *= work.values.scale[s.group[i] - 1] * s.LpM[i];
    sumCalc += work.F2[i];
  }
  scale = 1.0f;
  if (s.fitScale) {
    if (sumCalc == 0.0) return std::numeric_limits<float>::infinity();
    scale = static_cast<float>(s.sumObserved / sumCalc);
  }
  double absDiff = 0.0;
  for (int r = 0; r < n;) {
    const std::size_t first = static_cast<std::size_t>(r);
    double value = work.F2[first];
    for (++r; r < n && !s.clusterStart[static_cast<std::size_t>(r)]; ++r) {
      value += work.F2[static_cast<std::size_t>(r)];
    }
    if (s.observed[first]) absDiff += std::fabs(s.F2obs[first] - scale * value);
  }
  return s.sumObserved > 0.0 ? static_cast<float>(100.0 * absDiff / s.sumObserved)
                             : std::numeric_limits<float>::infinity();
}

int KeepSolution(std::vector<SearchSolution>& list, int keep, SearchSolution solution) {
  if (!(solution.RF2 < 1.0e25f)) return 0;
  std::size_t place = 0;
  while (place < list.size() &&
         (list[place].RF2 < solution.RF2 ||
          (list[place].RF2 == solution.RF2 && list[place].trial < solution.trial))) {
    ++place;
  }
  if (place >= static_cast<std::size_t>(keep)) return 0;
  list.insert(list.begin() + static_cast<std::ptrdiff_t>(place), std::move(solution));
  if (list.size() > static_cast<std::size_t>(keep)) list.pop_back();
  return static_cast<int>(place) + 1;
}

}  // namespace corvinet
