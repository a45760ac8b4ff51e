// tests/support/scoped_file_user.h: looks at files as a user without privileges for one scope.
#pragma once

#include <sys/fsuid.h>
#include <unistd.h>

namespace orbtest {

// While it lives the calling thread, when it is root's, looks at files as a user who owns none of
// them; another user's thread keeps its own rights.
class ScopedFileUser {
 public:
  ScopedFileUser() {
    if (geteuid() == 0) setfsuid(kNobody);
  }
  ~ScopedFileUser() {
    if (geteuid() == 0) setfsuid(0);
  }
  ScopedFileUser(const ScopedFileUser&) = delete;
  ScopedFileUser& operator=(const ScopedFileUser&) = delete;

 private:
  static constexpr uid_t kNobody = 65534;
};

}  // namespace orbtest
