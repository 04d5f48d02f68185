// Packs generator rows into words, drops redundant words and fixes the translations.
#include <array>
#include <cstdlib>

#include "crystal/symbol_work.h"

namespace corvinet {
namespace {

// F2[1] after the first tetragonal fix.
constexpr int kTetragonalFixed = 30;

// Quarters of a translation code (0, 1/2, 1/4, 3/4), and back: the mapping is
// its own inverse.
int Quarters(int code) {
  static constexpr int kQuarters[4] = {0, 2, 1, 3};
  return kQuarters[code & 3];
}
int CodeOfQuarters(int quarters) {
  return Quarters(quarters);
}
// The code that cancels a number of quarters.
int CancellingCode(int quarters) {
  static constexpr int kCancel[4] = {0, 3, 1, 2};
  return kCancel[quarters & 3];
}

constexpr int kShift[4] = {0, 2, 6, 9};  // bit of t1, t2, t3 by axis

int WordCode(GeneratorWord w, int axis) {
  return (w >> kShift[axis]) & 3;
}

// Residual quarters per axis (index 1..3), modulo 4.
struct Residual {
  std::array<int, 4> q{};
  int& operator[](int axis) { return q[static_cast<std::size_t>(axis)]; }
  int operator[](int axis) const { return q[static_cast<std::size_t>(axis)]; }
  bool Zero() const { return q[1] == 0 && q[2] == 0 && q[3] == 0; }
  void Reduce() {
    for (int a = 1; a <= 3; ++a) q[static_cast<std::size_t>(a)] %= 4;
  }
};

class Eliminator {
 public:
  explicit Eliminator(SymbolWork& work) : w_(work) {}

  void Run() {
    Pack();
    if (w_.rowCount == 0) return;
    while (!w_.failed && Pass()) {
    }
  }

 private:
  SymbolWork& w_;
  bool centreReported_ = false;

  int F(int r, int p) const { return w_.At(r, p); }
  GeneratorWord& Word(int i) { return w_.words[i]; }
  int RowT(int i, int axis) { return w_.RowOfWord(i).T(axis); }
  int RowQ(int i, int axis) { return Quarters(RowT(i, axis) % 4); }
  int WordQ(int i, int axis) { return Quarters(WordCode(Word(i), axis)); }

  void Pack() {
    w_.fs = w_.wordCount + 1;
    for (int k = 1; k <= w_.rowCount; ++k) {
      const GeneratorRow& r = w_.rows[k];
      const GeneratorWord packed =
          r.r1 + 16 * r.r2 + 128 * r.r3 + 4 * (r.t1 % 4) + 64 * (r.t2 % 4) + 512 * (r.t3 % 4);
      if (!w_.AppendWord(packed)) return;
    }
  }

  // One pass over i < j < k; true when a word was removed and the pass must
  // start again.
  bool Pass() {
    const int fs = w_.fs;
    for (int i = fs; i <= w_.wordCount; ++i) {
      ReportCentre(i);
      for (int j = i + 1; j <= w_.wordCount; ++j) {
        if (word::X(Word(i), Word(j)) == word::kInversion) PairWithInversion(i, j);
        for (int k = j + 1; k <= w_.wordCount; ++k) {
          const GeneratorWord x = word::X(word::X(Word(j), Word(i)), Word(k));
          if (x == word::kInversion) TripleWithInversion(i, j, k);
          if (x == 0) return TripleWithIdentity(i, j, k);
        }
      }
    }
    return false;
  }

  void ReportCentre(int i) {
    const GeneratorWord w = Word(i);
    if ((w & word::kRotationMask) != word::kInversion || (w & word::kTranslationMask) == 0) return;
    if (centreReported_) return;
    centreReported_ = true;
    w_.console.push_back(" A center is present, not at 0,0,0");
  }

  void Remove(int index) {
    for (int m = index; m < w_.wordCount; ++m) {
      Word(m) = Word(m + 1);
      w_.RowOfWord(m) = w_.RowOfWord(m + 1);
    }
    --w_.wordCount;
    --w_.rowCount;
  }

  void ZeroRowTranslations(int i) {
    GeneratorRow& row = w_.RowOfWord(i);
    row.t1 = row.t2 = row.t3 = 0;
  }

  // Adds the cancelling code of each residual axis to those of the words
  // whose row column is still free and zero.
  void CancelInFreeColumns(const Residual& res, std::initializer_list<int> words,
                           std::initializer_list<int> axes = {1, 2, 3}) {
    for (int a : axes) {
      if (res[a] == 0) continue;
      for (int i : words) {
        if (RowT(i, a) == kFreeTranslation) Word(i) += CancellingCode(res[a]) << kShift[a];
      }
    }
  }

