// Tests of the cyclic mode: the numbered data codes.
#include "run/cyclic_mode.h"

#include <gtest/gtest.h>

#include "test_support.h"

namespace corvinet {
namespace {

TEST(CyclicMode, NumberedCodesHaveNoBlanksOrLeadingZeros) {
  EXPECT_EQ(NumberedCode("ser", 7), "ser7");
  EXPECT_EQ(NumberedCode("ser", 42), "ser42");
  EXPECT_EQ(NumberedCode("ser", 999), "ser999");
  EXPECT_EQ(NumberedCode("ser  ", 12345), "ser12345");
}

}  // namespace
}  // namespace corvinet
