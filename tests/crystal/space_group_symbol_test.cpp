// Reading of space-group symbols: fields, Laue class, unique axis, generator words and failures.
#include "crystal/space_group_symbol.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "records/space_group.h"

namespace corvinet {
namespace {

std::vector<GeneratorWord> Words(const SpaceGroup& group) {
  std::vector<GeneratorWord> words;
  for (int i = 1; i <= group.generatorCount; ++i) words.push_back(group.generatorWords[i]);
  return words;
}

SpaceGroup Interpreted(const std::string& symbol) {
  SpaceGroup group;
  const SymmetryMessages messages = InterpretSymbol(symbol, 0, group);
  EXPECT_TRUE(messages.ok()) << symbol << ": " << messages.stop;
  return group;
}

void ExpectSymbolError(const std::string& symbol) {
  SpaceGroup group;
  const SymmetryMessages messages = InterpretSymbol(symbol, 0, group);
  EXPECT_EQ(messages.stop, " Error in S.G. symbol") << symbol;
  EXPECT_EQ(group.UniqueAxis, 4) << symbol;
}

TEST(SpaceGroupSymbol, CharacterCodesFollowTheirTable) {
  EXPECT_EQ(SymbolCharacterCode(' '), kCodeBlank);
  EXPECT_EQ(SymbolCharacterCode('C'), 2);
  EXPECT_EQ(SymbolCharacterCode('R'), 8);
  EXPECT_EQ(SymbolCharacterCode('D'), 11);
  EXPECT_EQ(SymbolCharacterCode('1'), 12);
  EXPECT_EQ(SymbolCharacterCode('6'), 17);
  EXPECT_EQ(SymbolCharacterCode('-'), 18);
  EXPECT_EQ(SymbolCharacterCode('/'), 19);
  EXPECT_EQ(SymbolCharacterCode('H'), 20);
  EXPECT_EQ(SymbolCharacterCode('.'), 21);
  EXPECT_EQ(SymbolCharacterCode('E'), 0);
  EXPECT_EQ(SymbolCharacterCode('7'), 0);
}

TEST(SpaceGroupSymbol, FoldsLettersExceptH) {
  EXPECT_EQ(FoldSymbol("p 21/c"), "P 21/C              ");
  EXPECT_EQ(FoldSymbol("r 3 h"), "R 3 h               ");
}

TEST(SpaceGroupSymbol, PaddedSymbolHasOneFieldCountMoreThanItsFields) {
  EXPECT_EQ(TokeniseSymbol("P 1").NR, 3);
  EXPECT_EQ(TokeniseSymbol("P 2 2 2").NR, 5);
  const SymbolFields fields = TokeniseSymbol("  P   21/c");
  EXPECT_EQ(fields.F(1, 1), kCodeP);
  EXPECT_EQ(fields.F(2, 1), kCode2);
  EXPECT_EQ(fields.F(2, 2), kCode1);
  EXPECT_EQ(fields.F(2, 3), kCodeSlash);
  EXPECT_EQ(fields.F(2, 4), kCodeC);
}

TEST(SpaceGroupSymbol, FifthCharacterOfAFieldOpensTheNextField) {
  const SymbolFields fields = TokeniseSymbol("P 4122");
  EXPECT_EQ(fields.F(2, 1), kCode4);
  EXPECT_EQ(fields.F(2, 2), kCode1);
  EXPECT_EQ(fields.F(2, 3), kCode2);
  EXPECT_EQ(fields.F(2, 4), kCode2);
  EXPECT_EQ(fields.F(3, 1), 0);
  EXPECT_EQ(fields.NR, 3);
  const SymbolFields spilled = TokeniseSymbol("P 41225");
  EXPECT_EQ(spilled.F(3, 1), kCode5);
  EXPECT_EQ(spilled.NR, 4);
}

TEST(SpaceGroupSymbol, SymbolWithoutBlanksCountsOnlyItsFields) {
  // Twenty characters without a blank: nothing closes the last field.
  EXPECT_EQ(TokeniseSymbol("P21/cxxxxxxxxxxxxxxx").NR, 2);
  EXPECT_EQ(TokeniseSymbol("P21/c").NR, 3);
}

TEST(SpaceGroupSymbol, PMinusOneHasClassOneAndOneInversionWord) {
  const SpaceGroup group = Interpreted("P -1");
  EXPECT_EQ(group.LAUE, kLaueTriclinic);
  EXPECT_EQ(Words(group), std::vector<GeneratorWord>{word::kInversion});
}

TEST(SpaceGroupSymbol, POneHasClassOneAndNoWord) {
  const SpaceGroup group = Interpreted("P 1");
  EXPECT_EQ(group.LAUE, kLaueTriclinic);
  EXPECT_EQ(group.generatorCount, 0);
  EXPECT_EQ(group.generatorWords[1], 0);
}

TEST(SpaceGroupSymbol, BarOutsideTheFirstSymmetryFieldIsAnError) {
  SpaceGroup group;
  const SymmetryMessages messages = InterpretSymbol("P m -3 m", 0, group);
  EXPECT_EQ(messages.stop, " Error in S.G. symbol");
  EXPECT_EQ(group.UniqueAxis, 4);
  const std::vector<std::string> expected = {"   Did you punch the symbol correctly ?",
                                             "   Errors of some sort were detected !!",
                                             "The symbol was read as P M -3 M            "};
  EXPECT_EQ(messages.console, expected);
}

TEST(SpaceGroupSymbol, CubicSymbolWithThreeInTheSecondFieldHasClassM3m) {
  EXPECT_EQ(Interpreted("P m 3 m").LAUE, kLaueM3m);
  EXPECT_EQ(Interpreted("P m 3").LAUE, kLaueM3);
}

TEST(SpaceGroupSymbol, HexagonalAxesMarkGivesTheSameGroupAsNoMark) {
  const SpaceGroup marked = Interpreted("R 3 H");
  const SpaceGroup plain = Interpreted("R 3");
  EXPECT_EQ(marked.LAUE, kLaue3);
  EXPECT_EQ(plain.LAUE, kLaue3);
  EXPECT_EQ(Words(marked), Words(plain));
  EXPECT_EQ(Words(plain), (std::vector<GeneratorWord>{word::kCentringR, word::kThreeFoldC}));
}

TEST(SpaceGroupSymbol, RhombohedralAxesHaveNoLatticeWord) {
  const SpaceGroup group = Interpreted("R 3 R");
  EXPECT_EQ(group.LAUE, kLaue3R);
  EXPECT_EQ(Words(group), std::vector<GeneratorWord>{word::kThreeFold111});
  EXPECT_EQ(Interpreted("R -3 m R").LAUE, kLaue3mR);
}

TEST(SpaceGroupSymbol, UniqueAxisFollowsTheFieldOfTheTwoFold) {
  const SpaceGroup b = Interpreted("P 2/m");
  EXPECT_EQ(b.LAUE, kLaue2m);
  EXPECT_EQ(b.UniqueAxis, 2);
  EXPECT_EQ(Interpreted("P 1 1 2/m").UniqueAxis, 3);
  EXPECT_EQ(Interpreted("P 2/m 1 1").UniqueAxis, 1);
  EXPECT_EQ(Interpreted("P 1 2/m 1").UniqueAxis, 2);
  EXPECT_EQ(Interpreted("P m m m").UniqueAxis, 0);
}

TEST(SpaceGroupSymbol, LowerCaseSymbolIsReadAndEchoedAsTyped) {
  SpaceGroup lower;
  std::string banner;
  const SymmetryMessages messages = InterpretSymbol("p 21/c", 0, lower, &banner);
  ASSERT_TRUE(messages.ok());
  EXPECT_EQ(Words(lower), Words(Interpreted("P 21/c")));
  EXPECT_EQ(banner, " => The SPACE GROUP is: p 21/c              ");
  InterpretSymbol("p 21/c", 1, lower, &banner);
  EXPECT_EQ(banner, " => The SPACE GROUP symbol for HKL generation is: P 21/C              ");
}

TEST(SpaceGroupSymbol, IMinus43dTakesTheFixedWords) {
  const SpaceGroup group = Interpreted("I -4 3 d");
  EXPECT_EQ(group.LAUE, kLaueM3m);
  EXPECT_EQ(Words(group),
            (std::vector<GeneratorWord>{word::kCentringI, word::kThreeFold111, 356, 834, 1177}));
  ExpectSymbolError("P -4 3 d");
  ExpectSymbolError("F -4 3 d");
}

TEST(SpaceGroupSymbol, MalformedSymbolsAreErrors) {
  ExpectSymbolError("P");        // one field only
  ExpectSymbolError("2 2 2");    // no lattice letter
  ExpectSymbolError("P -m");     // a bar before a letter
  ExpectSymbolError("P -4 m");   // a bar with two fields
  ExpectSymbolError("P 1 1 1");  // no unique axis
  ExpectSymbolError("P m 1 m");  // mixed orthorhombic and monoclinic fields
  ExpectSymbolError("P 5");      // five-fold
  ExpectSymbolError("P 4 4 4");  // four-fold outside the first field
  ExpectSymbolError("P 2/p");    // P behind a slash
  ExpectSymbolError("P 3 m m");  // trigonal needs a 1 in field 3 or 4
}

TEST(SpaceGroupSymbol, GeneratorWordsOfKnownGroups) {
  // P 21/c: two-fold (-x, y+1/2, -z+1/2) and glide (x, -y+1/2, z+1/2).
  EXPECT_EQ(Words(Interpreted("P 21/c")),
            (std::vector<GeneratorWord>{2 + 64 + 256 + 512, 32 + 64 + 512}));
  // C 2: the centring word, then the two-fold along b.
  EXPECT_EQ(Words(Interpreted("C 2")), (std::vector<GeneratorWord>{word::kCentringC, 2 + 256}));
  // F m 3 m: two centring words first.
  const std::vector<GeneratorWord> fm3m = Words(Interpreted("F m 3 m"));
  ASSERT_GE(fm3m.size(), 3u);
  EXPECT_EQ(fm3m[0], word::kCentringA);
  EXPECT_EQ(fm3m[1], word::kCentringB);
  EXPECT_EQ(fm3m[2], word::kThreeFold111);
}

TEST(SpaceGroupSymbol, SixFoldScrewsFourAndFiveCarryTheirDiagonalTwoFold) {
  // The two-fold (y, x, -z + s) follows the screw of the three-fold: 1/3 for
  // 61 and 64, 2/3 for 62 and 65.
  EXPECT_EQ(Words(Interpreted("P 64 2 2"))[1], 2321);
  EXPECT_EQ(Words(Interpreted("P 65 2 2"))[1], 4369);
  EXPECT_EQ(Words(Interpreted("P 61 2 2"))[1], 2321);
  EXPECT_EQ(Words(Interpreted("P 62 2 2"))[1], 4369);
}

TEST(SpaceGroupSymbol, PrintedLaueClasssAreFiveCharacters) {
  EXPECT_EQ(PrintedLaueClass(kLaueTriclinic), " -1  ");
  EXPECT_EQ(PrintedLaueClass(kLaue4mmm), "4/mmm");
  EXPECT_EQ(PrintedLaueClass(kLaue3mR), "-3m R");
  EXPECT_EQ(PrintedLaueClass(kLaueM3m), " m3m ");
  for (int laue = 1; laue <= 14; ++laue) EXPECT_EQ(PrintedLaueClass(laue).size(), 5u);
}

TEST(SpaceGroupSymbol, LatticeLetterSetsTheCentring) {
  SpaceGroup group;
  EXPECT_EQ(LatticeFromSymbol("f d 3 m", group), 'F');
  EXPECT_EQ(group.NLAT, 4);
  EXPECT_EQ(group.latticeIndex, 7);
  EXPECT_FLOAT_EQ(group.latticeTranslation(1, 4), 0.0f);
  EXPECT_FLOAT_EQ(group.latticeTranslation(2, 4), 0.5f);
  EXPECT_FLOAT_EQ(group.latticeTranslation(3, 4), 0.5f);
  EXPECT_EQ(LatticeFromSymbol("R -3 m", group), 'R');
  EXPECT_EQ(group.NLAT, 3);
  EXPECT_EQ(group.latticeIndex, 6);
  EXPECT_FLOAT_EQ(group.latticeTranslation(1, 2), 2.0f / 3.0f);
  EXPECT_FLOAT_EQ(group.latticeTranslation(2, 2), 1.0f / 3.0f);
  EXPECT_EQ(LatticeFromSymbol("P 1", group, 'i'), 'I');
  EXPECT_EQ(group.NLAT, 2);
  EXPECT_EQ(group.latticeIndex, 5);
}

TEST(SpaceGroupSymbol, RhombohedralAxesArePrimitive) {
  SpaceGroup group;
  EXPECT_EQ(LatticeFromSymbol("R -3 m R", group), 'R');
  EXPECT_EQ(group.NLAT, 1);
  EXPECT_EQ(group.latticeIndex, 1);
}

TEST(SpaceGroupSymbol, CentringTextsAreFiftyOneCharacters) {
  for (int index = 1; index <= 7; ++index) EXPECT_EQ(CentringText(index).size(), 51u);
  EXPECT_EQ(CentringText(1).substr(0, 12), "  P: { 000 }");
  EXPECT_EQ(CentringText(7), "  F: { 000;  0  1/2 1/2; 1/2  0  1/2; 1/2 1/2  0 }+");
}

}  // namespace
}  // namespace corvinet
