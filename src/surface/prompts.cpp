// Dialogs of the program as prompts on the terminal.
#include "surface/prompts.h"

#include <cctype>
#include <cstdio>

#include "surface/console.h"

namespace corvinet {

namespace {

void Show(Job& job, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), job.console.out);
  std::fflush(job.console.out);
}

}  // namespace

std::optional<std::string> ReadConsoleAnswer(Job& job) {
  std::string line;
  int c = std::fgetc(job.console.in);
  if (c == EOF) return std::nullopt;
  while (c != EOF && c != '\n') {
    line.push_back(static_cast<char>(c));
    c = std::fgetc(job.console.in);
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

bool AskYesNo(Job& job, std::string_view title, std::string_view question, bool yesPreset) {
  for (;;) {
    Show(job,
         std::string(title) + ": " + std::string(question) + (yesPreset ? " [Y/n] " : " [y/N] "));
    std::optional<std::string> answer = ReadConsoleAnswer(job);
    if (!answer) {
      Show(job, "\n");
      return false;
    }
    std::string_view word = Trim(*answer);
    if (word.empty()) return yesPreset;
    char first = static_cast<char>(std::tolower(static_cast<unsigned char>(word[0])));
    if (first == 'y') return true;
    if (first == 'n') return false;
  }
}

std::optional<std::string> FileOpenDialog(Job& job, std::string_view filterName,
                                          std::string_view pattern, std::string_view title,
                                          std::string_view startDirectory) {
  std::string prompt =
      std::string(title) + " [" + std::string(filterName) + ": " + std::string(pattern) + "]";
  if (!startDirectory.empty()) prompt += " in " + std::string(startDirectory);
  Show(job, prompt + " ");
  std::optional<std::string> answer = ReadConsoleAnswer(job);
  if (!answer) {
    Show(job, "\n");
    return std::nullopt;
  }
  std::string path = TrimmedCopy(*answer);
  if (path.empty()) return std::nullopt;
  if (path[0] != '/' && !startDirectory.empty()) path = std::string(startDirectory) + path;
  return path;
}

}  // namespace corvinet
