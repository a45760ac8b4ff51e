// tools/orbprops/properties.h: the thirty keys, their groups and where their values come from.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "sysprops/records.h"

namespace orbprops {

// What one report collects into.
struct Records {
  quillon_com::orb::sysprops::NetworkInformation network;
  quillon_com::orb::sysprops::CPUInformation cpu;
  quillon_com::orb::sysprops::MemoryInformation memory;
  quillon_com::orb::sysprops::DiskInformation disk;
  quillon_com::orb::sysprops::MiscInformation misc;
  quillon_com::orb::sysprops::OSInformation os;
};

struct PropertyInfo {
  std::string_view key;      // the wire name, ASCII
  std::string_view group;    // heading in the report; a group's keys follow each other
  std::string_view meaning;  // half a line
  std::wstring (*answer)();  // collects what this key needs, alone
  const std::wstring& (*field)(const Records&);
};

inline constexpr size_t kPropertyCount = 30;

// Every key, in the order of the report. The key of each row is the text that the library exports
// for it.
extern const std::array<PropertyInfo, kPropertyCount> kProperties;

// The row of `key`, compared exactly; null when there is none.
const PropertyInfo* find_property(std::string_view key);

// Whether `value` says that the property `key` could not be collected: it is empty or "N/A", or
// for the logged-on users "NA".
bool is_unanswered(std::string_view key, std::wstring_view value);

}  // namespace orbprops
