// Benchmark of one least-squares pass of a magnetic phase (20 magnetic atoms, 4 sets of moment
// matrices, 2 propagation vectors) over 10000 points, beside a crystal phase of 20 atoms.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "bench_job.h"
#include "control/control_reading.h"
#include "format/fortran_format.h"
#include "io/file_set.h"
#include "refine/cycle_driver.h"
#include "refine/cycle_work.h"
#include "refine/parameter_families.h"
#include "run/defaults.h"

namespace {

using namespace corvinet;

constexpr const char* kHead =
    "1 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 1 0\n"
    "1.5406 1.5406 0.0 60.0 8.0 0.0 0.0 0.0 0.0\n"
    "1 0.1 1 1 1 1 5.0 0.008 84.992 0 0\n";

// The atoms of both phases: 20 sites spread over the cell.
void AtomPosition(int i, float& x, float& y, float& z) {
  x = 0.03f + 0.047f * static_cast<float>(i);
  y = 0.11f + 0.031f * static_cast<float>((7 * i) % 20);
  z = 0.07f + 0.043f * static_cast<float>((3 * i) % 20);
}

// Codes of three values, parameters n+1..n+3.
std::string Codes3(int n) {
  return Fmt("(3F8.2)", 10.0f * (n + 1) + 1.0f, 10.0f * (n + 2) + 1.0f, 10.0f * (n + 3) + 1.0f);
}

// The profile lines common to both phases; scale, U, V, W and cell a are
// parameters 61..65 (globals 66, 67).
std::string ProfileLines(bool magnetic) {
  std::string s =
      "1.0 0.0 0.0 0.0 0.0 0.0 0\n611.0 0 0 0 0 0\n"
      "0.01 -0.005 0.008 0.0 0.0 0.0 0.0 0\n621.0 631.0 641.0 0 0 0 0\n"
      "8.1 9.2 10.3 90 97 90\n651.0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
  // Two vectors, their components parameters 68..73.
  if (magnetic) s += "0.1 0.0 0.3\n681.0 691.0 701.0\n0.0 0.25 0.15\n711.0 721.0 731.0\n";
  return s;
}

// 20 moments of Fe3+ on 2 operators, each atom taking one of 4 sets of
// moment matrices; satellites of the two vectors only.
std::string MagneticPhase() {
  std::string s =
      "Magnetic\n20 0 0 0.0 0.0 1.0 1 -1 1 0 0 0.0 2 0 0\nP 1 21 1\n"
      "!Nsym Cen Laue MagMat\n2 1 2 4\n"
      " 1 0 0 0.0  0 1 0 0.0  0 0 1 0.0\n"
      " 1 0 0 0 1 0 0 0 1 0.0\n-1 0 0 0 -1 0 0 0 -1 0.0\n 1 0 0 0 1 0 0 0 1 0.25\n"
      "-1 0 0 0 -1 0 0 0 -1 0.25\n"
      "-1 0 0 0.0  0 1 0 0.5  0 0 -1 0.0\n"
      "-1 0 0 0 1 0 0 0 -1 0.0\n 1 0 0 0 -1 0 0 0 1 0.0\n-1 0 0 0 1 0 0 0 -1 0.5\n"
      " 1 0 0 0 -1 0 0 0 1 0.5\n";
  for (int i = 0; i < 20; ++i) {
    float x, y, z;
    AtomPosition(i, x, y, z);
    s += Fmt("(A,I2.2,A,I2,A,3F9.5,A)", "M", i, " MFE3 ", 1 + i % 4, "  0", x, y, z,
             " 0.5 1.0 2.0 1.0 -1.0") +
         "\n0 0 0 0 0 " + Codes3(3 * i) + "\n0.5 0.0 0.3 0.0 0.0 0.0 0.0\n0 0 0 0 0 0 0\n";
  }
  return s + ProfileLines(true);
}

// The same 20 sites as a crystal structure of Fe, their coordinates refined.
std::string CrystalPhase() {
  std::string s = "Crystal\n20 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0\nP 1 21 1\n";
  for (int i = 0; i < 20; ++i) {
    float x, y, z;
    AtomPosition(i, x, y, z);
    s += Fmt("(A,I2.2,A,3F9.5,A)", "A", i, " FE   ", x, y, z, " 0.5 1.0 0 0 0") + "\n" +
         Codes3(3 * i) + " 0.0 0.0\n";
  }
  return s + ProfileLines(false);
}

std::unique_ptr<Job> ReadJob(const std::filesystem::path& dir, bool magnetic) {
  EnterBenchDirectory(dir);
  const int refined = magnetic ? 73 : 67;
  std::ofstream pcr("bench.pcr");
  pcr << "Magnetic benchmark\n"
      << kHead << refined << "\n0.0 661.0 0.0 0 0.0 0 0 0 0\n100 0 0 0 0 0\n671.0 0 0 0 0 0\n"
      << (magnetic ? MagneticPhase() : CrystalPhase());
  pcr.close();
  auto job = ReadBenchJob("5.0 0.008 84.992", 10000);
  BuildParameterFamilies(*job);
  return job;
}

// With `fixedVectors` the components of the vectors keep their numbers but
// hold no value: the pass without the intensity slopes of the satellites.
void RunPass(benchmark::State& state, bool magnetic, bool fixedVectors = false) {
  const auto dir = std::filesystem::temp_directory_path() /
                   (magnetic ? "corvinet-magnetic-bench" : "corvinet-crystal-bench");
  const auto previous = std::filesystem::current_path();
  auto job = ReadJob(dir, magnetic);
  if (fixedVectors) {
    for (int n = 1; n <= job->phases[1].Nvk; ++n) {
      for (Codeword& w : job->phases[1].vectors[n].KCODE) w = Codeword{};
    }
  }
  TimeOneThreadPasses(state, *job, previous);
}

// Argument 1: the six vector components refined; 0: held.
void BM_MagneticCyclePass(benchmark::State& state) {
  RunPass(state, true, state.range(0) == 0);
}
BENCHMARK(BM_MagneticCyclePass)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

void BM_CrystalCyclePassOfTheSameSites(benchmark::State& state) {
  RunPass(state, false);
}
BENCHMARK(BM_CrystalCyclePassOfTheSameSites)->Unit(benchmark::kMillisecond);

}  // namespace
