// The job of a benchmark: flat data and the control file of the current directory, read.
#include "bench_job.h"

#include <cstdio>
#include <fstream>

#include "control/control_reading.h"
#include "io/file_set.h"
#include "refine/cycle_driver.h"
#include "refine/cycle_work.h"
#include "refine/parameter_families.h"
#include "run/defaults.h"

namespace corvinet {

void EnterBenchDirectory(const std::filesystem::path& dir) {
  std::filesystem::create_directories(dir);
  std::filesystem::current_path(dir);
}

std::unique_ptr<Job> ReadBenchJob(const std::string& range, int points) {
  std::ofstream dat("bench.dat");
  dat << range << "\n";
  for (int i = 1; i <= points; ++i) dat << (i % 10 == 0 ? "100\n" : "100 ");
  dat.close();
  return ReadBenchControl();
}

std::unique_ptr<Job> ReadBenchControl() {
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

std::unique_ptr<Job> MakeTriclinicMatchJob(const std::filesystem::path& dir,
                                           const std::string& title, const std::string& cell) {
  EnterBenchDirectory(dir);
  std::ofstream pcr("bench.pcr");
  pcr << title << "\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 1 0\n"
      << "1.5406 1.5444 0.5 60.0 8.0 0.8 0.0 10.0 0.0\n"
         "1 0.1 1 1 1 1 5.0 0.00475 85.74525 0 0\n0\n0.0 0 0.0 0 0.0 0 0 0 0\n"
         "100 0 0 0 0 0\n0 0 0 0 0 0\n"
         "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP -1\n"
         "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
         "0.01 -0.005 0.008 0.01 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
      << cell << "\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
  pcr.close();
  return ReadBenchJob("5.0 0.00475 85.74525", 17000);
}

void RefineTriclinicMatch(Job& job, int n) {
  const int slots[] = {1, 3, 4, 5, 6, 7, 8, 9, 10, 11, 15, 17};
  int L = 0;
  for (int s : slots) job.phases[1].pat[1].PAC[s] = Codeword{++L, 1.0f};
  job.patterns[1].GLBword[1] = Codeword{++L, 1.0f};
  job.patterns[1].GLBword[2] = Codeword{++L, 1.0f};
  job.run.MAXS = n;
  BuildParameterFamilies(job);
}

void TimeOneThreadPasses(benchmark::State& state, Job& job, const std::filesystem::path& previous) {
  auto work = std::make_unique<CycleWork>();
  work->threads = 1;
  for (auto _ : state) CalculatePatterns(job, *work, 1);
  state.counters["reflections"] = job.patterns[1].reflections.total;
  state.counters["points"] = job.patterns[1].NPTS;
  state.counters["parameters"] = job.run.MAXS;
  std::fclose(job.console.out);
  std::filesystem::current_path(previous);
}

}  // namespace corvinet
