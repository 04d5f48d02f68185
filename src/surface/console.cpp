// Console lines on the terminal or the cyclic log, and the stop box.
#include "surface/console.h"

#include <cstdio>

#include "run/fortran_format.h"

namespace corvinet {

namespace {

constexpr std::size_t kConsoleWidth = 132;

void EmitConsole(Job& job, std::string_view line) {
  line = TrimRight(line.substr(0, std::min(line.size(), kConsoleWidth)));
  if (line.empty()) line = "  ";
  if (job.console.ConsoleUnit == Unit::Console) {
    std::fwrite(line.data(), 1, line.size(), job.console.out);
    std::fputc('\n', job.console.out);
    std::fflush(job.console.out);
  } else {
    WriteRecord(job.files.units[job.console.ConsoleUnit], line);
  }
}

}  // namespace

void ConsoleLine(Job& job, std::string_view text) {
  text = TrimRight(text);
  if (text.size() >= 2 && text[0] == '=' && text[1] == '=') {
    EmitConsole(job, " =>" + std::string(text));
  } else {
    EmitConsole(job, text);
  }
}

void ConsoleLineWithNumber(Job& job, std::string_view text, int intValue, float realValue,
                           int mode) {
  const bool arrow = text.size() >= 2 && text[0] == '=' && text[1] == '=';
  std::string line = arrow ? " =>" : "   ";
  line += TrimRight(text);
  switch (mode) {
    case 1:
      line += Fmt("(I8)", intValue);
      break;
    case 2:
      line += Fmt("(G12.4)", realValue);
      break;
    case 3:
      line += Fmt("(I8,A,G12.4)", intValue, "and ", realValue);
      break;
    default:
      break;
  }
  EmitConsole(job, line);
}

void ClearText(std::string& text) {
  std::size_t n = TrimRight(text).size();
  for (std::size_t i = 0; i < n; ++i) text[i] = ' ';
}

void StopBox(Job& job, std::string_view text, int stopFlag) {
  std::FILE* out = job.console.out;
  std::fputs("=== Stop/Warning Box ===\n", out);
  std::string_view shown = TrimRight(text);
  std::fwrite(shown.data(), 1, shown.size(), out);
  std::fputc('\n', out);
  std::fflush(out);
  if (stopFlag != 0) throw ProcessStop{0};
}

void WriteLine(Job& job, int unit, std::string_view text) {
  if (unit == Unit::Console) {
    std::fwrite(text.data(), 1, text.size(), job.console.out);
    std::fputc('\n', job.console.out);
    std::fflush(job.console.out);
    return;
  }
  WriteRecord(job.files.units[unit], text);
}

void WriteReports(Job& job, std::string_view text) {
  WriteLine(job, Unit::Out, text);
  WriteLine(job, Unit::Sum, text);
}

}  // namespace corvinet
