// Pieces of CIF text: numbers with standard uncertainties, quoted text, operators as x,y,z.
#include "results/cif_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "crystal/group_operators.h"

namespace corvinet {

namespace {

constexpr double kSmallestRelativeSigma = 1.0e-6;

std::string Fixed(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  std::string s = text;
  if (s == "-0" || s.find_first_not_of("-0.") == std::string::npos) {
    if (s[0] == '-') s.erase(0, 1);  // no negative zero
  }
  return s;
}

std::string Significant(double value, int digits) {
  if (value == 0.0) return "0";
  const int exponent = static_cast<int>(std::floor(std::log10(std::fabs(value))));
  if (exponent < -4 || exponent >= digits) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*e", digits - 1, value);
    return text;
  }
  return Fixed(value, std::max(0, digits - 1 - exponent));
}

// The fraction of twelfths `twelfths` (0 to 11) as text, empty for 0.
std::string Twelfths(int twelfths) {
  static const char* const kText[12] = {"",    "1/12", "1/6", "1/4", "1/3", "5/12",
                                        "1/2", "7/12", "2/3", "3/4", "5/6", "11/12"};
  return kText[twelfths];
}

}  // namespace

std::string CifNumber(double value, double sigma, int plainDigits) {
  if (!(sigma > 0.0) || !std::isfinite(sigma)) return Significant(value, plainDigits);
  // A 32-bit value holds about seven digits: an uncertainty below that says nothing more.
  sigma = std::max(sigma, kSmallestRelativeSigma * std::fabs(value));
  int place = static_cast<int>(std::floor(std::log10(sigma)));  // place of the first digit
  long su = std::lround(sigma / std::pow(10.0, place - 1));     // two digits, 10 to 99
  if (su > 19) {
    su = std::lround(sigma / std::pow(10.0, place));
    if (su >= 10) {  // 9.6 rounds to 10: one digit a place higher
      ++place;
      su = 1;
    }
  } else {
    --place;
  }
  // `place` is now the power of ten of the last digit written.
  if (place > 0) {
    const double unit = std::pow(10.0, place);
    return Fixed(std::round(value / unit) * unit, 0) + "(" +
           std::to_string(su * std::lround(unit)) + ")";
  }
  return Fixed(value, -place) + "(" + std::to_string(su) + ")";
}

std::string CifText(const std::string& text) {
  const bool bare = !text.empty() && text.find_first_of(" \t'\"") == std::string::npos &&
                    text[0] != '_' && text[0] != '#' && text[0] != '$' && text[0] != ';' &&
                    text[0] != '[' && text[0] != ']' && text != "?" && text != ".";
  if (bare) return text;
  if (text.find('\'') == std::string::npos) return "'" + text + "'";
  return "\"" + text + "\"";
}

std::string OperatorXyz(const SymmetryOperator& op) {
  std::string out;
  for (int i = 1; i <= 3; ++i) {
    std::string row = MatrixRowText(op.rotation, i, {"x", "y", "z"});
    int twelfths = static_cast<int>(std::lround(op.translation[i] * 12.0)) % 12;
    if (twelfths < 0) twelfths += 12;
    if (twelfths != 0) row = (row == "0" ? "" : row + "+") + Twelfths(twelfths);
    out += (i > 1 ? "," : "") + row;
  }
  return out;
}

}  // namespace corvinet
