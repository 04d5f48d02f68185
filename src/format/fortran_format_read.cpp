// Reads fixed-column values under a compiled format, and list-directed ("free format") values.
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string>

#include "format/fortran_format.h"
#include "format/fortran_format_walk.h"

namespace corvinet {
namespace {

char Upper(char c) {
  return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// A record as handed over, without the carriage return of a DOS line end.
std::string_view WithoutCarriageReturn(std::string_view record) {
  if (!record.empty() && record.back() == '\r') record.remove_suffix(1);
  return record;
}

// ---------------------------------------------------------------------------
// Numbers

enum class Parsed : std::uint8_t { Ok, Empty, Bad };

// An integer read from text. `overflow` marks a value beyond long long.
struct IntegerText {
  long long value = 0;
  bool overflow = false;
};

// [sign]digits. With `blanksIgnored` (formatted I fields) blanks anywhere are
// skipped and a field of blanks only is Empty; a sign without digits is Bad.
Parsed ParseInteger(std::string_view text, bool blanksIgnored, IntegerText& out) {
  std::size_t i = 0;
  const std::size_t n = text.size();
  const auto skip = [&] {
    if (blanksIgnored) {
      while (i < n && text[i] == ' ') ++i;
    }
  };
  skip();
  bool negative = false;
  bool sign = false;
  if (i < n && (text[i] == '+' || text[i] == '-')) {
    negative = text[i] == '-';
    sign = true;
    ++i;
  }
  unsigned long long magnitude = 0;
  int digits = 0;
  for (skip(); i < n; ++i, skip()) {
    if (!IsDigit(text[i])) return Parsed::Bad;
    if (magnitude > (ULLONG_MAX - 9) / 10) {
      out.overflow = true;
    } else {
      magnitude = magnitude * 10 + static_cast<unsigned>(text[i] - '0');
    }
    ++digits;
  }
  if (digits == 0) return sign ? Parsed::Bad : Parsed::Empty;
  if (magnitude > static_cast<unsigned long long>(LLONG_MAX)) out.overflow = true;
  out.value = out.overflow ? 0
                           : (negative ? -static_cast<long long>(magnitude)
                                       : static_cast<long long>(magnitude));
  return Parsed::Ok;
}

// A real number read from text, in the form "[-]digits e exponent" (no decimal
// point, so the conversion does not depend on the locale), or a special value.
struct RealText {
  std::string canonical;
  enum class Special : std::uint8_t { None, Infinity, NaN } special = Special::None;
  bool negative = false;
};

bool EqualsUpper(std::string_view text, std::string_view upper) {
  if (text.size() != upper.size()) return false;
  for (std::size_t k = 0; k < text.size(); ++k) {
    if (Upper(text[k]) != upper[k]) return false;
  }
  return true;
}

// A walk over the text of a real: the position and, for formatted fields, the
// blanks skipped after every character taken.
struct RealCursor {
  std::string_view text;
  bool blanksIgnored = false;
  std::size_t i = 0;
  bool AtEnd() const { return i >= text.size(); }
  char Current() const { return text[i]; }
  void Skip() {
    if (blanksIgnored) {
      while (i < text.size() && text[i] == ' ') ++i;
    }
  }
  void Take() {
    ++i;
    Skip();
  }
  // Takes a '+' or '-' when there is one; true for '-'.
  bool TakeSign() {
    if (AtEnd() || (Current() != '+' && Current() != '-')) return false;
    const bool negative = Current() == '-';
    Take();
    return negative;
  }
};

// The words INF, INFINITY and NAN (any case) from the cursor to the end.
Parsed ParseSpecialWord(const RealCursor& at, RealText& out) {
  std::string_view word = at.text.substr(at.i);
  if (at.blanksIgnored) {
    while (!word.empty() && word.back() == ' ') word.remove_suffix(1);
  }
  if (EqualsUpper(word, "INF") || EqualsUpper(word, "INFINITY")) {
    out.special = RealText::Special::Infinity;
    return Parsed::Ok;
  }
  if (EqualsUpper(word, "NAN")) {
    out.special = RealText::Special::NaN;
    return Parsed::Ok;
  }
  return Parsed::Bad;
}

// What the digits before the exponent held.
struct Mantissa {
  bool zeroSeen = false;
  bool anyDigit = false;  // a digit other than 0
  bool point = false;
  int afterPoint = 0;
};

// Digits with at most one point; the significant digits go to `canonical`.
Mantissa ParseMantissa(RealCursor& at, std::string& canonical) {
  Mantissa m;
  for (; !at.AtEnd(); ++at.i, at.Skip()) {
    const char c = at.Current();
    if (IsDigit(c)) {
      // Leading zeros do not change the digit string's value; leaving them out keeps it short.
      if (c != '0' || m.anyDigit) canonical += c;
      if (c != '0') m.anyDigit = true;
      if (m.point) ++m.afterPoint;
      m.zeroSeen = m.zeroSeen || c == '0';
    } else if (c == '.' && !m.point) {
      m.point = true;
    } else {
      break;
    }
  }
  return m;
}

// The exponent after the mantissa: (E|D|Q)[sign]digits or sign digits; at
// least one digit and nothing after them.
Parsed ParseExponent(RealCursor& at, long& exponent) {
  const char c = Upper(at.Current());
  if (c == 'E' || c == 'D' || c == 'Q') {
    at.Take();
  } else if (c != '+' && c != '-') {
    return Parsed::Bad;
  }
  const bool negative = at.TakeSign();
  int digits = 0;
  for (; !at.AtEnd(); ++at.i, at.Skip()) {
    if (!IsDigit(at.Current())) return Parsed::Bad;
    if (exponent < 1'000'000) exponent = exponent * 10 + (at.Current() - '0');
    ++digits;
  }
  if (digits == 0) return Parsed::Bad;
  if (negative) exponent = -exponent;
  return Parsed::Ok;
}

// [sign] digits [. digits] [exponent], exponent = (E|D|Q)[sign]digits or
// sign digits ("1.5-3"). Without a decimal point in the text, `implied`
// decimals are assumed. INF, INFINITY and NAN are accepted. With
// `blanksIgnored` (formatted fields) blanks anywhere are skipped, and a text
// with neither digits nor exponent (blank, "-", ".") is Empty.
Parsed ParseReal(std::string_view text, int implied, bool blanksIgnored, RealText& out) {
  RealCursor at{text, blanksIgnored};
  out.canonical.clear();
  out.special = RealText::Special::None;
  at.Skip();
  out.negative = at.TakeSign();
  if (!at.AtEnd() && (Upper(at.Current()) == 'I' || Upper(at.Current()) == 'N')) {
    return ParseSpecialWord(at, out);
  }
  if (out.negative) out.canonical += '-';
  const Mantissa m = ParseMantissa(at, out.canonical);
  long exponent = 0;
  const bool hasExponent = !at.AtEnd();
  if (hasExponent && ParseExponent(at, exponent) == Parsed::Bad) return Parsed::Bad;
  if (!m.anyDigit && !m.zeroSeen) {
    return (hasExponent || !blanksIgnored) ? Parsed::Bad : Parsed::Empty;
  }
  if (!m.anyDigit) {
    out.canonical += '0';  // a signed zero
    return Parsed::Ok;
  }
  exponent -= m.point ? m.afterPoint : implied;
  out.canonical += 'e';
  out.canonical += std::to_string(exponent);
  return Parsed::Ok;
}

[[noreturn]] void WrongTarget(const char* what) {
  throw std::invalid_argument(what);
}

// Stores an integer; a value outside the target's range is BadValue.
ReadStatus StoreInteger(const ReadTarget& target, const IntegerText& number) {
  if (number.overflow) return ReadStatus::BadValue;
  switch (target.kind) {
    case ReadTarget::Kind::Int:
      if (number.value < INT_MIN || number.value > INT_MAX) return ReadStatus::BadValue;
      *static_cast<int*>(target.target) = static_cast<int>(number.value);
      return ReadStatus::Ok;
    case ReadTarget::Kind::Float:
      *static_cast<float*>(target.target) = static_cast<float>(number.value);
      return ReadStatus::Ok;
    case ReadTarget::Kind::Double:
      *static_cast<double*>(target.target) = static_cast<double>(number.value);
      return ReadStatus::Ok;
    case ReadTarget::Kind::Text:
      break;
  }
  WrongTarget("a text target for an integer field");
}

// Stores a real number, rounded once to the target's precision. A finite text
// whose value overflows the target is BadValue. An integer target accepts a
// real text only if its value is a whole number within range.
ReadStatus StoreReal(const ReadTarget& target, const RealText& number) {
  if (target.kind == ReadTarget::Kind::Float) {
    float value = 0;
    if (number.special == RealText::Special::Infinity) {
      value = number.negative ? -std::numeric_limits<float>::infinity()
                              : std::numeric_limits<float>::infinity();
    } else if (number.special == RealText::Special::NaN) {
      value = std::numeric_limits<float>::quiet_NaN();
    } else {
      value = std::strtof(number.canonical.c_str(), nullptr);
      if (std::isinf(value)) return ReadStatus::BadValue;
    }
    *static_cast<float*>(target.target) = value;
    return ReadStatus::Ok;
  }
  double value = 0;
  if (number.special == RealText::Special::Infinity) {
    value = number.negative ? -std::numeric_limits<double>::infinity()
                            : std::numeric_limits<double>::infinity();
  } else if (number.special == RealText::Special::NaN) {
    value = std::numeric_limits<double>::quiet_NaN();
  } else {
    value = std::strtod(number.canonical.c_str(), nullptr);
    if (std::isinf(value)) return ReadStatus::BadValue;
  }
  switch (target.kind) {
    case ReadTarget::Kind::Double:
      *static_cast<double*>(target.target) = value;
      return ReadStatus::Ok;
    case ReadTarget::Kind::Int:
      if (!(value >= INT_MIN && value <= INT_MAX) || value != std::floor(value)) {
        return ReadStatus::BadValue;
      }
      *static_cast<int*>(target.target) = static_cast<int>(value);
      return ReadStatus::Ok;
    default:
      break;
  }
  WrongTarget("a text target for a real field");
}

std::string_view WithoutTrailingBlanks(std::string_view text) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// ---------------------------------------------------------------------------
// Formatted reading

// Reads one fixed-column field (already cut from the record; a part beyond
// the end of the record is simply missing, which reads as blanks).
ReadStatus ReadField(const FormatItem& item, std::string_view field, const ReadTarget& target,
                     RealText& scratch) {
  if (item.kind == FormatItem::Kind::A) {
    if (target.kind != ReadTarget::Kind::Text) WrongTarget("a numeric target for an A field");
    static_cast<std::string*>(target.target)->assign(WithoutTrailingBlanks(field));
    return ReadStatus::Ok;
  }
  if (target.kind == ReadTarget::Kind::Text) WrongTarget("a text target for a numeric field");
  if (item.kind == FormatItem::Kind::I) {
    IntegerText number;
    const Parsed parsed = ParseInteger(field, true, number);
    if (parsed == Parsed::Bad) return ReadStatus::BadValue;
    return StoreInteger(target, number);
  }
  const Parsed parsed = ParseReal(field, item.digits, true, scratch);
  if (parsed == Parsed::Bad) return ReadStatus::BadValue;
  if (parsed == Parsed::Empty) return StoreInteger(target, IntegerText{});
  return StoreReal(target, scratch);
}

}  // namespace

ReadStatus ReadFormatted(const CompiledFormat& format, std::string_view record,
                         const NextRecord& next, std::span<const ReadTarget> targets) {
  std::string storage;
  RealText scratch;
  std::string_view current = WithoutCarriageReturn(record);
  std::size_t pos = 0;
  std::size_t used = 0;
  bool readThisPass = false;
  const auto nextRecord = [&]() -> bool {
    if (!next || !next(storage)) return false;
    current = WithoutCarriageReturn(storage);
    pos = 0;
    return true;
  };

  format_detail::FormatWalker walker(format);
  for (;;) {
    const FormatItem* item = walker.Next();
    if (item == nullptr) {
      if (used == targets.size()) return ReadStatus::Ok;
      if (!readThisPass) {
        throw std::invalid_argument("format has no data edit descriptor for the targets left");
      }
      // Format reversion: on in the next record, from the reversion point.
      readThisPass = false;
      if (!nextRecord()) return ReadStatus::EndOfRecords;
      walker.Revert();
      continue;
    }
    switch (item->kind) {
      case FormatItem::Kind::X:
        pos += static_cast<std::size_t>(item->width) * static_cast<std::size_t>(item->repeat);
        break;
      case FormatItem::Kind::Slash:
        for (int r = 0; r < item->repeat; ++r) {
          if (!nextRecord()) return ReadStatus::EndOfRecords;
        }
        break;
      case FormatItem::Kind::Literal:
        throw std::invalid_argument("a literal in a format used for reading");
      case FormatItem::Kind::I:
      case FormatItem::Kind::F:
      case FormatItem::Kind::E:
      case FormatItem::Kind::G:
      case FormatItem::Kind::A:
        for (int r = 0; r < item->repeat; ++r) {
          if (used == targets.size()) return ReadStatus::Ok;
          std::size_t width = static_cast<std::size_t>(item->width);
          if (width == 0) {
            // A without a width takes the rest of the record; I0 and F0.d cannot be read.
            if (item->kind != FormatItem::Kind::A) {
              throw std::invalid_argument("a zero-width field cannot be read");
            }
            width = current.size() > pos ? current.size() - pos : 0;
          }
          const std::string_view field = pos < current.size() ? current.substr(pos, width) : "";
          pos += width;
          const ReadStatus status = ReadField(*item, field, targets[used], scratch);
          if (status != ReadStatus::Ok) return status;
          ++used;
          readThisPass = true;
        }
        break;
      default:
        break;
    }
  }
}

ReadStatus ReadFormattedLine(std::string_view format, std::string_view record,
                             std::span<const ReadTarget> targets) {
  return ReadFormatted(CompileFormat(format), record, NextRecord(), targets);
}

// ---------------------------------------------------------------------------
// List-directed reading

namespace {

bool IsListBlank(char c) {
  return c == ' ' || c == '\t';
}
bool EndsListValue(char c) {
  return IsListBlank(c) || c == ',' || c == '/';
}

// Splits list-directed input into values. Separators are blanks, tabs, one
// comma (with blanks around it), a slash, or the end of a record, which counts
// as a blank: a comma at the start of a following record still separates the
// value before it. A comma with no value before it (at the very start, or
// after another comma) stands for a null value.
class ListScanner {
 public:
  enum class Token : std::uint8_t { Value, Null, Slash, End, Bad };

