// The elements: symbols and standard atomic weights, and the element a species label names.
#pragma once

#include <string_view>

namespace corvinet {

inline constexpr int kElementCount = 98;  // Z 1 (H) to 98 (Cf)

// One element: its symbol as chemists write it and its standard atomic weight.
struct ElementRow {
  const char* symbol;  // "H", "He", ..., "Cf"
  double weight;       // standard atomic weight (g/mol)
};

// Rows for Z 1 to 98, in order (defined in element_rows.cpp).
extern const ElementRow kElementRows[kElementCount];

// What a species label names: the atomic number and the mass of the atom.
struct LabelledElement {
  int Z = 0;            // atomic number, 0 when the label names no element
  double weight = 0.0;  // atomic weight (deuterium its own)
};

// The element of a species label as atom lines write it: its leading letters in any case
// ("PB", "Fe+3", "o-2", "siv", "cval"), two letters tried before one; "D" is deuterium.
// A label that names no element gives Z 0.
LabelledElement ElementOfLabel(std::string_view label);

// Atomic number of an element symbol in any case, or 0.
int AtomicNumberOfSymbol(std::string_view symbol);

}  // namespace corvinet
