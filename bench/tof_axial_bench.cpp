// Benchmarks of one least-squares pass of a time-of-flight pattern (10000 points, about 3000
// reflections, 60 parameters) and of an Npr 12 axial-divergence pattern (15000 points).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "bench_job.h"
#include "control/control_reading.h"
#include "io/file_set.h"
#include "records/reflection.h"
#include "refine/cycle_driver.h"
#include "refine/cycle_work.h"
#include "refine/parameter_families.h"
#include "run/defaults.h"

namespace {

using namespace corvinet;

// A triclinic phase in profile matching from 7000 to 25000 us (d 0.7 to 2.5 A).
std::unique_ptr<Job> MakeTofJob(const std::filesystem::path& dir) {
  EnterBenchDirectory(dir);
  std::ofstream pcr("bench.pcr");
  pcr << "TOF benchmark\n-1 9 1 0 0 0 0 0 0 0 0 0 0 0 0 1 0\n0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
         "15000.0 6.0 0\n"
         "1 0.1 1 1 1 1 7000.0 1.8 25000.0 0 0\n0\n0.0 0 10000.0 0 0.0 0 1.4142 0 0\n"
         "100 0 0 0 0 0\n0 0 0 0 0 0\n"
         "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 9 0\nP -1\n"
         "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
         "20.0 10.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
         "0.0 2.0 0.0 0.0 0.0\n0 0 0 0 0\n"
         "7.1 8.2 9.3 91 95 98\n0 0 0 0 0 0\n0 0 0.0 0.05 0.3 0.01\n0 0 0 0 0 0\n"
         "0.0 0.0 0.0 0.0\n";
  pcr.close();
  return ReadBenchJob("7000.0 1.8 25000.0", 10001);
}

// Profile slots, zero, Dtt1, Dtt2 and the background; the numbers beyond
// stand for parameters of a structure, refined but idle here.
void RefineTof(Job& job, int n) {
  const int slots[] = {3, 4, 5, 6, 7, 8, 9, 10, 11, 14, 35, 36, 37, 46, 47, 48};
  int L = 0;
  for (int s : slots) job.phases[1].pat[1].PAC[s] = Codeword{++L, 1.0f};
  for (int g : {1, 8, 9, 2, 3, 4, 5, 6, 7}) job.patterns[1].GLBword[g] = Codeword{++L, 1.0f};
  job.run.MAXS = n;
  BuildParameterFamilies(job);
}

void BM_TofCyclePass(benchmark::State& state) {
  const auto dir = std::filesystem::temp_directory_path() / "corvinet-tof-bench";
  const auto previous = std::filesystem::current_path();
  auto job = MakeTofJob(dir);
  RefineTof(*job, 60);
  TimeOneThreadPasses(state, *job, previous);
}
BENCHMARK(BM_TofCyclePass)->Unit(benchmark::kMillisecond);

// A triclinic phase with the axial-divergence profile from 5 to 80 degrees, 15000 points.
std::unique_ptr<Job> MakeAxialJob(const std::filesystem::path& dir) {
  EnterBenchDirectory(dir);
  std::ofstream pcr("bench.pcr");
  pcr << "Axial divergence benchmark\n0 12 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
         "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
         "1.5406 1.5406 0.0 60.0 8.0 0.0 0.0 0.0 0.0\n"
         "1 0.1 1 1 1 1 5.0 0.005 79.995 0 0\n0\n0.0 0 0.0 0 0.0 0 0 0 0\n"
         "100 0 0 0 0 0\n0 0 0 0 0 0\n"
         "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 12 0\nP -1\n"
         "1.0 0.3 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
         "0.0 0.0 0.003 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
         "7.1 8.2 9.3 91 95 98\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n"
         "0.03 0.0 0.02 0.0\n";
  pcr.close();
  return ReadBenchJob("5.0 0.005 79.995", 15000);
}

void BM_AxialDivergenceCyclePass(benchmark::State& state) {
  const auto dir = std::filesystem::temp_directory_path() / "corvinet-axial-bench";
  const auto previous = std::filesystem::current_path();
  auto job = MakeAxialJob(dir);
  const int slots[] = {5, 17, 41, 42, 6, 7, 8, 9, 10, 11};
  int L = 0;
  for (int s : slots) job->phases[1].pat[1].PAC[s] = Codeword{++L, 1.0f};
  job->patterns[1].GLBword[1] = Codeword{++L, 1.0f};
  job->run.MAXS = L;
  BuildParameterFamilies(*job);
  TimeOneThreadPasses(state, *job, previous);
}
BENCHMARK(BM_AxialDivergenceCyclePass)->Unit(benchmark::kMillisecond);

}  // namespace
