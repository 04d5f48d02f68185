// The seed and the thread count of a search and the threads of the point loop, from the
// environment of the process.
#include "run/search_settings.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>

#include "surface/console.h"

namespace corvinet {

namespace {

constexpr int kMostThreads = 1024;

bool AllDigits(const std::string& text, int base) {
  if (text.empty()) return false;
  for (char c : text) {
    const bool digit = base == 16 ? std::isxdigit(static_cast<unsigned char>(c)) != 0
                                  : std::isdigit(static_cast<unsigned char>(c)) != 0;
    if (!digit) return false;
  }
  return true;
}

}  // namespace

std::optional<std::uint64_t> ParseSearchSeed(const std::string& text) {
  const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  const std::string digits = hex ? text.substr(2) : text;
  const int base = hex ? 16 : 10;
  if (!AllDigits(digits, base)) return std::nullopt;
  errno = 0;
  const unsigned long long value = std::strtoull(digits.c_str(), nullptr, base);
  if (errno == ERANGE) return std::nullopt;
  return static_cast<std::uint64_t>(value);
}

std::optional<int> ParseSearchThreads(const std::string& text) {
  if (!AllDigits(text, 10) || text.size() > 4) return std::nullopt;
  const int value = std::atoi(text.c_str());
  if (value > kMostThreads) return std::nullopt;
  return value;
}

SearchOptions SearchOptionsFromEnvironment(Job& job) {
  SearchOptions options;
  if (const char* seed = std::getenv("CORVINET_SEARCH_SEED")) {
    const auto value = ParseSearchSeed(seed);
    if (!value) StopBox(job, " CORVINET_SEARCH_SEED is not a whole number: " + std::string(seed));
    options.seed = *value;
  }
  if (const char* threads = std::getenv("CORVINET_SEARCH_THREADS")) {
    const auto value = ParseSearchThreads(threads);
    if (!value) {
      StopBox(job, " CORVINET_SEARCH_THREADS is not a whole number from 0 to 1024: " +
                       std::string(threads));
    }
    options.threads = *value;
  }
  return options;
}

int PointThreadsFromEnvironment(Job& job) {
  const char* threads = std::getenv("CORVINET_THREADS");
  if (threads == nullptr) return 0;
  const auto value = ParseSearchThreads(threads);
  if (!value) {
    StopBox(job, " CORVINET_THREADS is not a whole number from 0 to 1024: " + std::string(threads));
  }
  return *value;
}

}  // namespace corvinet
