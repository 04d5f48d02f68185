// Tests of the bisection that finds the last entry of an ascending table at or below a value.
#include "format/bisection.h"

#include <gtest/gtest.h>

#include <vector>

namespace corvinet {
namespace {

// Entries 1..5 of an ascending table with a repeated value.
const std::vector<float> kTable = {0.0f, 1.0f, 2.0f, 2.0f, 4.0f, 8.0f};

int Last(int n, float v) {
  return LastAtOrBelow(
      n, [](int i) { return kTable[static_cast<std::size_t>(i)]; }, v);
}

TEST(Bisection, ValueBelowTheFirstEntryGivesZero) {
  EXPECT_EQ(Last(5, 0.5f), 0);
}

TEST(Bisection, EmptyTableGivesZero) {
  EXPECT_EQ(Last(0, 3.0f), 0);
}

TEST(Bisection, ValueOnAnEntryGivesThatEntry) {
  EXPECT_EQ(Last(5, 1.0f), 1);
  EXPECT_EQ(Last(5, 4.0f), 4);
}

TEST(Bisection, RepeatedEntriesGiveTheLastOfThem) {
  EXPECT_EQ(Last(5, 2.0f), 3);
}

TEST(Bisection, ValueBetweenEntriesGivesTheLowerOne) {
  EXPECT_EQ(Last(5, 5.0f), 4);
}

TEST(Bisection, ValueAboveTheLastEntryGivesN) {
  EXPECT_EQ(Last(5, 100.0f), 5);
}

}  // namespace
}  // namespace corvinet
