// Multiplicity of a reflection of the generation wedge by the rule of its Laue class.
#include <cstdlib>
#include <utility>

#include "crystal/equivalents.h"
#include "crystal/space_group_symbol.h"

namespace corvinet {
namespace {

// Each rule counts the members of the form of a representative of the wedges
// walked in reflection_wedge.cpp; FriedelFactor completes the classes whose
// rule counts half of them.

int Monoclinic(int uniqueAxis, int h, int k, int l) {
  const int axis = uniqueAxis == 1 ? h : uniqueAxis == 3 ? l : k;
  const bool pairZero = uniqueAxis == 1   ? (k == 0 && l == 0)
                        : uniqueAxis == 3 ? (h == 0 && k == 0)
                                          : (h == 0 && l == 0);
  return !pairZero && axis > 0 ? 2 : 1;
}

int Orthorhombic(int h, int k, int l) {
  int m = 1;
  if (h > 0) m *= 2;
  if (k > 0) m *= 2;
  if (l > 0) m *= 2;
  return m;
}

int Tetragonal4m(int k, int l) {
  if (k <= 0) return 1;
  return l > 0 ? 4 : 2;
}

// 00l lies on the four-fold axis: its form is {00l, 00-l} alone.
int Tetragonal4mmm(int h, int k, int l) {
  if (k < 1) return 1;
  int m = h > 0 && h < k ? 4 : 2;
  if (l >= 1) m *= 2;
  return m;
}

// Cyclic permutations and their negatives: 6, or 2 on the three-fold axis.
int Rhombohedral3(int h, int k, int l) {
  if (h == k && k == l) return h + k + l != 0 ? 2 : 1;
  return 6;
}

// All permutations and their negatives: the distinct permutations (1, 3 or 6),
// doubled unless the negated triple is one of them (h 0 -h).
int Rhombohedral3m(int h, int k, int l) {
  int a = h, b = k, c = l;
  if (a < b) std::swap(a, b);
  if (b < c) std::swap(b, c);
  if (a < b) std::swap(a, b);
  const int permutations = a == b && b == c ? 1 : (a == b || b == c) ? 3 : 6;
  const bool selfNegative = a == -c && b == 0;
  return selfNegative ? permutations : 2 * permutations;
}

// -3: six members off the c axis, l = 0 included (the inversion acts as a
// two-fold in that plane); 00l and 00-l on it.
int Trigonal3(int h, int k, int /*l*/) {
  return h == 0 && k == 0 ? 2 : 6;
}

// -3m1: the lines h = 0 and k = 0 are mirror lines off the plane l = 0; in
// that plane the wedge is 0 <= k <= h, bounded by k = 0 and h = k.
int Trigonal3m1(int h, int k, int l) {
  if (h == 0 && k == 0) return 2;
  if (l != 0) return h == 0 || k == 0 ? 6 : 12;
  return k == 0 || h == k ? 6 : 12;
}

// 6/m: six members in the plane l = 0, twelve off it, two on the axis.
int Hexagonal6m(int h, int k, int l) {
  if (h == 0 && k == 0) return 2;
  return l != 0 ? 12 : 6;
}

// -31m, before the Friedel factor: the wedge 0 <= h <= k, with h = 0 a line of
// general members off the plane l = 0.
int Trigonal31m(int h, int k, int l) {
  if (k < 1) return 1;
  if (h == k) return 3;
  if (h == 0) return l != 0 ? 6 : 3;
  return 6;
}

int Hexagonal6mmm(int h, int k, int l) {
  int m = 1;
  if (k > 0) m = h != 0 && h != k ? 12 : 6;
  if (l != 0) m *= 2;
  return m;
}

int CubicM3(int h, int k, int l) {
  if (h == k && k == l) return 4;
  int m = k > 0 ? 6 : 3;
  if (h > 0) m *= 2;
  return m;
}

int CubicM3m(int h, int k, int l) {
  if (h == 0) {
    if (k == 0) return 3;
    return k == l ? 6 : 12;
  }
  if (h == l) return 4;
  int m = 12;
  if (h != k && k != l) m *= 2;
  return m;
}

}  // namespace

int MultiplicityByClass(int laue, int uniqueAxis, int h, int k, int l) {
  switch (laue) {
    case kLaueTriclinic:
      return 1;
    case kLaue2m:
      return Monoclinic(uniqueAxis, h, k, l);
    case kLaueMmm:
      return Orthorhombic(h, k, l);
    case kLaue4m:
      return Tetragonal4m(k, l);
    case kLaue4mmm:
      return Tetragonal4mmm(h, k, l);
    case kLaue3R:
      return Rhombohedral3(h, k, l);
    case kLaue3mR:
      return Rhombohedral3m(h, k, l);
    case kLaue3:
      return Trigonal3(h, k, l);
    case kLaue3m1:
      return Trigonal3m1(h, k, l);
    case kLaue6m:
      return Hexagonal6m(h, k, l);
    case kLaue31m:
      return Trigonal31m(h, k, l);
    case kLaue6mmm:
      return Hexagonal6mmm(h, k, l);
    case kLaueM3:
      return CubicM3(h, k, l);
    case kLaueM3m:
      return CubicM3m(h, k, l);
    default:
      return 1;
  }
}

int FriedelFactor(int laue) {
  switch (laue) {
    case kLaueMmm:
    case kLaue3R:
    case kLaue3mR:
    case kLaue3:
    case kLaue3m1:
    case kLaue6m:
    case kLaue6mmm:
      return 1;
    default:
      return 2;
  }
}

int FormMultiplicity(int laue, int uniqueAxis, int h, int k, int l) {
  return MultiplicityByClass(laue, uniqueAxis, h, k, l) * FriedelFactor(laue);
}

}  // namespace corvinet
