// The job of a benchmark: flat data written beside the control file bench.pcr and both read.
#pragma once

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

}  // namespace corvinet
