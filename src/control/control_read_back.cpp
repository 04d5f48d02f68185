// The check that a control file about to replace the old one reads back with the program's own
// readers and gives the values written.
#include "control/control_read_back.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "control/control_reading.h"
#include "format/fortran_format.h"
#include "records/run_data_reset.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// The console of the scratch reading: its lines are kept in memory.
class MemoryConsole {
 public:
  MemoryConsole() : out_(open_memstream(&buffer_, &size_)), in_(std::fopen("/dev/null", "r")) {}
  ~MemoryConsole() {
    if (out_ != nullptr) std::fclose(out_);
    if (in_ != nullptr) std::fclose(in_);
    std::free(buffer_);
  }
  MemoryConsole(const MemoryConsole&) = delete;
  MemoryConsole& operator=(const MemoryConsole&) = delete;
  bool Ready() const { return out_ != nullptr && in_ != nullptr; }
  void Attach(ConsoleState& console) {
    console.out = out_;
    console.in = in_;
  }
  std::string Text() {
    std::fflush(out_);
    return buffer_ == nullptr ? std::string() : std::string(buffer_, size_);
  }

 private:
  char* buffer_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* out_;
  std::FILE* in_;
};

// The last `count` lines of a text.
std::string LastLines(const std::string& text, int count) {
  std::size_t at = text.size();
  while (at > 0 && text[at - 1] == '\n') --at;
  const std::size_t end = at;
  for (int n = 0; n < count && at > 0; ++n) {
    at = text.rfind('\n', at - 1);
    if (at == std::string::npos) {
      at = 0;
      break;
    }
  }
  return text.substr(at == 0 ? 0 : at + 1, end - (at == 0 ? 0 : at + 1));
}

// The steps of the head for a reading that asks nothing and opens no output file.
HeadSteps QuietHeadSteps(const Job& job) {
  HeadSteps steps = RunHeadSteps();
  const std::string data = job.patterns[1].DatCode;
  steps.askDataCode = [data](Job&) { return data; };
  steps.openOutputFiles = [](Job&) {};
  return steps;
}

// The words of a record as the free-format reader separates them: blanks
// separate, and a sign that does not follow an exponent letter starts a word.
std::vector<std::string> Words(const std::string& record) {
  std::vector<std::string> words;
  std::string word;
  for (const char c : record) {
    const bool sign = c == '-' || c == '+';
    const bool afterExponent =
        !word.empty() && (word.back() == 'E' || word.back() == 'e' || word.back() == 'D');
    if (c == ' ' || (sign && !word.empty() && !afterExponent)) {
      if (!word.empty()) words.push_back(word);
      word.clear();
    }
    if (c != ' ') word += c;
  }
  if (!word.empty()) words.push_back(word);
  return words;
}

bool NumberOf(const std::string& word, double& value) {
  char* end = nullptr;
  value = std::strtod(word.c_str(), &end);
  return end != word.c_str() && *end == '\0';
}

bool SameWord(const std::string& a, const std::string& b) {
  if (a == b) return true;
  double x = 0.0;
  double y = 0.0;
  if (!NumberOf(a, x) || !NumberOf(b, y)) return false;
  return std::fabs(x - y) <= 1.0e-5 * std::max(std::fabs(x), std::fabs(y));
}

// Reads the file into the scratch record; false when the reading stopped.
bool ReadScratch(const Job& job, const std::string& path, Job& scratch) {
  // The file is read with the capacities of the run that wrote it.
  scratch.dimensions = job.dimensions;
  ResetRunData(scratch);
  scratch.driver = job.driver;
  scratch.files.multiPattern = job.files.multiPattern;
  scratch.files.hklFromFile = job.files.hklFromFile;
  if (!OpenUnit(scratch.files.units[Unit::Control], path, OpenStatus::Old)) return false;
  try {
    ReadControlFile(scratch, QuietHeadSteps(job));
  } catch (const ProcessStop&) {
    return false;
  }
  return scratch.run.controlFileComplete;
}

void CloseScratchUnits(Job& scratch) {
  for (TextUnit& unit : scratch.files.units) CloseUnit(unit);
}

}  // namespace

bool SameRecordValues(const std::string& written, const std::string& again) {
  const std::vector<std::string> a = Words(written);
  const std::vector<std::string> b = Words(again);
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!SameWord(a[i], b[i])) return false;
  }
  return true;
}

ReadBackResult CheckControlReadsBack(const Job& job, const std::string& path,
                                     const ControlLines& lines, const ControlEndValues& ends) {
  ReadBackResult result;
  MemoryConsole console;
  if (!console.Ready()) {
    result.report = " => No room to read the new control file back";
    return result;
  }
  auto scratch = std::make_unique<Job>();
  console.Attach(scratch->console);
  const bool read = ReadScratch(job, path, *scratch);
  CloseScratchUnits(*scratch);
  if (!read) {
    result.report = LastLines(console.Text(), 6);
    return result;
  }
  scratch->run.commentedOutput = job.run.commentedOutput;
  const ControlLines again = ControlFileLines(*scratch, ends);
  if (again.size() != lines.size()) {
    result.report = Fmt("(A,I0,A,I0)", " => Lines written: ", static_cast<int>(lines.size()),
                        ", read back: ", static_cast<int>(again.size()));
    return result;
  }
  for (std::size_t n = 0; n < lines.size(); ++n) {
    if (!lines[n].empty() && lines[n][0] == '!') continue;
    if (SameRecordValues(lines[n], again[n])) continue;
    result.report = Fmt("(A,I0,A)", " => Line ", static_cast<int>(n + 1), " reads back as:") +
                    "\n\"" + lines[n] + "\"\n\"" + again[n] + "\"";
    return result;
  }
  result.readsBack = true;
  return result;
}

}  // namespace corvinet
