// The results of a run for scripts: <job>.json with the exit status, the cycles, the R-factors of
// every pattern, the Bragg factors and fractions of every phase and every refined parameter.
#pragma once

#include <string>

#include "records/job.h"

namespace corvinet {

// How a run ended, for the JSON file.
struct RunEnd {
  int exitStatus = 0;  // the status the program returns
  std::string reason;  // "normal end", or the text of the stop
};

// The text of the JSON file of the run as it stands; after a stop on an error the lists of
// patterns, phases and parameters are empty, since the records may hold refused values.
std::string RunJsonText(const Job& job, const RunEnd& end);

// Writes <job>.json beside the summary.
void WriteRunJson(Job& job, const RunEnd& end);

}  // namespace corvinet
