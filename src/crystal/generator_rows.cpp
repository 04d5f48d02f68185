// Generator rows and special words made from the symmetry fields of a space-group symbol.
#include <cstdlib>

#include "crystal/symbol_work.h"

namespace corvinet {
namespace {

bool IsGlideA(int letter) {
  return letter == kCodeA || letter == kCodeN;
}
bool IsGlideB(int letter) {
  return letter == kCodeB || letter == kCodeN;
}
bool IsGlideC(int letter) {
  return letter == kCodeC || letter == kCodeN;
}
bool IsMirrorLetter(int code) {
  return code == kCodeA || code == kCodeB || code == kCodeC || code == kCodeM || code == kCodeN;
}

GeneratorRow Row(int r1, int r2, int r3, int t1, int t2, int t3) {
  GeneratorRow row;
  row.r1 = r1;
  row.r2 = r2;
  row.r3 = r3;
  row.t1 = t1;
  row.t2 = t2;
  row.t3 = t3;
  return row;
}

// A translation along the diagonal [110] carried by field 4 of a symbol.
enum class DiagonalTranslation { kNone, kScrew, kGlide };

// The row with x and y exchanged: (r2, r1, r3 | t2, t1, t3).
GeneratorRow Transposed(const GeneratorRow& row) {
  return Row(row.r2, row.r1, row.r3, row.t2, row.t1, row.t3);
}

class RowBuilder {
 public:
  explicit RowBuilder(SymbolWork& work) : w_(work) {}

  void Run() {
    if (w_.F(2, 1) == kCodeMinus) {
      w_.F(2, 1) = w_.F(2, 2);
      w_.F(2, 2) = kBarMark;
    }
    for (int r = 2; r <= w_.NF && !w_.failed && !w_.ended; ++r) {
      const int leader = w_.F(r, 1);
      if (leader == 0 || leader == kCodeMinus) return w_.Fail();
      ApplyLeader(r, leader, true);
    }
  }

 private:
  SymbolWork& w_;

  int F21() const { return w_.At(2, 1); }
  int F31() const { return w_.At(3, 1); }
  int F41() const { return w_.At(4, 1); }

  // The translation along [110] that field 4 of a C-centred tetragonal symbol
  // asks for (C 4 2 21, C -4 2 b, ...). The shortest lattice vector along the
  // diagonal of the C cell is (1/2,1/2,0), so a screw 21 or a glide a or b
  // there translates by (1/4,1/4,0), which the diagonal row cannot hold. The
  // diagonal element is the product of the four-fold and the element along b,
  // so the translation goes on one of those instead: a screw moves the
  // four-fold to (1/4,1/4,z) (x + 1/2), a glide moves the elements along a and
  // b to x = 1/4 (x + 1/2). Either way the diagonal element comes out as
  // (y + 1/2, x, +-z), i.e. (1/4,1/4,0) along the diagonal.
  DiagonalTranslation DiagonalOfCentredCell() const {
    if (w_.latticeCode != kCodeC || F21() != kCode4 || w_.NF < 4) return DiagonalTranslation::kNone;
    if (F41() == kCode2 && w_.At(4, 2) == kCode1) return DiagonalTranslation::kScrew;
    if (F41() == kCodeA || F41() == kCodeB) return DiagonalTranslation::kGlide;
    return DiagonalTranslation::kNone;
  }

  // Applies the rule of the character leading field r (or standing behind its
  // '/'). A rule for a rotation axis then looks for a '/' in the field.
  void ApplyLeader(int r, int leader, bool followSlash) {
    const int c2 = w_.At(r, 2);
    bool rotation = true;
    switch (leader) {
      case kCodeDot:
      case kCode5:
      case kCodeP:
      case kCodeMinus:
        return w_.Fail();
      case kCodeH:
      case kCodeSlash:
        return;
      case kCode1:
        if (c2 == kBarMark) w_.AddRow(Row(2, 2, 2, 4, 4, 4));
        break;
      case kCode2:
        TwoFold(r, c2);
        break;
      case kCode3:
        ThreeFold(r, c2);
        break;
      case kCode4:
        if (r != 2) return w_.Fail();
        FourFold(c2);
        break;
      case kCode6:
        if (r != 2) return w_.Fail();
        SixFold(r, c2);
        break;
      case kCodeD:
        DiamondGlide(r);
        rotation = false;
        break;
      default:
        Mirror(r, leader);
        rotation = false;
        break;
    }
    if (rotation && followSlash && !w_.failed && !w_.ended) FollowSlash(r);
  }

