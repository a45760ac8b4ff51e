// tests/support/private_root.h: a root folder of the test's own, with the machine's folders in it.
#pragma once

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace orbtest {

// Makes an empty file system the root of this process and shows all that stood at "/" in it, but
// for "/mnt", so that folders can be made at "/" without a trace on the machine. To be called in a
// mount name space of the test's own; false when a step is refused.
inline bool enter_private_root() {
  namespace fs = std::filesystem;
  const fs::path root = "/mnt";
  if (mount("none", root.c_str(), "tmpfs", 0, nullptr) != 0) return false;
  for (const fs::directory_entry& entry : fs::directory_iterator("/")) {
    const fs::path copy = root / entry.path().relative_path();
    if (entry.path() == root) continue;
    if (entry.is_symlink()) {
      fs::copy_symlink(entry.path(), copy);
    } else if (entry.is_directory()) {
      fs::create_directory(copy);
      if (mount(entry.path().c_str(), copy.c_str(), nullptr, MS_BIND | MS_REC, nullptr) != 0) {
        return false;
      }
    }
  }
  return chroot(root.c_str()) == 0 && chdir("/") == 0;
}

// Writes an executable shell script, and makes the folders on the way.
inline void write_tool(const std::string& path, const std::string& script) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path) << "#!/bin/sh\n" << script << "\n";
  chmod(path.c_str(), 0755);
}

}  // namespace orbtest
