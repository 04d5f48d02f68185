// Benchmark of the accumulation of the normal matrix alone: the program's blocked kernel against
// a BLAS rank-k update (dsyrk, ssyrk) on the same rows, when OpenBLAS is installed.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

#include "records/normal_matrix.h"
#include "refine/point_calculation.h"

#ifdef CORVINET_HAVE_OPENBLAS
#include <cblas.h>
extern "C" void openblas_set_num_threads(int);
#endif

namespace {

using namespace corvinet;

// Dense rows of `points` points over `fitted` parameters, with weights and residuals.
struct Rows {
  int points = 0;
  int fitted = 0;
  std::vector<float> d, w, r;
  std::vector<int> end;
};

Rows MakeRows(int points, int fitted) {
  Rows x;
  x.points = points;
  x.fitted = fitted;
  x.d.resize(static_cast<std::size_t>(points) * fitted);
  for (std::size_t i = 0; i < x.d.size(); ++i) x.d[i] = std::sin(0.37f * static_cast<float>(i));
  x.w.assign(static_cast<std::size_t>(points), 0.01f);
  x.r.assign(static_cast<std::size_t>(points), 1.0f);
  x.end.assign(static_cast<std::size_t>(points), fitted);
  return x;
}

// The program's kernel: blocks of 16 points summed in 32 bits, then in double.
void BM_AccumulateKernel(benchmark::State& state) {
  const Rows x = MakeRows(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  auto normal = std::make_unique<NormalMatrix>();
  std::vector<int> touched(static_cast<std::size_t>(x.fitted) + 1, x.fitted);
  for (auto _ : state) {
    PointRows rows{x.d.data(), x.fitted, x.w.data(), x.r.data(), x.end.data(), x.points, 0};
    AddPointRows(*normal, rows, 0, x.fitted, touched.data());
    benchmark::DoNotOptimize(normal->SumA(1, 1));
  }
}
BENCHMARK(BM_AccumulateKernel)
    ->Args({14000, 87})
    ->Args({17000, 300})
    ->Unit(benchmark::kMillisecond);

#ifdef CORVINET_HAVE_OPENBLAS
// dsyrk over blocks of `block` points of rows scaled by sqrt(weight), in double.
void BM_AccumulateDsyrk(benchmark::State& state) {
  openblas_set_num_threads(1);
  const Rows x = MakeRows(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  const int block = static_cast<int>(state.range(2));
  const int n = x.fitted;
  std::vector<double> c(static_cast<std::size_t>(n) * n, 0.0);
  std::vector<double> a(static_cast<std::size_t>(block) * n);
  for (auto _ : state) {
    for (int p0 = 0; p0 < x.points; p0 += block) {
      const int k = std::min(block, x.points - p0);
      for (int p = 0; p < k; ++p) {
        const double s = std::sqrt(static_cast<double>(x.w[static_cast<std::size_t>(p0 + p)]));
        const float* d = x.d.data() + static_cast<std::size_t>(p0 + p) * n;
        for (int m = 0; m < n; ++m) a[static_cast<std::size_t>(p) * n + m] = s * d[m];
      }
      cblas_dsyrk(CblasRowMajor, CblasUpper, CblasTrans, n, k, 1.0, a.data(), n, 1.0, c.data(), n);
    }
    benchmark::DoNotOptimize(c[0]);
  }
}
BENCHMARK(BM_AccumulateDsyrk)
    ->Args({14000, 87, 16})
    ->Args({14000, 87, 256})
    ->Args({17000, 300, 256})
    ->Unit(benchmark::kMillisecond);

// ssyrk in 32 bits over blocks of 16 points, each block then added to double sums.
void BM_AccumulateSsyrk(benchmark::State& state) {
  openblas_set_num_threads(1);
  const Rows x = MakeRows(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  constexpr int kBlock = 16;
  const int n = x.fitted;
  std::vector<float> c(static_cast<std::size_t>(n) * n, 0.0f);
  std::vector<double> sum(static_cast<std::size_t>(n) * n, 0.0);
  std::vector<float> a(static_cast<std::size_t>(kBlock) * n);
  for (auto _ : state) {
    for (int p0 = 0; p0 < x.points; p0 += kBlock) {
      const int k = std::min(kBlock, x.points - p0);
      for (int p = 0; p < k; ++p) {
        const float s = std::sqrt(x.w[static_cast<std::size_t>(p0 + p)]);
        const float* d = x.d.data() + static_cast<std::size_t>(p0 + p) * n;
        for (int m = 0; m < n; ++m) a[static_cast<std::size_t>(p) * n + m] = s * d[m];
      }
      cblas_ssyrk(CblasRowMajor, CblasUpper, CblasTrans, n, k, 1.0f, a.data(), n, 0.0f, c.data(),
                  n);
      for (int L = 0; L < n; ++L) {
        for (int m = L; m < n; ++m) sum[static_cast<std::size_t>(L) * n + m] += c[L * n + m];
      }
    }
    benchmark::DoNotOptimize(sum[0]);
  }
}
BENCHMARK(BM_AccumulateSsyrk)->Args({14000, 87})->Args({17000, 300})->Unit(benchmark::kMillisecond);
#endif

}  // namespace
