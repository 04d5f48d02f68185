// Compact fixed-column notation (I5, F8.3, E12.5, A4, 2X, groups, '/'): compiled at run time, used
// to write and to read.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace corvinet {

// A malformed format text (unbalanced parentheses, unknown descriptor, missing width).
struct FormatTextError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// One edit item of a compiled format. Repeat counts of single descriptors are
// kept in `repeat`; groups are bracketed by GroupOpen/GroupClose items.
struct FormatItem {
  enum class Kind : std::uint8_t { I, F, E, G, A, X, Slash, Literal, GroupOpen, GroupClose };
  Kind kind = Kind::X;
  int repeat = 1;        // repeat count (items and groups)
  int width = 0;         // w of Iw, Fw.d, Ew.d, Gw.d, Aw (0 for A: the value's own length), n of nX
  int digits = 0;        // d of Fw.d, Ew.d, Gw.d; m of Iw.m (1 for a plain Iw, which means Iw.1)
  int exponent = 0;      // e of Ew.dEe (0: not given)
  int match = -1;        // for GroupOpen/GroupClose: index of the partner item
  std::string text;      // Literal text
  bool dLetter = false;  // Dw.d: an E item written with 'D' before the exponent
};

// A format text compiled once, usable any number of times for writing and reading.
struct CompiledFormat {
  std::vector<FormatItem> items;  // without the outer parentheses
  int reversionStart = 0;         // item index at which format reversion restarts
};

// Compiles a text such as "(3i4,2f12.2,i4,3f8.0)" or "(10X,'    CPU Time:',F10.3,' seconds')".
// Letters are case-insensitive; literals are quoted with ' or ". Throws FormatTextError.
CompiledFormat CompileFormat(std::string_view text);

// One value to be written.
struct FormatValue {
  enum class Kind : std::uint8_t { Int, Real, Text };
  Kind kind;
  long long i = 0;
  double r = 0.0;
  std::string_view t;
  FormatValue(int v) : kind(Kind::Int), i(v) {}
  FormatValue(long v) : kind(Kind::Int), i(v) {}
  FormatValue(long long v) : kind(Kind::Int), i(v) {}
  // Unsigned counts (sizes) above the long long range wrap around.
  FormatValue(unsigned v) : kind(Kind::Int), i(static_cast<long long>(v)) {}
  FormatValue(unsigned long v) : kind(Kind::Int), i(static_cast<long long>(v)) {}
  FormatValue(unsigned long long v) : kind(Kind::Int), i(static_cast<long long>(v)) {}
  FormatValue(float v) : kind(Kind::Real), r(static_cast<double>(v)) {}
  FormatValue(double v) : kind(Kind::Real), r(v) {}
  FormatValue(const char* v) : kind(Kind::Text), t(v) {}
  FormatValue(std::string_view v) : kind(Kind::Text), t(v) {}
  FormatValue(const std::string& v) : kind(Kind::Text), t(v) {}
};

// How numbers are fitted to their fields.
enum class FieldFit : std::uint8_t {
  kFortran,   // as Fortran writes them: a value too wide for its field comes out as stars
  kReadBack,  // as a file that is read again needs them (below)
};

// A number that is not finite, given to a kReadBack write.
struct NonFiniteValue : std::domain_error {
  using std::domain_error::domain_error;
};

