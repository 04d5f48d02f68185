// The top of the program: the loop of jobs and one run.
#pragma once

#include <string>
#include <vector>

#include "records/job.h"

namespace corvinet {

// The entry: reads the start-up options among the words of the command line
// (`--large`) and CORVINET_LIMITS, then runs jobs until the user stops.
// Returns the exit status of the process: 0 after a normal end or the user's
// stop, 2 after a stop on an error (an unknown option among them).
int Main(Job& job, const std::vector<std::string>& words);

// One run: defaults, control file, engine, report.
void RunOneJob(Job& job);

}  // namespace corvinet
