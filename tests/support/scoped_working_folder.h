// tests/support/scoped_working_folder.h: the process's working folder for one scope.
#pragma once

#include <filesystem>
#include <string>

namespace orbtest {

// Makes `folder` the working folder; the destructor goes back to the one before. The constructor
// throws when the folder cannot be entered.
class ScopedWorkingFolder {
 public:
  explicit ScopedWorkingFolder(const std::string& folder)
      : before_(std::filesystem::current_path()) {
    std::filesystem::current_path(folder);
  }
  ~ScopedWorkingFolder() {
    std::error_code ignored;
    std::filesystem::current_path(before_, ignored);
  }
  ScopedWorkingFolder(const ScopedWorkingFolder&) = delete;
  ScopedWorkingFolder& operator=(const ScopedWorkingFolder&) = delete;

 private:
  std::filesystem::path before_;
};

}  // namespace orbtest
