// Loop class, lattice steps and the start of each loop of the generation wedge.
#include "crystal/reflection_wedge.h"

#include <algorithm>

#include "crystal/space_group_symbol.h"

namespace corvinet {
namespace {

int Mod(int value, int modulus) {
  const int r = value % modulus;
  return r < 0 ? r + modulus : r;
}

// Unique axis a: the pair (k, l) is taken up to its sign, so l runs over
// both signs unless k is 0. Unique axes b and c keep l >= 0 for h = 0.
int LStartMonoclinic(const WedgeLoops& w, int h, int k) {
  if (w.uniqueAxis == 3) return 0;
  if (w.uniqueAxis == 1) return k == 0 ? 0 : -w.lMax;
  return h == 0 ? 0 : -w.lMax;
}

// The first value at or above `start` that is congruent to `residue`.
int RaiseTo(int start, int residue, int modulus) {
  return start + Mod(residue - start, modulus);
}

int KResidue(LatticeRule rule, int h) {
  return rule == LatticeRule::kC || rule == LatticeRule::kF ? h : 0;
}

int LResidue(LatticeRule rule, int h, int k) {
  switch (rule) {
    case LatticeRule::kA:
      return k;
    case LatticeRule::kB:
    case LatticeRule::kF:
      return h;
    case LatticeRule::kI:
      return h + k;
    case LatticeRule::kObverseR:
      return h - k;
    default:
      return 0;
  }
}

// The wedge of each loop class, with h >= 0 throughout (hexagonal indices
// refer to a*, b* at 60 degrees):
//   -1      h > 0 any k, l; h = 0: k > 0 any l, or k = 0, l >= 0
//   2/m     b: k >= 0 and (h > 0 any l, or h = 0, l >= 0);
//           c: l >= 0 and (h > 0 any k, or h = 0, k >= 0);
//           a: h >= 0 and the pair (k, l) up to its sign (k > 0 any l, or k = 0, l >= 0)
//   mmm     h, k, l >= 0
//   4/m     l >= 0, k > 0 (k = 0 only for 00l)
//   4/mmm   0 <= h <= k, l >= 0
//   -3 R    (rhombohedral axes) h + k + l > 0 with h the largest index
//           (h >= k, h > l, or h = k = l); on h + k + l = 0, -h < k <= 0
//   -3m R   h >= k >= l with h + k + l > 0, or h + k + l = 0 and k <= 0
//   -3      l > 0: the sector -60 < angle <= 60 degrees (k > -h, and k > 0
//           for h = 0); l = 0: 0 < angle <= 60 (k > 0)
//   -3m1    h, k >= 0 and l > 0; in the plane l = 0 only 0 <= k <= h
//   -31m    0 <= h <= k, any l, with l >= 0 when h = 0
//   6/m     l >= 0, k > 0 (k = 0 only for 00l)
//   6/mmm   0 <= h <= k, l >= 0
//   m3      0 <= h <= k, l > h, or h = k = l
//   m3m     0 <= h <= k <= l
// The centred cubic classes walk the same wedges with the I parity on l.
int RawKStart(const WedgeLoops& w, int h) {
  switch (w.loopClass) {
    case kLaueTriclinic:
      return h == 0 ? 0 : -w.kMax;
    case kLaue2m:
      return w.uniqueAxis == 3 && h != 0 ? -w.kMax : 0;
    case kLaue4m:
    case kLaue6m:
      return h == 0 ? 0 : 1;
    case kLaue3R:
      return 2 - 2 * h;
    case kLaue3mR:
      return -(h / 2);
    case kLaue3:
      return h == 0 ? 0 : 1 - h;
    case kLaue4mmm:
    case kLaue31m:
    case kLaue6mmm:
    case kLaueM3:
    case kLaueM3m:
    case kLoopM3I:
    case kLoopM3mI:
      return h;
    default:
      return 0;
  }
}

int RawLStart(const WedgeLoops& w, int h, int k) {
  switch (w.loopClass) {
    case kLaueTriclinic:
      return h == 0 && k == 0 ? 0 : -w.lMax;
    case kLaue2m:
      return LStartMonoclinic(w, h, k);
    case kLaue3R:
      return -h - k + (k > -h && k <= 0 ? 0 : 1);
    case kLaue3mR:
      return -h - k + (k <= 0 ? 0 : 1);
    case kLaue3:
      return k > 0 ? 0 : 1;
    case kLaue3m1:
      return k > h ? 1 : 0;
    case kLaue31m:
      return h == 0 ? 0 : -w.lMax;
    case kLaueM3:
    case kLoopM3I:
      return k == h ? h : h + 1;
    case kLaueM3m:
    case kLoopM3mI:
      return k;
    default:
      return 0;
  }
}

}  // namespace

LatticeRule LatticeRuleOfWords(const SpaceGroup& group) {
  bool a = false, b = false;
  for (int i = 1; i <= group.generatorCount; ++i) {
    switch (group.generatorWords[i]) {
      case word::kCentringC:
        return LatticeRule::kC;
      case word::kCentringI:
        return LatticeRule::kI;
      case word::kCentringR:
        return LatticeRule::kObverseR;
      case word::kCentringA:
        a = true;
        break;
      case word::kCentringB:
        b = true;
        break;
      default:
        break;
    }
  }
  if (a && b) return LatticeRule::kF;
  if (a) return LatticeRule::kA;
  if (b) return LatticeRule::kB;
  return LatticeRule::kPrimitive;
}

WedgeLoops SetUpWedge(const SpaceGroup& group, int hMax, int kMax, int lMax) {
  WedgeLoops w;
  w.loopClass = group.LAUE;
  const bool bodyCentred = group.generatorCount > 0 && group.generatorWords[1] == word::kCentringI;
  if (group.LAUE == kLaueM3 && bodyCentred) w.loopClass = kLoopM3I;
  if (group.LAUE == kLaueM3m && bodyCentred) w.loopClass = kLoopM3mI;
  w.uniqueAxis = group.UniqueAxis;
  w.lattice = LatticeRuleOfWords(group);
  w.kStep = w.lattice == LatticeRule::kC || w.lattice == LatticeRule::kF ? 2 : 1;
  switch (w.lattice) {
    case LatticeRule::kA:
    case LatticeRule::kB:
    case LatticeRule::kI:
    case LatticeRule::kF:
      w.lStep = 2;
      break;
    case LatticeRule::kObverseR:
      w.lStep = 3;
      break;
    default:
      w.lStep = 1;
      break;
  }
  w.hMax = hMax;
  w.kMax = kMax;
  w.lMax = lMax;
  return w;
}

int WedgeKStart(const WedgeLoops& w, int h) {
  return RaiseTo(RawKStart(w, h), KResidue(w.lattice, h), w.kStep);
}

int WedgeKLast(const WedgeLoops& w, int h) {
  if (w.loopClass == kLaue3R || w.loopClass == kLaue3mR) return h;
  return w.kMax;
}

int WedgeLStart(const WedgeLoops& w, int h, int k) {
  return RaiseTo(RawLStart(w, h, k), LResidue(w.lattice, h, k), w.lStep);
}

int WedgeLLast(const WedgeLoops& w, int h, int k) {
  if (w.loopClass == kLaue3R) return k == h ? h : h - 1;
  if (w.loopClass == kLaue3mR) return k;
  return w.lMax;
}

}  // namespace corvinet
