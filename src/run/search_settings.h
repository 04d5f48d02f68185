// The seed and the thread count of a search and the threads of the point loop, from the environment
// of the process.
#pragma once

#include <optional>
#include <string>

#include "records/job.h"
#include "search/search_run.h"

namespace corvinet {

// The value of a seed text (decimal, or hexadecimal after 0x); none when the
// text is not a whole non-negative number.
std::optional<std::uint64_t> ParseSearchSeed(const std::string& text);

// The value of a thread-count text: a whole number from 0 (every core) to 1024.
std::optional<int> ParseSearchThreads(const std::string& text);

// CORVINET_SEARCH_SEED and CORVINET_SEARCH_THREADS when they are set; a value
// that does not read stops the run with the name of the variable.
SearchOptions SearchOptionsFromEnvironment(Job& job);

// CORVINET_THREADS when it is set (0 for one thread per core), else 0; a
// value that does not read stops the run with the name of the variable.
int PointThreadsFromEnvironment(Job& job);

}  // namespace corvinet
