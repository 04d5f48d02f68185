// Free-format scanning of control-file lines under a field mask, with the caret report of bad
// fields.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "format/fortran_format.h"
#include "records/job.h"

namespace corvinet {

// Error codes of the field reader.
namespace FieldError {
constexpr int EndOfFile = -1;
constexpr int None = 0;
constexpr int EmptyMask = 1;
constexpr int ReadError = 2;
constexpr int IntegerFoundReal = 3;
constexpr int BeggedDot = 4;
constexpr int BadIntegerCharacter = 5;
constexpr int BadMaskLetter = 6;
constexpr int BadNumericCharacter = 7;
constexpr int EmptyField = 8;
constexpr int FormatTooLong = 9;
constexpr int SeparatorMissing = 10;
constexpr int IncompleteExponent = 11;
constexpr int IncompleteNumber = 12;
}  // namespace FieldError

constexpr int kDescriptorInteger = -1;
constexpr int kDescriptorReal = -2;

// Skips comment and blank lines of `unit` (none when unit <= 0: `line` is
// scanned as given), reads the next line and builds in `format` the edit
// descriptors of the fields the mask asks for. Every tab of the line becomes a
// blank first, so tabs separate fields anywhere. Field errors are reported with
// a caret and stop the run; an end of file stops it too, except on the data
// unit 4, where error is -1 on return.
void FindFMT(Job& job, int unit, std::string& line, std::string& mask, std::string& format,
             int& position, int& lineNumber, int& error);

// Next letter of the mask: -1 integer, -2 real, the character '1'..'9' for a
// text field, 0 at the end (or with error 6 for any other letter).
int NextDescriptor(std::string_view mask, int& maskPos, int maskLen, int& error);

// Scanners of one field of a line without tabs, starting behind column `position`; on return
// `position` is the last column taken, `width` the columns from the start.
void ScanNumber(int kind, std::string& line, int lineLen, int& position, int& width, int& error);
void ScanText(int kind, std::string_view line, int lineLen, int& position, int& width, int& skip,
              int& error);

// Appends the descriptor of one field to `format`.
void AppendDescriptor(int kind, int width, int skip, std::string& format, int& error);

// Writes the message of `error`, the line and a caret under column `position`.
void ReportFieldError(Job& job, int error, std::string_view line, int position);

// Writes the line (quoted when it is short enough) and a caret under column `position`.
void ShowLineWithCaret(Job& job, std::string_view line, int position);

// The text of an error code.
std::string FieldErrorText(int error);

void ToUpper(std::string& text);
void ToLower(std::string& text);

// One numeric or text line of a file read under a mask: the calling pattern of
// all readers. Adds 1 to `lineNumber`, reads the line and its values into the
// targets; a value that cannot be read stops the run. Returns the field
// reader's error code (0, 8, or -1 at the end of the data unit).
int ReadMaskedLine(Job& job, int unit, std::string_view mask, int& lineNumber,
                   std::initializer_list<ReadTarget> targets, std::string* lineOut = nullptr);

// The same with a list of targets built at run time.
int ReadMaskedLineList(Job& job, int unit, std::string_view mask, int& lineNumber,
                       std::span<const ReadTarget> targets, std::string* lineOut = nullptr);

// A line read under a mask, kept for the range checks of its values (io/field_range.h).
struct FieldLine {
  std::string text;    // the line as read
  std::string format;  // its field list, as FindFMT builds it
  int lineNumber = 0;  // its number in the file
  int error = 0;       // the field reader's code: 0, 8, or -1 at the end of the data unit
};

// ReadMaskedLineList that keeps the line for the range checks of its values.
FieldLine ReadFieldLine(Job& job, int unit, std::string_view mask, int& lineNumber,
                        std::span<const ReadTarget> targets);
inline FieldLine ReadFieldLine(Job& job, int unit, std::string_view mask, int& lineNumber,
                               std::initializer_list<ReadTarget> targets) {
  return ReadFieldLine(job, unit, mask, lineNumber,
                       std::span<const ReadTarget>(targets.begin(), targets.size()));
}

// The stop that closes every report of a bad line.
[[noreturn]] void StopAtLine(Job& job, int lineNumber);

}  // namespace corvinet
