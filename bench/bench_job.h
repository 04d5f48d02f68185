// The job of a benchmark: flat data written beside the control file bench.pcr and both read.
#pragma once

#include <memory>
#include <string>

#include "records/job.h"

namespace corvinet {

// Writes bench.dat with the range line `range` and `points` counts of 100, then reads the
// control file bench.pcr of the current directory as a run does.
std::unique_ptr<Job> ReadBenchJob(const std::string& range, int points);

}  // namespace corvinet
