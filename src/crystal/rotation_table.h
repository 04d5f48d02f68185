// The fixed table IROT of the 36 rotations that operators are matched against.
#pragma once

#include "records/table1.h"

namespace corvinet {

// An integer 3-by-3 matrix, entry (i, j) multiplies coordinate j in row i.
using IntMatrix3 = Table2<int, 3, 3>;

// Rotation `index` of IROT: 1..24 the point group 432, 25..36 the point group
// 622 in hexagonal axes.
const IntMatrix3& IROT(int index);

constexpr int kRotationTableSize = 36;

}  // namespace corvinet
