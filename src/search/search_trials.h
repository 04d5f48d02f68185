// The trials of a Monte Carlo search: drawing the searched parameters, RF2 of a trial, the kept
// best.
#pragma once

#include <cstdint>
#include <vector>

#include "records/job.h"
#include "search/trial_kernel.h"

namespace corvinet {

// One slot that a searched code moves: an atom value (x, y, z, Biso, Occ of
// atom `atom`, counted from 0) or a group scale (atom -1, `value` 0..5).
struct SearchSlot {
  int code = 0;             // parameter number
  float multiplier = 1.0f;  // of the slot's codeword
  int atom = -1;
  int value = 0;
};

// What a search of one phase needs and does not change.
struct SearchSetup {
  std::vector<SearchSlot> slots;  // in the scan order: atoms and their slots, then scales
  std::vector<float> low, high;   // limits by code number (index 0 unused)
  std::vector<unsigned char> active;
  int codes = 0;      // greatest code number
  TrialValues start;  // the values of the control file
  TrialKernel kernel;
  std::vector<float> F2obs, sigmaF2, LpM;  // per observation of the range
  std::vector<int> group;                  // scale group 1..6
  std::vector<unsigned char> clusterStart, observed;
  double sumObserved = 0.0;
  bool fitScale = false;  // Nscalef not 0
  std::uint64_t seed = 0;
};

// One kept trial.
struct SearchSolution {
  float RF2 = 1.0e25f;
  std::int64_t trial = 0;
  float scale = 1.0f;         // the fitted scale of the trial (1 when not fitted)
  std::vector<float> values;  // by code number (index 0 unused)
};

// The uniform deviates of trial t: the recurrence x = frac(13967501 x) of the
// run's source, started from a value made of the seed and the trial number
// alone, so that a trial draws the same numbers on any thread.
struct TrialStream {
  double x = 0.0;
  TrialStream(std::uint64_t seed, std::int64_t trial);
  float Next();
};

// Working arrays of a thread, allocated once.
struct TrialWork {
  TrialValues values;         // the values of the trial
  std::vector<float> drawn;   // the value of each code, by code number
  std::vector<float> change;  // the change of the first slot of each code
  std::vector<unsigned char> isDrawn;
  std::vector<float> F2;  // calculated values of the range
};
TrialWork MakeTrialWork(const SearchSetup& s);

// The values of trial t into work.values: every active code is drawn inside
// its limits at its first slot; the later slots of a code move by their
// multiplier times the change of the first. work.drawn gets the value of
// each code.
void DrawTrial(const SearchSetup& s, std::int64_t trial, TrialWork& work);

// RF2 of the values in `work` (F² computed into work.F2); the scale, fitted or
// 1, in `scale`. A zero calculated sum with a fitted scale gives infinity.
float TrialRF2(const SearchSetup& s, TrialWork& work, float& scale);

// Inserts a solution into a list sorted by RF2 (then by trial number) of at
// most `keep` entries: it goes before the first entry of larger RF2, or of
// equal RF2 and a later trial; no place, it is dropped. Returns its place
// (1-based) or 0.
int KeepSolution(std::vector<SearchSolution>& list, int keep, SearchSolution solution);

}  // namespace corvinet
