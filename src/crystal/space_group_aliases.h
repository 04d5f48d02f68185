// The table of the other ways users write the space groups the program builds from a symbol.
#pragma once

#include <span>
#include <string_view>

namespace corvinet {

// One alias, written with single blanks, no blank around the colon of a
// setting suffix and the suffix in upper case, and the program's symbol of
// the same group.
struct SymbolAlias {
  std::string_view alias;
  std::string_view symbol;
};

// Every alias, sorted by the alias text. No alias is written as one of the
// program's own symbols.
std::span<const SymbolAlias> SpaceGroupAliases();

}  // namespace corvinet
