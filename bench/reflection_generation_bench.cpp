// Benchmark of the generation of a reflection list: a large cubic F and a monoclinic cell.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "crystal/metric.h"
#include "crystal/reflection_generation.h"
#include "crystal/symmetry_operators.h"
#include "model/lorentz_polarisation.h"

namespace {

using corvinet::Job;
using corvinet::Table1;

// One phase in one two-theta pattern of Cu K-alpha1.
std::unique_ptr<Job> MakeJob(const std::string& symbol, const Table1<float, 6>& cell, float thmax) {
  auto job = std::make_unique<Job>();
  job->run.NPATT = 1;
  job->run.NPHASE = 1;
  corvinet::Pattern& p = job->patterns[1];
  p.IXUNIT = corvinet::AbscissaUnit::kTwoTheta;
  p.LAMBDA[1] = p.LAMBDA[2] = 1.54056f;
  p.THMIN = 5.0f;
  p.THMAX = thmax;
  p.Wdt = 8.0f;
  corvinet::Phase& ph = job->phases[1];
  ph.SpaceGroupSymbol = symbol;
  corvinet::SpaceGroupFromSymbol(symbol, ph.group);
  ph.pat[1].Contribution = 1;
  ph.pat[1].PAR[3] = 0.01f;
  ph.pat[1].PAR[4] = -0.01f;
  ph.pat[1].PAR[5] = 0.01f;
  corvinet::CellMetric metric;
  corvinet::BuildCellMetric(cell, metric);
  const Table1<float, 6> k = corvinet::ReciprocalCoefficients(metric);
  for (int i = 1; i <= 6; ++i) ph.pat[1].PAR[5 + i] = k[i];
  return job;
}

Table1<float, 6> Cell(float a, float b, float c, float beta) {
  Table1<float, 6> cell;
  cell[1] = a;
  cell[2] = b;
  cell[3] = c;
  cell[4] = 90.0f;
  cell[5] = beta;
  cell[6] = 90.0f;
  return cell;
}

void Run(benchmark::State& state, Job& job) {
  for (auto _ : state) {
    job.patterns[1].reflections.total = 0;
    benchmark::DoNotOptimize(
        corvinet::GenerateReflections(job, 1, 1, corvinet::ReflectionLorentzPolarisation));
  }
  state.counters["reflections"] = job.patterns[1].reflections.total;
}

void BM_GenerateCubicF(benchmark::State& state) {
  auto job = MakeJob("F d 3 m", Cell(24.0f, 24.0f, 24.0f, 90.0f), 150.0f);
  Run(state, *job);
}
BENCHMARK(BM_GenerateCubicF)->Unit(benchmark::kMillisecond);

void BM_GenerateMonoclinic(benchmark::State& state) {
  auto job = MakeJob("P 21/c", Cell(10.0f, 12.0f, 15.0f, 105.0f), 100.0f);
  Run(state, *job);
}
BENCHMARK(BM_GenerateMonoclinic)->Unit(benchmark::kMillisecond);

void BM_GenerateAndSortMonoclinic(benchmark::State& state) {
  auto job = MakeJob("P 21/c", Cell(10.0f, 12.0f, 15.0f, 105.0f), 100.0f);
  for (auto _ : state) {
    corvinet::ReflectionTable& table = job->patterns[1].reflections;
    table.total = 0;
    table.start[1] = 0;
    table.count[1] =
        corvinet::GenerateReflections(*job, 1, 1, corvinet::ReflectionLorentzPolarisation);
    corvinet::SortReflections(table, table.count[1], 1);
    benchmark::DoNotOptimize(table.slot[1].position);
  }
  state.counters["reflections"] = job->patterns[1].reflections.total;
}
BENCHMARK(BM_GenerateAndSortMonoclinic)->Unit(benchmark::kMillisecond);

}  // namespace
