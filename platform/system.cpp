// platform/system.cpp: facts that a system has from its others, unless it knows a cheaper way.
#include "platform/system.h"

namespace quillon_com::orb::platform {

std::vector<unsigned> System::interface_indexes(const std::vector<std::string>& names) const {
  std::vector<unsigned> indexes;
  indexes.reserve(names.size());
  for (const std::string& name : names) indexes.push_back(interface_index(name));
  return indexes;
}

MemoryFigures System::memory_figures() const {
  MemoryFigures figures;
  uint64_t total = 0;
  if (total_memory(&total)) figures.total = total;
  uint64_t pages = 0;
  if (free_memory(&pages, &figures.page_size)) figures.free_pages = pages;
  return figures;
}

}  // namespace quillon_com::orb::platform
