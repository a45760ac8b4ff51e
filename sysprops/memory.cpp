// sysprops/memory.cpp: total and free memory in bytes.
#include <cstdint>
#include <string>

#include "sysprops/collect.h"

namespace quillon_com::orb::sysprops {

namespace {
constexpr unsigned kSteps = 20;  // of the grid that free amounts change in
}

bool collect_memory(const platform::System& system, MemoryInformation& record, Fields fields) {
  platform::MemoryFigures figures;
  if ((fields & kFreeMemory) != 0) {
    figures = system.memory_figures();
  } else if (uint64_t bytes = 0; system.total_memory(&bytes)) {
    figures.total = bytes;
  }
  if (figures.total)
    record.totalPhysicalMemory = sysprops_ansi_to_wide(std::to_string(*figures.total));
  if ((fields & kFreeMemory) == 0) return true;

  if (!figures.free_pages) return false;
  record.freeMemory = sysprops_ansi_to_wide(std::to_string(get_closest_floor<unsigned long long>(
      *figures.free_pages * figures.page_size, figures.total.value_or(0), 0, kSteps)));
  return true;
}

bool ISysProps::GetMemoryInformation(MemoryInformation& record) {
  return collect_memory(platform::host(), record);
}

}  // namespace quillon_com::orb::sysprops
