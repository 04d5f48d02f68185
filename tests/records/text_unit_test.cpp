// Tests of the writing of records on a unit: an empty record, even one without any text behind
// it, is an empty line.
#include "records/text_unit.h"

#include <gtest/gtest.h>

#include <string_view>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::ScratchDir;

TEST(TextUnit, EmptyRecordWithoutTextIsAnEmptyLine) {
  ScratchDir dir;
  TextUnit unit;
  ASSERT_TRUE(OpenUnit(unit, "m.dir", OpenStatus::Unknown));
  WriteRecord(unit, std::string_view());
  WriteRecord(unit, "abc");
  CloseUnit(unit);
  EXPECT_EQ(dir.Read("m.dir"), "\nabc\n");
}

}  // namespace
}  // namespace corvinet