// Writes the values under the format. '/' and format reversion (values left
// over at the end of the format) start new records. Output stops at the first
// data descriptor for which no value is left. A value too wide for its field
// fills the field with '*'. Returns the records, one string each, without
// line ends.
// Digits are those gfortran writes: reals are rounded from their exact binary
// value, ties to even; a negative value that rounds to zero, and negative zero,
// keep their minus sign ("-0.000"). Mixed kinds: an integer under F or E is
// converted to double, under G it is written as Iw (as Fortran does); a real
// under I is rounded to the nearest integer, halves away from zero ('*' when
// infinite, NaN or beyond the integer range). Text under I, F, E or G, a
// number under A, or values left over for a format without data descriptors
// throw std::invalid_argument; a real under Ew.0 or Gw.0 throws FormatTextError.
// With FieldFit::kReadBack every number is written so that a free-format
// reader gets it back to six significant digits: a real keeps its field when
// the field's decimals (or more, or fewer) hold six significant digits, and is
// otherwise written in exponent form, as wide as that needs; a number that
// would run into the number before it, or fill its field with stars, gets a
// blank in front and as many columns as it needs. A non-finite real throws
// NonFiniteValue.
std::vector<std::string> FormatRecords(const CompiledFormat& format,
                                       std::span<const FormatValue> values,
                                       FieldFit fit = FieldFit::kFortran);

// Compiles `format` and writes the values; records are joined with '\n'.
std::string FormatText(std::string_view format, std::span<const FormatValue> values,
                       FieldFit fit = FieldFit::kFortran);

template <typename... Args>
std::string Fmt(std::string_view format, const Args&... args) {
  const FormatValue values[] = {FormatValue(args)..., FormatValue(0)};
  return FormatText(format, std::span<const FormatValue>(values, sizeof...(Args)));
}

// Fmt for a file that is read again: every number reads back (FieldFit::kReadBack).
template <typename... Args>
std::string FmtReadBack(std::string_view format, const Args&... args) {
  const FormatValue values[] = {FormatValue(args)..., FormatValue(0)};
  return FormatText(format, std::span<const FormatValue>(values, sizeof...(Args)),
                    FieldFit::kReadBack);
}

// One place a read value goes to.
struct ReadTarget {
  enum class Kind : std::uint8_t { Int, Float, Double, Text };
  Kind kind;
  void* target;
  ReadTarget(int* p) : kind(Kind::Int), target(p) {}
  ReadTarget(float* p) : kind(Kind::Float), target(p) {}
  ReadTarget(double* p) : kind(Kind::Double), target(p) {}
  ReadTarget(std::string* p) : kind(Kind::Text), target(p) {}
};

// Outcome of a read.
enum class ReadStatus : std::uint8_t {
  Ok = 0,
  EndOfRecords,  // a record was needed and none was left
  BadValue,      // a field does not hold a value of its kind, or the value overflows
};

// Supplies the next record of the input; returns false when there is none.
using NextRecord = std::function<bool(std::string&)>;

// Reads values from fixed columns under the format. Blanks inside numeric
// fields are ignored and a blank field reads as 0; a real field whose text has
// its own decimal point keeps it, otherwise d implied decimals apply; exponents
// E, D, or a bare sign ("1.0-3") are accepted. A record shorter than the
// fields is padded with blanks. Text fields receive their characters with
// trailing blanks removed. '/' and reversion call `next`.
// An I field may fill a real target; a real field fills an integer target only
// with a whole number (else BadValue). A plain A (no width) takes the rest of
// the record. A carriage return ending a record is ignored. Text targets for
// numeric fields, numeric targets for A, literals and zero-width I/F fields
// throw std::invalid_argument.
ReadStatus ReadFormatted(const CompiledFormat& format, std::string_view record,
                         const NextRecord& next, std::span<const ReadTarget> targets);

// Reads one record under a format text; a '/' or reversion is EndOfRecords.
ReadStatus ReadFormattedLine(std::string_view format, std::string_view record,
                             std::span<const ReadTarget> targets);

// List-directed ("free format") reading: values separated by blanks, tabs or
// a comma, over as many records as needed (`next` supplies them); r*c repeats
// a value r times, r* skips r values, an empty field between two commas leaves
// its target unchanged, and '/' ends the list leaving the remaining targets
// unchanged. A text target takes a quoted string or a bare word.
ReadStatus ReadList(std::string_view record, const NextRecord& next,
                    std::span<const ReadTarget> targets);

// List-directed reading of one record only: running out of values is EndOfRecords.
ReadStatus ReadListLine(std::string_view record, std::span<const ReadTarget> targets);

}  // namespace corvinet
