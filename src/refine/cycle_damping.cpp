// Marquardt damping of the cycles: the kept state of a cycle, its retries and the tests that
// reject the shifts of a cycle.
#include "refine/cycle_damping.h"

#include <cmath>
#include <cstdlib>
#include <tuple>

#include "format/fortran_format.h"
#include "refine/reflection_calculation.h"
#include "surface/console.h"

namespace corvinet {

struct CycleSnapshot {
  Table1<Pattern, DimensionLimits::NPATT> patterns;
  Table1<Phase, DimensionLimits::NPHT> phases;
  Table1<AtomSite, DimensionLimits::NATS> atoms;
  ParameterLimits limits;
  ReliabilityState reliability;
  NormalMatrix normal;
  RunTable1<float> LastShift;
  float PreviousChi2 = 0.0f;
  float GlobalChi2 = 0.0f;
  float globalResidualSum = 0.0f;
  Table1<int, DimensionLimits::NPATT> braggPoints;
  Table1<int, DimensionLimits::NPATT> usedPoints;
  Table1<RingEntry, DimensionLimits::NOV> ring;
  Table1<int, DimensionLimits::NOV> computedPattern;
  Table1<int, DimensionLimits::NOV> computedReflection;
};

namespace {

// The records a retry restores, as references: those of the job and its
// cycle work, or those of a snapshot, in the same order.
template <class J, class W>
auto CycleState(J& job, W& work) {
  auto& r = job.refinement;
  return std::tie(job.phases, job.atoms, job.limits, job.reliability, r.normal, r.LastShift,
                  r.PreviousChi2, r.GlobalChi2, r.globalResidualSum, r.braggPoints, r.usedPoints,
                  work.ring, work.computedPattern, work.computedReflection);
}

auto CycleState(CycleSnapshot& s) {
  return std::tie(s.phases, s.atoms, s.limits, s.reliability, s.normal, s.LastShift, s.PreviousChi2,
                  s.GlobalChi2, s.globalResidualSum, s.braggPoints, s.usedPoints, s.ring,
                  s.computedPattern, s.computedReflection);
}

// Only the patterns of the run are copied, as they are large.
template <class From, class To>
void CopyPatterns(const From& from, To& to, int count) {
  for (int ip = 1; ip <= count; ++ip) to[ip] = from[ip];
}

void Save(const Job& job, const CycleWork& work, CycleSnapshot& s) {
  CopyPatterns(job.patterns, s.patterns, job.run.NPATT);
  CycleState(s) = CycleState(job, work);
}

void Restore(CycleSnapshot& s, Job& job, CycleWork& work) {
  CopyPatterns(s.patterns, job.patterns, job.run.NPATT);
  CycleState(job, work) = CycleState(s);
}

bool ExtractsIntensities(const Job& job) {
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    if (std::abs(job.phases[k].Jbt) == 2) return true;
  }
  return false;
}

bool NegativeRefinedOccupancy(const Job& job) {
  constexpr int kOccupancy = 5;
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    const Phase& ph = job.phases[k];
    if (ph.Jbt != 0) continue;
    for (int a = ph.atomOffset + 1; a <= ph.atomOffset + ph.Nat; ++a) {
      const AtomSite& atom = job.atoms[a];
      if (atom.ATC[kOccupancy].parameterNumber != 0 && atom.ATP[kOccupancy] < 0.0f) return true;
    }
  }
  return false;
}

}  // namespace

std::string_view RejectionWords(ShiftRejection rejection) {
  switch (rejection) {
    case ShiftRejection::kChi2Up:
      return "chi2 up";
    case ShiftRejection::kNegativeWidth:
      return "FWHM^2 < 0";
    case ShiftRejection::kMixingOutside:
      return "eta outside 0..1";
    case ShiftRejection::kNegativeOccupancy:
      return "occupancy < 0";
    case ShiftRejection::kNonPositiveDecay:
      return "alpha, beta <= 0";
    case ShiftRejection::kNone:
      break;
  }
  return "";
}

