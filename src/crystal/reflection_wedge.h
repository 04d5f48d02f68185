// The asymmetric wedge the generation walks: loop class, lattice steps, starts and limits.
#pragma once

#include "records/space_group.h"

namespace corvinet {

// Which indices the centring of the lattice allows, as steps of the k and l
// loops: k ≡ kResidue (mod kStep) and l ≡ lResidue (mod lStep), the residues
// being linear in the outer indices.
enum class LatticeRule : int {
  kPrimitive,
  kA,         // k + l even
  kB,         // h + l even
  kC,         // h + k even
  kI,         // h + k + l even
  kF,         // h, k, l all even or all odd
  kObverseR,  // -h + k + l = 3n (hexagonal axes)
};

// Loop classes of the cubic groups with I centring.
constexpr int kLoopM3I = 15;
constexpr int kLoopM3mI = 16;

struct WedgeLoops {
  int loopClass = 1;  // the Laue class; 15 and 16 for the cubic classes with I centring
  int uniqueAxis = 0;
  LatticeRule lattice = LatticeRule::kPrimitive;
  int kStep = 1;
  int lStep = 1;
  int hMax = 0, kMax = 0, lMax = 0;
};

// The lattice rule of the centring words among the generator words.
LatticeRule LatticeRuleOfWords(const SpaceGroup& group);

// Loop class, steps and limits for a group and the index limits of a range.
WedgeLoops SetUpWedge(const SpaceGroup& group, int hMax, int kMax, int lMax);

// Start and last value of the k loop for h, of the l loop for h and k; the
// starts already obey the lattice rule.
int WedgeKStart(const WedgeLoops& w, int h);
int WedgeKLast(const WedgeLoops& w, int h);
int WedgeLStart(const WedgeLoops& w, int h, int k);
int WedgeLLast(const WedgeLoops& w, int h, int k);

// Calls visit(h, k, l) for every triple of the wedge within the limits, in
// loop order: h outermost, l innermost.
template <typename Visit>
void WalkWedge(const WedgeLoops& w, Visit&& visit) {
  for (int h = 0; h <= w.hMax; ++h) {
    const int kLast = WedgeKLast(w, h);
    for (int k = WedgeKStart(w, h); k <= kLast; k += w.kStep) {
      const int lLast = WedgeLLast(w, h, k);
      for (int l = WedgeLStart(w, h, k); l <= lLast; l += w.lStep) visit(h, k, l);
    }
  }
}

}  // namespace corvinet
