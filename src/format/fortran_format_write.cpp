// Writes values under a compiled format into fixed-column records, digit for digit as Fortran does.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

#include "format/fortran_format.h"
#include "format/fortran_format_walk.h"

namespace corvinet {
namespace {

// Room for the digits of any finite double written with `decimals` decimals in
// fixed notation (at most 309 integer digits), or in scientific notation.
constexpr std::size_t kSmallDigitBuffer = 400;

// Decimal digits of a double, rounded correctly (ties to even, from the exact
// binary value), into a stack buffer or, for very many decimals, the heap.
class DigitBuffer {
 public:
  std::string_view Fixed(double magnitude, int decimals) {
    return Convert(magnitude, std::chars_format::fixed, decimals);
  }
  std::string_view Scientific(double magnitude, int decimals) {
    return Convert(magnitude, std::chars_format::scientific, decimals);
  }

 private:
  std::string_view Convert(double magnitude, std::chars_format form, int decimals) {
    char* first = small_;
    std::size_t size = sizeof small_;
    const std::size_t needed = static_cast<std::size_t>(decimals) + 340;
    if (needed > size) {
      large_.resize(needed);
      first = large_.data();
      size = needed;
    }
    const auto result = std::to_chars(first, first + size, magnitude, form, decimals);
    if (result.ec != std::errc()) throw std::logic_error("digit buffer too small");
    return std::string_view(first, static_cast<std::size_t>(result.ptr - first));
  }