  // The character behind a '/' in positions 2..4 is treated by the same rules.
  void FollowSlash(int r) {
    for (int p = 2; p <= 4; ++p) {
      if (w_.At(r, p) != kCodeSlash) continue;
      const int behind = w_.At(r, p + 1);
      if (behind == 0 || behind == kCodeP) return w_.Fail();
      return ApplyLeader(r, behind, false);
    }
  }

  void TwoFold(int r, int c2) {
    if (r == 2) {
      if (w_.NF == 2) return BAxis(c2);
      return AAxis(c2);
    }
    if (r == 3) {
      if (F21() == kCode3 || F21() == kCode6) return Diagonal();
      return BAxis(c2);
    }
    if (F21() < kCode3) {
      if (F31() == kCode3) return Diagonal();
      return CAxis(c2);
    }
    if (F21() == kCode4) return Diagonal();
    w_.AddRow(Row(3, 3, 2, 4, 4, 4));
  }

  void ThreeFold(int r, int c2) {
    const bool emptyRhombohedral = w_.latticeCode == kCodeR && w_.wordCount == 0;
    if ((r == 2 || (w_.rhombohedralAxes && w_.wordCount == 0)) && !emptyRhombohedral) {
      ThreeFoldAboutC(c2 == kCode1 ? 8200 : c2 == kCode2 ? 8204 : word::kThreeFoldC);
      if (c2 == kBarMark) w_.AddRow(Row(2, 2, 2, 4, 4, 4));
      return;
    }
    if (r != 3 && !emptyRhombohedral) return w_.Fail();
    w_.AppendWord(word::kThreeFold111);
    if (c2 == kBarMark) w_.AppendWord(word::kInversion);
    if (w_.rowCount >= 1) {
      const GeneratorRow last = w_.rows[w_.rowCount];
      w_.AddRow(Row(last.r3, last.r1, last.r2, last.t3, last.t1, last.t2));
      w_.AddRow(Row(last.r2, last.r3, last.r1, last.t2, last.t3, last.t1));
    }
  }

  // The word of a three-fold about c, with the two-fold of a 31 1 2, 32 1 2,
  // 61 2 2, 62 2 2, 64 2 2 or 65 2 2 symbol packed behind it. The two-fold
  // goes by the screw of the three-fold: 1/3 (31, 61, 64) or 2/3 (32, 62, 65).
  void ThreeFoldAboutC(GeneratorWord threeFold) {
    w_.AppendWord(threeFold);
    if (F41() != kCode2 || threeFold == word::kThreeFoldC) return;
    const bool trigonal = F21() == kCode3;
    if (threeFold == 8200) {
      w_.AppendWord(trigonal ? 4403 : 2321);
    } else {
      w_.AppendWord(trigonal ? 2355 : 4369);
    }
    w_.F(3, 1) = kCode1;
    w_.F(4, 1) = kCode1;
  }

  void FourFold(int c2) {
    GeneratorRow row = Row(3, 1, 0, 4, 4, 0);
    if (DiagonalOfCentredCell() == DiagonalTranslation::kScrew) row.t1 = 1;
    if (c2 == kCode1) row.t3 = 2;
    if (c2 == kCode2) row.t3 = 1;
    if (c2 == kCode3) row.t3 = 3;
    if (c2 == kBarMark) row.r3 = 2;
    const int added = w_.AddRow(row);
    if (added == 0) return;
    if (c2 == kBarMark && F31() == kCode3 && F41() == kCodeD) {
      if (w_.latticeCode != kCodeI) return w_.Fail();
      for (GeneratorWord g : {word::kThreeFold111, 356, 834, 1177}) w_.AppendWord(g);
      w_.ended = true;
      return;
    }
    if (F31() == kCode3) return AAxis(c2);
    if (w_.NF < 3 && w_.latticeCode == kCodeI && w_.At(2, 2) + w_.At(2, 3) == kCode1) {
      w_.F(2, 2) = 0;
      w_.rows[added].t2 = 1;
      return CAxis(0);
    }
    CAxis(c2);
  }

  void SixFold(int r, int c2) {
    GeneratorWord threeFold = word::kThreeFoldC;
    if (c2 == kCode1 || c2 == kCode4) threeFold = 8200;
    if (c2 == kCode2 || c2 == kCode5) threeFold = 8204;
    ThreeFoldAboutC(threeFold);
    if (c2 == kBarMark) return CMirror(r, kCodeM);
    CAxis(c2);
  }

