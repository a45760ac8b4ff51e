// fileutil/timestamp.h: time stamps, the tick count, UTC conversion, the time zone and the uptime.
//
// Local time is that of the process's time zone as the C library holds it: a host process that
// wants the zone of the environment calls tzset() at its start. Every function may be called from
// several threads at once. None throws.
#pragma once

#include <stdint.h>
#include <wchar.h>

#include "platform/export.h"

ORB_EXTERN_C_BEGIN

// A broken-down time as voxGetSystemTime fills it.
typedef struct voxSystemTime {
  uint16_t year;          // with its century
  uint16_t month;         // 1 to 12
  uint16_t dayOfWeek;     // 0 is Sunday
  uint16_t day;           // of the month, 1 to 31
  uint16_t hour;          // 0 to 23
  uint16_t minute;        // 0 to 59
  uint16_t second;        // 0 to 60
  uint16_t milliseconds;  // always 0
} voxSystemTime;

// Fills `*record` with the current time and returns `record`; all zero when the time cannot be
// broken down. A null `record` returns null.
// Quirk: local time, despite the name.
ORB_EXPORT voxSystemTime* voxGetSystemTime(voxSystemTime* record);

// Milliseconds since an arbitrary moment, in steps of the system's clock tick. 0 when the system
// does not tell how long its tick is.
ORB_EXPORT uint64_t voxGetTickCount(void);

// Writes the current time as "20240305070809" (year, month, day, hour, minute, second) to `out` of
// `size` wide characters: UTC, or local time. What is left of `out` is cleared. Does nothing when
// `out` is null or `size` is not positive; a time that cannot be broken down clears `out`.
// Quirk: a `size` of 14 or less cuts the text, which is then not terminated.
ORB_EXPORT void voxcomn_CreateGmtTimeStampW(wchar_t* out, int size);
ORB_EXPORT void voxcomn_CreateLocalTimeStampW(wchar_t* out, int size);

// The same in `out` of `size` bytes, cut to what it holds and always terminated. Returns the length
// of the whole text, 14, cut or not. Returns 0, with nothing written, when `out` is null or `size`
// is not positive; 0, with an empty text, when the time cannot be broken down.
// Quirk: both give local time; the narrow "Gmt" stamp, unlike its wide twin, is not in UTC.
ORB_EXPORT int voxcomn_CreateGmtTimeStampA(char* out, int size);
ORB_EXPORT int voxcomn_CreateLocalTimeStampA(char* out, int size);

// Quirk: waits for nothing; returns at once, whatever `value` is.
ORB_EXPORT void voxcomn_delay(uintptr_t value);

ORB_EXTERN_C_END

#ifdef __cplusplus

#include <ctime>
#include <string>

namespace quillon_com {
namespace orb {

// The local time as "2024-03-05 07:08:09", the year padded with blanks to four characters; at most
// 31 characters. "" when the time cannot be broken down or memory runs out. Holds the library's
// time-zone lock.
ORB_EXPORT std::string voxcomn_get_time_stamp_ansi();
ORB_EXPORT std::wstring voxcomn_get_time_stamp_wide();

// Seconds since 1970 of the broken-down UTC time `*time`, whose fields may lie outside their
// ranges; `*time` is normalised as by mktime, its day of the week and of the year computed.
// Returns -1, with `*time` untouched, when the year does not fit (EOVERFLOW in errno) or `time` is
// null; -1 is also the last second of 1969. Holds the library's time-zone lock.
// The C library looks at the variable "TZ" anew (tzset) afterwards, so that its time-zone names are
// those of the environment. Meanwhile no thread sees another zone or another "TZ".
// Quirk: a "TZ" that is empty or longer than 1024 characters is removed from the environment.
// Quirk: a positive tm_isdst takes the time an hour earlier, as mktime does in a zone without
// summer time.
ORB_EXPORT time_t qlncomn_timegm(tm* time);

// Sets `zone` to the abbreviation of the zone's standard time as the C library holds it, UTF-8 of
// at most 63 bytes converted to wide text, and returns true. Returns false, with `zone` untouched,
// when the library holds none or memory runs out. Holds the library's time-zone lock.
// Quirk: the abbreviation is that of the process's last tzset, which is not called here.
ORB_EXPORT bool qlncomn_gettimezone(std::wstring& zone);

// Seconds since the machine was started: the wall clock less the moment of the boot. 2147483647
// when that is not known. Two names of one function.
ORB_EXPORT long voxcomn_get_system_uptime();
ORB_EXPORT long get_system_uptime_osx();

}  // namespace orb
}  // namespace quillon_com

#endif
