// tests/support/open_descriptors.h: what this process has open.
#pragma once

#include <filesystem>
#include <set>
#include <string>

namespace orbtest {

// The numbers of the open descriptors, as text. Two equal sets tell that nothing leaked between.
inline std::set<std::string> open_descriptors() {
  std::set<std::string> numbers;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code closed;
    // The iterator's own descriptor is told too, and leads to the list itself.
    const auto target = std::filesystem::read_symlink(entry, closed);
    if (!closed && target.filename() != "fd") numbers.insert(entry.path().filename());
  }
  return numbers;
}

}  // namespace orbtest
