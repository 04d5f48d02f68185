// The element a species label names, from the element table.
#include "model/elements.h"

#include <cctype>
#include <string>

namespace corvinet {

namespace {

constexpr double kDeuteriumWeight = 2.0141;  // mass of the deuteron atom (g/mol)

bool SameSymbol(std::string_view symbol, std::string_view typed) {
  if (symbol.size() != typed.size()) return false;
  for (std::size_t i = 0; i < symbol.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(symbol[i])) !=
        std::tolower(static_cast<unsigned char>(typed[i]))) {
      return false;
    }
  }
  return true;
}

}  // namespace

int AtomicNumberOfSymbol(std::string_view symbol) {
  for (int z = 1; z <= kElementCount; ++z) {
    if (SameSymbol(kElementRows[z - 1].symbol, symbol)) return z;
  }
  return 0;
}

LabelledElement ElementOfLabel(std::string_view label) {
  std::size_t letters = 0;
  while (letters < label.size() && std::isalpha(static_cast<unsigned char>(label[letters]))) {
    ++letters;
  }
  if (letters == 1 && SameSymbol("D", label.substr(0, 1))) return {1, kDeuteriumWeight};
  for (std::size_t n = std::min<std::size_t>(letters, 2); n >= 1; --n) {
    if (const int z = AtomicNumberOfSymbol(label.substr(0, n)); z != 0) {
      return {z, kElementRows[z - 1].weight};
    }
  }
  return {};
}

}  // namespace corvinet
