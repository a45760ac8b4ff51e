// fileutil/uptime.cpp: how long the machine has been running, and its tick count.
#include "fileutil/clock.h"
#include "platform/system.h"

namespace quillon_com::orb {

namespace {
constexpr long kUnknown = 0x7FFFFFFF;  // seconds
}

long uptime_seconds(const platform::System& system) {
  time_t boot = 0;
  if (!system.boot_time(&boot)) return kUnknown;
  return static_cast<long>(system.wall_clock() - boot);
}

uint64_t tick_milliseconds(const platform::System& system) {
  const platform::TickCount count = system.tick_count();
  if (count.per_second <= 0) return 0;
  return static_cast<uint64_t>(count.ticks) * 1000 / static_cast<uint64_t>(count.per_second);
}

long voxcomn_get_system_uptime() { return uptime_seconds(platform::host()); }

long get_system_uptime_osx() { return uptime_seconds(platform::host()); }

}  // namespace quillon_com::orb

uint64_t voxGetTickCount() {
  return quillon_com::orb::tick_milliseconds(quillon_com::orb::platform::host());
}
