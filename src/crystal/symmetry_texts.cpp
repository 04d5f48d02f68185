// The fixed texts of the symmetry report, indexed as the operators of IROT.
#include "crystal/symmetry_texts.h"

#include <array>
#include <cstdlib>

#include "crystal/rotation_table.h"

namespace corvinet {
namespace {

constexpr std::array<std::string_view, 48> kCubicSymbols = {
    "  1           ", "  2 ( 0, 0, z)", "  2 ( 0, y, 0)", "  2 ( x, 0, 0)", " 3+ ( x, x, x)",
    " 3+ (-x, x,-x)", " 3+ ( x,-x,-x)", " 3+ (-x,-x, x)", " 3- ( x, x, x)", " 3- ( x,-x,-x)",
    " 3- (-x,-x, x)", " 3- (-x, x,-x)", "  2 ( x, x, 0)", "  2 ( x,-x, 0)", " 4- ( 0, 0, z)",
    " 4+ ( 0, 0, z)", " 4- ( x, 0, 0)", "  2 ( 0, y, y)", "  2 ( 0, y,-y)", " 4+ ( x, 0, 0)",
    " 4+ ( 0, y, 0)", "  2 ( x, 0, x)", " 4- ( 0, y, 0)", "  2 (-x, 0, x)", " -1           ",
    "  m ( x, y, 0)", "  m ( x, 0, z)", "  m ( 0, y, z)", "-3+ ( x, x, x)", "-3+ (-x, x,-x)",
    "-3+ ( x,-x,-x)", "-3+ (-x,-x, x)", "-3- ( x, x, x)", "-3- ( x,-x,-x)", "-3- (-x,-x, x)",
    "-3- (-x, x,-x)", "  m ( x,-x, z)", "  m ( x, x, z)", "-4- ( 0, 0, z)", "-4+ ( 0, 0, z)",
    "-4- ( x, 0, 0)", "  m ( x, y,-y)", "  m ( x, y, y)", "-4+ ( x, 0, 0)", "-4+ ( 0, y, 0)",
    "  m (-x, y, x)", "-4- ( 0, y, 0)", "  m ( x, y, x)",
};

constexpr std::array<std::string_view, 24> kHexagonalSymbols = {
    "  1           ", " 3+ ( 0, 0, z)", " 3- ( 0, 0, z)", "  2 ( 0, 0, z)", " 6- ( 0, 0, z)",
    " 6+ ( 0, 0, z)", "  2 ( x, x, 0)", "  2 ( x, 0, 0)", "  2 ( 0, y, 0)", "  2 ( x,-x, 0)",
    "  2 ( x,2x, 0)", "  2 (2x, x, 0)", " -1           ", "-3+ ( 0, 0, z)", "-3- ( 0, 0, z)",
    "  m ( x, y, 0)", "-6- ( 0, 0, z)", "-6+ ( 0, 0, z)", "  m ( x,-x, z)", "  m ( x,2x, z)",
    "  m (2x, x, z)", "  m ( x, x, z)", "  m ( x, 0, z)", "  m ( 0, y, z)",
};

constexpr int kCubicRows = 24;

bool Hexagonal(int isl) {
  return std::abs(isl) > kCubicRows;
}

// A signed letter in `width` columns, right-aligned: " x", "-x", " Mx".
std::string Term(int sign, std::string_view letter, bool afterTerm, int width) {
  std::string text;
  if (sign > 0) text = afterTerm ? "+" : " ";
  if (sign < 0) text = "-";
  if (sign == 0) return std::string(static_cast<std::size_t>(width), ' ');
  text += letter;
  return text;
}

// Row `row` of the signed rotation: the cubic form has one term, the
// hexagonal form an x part and a y part of fixed width each.
std::string RowText(const IntMatrix3& m, int sign, int row, bool hexagonal, bool moment) {
  const std::string_view x = moment ? "Mx" : "x";
  const std::string_view y = moment ? "My" : "y";
  const std::string_view z = moment ? "Mz" : "z";
  const int width = moment ? 3 : 2;
  const int cx = sign * m(row, 1), cy = sign * m(row, 2), cz = sign * m(row, 3);
  if (cz != 0) return Term(cz, z, false, width);
  if (!hexagonal) return cx != 0 ? Term(cx, x, false, width) : Term(cy, y, false, width);
  return Term(cx, x, false, width) + Term(cy, y, cx != 0, width);
}

std::string Assemble(int isl, bool moment) {
  const IntMatrix3& m = IROT(std::abs(isl));
  const int sign = isl < 0 ? -1 : 1;
  const bool hexagonal = Hexagonal(isl);
  std::string text = "(";
  text += RowText(m, sign, 1, hexagonal, moment) + ",";
  text += RowText(m, sign, 2, hexagonal, moment) + ",";
  text += RowText(m, sign, 3, false, moment) + ")";
  return text;
}

}  // namespace

int SymbolTableIndex(int isl) {
  const int a = std::abs(isl);
  if (a > kCubicRows) return a - kCubicRows + (isl < 0 ? 12 : 0);
  return a + (isl < 0 ? kCubicRows : 0);
}

std::string_view SeitzSymbol(int isl) {
  const int index = SymbolTableIndex(isl);
  if (Hexagonal(isl)) return kHexagonalSymbols[static_cast<std::size_t>(index - 1)];
  return kCubicSymbols[static_cast<std::size_t>(index - 1)];
}

std::string RotationText(int isl) {
  return Assemble(isl, false);
}

std::string MomentText(int isl) {
  std::string text = Assemble(isl, true);
  text.resize(19, ' ');
  return text;
}

}  // namespace corvinet
