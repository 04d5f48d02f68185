// Operators typed as text ("x,y+1/2,-z", "u,-v,w") turned into rotation and translation.
#pragma once

#include <string_view>

#include "crystal/rotation_table.h"
#include "records/space_group.h"
#include "records/table1.h"

namespace corvinet {

// Reads columns startColumn..length (from 1) of `line` as three
// comma-separated fields of x, y, z with signs, integer coefficients and a
// translation ("-x+y", "2z", "z+1/3", "0.5-y"). On a failure the messages
// carry the stop: an invalid character, a blank field, or a rotation with
// determinant 0.
SymmetryMessages ParseOperatorText(std::string_view line, int startColumn, IntMatrix3& rotation,
                                   Table1<float, 3>& translation, int length = 80);

// Reads a magnetic matrix line: u, v, w in place of x, y, z from column 6 up to
// the last comma, and the integer behind that comma as the phase (0 when it
// cannot be read).
SymmetryMessages ParseMagneticText(std::string_view line, IntMatrix3& rotation,
                                   float& magneticPhase);

}  // namespace corvinet
