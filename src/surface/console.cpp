// Console lines on the terminal or the cyclic log, and the stop box.
#include "surface/console.h"

#include <cstdio>

#include "format/fortran_format.h"

namespace corvinet {

namespace {

constexpr std::size_t kConsoleWidth = 132;

void EmitConsole(Channels& channels, std::string_view line) {
  line = TrimRight(line.substr(0, std::min(line.size(), kConsoleWidth)));
  if (line.empty()) line = "  ";
  if (channels.console.ConsoleUnit == Unit::Console) {
    std::fwrite(line.data(), 1, line.size(), channels.console.out);
    std::fputc('\n', channels.console.out);
    std::fflush(channels.console.out);
  } else {
    WriteRecord(channels.files.units[channels.console.ConsoleUnit], line);
  }
}

}  // namespace

void ConsoleLine(Channels& channels, std::string_view text) {
  text = TrimRight(text);
  if (text.size() >= 2 && text[0] == '=' && text[1] == '=') {
    EmitConsole(channels, " =>" + std::string(text));
  } else {
    EmitConsole(channels, text);
  }
}

void ConsoleLineWithNumber(Channels& channels, std::string_view text, int intValue, float realValue,
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
  EmitConsole(channels, line);
}

void ClearText(std::string& text) {
  std::size_t n = TrimRight(text).size();
  for (std::size_t i = 0; i < n; ++i) text[i] = ' ';
}

void WarningBox(Channels& channels, std::string_view text) {
  std::FILE* out = channels.console.out;
  std::fputs("=== Stop/Warning Box ===\n", out);
  std::string_view shown = TrimRight(text);
  std::fwrite(shown.data(), 1, shown.size(), out);
  std::fputc('\n', out);
  std::fflush(out);
}

void StopBox(Channels& channels, std::string_view text) {
  WarningBox(channels, text);
  throw ProcessStop{ExitStatus::kError, std::string(Trim(text))};
}

void WriteLine(Channels& channels, int unit, std::string_view text) {
  if (unit == Unit::Console) {
    std::fwrite(text.data(), 1, text.size(), channels.console.out);
    std::fputc('\n', channels.console.out);
    std::fflush(channels.console.out);
    return;
  }
  WriteRecord(channels.files.units[unit], text);
}

void WriteReports(Channels& channels, std::string_view text) {
  WriteLine(channels, Unit::Out, text);
  WriteLine(channels, Unit::Sum, text);
}

}  // namespace corvinet
