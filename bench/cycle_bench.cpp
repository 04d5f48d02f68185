// Benchmark of one least-squares pass: 17000 points (the most that 2000 reflections leave), 150 or
// 300 refined parameters.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "control/control_reading.h"
#include "format/fortran_format.h"
#include "io/file_set.h"
#include "records/reflection.h"
#include "refine/cycle_driver.h"
#include "refine/cycle_work.h"
#include "refine/parameter_families.h"
#include "run/defaults.h"

namespace {

using namespace corvinet;

// Writes flat data over 17000 points and reads the control file bench.pcr
// of the current directory.
std::unique_ptr<Job> ReadBenchJob() {
  std::ofstream dat("bench.dat");
  dat << "5.0 0.00475 85.74525\n";
  for (int i = 1; i <= 17000; ++i) dat << (i % 10 == 0 ? "100\n" : "100 ");
  dat.close();
  auto job = std::make_unique<Job>();
  job->console.out = std::fopen("bench.console", "w");
  job->driver.PcrCode = "bench";
  job->driver.DatCode = "bench";
  OpenFiles(*job, FileKind::kControl, 0, 0);
  OpenFiles(*job, FileKind::kOutput, 0, 0);
  ResetDefaults(*job);
  ReadControlFile(*job);
  return job;
}

// A triclinic phase in profile matching over 17000 points of 2theta.
std::unique_ptr<Job> MakeJob(const std::filesystem::path& dir) {
  std::filesystem::create_directories(dir);
  std::filesystem::current_path(dir);
  std::ofstream pcr("bench.pcr");
  pcr << "Cycle benchmark\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 1 0\n"
         "1.5406 1.5444 0.5 60.0 8.0 0.8 0.0 10.0 0.0\n"
         "1 0.1 1 1 1 1 5.0 0.00475 85.74525 0 0\n0\n0.0 0 0.0 0 0.0 0 0 0 0\n"
         "100 0 0 0 0 0\n0 0 0 0 0 0\n"
         "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP -1\n"
         "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
         "0.01 -0.005 0.008 0.01 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
         "7.1 8.2 9.3 91 95 98\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
  pcr.close();
  auto job = ReadBenchJob();
  return job;
}

// Gives the phase and pattern parameters numbers 1..n; numbers beyond the
// real slots stand for atom parameters of a structure, refined but idle here.
void Refine(Job& job, int n) {
  const int slots[] = {1, 3, 4, 5, 6, 7, 8, 9, 10, 11, 15, 17};
  int L = 0;
  for (int s : slots) job.phases[1].pat[1].PAC[s] = Codeword{++L, 1.0f};
  job.patterns[1].GLBword[1] = Codeword{++L, 1.0f};
  job.patterns[1].GLBword[2] = Codeword{++L, 1.0f};
  job.run.MAXS = n;
  BuildParameterFamilies(job);
}

void BM_CyclePass(benchmark::State& state) {
  const auto dir = std::filesystem::temp_directory_path() / "corvinet-cycle-bench";
  const auto previous = std::filesystem::current_path();
  auto job = MakeJob(dir);
  Refine(*job, static_cast<int>(state.range(0)));
  auto work = std::make_unique<CycleWork>();
  for (auto _ : state) CalculatePatterns(*job, *work, 1);
  state.counters["reflections"] = job->patterns[1].reflections.total;
  state.counters["points"] = job->patterns[1].NPTS;
  std::fclose(job->console.out);
  std::filesystem::current_path(previous);
}
BENCHMARK(BM_CyclePass)->Arg(150)->Arg(300)->Unit(benchmark::kMillisecond);

// An acentric monoclinic structure of 20 atoms over the same 17000 points,
// with the coordinates and displacements of every atom refined (80
// parameters) besides scale, widths, cell, zero and background.
std::unique_ptr<Job> MakeStructureJob(const std::filesystem::path& dir) {
  std::filesystem::create_directories(dir);
  std::filesystem::current_path(dir);
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
  auto job = ReadBenchJob();
  BuildParameterFamilies(*job);
  return job;
}

void BM_StructureCyclePass(benchmark::State& state) {
  const auto dir = std::filesystem::temp_directory_path() / "corvinet-structure-bench";
  const auto previous = std::filesystem::current_path();
  auto job = MakeStructureJob(dir);
  auto work = std::make_unique<CycleWork>();
  for (auto _ : state) CalculatePatterns(*job, *work, 1);
  state.counters["reflections"] = job->patterns[1].reflections.total;
  state.counters["points"] = job->patterns[1].NPTS;
  state.counters["parameters"] = job->run.MAXS;
  std::fclose(job->console.out);
  std::filesystem::current_path(previous);
}
BENCHMARK(BM_StructureCyclePass)->Unit(benchmark::kMillisecond);

}  // namespace
