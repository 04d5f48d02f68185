// Operators and magnetic matrices typed as text.
#include "crystal/operator_text.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace corvinet {
namespace {

std::array<int, 9> Rows(const IntMatrix3& m) {
  std::array<int, 9> rows{};
  for (int i = 0; i < 9; ++i) rows[static_cast<std::size_t>(i)] = m(i / 3 + 1, i % 3 + 1);
  return rows;
}

TEST(OperatorText, ReadsRotationAndTranslation) {
  IntMatrix3 rotation;
  Table1<float, 3> translation;
  ASSERT_TRUE(ParseOperatorText("x,y+1/2,-z", 1, rotation, translation).ok());
  EXPECT_EQ(Rows(rotation), (std::array<int, 9>{1, 0, 0, 0, 1, 0, 0, 0, -1}));
  EXPECT_FLOAT_EQ(translation[1], 0.0f);
  EXPECT_FLOAT_EQ(translation[2], 0.5f);
  EXPECT_FLOAT_EQ(translation[3], 0.0f);
}

TEST(OperatorText, ReadsHexagonalRowsAndThirds) {
  IntMatrix3 rotation;
  Table1<float, 3> translation;
  ASSERT_TRUE(ParseOperatorText(" -x+y , -X , Z+2/3", 1, rotation, translation).ok());
  EXPECT_EQ(Rows(rotation), (std::array<int, 9>{-1, 1, 0, -1, 0, 0, 0, 0, 1}));
  EXPECT_FLOAT_EQ(translation[3], 2.0f / 3.0f);
}

TEST(OperatorText, StartsAtTheGivenColumn) {
  IntMatrix3 rotation;
  Table1<float, 3> translation;
  ASSERT_TRUE(ParseOperatorText("SYMM -y,x-y,z+0.25", 6, rotation, translation).ok());
  EXPECT_EQ(Rows(rotation), (std::array<int, 9>{0, -1, 0, 1, -1, 0, 0, 0, 1}));
  EXPECT_FLOAT_EQ(translation[3], 0.25f);
}

TEST(OperatorText, TranslationBeforeTheLetterKeepsItsOwnSign) {
  IntMatrix3 rotation;
  Table1<float, 3> translation;
  ASSERT_TRUE(ParseOperatorText("-1/2+x, 1/4-y, z", 1, rotation, translation).ok());
  EXPECT_EQ(Rows(rotation), (std::array<int, 9>{1, 0, 0, 0, -1, 0, 0, 0, 1}));
  EXPECT_FLOAT_EQ(translation[1], -0.5f);
  EXPECT_FLOAT_EQ(translation[2], 0.25f);
}

TEST(OperatorText, DivisorOfSeveralDigitsIsReadWhole) {
  IntMatrix3 rotation;
  Table1<float, 3> translation;
  ASSERT_TRUE(ParseOperatorText("x+1/12,y-5/12,-z+11/12", 1, rotation, translation).ok());
  EXPECT_EQ(Rows(rotation), (std::array<int, 9>{1, 0, 0, 0, 1, 0, 0, 0, -1}));
  EXPECT_FLOAT_EQ(translation[1], 1.0f / 12.0f);
  EXPECT_FLOAT_EQ(translation[2], -5.0f / 12.0f);
  EXPECT_FLOAT_EQ(translation[3], 11.0f / 12.0f);
}

TEST(OperatorText, DigitBeforeALetterIsItsCoefficient) {
  IntMatrix3 rotation;
  Table1<float, 3> translation;
  ASSERT_TRUE(ParseOperatorText("x-y,2y,z*ignored", 1, rotation, translation).ok());
  EXPECT_EQ(Rows(rotation), (std::array<int, 9>{1, -1, 0, 0, 2, 0, 0, 0, 1}));
  EXPECT_FLOAT_EQ(translation[2], 0.0f);
}

TEST(OperatorText, MissingThirdFieldStopsWithTheBlankFieldMessage) {
  IntMatrix3 rotation;
  Table1<float, 3> translation;
  const SymmetryMessages messages = ParseOperatorText("x,y", 1, rotation, translation);
  EXPECT_EQ(messages.stop, " *** ERROR: Blank operator field");
}

TEST(OperatorText, InvalidCharacterStopsAndShowsTheLine) {
  IntMatrix3 rotation;
  Table1<float, 3> translation;
  const SymmetryMessages messages = ParseOperatorText("x,y,q", 1, rotation, translation);
  EXPECT_EQ(messages.stop, " *** ERROR: Invalid character... q in Sym. Op. ");
  EXPECT_EQ(messages.console, std::vector<std::string>{"x,y,q"});
}

TEST(OperatorText, SingularRotationStops) {
  IntMatrix3 rotation;
  Table1<float, 3> translation;
  const SymmetryMessages messages = ParseOperatorText("x,x,z", 1, rotation, translation);
  EXPECT_EQ(messages.stop, "  *** ERROR: The above operator is wrong");
  EXPECT_EQ(messages.console, std::vector<std::string>{"x,x,z"});
}

TEST(OperatorText, MagneticLineReadsMomentsAndPhase) {
  IntMatrix3 rotation;
  float phase = -1.0f;
  ASSERT_TRUE(ParseMagneticText("MSYM  u,-v,W, 3", rotation, phase).ok());
  EXPECT_EQ(Rows(rotation), (std::array<int, 9>{1, 0, 0, 0, -1, 0, 0, 0, 1}));
  EXPECT_FLOAT_EQ(phase, 3.0f);
}

TEST(OperatorText, MagneticPhaseThatCannotBeReadIsZero) {
  IntMatrix3 rotation;
  float phase = -1.0f;
  ASSERT_TRUE(ParseMagneticText("MSYM  -u,-v,w,none", rotation, phase).ok());
  EXPECT_EQ(Rows(rotation), (std::array<int, 9>{-1, 0, 0, 0, -1, 0, 0, 0, 1}));
  EXPECT_FLOAT_EQ(phase, 0.0f);
}

TEST(OperatorText, MagneticLineWithCoordinateLettersStops) {
  IntMatrix3 rotation;
  float phase = 0.0f;
  const SymmetryMessages messages = ParseMagneticText("MSYM  x,y,z,0", rotation, phase);
  EXPECT_EQ(messages.stop, " *** ERROR: Invalid character... x in Sym. Op. ");
}

}  // namespace
}  // namespace corvinet
