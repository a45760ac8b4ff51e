// fileutil/utctime.cpp: from broken-down UTC time to seconds, and the zone's abbreviation.
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>

#include "fileutil/clock.h"
#include "fileutil/utf8.h"
#include "platform/system.h"

namespace quillon_com::orb {
namespace {

constexpr size_t kMostZoneLength = 1024;        // of a "TZ" that outlives a conversion
constexpr size_t kMostAbbreviationLength = 63;  // bytes

constexpr int64_t kDay = 86400;  // seconds
constexpr int64_t kDaysOf400Years = 146097;
constexpr int64_t kDaysTo1970 = 719468;  // from the first of March of year 0
constexpr int64_t kDayOfWeekIn1970 = 4;  // of the first of January, a Thursday

struct Division {
  int64_t quotient;
  int64_t remainder;  // not negative
};

constexpr Division divide(int64_t value, int64_t by) {
  const int64_t rest = value % by;
  return rest < 0 ? Division{value / by - 1, rest + by} : Division{value / by, rest};
}

// Days from 1970 to the first day of a month; 0 is January. Years begin in March here, so that a
// leap day is the last of its year.
constexpr int64_t days_before_month(int64_t year, int64_t month) {
  const Division march_year = divide(year * 12 + month - 2, 12);
  const Division era = divide(march_year.quotient, 400);
  const int64_t leap_days = era.remainder / 4 - era.remainder / 100;
  const int64_t days_in_year = (153 * march_year.remainder + 2) / 5;
  return era.quotient * kDaysOf400Years + era.remainder * 365 + leap_days + days_in_year -
         kDaysTo1970;
}

struct Date {
  int64_t year;
  int month;  // 0 is January
  int day;    // of the month, from 1
};

constexpr Date date_of(int64_t days) {
  const Division era = divide(days + kDaysTo1970, kDaysOf400Years);
  const int64_t day = era.remainder;
  const int64_t year = (day - day / 1460 + day / 36524 - day / 146096) / 365;
  const int64_t day_of_year = day - (365 * year + year / 4 - year / 100);
  const int64_t month = (5 * day_of_year + 2) / 153;  // 0 is March
  return {era.quotient * 400 + year + (month >= 10 ? 1 : 0), static_cast<int>((month + 2) % 12),
          static_cast<int>(day_of_year - (153 * month + 2) / 5 + 1)};
}

static_assert(days_before_month(1970, 0) == 0 && days_before_month(2000, 2) == 11017);
static_assert(date_of(11016).month == 1 && date_of(11016).day == 29 && date_of(-1).year == 1969);

// Seconds since 1970, `time` normalised; nothing, with `time` untouched, when its year would not
// fit.
std::optional<int64_t> normalise(tm* time) {
  const int64_t given_days =
      days_before_month(time->tm_year + int64_t{1900}, time->tm_mon) + time->tm_mday - 1;
  const int64_t summer = time->tm_isdst > 0 ? 3600 : 0;
  const int64_t seconds = given_days * kDay + time->tm_hour * int64_t{3600} +
                          time->tm_min * int64_t{60} + time->tm_sec - summer;
  const auto [days, second] = divide(seconds, kDay);
  const Date date = date_of(days);
  const int64_t tm_year = date.year - 1900;
  if (tm_year < INT_MIN || tm_year > INT_MAX) return std::nullopt;

  *time = tm{};
  time->tm_year = static_cast<int>(tm_year);
  time->tm_mon = date.month;
  time->tm_mday = date.day;
  time->tm_hour = static_cast<int>(second / 3600);
  time->tm_min = static_cast<int>(second / 60 % 60);
  time->tm_sec = static_cast<int>(second % 60);
  time->tm_wday = static_cast<int>(divide(days + kDayOfWeekIn1970, 7).remainder);
  time->tm_yday = static_cast<int>(days - days_before_month(date.year, 0));
  time->tm_zone = const_cast<char*>("UTC");
  return seconds;
}

}  // namespace

time_t qlncomn_timegm(tm* time) {
  if (time == nullptr) return -1;
  const portability::Hold held(mutex);
  const auto seconds = normalise(time);
  const char* const zone = getenv("TZ");
  const size_t length = zone != nullptr ? strlen(zone) : 0;
  if (zone != nullptr && (length == 0 || length > kMostZoneLength)) unsetenv("TZ");
  tzset();
  if (!seconds) errno = EOVERFLOW;
  return seconds ? static_cast<time_t>(*seconds) : -1;
}

bool zone_abbreviation(const platform::System& system, std::wstring* zone) {
  std::string name;
  const portability::Hold held(mutex);
  if (!system.zone_name(&name)) return false;
  wchar_t wide[kMostAbbreviationLength];
  const size_t length = std::min(strlen(name.c_str()), kMostAbbreviationLength);
  zone->assign(wide, decode_utf8(name.c_str(), length, wide));
  return true;
}

bool qlncomn_gettimezone(std::wstring& zone) {
  try {
    return zone_abbreviation(platform::host(), &zone);
  } catch (const std::bad_alloc&) {
    return false;
  }
}

}  // namespace quillon_com::orb
