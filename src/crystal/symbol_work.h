// Working state of the reading of one space-group symbol, shared by its steps.
#pragma once

#include <string>
#include <vector>

#include "crystal/space_group_symbol.h"
#include "records/space_group.h"
#include "records/table1.h"

namespace corvinet {

// Generator rows (r1, r2, r3 | t1, t2, t3). Translation columns hold 0 (none),
// 1 (1/2), 2 (1/4), 3 (3/4), or those plus 4 while the translation is still
// free to be adjusted (4 free and zero, 5 free and 1/2, 6 free and 1/4).
struct GeneratorRow {
  int r1 = 0;
  int r2 = 0;
  int r3 = 0;
  int t1 = 0;
  int t2 = 0;
  int t3 = 0;
  int& T(int axis) { return axis == 1 ? t1 : axis == 2 ? t2 : t3; }
  int T(int axis) const { return axis == 1 ? t1 : axis == 2 ? t2 : t3; }
};

constexpr int kFreeTranslation = 4;

struct SymbolWork {
  static constexpr int kMaxRows = 15;
  static constexpr int kMaxWords = 24;

  SymbolFields fields;
  int NR = 0;
  int NF = 0;
  int latticeCode = 0;
  int laue = 0;
  int uniqueAxis = 0;
  bool rhombohedralAxes = false;

  Table1<GeneratorWord, kMaxWords> words;
  int wordCount = 0;  // L, the last word
  int fs = 1;         // first word made from a row

  Table1<GeneratorRow, kMaxRows> rows;
  int rowCount = 0;

  bool ended = false;  // the list is complete (I -4 3 d)
  bool failed = false;
  std::vector<std::string> console;

  int& F(int r, int p) { return fields.F(r, p); }
  // Position p of field r, 0 past the fourth position.
  int At(int r, int p) const { return p <= 4 ? fields.F(r, p) : 0; }

  void Fail() { failed = true; }
  bool AppendWord(GeneratorWord w) {
    if (wordCount >= kMaxWords) {
      Fail();
      return false;
    }
    words[++wordCount] = w;
    return true;
  }
  // Appends a row and returns its index, or 0 when the table is full.
  int AddRow(const GeneratorRow& row) {
    if (rowCount >= kMaxRows) {
      Fail();
      return 0;
    }
    rows[++rowCount] = row;
    return rowCount;
  }
  // The row that word w was packed from.
  GeneratorRow& RowOfWord(int w) { return rows[w - fs + 1]; }
};

// The generator rows and special words of the symmetry fields 2..NF.
void BuildGeneratorRows(SymbolWork& work);

// Packs the rows into words and removes or adjusts words until every
// translation is consistent with the inversion at the origin.
void PackAndEliminate(SymbolWork& work);

}  // namespace corvinet
