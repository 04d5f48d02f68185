// Tests of the element table and of the element a species label names.
#include "model/elements.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "model/scattering_tables.h"

namespace corvinet {
namespace {

// Standard atomic weights as IUPAC gives them (abridged to the digits the table keeps).
TEST(Elements, StandardAtomicWeightsOfCommonElements) {
  const struct {
    const char* symbol;
    double weight;
  } known[] = {{"H", 1.008},   {"C", 12.011},  {"O", 15.999}, {"F", 18.998},
               {"Na", 22.990}, {"Al", 26.982}, {"S", 32.06},  {"Ca", 40.078},
               {"Fe", 55.845}, {"Pb", 207.2},  {"U", 238.03}};
  for (const auto& k : known) {
    const int z = AtomicNumberOfSymbol(k.symbol);
    ASSERT_GT(z, 0) << k.symbol;
    EXPECT_NEAR(kElementRows[z - 1].weight, k.weight, 0.006) << k.symbol;
  }
  EXPECT_EQ(AtomicNumberOfSymbol("Ca"), 20);
  EXPECT_EQ(AtomicNumberOfSymbol("PB"), 82);
  EXPECT_EQ(AtomicNumberOfSymbol("Xx"), 0);
}

TEST(Elements, LabelNamesItsElementWhateverItsCaseAndCharge) {
  EXPECT_EQ(ElementOfLabel("PB").Z, 82);
  EXPECT_EQ(ElementOfLabel("Fe+3").Z, 26);
  EXPECT_EQ(ElementOfLabel("o-2").Z, 8);
  EXPECT_EQ(ElementOfLabel("siv").Z, 14);  // valence-state row of silicon
  EXPECT_EQ(ElementOfLabel("cval").Z, 6);  // valence-state row of carbon
  EXPECT_EQ(ElementOfLabel("CO").Z, 27);   // two letters before one: cobalt, not carbon
  EXPECT_EQ(ElementOfLabel("Ca2").Z, 20);
  EXPECT_EQ(ElementOfLabel("XQ1").Z, 0);
  EXPECT_EQ(ElementOfLabel("").Z, 0);
}

TEST(Elements, DeuteriumWeighsItsOwn) {
  const LabelledElement d = ElementOfLabel("D");
  EXPECT_EQ(d.Z, 1);
  EXPECT_NEAR(d.weight, 2.014, 0.001);
}

// Every key of the X-ray table names the element of its anomalous row: row n serves Z = n + 1,
// except row 1, which serves both H and He.
TEST(Elements, EveryXrayKeyNamesTheElementOfItsAnomalousRow) {
  const ScatteringTables& t = FixedScatteringTables();
  for (int i = 1; i <= ScatteringTables::XrayRows; ++i) {
    const std::string key = t.xray[i].key;
    const int row = static_cast<int>(t.xray[i].v[9] + 0.5f);
    const int z = ElementOfLabel(key).Z;
    if (row == 1) {
      EXPECT_TRUE(z == 1 || z == 2) << key;
    } else {
      EXPECT_EQ(z, row + 1) << key;
    }
  }
}

}  // namespace
}  // namespace corvinet
