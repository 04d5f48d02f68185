// Tests of the instrumental widths of a resolution function: the three laws and the table, with
// values worked by hand.
#include "model/resolution_widths.h"

#include <gtest/gtest.h>

#include <cmath>

namespace corvinet {
namespace {

ResolutionFunction Law(ResolutionLaw law) {
  ResolutionFunction f;
  f.IRESOL = law;
  const float first[6] = {0.01f, -0.02f, 0.03f, 0.04f, 0.05f, 0.06f};
  const float second[6] = {0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f};
  for (int t = 1; t <= 6; ++t) {
    f.law(t, 1) = first[t - 1];
    f.law(t, 2) = second[t - 1];
  }
  return f;
}

// t = 0.5: G^2 = 0.01 x 0.25 - 0.02 x 0.5 + 0.03 = 0.0225; L = 0.04 x 0.5 + 0.06 = 0.08.
TEST(ResolutionWidths, TangentLawLeavesOutTheSecondLorentzianTerm) {
  const InstrumentWidths w = ResolutionWidths(Law(ResolutionLaw::kTangent), 1, 53.13f, 0.5f);
  EXPECT_NEAR(w.gaussian2, 0.0225f, 1e-7);
  EXPECT_NEAR(w.lorentzian, 0.08f, 1e-7);
}

// t = 0.5: L = 0.5 (0.5 x 0.04 + 0.05) + 0.06 = 0.095.
TEST(ResolutionWidths, TangentSquareLawAddsTheSecondLorentzianTerm) {
  const InstrumentWidths w = ResolutionWidths(Law(ResolutionLaw::kTangentSquare), 1, 53.13f, 0.5f);
  EXPECT_NEAR(w.gaussian2, 0.0225f, 1e-7);
  EXPECT_NEAR(w.lorentzian, 0.095f, 1e-7);
}

// x = 10: G^2 = 10 (10 x 0.01 - 0.02) + 0.03 = 0.83; L = 10 (10 x 0.04 + 0.05) + 0.06 = 4.56.
TEST(ResolutionWidths, PositionLawUsesThePositionItself) {
  const InstrumentWidths w = ResolutionWidths(Law(ResolutionLaw::kPosition), 1, 10.0f, 0.5f);
  EXPECT_NEAR(w.gaussian2, 0.83f, 1e-6);
  EXPECT_NEAR(w.lorentzian, 4.56f, 1e-6);
}

// The second wavelength takes its own line: t = 0.5, G^2 = 0.1 x 0.25 + 0.2 x 0.5 + 0.3 = 0.425.
TEST(ResolutionWidths, SecondWavelengthTakesItsOwnTerms) {
  const InstrumentWidths w = ResolutionWidths(Law(ResolutionLaw::kTangent), 2, 53.13f, 0.5f);
  EXPECT_NEAR(w.gaussian2, 0.425f, 1e-6);
  EXPECT_NEAR(w.lorentzian, 0.4f * 0.5f + 0.6f, 1e-6);
}

ResolutionFunction Table() {
  ResolutionFunction f;
  f.IRESOL = ResolutionLaw::kTable;
  f.nTable = 3;
  const float x[3] = {10.0f, 50.0f, 100.0f};
  const float g[3] = {0.05f, 0.07f, 0.12f};
  const float l[3] = {0.01f, 0.03f, 0.04f};
  for (int i = 1; i <= 3; ++i) {
    f.tablePosition[i] = x[i - 1];
    f.tableGaussian[i] = g[i - 1];
    f.tableLorentzian[i] = l[i - 1];
  }
  return f;
}

// At 30 degrees, halfway between the rows at 10 and 50: G = 0.06, squared 0.0036; L = 0.02.
TEST(ResolutionWidths, TableInterpolatesTheGaussianWidthBeforeSquaringIt) {
  const InstrumentWidths w = ResolutionWidths(Table(), 1, 30.0f, 0.0f);
  EXPECT_NEAR(w.gaussian2, 0.0036f, 1e-7);
  EXPECT_NEAR(w.lorentzian, 0.02f, 1e-7);
}

TEST(ResolutionWidths, PositionOnATableRowIsThatRow) {
  const InstrumentWidths w = ResolutionWidths(Table(), 1, 50.0f, 0.0f);
  EXPECT_NEAR(w.gaussian2, 0.07f * 0.07f, 1e-7);
  EXPECT_NEAR(w.lorentzian, 0.03f, 1e-7);
}

TEST(ResolutionWidths, OutsideTheTableTakesTheEndRows) {
  const InstrumentWidths low = ResolutionWidths(Table(), 1, 2.0f, 0.0f);
  EXPECT_NEAR(low.gaussian2, 0.05f * 0.05f, 1e-7);
  EXPECT_NEAR(low.lorentzian, 0.01f, 1e-7);
  const InstrumentWidths high = ResolutionWidths(Table(), 1, 140.0f, 0.0f);
  EXPECT_NEAR(high.gaussian2, 0.12f * 0.12f, 1e-7);
  EXPECT_NEAR(high.lorentzian, 0.04f, 1e-7);
}

TEST(ResolutionWidths, TableOfOneRowGivesConstantWidths) {
  ResolutionFunction f = Table();
  f.nTable = 1;
  for (float x : {5.0f, 10.0f, 80.0f}) {
    const InstrumentWidths w = ResolutionWidths(f, 1, x, 0.0f);
    EXPECT_NEAR(w.gaussian2, 0.0025f, 1e-7);
    EXPECT_NEAR(w.lorentzian, 0.01f, 1e-7);
  }
}

}  // namespace
}  // namespace corvinet
