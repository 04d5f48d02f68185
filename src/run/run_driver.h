// The top of the program: the loop of jobs and one run.
#pragma once

#include <string>
#include <vector>

#include "records/job.h"

namespace corvinet {

// The entry: runs jobs until the user stops; returns the exit code of the process.
int Main(Job& job, const std::vector<std::string>& arguments);

// One run: defaults, control file, engine, report.
void RunOneJob(Job& job);

}  // namespace corvinet
