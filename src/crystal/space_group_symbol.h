// Reading of a Hermann-Mauguin symbol into generator words, Laue class, unique axis and centring.
#pragma once

#include <string>
#include <string_view>

#include "records/space_group.h"
#include "records/table1.h"

namespace corvinet {

// Layout of a GeneratorWord, from the low end: r1 (bits 0-1), t1 (2-3), r2
// (4-5), t2 (6-7), r3 (8), t3 (9-10), t3third (11-12), wordType (13 and up).
namespace word {
constexpr GeneratorWord kRotationMask = 0x133;      // rotation bits
constexpr GeneratorWord kInversion = 0x122;         // -x,-y,-z
constexpr GeneratorWord kTranslationMask = 0x1ECC;  // any translation
constexpr GeneratorWord kCentringC = 68;
constexpr GeneratorWord kCentringB = 516;
constexpr GeneratorWord kCentringA = 576;
constexpr GeneratorWord kCentringI = 580;
constexpr GeneratorWord kCentringR = 8192;   // obverse, hexagonal axes
constexpr GeneratorWord kThreeFoldC = 8196;  // screw 0; 8200 and 8204 screw 1/3, 2/3
constexpr GeneratorWord kThreeFold111 = 16384;

constexpr int R1(GeneratorWord w) {
  return w & 3;
}
constexpr int T1(GeneratorWord w) {
  return (w >> 2) & 3;
}
constexpr int R2(GeneratorWord w) {
  return (w >> 4) & 3;
}
constexpr int T2(GeneratorWord w) {
  return (w >> 6) & 3;
}
constexpr int R3(GeneratorWord w) {
  return (w >> 8) & 1;
}
constexpr int T3(GeneratorWord w) {
  return (w >> 9) & 3;
}
constexpr int T3Third(GeneratorWord w) {
  return (w >> 11) & 3;
}
constexpr int WordType(GeneratorWord w) {
  return w >> 13;
}
// Rotation product of two ordinary words; only a marker for words with axis swaps.
constexpr GeneratorWord X(GeneratorWord a, GeneratorWord b) {
  return (a ^ b) & kRotationMask;
}
}  // namespace word

// Character codes of the symbol (0: a character with no code).
enum SymbolCode : int {
  kCodeBlank = 1,
  kCodeC,
  kCodeB,
  kCodeA,
  kCodeP,
  kCodeF,
  kCodeI,
  kCodeR,
  kCodeM,
  kCodeN,
  kCodeD,
  kCode1,
  kCode2,
  kCode3,
  kCode4,
  kCode5,
  kCode6,
  kCodeMinus,
  kCodeSlash,
  kCodeH,
  kCodeDot,
};
// Value left in F2[2] when the bar of field 2 is removed.
constexpr int kBarMark = 3;

// Laue classes.
enum LaueClass : int {
  kLaueTriclinic = 1,  // -1
  kLaue2m,             // 2/m
  kLaueMmm,            // mmm
  kLaue4m,             // 4/m
  kLaue4mmm,           // 4/mmm
  kLaue3R,             // -3 R
  kLaue3mR,            // -3m R
  kLaue3,              // -3
  kLaue3m1,            // -3m1
  kLaue31m,            // -31m
  kLaue6m,             // 6/m
  kLaue6mmm,           // 6/mmm
  kLaueM3,             // m3
  kLaueM3m,            // m3m
};

constexpr int kSymbolLength = 20;

// The symbol text in a 20-character buffer, with the letters c b a p f i r m
// n d folded to upper case.
std::string FoldSymbol(std::string_view symbol);

// Code of one character of a folded symbol; 0 for a character with no code.
int SymbolCharacterCode(char c);

// The four fields of four character codes each, F(r, p) for field r and
// position p, and the field counter NR of the scan.
struct SymbolFields {
  Table2<int, 4, 4> F;
  int NR = 1;
};

// Splits the folded symbol into fields: blanks separate fields, a fifth
// character opens the next field.
SymbolFields TokeniseSymbol(std::string_view symbol);

// The Laue class, unique axis and rhombohedral axes read from the fields alone.
struct LatticeAndLaue {
  bool ok = false;
  int latticeCode = 0;
  int LAUE = 0;
  int UniqueAxis = 0;
  bool rhombohedralAxes = false;
  int NR = 0;  // after dropping an H or R field
};
LatticeAndLaue ReadLatticeAndLaueClass(const SymbolFields& fields);

// Turns the symbol into generator words, Laue class and unique axis in `group`.
// On a failure UniqueAxis is 4 and the messages carry the stop. The banner line
// of the report is left in `banner`: operatorSource non-zero gives the symbol
// for the generation of reflections.
SymmetryMessages InterpretSymbol(std::string_view symbol, int operatorSource, SpaceGroup& group,
                                 std::string* banner = nullptr);

// Sets NLAT, latticeIndex, latticeTranslation and latticeLetter of `group`
// from the lattice letter of the symbol (or from `latticeLetter` when given),
// and returns the upper-case letter. A symbol on rhombohedral axes has no
// centring.
char LatticeFromSymbol(std::string_view symbol, SpaceGroup& group, char latticeLetter = 0);

// The name of a Laue class as the report prints it, 5 characters (" 2/m ", "4/mmm").
std::string_view PrintedLaueClass(int laue);

// The report text of the centring of `latticeIndex`, 51 characters.
std::string_view CentringText(int latticeIndex);

}  // namespace corvinet
