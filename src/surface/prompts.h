// Terminal forms of the dialogs: Yes/No questions, the file-open dialog and console answers.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "records/channels.h"

namespace corvinet {

// Asks a Yes/No question; an empty answer takes the preset, end of input answers No.
bool AskYesNo(ConsoleState& console, std::string_view title, std::string_view question,
              bool yesPreset);

// The file-open dialog: shows the title, the filter and the start directory and
// reads a path. A relative answer is taken inside the start directory. An empty
// answer or end of input cancels.
std::optional<std::string> FileOpenDialog(ConsoleState& console, std::string_view filterName,
                                          std::string_view pattern, std::string_view title,
                                          std::string_view startDirectory);

// A message window with one button: on the terminal the title and the text
// are shown and the run goes on (there is nothing to answer).
void ShowMessage(ConsoleState& console, std::string_view title, std::string_view text);

// Reads one answer line from the terminal; empty at end of input.
std::optional<std::string> ReadConsoleAnswer(ConsoleState& console);

}  // namespace corvinet
