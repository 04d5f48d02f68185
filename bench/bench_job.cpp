// The job of a benchmark: flat data and the control file of the current directory, read.
#include "bench_job.h"

#include <cstdio>
#include <fstream>

#include "control/control_reading.h"
#include "io/file_set.h"
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

}  // namespace corvinet
