// The clock's date and time, and their printed forms.
#pragma once

#include <string>

namespace corvinet {

// Today's date as YYYYMMDD, the time as hhmmss.sss, and the record
// "    Date: dd/mm/yyyy  Time: hh:mm:ss.sss".
struct DateTimeStamp {
  std::string date;
  std::string time;
  std::string DateLine;
};

DateTimeStamp DateTime();

// "dd/mm/yyyy" of a stamp.
std::string DayText(const DateTimeStamp& stamp);

// "hh:mm:ss.sss" of a stamp, or "hh:mm:ss" without the milliseconds.
std::string ClockText(const DateTimeStamp& stamp, bool withMilliseconds = true);

}  // namespace corvinet
