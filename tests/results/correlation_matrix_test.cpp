// Tests of the correlation matrix of the refined parameters in percent.
#include "results/correlation_matrix.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "format/fortran_format.h"
#include "records/normal_matrix.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

// --- Correlation matrix ---

TEST(CorrelationMatrix, PercentIsRoundedByAddingAHalfAndTruncating) {
  // C(1,2) = 1 with variances 4 and 9: 100/6 = 16.67 -> 17.
  EXPECT_EQ(CorrelationPercent(1.0f, 4.0f, 9.0f), 17);
  // -16.67 + 0.5 = -16.17 truncates towards zero.
  EXPECT_EQ(CorrelationPercent(-1.0f, 4.0f, 9.0f), -16);
  // A negative product of variances flips the sign: 100*3/(-6) + 0.5 = -49.5.
  EXPECT_EQ(CorrelationPercent(3.0f, -4.0f, 9.0f), -49);
}

TEST(CorrelationMatrix, ParameterAgainstItselfPrintsOneHundred) {
  EXPECT_EQ(CorrelationPercent(4.0f, 4.0f, 4.0f), 100);
  EXPECT_EQ(CorrelationPercent(0.0025f, 0.0025f, 0.0025f), 100);
  NormalMatrix n;
  n.A(1, 1) = 4.0f;
  n.A(2, 2) = 9.0f;
  n.A(1, 2) = n.A(2, 1) = 1.0f;
  const auto lines = CorrelationMatrixLines(n, 2);
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[0], " => Correlation matrix ==>");
  EXPECT_EQ(lines[1], "");
  EXPECT_EQ(lines[2], "         1   2");
  EXPECT_EQ(lines[3], "    1  100  17");
  EXPECT_EQ(lines[4], "    2   17 100");
}

TEST(CorrelationMatrix, OneParameterHasNoMatrix) {
  NormalMatrix n;
  n.A(1, 1) = 1.0f;
  EXPECT_TRUE(CorrelationMatrixLines(n, 1).empty());
  EXPECT_TRUE(CorrelationMatrixLines(n, 0).empty());
}

TEST(CorrelationMatrix, BlocksHoldAtMostNineteenColumns) {
  NormalMatrix n;
  for (int i = 1; i <= 20; ++i) n.A(i, i) = 1.0f;
  const auto lines = CorrelationMatrixLines(n, 20);
  // Heading, then two blocks of a blank, a head and 20 rows.
  ASSERT_EQ(lines.size(), 1u + 2u * 22u);
  std::string head = "      ";
  for (int j = 1; j <= 19; ++j) head += Fmt("(I4)", j);
  EXPECT_EQ(lines[2], head);
  EXPECT_EQ(lines[3].size(), 6u + 19u * 4u);
  EXPECT_EQ(lines[24], "        20");
  EXPECT_EQ(lines[25], "    1    0");
  EXPECT_EQ(lines[44], "   20  100");
}

}  // namespace
}  // namespace corvinet