  // Two words whose rotations multiply to the inversion: their free
  // translations are set so that the inversion lies at the origin.
  void PairWithInversion(int i, int j) {
    Residual res;
    for (int a = 1; a <= 3; ++a) res[a] = RowQ(i, a) + RowQ(j, a);
    res.Reduce();
    if (res[1] + res[2] + res[3] == 0) return;
    if (F(2, 1) == kCode4 && i == w_.fs + 1) FirstTetragonalFix(res);
    CancelInFreeColumns(res, {i, j});
    ZeroRowTranslations(i);
    ZeroRowTranslations(j);
  }

  void FirstTetragonalFix(const Residual& res) {
    w_.F(2, 1) = kTetragonalFixed;
    const int t3Quarters = Quarters(w_.rows[1].t3 % 4);
    GeneratorWord& first = Word(w_.fs);
    first &= ~((3 << kShift[1]) | (3 << kShift[2]));
    first |= CodeOfQuarters((t3Quarters + res[1]) % 4) << kShift[1];
    first |= CodeOfQuarters(t3Quarters) << kShift[2];
  }

  void TripleWithInversion(int i, int j, int k) {
    if (F(2, 1) == kCodeD) {
      Word(i) &= ~(3 << kShift[1]);
      Word(j) &= ~(3 << kShift[2]);
      Word(k) &= ~(3 << kShift[3]);
      return;
    }
    Residual res;
    for (int a = 1; a <= 3; ++a) res[a] = WordQ(i, a) + WordQ(j, a) + RowQ(k, a);
    res.Reduce();
    if (res.Zero()) return;
    if (ShiftByCentring(res)) {
      const Residual centring = LatticeQuarters(Word(1));
      for (int a = 1; a <= 3; ++a) res[a] += centring[a];
      res.Reduce();
    }
    CancelInFreeColumns(res, {i, j, k});
    ZeroRowTranslations(i);
    ZeroRowTranslations(j);
    ZeroRowTranslations(k);
  }

  // Whether the inversion is better taken at a centring image: in a centred
  // orthorhombic group, when a mirror M would otherwise be moved off the
  // origin and the centring translation brings it back.
  bool ShiftByCentring(const Residual& res) {
    const int f21 = F(2, 1);
    if (w_.fs == 1 || F(3, 1) == kCode3) return false;
    if (f21 == kCode4 || f21 == kCode3 || f21 == kCode6) return false;
    const Residual centring = LatticeQuarters(Word(1));
    if (f21 + F(3, 1) + F(4, 1) >= 18) {
      int along = 0;
      for (int a = 1; a <= 3; ++a) along += centring[a] != 0 ? res[a] : 0;
      return along != 0;
    }
    for (int r = 2; r <= 4; ++r) {
      const int a = r - 1;
      if (F(r, 1) == kCodeM && res[a] != 0 && (res[a] + centring[a]) % 4 == 0) return true;
    }
    return false;
  }

  // Quarters of the translation of the first (lattice) word per axis.
  static Residual LatticeQuarters(GeneratorWord lattice) {
    Residual q;
    q[1] = (lattice / 2) % 4;
    q[2] = (lattice / 32) % 4;
    q[3] = (lattice / 256) % 4;
    return q;
  }

  // Three words whose rotations multiply to the identity: one of them is
  // redundant; before it goes, its translation is carried by the others.
  bool TripleWithIdentity(int i, int j, int k) {
    Residual res;
    for (int a = 1; a <= 3; ++a) res[a] = WordQ(i, a) + WordQ(j, a) + RowQ(k, a);
    res.Reduce();
    if (res.Zero()) return RemoveAndRestart(k);
    const int f21 = F(2, 1);
    if (f21 == kTetragonalFixed) return RuleT(j, k, res);
    if (f21 == kCode4) return FourFoldTriple(i, j, k, res);
    if (f21 == kCode6) return RemoveAndRestart(k);
    if (f21 == kCode2) return TwoFoldFirstTriple(i, j, k, res);
    if (F(3, 1) == kCode2) return TwoFoldSecondTriple(i, j, k);
    if (F(4, 1) == kCode2) return TwoFoldThirdTriple(i, j, k);
    w_.Fail();
    return false;
  }

  bool RemoveAndRestart(int index) {
    Remove(index);
    return true;
  }

  Residual WordResidual(int a, int b) {
    Residual res;
    for (int axis = 1; axis <= 3; ++axis) res[axis] = WordQ(a, axis) + WordQ(b, axis);
    res.Reduce();
    return res;
  }

  bool RuleT(int j, int k, const Residual& res) {
    if (res[1] == 0 || F(2, 4) == kCodeA || res[1] == WordQ(j, 1)) return RemoveAndRestart(k);
    Word(j) |= CancellingCode(res[1]) << kShift[1];
    if (F(4, 1) == kCode2 && F(4, 2) == 0) return RuleR(j, k);
    return RemoveAndRestart(k);
  }

  bool RuleR(int j, int k) { return RemoveAndRestart(F(3, 1) == kCode2 ? j : k); }

  bool RuleG(int i, int j, int k) {
    if (F(2, 2) != kBarMark) {
      Word(i) |= 68;
      return RuleR(j, k);
    }
    if (F(4, 1) == kCodeC) Word(j) |= 0x200;
    return RemoveAndRestart(k);
  }

