// fileutil/timestamp.cpp: the current time as texts and as a record.
#include "fileutil/timestamp.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <new>

#include "fileutil/clock.h"
#include "fileutil/conversions.h"
#include "platform/system.h"

namespace quillon_com::orb {

portability::ProcessMutex mutex;

namespace {

constexpr size_t kBufferedLength = 31;  // of the texts that pass a fixed buffer

// Collects the text of a stamp; every number of a broken-down time fits, whatever it holds.
class StampText {
 public:
  // In at least `width` characters, filled up with blanks or, behind the sign, with zeros.
  void number(int64_t value, ptrdiff_t width, char filler) {
    char digits[24];
    const char* first = digits;
    const char* const last = std::to_chars(digits, digits + sizeof digits, value).ptr;
    const ptrdiff_t missing = std::max<ptrdiff_t>(width - (last - first), 0);
    if (value < 0 && filler == '0') {
      character('-');
      ++first;
    }
    char* const filled = std::fill_n(text_ + length_, missing, filler);
    length_ = static_cast<size_t>(std::copy(first, last, filled) - text_);
  }
  void character(char c) { text_[length_++] = c; }

  size_t length() const { return length_; }
  const char* text() const { return text_; }

 private:
  char text_[96];  // six numbers of at most 12 characters
  size_t length_ = 0;
};

StampText dashed_text(const tm& time) {
  StampText text;
  text.number(time.tm_year + int64_t{1900}, 4, ' ');
  text.character('-');
  text.number(time.tm_mon + int64_t{1}, 2, '0');
  text.character('-');
  text.number(time.tm_mday, 2, '0');
  text.character(' ');
  text.number(time.tm_hour, 2, '0');
  text.character(':');
  text.number(time.tm_min, 2, '0');
  text.character(':');
  text.number(time.tm_sec, 2, '0');
  return text;
}

StampText compact_text(const tm& time) {
  StampText text;
  text.number(time.tm_year + int64_t{1900}, 4, '0');
  text.number(time.tm_mon + int64_t{1}, 2, '0');
  for (const int value : {time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec})
    text.number(value, 2, '0');
  return text;
}

// `time` is null for one that cannot be broken down.
void write_compact(const tm* time, wchar_t* out, int size) {
  if (out == nullptr || size <= 0) return;
  const StampText text = time != nullptr ? compact_text(*time) : StampText();
  const size_t room = static_cast<size_t>(size);
  const size_t length = std::min({text.length(), kBufferedLength, room});
  std::fill(std::copy_n(text.text(), length, out), out + room, L'\0');
}

}  // namespace

voxSystemTime* fill_system_time(const platform::System& system, voxSystemTime* record) {
  if (record == nullptr) return nullptr;
  *record = {};
  tm time{};
  if (!system.local_time(system.wall_clock(), &time)) return record;
  record->year = static_cast<uint16_t>(time.tm_year + int64_t{1900});
  record->month = static_cast<uint16_t>(time.tm_mon + 1);
  record->dayOfWeek = static_cast<uint16_t>(time.tm_wday);
  record->day = static_cast<uint16_t>(time.tm_mday);
  record->hour = static_cast<uint16_t>(time.tm_hour);
  record->minute = static_cast<uint16_t>(time.tm_min);
  record->second = static_cast<uint16_t>(time.tm_sec);
  return record;
}

std::string dashed_stamp(const platform::System& system) {
  tm time{};
  const portability::Hold held(mutex);
  if (!system.local_time(system.wall_clock(), &time)) return "";
  const StampText text = dashed_text(time);
  return std::string(text.text(), std::min(text.length(), kBufferedLength));
}

void utc_stamp(const platform::System& system, wchar_t* out, int size) {
  tm time{};
  write_compact(system.utc_time(system.wall_clock(), &time) ? &time : nullptr, out, size);
}

void local_stamp(const platform::System& system, wchar_t* out, int size) {
  tm time{};
  write_compact(system.local_time(system.wall_clock(), &time) ? &time : nullptr, out, size);
}

int local_stamp(const platform::System& system, char* out, int size) {
  if (out == nullptr || size <= 0) return 0;
  *out = '\0';
  tm time{};
  if (!system.local_time(system.wall_clock(), &time)) return 0;
  const StampText text = compact_text(time);
  const size_t kept = std::min(text.length(), static_cast<size_t>(size) - 1);
  *std::copy_n(text.text(), kept, out) = '\0';
  return static_cast<int>(text.length());
}

std::string voxcomn_get_time_stamp_ansi() {
  try {
    return dashed_stamp(platform::host());
  } catch (const std::bad_alloc&) {
    return {};
  }
}

std::wstring voxcomn_get_time_stamp_wide() {
  return voxcomn_ansi_to_wide(voxcomn_get_time_stamp_ansi());
}

}  // namespace quillon_com::orb

namespace orb = quillon_com::orb;

voxSystemTime* voxGetSystemTime(voxSystemTime* record) {
  return orb::fill_system_time(orb::platform::host(), record);
}

void voxcomn_CreateGmtTimeStampW(wchar_t* out, int size) {
  orb::utc_stamp(orb::platform::host(), out, size);
}

void voxcomn_CreateLocalTimeStampW(wchar_t* out, int size) {
  orb::local_stamp(orb::platform::host(), out, size);
}

int voxcomn_CreateGmtTimeStampA(char* out, int size) {
  return orb::local_stamp(orb::platform::host(), out, size);  // local: see the header
}

int voxcomn_CreateLocalTimeStampA(char* out, int size) {
  return orb::local_stamp(orb::platform::host(), out, size);
}

void voxcomn_delay(uintptr_t) {}
