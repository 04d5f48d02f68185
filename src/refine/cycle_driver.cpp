// The cycle loop of a refinement: point passes, the equations, damping and the update, in the
// order of the loop; the stop tests and the reports of a cycle are steps of their own.
#include "refine/cycle_driver.h"

#include <cmath>
#include <cstdlib>
#include <memory>

#include "format/fortran_format.h"
#include "model/rigid_phase.h"
#include "observations/background.h"
#include "refine/bragg_profile.h"
#include "refine/cycle_damping.h"
#include "refine/cycle_report.h"
#include "refine/cycle_stop_tests.h"
#include "refine/cycle_work.h"
#include "refine/finite_parameters.h"
#include "refine/intensity_evaluation.h"
#include "refine/live_plot.h"
#include "refine/order_reflections.h"
#include "refine/parameter_families.h"
#include "refine/parameter_update.h"
#include "refine/point_calculation.h"
#include "refine/point_pass.h"
#include "refine/reflection_calculation.h"
#include "refine/reliability.h"
#include "refine/slack_constraints.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// Prepares the background of pattern ip and walks its points.
void CalculatePattern(Job& job, CycleWork& work, int ip) {
  Pattern& p = job.patterns[ip];
  RefinementState& s = job.refinement;
  s.braggPoints[ip] = 0;
  s.usedPoints[ip] = 0;
  if (RefilledEachCycle(p)) FillBackground(job, ip);
  ConsoleLineWithNumber(job, " Calculation for pattern:", ip, 0.0f, 1);
  CalculatePatternPoints(job, work, ip);
}

void ClearEquations(Job& job) {
  NormalMatrix& n = job.refinement.normal;
  const int fitted = FittedCount(job);
  n.pendingPoints = 0;
  for (int i = 1; i <= fitted; ++i) {
    n.B[i] = 0.0f;
    n.SumB[i] = 0.0;
    for (int j = 1; j <= fitted; ++j) {
      n.A(i, j) = 0.0f;
      n.SumA(i, j) = 0.0;
    }
  }
}

// Global chi-square and residual sum of the patterns, from their statistics.
void SumPatterns(Job& job, int cycle, int endMarker) {
  RefinementState& s = job.refinement;
  const int fitted = job.run.MAXS;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    ResidualStatistics(job, ip, cycle, endMarker);
    const float S = job.reliability.pattern[ip].all.Residual;
    const float weight = job.patterns[ip].W_PAT;
    s.globalResidualSum += weight * S;
    // The divisor is the count of Bragg points although S runs over all points.
    s.GlobalChi2 += weight * S * (1.0f / static_cast<float>(s.braggPoints[ip] - fitted));
  }
}

// Copies the upper triangle of the sums into the lower one and stores the
// equations in their 32-bit form.
void StoreEquations(NormalMatrix& n, int fitted) {
  FlushNormalBlock(n, fitted);
  for (int i = 1; i <= fitted; ++i) {
    n.B[i] = static_cast<float>(n.SumB[i]);
    for (int j = i; j <= fitted; ++j) {
      n.SumA(j, i) = n.SumA(i, j);
      n.A(i, j) = n.A(j, i) = static_cast<float>(n.SumA(i, j));
    }
  }
}

// The extra pass after convergence: zero shifts, statistics again, results.
void FinalPass(Job& job, int cycle, const BraggProfile& profile) {
  RefinementState& s = job.refinement;
  s.EndMarker = kConvergedEndMarker;
  s.normal.B.Fill(0.0f);
  s.DisplayedCycle = job.run.NCY;
  if (job.run.ICRYG == 0) {
    s.GlobalChi2 = 0.0f;
    s.globalResidualSum = 0.0f;
    SumPatterns(job, cycle, s.EndMarker);
    // Lists of intensities refined beside the patterns count as in a cycle.
    if (HasIntensityObservations(job)) s.GlobalChi2 = GlobalChi2WithIntensities(job, s.GlobalChi2);
  }
  WriteCycleResults(job, cycle, s.EndMarker, profile);
}

void EndingSteps(Job& job) {
  ConsoleLine(job, " Normal end, final calculations and writing...");
}

// Solves the kept equations with the damping's lambda: the shifts come from
// the damped matrix, the covariance from the undamped one.
void SolveDamped(Job& job, int fitted, double lambda) {
  RefinementState& s = job.refinement;
  SolveCycleEquations(job, fitted, lambda);
  if (lambda == 0.0) return;
  const RunTable1<float> shifts = s.normal.B;
  SolveCycleEquations(job, fitted, 0.0);
  s.normal.B = shifts;
}

