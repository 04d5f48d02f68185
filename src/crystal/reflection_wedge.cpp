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

// The first value at or above `start` that is congruent to `residue`.
int RaiseTo(int start, int residue, int modulus) {
  return start + Mod(residue - start, modulus);
}

int KResidue(LatticeRule rule, int h) {
  return rule == LatticeRule::kC || rule == LatticeRule::kF ? h : 0;
}

int LResidue(LatticeRule rule, int h, int k) {
  switch (rule) {
    case LatticeRule::kA: return k;
    case LatticeRule::kB:
    case LatticeRule::kF: return h;
    case LatticeRule::kI: return h + k;
    case LatticeRule::kObverseR: return h - k;
    default: return 0;
  }
}

int RawKStart(const WedgeLoops& w, int h) {
  switch (w.loopClass) {
    case kLaueTriclinic: return h == 0 ? 0 : -w.kMax;
    case kLaue2m: return w.uniqueAxis == 3 && h != 0 ? -w.kMax : 0;
    case kLaue4m: return h == 0 ? 0 : 1;
    case kLaue3R: return -2 * h;
    case kLaue3mR: return -(h / 2);
    case kLaue3: return h <= 1 ? 0 : 1;
    case kLaue4mmm:
    case kLaue31m:
    case kLaue6mmm:
    case kLaueM3:
    case kLaueM3m:
    case kLaueM3m + 1:
    case kLaueM3m + 2: return h;
    default: return 0;
  }
}

int RawLStart(const WedgeLoops& w, int h, int k) {
  switch (w.loopClass) {
    case kLaueTriclinic: return h == 0 && k == 0 ? 0 : -w.lMax;
    case kLaue2m: return w.uniqueAxis != 3 && h != 0 ? -w.lMax : 0;
    case kLaue3R:
    case kLaue3mR: return -h - k;
    case kLaue31m: return h == 0 && k == 0 ? 0 : -w.lMax;
    case kLaueM3: return std::min(k, h + w.lStep);
    case kLaueM3m: return k;
    case kLaueM3m + 1: {
      const int start = 2 + Mod(h, 2) - Mod(k, 2);
      return std::min(k, start);
    }
    case kLaueM3m + 2: return k + Mod(h, 2);
    default: return 0;
  }
}

}  // namespace

LatticeRule LatticeRuleOfWords(const SpaceGroup& group) {
  bool a = false, b = false;
  for (int i = 1; i <= group.generatorCount; ++i) {
    switch (group.generatorWords[i]) {
      case word::kCentringC: return LatticeRule::kC;
      case word::kCentringI: return LatticeRule::kI;
      case word::kCentringR: return LatticeRule::kObverseR;
      case word::kCentringA: a = true; break;
      case word::kCentringB: b = true; break;
      default: break;
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
  if ((group.LAUE == kLaueM3 || group.LAUE == kLaueM3m) && bodyCentred) w.loopClass += 2;
  w.uniqueAxis = group.UniqueAxis;
  w.lattice = LatticeRuleOfWords(group);
  w.kStep = w.lattice == LatticeRule::kC || w.lattice == LatticeRule::kF ? 2 : 1;
  switch (w.lattice) {
    case LatticeRule::kA:
    case LatticeRule::kB:
    case LatticeRule::kI:
    case LatticeRule::kF: w.lStep = 2; break;
    case LatticeRule::kObverseR: w.lStep = 3; break;
    default: w.lStep = 1; break;
  }
  w.hMax = hMax;
  w.kMax = kMax;
  w.lMax = lMax;
  return w;
}

bool LatticeAllows(LatticeRule rule, int h, int k, int l) {
  switch (rule) {
    case LatticeRule::kA: return Mod(k + l, 2) == 0;
    case LatticeRule::kB: return Mod(h + l, 2) == 0;
    case LatticeRule::kC: return Mod(h + k, 2) == 0;
    case LatticeRule::kI: return Mod(h + k + l, 2) == 0;
    case LatticeRule::kF: return Mod(h + k, 2) == 0 && Mod(h + l, 2) == 0;
    case LatticeRule::kObverseR: return Mod(-h + k + l, 3) == 0;
    default: return true;
  }
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

int WedgeLLast(const WedgeLoops& w, int /*h*/, int /*k*/) {
  return w.lMax;
}

bool InWedge(const WedgeLoops& w, int h, int k, int l) {
  if (h < 0 || h > w.hMax) return false;
  if (k < WedgeKStart(w, h) || k > WedgeKLast(w, h)) return false;
  if (l < WedgeLStart(w, h, k) || l > WedgeLLast(w, h, k)) return false;
  return LatticeAllows(w.lattice, h, k, l);
}

}  // namespace corvinet
