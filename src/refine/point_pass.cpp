// One pass over the points of a pattern: reflections computed ahead of each chunk of points, the
// points of the chunk side by side, then their rows added to the normal equations.
#include "refine/point_pass.h"

#include <omp.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <thread>

#include "observations/background.h"
#include "refine/order_reflections.h"
#include "refine/parameter_families.h"
#include "refine/point_calculation.h"
#include "refine/reflection_calculation.h"

namespace corvinet {

namespace {

// Points of one chunk at most: the threads meet twice a chunk, so a chunk
// is as long as its reflections let it be (they must fit in the ring
// together); this bounds the store of its rows.
constexpr int kChunkPoints = 4096;

// Only with a background in closed form are points without reflections
// calculated as well.
bool PolynomialBackground(const Pattern& p) {
  const BackgroundModel model = BackgroundModelOf(p);
  return model == BackgroundModel::Polynomial || model == BackgroundModel::Debye ||
         model == BackgroundModel::Polynomial12;
}

// The points of a chunk and the reflections they need.
struct Chunk {
  int count = 0;           // points in work.points[0..count)
  int lastReflection = 0;  // the last reflection any of them needs
  int nextPoint = 0;       // the first point after the chunk
};

// Gathers the next chunk from point `from` on: points that are calculated,
// at most kChunkPoints, whose reflections (from the first of the chunk's
// first point to the last of its last) fit in the ring together. Counts the
// used and Bragg points of the pattern on the way.
Chunk NextChunk(Job& job, CycleWork& work, int ip, int from, bool polynomial) {
  const Pattern& p = job.patterns[ip];
  RefinementState& s = job.refinement;
  Chunk c;
  int firstReflection = 0;
  int i = from;
  for (; i <= p.NPTS && c.count < kChunkPoints; ++i) {
    const int code = p.OrderCode[i];
    if (code == kExcludedPoint) continue;
    const int first = FirstReflection(code);
    const int last = LastReflection(code);
    const bool reached = first != 0 && last != 0;
    if (reached) {
      const int lowest = firstReflection == 0 ? first : firstReflection;
      if (c.count > 0 && last - lowest >= DimensionLimits::NOV) break;
      firstReflection = lowest;
      c.lastReflection = std::max(c.lastReflection, last);
      if (IsBraggCode(code)) ++s.braggPoints[ip];
    }
    ++s.usedPoints[ip];
    if (reached || polynomial) work.points[static_cast<std::size_t>(c.count++)] = i;
  }
  c.nextPoint = i;
  return c;
}

// Calculates the points of the chunk, each into its row of the chunk.
void CalculateChunkPoints(Job& job, CycleWork& work, int ip, const Chunk& c, int fitted,
                          int threads) {
  const int stride = fitted;
#pragma omp parallel for num_threads(threads) schedule(static) if (threads > 1)
  for (int n = 0; n < c.count; ++n) {
    const auto un = static_cast<std::size_t>(n);
    DerivativeVector& row = work.threadRows[static_cast<std::size_t>(omp_get_thread_num())];
    PointTerms terms;
    if (!CalculatePointRow(job, work, ip, work.points[un], row, terms)) continue;
    float* out = work.rows.data() + un * static_cast<std::size_t>(stride);
    std::copy(row.ptr(), row.ptr() + fitted, out);
    work.weight[un] = terms.weight;
    work.residual[un] = terms.residual;
    work.rowEnd[un] = RowEnd(out, fitted);
  }
}

// The first row of thread t's share when rows 0..fitted-1 of the upper
// triangle are split into `threads` shares of about equal area.
int ShareStart(int t, int threads, int fitted) {
  if (t <= 0) return 0;
  if (t >= threads) return fitted;
  const double n = fitted;
  const double remaining = n * n * (1.0 - static_cast<double>(t) / threads);
  const int start = static_cast<int>(n - std::sqrt(remaining));
  return std::clamp(start, 0, fitted);
}

// Adds the rows of the chunk's points to the normal equations, the rows of
// the matrix shared among the threads.
void AccumulateChunk(Job& job, CycleWork& work, const Chunk& c, int fitted, int threads) {
  NormalMatrix& normal = job.refinement.normal;
  PointRows rows;
  rows.rows = work.rows.data();
  rows.stride = fitted;
  rows.weight = work.weight.data();
  rows.residual = work.residual.data();
  rows.rowEnd = work.rowEnd.data();
  rows.count = c.count;
  rows.pending = normal.pendingPoints;
  const int shares = std::min(threads, std::max(1, fitted / 8));
#pragma omp parallel for num_threads(shares) schedule(static) if (shares > 1)
  for (int t = 0; t < shares; ++t) {
    AddPointRows(normal, rows, ShareStart(t, shares, fitted), ShareStart(t + 1, shares, fitted),
                 work.touched.data());
  }
  normal.pendingPoints = PendingAfter(rows);
}

}  // namespace

bool WorthSeveralThreads(const Job& job) {
  long long work = 0;
  const long long columns = FittedCount(job) + kThreadWorkColumns;
  for (int ip = 1; ip <= job.run.NPATT; ++ip) work += job.patterns[ip].NPTS * columns;
  return work >= kThreadWorkThreshold;
}

int PointThreads(const Job& job, const CycleWork& work) {
  if (work.threads > 0) return work.threads;
  if (job.driver.pointThreads > 0) return job.driver.pointThreads;
  if (!WorthSeveralThreads(job)) return 1;
  return static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
}

void PreparePointPass(Job& job, CycleWork& work) {
  const int fitted = FittedCount(job);
  const int threads = PointThreads(job, work);
  BuildFamilyRuns(job.refinement.family.ptr(), fitted, work.familyRuns);
  // Every row of the 32-bit block may hold something from before the pass.
  work.touched.assign(static_cast<std::size_t>(fitted) + 1, fitted);
  const auto chunk = static_cast<std::size_t>(kChunkPoints);
  work.rows.resize(chunk * static_cast<std::size_t>(std::max(fitted, 1)));
  work.weight.resize(chunk);
  work.residual.resize(chunk);
  work.rowEnd.resize(chunk);
  work.points.resize(chunk);
  work.threadRows.resize(static_cast<std::size_t>(threads));
  // Each thread's row is as wide as the tables of parameters of the run.
  for (DerivativeVector& row : work.threadRows) row.Grow(job.refinement.PointDerivative.size());
  work.passEntries.resize(DimensionLimits::NPATT + 1);
  ++work.pass;
}

void CalculatePatternPoints(Job& job, CycleWork& work, int ip) {
  const Pattern& p = job.patterns[ip];
  const int fitted = FittedCount(job);
  const int threads = PointThreads(job, work);
  const bool polynomial = PolynomialBackground(p);
  const bool accumulate = !IsCalculatedPattern(p);
  auto& kept = work.passEntries[static_cast<std::size_t>(ip)];
  kept.assign(static_cast<std::size_t>(p.reflections.total) + 1, KeptEntry{});
  int next = 1;
  for (int i = 1; i <= p.NPTS;) {
    const Chunk c = NextChunk(job, work, ip, i, polynomial);
    i = c.nextPoint;
    if (c.count == 0) continue;
    if (threads > 1) ComputeStructureFactorsAhead(job, work, ip, next, c.lastReflection, threads);
    for (; next <= c.lastReflection; ++next) {
      ComputeReflectionProfile(job, work, ip, next);
      kept[static_cast<std::size_t>(next)] = KeptEntry{work.ring[RingSlot(next)], true};
    }
    CalculateChunkPoints(job, work, ip, c, fitted, threads);
    if (accumulate) AccumulateChunk(job, work, c, fitted, threads);
  }
}

}  // namespace corvinet
