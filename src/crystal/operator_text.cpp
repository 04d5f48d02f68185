// Parsing of operators and magnetic matrices typed as text.
#include "crystal/operator_text.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <string>

#include "crystal/symmetry_operators.h"

namespace corvinet {
namespace {

constexpr int kTextColumns = 80;
constexpr int kOperatorColumn = 6;

// A number as typed: digits, an optional decimal part and an optional divisor.
struct Number {
  bool present = false;
  double value = 0.0;
  double decimalScale = 0.0;  // > 0 after '.'
  bool fraction = false;      // after '/'
  int divisor = 0;

  void Digit(int d) {
    present = true;
    if (fraction) {
      divisor = divisor * 10 + d;
    } else if (decimalScale > 0.0) {
      value += d * decimalScale;
      decimalScale *= 0.1;
    } else {
      value = value * 10.0 + d;
    }
  }
  double Value() const { return fraction && divisor != 0 ? value / divisor : value; }
};

// Parses the three fields of `text`; `letters` names the three coordinates
// (upper case accepted as well).
class FieldParser {
 public:
  FieldParser(std::string_view text, std::string_view letters) : text_(text), letters_(letters) {}

  // Returns an empty string or the stop text.
  std::string Parse(IntMatrix3& rotation, Table1<float, 3>& translation) {
    rotation.Fill(0);
    std::size_t at = 0;
    for (int row = 1; row <= 3; ++row) {
      std::string stop = ParseField(row, at, rotation, translation[row]);
      if (!stop.empty()) return stop;
    }
    return "";
  }

 private:
  std::string_view text_;
  std::string_view letters_;

  int Column(char c) const {
    const char lower = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const std::size_t at = letters_.find(lower);
    return at == std::string_view::npos ? 0 : static_cast<int>(at) + 1;
  }

  // One field up to ',' or '*' or the end of the text. A number directly
  // before a letter is its coefficient; any other number is a translation
  // with the sign typed before it.
  std::string ParseField(int row, std::size_t& at, IntMatrix3& rotation, float& translation) {
    int sign = 1;
    Number number;
    double shift = 0.0;
    bool seen = false;
    auto closeNumber = [&] {
      if (number.present) shift += sign * number.Value();
      number = Number();
    };
    for (; at < text_.size(); ++at) {
      const char c = text_[at];
      if (c == ' ') continue;
      if (c == ',' || c == '*') {
        ++at;
        break;
      }
      seen = true;
      if (const int column = Column(c); column != 0) {
        const double coefficient = number.present ? number.Value() : 1.0;
        rotation(row, column) = static_cast<int>(std::lround(sign * coefficient));
        number = Number();
        sign = 1;
      } else if (c == '+' || c == '-') {
        closeNumber();
        sign = c == '-' ? -1 : 1;
      } else if (c == '/') {
        number.fraction = true;
      } else if (c == '.') {
        number.decimalScale = 0.1;
      } else if (std::isdigit(static_cast<unsigned char>(c))) {
        number.Digit(c - '0');
      } else {
        return std::string(" *** ERROR: Invalid character... ") + c + " in Sym. Op. ";
      }
    }
    if (!seen) return " *** ERROR: Blank operator field";
    closeNumber();
    translation = static_cast<float>(shift);
    return "";
  }
};

std::string_view Columns(std::string_view line, int first, int last) {
  if (last > static_cast<int>(line.size())) last = static_cast<int>(line.size());
  if (first < 1) first = 1;
  if (first > last) return {};
  return line.substr(static_cast<std::size_t>(first - 1),
                     static_cast<std::size_t>(last - first + 1));
}

SymmetryMessages Parsed(std::string_view line, std::string_view text, std::string_view letters,
                        IntMatrix3& rotation, Table1<float, 3>& translation) {
  SymmetryMessages messages;
  messages.stop = FieldParser(text, letters).Parse(rotation, translation);
  if (messages.stop.rfind(" *** ERROR: Invalid", 0) == 0) {
    messages.console.emplace_back(line);
  } else if (messages.ok() && Determinant(rotation) == 0) {
    messages.console.emplace_back(line);
    messages.stop = "  *** ERROR: The above operator is wrong";
  }
  return messages;
}

}  // namespace

SymmetryMessages ParseOperatorText(std::string_view line, int startColumn, IntMatrix3& rotation,
                                   Table1<float, 3>& translation, int length) {
  return Parsed(line, Columns(line, startColumn, length), "xyz", rotation, translation);
}

SymmetryMessages ParseMagneticText(std::string_view line, IntMatrix3& rotation,
                                   float& magneticPhase) {
  const std::string_view columns = Columns(line, 1, kTextColumns);
  const std::size_t comma = columns.rfind(',');
  magneticPhase = 0.0f;
  int last = static_cast<int>(columns.size());
  if (comma != std::string_view::npos) {
    const std::string behind(columns.substr(comma + 1));
    char* end = nullptr;
    const long phase = std::strtol(behind.c_str(), &end, 10);
    if (end != behind.c_str()) magneticPhase = static_cast<float>(phase);
    last = static_cast<int>(comma);
  }
  Table1<float, 3> ignored;
  return Parsed(line, Columns(columns, kOperatorColumn, last), "uvw", rotation, ignored);
}

}  // namespace corvinet
