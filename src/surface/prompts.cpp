// Dialogs of the program as prompts on the terminal.
#include "surface/prompts.h"

#include <cctype>
#include <cstdio>

#include "surface/console.h"

namespace corvinet {

namespace {

void Show(ConsoleState& console, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), console.out);
  std::fflush(console.out);
}

}  // namespace

std::optional<std::string> ReadConsoleAnswer(ConsoleState& console) {
  std::string line;
  int c = std::fgetc(console.in);
  if (c == EOF) return std::nullopt;
  while (c != EOF && c != '\n') {
    line.push_back(static_cast<char>(c));
    c = std::fgetc(console.in);
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

bool AskYesNo(ConsoleState& console, std::string_view title, std::string_view question,
              bool yesPreset) {
  for (;;) {
    Show(console,
         std::string(title) + ": " + std::string(question) + (yesPreset ? " [Y/n] " : " [y/N] "));
    std::optional<std::string> answer = ReadConsoleAnswer(console);
    if (!answer) {
      Show(console, "\n");
      return false;
    }
    std::string_view word = Trim(*answer);
    if (word.empty()) return yesPreset;
    char first = static_cast<char>(std::tolower(static_cast<unsigned char>(word[0])));
    if (first == 'y') return true;
    if (first == 'n') return false;
  }
}

void ShowMessage(ConsoleState& console, std::string_view title, std::string_view text) {
  Show(console, std::string(title) + ": " + std::string(text) + "\n");
}

std::optional<std::string> FileOpenDialog(ConsoleState& console, std::string_view filterName,
                                          std::string_view pattern, std::string_view title,
                                          std::string_view startDirectory) {
  std::string prompt =
      std::string(title) + " [" + std::string(filterName) + ": " + std::string(pattern) + "]";
  if (!startDirectory.empty()) prompt += " in " + std::string(startDirectory);
  Show(console, prompt + " ");
  std::optional<std::string> answer = ReadConsoleAnswer(console);
  if (!answer) {
    Show(console, "\n");
    return std::nullopt;
  }
  std::string path = TrimmedCopy(*answer);
  if (path.empty()) return std::nullopt;
  if (path[0] != '/' && !startDirectory.empty()) path = std::string(startDirectory) + path;
  return path;
}

}  // namespace corvinet
