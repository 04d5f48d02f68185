// Benchmark of the restraints of a cycle: 64 distances through symmetry between 64 atoms whose
// coordinates are all refined, added to the sums of the normal equations.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>

#include "records/job.h"
#include "refine/slack_constraints.h"

namespace corvinet {
namespace {

constexpr int kAtoms = 64;

std::unique_ptr<Job> MakeRestrainedJob() {
  auto job = std::make_unique<Job>();
  job->console.out = std::fopen("/dev/null", "w");
  job->run.NPATT = 1;
  job->run.NPHASE = 1;
  Phase& ph = job->phases[1];
  ph.Nat = kAtoms;
  ph.Dis = DimensionLimits::NCONST;
  ph.pat[1].Contribution = 1;
  const float cell[6] = {10.2f, 11.5f, 9.8f, 90.0f, 104.0f, 90.0f};
  for (int i = 1; i <= 6; ++i) ph.pat[1].CellConstants[i] = cell[i - 1];
  for (int a = 1; a <= kAtoms; ++a) {
    AtomSite& atom = job->atoms[a];
    atom.label = "A" + std::to_string(a);
    for (int s = 1; s <= 3; ++s) {
      atom.ATP[s] = 0.01f * static_cast<float>((7 * a + 13 * s) % 97);
      atom.ATC[s] = {3 * (a - 1) + s, 1.0f};
    }
  }
  job->run.MAXS = 3 * kAtoms;
  for (int c = 1; c <= ph.Dis; ++c) {
    DistanceRestraint& d = ph.restraints.distances[c];
    d.Atom1 = "A" + std::to_string(c);
    d.Atom2 = "A" + std::to_string(c % kAtoms + 1);
    d.ITnum = c % 2 == 0 ? 3 : -1;
    d.T[1] = 1.0f;
    d.Dist = 2.0f;
    d.Sigma = 0.02f;
  }
  return job;
}

void BM_SlackConstraints64Distances(benchmark::State& state) {
  std::unique_ptr<Job> job = MakeRestrainedJob();
  for (auto _ : state) {
    SlackConstraints(*job, 1.5f);
    benchmark::DoNotOptimize(job->refinement.normal.SumB[1]);
  }
}
BENCHMARK(BM_SlackConstraints64Distances);

}  // namespace
}  // namespace corvinet
