// Benchmark of one least-squares pass of a monoclinic phase over 10 000 points: a plain phase, the
// generalized strain (Str 1, ten terms refined) and generalized strain with ellipsoidal size (Str
// 3, sixteen terms refined).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "bench_job.h"
#include "control/control_reading.h"
#include "io/file_set.h"
#include "records/profile_slots.h"
#include "refine/cycle_driver.h"
#include "refine/cycle_work.h"
#include "refine/parameter_families.h"
#include "run/defaults.h"

namespace {

using namespace corvinet;

// A monoclinic phase in profile matching with the TCH profile over 10 001
// points of 2theta, with the block of generalized terms of `str`.
std::unique_ptr<Job> MakeJob(const std::filesystem::path& dir, int str) {
  EnterBenchDirectory(dir);
  std::ofstream pcr("bench.pcr");
  pcr << "Broadening benchmark\n0 7 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
         "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 1 0\n"
         "1.5406 1.5444 0.5 60.0 8.0 0.8 0.0 10.0 0.0\n"
         "1 0.1 1 1 1 1 5.0 0.008 85.0 0 0\n0\n0.0 0 0.0 0 0.0 0 0 0 0\n"
         "100 0 0 0 0 0\n0 0 0 0 0 0\n"
         "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 "
      << str
      << " 0 0.0 0 7 0\nP 1 2/m 1\n"
         "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
         "0.01 -0.005 0.008 0.002 0.02 0.0 0.0 0\n0 0 0 0 0 0 0\n"
         "7.1 8.2 9.3 90 95 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
  if (str == 1 || str == 3) {
    pcr << "0.5 0.4 0.6 0.3 10\n0 0 0 0 0\n20 -10 5 15 -5\n0 0 0 0 0\n";
  }
  // Terms that leave the widths near those of the plain phase, so that the
  // peaks span as many points.
  if (str == 3) pcr << "0.00001 0.000008 0.000012 0.000002 -0.000002 0.000001\n0 0 0 0 0 0\n";
  pcr.close();
  auto job = ReadBenchJob("5.0 0.008 85.0", 10001);
  return job;
}

// Scale, U, V, W, X, Y, the four monoclinic cell terms, zero and the
// background, then the strain terms of Str 1 and 3 and the size terms of Str 3.
// With `idle` parameter numbers beyond them that no slot holds (the plain
// phase at the parameter count of the strain model).
void Refine(Job& job, int str, int idle = 0) {
  namespace Slot = ProfileSlot;
  PhasePattern& c = job.phases[1].pat[1];
  int L = 0;
  for (int s : {Slot::Scale, Slot::U, Slot::V, Slot::W, Slot::X, Slot::Y, 6, 7, 8, 10}) {
    c.PAC[s] = Codeword{++L, 1.0f};
  }
  job.patterns[1].GLBword[1] = Codeword{++L, 1.0f};
  job.patterns[1].GLBword[2] = Codeword{++L, 1.0f};
  if (str == 1 || str == 3) {
    for (int s = Slot::Str1; s <= Slot::Str10; ++s) c.PAC[s] = Codeword{++L, 1.0f};
  }
  if (str == 3) {
    for (int s = Slot::LorSiz; s <= Slot::Size6; ++s) c.PAC[s] = Codeword{++L, 1.0f};
  }
  job.run.MAXS = L + idle;
  BuildParameterFamilies(job);
}

void BM_BroadeningCyclePass(benchmark::State& state) {
  // -1: the plain phase with ten idle parameters, as many as Str 1 refines.
  const int arg = static_cast<int>(state.range(0));
  const int str = arg < 0 ? 0 : arg;
  const auto dir = std::filesystem::temp_directory_path() /
                   ("corvinet-broadening-bench-" + std::to_string(arg + 1));
  const auto previous = std::filesystem::current_path();
  auto job = MakeJob(dir, str);
  Refine(*job, str, arg < 0 ? 10 : 0);
  TimeOneThreadPasses(state, *job, previous);
}
// Str 0: the plain phase (-1 with ten idle parameters); 1: generalized
// strain; 3: generalized strain and size.
BENCHMARK(BM_BroadeningCyclePass)->Arg(0)->Arg(-1)->Arg(1)->Arg(3)->Unit(benchmark::kMillisecond);

}  // namespace
