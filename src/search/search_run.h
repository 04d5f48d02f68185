// The Monte Carlo (and grid) search of a run with ICRYG 2 or -2: set-up, trials on all cores,
// report and solution files.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "records/job.h"
#include "search/search_trials.h"

namespace corvinet {

// The seed of a run's search: the start of the run's random source in its bits.
constexpr std::uint64_t kDefaultSearchSeed = 0x3EEAA40D2D3D1C1Full;

// How a search runs.
struct SearchOptions {
  std::uint64_t seed = kDefaultSearchSeed;
  int threads = 0;             // 0: every core of the machine
  bool watchInterrupt = true;  // the interrupt key ends the trials, the best are kept
};

// The set-up of the search of phase k in pattern ip: the searched slots in
// scan order, the limits, the kernel and the observations of the first
// Num_Ref reflections. A searched code on a slot that the trials do not
// evaluate stops the run.
SearchSetup MakeSearchSetup(Job& job, int ip, int k, std::uint64_t seed);

// What the trials give: the best solutions, sorted, and how many trials ran.
struct TrialsOutcome {
  std::vector<SearchSolution> best;
  std::int64_t trials = 0;
  bool interrupted = false;
};

// Called about twice a second on the calling thread with the trials done and
// the best RF2 so far.
using SearchProgress = std::function<void(std::int64_t done, float best)>;

// The console lines of each progress call: the trials done and the best RF2;
// when the best improves, the RF2 line of the first solution, and every
// fourth improvement the head line of the phase before it.
struct SearchProgressLines {
  std::string head;      // the head line of the phase
  float best = 1.0e25f;  // best RF2 shown so far
  int improvements = 0;
  std::vector<std::string> Next(std::int64_t done, float newBest);
};

// Runs trials 1..count on `threads` threads (0: all cores); each trial's
// numbers depend on its number and the seed only, so that any number of
// threads gives the same solutions. `interrupt` ends the trials early.
TrialsOutcome RunTrials(const SearchSetup& s, std::int64_t count, int keep, int threads,
                        InterruptFlag& interrupt, bool watchInterrupt,
                        const SearchProgress& progress);

// Puts the values of a solution into the phase: each code's first slot takes
// its value, the later slots their multiplier times its change; with a fitted
// scale the six group scales are multiplied by the solution's scale.
void RestoreSolution(Job& job, int ip, int k, const SearchSetup& s, const SearchSolution& solution);

// The search of every |Irf| 4 phase of pattern 1, with its report and the
// solution files (<code><n>.so).
void SearchRun(Job& job, const SearchOptions& options = {});

}  // namespace corvinet
