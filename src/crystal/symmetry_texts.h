// Texts of the symmetry report: Seitz-like symbols, rotation parts and moment parts.
#pragma once

#include <string>
#include <string_view>

namespace corvinet {

// Position of an operator in the symbol tables of its family: for the cubic
// rows (|isl| 1..24) |isl|, plus 24 when isl is negative (1..48); for the
// hexagonal rows (|isl| 25..36) |isl| - 24, plus 12 when negative (1..24).
int SymbolTableIndex(int isl);

// The 14-character Seitz-like symbol of an operator ("  2 ( 0, 0, z)").
std::string_view SeitzSymbol(int isl);

// The rotation part of an operator: 10 characters "( x, y, z)" for the cubic
// rows, 14 characters "(  -y, x-y, z)" for the hexagonal rows, where each of
// the first two fields gives two columns to its x term and two to its y term.
std::string RotationText(int isl);

// The rotation acting on moments, 19 characters: "( Mx, My, Mz)      " for
// the cubic rows, "( Mx   ,    My, Mz)" for the hexagonal rows.
std::string MomentText(int isl);

}  // namespace corvinet
