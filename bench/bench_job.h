// The job of a benchmark: flat data written beside the control file bench.pcr and both read.
#pragma once

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <string>

#include "records/job.h"

namespace corvinet {

// Creates the folder of a benchmark and makes it the current directory.
void EnterBenchDirectory(const std::filesystem::path& dir);

// Reads the control file bench.pcr of the current directory as a run does (job code "bench").
std::unique_ptr<Job> ReadBenchControl();

// Writes bench.dat with the range line `range` and `points` counts of 100, then reads the
// control file bench.pcr of the current directory as a run does.
std::unique_ptr<Job> ReadBenchJob(const std::string& range, int points);

// A triclinic phase (cell line `cell`) in profile matching over 17000 points of
// 2theta, written in the folder `dir` under the title `title` and read.
std::unique_ptr<Job> MakeTriclinicMatchJob(const std::filesystem::path& dir,
                                           const std::string& title, const std::string& cell);

// Gives the phase and pattern parameters of that job numbers 1..n; numbers
// beyond the real slots (scale, widths, shape, cell, zero and background)
// stand for atom parameters of a structure, refined but idle.
void RefineTriclinicMatch(Job& job, int n);

// Times one pass over the points of `job` per iteration, on one thread (the
// figures are one core's), counts its reflections, points and refined
// parameters, then closes its console and goes back to the folder `previous`.
void TimeOneThreadPasses(benchmark::State& state, Job& job, const std::filesystem::path& previous);

}  // namespace corvinet
