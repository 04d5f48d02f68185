// Benchmarks of whole cycles of three reference jobs: a large triclinic structure, the PbSO4
// X-ray refinement and a profile-matching job at the capacities of the tables.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "bench_job.h"
#include "format/fortran_format.h"
#include "records/reflection.h"
#include "refine/bragg_factors.h"
#include "refine/bragg_profile.h"
#include "refine/cycle_driver.h"
#include "refine/cycle_stop_tests.h"
#include "refine/cycle_work.h"
#include "refine/parameter_families.h"
#include "refine/point_calculation.h"

namespace {

using namespace corvinet;

// A fixed pseudo-random fraction in [0, 1) for atom n and coordinate c.
float Coordinate(int n, int c) {
  unsigned v = 2654435761u * static_cast<unsigned>(n * 3 + c + 1);
  v ^= v >> 13;
  v *= 2246822519u;
  v ^= v >> 16;
  return 0.02f + 0.96f * static_cast<float>(v % 100000u) / 100000.0f;
}

// P -1, 20 atoms (Fe, S, P, O, N, C) at general positions, a = 15, b = 16,
// c = 17 A, alpha 85, beta 95, gamma 100; lambda 1.54056, pseudo-Voigt;
// 2theta 5 to 84 in 14000 points (5 400 reflections); 87 parameters: scale, the six cell
// parameters, and the coordinates and Biso of every atom.
std::unique_ptr<Job> MakeLargeJob(const std::filesystem::path& dir) {
  EnterBenchDirectory(dir);
  std::ofstream pcr("bench.pcr");
  pcr << "Large triclinic structure\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
         "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 1 0\n"
         "1.54056 1.54056 0.0 60.0 8.0 0.0 0.0 0.0 0.0\n"
         "1 0.1 1 1 1 1 5.0 0.00565 84.09435 0 0\n87\n0.0 0.0 0.0 0 0.0 0 0 0 0\n"
         "100 0 0 0 0 0\n0 0 0 0 0 0\n"
         "Phase\n20 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0\nP -1\n";
  const char* types[] = {"FE", "S", "P", "O", "N", "C"};
  for (int i = 0; i < 20; ++i) {
    const float b = 0.5f + 0.05f * static_cast<float>(i);
    pcr << Fmt("(A,I2.2,1X,A4,4F9.5,A)", "A", i, types[i % 6], Coordinate(i, 0), Coordinate(i, 1),
               Coordinate(i, 2), b, " 1.0 0 0 0")
        << "\n";
    const int n = 8 + 4 * i;
    pcr << Fmt("(4F8.2,A)", 10.0f * n + 1.0f, 10.0f * (n + 1) + 1.0f, 10.0f * (n + 2) + 1.0f,
               10.0f * (n + 3) + 1.0f, " 0.0")
        << "\n";
  }
  pcr << "1.0 0.0 0.0 0.0 0.0 0.0 0\n11.0 0 0 0 0 0\n"
         "0.004 -0.002 0.004 0.01 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
         "15.0 16.0 17.0 85 95 100\n21.0 31.0 41.0 51.0 61.0 71.0\n"
         "0 0 0 0 0 0\n0 0 0 0 0 0\n";
  pcr.close();
  auto job = ReadBenchJob("5.0 0.00565 84.09435", 14000);
  BuildParameterFamilies(*job);
  return job;
}

// PbSO4 with Cu Ka1 + Ka2 over 10 to 160 degrees in 6001 points, 20
// parameters: scale, shape, widths, cell, coordinates and Biso.
std::unique_ptr<Job> MakePbso4Job(const std::filesystem::path& dir) {
  EnterBenchDirectory(dir);
  std::ofstream pcr("bench.pcr");
  pcr << "PbSO4 X-ray\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
         "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 1 0\n"
         "1.5405 1.5443 0.5 80.0 10.0 0.0 0.0 0.0 0.0\n"
         "1 0.1 1 1 1 1 10.0 0.025 160.0 0 0\n20\n0.0 0.0 0.0 0 0.0 0 0 0 0\n"
         "150 0 0 0 0 0\n0 0 0 0 0 0\n"
         "PbSO4\n5 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0\nP n m a\n"
         "Pb PB 0.18820 0.25000 0.16700 0.80 0.50 0 0 0\n91.00 0.00 101.00 181.00 0.00\n"
         "S S 0.06300 0.25000 0.68600 0.80 0.50 0 0 0\n111.00 0.00 121.00 191.00 0.00\n"
         "O1 O -0.09500 0.25000 0.60000 0.80 0.50 0 0 0\n131.00 0.00 141.00 201.00 0.00\n"
         "O2 O 0.18100 0.25000 0.54300 0.80 0.50 0 0 0\n151.00 0.00 161.00 0.00 0.00\n"
         "O3 O 0.08500 0.02600 0.80600 0.80 1.00 0 0 0\n171.00 0.00 0.00 0.00 0.00\n"
         "1.0 0.5 0.0 0.0 0.0 0.0 0\n11.0 21.0 0 0 0 0\n"
         "0.01 -0.01 0.01 0.0 0.0 0.0 0.0 0\n31.0 41.0 51.0 0 0 0 0\n"
         "8.48 5.398 6.958 90 90 90\n61.0 71.0 81.0 0 0 0\n"
         "0 0 0 0 0 0\n0 0 0 0 0 0\n";
  pcr.close();
  auto job = ReadBenchJob("10.0 0.025 160.0", 6001);
  BuildParameterFamilies(*job);
  return job;
}

// A triclinic phase in profile matching over 17000 points and about 2000
// reflections with 300 refined parameters: the real ones are the scale,
// widths, shape, cell, zero and background; the rest stand for the atom
// parameters of a structure, refined but idle here.
std::unique_ptr<Job> MakeLimitsJob(const std::filesystem::path& dir) {
  auto job = MakeTriclinicMatchJob(dir, "Limits job", "7.75 8.95 10.15 91 95 98");
  RefineTriclinicMatch(*job, job->dimensions.MSZ);
  return job;
}

// Times one pass of the points (profile, derivative rows and normal
// equations) of a job made in the folder `name` of the temporary directory,
// on the number of threads the benchmark's argument gives.
template <typename Maker>
void TimeCyclePass(benchmark::State& state, const char* name, Maker make, bool calculation) {
  const auto previous = std::filesystem::current_path();
  auto job = make(std::filesystem::temp_directory_path() / name);
  if (calculation) {
    job->patterns[1].JOBTYP = 2;
    job->run.MAXS = 0;
    BuildParameterFamilies(*job);
  }
  auto work = std::make_unique<CycleWork>();
  work->threads = static_cast<int>(state.range(0));
  for (auto _ : state) CalculatePatterns(*job, *work, 1);
  state.counters["reflections"] = job->patterns[1].reflections.total;
  state.counters["points"] = job->patterns[1].NPTS;
  state.counters["parameters"] = FittedCount(*job);
  state.counters["threads"] = static_cast<double>(work->threads);
  std::fclose(job->console.out);
  std::filesystem::current_path(previous);
}

void BM_LargeJobCycle(benchmark::State& state) {
  TimeCyclePass(state, "corvinet-large-bench", MakeLargeJob, false);
}
BENCHMARK(BM_LargeJobCycle)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_LargeJobCalculation(benchmark::State& state) {
  TimeCyclePass(state, "corvinet-large-calc-bench", MakeLargeJob, true);
}
BENCHMARK(BM_LargeJobCalculation)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_Pbso4XrayCycle(benchmark::State& state) {
  TimeCyclePass(state, "corvinet-pbso4-bench", MakePbso4Job, false);
}
BENCHMARK(BM_Pbso4XrayCycle)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_LimitsJobCycle(benchmark::State& state) {
  TimeCyclePass(state, "corvinet-limits-bench", MakeLimitsJob, false);
}
BENCHMARK(BM_LimitsJobCycle)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

// One whole cycle of the large job as a run makes it: the order of the
// reflections, the pass over the points, the solution, the update of the
// parameters, the report of the cycle and the closing statistics. The job is
// read again, untimed, before each.
void BM_LargeJobWholeCycle(benchmark::State& state) {
  const auto previous = std::filesystem::current_path();
  const auto dir = std::filesystem::temp_directory_path() / "corvinet-large-whole-bench";
  for (auto _ : state) {
    state.PauseTiming();
    auto job = MakeLargeJob(dir);
    job->run.NCY = 1;
    auto work = std::make_unique<CycleWork>();
    work->threads = static_cast<int>(state.range(0));
    state.ResumeTiming();
    RunCycles(*job, *work);
    state.PauseTiming();
    std::fclose(job->console.out);
    job.reset();
    state.ResumeTiming();
  }
  std::filesystem::current_path(previous);
}
BENCHMARK(BM_LargeJobWholeCycle)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

// The solution of the normal equations of the large job (87 parameters).
void BM_LargeJobSolve(benchmark::State& state) {
  const auto previous = std::filesystem::current_path();
  auto job = MakeLargeJob(std::filesystem::temp_directory_path() / "corvinet-large-solve-bench");
  auto work = std::make_unique<CycleWork>();
  work->threads = 1;
  CalculatePatterns(*job, *work, 1);
  const int fitted = FittedCount(*job);
  FlushNormalBlock(job->refinement.normal, fitted);
  for (auto _ : state) SolveCycleEquations(*job, fitted, 0.0);
  std::fclose(job->console.out);
  std::filesystem::current_path(previous);
}
BENCHMARK(BM_LargeJobSolve)->Unit(benchmark::kMillisecond);

// The Bragg R-factors of the large job once its points are calculated: each
// reflection's share of the observed pattern over its window, from the
// entries the pass kept of the reflections.
void BM_LargeJobBraggFactors(benchmark::State& state) {
  const auto previous = std::filesystem::current_path();
  auto job = MakeLargeJob(std::filesystem::temp_directory_path() / "corvinet-large-bragg-bench");
  auto work = std::make_unique<CycleWork>();
  work->threads = 1;
  CalculatePatterns(*job, *work, 1);
  const BraggProfile profile = PassProfile(*job, *work);
  for (auto _ : state) benchmark::DoNotOptimize(ComputeBraggFactors(*job, profile));
  std::fclose(job->console.out);
  std::filesystem::current_path(previous);
}
BENCHMARK(BM_LargeJobBraggFactors)->Unit(benchmark::kMillisecond);

}  // namespace
