// Equivalents of a reflection, its systematic absence, and the multiplicity rule of its class.
#pragma once

#include <array>

#include "records/space_group.h"
#include "records/table1.h"

namespace corvinet {

// The images of one reflection under the generators of a group: indices and
// phase in twelfths of a turn (h·t of the operator that made the image).
struct EquivalentList {
  static constexpr int kCapacity = SpaceGroupLimits::kGeneralPositions;

  Table1<std::array<int, 3>, kCapacity> hkl;
  Table1<int, kCapacity> phase;  // twelfths, not reduced
  int count = 0;                 // distinct entries
  int generatorOrder = 1;        // product of the orders of the generators
  int stabiliserOrder = 0;       // generatorOrder / count, truncated
  bool absent = false;           // systematically absent: the list stops where it was found
};

// Packed key of a triple, (h*512 + k)*512 + l.
constexpr int PackedIndexKey(int h, int k, int l) {
  return (h * 512 + k) * 512 + l;
}

// Walks the generator table of `group` over (h, k, l). In a group whose
// generator words hold the inversion (centrosymmetric) the triple is first given a positive first
// non-zero index, keys are also matched against the negated key, and at the end the list holds one
// member of each Friedel pair, each with a positive key.
EquivalentList Equivalents(const SpaceGroup& group, int h, int k, int l);

// True when (h, k, l) is systematically absent in `group`.
bool IsSystematicallyAbsent(const SpaceGroup& group, int h, int k, int l);

// The multiplicity rule of the Laue class for a reflection of the generation
// wedge, before the Friedel factor. `uniqueAxis` picks the monoclinic setting.
int MultiplicityByClass(int laue, int uniqueAxis, int h, int k, int l);

// 2, but 1 for the classes whose rule already counts the Friedel mate.
int FriedelFactor(int laue);

// The multiplicity stored with a reflection: rule times Friedel factor.
int FormMultiplicity(int laue, int uniqueAxis, int h, int k, int l);

}  // namespace corvinet
