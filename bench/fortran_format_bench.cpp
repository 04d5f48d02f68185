// Benchmarks writing and reading a typical data line under "(F10.4,2F12.2)".
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "format/fortran_format.h"

namespace corvinet {
namespace {

constexpr const char* kFormat = "(F10.4,2F12.2)";

void BM_FormatCompile(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(CompileFormat(kFormat));
}
BENCHMARK(BM_FormatCompile);

void BM_FormatWriteCompiled(benchmark::State& state) {
  const CompiledFormat format = CompileFormat(kFormat);
  double angle = 10.0;
  for (auto _ : state) {
    const FormatValue values[] = {angle, 1234.5678, -87.125};
    benchmark::DoNotOptimize(FormatRecords(format, values));
    angle += 0.02;
  }
}
BENCHMARK(BM_FormatWriteCompiled);

void BM_FormatWriteText(benchmark::State& state) {
  double angle = 10.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(Fmt(kFormat, angle, 1234.5678, -87.125));
    angle += 0.02;
  }
}
BENCHMARK(BM_FormatWriteText);

void BM_FormatReadCompiled(benchmark::State& state) {
  const CompiledFormat format = CompileFormat(kFormat);
  const std::string record = "   10.0200     1234.57      -87.13";
  double a = 0, b = 0, c = 0;
  const ReadTarget targets[] = {&a, &b, &c};
  const NextRecord none;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ReadFormatted(format, record, none, targets));
    benchmark::DoNotOptimize(a + b + c);
  }
}
BENCHMARK(BM_FormatReadCompiled);

void BM_FormatReadLine(benchmark::State& state) {
  const std::string record = "   10.0200     1234.57      -87.13";
  double a = 0, b = 0, c = 0;
  const ReadTarget targets[] = {&a, &b, &c};
  for (auto _ : state) {
    benchmark::DoNotOptimize(ReadFormattedLine(kFormat, record, targets));
    benchmark::DoNotOptimize(a + b + c);
  }
}
BENCHMARK(BM_FormatReadLine);

void BM_FormatReadListLine(benchmark::State& state) {
  const std::string record = "   10.0200     1234.57      -87.13";
  double a = 0, b = 0, c = 0;
  const ReadTarget targets[] = {&a, &b, &c};
  for (auto _ : state) {
    benchmark::DoNotOptimize(ReadListLine(record, targets));
    benchmark::DoNotOptimize(a + b + c);
  }
}
BENCHMARK(BM_FormatReadListLine);

}  // namespace
}  // namespace corvinet
