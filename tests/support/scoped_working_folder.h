// tests/support/scoped_working_folder.h: the process's working folder for one scope.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace orbtest {

// Makes `folder` the working folder; the destructor goes back to the one before, also when its path
// has become closed to the process's user. The constructor throws when the folder cannot be
// entered.
class ScopedWorkingFolder {
 public:
  explicit ScopedWorkingFolder(const std::string& folder)
      : before_(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    std::filesystem::current_path(folder);
  }
  ~ScopedWorkingFolder() {
    if (fchdir(before_) != 0) abort();  // nothing behind this could be relied on
    close(before_);
  }
  ScopedWorkingFolder(const ScopedWorkingFolder&) = delete;
  ScopedWorkingFolder& operator=(const ScopedWorkingFolder&) = delete;

 private:
  int before_;
};

}  // namespace orbtest
