// Benchmark of the field-mask scanner on a typical control-file line.
#include <benchmark/benchmark.h>

#include <memory>

#include "io/field_reader.h"

namespace {

void BM_FindFmtGlobalLine(benchmark::State& state) {
  auto job = std::make_unique<corvinet::Job>();
  const std::string text = "  -0.0123  11.00    0.0000   0.00   0.1234  21.00   1.5406  0.00   0";
  std::string line;
  std::string mask;
  std::string format;
  format.reserve(132);
  int position = 0;
  int lineNumber = 0;
  int error = 0;
  for (auto _ : state) {
    line = text;
    mask = "ffffffffi";
    corvinet::FindFMT(*job, 0, line, mask, format, position, lineNumber, error);
    benchmark::DoNotOptimize(format.data());
  }
}
BENCHMARK(BM_FindFmtGlobalLine);

void BM_ScanAndReadGlobalLine(benchmark::State& state) {
  auto job = std::make_unique<corvinet::Job>();
  const std::string text = "  -0.0123  11.00    0.0000   0.00   0.1234  21.00   1.5406  0.00   0";
  float v[8];
  int more = 0;
  for (auto _ : state) {
    std::string line = text;
    std::string mask = "ffffffffi";
    std::string format;
    int position = 0, lineNumber = 0, error = 0;
    corvinet::FindFMT(*job, 0, line, mask, format, position, lineNumber, error);
    const corvinet::ReadTarget targets[] = {&v[0], &v[1], &v[2], &v[3], &v[4],
                                            &v[5], &v[6], &v[7], &more};
    benchmark::DoNotOptimize(corvinet::ReadFormattedLine(format, line, targets));
  }
}
BENCHMARK(BM_ScanAndReadGlobalLine);

}  // namespace