  char small_[kSmallDigitBuffer];
  std::string large_;
};

void AppendStars(std::string& out, int width) {
  out.append(static_cast<std::size_t>(width), '*');
}

// Right-justifies [minus]head+tail in a field of `width` characters (0: just
// as long as needed); fills the field with '*' when it does not fit.
void AppendJustified(std::string& out, int width, bool minus, std::string_view head,
                     std::string_view tail = {}) {
  const std::size_t length = (minus ? 1 : 0) + head.size() + tail.size();
  if (width > 0) {
    if (length > static_cast<std::size_t>(width)) {
      AppendStars(out, width);
      return;
    }
    out.append(static_cast<std::size_t>(width) - length, ' ');
  }
  if (minus) out += '-';
  out.append(head);
  out.append(tail);
}

// Infinity and NaN: "Infinity" when the field has room for it, else "Inf";
// a minimal-width field (F0.d) gets the short forms.
void AppendNonFinite(std::string& out, int width, double value) {
  if (std::isnan(value)) {
    AppendJustified(out, width, false, "NaN");
    return;
  }
  const bool minus = value < 0;
  const bool room = width >= (minus ? 9 : 8);
  AppendJustified(out, width, minus, room ? "Infinity" : "Inf");
}

// Iw.m: at least m digits (leading zeros), none at all for Iw.0 of zero.
void AppendInteger(std::string& out, int width, int minDigits, long long value) {
  const bool minus = value < 0;
  unsigned long long magnitude = minus ? 0ULL - static_cast<unsigned long long>(value)
                                       : static_cast<unsigned long long>(value);
  char digits[24];
  std::size_t count = 0;
  if (magnitude != 0 || minDigits > 0) {
    count = static_cast<std::size_t>(std::to_chars(digits, digits + sizeof digits, magnitude).ptr -
                                     digits);
  }
  const std::size_t zeros =
      static_cast<std::size_t>(minDigits) > count ? static_cast<std::size_t>(minDigits) - count : 0;
  const std::size_t length = (minus ? 1 : 0) + zeros + count;
  if (width == 0) {
    if (length == 0) {
      out += ' ';  // I0.0 of zero: a single blank, as gfortran writes it
      return;
    }
  } else if (length > static_cast<std::size_t>(width)) {
    AppendStars(out, width);
    return;
  } else {
    out.append(static_cast<std::size_t>(width) - length, ' ');
  }
  if (minus) out += '-';
  out.append(zeros, '0');
  out.append(digits, count);
}

// Fw.d. The value is rounded from its exact binary value, ties to even
// (0.125 -> 0.12, 2.5 -> 2.), as gfortran rounds. The zero before the decimal
// point is left out only when the field is too narrow for it (and there are
// decimals), or always in a minimal-width field F0.d. The minus sign of a
// negative value is kept even when the value rounds to zero ("-0.000"), and
// negative zero is written "-0.000", both as gfortran does.
void AppendFixed(std::string& out, int width, int decimals, double value) {
  if (!std::isfinite(value)) {
    AppendNonFinite(out, width, value);
    return;
  }
  const bool minus = std::signbit(value);
  DigitBuffer buffer;
  std::string_view digits = buffer.Fixed(std::fabs(value), decimals);
  const std::string_view point = decimals == 0 ? std::string_view(".") : std::string_view();
  const std::size_t length = (minus ? 1 : 0) + digits.size() + point.size();
  if (decimals > 0 && digits.size() > 1 && digits[0] == '0' && digits[1] == '.' &&
      (width == 0 || length > static_cast<std::size_t>(width))) {
    digits.remove_prefix(1);
  }
  AppendJustified(out, width, minus, digits, point);
}

// Ew.d[Ee] (and Dw.d): "0.12345E+01". The leading "0" is written when the field
// has room for it. Without Ee an exponent beyond 99 takes the place of the
// letter ("0.12345+100"); with Ee an exponent with more than e digits, or any
// exponent beyond 999, fills the field with '*'.
void AppendExponential(std::string& out, int width, int decimals, int exponentDigits, double value,
                       char letter) {
  if (!std::isfinite(value)) {
    AppendNonFinite(out, width, value);
    return;
  }
  if (decimals <= 0) {
    throw FormatTextError("an E, D or G edit descriptor needs at least one digit to write a value");
  }
  const bool minus = std::signbit(value);
  const double magnitude = std::fabs(value);

  // Mantissa digits d1..dd of 0.d1..dd x 10^exponent.
  char mantissa[kSmallDigitBuffer];
  std::string mantissaLarge;
  char* m = mantissa;
  if (static_cast<std::size_t>(decimals) > sizeof mantissa) {
    mantissaLarge.resize(static_cast<std::size_t>(decimals));
    m = mantissaLarge.data();
  }
  int exponent = 0;
  if (magnitude == 0) {
    std::fill(m, m + decimals, '0');
  } else {
    DigitBuffer buffer;
    // "1.2345e+00" (or "1e+00" for one digit): d significant digits, rounded.
    const std::string_view sci = buffer.Scientific(magnitude, decimals - 1);
    std::size_t k = 0;
    m[k++] = sci[0];
    std::size_t p = 1;
    if (p < sci.size() && sci[p] == '.') ++p;
    while (p < sci.size() && sci[p] != 'e') m[k++] = sci[p++];
    ++p;  // 'e'
    const bool negativeExponent = sci[p] == '-';
    int e10 = 0;
    for (++p; p < sci.size(); ++p) e10 = e10 * 10 + (sci[p] - '0');
    exponent = (negativeExponent ? -e10 : e10) + 1;
  }

  // Exponent part: letter (left out for a 3-digit exponent without Ee), sign, digits.
  const int absExponent = exponent < 0 ? -exponent : exponent;
  char expDigits[8];
  const std::size_t expCount = static_cast<std::size_t>(
      std::to_chars(expDigits, expDigits + sizeof expDigits, absExponent).ptr - expDigits);
  bool withLetter = true;
  std::size_t expWidth = static_cast<std::size_t>(exponentDigits);
  if (exponentDigits == 0) {
    expWidth = 2;
    if (absExponent > 999) {
      AppendStars(out, width);
      return;
    }
    if (absExponent > 99) {
      withLetter = false;
      expWidth = 3;
    }
  } else if (expCount > expWidth) {
    AppendStars(out, width);
    return;
  }
  const std::size_t expLength = (withLetter ? 2 : 1) + expWidth;

  const std::size_t length = (minus ? 1 : 0) + 1 + static_cast<std::size_t>(decimals) + expLength;
  if (length > static_cast<std::size_t>(width)) {
    AppendStars(out, width);
    return;
  }
  const bool leadingZero = length < static_cast<std::size_t>(width);
  out.append(static_cast<std::size_t>(width) - length - (leadingZero ? 1 : 0), ' ');
  if (minus) out += '-';
  if (leadingZero) out += '0';
  out += '.';
  out.append(m, static_cast<std::size_t>(decimals));
  if (withLetter) out += letter;
  out += exponent < 0 ? '-' : '+';
  out.append(expWidth - expCount, '0');
  out.append(expDigits, expCount);
}

// 10^k computed by repeated multiplication, as the choice between the F and E
// forms of Gw.d is made in gfortran (its thresholds are floating-point numbers,
// so values on a boundary such as 0.95 in G8.1 fall as they fall there).
double PowerOfTen(int k) {
  double r = 1.0;
  for (int i = 0; i < (k >= 0 ? k : -k); ++i) r *= 10;
  return k >= 0 ? r : 1.0 / r;
}

// Gw.d[Ee] for a real value. A value that rounds to d significant digits
// within 0.1 <= |x| < 10^d is written as F(w-n).(d-k) followed by n blanks
// (k: digits before the decimal point; n = 4, or e+2 with Ee); zero is written
// as F(w-n).(d-1); anything else as Ew.d[Ee]. When the F part does not fit, the
// whole field is filled with '*'.
void AppendGeneral(std::string& out, int width, int decimals, int exponentDigits, double value) {
  if (!std::isfinite(value)) {
    AppendNonFinite(out, width, value);
    return;
  }
  if (decimals <= 0) {
    throw FormatTextError("a G edit descriptor needs at least one digit to write a real value");
  }
  const double magnitude = std::fabs(value);
  int fixedDecimals = decimals - 1;
  if (magnitude != 0) {
    const double scale = PowerOfTen(decimals);
    const double lowerFactor = 1.0 - 0.5 / scale;
    if (magnitude < 0.1 * lowerFactor || 0.5 >= scale - magnitude) {
      AppendExponential(out, width, decimals, exponentDigits, value, 'E');
      return;
    }
    // Digits before the point: the smallest k in 0..d with |x| < 10^k * (1 - 0.5 10^-d).
    int before = 0;
    while (before < decimals && !(magnitude < PowerOfTen(before) * lowerFactor)) ++before;
    fixedDecimals = decimals - before;
  }
  int blanks = exponentDigits > 0 ? exponentDigits + 2 : 4;
  if (blanks >= width) blanks = width - 1;
  const std::size_t start = out.size();
  AppendFixed(out, width - blanks, fixedDecimals, value);
  if (out[start] == '*') {
    out.resize(start);
    AppendStars(out, width);
    return;
  }
  out.append(static_cast<std::size_t>(blanks), ' ');
}

// Aw: the leftmost w characters of a longer text, a shorter one right-justified; A: the text.
void AppendText(std::string& out, int width, std::string_view text) {
  if (width == 0) {
    out.append(text);
  } else if (text.size() >= static_cast<std::size_t>(width)) {
    out.append(text.substr(0, static_cast<std::size_t>(width)));
  } else {
    out.append(static_cast<std::size_t>(width) - text.size(), ' ');
    out.append(text);
  }
}

[[noreturn]] void WrongKind(const char* what) {
  throw std::invalid_argument(what);
}

double RealOf(const FormatValue& value) {
  if (value.kind == FormatValue::Kind::Text) WrongKind("text given to a numeric edit descriptor");
  return value.kind == FormatValue::Kind::Int ? static_cast<double>(value.i) : value.r;
}

// Writes one value under one data edit descriptor.
void AppendValue(std::string& out, const FormatItem& item, const FormatValue& value) {
  switch (item.kind) {
    case FormatItem::Kind::I:
      if (value.kind == FormatValue::Kind::Text) WrongKind("text given to an I edit descriptor");
      if (value.kind == FormatValue::Kind::Real) {
        // A real value is rounded to the nearest integer (halves away from zero).
        if (!std::isfinite(value.r) || std::fabs(value.r) >= 9.2e18) {
          AppendStars(out, item.width == 0 ? 1 : item.width);
          return;
        }
        AppendInteger(out, item.width, item.digits, std::llround(value.r));
        return;
      }
      AppendInteger(out, item.width, item.digits, value.i);
      return;
    case FormatItem::Kind::F:
      AppendFixed(out, item.width, item.digits, RealOf(value));
      return;
    case FormatItem::Kind::E:
      AppendExponential(out, item.width, item.digits, item.exponent, RealOf(value),
                        item.dLetter ? 'D' : 'E');
      return;
    case FormatItem::Kind::G:
      if (value.kind == FormatValue::Kind::Int) {
        // An integer under Gw.d is written as Iw, as Fortran does.
        AppendInteger(out, item.width, 1, value.i);
        return;
      }
      AppendGeneral(out, item.width, item.digits, item.exponent, RealOf(value));
      return;
    case FormatItem::Kind::A:
      if (value.kind != FormatValue::Kind::Text)
        WrongKind("a number given to an A edit descriptor");
      AppendText(out, item.width, value.t);
      return;
    default:
      throw std::logic_error("not a data edit descriptor");
  }
}

// Six significant digits: the text, read back, differs from the value by at
// most half a unit of the sixth digit.
bool ReadsBack(std::string_view text, double value) {
  std::string number(text);
  std::replace(number.begin(), number.end(), 'D', 'E');
  char* end = nullptr;
  const double read = std::strtod(number.c_str(), &end);
  if (end == number.c_str()) return false;
  return std::fabs(read - value) <= 5.0e-6 * std::fabs(value);
}

// A number's text fits when it has no stars and, written right behind another
// number, starts with a blank: the free-format reader would part "0.5-0.2" at the
// sign, but a reader of the file should see two numbers too.
bool FitsField(std::string_view text, bool touching) {
  return !text.empty() && text.find('*') == std::string_view::npos &&
         (!touching || text.front() == ' ');
}

// The width of the exponent form of six significant digits ("0.123457E-04")
// with one blank in front; a minus sign takes one column more.
constexpr int kReadBackExponentWidth = 14;

// Fw.d of a value that must read back: the field's decimals, then more, then fewer.
bool AppendFixedReadBack(std::string& out, int width, int decimals, double value, bool touching) {
  std::string text;
  const auto tryDecimals = [&](int d) {
    text.clear();
    AppendFixed(text, width, d, value);
    if (!FitsField(text, touching) || !ReadsBack(text, value)) return false;
    out += text;
    return true;
  };
  if (tryDecimals(decimals)) return true;
  for (int d = decimals + 1; d <= width - 2; ++d) {
    if (tryDecimals(d)) return true;
  }
  for (int d = decimals - 1; d >= 0; --d) {
    if (tryDecimals(d)) return true;
  }
  return false;
}

// Ew.d of a value that must read back: the field's digits, then more.
bool AppendExponentialReadBack(std::string& out, const FormatItem& item, double value,
                               bool touching) {
  std::string text;
  for (int d = std::max(item.digits, 1); d <= item.width - 5; ++d) {
    text.clear();
    AppendExponential(text, item.width, d, item.exponent, value, item.dLetter ? 'D' : 'E');
    if (FitsField(text, touching) && ReadsBack(text, value)) {
      out += text;
      return true;
    }
  }
  return false;
}

// One number of a file that is read again (FieldFit::kReadBack).
void AppendReadBackValue(std::string& out, const FormatItem& item, const FormatValue& value,
                         bool touching) {
  if (value.kind == FormatValue::Kind::Real && !std::isfinite(value.r)) {
    throw NonFiniteValue("a number that is not finite cannot be written to be read again");
  }
  const bool integer = item.kind == FormatItem::Kind::I ||
                       (item.kind == FormatItem::Kind::G && value.kind == FormatValue::Kind::Int);
  if (integer) {
    std::string text;
    AppendValue(text, item, value);
    if (!FitsField(text, touching)) {
      const long long whole =
          value.kind == FormatValue::Kind::Int ? value.i : std::llround(value.r);
      text = " " + std::to_string(whole);
    }
    out += text;
    return;
  }
  const double real = RealOf(value);
  if (item.kind == FormatItem::Kind::F &&
      AppendFixedReadBack(out, item.width, item.digits, real, touching)) {
    return;
  }
  if (item.kind == FormatItem::Kind::E && AppendExponentialReadBack(out, item, real, touching)) {
    return;
  }
  if (item.kind == FormatItem::Kind::G) {
    std::string text;
    AppendGeneral(text, item.width, item.digits, item.exponent, real);
    if (FitsField(text, touching) && ReadsBack(text, real)) {
      out += text;
      return;
    }
  }
  const int width = kReadBackExponentWidth + (std::signbit(real) ? 1 : 0);
  AppendExponential(out, std::max(item.width, width), 6, 0, real, 'E');
}

bool IsData(FormatItem::Kind kind) {
  return kind == FormatItem::Kind::I || kind == FormatItem::Kind::F ||
         kind == FormatItem::Kind::E || kind == FormatItem::Kind::G || kind == FormatItem::Kind::A;
}

}  // namespace

std::vector<std::string> FormatRecords(const CompiledFormat& format,
                                       std::span<const FormatValue> values, FieldFit fit) {
  std::vector<std::string> records;
  std::string record;
  // Positions skipped by nX: they become blanks only if something is written
  // after them in the same record, so a record never ends in blanks from X.
  std::size_t pendingBlanks = 0;
  std::size_t next = 0;
  bool wroteValueThisPass = false;
  // The last thing written is a number: the next one must not run into it.
  bool afterNumber = false;
  const auto endRecord = [&] {
    records.push_back(std::move(record));
    record.clear();
    pendingBlanks = 0;
    afterNumber = false;
  };
  const auto startField = [&] {
    record.append(pendingBlanks, ' ');
    pendingBlanks = 0;
  };

  format_detail::FormatWalker walker(format);
  for (;;) {
    const FormatItem* item = walker.Next();
    if (item == nullptr) {
      if (next == values.size()) break;
      if (!wroteValueThisPass) {
        throw std::invalid_argument("format has no data edit descriptor for the values left");
      }
      // Format reversion: a new record, then on from the reversion point.
      wroteValueThisPass = false;
      endRecord();
      walker.Revert();
      continue;
    }
    if (IsData(item->kind)) {
      for (int r = 0; r < item->repeat; ++r) {
        if (next == values.size()) {
          records.push_back(std::move(record));
          return records;
        }
        startField();
        if (fit == FieldFit::kReadBack && item->kind != FormatItem::Kind::A) {
          const bool touching = afterNumber && !record.empty() && record.back() != ' ';
          AppendReadBackValue(record, *item, values[next++], touching);
        } else {
          AppendValue(record, *item, values[next++]);
        }
        afterNumber = item->kind != FormatItem::Kind::A;
        wroteValueThisPass = true;
      }
      continue;
    }
    switch (item->kind) {
      case FormatItem::Kind::X:
        pendingBlanks +=
            static_cast<std::size_t>(item->width) * static_cast<std::size_t>(item->repeat);
        break;
      case FormatItem::Kind::Slash:
        for (int r = 0; r < item->repeat; ++r) endRecord();
        break;
      case FormatItem::Kind::Literal:
        startField();
        record += item->text;
        afterNumber = false;
        break;
      default:
        break;
    }
  }
  records.push_back(std::move(record));
  return records;
}

std::string FormatText(std::string_view format, std::span<const FormatValue> values, FieldFit fit) {
  const std::vector<std::string> records = FormatRecords(CompileFormat(format), values, fit);
  if (records.size() == 1) return records.front();
  std::string text;
  for (std::size_t k = 0; k < records.size(); ++k) {
    if (k > 0) text += '\n';
    text += records[k];
  }
  return text;
}

}  // namespace corvinet
