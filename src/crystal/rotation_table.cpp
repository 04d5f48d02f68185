// The 36 rotations of IROT, built once from their text form (x', y', z').
#include "crystal/rotation_table.h"

#include <array>
#include <cassert>
#include <string_view>

namespace corvinet {
namespace {

constexpr std::array<std::string_view, kRotationTableSize> kRotationTexts = {
    // 432
    "x,y,z", "-x,-y,z", "-x,y,-z", "x,-y,-z", "z,x,y", "z,-x,-y", "-z,-x,y", "-z,x,-y", "y,z,x",
    "-y,z,-x", "y,-z,-x", "-y,-z,x", "y,x,-z", "-y,-x,-z", "y,-x,z", "-y,x,z", "x,z,-y", "-x,z,y",
    "-x,-z,-y", "x,-z,y", "z,y,-x", "z,-y,x", "-z,y,x", "-z,-y,-x",
    // 622, hexagonal axes
    "x,y,z", "-y,x-y,z", "-x+y,-x,z", "-x,-y,z", "y,-x+y,z", "x-y,x,z", "y,x,-z", "x-y,-y,-z",
    "-x,-x+y,-z", "-y,-x,-z", "-x+y,y,-z", "x,x-y,-z"};

// Rows of a text such as "-x+y,-x,z": each letter adds its sign to its column.
IntMatrix3 MatrixFromText(std::string_view text) {
  IntMatrix3 m;
  int row = 1;
  int sign = 1;
  for (char c : text) {
    if (c == ',') {
      ++row;
      sign = 1;
    } else if (c == '-') {
      sign = -1;
    } else if (c == '+') {
      sign = 1;
    } else {
      m(row, c - 'x' + 1) += sign;
      sign = 1;
    }
  }
  return m;
}

std::array<IntMatrix3, kRotationTableSize> BuildTable() {
  std::array<IntMatrix3, kRotationTableSize> table;
  for (int i = 0; i < kRotationTableSize; ++i) table[i] = MatrixFromText(kRotationTexts[i]);
  return table;
}

}  // namespace

const IntMatrix3& IROT(int index) {
  static const std::array<IntMatrix3, kRotationTableSize> table = BuildTable();
  assert(index >= 1 && index <= kRotationTableSize);
  return table[index - 1];
}

}  // namespace corvinet
