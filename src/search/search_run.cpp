// The Monte Carlo (and grid) search of a run with ICRYG 2 or -2: set-up, trials on all cores,
// report and solution files.
#include "search/search_run.h"

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <thread>

#include "format/fortran_format.h"
#include "format/text.h"
#include "records/profile_slots.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr int kAtomValues = 5;  // x, y, z, Biso, Occ
constexpr int kScaleSlot[6] = {IntegratedSlot::Sc1, IntegratedSlot::Sc2, IntegratedSlot::Sc3,
                               IntegratedSlot::Sc4, IntegratedSlot::Sc5, IntegratedSlot::Sc6};
constexpr std::int64_t kChunk = 32;  // trials a thread takes at a time

[[noreturn]] void StopUnsearchable(Job& job, const std::string& what) {
  const std::string line = " => The search does not vary " + what;
  ConsoleLine(job, line);
  WriteReports(job, line);
  StopBox(job, " A searched parameter is not evaluated by the trials ");
}

bool Searched(const Job& job, const Codeword& w) {
  const int c = w.parameterNumber;
  return c >= 1 && c <= job.run.MAXS && job.limits.limited[c] != 0;
}

void CollectSlots(Job& job, int ip, int k, SearchSetup& s) {
  const Phase& ph = job.phases[k];
  for (int a = 1; a <= ph.Nat; ++a) {
    const AtomSite& atom = job.atoms[ph.atomOffset + a];
    for (int j = 1; j <= DimensionLimits::NAT_P; ++j) {
      if (!Searched(job, atom.ATC[j])) continue;
      if (j > kAtomValues)
        StopUnsearchable(job, Fmt("(A,I3,A,A)", "slot", j, " of atom ", atom.label));
      s.slots.push_back({atom.ATC[j].parameterNumber, atom.ATC[j].multiplier, a - 1, j - 1});
    }
  }
  const PhasePattern& c = ph.pat[ip];
  for (int slot = 1; slot <= DimensionLimits::MPAR; ++slot) {
    if (!Searched(job, c.PAC[slot])) continue;
    const int* found = std::find(std::begin(kScaleSlot), std::end(kScaleSlot), slot);
    if (found == std::end(kScaleSlot)) StopUnsearchable(job, Fmt("(A,I4)", "profile slot", slot));
    s.slots.push_back({c.PAC[slot].parameterNumber, c.PAC[slot].multiplier, -1,
                       static_cast<int>(found - std::begin(kScaleSlot))});
  }
}

void CollectObservations(const Job& job, int ip, int k, int count, SearchSetup& s) {
  const IntensityTable& t = job.patterns[ip].intensities;
  const float Rmub = job.phases[k].pat[ip].Rmub;
  s.sumObserved = 0.0;
  for (int r = 1; r <= count; ++r) {
    const IntensityObservation& o = t.slot[t.start[k] + r];
    const bool observed = o.clusterStart && o.F2obs >= Rmub * o.sigmaF2 && o.F2obs > 0.0f;
    s.F2obs.push_back(o.F2obs);
    s.sigmaF2.push_back(o.sigmaF2);
    s.LpM.push_back(o.reflection.LpM * o.reflection.Corr);
    s.group.push_back(o.group);
    s.clusterStart.push_back(o.clusterStart || r == 1 ? 1 : 0);
    s.observed.push_back(observed ? 1 : 0);
    if (observed) s.sumObserved += o.F2obs;
  }
}

int RangeCount(const Job& job, int ip, int k) {
  const int listed = job.patterns[ip].intensities.count[k];
  const int asked = job.run.Num_Ref;
  if (asked <= 0 || asked > listed) return listed;
  // A cluster is not cut: the range ends with a whole cluster.
  const IntensityTable& t = job.patterns[ip].intensities;
  int n = asked;
  while (n < listed && !t.slot[t.start[k] + n + 1].clusterStart) ++n;
  return n;
}

// The sorted merge of the lists of the threads.
std::vector<SearchSolution> Merge(std::vector<std::vector<SearchSolution>>& lists, int keep) {
  std::vector<SearchSolution> best;
  for (auto& list : lists) {
    for (SearchSolution& solution : list) KeepSolution(best, keep, std::move(solution));
  }
  return best;
}

// Blocks the interrupt signal in this thread (and the threads it starts),
// so that it is taken by WaitForInterrupt; restores the mask at the end.
struct InterruptWatch {
  sigset_t set{}, previous{};
  bool active = false;
  explicit InterruptWatch(bool on) : active(on) {
    if (!active) return;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    pthread_sigmask(SIG_BLOCK, &set, &previous);
  }
  // Waits up to `ms` milliseconds; true when the interrupt came.
  bool Wait(int ms) const {
    if (!active) {
      std::this_thread::sleep_for(std::chrono::milliseconds(ms));
      return false;
    }
    timespec timeout{ms / 1000, static_cast<long>(ms % 1000) * 1000000L};
    return sigtimedwait(&set, nullptr, &timeout) == SIGINT;
  }
  ~InterruptWatch() {
    if (!active) return;
    timespec none{0, 0};
    while (sigtimedwait(&set, nullptr, &none) == SIGINT) {
    }
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
  }
};

