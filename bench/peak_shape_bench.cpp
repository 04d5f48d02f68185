// Benchmarks of the peak at one point (codes 6, 7, 8, 12) and of the per-reflection set-up.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>

#include "model/peak_shape.h"
#include "model/peak_shape_setup.h"
#include "model/tch_widths.h"
#include "records/job.h"
#include "records/profile_slots.h"

namespace corvinet {
namespace {

constexpr int kPoints = 256;
constexpr float kWdt = 8.0f;
constexpr float kTwoTheta = 47.3f;

std::unique_ptr<Job> MakeJob() {
  auto job = std::make_unique<Job>();
  job->console.out = std::fopen("/dev/null", "w");
  auto& par = job->phases[1].pat[1].PAR;
  par[17] = 1.6f;    // eta0 or m0
  par[15] = 0.002f;  // X
  par[16] = 0.01f;   // Y
  par[49] = 0.5f;    // eta of the right half
  par[50] = 0.001f;  // its angle term
  job->patterns[1].GLB[1] = -0.01f;
  return job;
}

PeakWidths WidthsFor(int code) {
  if (code == 8) {
    TchState t;
    t.HG = 0.08f;
    t.HL = 0.05f;
    TchWidths(TchMode::kWidths, t);
    return {t.H, t.HG, t.HL, t.eta};
  }
  if (code == 12) return {0.09f, 0.09f, 0.12f, 0.0f};
  return {0.1f, 0.1f, 0.0f, 0.0f};
}

PeakShape ShapeFor(Job& job, int code) {
  ReflectionShapeInput in;
  in.code = ProfileCodeOf(code);
  in.twoTheta = kTwoTheta;
  in.tanTheta = 0.4378f;
  in.widths = WidthsFor(code);
  if (code == 6 || code == 12) job.phases[1].pat[1].PAR[corvinet::ProfileSlot::Shape1] = 0.3f;
  return PreparePeakShape(job.patterns[1], job.phases[1].pat[1].PAR, job.numericalProfile, in);
}

// The abscissae of the points under the peak, spread over its base.
void FillPoints(const PeakShape& s, float* x) {
  const float reach = kWdt * (s.code == ProfileCode::kSplitPseudoVoigt ? s.H2 : s.H);
  for (int i = 0; i < kPoints; ++i) {
    x[i] = s.position - reach + 2.0f * reach * (static_cast<float>(i) + 0.5f) / kPoints;
  }
}

void CountCalls(benchmark::State& state) {
  state.counters["ns_per_call"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kPoints * 1e-9,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_ProfileWithSlopes(benchmark::State& state) {
  auto job = MakeJob();
  const PeakShape shape = ShapeFor(*job, static_cast<int>(state.range(0)));
  float x[kPoints];
  FillPoints(shape, x);
  for (auto _ : state) {
    float sum = 0.0f;
    for (int i = 0; i < kPoints; ++i) {
      ProfilePoint p;
      ProfileSlopes d;
      if (PointInBase(shape, x[i], kWdt, p)) {
        sum += ProfileValueWithSlopes(shape, p, d) + p.dOmega + d.position + d.width + d.eta + d.m +
               d.eta2 + d.width2;
      }
    }
    benchmark::DoNotOptimize(sum);
  }
  CountCalls(state);
}
BENCHMARK(BM_ProfileWithSlopes)->Arg(6)->Arg(7)->Arg(8)->Arg(12);

void BM_ProfileValue(benchmark::State& state) {
  auto job = MakeJob();
  const PeakShape shape = ShapeFor(*job, static_cast<int>(state.range(0)));
  float x[kPoints];
  FillPoints(shape, x);
  for (auto _ : state) {
    float sum = 0.0f;
    for (int i = 0; i < kPoints; ++i) {
      ProfilePoint p;
      if (PointInBase(shape, x[i], kWdt, p)) sum += ProfileValue(shape, p) + p.dOmega;
    }
    benchmark::DoNotOptimize(sum);
  }
  CountCalls(state);
}
BENCHMARK(BM_ProfileValue)->Arg(6)->Arg(7)->Arg(8)->Arg(12);

// The per-reflection set-up, which the Pearson VII exponent makes the costliest.
void BM_PreparePeakShape(benchmark::State& state) {
  auto job = MakeJob();
  const int code = static_cast<int>(state.range(0));
  for (auto _ : state) {
    PeakShape s = ShapeFor(*job, code);
    benchmark::DoNotOptimize(s);
  }
}
BENCHMARK(BM_PreparePeakShape)->Arg(6)->Arg(7)->Arg(8)->Arg(12);

}  // namespace
}  // namespace corvinet
