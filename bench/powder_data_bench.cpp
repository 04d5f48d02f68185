// Benchmark of the read of a 20000-point free-format data file (INSTR 0).
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "observations/powder_data.h"

namespace {

// A range line and 20000 intensities, ten a line, in a scratch directory.
std::filesystem::path WriteFreeFormatFile() {
  std::string pattern = (std::filesystem::temp_directory_path() / "corvinet-bench-XXXXXX").string();
  const char* made = ::mkdtemp(pattern.data());
  const std::filesystem::path dir = made != nullptr ? made : std::filesystem::temp_directory_path();
  std::ofstream out(dir / "bench.dat");
  out << "  5.0  0.005  104.995\n";  // trunc(99.995/0.005 + 1.5) = 20000 points
  for (int i = 1; i <= 20000; ++i) {
    out << "  " << (1000 + (i * 37) % 9000) << ".0" << (i % 10 == 0 ? "\n" : "");
  }
  return dir;
}

void BM_ReadFreeFormatTwentyThousandPoints(benchmark::State& state) {
  const std::filesystem::path dir = WriteFreeFormatFile();
  const std::filesystem::path previous = std::filesystem::current_path();
  std::filesystem::current_path(dir);
  auto job = std::make_unique<corvinet::Job>();
  job->console.out = std::fopen("/dev/null", "w");
  job->patterns[1].DatCode = "bench";
  job->patterns[1].INSTR = 0;
  for (auto _ : state) {
    corvinet::ReadPattern(*job, 1);
    benchmark::DoNotOptimize(job->patterns[1].Ytotal[20000]);
  }
  if (job->patterns[1].NPTS != 20000) state.SkipWithError("the file did not give 20000 points");
  state.SetItemsProcessed(state.iterations() * 20000);
  std::fclose(job->console.out);
  std::filesystem::current_path(previous);
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_ReadFreeFormatTwentyThousandPoints)->Unit(benchmark::kMillisecond);

}  // namespace
