// Reading the form of a space-group symbol: aliases, the program's notation, and the bad column.
#include "crystal/symbol_forms.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvinet {
namespace {

TEST(SymbolForms, TodaysCubicNotationIsReadAsTheProgramsSymbol) {
  const SymbolForm form = ReadSymbolForm("F m -3 m");
  EXPECT_TRUE(form.renamed);
  EXPECT_EQ(form.symbol, "F m 3 m");
  EXPECT_EQ(form.badColumn, 0);
  EXPECT_EQ(ReadSymbolForm("I a -3 d").symbol, "I a 3 d");
  EXPECT_EQ(ReadSymbolForm("P m -3 m").symbol, "P m 3 m");
}

TEST(SymbolForms, SymbolsWithoutBlanksAreTheirGroups) {
  EXPECT_EQ(ReadSymbolForm("Fm-3m").symbol, "F m 3 m");
  EXPECT_EQ(ReadSymbolForm("fm-3m").symbol, "F m 3 m");
  EXPECT_EQ(ReadSymbolForm("P21/c").symbol, "P 21/c");
  EXPECT_EQ(ReadSymbolForm("Pnma").symbol, "P n m a");
}

TEST(SymbolForms, SettingSuffixesIgnoreCaseAndBlanks) {
  EXPECT_EQ(ReadSymbolForm("R -3 m:H").symbol, "R -3 m");
  EXPECT_EQ(ReadSymbolForm("R -3 m :r").symbol, "R -3 m R");
  EXPECT_EQ(ReadSymbolForm("F d d d:2").symbol, "F d d d");
}

TEST(SymbolForms, TheProgramsNotationStaysAsTyped) {
  for (const std::string typed : {"F m 3 m", "p 21/c", "  P 1 21/c 1", "R -3 c R", "P 63/m m c"}) {
    const SymbolForm form = ReadSymbolForm(typed);
    EXPECT_FALSE(form.renamed) << typed;
    EXPECT_EQ(form.badColumn, 0) << typed;
    EXPECT_EQ(form.symbol, typed);
  }
}

TEST(SymbolForms, AnUnknownCharacterStopsAtItsColumn) {
  EXPECT_EQ(ReadSymbolForm("R -3 q").badColumn, 6);
  EXPECT_EQ(ReadSymbolForm("P 21/q").badColumn, 6);
  EXPECT_EQ(ReadSymbolForm("Fm-3q").badColumn, 5);
}

TEST(SymbolForms, AWellFormedButUnknownSettingStopsAtItsSuffix) {
  // Origin choice 1 of P n n n is not a group the program builds.
  EXPECT_EQ(ReadSymbolForm("P n n n:1").badColumn, 9);
  EXPECT_EQ(ReadSymbolForm("P 4/m m m m").badColumn, 11);
  EXPECT_EQ(ReadSymbolForm("P 5").badColumn, 3);
  EXPECT_EQ(ReadSymbolForm("").badColumn, 1);
}

TEST(SymbolForms, TheStopShowsTheSymbolAndACaretUnderTheBadColumn) {
  const std::string typed = "R -3 q";
  const SymmetryMessages messages = SymbolFormMessages(typed, ReadSymbolForm(typed));
  EXPECT_FALSE(messages.ok());
  EXPECT_EQ(messages.console, (std::vector<std::string>{
                                  " => The space group symbol fits no known form from column 6:",
                                  "\"R -3 q\"", " -----^"}));
  EXPECT_TRUE(SymbolFormMessages("F m 3 m", ReadSymbolForm("F m 3 m")).ok());
}

TEST(SymbolForms, TheReportLineNamesBothForms) {
  EXPECT_EQ(RenamedSymbolLine("F m -3 m", ReadSymbolForm("F m -3 m")),
            " => Space group symbol read as: F m 3 m (written F m -3 m)");
  EXPECT_EQ(RenamedSymbolLine("Fm-3m", ReadSymbolForm("Fm-3m")),
            " => Space group symbol read as: F m 3 m (written Fm-3m)");
}

TEST(SymbolForms, NormalisedTextKeepsTheColumnsOfTheTypedCharacters) {
  std::vector<int> columns;
  EXPECT_EQ(NormaliseSymbolText("  p  n n n : 2", &columns), "P n n n:2");
  EXPECT_EQ(columns, (std::vector<int>{3, 5, 6, 7, 8, 9, 10, 12, 14}));
}

}  // namespace
}  // namespace corvinet
