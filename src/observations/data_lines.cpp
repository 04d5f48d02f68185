// Words and numbers of the free lines of the newer data files, and the stop for a malformed line.
#include "observations/data_lines.h"

#include <algorithm>
#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstdlib>

#include "format/text.h"

namespace corvinet {

std::vector<std::string_view> LineWords(std::string_view line) {
  constexpr std::string_view kSeparators = " \t,";
  std::vector<std::string_view> words;
  std::size_t at = 0;
  while ((at = line.find_first_not_of(kSeparators, at)) != std::string_view::npos) {
    const std::size_t end = std::min(line.find_first_of(kSeparators, at), line.size());
    words.push_back(line.substr(at, end - at));
    at = end;
  }
  return words;
}

bool WordNumber(std::string_view word, double& value) {
  if (word.empty()) return false;
  const char c = word[0];
  const bool numeric = (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+';
  if (!numeric) return false;
  const std::string text(word);
  char* stop = nullptr;
  errno = 0;
  value = std::strtod(text.c_str(), &stop);
  if (stop == text.c_str() || *stop != '\0' || errno == ERANGE) return false;
  return std::isfinite(value) && std::fabs(value) <= static_cast<double>(FLT_MAX);
}

bool StartsWithNumber(std::string_view line) {
  const std::vector<std::string_view> words = LineWords(line);
  double value = 0.0;
  return !words.empty() && WordNumber(words[0], value);
}

bool LineNumbers(std::string_view line, int count, double* values) {
  const std::vector<std::string_view> words = LineWords(line);
  if (static_cast<int>(words.size()) < count) return false;
  for (int k = 0; k < count; ++k) {
    if (!WordNumber(words[static_cast<std::size_t>(k)], values[k])) return false;
  }
  return true;
}

void StopMalformedLine(DataFile& file, int line, std::string_view text, std::string_view expected) {
  const std::string name = file.job.files.units[Unit::Data].name;
  const std::string words = Fmt("(A,I0,A,A)", " => Malformed line ", line, " of data file ", name) +
                            ": " + std::string(Trim(text).substr(0, 60)) + " (" +
                            std::string(expected) + ")";
  ReportData(file, words);
  StopData(file.job, words);
}

}  // namespace corvinet
