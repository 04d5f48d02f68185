// Marquardt damping of the cycles: a cycle whose shifts are rejected is solved again from the
// same point pass with the diagonal of the normal matrix scaled by 1 + lambda.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "records/job.h"
#include "refine/cycle_work.h"

namespace corvinet {

// Why the shifts of a cycle are rejected.
enum class ShiftRejection {
  kNone,
  kChi2Up,             // the chi2 of the next cycle is above the chi2 of this one
  kNegativeWidth,      // a square of a width at or below 0 at a reflection of a pattern
  kMixingOutside,      // a mixing parameter eta outside 0..1 at a reflection of a pattern
  kNegativeOccupancy,  // a refined occupancy below 0
  kNonPositiveDecay,   // a time-of-flight alpha or beta at or below 0 at a reflection
};

// The words of a rejection in the retry line: "chi2 up", "FWHM^2 < 0", ...
std::string_view RejectionWords(ShiftRejection rejection);

// The retry line: " => Cycle   3: shifts rejected (chi2 up), retry 1 with lambda = 1.0E-02".
std::string RetryLine(int cycle, ShiftRejection rejection, int retry, double lambda);

// What a retry restores: every record that solving and applying the shifts
// of a cycle changes, as it stood after the point pass of that cycle.
struct CycleSnapshot;

// The damping of the cycles. A cycle is first solved without damping, so a
// refinement whose shifts are always accepted runs as without it. A rejected
// cycle is solved again from its own point pass with lambda, which starts at
// kFirstLambda and grows tenfold per retry, at most kMaxRetries times; after
// an accepted cycle the next one starts at a tenth of the lambda that was
// accepted, and undamped once that falls below kFirstLambda.
class CycleDamping {
 public:
  static constexpr int kMaxRetries = 8;
  static constexpr double kFirstLambda = 1.0e-3;

  CycleDamping();
  ~CycleDamping();

  // The lambda of the present solution of the kept cycle; 0 when undamped.
  double Lambda() const { return lambda_; }

  // After the point pass of `cycle`: true when the chi2 of the pass rose
  // above that of the kept cycle by more than the fraction 1/(N - P), N the
  // Bragg points of all patterns and P the refined parameters, and a retry
  // of that cycle is left.
  bool Chi2Rose(const Job& job, int cycle) const;

  // Keeps the state of the job after the point pass of `cycle` and chooses
  // the lambda of its first solution.
  void Keep(const Job& job, const CycleWork& work, int cycle);

  // True when the kept cycle may still be retried.
  bool CanRetry() const { return retries_ < kMaxRetries; }

  // Restores the kept cycle, raises lambda and reports the retry on the
  // .out file and the console; returns the kept cycle.
  int Retry(Job& job, CycleWork& work, ShiftRejection rejection);

 private:
  std::unique_ptr<CycleSnapshot> kept_;
  int keptCycle_ = 0;
  float keptChi2_ = 0.0f;
  double lambda_ = 0.0;
  int retries_ = 0;
};

// The first reason the parameters as they stand now give to reject the
// shifts just applied: a negative square of a width, a mixing outside 0..1 or
// a time-of-flight alpha or beta at or below 0 at a reflection of a pattern,
// or a refined occupancy below 0.
ShiftRejection InvalidShiftedParameters(const Job& job);

}  // namespace corvinet
