// Reading of a Hermann-Mauguin symbol: fields, lattice, Laue class, closing of the word list.
#include "crystal/space_group_symbol.h"

#include <array>
#include <string_view>

#include "crystal/symbol_work.h"

namespace corvinet {
namespace {

// Characters with a code, in code order from 1 (blank).
constexpr std::string_view kCodedCharacters = " CBAPFIRMND123456-/H.";

constexpr std::array<std::string_view, 14> kLaueNames = {
    " -1  ", " 2/m ", " mmm ", " 4/m ", "4/mmm", " -3 R", "-3m R",
    " -3  ", " -3m1", " -31m", " 6/m ", "6/mmm", " m3  ", " m3m "};

constexpr std::array<std::string_view, 7> kCentringTexts = {
    "  P: { 000 }                                       ",
    "  A: { 000;  0  1/2 1/2 }+                         ",
    "  B: { 000; 1/2  0  1/2 }+                         ",
    "  C: { 000; 1/2 1/2  0  }+                         ",
    "  I: { 000; 1/2 1/2 1/2 }+                         ",
    "  R: { 000; 2/3 1/3 1/3; 1/3 2/3 2/3   }+          ",
    "  F: { 000;  0  1/2 1/2; 1/2  0  1/2; 1/2 1/2  0 }+"};

// Centring of each lattice index: NLAT and the vectors besides 0,0,0.
struct Centring {
  char letter;
  int count;
  float vectors[3][3];
};
constexpr float kH = 0.5f;
constexpr float kThird = 1.0f / 3.0f;
constexpr float kTwoThirds = 2.0f / 3.0f;
constexpr std::array<Centring, 7> kCentrings = {{
    {'P', 1, {}},
    {'A', 2, {{0, kH, kH}}},
    {'B', 2, {{kH, 0, kH}}},
    {'C', 2, {{kH, kH, 0}}},
    {'I', 2, {{kH, kH, kH}}},
    {'R', 3, {{kTwoThirds, kThird, kThird}, {kThird, kTwoThirds, kTwoThirds}}},
    {'F', 4, {{kH, kH, 0}, {kH, 0, kH}, {0, kH, kH}}},
}};

void MarkFailure(SymbolWork& work, const std::string& folded) {
  work.console.push_back("   Did you punch the symbol correctly ?");
  work.console.push_back("   Errors of some sort were detected !!");
  work.console.push_back("The symbol was read as " + folded);
}

// The lattice words: C, B, A, I one word, F two, R on hexagonal axes 8192.
void StoreLatticeWords(SymbolWork& work) {
  switch (work.latticeCode) {
    case kCodeC:
      work.AppendWord(word::kCentringC);
      break;
    case kCodeB:
      work.AppendWord(word::kCentringB);
      break;
    case kCodeA:
      work.AppendWord(word::kCentringA);
      break;
    case kCodeI:
      work.AppendWord(word::kCentringI);
      break;
    case kCodeF:
      work.AppendWord(word::kCentringA);
      work.AppendWord(word::kCentringB);
      break;
    case kCodeR:
      if (!work.rhombohedralAxes) work.AppendWord(word::kCentringR);
      break;
    default:
      break;
  }
}

// Closing of the list: when the rotations of all words multiply to the identity, the word
// before the last one is redundant and the last takes its place.
void CloseWordList(SymbolWork& work) {
  if (work.ended || work.rowCount == 0 || work.wordCount < 2) return;
  GeneratorWord product = 0;
  for (int i = 1; i <= work.wordCount; ++i) product = word::X(product, work.words[i]);
  if (product != 0) return;
  work.words[work.wordCount - 1] = work.words[work.wordCount];
  --work.wordCount;
}

// Laue class of a symbol with three fields or more (NR above 4).
void ReadClassOfThreeFields(const SymbolFields& s, LatticeAndLaue& out) {
  const int f31 = s.F(3, 1);
  const int f41 = s.F(4, 1);
  if (f31 == kCode3) {
    out.LAUE = kLaueM3m;
    return;
  }
  const bool bar = s.F(2, 1) == kCodeMinus;
  const int c = bar ? s.F(2, 2) : s.F(2, 1);
  if (c == kCode6) {
    out.LAUE = kLaue6mmm;
  } else if (c == kCode4) {
    out.LAUE = kLaue4mmm;
  } else if (c == kCode3) {
    if (f31 != kCode1) {
      out.ok = f41 == kCode1;
      out.LAUE = kLaue3m1;
    } else {
      out.LAUE = f41 != kCode1 ? kLaue31m : kLaue3;
    }
  } else if (bar) {
    out.ok = false;
  } else if (c == kCode1) {
    out.LAUE = kLaue2m;
    if (f31 != kCode1) {
      out.ok = f41 == kCode1;
      out.UniqueAxis = 2;
    } else {
      out.ok = f41 != kCode1;
      out.UniqueAxis = 3;
    }
  } else if (f31 != kCode1) {
    out.ok = f41 != kCode1;
    out.LAUE = kLaueMmm;
  } else {
    out.ok = f41 == kCode1;
    out.LAUE = kLaue2m;
    out.UniqueAxis = 1;
  }
}

}  // namespace

std::string FoldSymbol(std::string_view symbol) {
  std::string folded(kSymbolLength, ' ');
  for (std::size_t i = 0; i < symbol.size() && i < folded.size(); ++i) {
    const char c = symbol[i];
    const bool foldable = std::string_view("cbapfirmnd").find(c) != std::string_view::npos;
    folded[i] = foldable ? static_cast<char>(c - 'a' + 'A') : c;
  }
  return folded;
}

int SymbolCharacterCode(char c) {
  const std::size_t at = kCodedCharacters.find(c);
  return at == std::string_view::npos ? 0 : static_cast<int>(at) + 1;
}

SymbolFields TokeniseSymbol(std::string_view symbol) {
  SymbolFields out;
  const std::string folded = FoldSymbol(symbol);
  int field = 1;
  int position = 1;
  bool afterBlank = false;
  auto nextField = [&] {
    ++field;
    position = 1;
    afterBlank = true;
  };
  for (char c : folded) {
    const int code = SymbolCharacterCode(c);
    if (code == 0) continue;
    if (code == kCodeBlank) {
      if ((field == 1 && position == 1) || afterBlank) continue;
      nextField();
    } else {
      out.F(field, position) = code;
      afterBlank = false;
      if (++position == 5) nextField();
    }
    if (field > 4) break;
  }
  out.NR = field;
  return out;
}

LatticeAndLaue ReadLatticeAndLaueClass(const SymbolFields& s) {
  LatticeAndLaue out;
  out.NR = s.NR;
  out.latticeCode = s.F(1, 1);
  if (out.NR < 3 || out.latticeCode > kCodeR) return out;
  out.ok = true;
  if (out.latticeCode == kCodeR) {
    out.rhombohedralAxes = s.F(3, 1) == kCodeR || s.F(4, 1) == kCodeR;
    if (out.rhombohedralAxes) {
      out.LAUE = out.NR + 2;
      out.NR -= 1;
    } else {
      if (s.F(out.NR - 1, 1) == kCodeH) out.NR -= 1;
      out.LAUE = out.NR + 5;
    }
    return out;
  }
  if (out.NR == 3) {
    const bool bar = s.F(2, 1) == kCodeMinus;
    const int c = bar ? s.F(2, 2) : s.F(2, 1);
    if (c == kCode6) {
      out.LAUE = kLaue6m;
    } else if (c == kCode3) {
      out.LAUE = kLaue3;
    } else if (c == kCode4) {
      out.LAUE = kLaue4m;
    } else if (c == kCode1) {
      out.LAUE = kLaueTriclinic;
    } else if (bar) {
      out.ok = false;
    } else {
      out.LAUE = kLaue2m;
      out.UniqueAxis = 2;
    }
  } else if (out.NR == 4) {
    out.ok = s.F(3, 1) == kCode3;
    out.LAUE = kLaueM3;
  } else {
    ReadClassOfThreeFields(s, out);
  }
  return out;
}

SymmetryMessages InterpretSymbol(std::string_view symbol, int operatorSource, SpaceGroup& group,
                                 std::string* banner) {
  const std::string folded = FoldSymbol(symbol);
  if (banner != nullptr) {
    std::string typed(symbol.substr(0, kSymbolLength));
    typed.resize(kSymbolLength, ' ');
    *banner = operatorSource != 0 ? " => The SPACE GROUP symbol for HKL generation is: " + folded
                                  : " => The SPACE GROUP is: " + typed;
  }
  SymbolWork work;
  work.fields = TokeniseSymbol(symbol);
  const LatticeAndLaue lattice = ReadLatticeAndLaueClass(work.fields);
  work.NR = lattice.NR;
  work.NF = lattice.NR - 1;
  work.latticeCode = lattice.latticeCode;
  work.laue = lattice.LAUE;
  work.uniqueAxis = lattice.UniqueAxis;
  work.rhombohedralAxes = lattice.rhombohedralAxes;
  if (!lattice.ok) work.Fail();
  if (!work.failed) {
    StoreLatticeWords(work);
    work.fs = work.wordCount + 1;
    BuildGeneratorRows(work);
  }
  if (!work.failed && !work.ended) PackAndEliminate(work);
  if (!work.failed) CloseWordList(work);
  if (!work.failed && work.wordCount > SpaceGroupLimits::kGeneratorWords) work.Fail();

  SymmetryMessages messages;
  if (work.failed) MarkFailure(work, folded);
  messages.console = std::move(work.console);
  group.generatorWords.Fill(0);
  group.generatorCount = 0;
  group.LAUE = work.laue;
  group.UniqueAxis = work.uniqueAxis;
  if (work.failed) {
    group.UniqueAxis = 4;
    messages.stop = " Error in S.G. symbol";
    return messages;
  }
  for (int i = 1; i <= work.wordCount; ++i) group.generatorWords[i] = work.words[i];
  group.generatorCount = work.wordCount;
  return messages;
}

char LatticeFromSymbol(std::string_view symbol, SpaceGroup& group, char latticeLetter) {
  char letter = latticeLetter;
  const SymbolFields fields = TokeniseSymbol(symbol);
  if (letter == 0 && fields.F(1, 1) > 0) {
    letter = kCodedCharacters[static_cast<std::size_t>(fields.F(1, 1) - 1)];
  }
  if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
  int index = 1;
  for (int i = 0; i < static_cast<int>(kCentrings.size()); ++i) {
    if (kCentrings[static_cast<std::size_t>(i)].letter == letter) index = i + 1;
  }
  // On rhombohedral axes the R lattice is primitive.
  if (letter == 'R' && (fields.F(3, 1) == kCodeR || fields.F(4, 1) == kCodeR)) index = 1;
  const Centring& centring = kCentrings[static_cast<std::size_t>(index - 1)];
  group.latticeIndex = index;
  group.latticeLetter = letter;
  group.NLAT = centring.count;
  group.latticeTranslation.Fill(0.0f);
  for (int v = 2; v <= centring.count; ++v) {
    for (int axis = 1; axis <= 3; ++axis) {
      group.latticeTranslation(axis, v) = centring.vectors[v - 2][axis - 1];
    }
  }
  return letter;
}

std::string_view PrintedLaueClass(int laue) {
  if (laue < 1 || laue > static_cast<int>(kLaueNames.size())) return "     ";
  return kLaueNames[static_cast<std::size_t>(laue - 1)];
}

std::string_view CentringText(int latticeIndex) {
  if (latticeIndex < 1 || latticeIndex > static_cast<int>(kCentringTexts.size())) return "";
  return kCentringTexts[static_cast<std::size_t>(latticeIndex - 1)];
}

}  // namespace corvinet
