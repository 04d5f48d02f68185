// Benchmark of a rigid-body phase: a PbSO4 pattern of 4251 points whose SO4 is a TLS group with
// 22 refined parameters (origin, angles, T, L, S, scale), one pass of the point loop against the
// same atoms typed free, and the placement of the group that opens each cycle.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "bench_job.h"
#include "format/fortran_format.h"
#include "model/rigid_phase.h"
#include "refine/cycle_driver.h"
#include "refine/cycle_work.h"
#include "refine/parameter_families.h"

namespace {

using namespace corvinet;

// One user-model line: label and species, 16 values, and the next parameter
// numbers on the slots that `coded` accepts (the rest 0).
template <class Coded>
std::string ModelLine(const std::string& head, const float (&p)[16], Coded coded, int& next) {
  std::string text = head;
  for (int s = 0; s < 8; ++s) text += Fmt("(F11.5)", p[s]);
  text += "\n";
  for (int s = 1; s <= 8; ++s) text += coded(s) ? Fmt("(I4,A)", next++, "1.00") : " 0";
  text += "\n";
  for (int s = 8; s < 16; ++s) text += Fmt("(F11.5)", p[s]);
  text += "\n";
  for (int s = 9; s <= 15; ++s) text += coded(s) ? Fmt("(I4,A)", next++, "1.00") : " 0";
  return text + "\n";
}

std::string ControlText(bool rigid) {
  const float d = 0.8487049f;
  std::string atoms;
  int next = 2;
  int nat = 0;
  const float pb[16] = {0.1879f, 0.25f, 0.1667f, 1.2f, 0.5f};
  if (rigid) {
    const float group[16] = {0.0654f, 0.25f, 0.6845f, 1,    0,    4,     10,   20,
                             30,      1.5f,  1.2f,    1.8f, 0.1f, -0.1f, 0.05f};
    const float tls[16] = {20,    15,    25,     2,     -3,     1,     0.1f,   -0.05f,
                           0.08f, 0.06f, -0.04f, 0.05f, -0.02f, 0.03f, -0.06f, 1};
    const auto none = [](int) { return false; };
    atoms += ModelLine("Pb PB", pb, none, next);
    // Origin, angles and T; the group number, reference and option are not parameters.
    atoms += ModelLine(
        "SO4 RBG", group, [](int s) { return s <= 3 || s >= 7; }, next);
    atoms += ModelLine(
        "SO4 TLS", tls, [](int) { return true; }, next);
    const float at[5][3] = {{0, 0, 0}, {d, d, d}, {d, -d, -d}, {-d, d, -d}, {-d, -d, d}};
    for (int i = 0; i < 5; ++i) {
      const float m[16] = {at[i][0], at[i][1], at[i][2], 1.0f, 0.5f, 1.0f};
      atoms += ModelLine(i == 0 ? "SO4 S" : "SO4 O", m, none, next);
    }
    nat = 8;
  } else {
    // The same atoms where the group places them, refined freely: x y z B of each.
    const float free[6][4] = {{0.1879f, 0.25f, 0.1667f, 1.2f}, {0.0654f, 0.25f, 0.6845f, 0.6f},
                              {0.17f, 0.20f, 0.74f, 1.0f},     {0.10f, 0.05f, 0.58f, 1.0f},
                              {-0.06f, 0.35f, 0.63f, 1.0f},    {0.04f, 0.40f, 0.78f, 1.0f}};
    const char* names[6] = {"Pb PB", "S1 S", "O1 O", "O2 O", "O3 O", "O4 O"};
    for (int i = 0; i < 6; ++i) {
      atoms += Fmt("(A,4F10.5,A)", names[i], free[i][0], free[i][1], free[i][2], free[i][3],
                   " 0.5 0 0 0\n");
      for (int s = 0; s < 4; ++s) atoms += i == 0 ? " 0" : Fmt("(I4,A)", next++, "1.00");
      atoms += " 0\n";
    }
    nat = 6;
  }
  return "Rigid-body benchmark\n   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   0   "
         "0\n"
         "   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   1   0\n"
         " 1.540560 1.540560  0.00000   60.000 10.0000  0.0000  0.0000    0.00    0.0000\n"
         "  1  0.01  1.00  1.00  1.00  1.00     15.0000   0.0200   100.0000   0.000   0.000\n" +
         Fmt("(I5)", next - 1) +
         "\n  0.0000 0.00  0.0000 0.00  0.0000 0.00 0.000000 0.00   0\n"
         "   40.00  0.0  0.0  0.0  0.0  0.0\n0.00 0.00 0.00 0.00 0.00 0.00\nPbSO4\n" +
         Fmt("(I3,A)", nat,
             rigid ? " 0 0 0.0 0.0 1.0 4 0 0 0 0 0.0 0 0 0"
                   : " 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0") +
         "\nP n m a\n" + atoms +
         "    1.000000 0.0 0.0 0.0 0.0 0.0 0\n11.00 0 0 0 0 0\n"
         "0.012 -0.008 0.010 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
         "8.4800 5.3980 6.9580 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
}

std::unique_ptr<Job> ReadJob(bool rigid) {
  EnterBenchDirectory(std::filesystem::temp_directory_path() /
                      (rigid ? "corvinet-rigid-bench" : "corvinet-free-bench"));
  std::ofstream("bench.pcr") << ControlText(rigid);
  auto job = ReadBenchJob("15.0 0.02 100.0", 4251);
  BuildParameterFamilies(*job);
  return job;
}

void RunPass(benchmark::State& state, bool rigid) {
  const auto previous = std::filesystem::current_path();
  auto job = ReadJob(rigid);
  auto work = std::make_unique<CycleWork>();
  for (auto _ : state) CalculatePatterns(*job, *work, 1);
  state.counters["reflections"] = job->patterns[1].reflections.total;
  state.counters["parameters"] = job->run.MAXS;
  std::filesystem::current_path(previous);
}

void BM_RigidTlsGroupPass(benchmark::State& state) {
  RunPass(state, true);
}
BENCHMARK(BM_RigidTlsGroupPass)->Unit(benchmark::kMillisecond);

void BM_SameAtomsFreePass(benchmark::State& state) {
  RunPass(state, false);
}
BENCHMARK(BM_SameAtomsFreePass)->Unit(benchmark::kMillisecond);

// The placement of the group and the slopes of its atoms in its 21 coded slots.
void BM_RigidGroupRefresh(benchmark::State& state) {
  const auto previous = std::filesystem::current_path();
  auto job = ReadJob(true);
  for (auto _ : state) RefreshRigidModels(*job);
  state.counters["links"] = static_cast<double>(job->rigid[1].links.size());
  std::filesystem::current_path(previous);
}
BENCHMARK(BM_RigidGroupRefresh)->Unit(benchmark::kMicrosecond);

}  // namespace
