// Benchmark of one least-squares pass: 17000 points (the most that 2000 reflections leave), 150 or
// 300 refined parameters; and of one damped retry of a structure cycle next to its pass.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "bench_job.h"
#include "control/control_reading.h"
#include "format/fortran_format.h"
#include "io/file_set.h"
#include "records/reflection.h"
#include "refine/cycle_damping.h"
#include "refine/cycle_driver.h"
#include "refine/cycle_stop_tests.h"
#include "refine/cycle_work.h"
#include "refine/parameter_families.h"
#include "refine/point_calculation.h"
#include "run/defaults.h"

namespace {

using namespace corvinet;

void BM_CyclePass(benchmark::State& state) {
  const auto dir = std::filesystem::temp_directory_path() / "corvinet-cycle-bench";
  const auto previous = std::filesystem::current_path();
  auto job = MakeTriclinicMatchJob(dir, "Cycle benchmark", "7.1 8.2 9.3 91 95 98");
  RefineTriclinicMatch(*job, static_cast<int>(state.range(0)));
  TimeOneThreadPasses(state, *job, previous);
}
BENCHMARK(BM_CyclePass)->Arg(150)->Arg(300)->Unit(benchmark::kMillisecond);

// An acentric monoclinic structure of 20 atoms over the same 17000 points,
// with the coordinates and displacements of every atom refined (80
// parameters) besides scale, widths, cell, zero and background.
std::unique_ptr<Job> MakeStructureJob(const std::filesystem::path& dir) {
  EnterBenchDirectory(dir);
  std::ofstream pcr("bench.pcr");
  pcr << "Structure cycle benchmark\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
         "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 1 0\n"
         "1.5406 1.5444 0.5 60.0 8.0 0.8 0.0 10.0 0.0\n"
         "1 0.1 1 1 1 1 5.0 0.00475 85.74525 0 0\n90\n0.0 891.0 0.0 0 0.0 0 0 0 0\n"
         "100 0 0 0 0 0\n901.0 0 0 0 0 0\n"
         "Phase\n20 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0\nP 1 21 1\n";
  const char* types[] = {"O", "C", "N"};
  for (int i = 0; i < 20; ++i) {
    const float x = 0.03f + 0.047f * static_cast<float>(i);
    const float y = 0.11f + 0.031f * static_cast<float>((7 * i) % 20);
    const float z = 0.07f + 0.043f * static_cast<float>((3 * i) % 20);
    pcr << Fmt("(A,I2.2,1X,A4,4F9.5,A)", "A", i, types[i % 3], x, y, z, 1.0f, " 1.0 0 0 0") << "\n";
    const int n = 4 * i;
    pcr << Fmt("(4F8.2,A)", 10.0f * (n + 1) + 1.0f, 10.0f * (n + 2) + 1.0f, 10.0f * (n + 3) + 1.0f,
               10.0f * (n + 4) + 1.0f, " 0.0")
        << "\n";
  }
  pcr << "1.0 0.0 0.0 0.0 0.0 0.0 0\n811.0 0 0 0 0 0\n"
         "0.01 -0.005 0.008 0.01 0.0 0.0 0.0 0\n821.0 831.0 841.0 851.0 0 0 0\n"
         "8.1 9.2 10.3 90 97 90\n861.0 871.0 881.0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
  pcr.close();
  auto job = ReadBenchJob("5.0 0.00475 85.74525", 17000);
  BuildParameterFamilies(*job);
  return job;
}

void BM_StructureCyclePass(benchmark::State& state) {
  const auto dir = std::filesystem::temp_directory_path() / "corvinet-structure-bench";
  const auto previous = std::filesystem::current_path();
  auto job = MakeStructureJob(dir);
  TimeOneThreadPasses(state, *job, previous);
}
BENCHMARK(BM_StructureCyclePass)->Unit(benchmark::kMillisecond);

// The equations of the pass in their 32-bit form, as the cycle stores them
// before it solves.
void StorePassEquations(Job& job) {
  NormalMatrix& n = job.refinement.normal;
  const int fitted = FittedCount(job);
  FlushNormalBlock(n, fitted);
  for (int i = 1; i <= fitted; ++i) {
    n.B[i] = static_cast<float>(n.SumB[i]);
    for (int j = i; j <= fitted; ++j) n.A(i, j) = n.A(j, i) = static_cast<float>(n.SumA(i, j));
  }
}

// One retry of the structure cycle: the restore of the state kept after its
// pass, the damped solution of the shifts and the undamped one of the
// covariance. The keeping of the state, done once per accepted cycle, is
// timed apart (the "keep_ms" counter).
void BM_StructureCycleRetry(benchmark::State& state) {
  const auto dir = std::filesystem::temp_directory_path() / "corvinet-retry-bench";
  const auto previous = std::filesystem::current_path();
  auto job = MakeStructureJob(dir);
  auto work = std::make_unique<CycleWork>();
  work->threads = 1;  // the figures are one core's
  CalculatePatterns(*job, *work, 1);
  StorePassEquations(*job);
  const int fitted = FittedCount(*job);
  CycleDamping damping;
  double keepSeconds = 0.0;
  for (auto _ : state) {
    state.PauseTiming();
    const auto start = std::chrono::steady_clock::now();
    damping.Keep(*job, *work, 1);
    keepSeconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    state.ResumeTiming();
    damping.Retry(*job, *work, ShiftRejection::kChi2Up);
    SolveCycleEquations(*job, fitted, damping.Lambda());
    SolveCycleEquations(*job, fitted, 0.0);
  }
  state.counters["keep_ms"] = 1000.0 * keepSeconds / static_cast<double>(state.iterations());
  state.counters["parameters"] = fitted;
  std::fclose(job->console.out);
  std::filesystem::current_path(previous);
}
BENCHMARK(BM_StructureCycleRetry)->Unit(benchmark::kMillisecond);

}  // namespace
