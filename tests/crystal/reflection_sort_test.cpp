// Sorting of the reflection table by position: stability, blocks, whole pattern, pass limit.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "crystal/reflection_generation.h"

namespace corvinet {
namespace {

// A table with one block per phase; the multiplicity column tags each slot
// with its place of creation.
std::unique_ptr<ReflectionTable> TableOf(const std::vector<std::vector<float>>& blocks) {
  auto table = std::make_unique<ReflectionTable>();
  int tag = 0;
  for (std::size_t p = 0; p < blocks.size(); ++p) {
    const int phase = static_cast<int>(p) + 1;
    table->start[phase] = table->total;
    for (float position : blocks[p]) {
      Reflection& r = table->slot[++table->total];
      r.position = position;
      r.multiplicity = ++tag;
      r.key = ReflectionKey(1, phase, tag, 0, 0);
      r.tanTheta = 10.0f * position;
    }
    table->count[phase] = static_cast<int>(blocks[p].size());
  }
  return table;
}

std::vector<int> Tags(const ReflectionTable& table) {
  std::vector<int> tags;
  for (int s = 1; s <= table.total; ++s) tags.push_back(table.slot[s].multiplicity);
  return tags;
}

TEST(SortReflections, EqualPositionsKeepTheirOrderOfCreation) {
  auto table = TableOf({{3.0f, 1.0f, 2.0f, 1.0f, 3.0f, 2.0f}});
  SortReflections(*table, table->count[1], 1);
  EXPECT_EQ(Tags(*table), (std::vector<int>{2, 4, 3, 6, 1, 5}));
}

TEST(SortReflections, EveryColumnMovesWithItsPosition) {
  auto table = TableOf({{5.0f, 4.0f, 3.0f}});
  SortReflections(*table, 3, 1);
  for (int s = 1; s <= 3; ++s) {
    const Reflection& r = table->slot[s];
    EXPECT_FLOAT_EQ(r.tanTheta, 10.0f * r.position);
    EXPECT_EQ(KeyH(r.key), r.multiplicity);
  }
}

TEST(SortReflections, OnePhaseLeavesTheOtherBlocksAlone) {
  auto table = TableOf({{2.0f, 1.0f}, {9.0f, 8.0f, 7.0f}, {6.0f, 5.0f}});
  SortReflections(*table, 3, 2);
  EXPECT_EQ(Tags(*table), (std::vector<int>{1, 2, 5, 4, 3, 6, 7}));
}

TEST(SortReflections, WholePatternMergesThePhasesKeepingTheBlockOrderOnTies) {
  auto table = TableOf({{1.0f, 2.0f, 3.0f}, {1.0f, 2.0f, 3.0f}});
  SortReflections(*table, table->total, kWholePattern);
  EXPECT_EQ(Tags(*table), (std::vector<int>{1, 4, 2, 5, 3, 6}));
  for (int s = 1; s <= table->total; s += 2) {
    EXPECT_EQ(KeyPhase(table->slot[s].key), 1);
    EXPECT_EQ(KeyPhase(table->slot[s + 1].key), 2);
  }
}

TEST(SortReflections, PassLimitEndsTheSortEarly) {
  auto table = TableOf({{4.0f, 3.0f, 2.0f, 1.0f}});
  SortReflections(*table, 1, 1);
  // One pass: odd sweep (4 3)(2 1) -> 3 4 1 2, even sweep (4 1) -> 3 1 4 2.
  EXPECT_EQ(Tags(*table), (std::vector<int>{2, 4, 1, 3}));
  SortReflections(*table, 4, 1);
  EXPECT_EQ(Tags(*table), (std::vector<int>{4, 3, 2, 1}));
}

TEST(SortReflections, EmptyOrSingleBlockIsLeftAsItIs) {
  auto table = TableOf({{}, {7.0f}});
  SortReflections(*table, 10, 1);
  SortReflections(*table, 10, 2);
  EXPECT_EQ(table->total, 1);
  EXPECT_EQ(Tags(*table), (std::vector<int>{1}));
}

}  // namespace
}  // namespace corvinet
