// tools/orbprops/collect.h: asks the library.
//
// Each function adds what it asked for to `answer`, and to its timings how long that took. The
// library prints on standard output meanwhile: callers divert it.
#pragma once

#include <string_view>
#include <vector>

#include "tools/orbprops/report.h"

namespace orbprops {

// All properties in the order of kProperties, and the file systems: one run of each collector. The
// timings are the collectors', in the order in which they run, and "total".
void collect_report(Answer& answer);

// The values of `keys`, each of which find_property knows, in their order. Each is collected on
// its own, so that none but the two names that need a host look-up waits for one; where both are
// asked for they share it. The timings carry the keys.
void collect_properties(const std::vector<std::string_view>& keys, Answer& answer);

// The timings are "disk", "interfaces" and "users".
void collect_file_systems(Answer& answer);
void collect_interfaces(bool with_loopback, Answer& answer);
void collect_users(Answer& answer);

}  // namespace orbprops
