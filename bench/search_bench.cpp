// Benchmark of Monte Carlo search trials per second: PbSO4 (5 atoms, 400 reflections) and a
// 20-atom P 21/c phase (2000 reflections), on one thread and on every core.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "bench_job.h"
#include "control/control_reading.h"
#include "format/fortran_format.h"
#include "io/file_set.h"
#include "run/defaults.h"
#include "search/search_run.h"

namespace {

using namespace corvinet;

struct Cell {
  double a, b, c, beta;  // degrees
};

// The `count` reflections of lowest sin(theta)/lambda with h from -H (or 0)
// to H and k, l from 0, written as a single-crystal F² list.
std::string IntensityList(const Cell& cell, bool negativeH, int count) {
  struct Hkl {
    int h, k, l;
    double q;
  };
  const double sb = std::sin(cell.beta * M_PI / 180.0), cb = std::cos(cell.beta * M_PI / 180.0);
  std::vector<Hkl> all;
  for (int h = negativeH ? -20 : 0; h <= 20; ++h) {
    for (int k = 0; k <= 20; ++k) {
      for (int l = 0; l <= 20; ++l) {
        if (h == 0 && k == 0 && l == 0) continue;
        const double q = (h * h / (cell.a * cell.a) + l * l / (cell.c * cell.c) -
                          2.0 * h * l * cb / (cell.a * cell.c)) /
                             (sb * sb) +
                         k * k / (cell.b * cell.b);
        all.push_back({h, k, l, q});
      }
    }
  }
  std::stable_sort(all.begin(), all.end(), [](const Hkl& x, const Hkl& y) { return x.q < y.q; });
  std::string s = "bench list\n(3i4,2f12.2,i4,3f8.0)\n1.54056 0 1\n";
  for (int i = 0; i < count; ++i) {
    const float f2 = 100.0f + static_cast<float>((37 * i) % 900);
    s += Fmt("(3I4,2F12.2,I4,3F8.0)", all[i].h, all[i].k, all[i].l, f2, 0.05f * f2, 1, 0.0f, 0.0f,
             0.0f);
    s += "\n";
  }
  return s;
}

// The head of the control file; Nre gives the count of limit lines.
std::string Head(int refined) {
  const std::string count = Fmt("(I4)", refined);
  return "COMM search bench\n"
         "!Job Npr Nph Nba Nex Nsc Nor Dum Iwg Ilo Ias Res Ste Nre Cry Uni Cor\n"
         "   0   0   1   0   0   0   0   0   0   0   0   0   0" +
         count +
         "   2   0   0\n"
         "!Ipr Ppl Ioc Mat Pcr Ls1 Ls2 Ls3 Syo Prf Ins Rpa Sym Hkl Fou Sho Ana\n"
         "   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   0   0\n"
         " 20  0.01  1.00  1.00  1.00  1.00     10.0000   0.0250   159.0000   0.000   0.000\n!\n" +
         count + "    !Number of refined parameters\n";
}

std::string Tail(const Cell& cell, const std::string& limits) {
  return "  1.0000 1.0 1.0 1.0 1.0 1.0\n   0.00 0.00 0.00 0.00 0.00 0.00\n"
         "  0.0 0.0 0.0 0.0 0.0 0.0 0.0\n  0.0 0.0 0.0 0.0 0.0 0.0 0.0\n" +
         Fmt("(6F11.5)", cell.a, cell.b, cell.c, 90.0, cell.beta, 90.0) +
         "\n   0.00000  0.00000  0.00000   0.00000   0.00000   0.00000\n"
         "  0.00000  0.00000  0.00000  0.00000  0.00000\n"
         "   0.00     0.00     0.00     0.00     0.00\n" +
         limits + "    1000       3        0        1\n";
}

// PbSO4: S and the three O searched by x and z (O3 by x, y, z), Pb fixed.
std::string PbSO4Control() {
  const Cell cell{8.48, 5.396, 6.959, 90.0};
  std::string s =
      Head(9) +
      "PbSO4\n   5   0   0 0.0 0.0 1.0   0   4   0   0   0          0.000   0   0   0\n"
      "P n m a\n"
      "Pb   PB   0.18790 0.25000 0.16700 1.40 0.50  0 0 0\n   0.00 0.00 0.00 0.00 0.00\n"
      "S    S    0.07000 0.25000 0.68000 0.80 0.50  0 0 0\n  11.00 0.00 21.00 0.00 0.00\n"
      "O1   O    0.90830 0.25000 0.59530 1.60 0.50  0 0 0\n  31.00 0.00 41.00 0.00 0.00\n"
      "O2   O    0.19000 0.25000 0.55000 1.60 0.50  0 0 0\n  51.00 0.00 61.00 0.00 0.00\n"
      "O3   O    0.08120 0.02720 0.80880 1.50 1.00  0 0 0\n  71.00 81.00 91.00 0.00 0.00\n"
      "!  Sc1 Sc2 Sc3 Sc4 Sc5 Sc6\n";
  std::string limits = "!  Limits\n";
  for (int c = 1; c <= 9; ++c) limits += Fmt("(I4,2F9.4)", c, 0.0f, 1.0f) + "\n";
  return s + Tail(cell, limits);
}

// 20 light atoms of P 21/c, each searched by x, y and z.
std::string MonoclinicControl() {
  const Cell cell{10.0, 11.0, 12.0, 100.0};
  std::string s = Head(60) +
                  "P21c\n  20   0   0 0.0 0.0 1.0   0   4   0   0   0          0.000   0   0   0\n"
                  "P 1 21/c 1\n";
  for (int i = 0; i < 20; ++i) {
    const float x = 0.03f + 0.047f * i, y = 0.11f + 0.031f * ((7 * i) % 20),
                z = 0.07f + 0.043f * ((3 * i) % 20);
    s += Fmt("(A,I2.2,A,3F9.5,A)", "C", i, " C    ", x, y, z, " 1.0 1.0  0 0 0") + "\n";
    s += Fmt("(3F8.2,A)", 10.0f * (3 * i + 1) + 1.0f, 10.0f * (3 * i + 2) + 1.0f,
             10.0f * (3 * i + 3) + 1.0f, " 0.00 0.00") +
         "\n";
  }
  s += "!  Sc1 Sc2 Sc3 Sc4 Sc5 Sc6\n";
  std::string limits = "!  Limits\n";
  for (int c = 1; c <= 60; ++c) limits += Fmt("(I4,2F9.4)", c, 0.0f, 1.0f) + "\n";
  return s + Tail(cell, limits);
}

std::unique_ptr<Job> ReadSearchJob(const std::filesystem::path& dir, bool monoclinic) {
  EnterBenchDirectory(dir);
  std::ofstream(dir / "bench.pcr") << (monoclinic ? MonoclinicControl() : PbSO4Control());
  std::ofstream(dir / "bench1.hkl")
      << (monoclinic ? IntensityList({10.0, 11.0, 12.0, 100.0}, true, 2000)
                     : IntensityList({8.48, 5.396, 6.959, 90.0}, false, 400));
  return ReadBenchControl();
}

// Argument: threads (0: every core). Items are trials.
void RunSearch(benchmark::State& state, bool monoclinic) {
  const auto dir = std::filesystem::temp_directory_path() /
                   (monoclinic ? "corvinet-search-bench-p21c" : "corvinet-search-bench-pbso4");
  const auto previous = std::filesystem::current_path();
  auto job = ReadSearchJob(dir, monoclinic);
  const SearchSetup s = MakeSearchSetup(*job, 1, 1, kDefaultSearchSeed);
  const std::int64_t trials = monoclinic ? 2000 : 20000;
  InterruptFlag interrupt;
  for (auto _ : state) {
    const TrialsOutcome o =
        RunTrials(s, trials, 3, static_cast<int>(state.range(0)), interrupt, false, {});
    benchmark::DoNotOptimize(o.best.data());
  }
  state.SetItemsProcessed(state.iterations() * trials);
  state.counters["reflections"] = s.kernel.reflections;
  state.counters["atoms"] = s.kernel.atoms;
  state.counters["operators"] = s.kernel.operators;
  std::fclose(job->console.out);
  std::filesystem::current_path(previous);
}

void BM_SearchTrialsPbSO4(benchmark::State& state) {
  RunSearch(state, false);
}
BENCHMARK(BM_SearchTrialsPbSO4)->Arg(1)->Arg(0)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_SearchTrials20AtomsP21c(benchmark::State& state) {
  RunSearch(state, true);
}
BENCHMARK(BM_SearchTrials20AtomsP21c)->Arg(1)->Arg(0)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
