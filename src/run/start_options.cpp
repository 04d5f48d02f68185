// The options of the command line and of the environment read at start-up: the capacities.
#include "run/start_options.h"

namespace corvinet {

namespace {

constexpr const char* kLargeOption = "--large";

bool IsOption(const std::string& word) {
  return word.size() > 2 && word[0] == '-' && word[1] == '-';
}

}  // namespace

StartOptions ReadStartOptions(const std::vector<std::string>& arguments,
                              const std::optional<std::string>& limitsVariable) {
  StartOptions options;
  bool large = false;
  if (limitsVariable && !limitsVariable->empty()) {
    if (*limitsVariable == "large") {
      large = true;
    } else if (*limitsVariable != "default") {
      options.error = " => CORVINET_LIMITS must be large or default, not: " + *limitsVariable;
    }
  }
  for (const std::string& word : arguments) {
    if (!IsOption(word)) {
      options.arguments.push_back(word);
    } else if (word == kLargeOption) {
      large = true;
    } else if (options.error.empty()) {
      options.error = " => Unknown option: " + word + " (the option known is --large)";
    }
  }
  if (large) options.dimensions = LargeDimensionLimits();
  return options;
}

}  // namespace corvinet
