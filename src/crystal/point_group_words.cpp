// The rotation list of the generator words: decomposed generators, centrosymmetry and polar axes.
#include <algorithm>
#include <bit>

#include "crystal/space_group_symbol.h"
#include "crystal/symmetry_operators.h"

namespace corvinet {
namespace {

constexpr GeneratorWord kEntryMask = 0xE133;  // rotation and three-fold bits of an entry
constexpr GeneratorWord kSwapBits = 17;       // a source from the other axis
constexpr GeneratorWord kSignBits = 34;       // a negated source
constexpr GeneratorWord kSecondThreeFold = 32768;

DecomposedGenerator Decompose(GeneratorWord w) {
  DecomposedGenerator g;
  g.r1 = word::R1(w);
  g.t1 = word::T1(w);
  g.r2 = word::R2(w);
  g.t2 = word::T2(w);
  g.r3 = word::R3(w);
  g.t3 = word::T3(w);
  g.t3third = word::T3Third(w);
  if (w == word::kCentringR) {
    g.kind = kRhombohedralCentring;
  } else if (w == word::kThreeFold111) {
    g.kind = kThreeFoldAbout111;
  } else if (w > word::kCentringR) {
    g.kind = kThreeFoldAboutC;
  }
  return g;
}

// The entry of generator w applied after entry e.
GeneratorWord Combine(GeneratorWord w, GeneratorWord e) {
  GeneratorWord entry = (w ^ e) & kEntryMask;
  if ((w & kSwapBits) != 0 && std::popcount(static_cast<unsigned>(e & kSignBits)) == 1) {
    entry ^= kSignBits;
  }
  return entry;
}

void AppendEntry(SpaceGroup& group, GeneratorWord entry) {
  if (group.rotationWordCount >= SpaceGroupLimits::kGeneralPositions) return;
  group.rotationWords[++group.rotationWordCount] = entry;
}

// Generators of the three-fold about [111] go to the end of the table.
void MoveCubicThreeFoldsLast(SpaceGroup& group) {
  auto* first = group.generatorTable.begin();
  std::stable_partition(first, first + group.generatorTableCount,
                        [](const DecomposedGenerator& g) { return g.kind != kThreeFoldAbout111; });
}

void SetCentrosymmetryAndPolarAxes(SpaceGroup& group) {
  group.isAcentric = 1;
  for (int e = 1; e <= group.rotationWordCount; ++e) {
    const GeneratorWord entry = group.rotationWords[e];
    if (entry == word::kInversion) group.isAcentric = 0;
    if ((entry & 3) != 0) group.polarAxisMask &= ~1;
    if ((entry & 48) != 0) group.polarAxisMask &= ~2;
    if ((entry & 0x100) != 0) group.polarAxisMask &= ~4;
  }
}

}  // namespace

void PointGroupWords(SpaceGroup& group) {
  group.rotationWords.Fill(0);
  group.rotationWordCount = 1;
  group.generatorTableCount = 0;
  group.polarAxisMask = 7;
  const int words = std::min(group.generatorCount, SpaceGroupLimits::kGeneratorWords);
  for (int g = 1; g <= words; ++g) {
    const GeneratorWord w = group.generatorWords[g];
    if (w == 0) break;
    group.generatorTable[++group.generatorTableCount] = Decompose(w);
    if (w == word::kCentringR) group.polarAxisMask = 1;
    if (w > word::kCentringR) group.polarAxisMask = 4;
    const int present = group.rotationWordCount;
    for (int e = 1; e <= present; ++e) {
      if (w == word::kCentringR) {
        AppendEntry(group, 0);
        AppendEntry(group, 0);
        continue;
      }
      const GeneratorWord entry = Combine(w, group.rotationWords[e]);
      AppendEntry(group, entry);
      if (w > word::kCentringR) AppendEntry(group, entry + kSecondThreeFold);
    }
  }
  MoveCubicThreeFoldsLast(group);
  SetCentrosymmetryAndPolarAxes(group);
}

}  // namespace corvinet
