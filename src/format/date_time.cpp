// The clock's date and time, and their printed forms.
#include "format/date_time.h"

#include <chrono>
#include <ctime>

#include "format/fortran_format.h"

namespace corvinet {

DateTimeStamp DateTime() {
  using namespace std::chrono;
  const auto now = system_clock::now();
  const std::time_t t = system_clock::to_time_t(now);
  const int millis =
      static_cast<int>(duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000);
  std::tm local{};
  localtime_r(&t, &local);
  DateTimeStamp s;
  s.date = Fmt("(I4.4,I2.2,I2.2)", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  s.time = Fmt("(3I2.2,'.',I3.3)", local.tm_hour, local.tm_min, local.tm_sec, millis);
  s.DateLine = "    Date: " + DayText(s) + "  Time: " + ClockText(s);
  return s;
}

std::string DayText(const DateTimeStamp& stamp) {
  return stamp.date.substr(6, 2) + "/" + stamp.date.substr(4, 2) + "/" + stamp.date.substr(0, 4);
}

std::string ClockText(const DateTimeStamp& stamp, bool withMilliseconds) {
  return stamp.time.substr(0, 2) + ":" + stamp.time.substr(2, 2) + ":" +
         stamp.time.substr(4, withMilliseconds ? 6 : 2);
}

}  // namespace corvinet
