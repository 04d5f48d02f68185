// Field-mask scanning of free-format lines: fields, their descriptors, and the report of bad
// fields.
#include "io/field_reader.h"

#include <algorithm>
#include <vector>

#include "io/field_range.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr std::size_t kLineLength = 132;
constexpr std::size_t kFormatLength = 132;

bool IsSign(char c) {
  return c == '+' || c == '-';
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsExponentLetter(char c) {
  return c == 'E' || c == 'e' || c == 'D' || c == 'd';
}

// Reads records until one is neither a comment ("!" in column 1) nor blank.
// Returns false at the end of the data unit.
bool ReadQualifyingLine(Job& job, int unit, std::string& line, int& lineNumber, int& error) {
  for (;;) {
    RecordRead got = ReadRecord(job.files.units[unit], line, kLineLength);
    if (got == RecordRead::End) {
      error = FieldError::EndOfFile;
      ConsoleLine(job, Fmt("(A,I3)", " => Not FATAL End of file !,  logical unit: ", unit));
      if (unit == Unit::Data) return false;
      throw ProcessStop{ExitStatus::kError, "End of file of " + job.files.units[unit].name};
    }
    if (got == RecordRead::Error) {
      error = -1 - 100;
      ReportFieldError(job, error, line, 0);
      StopAtLine(job, lineNumber);
    }
    if (!line.empty() && line[0] != '!' && !TrimRight(line).empty()) return true;
    ++lineNumber;
  }
}

// A tab separates fields as a blank does: each becomes one blank, so that the
// columns of the caret report stay those of the line as read.
void BlankTabs(std::string& line) {
  std::replace(line.begin(), line.end(), '\t', ' ');
}

// Stops the run with the report of `error`.
[[noreturn]] void Fail(Job& job, int error, std::string_view line, int position, int lineNumber) {
  ReportFieldError(job, error, line, position);
  StopAtLine(job, lineNumber);
}

}  // namespace

void ToUpper(std::string& text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
}

void ToLower(std::string& text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
}

int NextDescriptor(std::string_view mask, int& maskPos, int maskLen, int& error) {
  if (maskPos >= maskLen) return 0;
  char c = mask[static_cast<std::size_t>(maskPos)];
  ++maskPos;
  if (c == 'I' || c == 'i') return kDescriptorInteger;
  if (c == 'F' || c == 'f') return kDescriptorReal;
  if (c >= '1' && c <= '9') return c;
  error = FieldError::BadMaskLetter;
  return 0;
}

namespace {

// Where the walk of a numeric field stands: the line, the position after the
// last character taken and the width of the field so far.
struct NumberWalk {
  std::string& line;
  int lineLen;
  int& position;
  int& width;
  int& error;
  // Takes the next character; false at the end of the line.
  bool Take(char& c) {
    if (position >= lineLen) return false;
    ++position;
    ++width;
    c = line[static_cast<std::size_t>(position - 1)];
    return true;
  }
  // Gives the last character back: it belongs to the next field.
  void GiveBack() {
    --position;
    --width;
  }
  bool Fail(int code) {
    error = code;
    return false;
  }
};

// Stage 1: skips blanks and signs up to the first character of the number.
// False when the field ends here (with or without an error).
bool FindNumberStart(NumberWalk& walk, char& c) {
  bool signSeen = false;
  for (;;) {
    if (!walk.Take(c)) return false;
    if (c == ' ') {
      if (signSeen) return walk.Fail(FieldError::IncompleteNumber);
      continue;
    }
    if (IsSign(c)) {
      signSeen = true;
      continue;
    }
    return true;
  }
}

// Stage 2: a later field must be set apart by a separator; the number opens
// with a digit, or with a point in a real. False with the error set otherwise.
bool JudgeFirstCharacter(NumberWalk& walk, int kind, int start, char c, bool& dotSeen) {
  if (start >= 2 && walk.width == 1) return walk.Fail(FieldError::SeparatorMissing);
  if (c == '.') {
    if (kind == kDescriptorInteger) return walk.Fail(FieldError::IntegerFoundReal);
    dotSeen = true;
    return true;
  }
  if (IsExponentLetter(c)) {
    return walk.Fail(kind == kDescriptorInteger ? FieldError::BadIntegerCharacter
                                                : FieldError::IncompleteExponent);
  }
  if (!IsDigit(c)) return walk.Fail(FieldError::BadNumericCharacter);
  return true;
}

enum class NumberStep { Next, End, Error };

// One character inside the number after `previous`: a blank ends it, a sign
// ends it too unless it follows an exponent letter in a real.
NumberStep JudgeNumberCharacter(NumberWalk& walk, int kind, char c, char previous, bool& dotSeen) {
  const auto fail = [&](int code) {
    walk.Fail(code);
    return NumberStep::Error;
  };
  if (c == ' ') {
    if (IsSign(previous)) return fail(FieldError::IncompleteNumber);
    walk.GiveBack();
    return NumberStep::End;
  }
  if (c == '.') {
    if (dotSeen) return fail(FieldError::BeggedDot);
    if (kind == kDescriptorInteger) return fail(FieldError::IntegerFoundReal);
    dotSeen = true;
  } else if (IsSign(c)) {
    if (IsSign(previous)) return fail(FieldError::BeggedDot);
    if (kind == kDescriptorInteger || !IsExponentLetter(previous)) {
      // A sign ends the field: "12-3" and "1.5-2.5" are two fields.
      walk.GiveBack();
      return NumberStep::End;
    }
  } else if (IsExponentLetter(c)) {
    if (kind == kDescriptorInteger) return fail(FieldError::BadIntegerCharacter);
    if (IsSign(previous)) return fail(FieldError::IncompleteExponent);
    if (previous == c) return fail(FieldError::BeggedDot);
  } else if (!IsDigit(c)) {
    return fail(FieldError::BadNumericCharacter);
  }
  return NumberStep::Next;
}

}  // namespace

