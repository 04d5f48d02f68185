// Range checks of values read from control and data lines, reported with the line and a caret.
#include "io/field_range.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <string>

#include "surface/console.h"

namespace corvinet {

namespace {

// Reads the number at `at` of the field list and steps over it.
int ListNumber(std::string_view format, std::size_t& at) {
  int value = 0;
  while (at < format.size() && std::isdigit(static_cast<unsigned char>(format[at])) != 0) {
    value = value * 10 + (format[at] - '0');
    ++at;
  }
  return value;
}

std::string RangeWords(std::string_view name, long long value, long long low, long long high) {
  return Fmt("(A,A,A,I0,A,I0,A,I0)", " => ", name, " = ", value, " is outside its range: ", low,
             " to ", high);
}

}  // namespace

int FieldLastColumn(std::string_view format, int field) {
  // The list holds Iw, Fw.0, Aw and sX items, comma-separated in parentheses.
  int column = 0;
  int seen = 0;
  std::size_t at = 0;
  while (at < format.size()) {
    const char c = format[at];
    if (std::isdigit(static_cast<unsigned char>(c)) != 0) {
      const int skip = ListNumber(format, at);
      if (at < format.size() && (format[at] == 'X' || format[at] == 'x')) column += skip;
      continue;
    }
    ++at;
    if (c != 'I' && c != 'F' && c != 'A') continue;
    column += ListNumber(format, at);
    if (++seen == field) return column;
  }
  return 0;
}

void StopOnField(Job& job, const FieldLine& read, int field, std::string_view words) {
  ConsoleLine(job, words);
  WriteLine(job, Unit::Out, words);
  ShowLineWithCaret(job, read.text, FieldLastColumn(read.format, field));
  StopAtLine(job, read.lineNumber);
}

void CheckIntegerField(Job& job, const FieldLine& read, int field, std::string_view name, int value,
                       int low, int high) {
  if (value >= low && value <= high) return;
  StopOnField(job, read, field, RangeWords(name, value, low, high));
}

void CheckReadValues(Job& job, const FieldLine& read, std::span<const ReadTarget> targets) {
  int field = 0;
  for (const ReadTarget& target : targets) {
    ++field;
    switch (target.kind) {
      case ReadTarget::Kind::Int: {
        const int value = *static_cast<const int*>(target.target);
        if (std::abs(static_cast<long long>(value)) > kLargestIntegerField) {
          StopOnField(job, read, field,
                      RangeWords(Fmt("(A,I0)", "Integer field ", field), value,
                                 -kLargestIntegerField, kLargestIntegerField));
        }
        break;
      }
      case ReadTarget::Kind::Float:
        if (!std::isfinite(*static_cast<const float*>(target.target))) {
          StopOnField(job, read, field,
                      Fmt("(A,I0,A)", " => The number of field ", field, " is not finite"));
        }
        break;
      case ReadTarget::Kind::Double:
        if (!std::isfinite(*static_cast<const double*>(target.target))) {
          StopOnField(job, read, field,
                      Fmt("(A,I0,A)", " => The number of field ", field, " is not finite"));
        }
        break;
      case ReadTarget::Kind::Text:
        break;
    }
  }
}

}  // namespace corvinet
