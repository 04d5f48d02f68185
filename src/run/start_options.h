// The options of the command line and of the environment read at start-up: the capacities.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "records/dimension_limits.h"

namespace corvinet {

// What start-up reads before the jobs: the capacities of the process and the
// words left for the job choice.
struct StartOptions {
  DimensionLimits dimensions;          // the defaults, or the large set
  std::vector<std::string> arguments;  // the words that are not options, in order
  std::string error;                   // why the options cannot be used; empty when they can
};

// Reads the options among `arguments` (words starting with "--"; `--large`
// is the one known) and the value of CORVINET_LIMITS, `limitsVariable`
// (absent, "default" or "large"). Either asks for the large capacities.
StartOptions ReadStartOptions(const std::vector<std::string>& arguments,
                              const std::optional<std::string>& limitsVariable);

}  // namespace corvinet