void ScanNumber(int kind, std::string& line, int lineLen, int& position, int& width, int& error) {
  const int start = position;
  width = 0;
  NumberWalk walk{line, lineLen, position, width, error};
  char c = ' ';
  if (!FindNumberStart(walk, c)) return;
  bool dotSeen = false;
  if (!JudgeFirstCharacter(walk, kind, start, c, dotSeen)) return;
  // Stage 3: walk over the number.
  char previous = c;
  while (walk.Take(c)) {
    if (JudgeNumberCharacter(walk, kind, c, previous, dotSeen) != NumberStep::Next) return;
    previous = c;
  }
}

void ScanText(int kind, std::string_view line, int lineLen, int& position, int& width, int& skip,
              int& error) {
  const int n = kind - '0';
  width = 0;
  skip = 0;
  if (position >= lineLen) return;
  if (position > 1) {
    if (line[static_cast<std::size_t>(position)] != ' ') {
      ++position;
      error = FieldError::SeparatorMissing;
      return;
    }
    ++position;
    ++width;
  }
  while (position < lineLen && line[static_cast<std::size_t>(position)] == ' ') {
    ++position;
    ++width;
  }
  skip = width;
  int taken = 0;
  while (position < lineLen && taken < n) {
    if (line[static_cast<std::size_t>(position)] == ' ') break;
    ++position;
    ++width;
    ++taken;
  }
  if (taken == 0) error = FieldError::EmptyField;
}

void AppendDescriptor(int kind, int width, int skip, std::string& format, int& error) {
  std::string item;
  if (kind == kDescriptorInteger) {
    item = "I" + std::to_string(width) + ",";
  } else if (kind == kDescriptorReal) {
    item = "F" + std::to_string(width) + ".0,";
  } else {
    if (skip > 0) item = std::to_string(skip) + "X,";
    item += "A" + std::to_string(width - skip) + ",";
  }
  if (format.size() + item.size() > kFormatLength) {
    error = FieldError::FormatTooLong;
    return;
  }
  format += item;
}

std::string FieldErrorText(int error) {
  switch (error) {
    case -1:
      return "FindFMT: End of file !";
    case 0:
      return "FindFMT: no error";
    case 1:
      return "FindFMT: empty format descriptor (0 field) !";
    case 2:
      return "FindFMT: data string, read error !";
    case 3:
      return "FindFMT: integer field found real !";
    case 4:
      return "FindFMT: begged dot, sign or \"e\" character !";
    case 5:
      return "FindFMT: invalid character in an integer field !";
    case 6:
      return "FindFMT: invalid field in format descriptor !";
    case 7:
      return "FindFMT: invalid character in a numeric field !";
    case 8:
      return "FindFMT: 0 character in current field !";
    case 9:
      return "FindFMT: format string length exceeded !";
    case 10:
      return "FindFMT: separator missing !";
    case 11:
      return "FindFMT: incomplete E or D format !";
    case 12:
      return "FindFMT: incomplete number !";
    default:
      break;
  }
  if (error < -1)
    return Fmt("(A,I0)", "FindFMT: error reading the data line, error number:", -error - 100);
  return Fmt("(A,I0)", "FMT decode error number:", error);
}

