// tests/soak/figures.cpp: reads /proc/self and the allocator's own count.
#include "tests/soak/figures.h"

#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/support/open_descriptors.h"

namespace soak {

Figures figures_now() {
  Figures figures;
  std::ifstream pages("/proc/self/statm");
  size_t size = 0;
  size_t resident = 0;
  pages >> size >> resident;
  figures.resident = resident * static_cast<size_t>(sysconf(_SC_PAGESIZE));
  pages.close();
  figures.descriptors = orbtest::open_descriptors().size();
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  figures.threads = static_cast<size_t>(std::distance(begin(tasks), end(tasks)));
  const struct mallinfo2 blocks = mallinfo2();
  figures.in_use = blocks.uordblks + blocks.hblkhd;
  return figures;
}

}  // namespace soak
