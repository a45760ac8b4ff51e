// tests/support/broken_down.h: a broken-down time by its numbers.
#pragma once

#include <ctime>

namespace orbtest {

// Month 1 to 12; the days of week and year are left 0.
inline tm broken_down(int year, int month, int day, int hour, int minute, int second) {
  tm time{};
  time.tm_year = year - 1900;
  time.tm_mon = month - 1;
  time.tm_mday = day;
  time.tm_hour = hour;
  time.tm_min = minute;
  time.tm_sec = second;
  return time;
}

}  // namespace orbtest