  bool RuleC(int i, int k) {
    if (F(4, 1) < kCode2) return RemoveAndRestart(i);
    w_.F(2, 1) = kCode2;
    if (F(2, 2) == kCode1) {
      if (w_.latticeCode == kCodeP) Word(i) += 200;
      if (w_.latticeCode == kCodeF) Word(i) += 136;
      if (w_.latticeCode == kCodeI) Word(i) += 652;
    } else if (F(2, 2) == kCode2) {
      Word(i) += 68;
    } else if (F(2, 2) == kCode3) {
      Word(i) += 140;
    }
    return RemoveAndRestart(k);
  }

  bool RuleI(int i, int j, int k) {
    Word(i) += 64;
    if (F(2, 3) != kCodeSlash) Word(i + 1) -= 512;
    if (F(4, 1) == kCodeD && F(2, 3) == kCodeSlash) Word(i) += 588;
    return RuleR(j, k);
  }

  bool FourFoldTriple(int i, int j, int k, const Residual& res) {
    w_.F(2, 1) = kTetragonalFixed;
    const bool screw = F(2, 2) == kCode1 || F(2, 2) == kCode3;
    if (F(3, 1) == kCode3) return RuleC(i, k);
    if (F(3, 1) == kCode2 && F(3, 2) == kCode1) return RuleG(i, j, k);
    if (w_.latticeCode == kCodeI && screw) return RuleI(i, j, k);
    if (w_.latticeCode == kCodeF && screw) {
      Word(i) += 136;
      return RuleR(j, k);
    }
    if (w_.latticeCode == kCodeI && F(3, 1) == kCode2) return RemoveAndRestart(j);
    if (Word(i) % 1024 == 19) return RuleT(j, k, res);
    if (res[1] + res[2] == 0) {
      if (res[3] == RowQ(k, 3) && res[3] >= 1) Word(j) += CancellingCode(res[3]) << kShift[3];
      return RemoveAndRestart(k);
    }
    if (F(2, 3) != kCodeN && F(2, 4) != kCodeN && F(3, 1) == kCodeN) return RuleG(i, j, k);
    return RemoveAndRestart(k);
  }

  bool TwoFoldFirstTriple(int i, int j, int k, const Residual& res) {
    const Residual jk = WordResidual(j, k);
    if (F(3, 1) != kCode2 && F(3, 1) != kCode3 && F(4, 1) != kCode2) {
      const bool mirrorScrew = F(2, 2) == kCode1 && (F(3, 1) == kCodeM || F(4, 1) == kCodeM);
      if (!mirrorScrew) {
        CancelInFreeColumns(jk, {j, k}, {2});
        if (jk[3] > 0) CancelInFreeColumns(jk, {j, k}, {3});
      }
      return RemoveAndRestart(i);
    }
    // Two-folds along the three axes: the translations go where the standard
    // settings P 2 2 21, P 21 21 2, P 21 21 21 put them, in every axis order.
    // With one screw, along axis n, the two-fold along n+1 passes through the
    // origin and the one along n+2 is shifted along n; with two screws the
    // plain two-fold passes through the origin.
    const bool orthorhombic = F(3, 1) == kCode2;
    const bool screwA = std::abs(F(2, 2) - kCode2) == 1;
    const bool screwB = F(3, 2) == kCode1;
    if (jk[2] > 0 && (screwA || (orthorhombic && jk[3] == 0))) {
      Word(i) += CancellingCode(jk[2]) << kShift[2];
    }
    const int carrier = orthorhombic && screwA && !screwB ? i : j;
    if (jk[3] > 0 && RowT(carrier, 3) == kFreeTranslation) {
      Word(carrier) += CancellingCode(jk[3]) << kShift[3];
    }
    if (res[1] > 0 && F(4, 1) != 0 && F(3, 1) != kCode3 && F(4, 2) != kCode1 &&
        (screwB || !orthorhombic)) {
      Word(j) += CancellingCode(res[1]) << kShift[1];
    }
    return RemoveAndRestart(k);
  }

  bool TwoFoldSecondTriple(int i, int j, int k) {
    const Residual ik = WordResidual(i, k);
    const bool mirrorScrew = F(3, 2) == kCode1 && (F(2, 1) == kCodeM || F(4, 1) == kCodeM);
    if (!mirrorScrew) CancelInFreeColumns(ik, {i, k}, {1, 3});
    return RemoveAndRestart(j);
  }

  bool TwoFoldThirdTriple(int i, int j, int k) {
    const Residual ij = WordResidual(i, j);
    const bool mirrorScrew = F(4, 2) == kCode1 && (F(2, 1) == kCodeM || F(3, 1) == kCodeM);
    if (!mirrorScrew) CancelInFreeColumns(ij, {i, j}, {1, 2});
    return RemoveAndRestart(k);
  }
};

}  // namespace

void PackAndEliminate(SymbolWork& work) {
  Eliminator(work).Run();
}

}  // namespace corvinet
