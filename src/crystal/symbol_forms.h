// The form a space-group symbol is written in: the program's own, an alias, or none.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "records/space_group.h"

namespace corvinet {

// What the typed symbol is read as.
struct SymbolForm {
  std::string symbol;    // the text the group is built from
  bool renamed = false;  // the user wrote an alias of `symbol`
  int badColumn = 0;     // column of the first character that fits no form; 0 when it fits
};

// The typed text with single blanks, no blank around the colon, the first
// letter and the setting suffix in upper case. `columns`, when given, receives
// the 1-based column of the typed text of each character kept.
std::string NormaliseSymbolText(std::string_view typed, std::vector<int>* columns = nullptr);

// Column (1-based) of the first character of `typed` that does not fit the
// program's notation: a lattice letter and one to three fields of rotations,
// screws, bars and planes separated by blanks, then H or R after an R
// lattice. 0 when the whole text fits.
int FirstColumnOutsideNotation(std::string_view typed);

// Reads the typed symbol: an alias gives its row's symbol, a text in the
// program's notation stays as typed, anything else has a bad column.
SymbolForm ReadSymbolForm(std::string_view typed);

// The console lines and stop of a symbol that fits no form: the symbol and a
// caret under its bad column. Empty when the form fits.
SymmetryMessages SymbolFormMessages(std::string_view typed, const SymbolForm& form);

// The report line of an alias: the symbol as the program writes it and as typed.
std::string RenamedSymbolLine(std::string_view typed, const SymbolForm& form);

}  // namespace corvinet