  void DiamondGlide(int r) {
    if (r == 2) {
      w_.AddRow(w_.NF == 2 ? Row(0, 2, 0, 6, 6, 6) : Row(2, 0, 0, 6, 6, 6));
    } else if (r == 3) {
      w_.AddRow(Row(0, 2, 0, 6, 6, 6));
    } else if (F21() == kCode4 || F31() == kCode3) {
      GeneratorRow row = Row(1, 1, 0, 6, 6, 6);
      if (F31() == kCode2) {
        row.t1 = 0;
        row.t2 = 1;
      }
      w_.AddRow(row);
    } else {
      w_.AddRow(Row(0, 0, 2, 6, 6, 6));
    }
  }

  void Mirror(int r, int letter) {
    if (r == 2) {
      if (!IsMirrorLetter(letter)) return w_.Fail();
      if (F31() == kCode3 || F21() == kCode4 || F21() == kCode6) return CMirror(r, letter);
      if (w_.NF == 2) return BMirror(letter);
      return AMirror(letter);
    }
    if (r == 3) {
      if (F21() == kCode3 || F21() == kCode6) {
        if (w_.laue != kLaue3mR) {
          w_.AddRow(Row(3, 3, 0, 4, 4, letter == kCodeC ? 1 : 0));
          return;
        }
        return DiagMirror(letter);
      }
      if (F21() == kCode4) return AMirror(letter);
      return BMirror(letter);
    }
    if (F31() == kCode3 || F21() == kCode4 || F21() == kCode3 || F21() == kCode6) {
      return DiagMirror(letter);
    }
    CMirror(r, letter);
  }

  void AAxis(int c2) { w_.AddRow(Row(0, 2, 2, (c2 == kCode1 || c2 == kCode3) ? 1 : 0, 4, 4)); }

  void BAxis(int c2) {
    GeneratorRow row = Row(2, 0, 2, 4, c2 == kCode1 ? 1 : 0, 4);
    if (DiagonalOfCentredCell() == DiagonalTranslation::kGlide) row.t1 = 1;
    w_.AddRow(row);
    if (F21() == kCode4) w_.AddRow(Transposed(row));
  }

  void CAxis(int c2) {
    const bool screw = std::abs(c2 - kCode2) == 1 || c2 == kCode5;
    w_.AddRow(Row(2, 2, 0, 4, 4, screw ? 1 : 0));
  }

  void Diagonal() {
    const bool rhombohedral = F31() == kCodeR || F41() == kCodeR;
    if (rhombohedral && F21() != kCode4) {
      w_.AddRow(Row(3, 3, 2, 4, 4, 4));
    } else {
      w_.AddRow(Row(1, 1, 2, 0, 0, 4));
    }
  }

  void AMirror(int letter) {
    GeneratorRow row = Row(2, 0, 0, 4, IsGlideB(letter) ? 1 : 0, IsGlideC(letter) ? 1 : 0);
    if (DiagonalOfCentredCell() == DiagonalTranslation::kGlide) row.t1 = 1;
    w_.AddRow(row);
    if (F21() == kCode4) w_.AddRow(Transposed(row));
  }

  void BMirror(int letter) {
    w_.AddRow(Row(0, 2, 0, IsGlideA(letter) ? 1 : 0, 4, IsGlideC(letter) ? 1 : 0));
  }

  void CMirror(int r, int letter) {
    const int added =
        w_.AddRow(Row(0, 0, 2, IsGlideA(letter) ? 1 : 0, IsGlideB(letter) ? 1 : 0, 4));
    if (added == 0 || r != 2) return;
    if (F21() == kCode4 && letter == kCodeN && added > 2) w_.rows[added - 2].t1 = 1;
    if (F21() == kCode6) {
      int& t3 = w_.rows[added].t3;
      if (F31() == kCodeC) t3 = 1;
      if (F41() == kCodeC) t3 = (t3 + 1) % 2;
    }
  }

  void DiagMirror(int letter) {
    GeneratorRow row = Row(1, 1, 0, 4, 4, IsGlideC(letter) ? 1 : 0);
    if (letter == kCodeN || (letter == kCodeC && w_.laue == kLaue3mR)) {
      row.t1 = 5;
      row.t2 = 5;
    }
    w_.AddRow(row);
  }
};

}  // namespace

void BuildGeneratorRows(SymbolWork& work) {
  RowBuilder(work).Run();
}

}  // namespace corvinet