// λ as d.dE±ee, the form of its report line.
std::string LambdaText(double lambda) {
  int exponent = lambda > 0.0 ? static_cast<int>(std::floor(std::log10(lambda))) : 0;
  double mantissa = lambda > 0.0 ? lambda / std::pow(10.0, exponent) : 0.0;
  if (mantissa >= 9.95) {
    mantissa /= 10.0;
    ++exponent;
  }
  return Fmt("(F3.1,A,A,I2.2)", mantissa, "E", exponent < 0 ? "-" : "+", std::abs(exponent));
}

std::string RetryLine(int cycle, ShiftRejection rejection, int retry, double lambda) {
  const std::string value = LambdaText(lambda);
  return Fmt("(A,I4,A)", " => Cycle", cycle, ": shifts rejected (") +
         std::string(RejectionWords(rejection)) +
         Fmt("(A,I1,A)", "), retry ", retry, " with lambda = ") + value;
}

CycleDamping::CycleDamping() : kept_(std::make_unique<CycleSnapshot>()) {}

CycleDamping::~CycleDamping() = default;

bool CycleDamping::Chi2Rose(const Job& job, int cycle) const {
  if (keptCycle_ == 0 || cycle != keptCycle_ + 1 || !CanRetry()) return false;
  // Each pass of a profile-matching phase uses the intensities extracted from
  // the pass before: two passes never share them, and the extraction alone may
  // raise chi2 (it is not the least-squares solution of the intensities), so
  // their chi2 do not say whether the shifts overshot.
  if (ExtractsIntensities(job)) return false;
  // A rise worth less than one standard deviation of one parameter, a rise
  // of the unscaled sum below chi2 itself, is the jitter of steps at the
  // minimum, not a step that overshot.
  const RefinementState& s = job.refinement;
  int degrees = -FittedCount(job);
  for (int ip = 1; ip <= job.run.NPATT; ++ip) degrees += s.braggPoints[ip];
  const float tolerance = 1.0f / static_cast<float>(degrees > 1 ? degrees : 1);
  return s.GlobalChi2 > keptChi2_ * (1.0f + tolerance);
}

void CycleDamping::Keep(const Job& job, const CycleWork& work, int cycle) {
  // The cycle before was accepted: its damping, if any, is relaxed.
  lambda_ = lambda_ / 10.0 < kFirstLambda ? 0.0 : lambda_ / 10.0;
  retries_ = 0;
  keptCycle_ = cycle;
  keptChi2_ = job.refinement.GlobalChi2;
  Save(job, work, *kept_);
}

int CycleDamping::Retry(Job& job, CycleWork& work, ShiftRejection rejection) {
  ++retries_;
  lambda_ = lambda_ == 0.0 ? kFirstLambda : 10.0 * lambda_;
  Restore(*kept_, job, work);
  // The entries the last pass kept may belong to other values than those restored.
  work.passEntries.clear();
  const std::string line = RetryLine(keptCycle_, rejection, retries_, lambda_);
  WriteLine(job, Unit::Out, line);
  ConsoleLine(job, line);
  return keptCycle_;
}

ShiftRejection InvalidShiftedParameters(const Job& job) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    switch (CheckPeakShapes(job, ip)) {
      case PeakValidity::kNegativeWidth:
        return ShiftRejection::kNegativeWidth;
      case PeakValidity::kMixingOutside:
        return ShiftRejection::kMixingOutside;
      case PeakValidity::kNonPositiveDecay:
        return ShiftRejection::kNonPositiveDecay;
      case PeakValidity::kValid:
        break;
    }
  }
  if (NegativeRefinedOccupancy(job)) return ShiftRejection::kNegativeOccupancy;
  return ShiftRejection::kNone;
}

}  // namespace corvinet
