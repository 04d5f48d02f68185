// Tests of the comments of the report on conical magnetic phases.
#include "results/magnetic_comments.h"

#include <gtest/gtest.h>

namespace corvinet {
namespace {

TEST(MagneticComments, ConicalPhaseIsToldHowItsStructureFactorIsFormed) {
  const std::vector<std::string> lines = ConicalComments(2, 5);
  ASSERT_EQ(lines.size(), 7u);
  EXPECT_EQ(lines[0], " ==> Comments on Magnetic Refinement of phase:  2");
  EXPECT_EQ(lines[1], "    Magnetic structure factor calculated for a conical");
  EXPECT_EQ(lines[5], "   IFR=-1 (only satellites are generated)");
}

TEST(MagneticComments, OtherMagneticPhasesHaveNone) {
  for (int Jbt : {0, 1, -1, 10, -10}) EXPECT_TRUE(ConicalComments(1, Jbt).empty()) << Jbt;
}

}  // namespace
}  // namespace corvinet
