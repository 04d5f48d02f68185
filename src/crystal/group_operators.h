// The operators of a built group as matrices: a signed rotation, one operator of the reduced
// list, the whole general position; and a row of an integer matrix as letters ("-x+y").
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "crystal/symmetry_operators.h"
#include "records/space_group.h"

namespace corvinet {

// The rotation of a signed index of the rotation table; 0 gives the zero matrix.
IntMatrix3 SignedRotation(int isl);

// Operator n of the reduced list of `group`.
SymmetryOperator ReducedOperator(const SpaceGroup& group, int n);

// Every operator of the general position: the reduced list times the centring translations and,
// for a group with its inversion at the origin, times the inversion; translations in [0, 1).
std::vector<SymmetryOperator> GeneralPositionOperators(const SpaceGroup& group);

// Row `row` of `m` as a sum of the letters ("-x+y", "2z"), "0" for a zero row.
std::string MatrixRowText(const IntMatrix3& m, int row,
                          const std::array<std::string_view, 3>& letters);

}  // namespace corvinet
