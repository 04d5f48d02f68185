// Symmetric equivalents and systematic absence of a reflection over the generator table.
#include "crystal/equivalents.h"

#include "crystal/space_group_symbol.h"

namespace corvinet {
namespace {

using Triple = std::array<int, 3>;

// Twelfths of a turn of the translation codes 0, 1, 2, 3 (0, 1/2, 1/4, 3/4).
constexpr int kTwelfthsOfCode[4] = {0, 6, 3, 9};
constexpr int kTwelfthsOfThird = 4;

// The image of a row of indices under an ordinary generator: h' = h R, with
// the rows of R read from the axis and sign fields of the word (x' from r1,
// y' from r2, z' from r3).
Triple OrdinaryImage(const DecomposedGenerator& g, const Triple& v) {
  // Row 1 of R puts h into column 1 (x), 2 (y), -1 (-x) or -2 (-y) by r1.
  static constexpr int kRow1Column[4] = {1, 2, -1, -2};
  static constexpr int kRow2Column[4] = {2, 1, -2, -1};
  Triple out = {0, 0, 0};
  auto add = [&out](int column, int value) {
    if (column > 0) out[static_cast<std::size_t>(column - 1)] += value;
    if (column < 0) out[static_cast<std::size_t>(-column - 1)] -= value;
  };
  add(kRow1Column[g.r1], v[0]);
  add(kRow2Column[g.r2], v[1]);
  out[2] = g.r3 != 0 ? -v[2] : v[2];
  return out;
}

int OrdinaryPhase(const DecomposedGenerator& g, const Triple& parent) {
  const int t3 = kTwelfthsOfCode[g.t3] + kTwelfthsOfThird * g.t3third;
  return parent[0] * kTwelfthsOfCode[g.t1] + parent[1] * kTwelfthsOfCode[g.t2] + parent[2] * t3;
}

// The images of one entry under one generator; returns how many (1 or 2).
int Images(const DecomposedGenerator& g, const Triple& v, int phase, Triple out[2],
           int outPhase[2]) {
  const int h = v[0], k = v[1], l = v[2];
  switch (g.kind) {
    case kThreeFoldAboutC: {
      // Screw s thirds along c, s = t1 - 1: the images carry s/3 and 2s/3.
      const int screw = (g.t1 - 1) * kTwelfthsOfThird * l;
      out[0] = {k, -h - k, l};
      outPhase[0] = phase + screw;
      out[1] = {-h - k, h, l};
      outPhase[1] = phase + 2 * screw;
      return 2;
    }
    case kThreeFoldAbout111:
      out[0] = {k, l, h};
      out[1] = {l, h, k};
      outPhase[0] = outPhase[1] = phase;
      return 2;
    case kRhombohedralCentring:
      // (2/3, 1/3, 1/3) and (1/3, 2/3, 2/3).
      out[0] = out[1] = v;
      outPhase[0] = phase + 8 * h + 4 * k + 4 * l;
      outPhase[1] = phase + 4 * h + 8 * k + 8 * l;
      return 2;
    default:
      out[0] = OrdinaryImage(g, v);
      outPhase[0] = phase + OrdinaryPhase(g, v);
      return 1;
  }
}

int OrderOf(const DecomposedGenerator& g) {
  return g.kind == kOrdinaryGenerator ? 2 : 3;
}

Triple Negated(const Triple& v) {
  return {-v[0], -v[1], -v[2]};
}

int Key(const Triple& v) {
  return PackedIndexKey(v[0], v[1], v[2]);
}

bool IntegralTurns(int twelfths) {
  return twelfths % 12 == 0;
}

// Adds an image unless an entry already holds its key (or, centrosymmetric,
// the negated key); sets `absent` when such an entry has another phase. The
// first entry, the reflection itself, takes part: an image that returns to it
// with a fractional phase is what a screw axis or a glide plane extinguishes.
void AddImage(EquivalentList& list, bool centric, const Triple& v, int phase) {
  const int key = Key(v);
  for (int e = 1; e <= list.count; ++e) {
    const int stored = Key(list.hkl[e]);
    if (stored == key || (centric && stored == -key)) {
      if (!IntegralTurns(phase - list.phase[e])) list.absent = true;
      return;
    }
  }
  if (list.count >= EquivalentList::kCapacity) return;
  ++list.count;
  list.hkl[list.count] = v;
  list.phase[list.count] = phase;
}

// In the large centrosymmetric classes (6/mmm and the cubic ones) an image
// of a generator that keeps or negates h, with a key below 1, is the Friedel
// mate of an entry the walk also reaches; it is passed over.
bool SkippedFriedelImage(const DecomposedGenerator& g, int laue, bool centric, const Triple& v) {
  return centric && laue >= kLaue6mmm && g.kind == kOrdinaryGenerator && g.r1 % 2 == 0 &&
         Key(v) < 1;
}

// One generator applied to every entry present when its turn began.
void ApplyGenerator(EquivalentList& list, const DecomposedGenerator& g, int laue, bool centric) {
  const int present = list.count;
  for (int e = 1; e <= present && !list.absent; ++e) {
    Triple images[2];
    int phases[2];
    const int n = Images(g, list.hkl[e], list.phase[e], images, phases);
    for (int m = 0; m < n && !list.absent; ++m) {
      if (SkippedFriedelImage(g, laue, centric, images[m])) continue;
      AddImage(list, centric, images[m], phases[m]);
    }
  }
}

// One member of each Friedel pair, with a positive key.
void KeepPositiveMembers(EquivalentList& list) {
  for (int e = 1; e <= list.count; ++e) {
    if (Key(list.hkl[e]) < 1) list.hkl[e] = Negated(list.hkl[e]);
  }
}

Triple WithPositiveLead(int h, int k, int l) {
  const int lead = h != 0 ? h : k != 0 ? k : l;
  return lead < 0 ? Triple{-h, -k, -l} : Triple{h, k, l};
}

// Whether the point group of the generator words holds the inversion. For a
// group of a symbol this is its centrosymmetry; a phase whose operators come
// from the control file keeps its own flag, and its words are those of the
// symbol it generates reflections from.
bool WordsHoldInversion(const SpaceGroup& group) {
  for (int e = 1; e <= group.rotationWordCount; ++e) {
    if (group.rotationWords[e] == word::kInversion) return true;
  }
  return false;
}

}  // namespace

EquivalentList Equivalents(const SpaceGroup& group, int h, int k, int l) {
  EquivalentList list;
  const bool centric = WordsHoldInversion(group);
  list.count = 1;
  list.hkl[1] = centric ? WithPositiveLead(h, k, l) : Triple{h, k, l};
  list.phase[1] = 0;
  for (int g = 1; g <= group.generatorTableCount; ++g) {
    const DecomposedGenerator& generator = group.generatorTable[g];
    list.generatorOrder *= OrderOf(generator);
    ApplyGenerator(list, generator, group.LAUE, centric);
    if (list.absent) return list;
  }
  list.stabiliserOrder = list.generatorOrder / list.count;
  if (centric) KeepPositiveMembers(list);
  return list;
}

bool IsSystematicallyAbsent(const SpaceGroup& group, int h, int k, int l) {
  return Equivalents(group, h, k, l).absent;
}

}  // namespace corvinet