void UpdateBest(std::atomic<float>& best, float value) {
  float seen = best.load();
  while (value < seen && !best.compare_exchange_weak(seen, value)) {
  }
}

}  // namespace

SearchSetup MakeSearchSetup(Job& job, int ip, int k, std::uint64_t seed) {
  SearchSetup s;
  s.seed = seed;
  s.codes = job.run.MAXS;
  const std::size_t n = static_cast<std::size_t>(s.codes + 1);
  s.low.assign(n, 0.0f);
  s.high.assign(n, 0.0f);
  s.active.assign(n, 0);
  for (int c = 1; c <= s.codes && c <= job.limits.limited.size(); ++c) {
    s.low[static_cast<std::size_t>(c)] = job.limits.low[c];
    s.high[static_cast<std::size_t>(c)] = job.limits.high[c];
    s.active[static_cast<std::size_t>(c)] = job.limits.limited[c] != 0 ? 1 : 0;
  }
  CollectSlots(job, ip, k, s);
  s.start = CurrentTrialValues(job, ip, k);
  const int count = RangeCount(job, ip, k);
  s.kernel = BuildTrialKernel(job, ip, k, count);
  CollectObservations(job, ip, k, count, s);
  s.fitScale = job.run.Nscalef != 0;
  return s;
}

TrialsOutcome RunTrials(const SearchSetup& s, std::int64_t count, int keep, int threads,
                        InterruptFlag& interrupt, bool watchInterrupt,
                        const SearchProgress& progress) {
  const int workers = threads > 0 ? threads : std::max(1u, std::thread::hardware_concurrency());
  std::atomic<std::int64_t> next{1}, done{0};
  std::atomic<float> best{1.0e25f};
  std::vector<std::vector<SearchSolution>> lists(static_cast<std::size_t>(workers));
  InterruptWatch watch(watchInterrupt);
  auto work = [&](std::size_t w) {
    TrialWork trial = MakeTrialWork(s);
    SearchSolution candidate;
    for (;;) {
      if (interrupt.raised.load()) return;
      const std::int64_t first = next.fetch_add(kChunk);
      if (first > count) return;
      const std::int64_t last = std::min(count, first + kChunk - 1);
      for (std::int64_t t = first; t <= last; ++t) {
        DrawTrial(s, t, trial);
        float scale = 1.0f;
        const float rf2 = TrialRF2(s, trial, scale);
        std::vector<SearchSolution>& list = lists[w];
        const bool fits = list.size() < static_cast<std::size_t>(keep) || rf2 < list.back().RF2;
        if (!fits) continue;
        candidate.RF2 = rf2;
        candidate.trial = t;
        candidate.scale = scale;
        candidate.values = trial.drawn;
        if (KeepSolution(list, keep, candidate) == 1) UpdateBest(best, rf2);
      }
      done.fetch_add(last - first + 1);
    }
  };
  std::vector<std::thread> pool;
  for (int w = 0; w < workers; ++w) pool.emplace_back(work, static_cast<std::size_t>(w));
  while (done.load() < count && !interrupt.raised.load()) {
    if (watch.Wait(500)) interrupt.raised = true;
    if (progress) progress(done.load(), best.load());
  }
  for (std::thread& t : pool) t.join();
  TrialsOutcome outcome;
  outcome.trials = done.load();
  outcome.interrupted = interrupt.raised.load();
  outcome.best = Merge(lists, keep);
  return outcome;
}

void RestoreSolution(Job& job, int ip, int k, const SearchSetup& s,
                     const SearchSolution& solution) {
  Phase& ph = job.phases[k];
  for (int g = 0; g < 6; ++g) ph.pat[ip].PAR[kScaleSlot[g]] = s.start.scale[g];
  std::vector<float> change(static_cast<std::size_t>(s.codes + 1), 0.0f);
  std::vector<unsigned char> seen(static_cast<std::size_t>(s.codes + 1), 0);
  for (const SearchSlot& slot : s.slots) {
    const std::size_t c = static_cast<std::size_t>(slot.code);
    float* value = slot.atom < 0 ? &ph.pat[ip].PAR[kScaleSlot[slot.value]]
                                 : &job.atoms[ph.atomOffset + slot.atom + 1].ATP[slot.value + 1];
    const std::vector<float>* columns[5] = {&s.start.x, &s.start.y, &s.start.z, &s.start.B,
                                            &s.start.occ};
    const float start = slot.atom < 0 ? s.start.scale[slot.value]
                                      : (*columns[slot.value])[static_cast<std::size_t>(slot.atom)];
    if (!seen[c]) {
      seen[c] = 1;
      change[c] = solution.values[c] - start;
      *value = solution.values[c];
    } else {
      *value = start + slot.multiplier * change[c];
    }
  }
  if (!s.fitScale) return;
  for (int g = 0; g < 6; ++g) ph.pat[ip].PAR[kScaleSlot[g]] *= solution.scale;
}

}  // namespace corvinet
