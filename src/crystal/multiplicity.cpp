// Multiplicity of a reflection of the generation wedge by the rule of its Laue class.
#include <cstdlib>

#include "crystal/equivalents.h"
#include "crystal/space_group_symbol.h"

namespace corvinet {
namespace {

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

int Tetragonal4mmm(int h, int k, int l) {
  if (k < 1) return l > 0 ? 2 : 1;
  int m = h > 0 && h < k ? 4 : 2;
  if (l >= 1) m *= 2;
  return m;
}

int Rhombohedral3(int h, int k, int l) {
  if (h == k && k == l) return h + k + l != 0 ? 2 : 1;
  return h + k + l != 0 ? 6 : 3;
}

int Rhombohedral3m(int h, int k, int l) {
  const bool sumNonZero = h + k + l != 0;
  if (h == k && k == l) return sumNonZero ? 2 : 1;
  const bool twoEqual = h == k || k == l || h == l;
  int twice = twoEqual ? 3 : 6;
  if (sumNonZero) twice *= 2;
  return twice / 2;
}

int Trigonal3(int h, int k, int l) {
  int m = std::abs(k) + h > 0 ? 3 : 1;
  if (l > 0) m *= 2;
  return m;
}

int Hexagonal(int h, int k, int l) {
  int m = l > 0 ? 2 : 1;
  if (h > 0) {
    m *= 3;
    if (k > 0) m *= 2;
  }
  return m;
}

int Trigonal31m(int h, int k) {
  if (k < 1) return 1;
  return k > h && h > 0 ? 6 : 3;
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
    case kLaueTriclinic: return 1;
    case kLaue2m: return Monoclinic(uniqueAxis, h, k, l);
    case kLaueMmm: return Orthorhombic(h, k, l);
    case kLaue4m: return Tetragonal4m(k, l);
    case kLaue4mmm: return Tetragonal4mmm(h, k, l);
    case kLaue3R: return Rhombohedral3(h, k, l);
    case kLaue3mR: return Rhombohedral3m(h, k, l);
    case kLaue3: return Trigonal3(h, k, l);
    case kLaue3m1:
    case kLaue6m: return Hexagonal(h, k, l);
    case kLaue31m: return Trigonal31m(h, k);
    case kLaue6mmm: return Hexagonal6mmm(h, k, l);
    case kLaueM3: return CubicM3(h, k, l);
    case kLaueM3m: return CubicM3m(h, k, l);
    default: return 1;
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
    case kLaue6mmm: return 1;
    default: return 2;
  }
}

int FormMultiplicity(int laue, int uniqueAxis, int h, int k, int l) {
  return MultiplicityByClass(laue, uniqueAxis, h, k, l) * FriedelFactor(laue);
}

}  // namespace corvinet
