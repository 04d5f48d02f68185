// Benchmarks of the background: refills of 20000 points, the Fourier filter, point derivatives.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "observations/background.h"
#include "observations/fourier.h"
#include "records/job.h"

namespace corvinet {
namespace {

constexpr int kPoints = DimensionLimits::kDefaultIDSZ;
constexpr int kFilterPoints = DimensionLimits::kDefaultIDSZ / 2;  // the most the filter accepts

// A job whose console goes nowhere, with pattern 1 on a 2theta grid of npts points.
std::unique_ptr<Job> MakeJob(int typed, int npts) {
  auto job = std::make_unique<Job>();
  job->console.out = std::fopen("/dev/null", "w");
  Pattern& p = job->patterns[1];
  p.NBCKGD = typed < 0 ? -typed : typed;
  p.backgroundSign = typed < 0 ? -1 : 1;
  p.THMIN = 5.0f;
  p.STEP = 120.0f / static_cast<float>(npts);
  p.NPTS = npts;
  p.equalStep = 1;
  p.Bkpos = 60.0f;
  p.LAMBDA[1] = 1.5406f;
  for (int i = 1; i <= npts; ++i) {
    p.X[i] = p.THMIN + static_cast<float>(i - 1) * p.STEP;
    p.Ytotal[i] = 200.0f + 50.0f * std::sin(0.05f * p.X[i]) + 30.0f * std::sin(3.0f * p.X[i]);
    p.Ycalc[i] = 20.0f * std::sin(3.0f * p.X[i]);
  }
  for (int j = 0; j < 6; ++j) {
    p.GLB[2 + j] = 100.0f / static_cast<float>(j + 1);
    p.GLBword[2 + j] = Codeword{j + 1, 1.0f};
  }
  for (int n = 1; n <= 6; ++n) {
    p.GLB[9 + n] = 10.0f;
    p.GLB[15 + n] = 1.5f * static_cast<float>(n);
    p.GLBword[9 + n] = Codeword{6 + n, 1.0f};
    p.GLBword[15 + n] = Codeword{12 + n, 1.0f};
  }
  const int points = p.NBCKGD;
  if (typed >= 2 || typed <= -4) {
    for (int k = 1; k <= points; ++k) {
      p.BackPos[k] = 5.0f + 120.0f * static_cast<float>(k - 1) / static_cast<float>(points - 1);
      p.BackInt[k] = 150.0f + 40.0f * std::cos(0.3f * static_cast<float>(k));
      p.BackIntCode[k] = static_cast<float>(10 * (20 + k) + 1);
    }
  }
  p.FourierWindow = 40.0f;
  return job;
}

void BM_FillPolynomial(benchmark::State& state) {
  auto job = MakeJob(0, kPoints);
  for (auto _ : state) {
    FillBackground(*job, 1);
    benchmark::DoNotOptimize(job->patterns[1].Backg[kPoints]);
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(BM_FillPolynomial);

void BM_FillPolynomialAndDebye(benchmark::State& state) {
  auto job = MakeJob(-1, kPoints);
  for (auto _ : state) {
    FillBackground(*job, 1);
    benchmark::DoNotOptimize(job->patterns[1].Backg[kPoints]);
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(BM_FillPolynomialAndDebye);

// 40 points, all heights refined: the spline and its 40 gain rows.
void BM_FillSpline(benchmark::State& state) {
  auto job = MakeJob(-40, kPoints);
  for (auto _ : state) {
    FillBackground(*job, 1);
    benchmark::DoNotOptimize(job->patterns[1].Backg[kPoints]);
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(BM_FillSpline);

void BM_FourierFilter(benchmark::State& state) {
  auto job = MakeJob(-2, kFilterPoints);
  for (auto _ : state) {
    job->patterns[1].Backg.Fill(0.0f);
    FourierFilter(*job, 1, job->patterns[1].Ycalc.ptr());
    benchmark::DoNotOptimize(job->patterns[1].Backg[kFilterPoints]);
  }
  state.SetItemsProcessed(state.iterations() * kFilterPoints);
}
BENCHMARK(BM_FourierFilter);

// One call per point, over all points, as the point loop makes them.
void DerivativesOverAllPoints(benchmark::State& state, int typed) {
  auto job = MakeJob(typed, kPoints);
  FillBackground(*job, 1);
  const Pattern& p = job->patterns[1];
  DerivativeVector derivative(DimensionLimits::kDefaultMSZ);
  for (auto _ : state) {
    for (int i = 1; i <= kPoints; ++i) BackgroundDerivatives(p, i, 1.0f, derivative);
    benchmark::DoNotOptimize(derivative[1]);
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_DerivativesPolynomial(benchmark::State& state) {
  DerivativesOverAllPoints(state, 0);
}
BENCHMARK(BM_DerivativesPolynomial);

void BM_DerivativesPolynomialAndDebye(benchmark::State& state) {
  DerivativesOverAllPoints(state, -1);
}
BENCHMARK(BM_DerivativesPolynomialAndDebye);

void BM_DerivativesSpline(benchmark::State& state) {
  DerivativesOverAllPoints(state, -40);
}
BENCHMARK(BM_DerivativesSpline);

}  // namespace
}  // namespace corvinet