// Solves the equations of the cycle, applies and reports the shifts; shifts
// that leave a peak or an occupancy invalid are solved again, damped, from
// the same pass, in the last cycle too, whose values the new control file keeps.
void SolveAndReport(Job& job, CycleWork& work, CycleDamping& damping, int cycle,
                    const BraggProfile& profile) {
  RefinementState& s = job.refinement;
  const int fitted = FittedCount(job);
  for (;;) {
    if (fitted > 0) SolveDamped(job, fitted, damping.Lambda());
    for (int i = 1; i <= fitted; ++i) {
      for (int j = 1; j <= fitted; ++j) s.normal.A(i, j) *= s.GlobalChi2;
    }
    DampOscillations(job, fitted);
    ReportCycle(job, cycle, profile);
    if (fitted == 0 || !damping.CanRetry()) return;
    const ShiftRejection rejection = InvalidShiftedParameters(job);
    if (rejection == ShiftRejection::kNone) return;
    damping.Retry(job, work, rejection);
  }
}

}  // namespace

void CalculatePatterns(Job& job, CycleWork& work, int cycle) {
  if (job.run.ICRYG != 0) return;
  // The atoms of rigid groups follow the shifts of the last cycle.
  RefreshRigidModels(job);
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (job.run.IASG == 1 || cycle == 1) {
      ConsoleLineWithNumber(
          job, " Ordering reflections contributing to each point for pattern:", ip, 0.0f, 1);
      OrderReflections(job, ip);
    } else {
      FollowReflections(job, ip);
    }
  }
  ConsoleLine(job, " Calculation of Yi for all points + Normal Matrix & Vector...");
  PreparePointPass(job, work);
  for (int ip = 1; ip <= job.run.NPATT; ++ip) CalculatePattern(job, work, ip);
}

void DampOscillations(Job& job, int fitted) {
  RefinementState& s = job.refinement;
  for (int i = 1; i <= fitted; ++i) {
    const float shift = s.normal.B[i];
    const float last = s.LastShift[i];
    const bool opposite = (shift < 0.0f) != (last < 0.0f);
    const float size = std::fabs(shift);
    if (opposite && size >= 0.8f * std::fabs(last) && size <= 1.2f * std::fabs(last)) {
      s.normal.B[i] = 0.5f * shift;
    } else {
      s.LastShift[i] = shift;
    }
  }
}

void RunCycles(Job& job) {
  auto work = std::make_unique<CycleWork>();
  RunCycles(job, *work);
}

void RunCycles(Job& job, CycleWork& work) {
  RefinementState& s = job.refinement;
  const int fitted = FittedCount(job);
  work.dF2.Grow(fitted);
  s.EndMarker = 0;
  s.PreviousChi2 = 1.0e38f;
  s.LastShift.Fill(0.0f);
  BuildParameterFamilies(job);
  const BraggProfile profile = PointLoopProfile(job, work);
  // The report of each cycle reads the peaks of its pass, before any value moves.
  const BraggProfile passProfile = PassProfile(job, work);
  CycleDamping damping;
  for (int cycle = 1; cycle <= job.run.NCY; ++cycle) {
    s.CycleNumber = cycle;
    s.DisplayedCycle = cycle;
    ShowCycleHead(job, cycle);
    ClearEquations(job);
    CalculatePatterns(job, work, cycle);
    if (IsCalculatedPattern(job.patterns[1])) break;
    ConsoleLine(job, " Solving L.S. equations...");
    s.GlobalChi2 = 0.0f;
    s.globalResidualSum = 0.0f;
    if (job.run.ICRYG == 0) SumPatterns(job, cycle, s.EndMarker);
    if (HasIntensityObservations(job)) {
      s.GlobalChi2 = AccumulateIntensityObservations(job, work.scratch.structure, s.GlobalChi2);
    }
    if (HasRestraints(job)) SlackConstraints(job, s.GlobalChi2);
    StoreEquations(s.normal, fitted);
    if (job.run.MAT == 2) WriteDiagonal(job, cycle, fitted);
    StopOnSingularMatrix(job, fitted);
    // The last cycle only reports: its pass is not a reason to go back.
    if (cycle < job.run.NCY && damping.Chi2Rose(job, cycle)) {
      cycle = damping.Retry(job, work, ShiftRejection::kChi2Up);
      s.CycleNumber = cycle;
      s.DisplayedCycle = cycle;
    } else if (fitted > 0) {
      damping.Keep(job, work, cycle);
    }
    SolveAndReport(job, work, damping, cycle, passProfile);
    StopOnNonFiniteParameters(job, cycle);
    if (job.patterns[1].LST2 == kLivePlot) PlotCycle(job, s.DisplayedCycle);
    if (job.run.IDUM == 2) {
      StopOnDivergence(job, cycle);
      s.PreviousChi2 = s.GlobalChi2;
    }
    const bool tested = job.run.ConvergenceTestActive;
    // A damped cycle has small shifts without being at the minimum.
    if (tested && (FirstUnconverged(job, cycle, fitted) != 0 || damping.Lambda() > 0.0)) continue;
    if (cycle <= job.run.NCY && job.run.IDUM == 1 && !tested) continue;
    FinalPass(job, cycle, profile);
    break;
  }
  EndingSteps(job);
}

}  // namespace corvinet
