// sysprops/memory.cpp: total and free memory in bytes.
#include <cstdint>
#include <string>

#include "sysprops/collect.h"

namespace quillon_com::orb::sysprops {

namespace {
constexpr unsigned kSteps = 20;  // of the grid that free amounts change in
}

bool collect_memory(const platform::System& system, MemoryInformation& record, Fields fields) {
  uint64_t total = 0;
  if (system.total_memory(&total))
    record.totalPhysicalMemory = sysprops_ansi_to_wide(std::to_string(total));
  if ((fields & kFreeMemory) == 0) return true;

  uint64_t pages = 0;
  uint64_t page_size = 0;
  if (!system.free_memory(&pages, &page_size)) return false;
  record.freeMemory = sysprops_ansi_to_wide(
      std::to_string(get_closest_floor<unsigned long long>(pages * page_size, total, 0, kSteps)));
  return true;
}

bool ISysProps::GetMemoryInformation(MemoryInformation& record) {
  return collect_memory(platform::host(), record);
}

}  // namespace quillon_com::orb::sysprops
