// tools/orbprops/layout.h: answers as text for people and for line-wise scripts.
#pragma once

#include <string>
#include <vector>

#include "tools/orbprops/report.h"
#include "tools/orbprops/terminal.h"

namespace orbprops {

// The properties under the headings of their groups, then the file systems.
std::string report_text(const Answer& answer, const Style& style);

// One property: its value and a line end. Several: a line each, key, blank, value. Values are
// never wrapped.
std::string values_text(const std::vector<Property>& properties, const Style& style);

// A key a line; on a terminal with what it means.
std::string keys_text(const Style& style);

// A table with a usage bar on a terminal that has room for one. Empty without file systems.
std::string file_systems_text(const std::vector<FileSystem>& file_systems, size_t indent,
                              const Style& style);

// A table with a row for each address; its interface is repeated in each. Empty without addresses.
std::string interfaces_text(const std::vector<Interface>& interfaces, const Style& style);

// A line for each user, "network" or "local" before the name. Empty without users.
std::string users_text(const Users& users, const Style& style);

// A line for each timing, in milliseconds with three decimals.
std::string timings_text(const std::vector<Timing>& timings);

}  // namespace orbprops
