// Tests of the clock's date and time and their printed forms.
#include "format/date_time.h"

#include <gtest/gtest.h>

#include <regex>

namespace corvinet {
namespace {

TEST(DateTime, DateLineHasItsLayout) {
  DateTimeStamp s = DateTime();
  EXPECT_TRUE(std::regex_match(s.date, std::regex(R"(\d{8})")));
  EXPECT_TRUE(std::regex_match(s.time, std::regex(R"(\d{6}\.\d{3})")));
  EXPECT_TRUE(std::regex_match(
      s.DateLine, std::regex(R"(    Date: \d\d/\d\d/\d{4}  Time: \d\d:\d\d:\d\d\.\d{3})")));
  EXPECT_EQ(s.DateLine.substr(10, 2), s.date.substr(6, 2));
  EXPECT_EQ(s.DateLine.substr(16, 4), s.date.substr(0, 4));
}

TEST(DateTime, DayAndClockTextsSliceTheStamp) {
  DateTimeStamp s;
  s.date = "20261124";
  s.time = "093005.123";
  EXPECT_EQ(DayText(s), "24/11/2026");
  EXPECT_EQ(ClockText(s), "09:30:05.123");
  EXPECT_EQ(ClockText(s, false), "09:30:05");
}

}  // namespace
}  // namespace corvinet