void ShowLineWithCaret(Job& job, std::string_view line, int position) {
  std::string_view text = TrimRight(line);
  // The caret stands under column `position` of the line as shown.
  if (text.size() <= 129) {
    ConsoleLine(job, "\"" + std::string(text) + "\"");
    if (position == 2) {
      ConsoleLine(job, "  ^----");
      ConsoleLine(job, "");
    } else {
      ConsoleLine(
          job, " " + std::string(static_cast<std::size_t>(std::max(position - 1, 0)), '-') + "^");
    }
  } else {
    ConsoleLine(job, text);
    ConsoleLine(job, position <= 1
                         ? std::string("^")
                         : " " + std::string(static_cast<std::size_t>(position - 2), '-') + "^");
  }
}

void ReportFieldError(Job& job, int error, std::string_view line, int position) {
  if (error == 0 || error == -1) return;
  ConsoleLine(job, FieldErrorText(error));
  ShowLineWithCaret(job, line, position);
}

void StopAtLine(Job& job, int lineNumber) {
  StopBox(job, Fmt("(A,I0,A)", " => Please check your input file at line: ", lineNumber, " !"));
}

void FindFMT(Job& job, int unit, std::string& line, std::string& mask, std::string& format,
             int& position, int& lineNumber, int& error) {
  position = 0;
  error = 0;
  int maskPos = 0;
  format = "(";
  std::string_view trimmedMask = Trim(mask);
  if (trimmedMask.empty()) {
    error = FieldError::EmptyMask;
    Fail(job, error, line, position, lineNumber);
  }
  mask = std::string(trimmedMask);
  ToUpper(mask);
  if (unit > 0 && !ReadQualifyingLine(job, unit, line, lineNumber, error)) return;
  BlankTabs(line);

  const int lineLen = static_cast<int>(TrimRight(line).size());
  const int maskLen = static_cast<int>(mask.size());
  bool lineExhausted = false;
  for (;;) {
    int kind = NextDescriptor(mask, maskPos, maskLen, error);
    if (error != 0) Fail(job, error, line, position, lineNumber);
    if (kind == 0) break;
    int width = 0;
    int skip = 0;
    if (kind > 0) {
      ScanText(kind, line, lineLen, position, width, skip, error);
      if (error == FieldError::EmptyField) return;
    } else {
      ScanNumber(kind, line, lineLen, position, width, error);
      if (error == 0 && width == 0) {
        error = FieldError::EmptyField;
        return;
      }
    }
    if (error != 0) Fail(job, error, line, position, lineNumber);
    AppendDescriptor(kind, width, skip, format, error);
    if (error != 0) Fail(job, error, line, position, lineNumber);
    if (position >= lineLen) {
      lineExhausted = true;
      break;
    }
  }
  if (lineExhausted) {
    // Fields beyond the end of the line read as blanks: 0 or an empty text.
    for (;;) {
      int kind = NextDescriptor(mask, maskPos, maskLen, error);
      if (error != 0) Fail(job, error, line, position, lineNumber);
      if (kind == 0) break;
      AppendDescriptor(kind, 1, 0, format, error);
      if (error != 0) Fail(job, error, line, position, lineNumber);
    }
  }
  if (format.back() == ',')
    format.back() = ')';
  else
    format += ')';
}

int ReadMaskedLine(Job& job, int unit, std::string_view mask, int& lineNumber,
                   std::initializer_list<ReadTarget> targets, std::string* lineOut) {
  return ReadMaskedLineList(job, unit, mask, lineNumber,
                            std::span<const ReadTarget>(targets.begin(), targets.size()), lineOut);
}

int ReadMaskedLineList(Job& job, int unit, std::string_view mask, int& lineNumber,
                       std::span<const ReadTarget> targets, std::string* lineOut) {
  FieldLine read = ReadFieldLine(job, unit, mask, lineNumber, targets);
  if (lineOut != nullptr) *lineOut = std::move(read.text);
  return read.error;
}

FieldLine ReadFieldLine(Job& job, int unit, std::string_view mask, int& lineNumber,
                        std::span<const ReadTarget> targets) {
  FieldLine read;
  std::string maskText(mask);
  int position = 0;
  ++lineNumber;
  FindFMT(job, unit, read.text, maskText, read.format, position, lineNumber, read.error);
  read.lineNumber = lineNumber;
  if (read.error == FieldError::EndOfFile) return read;
  if (read.format.back() == ',') read.format.back() = ')';
  if (read.format == "(") return read;
  ReadStatus status = ReadFormattedLine(read.format, read.text, targets);
  if (status == ReadStatus::BadValue) {
    ReportFieldError(job, FieldError::ReadError, read.text, position);
    StopAtLine(job, lineNumber);
  }
  CheckReadValues(job, read, targets);
  return read;
}

}  // namespace corvinet
