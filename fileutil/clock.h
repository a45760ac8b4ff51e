// fileutil/clock.h: the stamps and clocks of a given machine; what fileutil/timestamp.h runs on the
// host.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

#include "fileutil/timestamp.h"
#include "portability/forks.h"

namespace quillon_com::orb::platform {
class System;
}

namespace quillon_com::orb {

// The time-zone lock: serialises what reads the C library's zone for a text and what makes the
// library look for its zone.
extern portability::ProcessMutex mutex;

// The functions of fileutil/timestamp.h with the same rules, on `system`, which is read and never
// kept. Pointers may be null where they may be there.
voxSystemTime* fill_system_time(const platform::System& system, voxSystemTime* record);
uint64_t tick_milliseconds(const platform::System& system);
std::string dashed_stamp(const platform::System& system);
void utc_stamp(const platform::System& system, wchar_t* out, int size);
void local_stamp(const platform::System& system, wchar_t* out, int size);
int local_stamp(const platform::System& system, char* out, int size);
bool zone_abbreviation(const platform::System& system, std::wstring* zone);
long uptime_seconds(const platform::System& system);

}  // namespace quillon_com::orb