  ListScanner(std::string_view record, const NextRecord& next)
      : record_(WithoutCarriageReturn(record)), next_(next) {}

  // The next value: its text (valid until the next call) and whether it was quoted.
  Token Next(std::string_view& value, bool& quoted) {
    if (repeatLeft_ > 0) {
      --repeatLeft_;
      if (repeatNull_) return Token::Null;
      value = repeatText_;
      quoted = repeatQuoted_;
      return Token::Value;
    }
    for (;;) {
      while (pos_ < record_.size() && IsListBlank(record_[pos_])) ++pos_;
      if (pos_ == record_.size()) {
        if (!FetchRecord()) return Token::End;
        continue;
      }
      const char c = record_[pos_];
      if (c == ',') {
        ++pos_;
        if (afterValue_) {
          afterValue_ = false;  // the comma closing the value before
          continue;
        }
        return Token::Null;
      }
      if (c == '/') return Token::Slash;
      break;
    }
    afterValue_ = true;

    // r*c (r copies of c) or r* (r null values).
    std::size_t p = pos_;
    while (p < record_.size() && IsDigit(record_[p])) ++p;
    if (p > pos_ && p < record_.size() && record_[p] == '*') {
      long count = 0;
      for (std::size_t k = pos_; k < p; ++k) {
        if (count < 1'000'000'000) count = count * 10 + (record_[k] - '0');
      }
      if (count == 0) return Token::Bad;
      pos_ = p + 1;
      if (pos_ == record_.size() || EndsListValue(record_[pos_])) {
        repeatNull_ = true;
        repeatLeft_ = count - 1;
        return Token::Null;
      }
      const Token token = Constant(value, quoted);
      if (token != Token::Value) return token;
      repeatNull_ = false;
      repeatText_.assign(value);
      repeatQuoted_ = quoted;
      repeatLeft_ = count - 1;
      value = repeatText_;
      return Token::Value;
    }
    return Constant(value, quoted);
  }

 private:
  bool FetchRecord() {
    if (!next_ || !next_(storage_)) return false;
    record_ = WithoutCarriageReturn(storage_);
    pos_ = 0;
    return true;
  }

  // A quoted string (which may go on in the next record) or a bare word.
  Token Constant(std::string_view& value, bool& quoted) {
    const char c = record_[pos_];
    if (c != '\'' && c != '"') {
      const std::size_t start = pos_;
      while (pos_ < record_.size() && !EndsListValue(record_[pos_])) ++pos_;
      value = record_.substr(start, pos_ - start);
      quoted = false;
      return Token::Value;
    }
    quoted = true;
    quotedText_.clear();
    ++pos_;
    for (;;) {
      if (pos_ == record_.size()) {
        if (!FetchRecord()) return Token::End;
        continue;
      }
      const char d = record_[pos_++];
      if (d == c) {
        if (pos_ < record_.size() && record_[pos_] == c) {
          quotedText_ += c;
          ++pos_;
          continue;
        }
        break;
      }
      quotedText_ += d;
    }
    if (pos_ < record_.size() && !EndsListValue(record_[pos_])) return Token::Bad;
    value = quotedText_;
    return Token::Value;
  }

  std::string_view record_;
  std::size_t pos_ = 0;
  const NextRecord& next_;
  std::string storage_;
  bool afterValue_ = false;  // a value was read and its closing comma not yet seen
  long repeatLeft_ = 0;
  bool repeatNull_ = false;
  bool repeatQuoted_ = false;
  std::string repeatText_;
  std::string quotedText_;
};

ReadStatus StoreListValue(const ReadTarget& target, std::string_view text, bool quoted,
                          RealText& scratch) {
  if (target.kind == ReadTarget::Kind::Text) {
    static_cast<std::string*>(target.target)->assign(text);
    return ReadStatus::Ok;
  }
  if (quoted) return ReadStatus::BadValue;
  if (target.kind == ReadTarget::Kind::Int) {
    IntegerText number;
    if (ParseInteger(text, false, number) != Parsed::Ok) return ReadStatus::BadValue;
    return StoreInteger(target, number);
  }
  if (ParseReal(text, 0, false, scratch) != Parsed::Ok) return ReadStatus::BadValue;
  return StoreReal(target, scratch);
}

}  // namespace

ReadStatus ReadList(std::string_view record, const NextRecord& next,
                    std::span<const ReadTarget> targets) {
  ListScanner scanner(record, next);
  RealText scratch;
  for (const ReadTarget& target : targets) {
    std::string_view text;
    bool quoted = false;
    switch (scanner.Next(text, quoted)) {
      case ListScanner::Token::Value: {
        const ReadStatus status = StoreListValue(target, text, quoted, scratch);
        if (status != ReadStatus::Ok) return status;
        break;
      }
      case ListScanner::Token::Null:
        break;
      case ListScanner::Token::Slash:
        return ReadStatus::Ok;
      case ListScanner::Token::End:
        return ReadStatus::EndOfRecords;
      case ListScanner::Token::Bad:
        return ReadStatus::BadValue;
    }
  }
  return ReadStatus::Ok;
}

ReadStatus ReadListLine(std::string_view record, std::span<const ReadTarget> targets) {
  return ReadList(record, NextRecord(), targets);
}

}  // namespace corvinet
