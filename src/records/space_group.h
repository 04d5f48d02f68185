// The space group of a phase: generator words, Laue class, centring and the reduced operator list.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "records/dimension_limits.h"
#include "records/table1.h"

namespace corvinet {

// A packed generator: rotation and translation codes in bit fields (see
// space_group_symbol.h for the layout).
using GeneratorWord = std::int32_t;

struct SpaceGroupLimits {
  static constexpr int kGeneratorWords = 8;                 // words of the generator list
  static constexpr int kOperators = DimensionLimits::NEQV;  // operators of the reduced list
  static constexpr int kGeneralPositions = 192;             // order of the largest group (F m 3 m)
};

// Kinds of generator in the decomposed table of PointGroupWords.
enum GeneratorKind : int {
  kOrdinaryGenerator = 0,
  kThreeFoldAbout111 = 1,     // word 16384
  kThreeFoldAboutC = 2,       // words 8196, 8200, 8204
  kRhombohedralCentring = 3,  // word 8192
};

// One generator word split into its fields: r1, t1, r2, t2, r3, t3 as in the
// word, the thirds of z, and the kind.
struct DecomposedGenerator {
  int r1 = 0;
  int t1 = 0;
  int r2 = 0;
  int t2 = 0;
  int r3 = 0;
  int t3 = 0;
  int t3third = 0;
  int kind = kOrdinaryGenerator;
};

struct SpaceGroup {
  using Limits = SpaceGroupLimits;

  // From the symbol.
  int LAUE = 0;        // Laue class 1..14
  int UniqueAxis = 0;  // 0 none, 1 a, 2 b, 3 c; 4 records a failed symbol
  Table1<GeneratorWord, Limits::kGeneratorWords> generatorWords;  // ended by 0 when not full
  int generatorCount = 0;

  // Centring, from the lattice letter.
  int NLAT = 1;          // centring translations, the null one included
  int latticeIndex = 1;  // P 1, A 2, B 3, C 4, I 5, R 6, F 7
  char latticeLetter = 'P';
  Table2<float, 3, 4> latticeTranslation;  // (axis, centring vector)

  // Point group of the generator words.
  Table1<int, Limits::kGeneralPositions> rotationWords;
  int rotationWordCount = 0;
  Table1<DecomposedGenerator, Limits::kGeneratorWords> generatorTable;
  int generatorTableCount = 0;
  int isAcentric = 1;
  int polarAxisMask = 7;  // bit 0 x, bit 1 y, bit 2 z may be shifted freely

  // Operators.
  int Isy = 0;    // 0 from the symbol, >0 numeric lines, <0 text lines
  int ICENT = 1;  // 1 acentric, 2 centrosymmetric with the inversion at the origin
  int NMAGM = 0;
  int multiplicityFactor = 1;
  int generalPositionCount = 0;  // order of the general position, centring and inversion included
  int NSYM = 0;
  Table1<int, Limits::kOperators> isl;               // signed index into IROT
  Table2<float, 3, Limits::kOperators> translation;  // (axis, operator)
  Table2<int, DimensionLimits::NMAGM, Limits::kOperators> magneticRotation;
  Table2<float, DimensionLimits::NMAGM, Limits::kOperators> magneticPhase;
  Table1<int, Limits::kOperators + 1> magneticSign;
  Table1<std::string, Limits::kOperators> operatorText;
};

// What an operation has to say: lines for the console and, when it failed,
// the text of the stop box. The caller shows them; nothing here does I/O.
struct SymmetryMessages {
  std::vector<std::string> console;
  std::string stop;  // empty when the operation succeeded
  bool ok() const { return stop.empty(); }
};

}  // namespace corvinet
