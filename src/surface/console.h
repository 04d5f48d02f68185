// Console lines, the stop box and the stop that unwinds a run to the entry of the program.
#pragma once

#include <string>
#include <string_view>

#include "format/text.h"
#include "records/channels.h"

namespace corvinet {

// The status the process returns to the shell.
enum class ExitStatus : int {
  kNormal = 0,  // a normal end, or an end the user asked for
  kError = 2,   // a stop on an error in the input or in the run
};

// Thrown to end the process on an error: by a stop box, or by an end of file
// on a unit where it is fatal. Caught only by Main.
struct ProcessStop {
  ExitStatus status = ExitStatus::kError;
  std::string reason;  // the text of the stop box
};

// Writes a console line: an empty text gives two blanks, a text that begins
// with "==" gets " =>" in front.
void ConsoleLine(Channels& channels, std::string_view text);

// Writes the text followed by a number: mode 1 the integer in I8, 2 the real
// in G12.4, 3 both joined by "and ".
void ConsoleLineWithNumber(Channels& channels, std::string_view text, int intValue, float realValue,
                           int mode);

// Blanks the text over its trimmed length.
void ClearText(std::string& text);

// Shows the box "Stop/Warning Box" with the text and ends the process on an
// error (exit status 2).
[[noreturn]] void StopBox(Channels& channels, std::string_view text);

// Shows the same box with the text and returns.
void WarningBox(Channels& channels, std::string_view text);

// Writes a line on a unit; unit 6 is the console.
void WriteLine(Channels& channels, int unit, std::string_view text);
// Writes a line on the report (unit 7) and the summary (unit 8).
void WriteReports(Channels& channels, std::string_view text);

}  // namespace corvinet
