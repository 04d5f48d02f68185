// Compiles format texts such as "(1X,2I5/3F10.4)" into the item lists used for writing and reading.
#include "format/fortran_format.h"

#include <cstddef>
#include <string>

#include "format/fortran_format_walk.h"

namespace corvinet {
namespace {

// Largest width, digit count or repeat count accepted; larger numbers are
// surely typing errors and would only make huge records.
constexpr int kMaxNumber = 1'000'000;

char Upper(char c) {
  return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

// Recursive-descent reader of one format text. Blanks are insignificant
// outside literals, as in Fortran, so "( 2 I 3 )" equals "(2I3)". Commas
// between items may be left out where the items still separate ("(1XI5)",
// "(I3'x')"), as Fortran compilers accept; a comma at the start of a list or two
// commas in a row are errors, a comma before ')' is tolerated.
class FormatCompiler {
 public:
  explicit FormatCompiler(std::string_view text) : text_(text) {}

  CompiledFormat Compile() {
    if (Peek() != '(') Fail("a format must start with '('");
    ++pos_;
    ParseList(1);
    SkipBlanks();
    if (pos_ != text_.size()) Fail("text after the closing ')'");
    CompiledFormat format;
    format.items = std::move(items_);
    // Reversion restarts at the last group opened at the top level, or at the
    // beginning when the format has none.
    int depth = 0;
    for (std::size_t k = 0; k < format.items.size(); ++k) {
      const FormatItem::Kind kind = format.items[k].kind;
      if (kind == FormatItem::Kind::GroupOpen) {
        if (depth == 0) format.reversionStart = static_cast<int>(k);
        ++depth;
      } else if (kind == FormatItem::Kind::GroupClose) {
        --depth;
      }
    }
    return format;
  }

 private:
  [[noreturn]] void Fail(std::string_view what) const {
    std::string message = "bad format \"";
    message.append(text_);
    message += "\": ";
    message.append(what);
    message += " (at column ";
    message += std::to_string(pos_ + 1);
    message += ')';
    throw FormatTextError(message);
  }

  void SkipBlanks() {
    while (pos_ < text_.size() && IsBlank(text_[pos_])) ++pos_;
  }

  // The next significant character in upper case, or '\0' at the end of the text.
  char Peek() {
    SkipBlanks();
    return pos_ < text_.size() ? Upper(text_[pos_]) : '\0';
  }

  // Reads an unsigned number (blanks between its digits are ignored).
  bool ReadNumber(int& value) {
    if (!IsDigit(Peek())) return false;
    value = 0;
    while (pos_ < text_.size() && (IsDigit(text_[pos_]) || IsBlank(text_[pos_]))) {
      if (IsDigit(text_[pos_])) {
        value = value * 10 + (text_[pos_] - '0');
        if (value > kMaxNumber) Fail("number too large");
      }
      ++pos_;
    }
    return true;
  }

  int RequireNumber(std::string_view what) {
    int value = 0;
    if (!ReadNumber(value)) Fail(what);
    return value;
  }

  // Reads the items of a list up to and including its closing ')'.
  void ParseList(int depth) {
    bool first = true;
    bool afterComma = false;
    for (;;) {
      const char c = Peek();
      if (c == '\0') Fail("missing ')'");
      if (c == ')') {
        ++pos_;
        return;
      }
      if (c == ',') {
        if (first || afterComma) Fail("unexpected ','");
        ++pos_;
        afterComma = true;
        continue;
      }
      ParseItem(depth);
      first = false;
      afterComma = false;
    }
  }

  void ParseItem(int depth) {
    int repeat = 1;
    const bool hasRepeat = ReadNumber(repeat);
    if (hasRepeat && repeat == 0) Fail("a repeat count must be positive");
    const char c = Peek();
    FormatItem item;
    item.repeat = repeat;
    switch (c) {
      case '(': {
        if (depth >= format_detail::kMaxGroupDepth) Fail("groups nested too deeply");
        ++pos_;
        const std::size_t open = items_.size();
        item.kind = FormatItem::Kind::GroupOpen;
        items_.push_back(item);
        ParseList(depth + 1);
        item.kind = FormatItem::Kind::GroupClose;
        item.match = static_cast<int>(open);
        items_[open].match = static_cast<int>(items_.size());
        items_.push_back(item);
        return;
      }
      case '\'':
      case '"':
        if (hasRepeat) Fail("a quoted literal cannot have a repeat count");
        ParseQuoted();
        return;
      case 'H':
        // Hollerith literal: nHtext, the n characters after H taken as they are.
        if (!hasRepeat) Fail("H needs a character count");
        ++pos_;
        if (text_.size() - pos_ < static_cast<std::size_t>(repeat))
          Fail("H literal runs past the end");
        item.kind = FormatItem::Kind::Literal;
        item.repeat = 1;
        item.text.assign(text_.substr(pos_, static_cast<std::size_t>(repeat)));
        pos_ += static_cast<std::size_t>(repeat);
        items_.push_back(std::move(item));
        return;
      case '/':
        ++pos_;
        item.kind = FormatItem::Kind::Slash;
        items_.push_back(item);
        return;
      case 'X':
        // nX: the count is the number of positions, not a repeat count; X alone means 1X.
        ++pos_;
        item.kind = FormatItem::Kind::X;
        item.width = repeat;
        item.repeat = 1;
        items_.push_back(item);
        return;
      case 'I':
        ++pos_;
        item.kind = FormatItem::Kind::I;
        item.width = RequireNumber("I needs a width");
        item.digits = 1;
        if (Peek() == '.') {
          ++pos_;
          item.digits = RequireNumber("I needs a digit count after '.'");
          if (item.width > 0 && item.digits > item.width) Fail("minimum digits exceed the width");
        }
        items_.push_back(item);
        return;
      case 'F':
        ++pos_;
        item.kind = FormatItem::Kind::F;
        item.width = RequireNumber("F needs a width");
        item.digits = ParseDecimals();
        items_.push_back(item);
        return;
      case 'E':
      case 'D':
      case 'G':
        ++pos_;
        item.kind = c == 'G' ? FormatItem::Kind::G : FormatItem::Kind::E;
        item.dLetter = c == 'D';
        item.width = RequireNumber("missing width");
        if (item.width == 0) Fail("zero width");
        item.digits = ParseDecimals();
        if (c != 'D' && Peek() == 'E') {
          ++pos_;
          item.exponent = RequireNumber("missing exponent digits after E");
          if (item.exponent == 0) Fail("zero exponent digits");
        }
        items_.push_back(item);
        return;
      case 'A':
        ++pos_;
        item.kind = FormatItem::Kind::A;
        if (ReadNumber(item.width) && item.width == 0) Fail("zero width");
        items_.push_back(item);
        return;
      case '\0':
        Fail("missing ')'");
      default:
        Fail(hasRepeat ? "a repeat count must be followed by a descriptor or a group"
                       : "unknown edit descriptor");
    }
  }

  int ParseDecimals() {
    if (Peek() != '.') Fail("missing '.' and digit count");
    ++pos_;
    return RequireNumber("missing digit count after '.'");
  }

  // A literal in ' or "; the quote doubled inside stands for itself.
  void ParseQuoted() {
    const char quote = text_[pos_++];
    FormatItem item;
    item.kind = FormatItem::Kind::Literal;
    for (;;) {
      if (pos_ >= text_.size()) Fail("unterminated literal");
      const char c = text_[pos_++];
      if (c == quote) {
        if (pos_ < text_.size() && text_[pos_] == quote) {
          item.text += quote;
          ++pos_;
          continue;
        }
        break;
      }
      item.text += c;
    }
    items_.push_back(std::move(item));
  }

  std::string_view text_;
  std::size_t pos_ = 0;
  std::vector<FormatItem> items_;
};

}  // namespace

CompiledFormat CompileFormat(std::string_view text) {
  return FormatCompiler(text).Compile();
}

}  // namespace corvinet
