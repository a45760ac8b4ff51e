// tests/support/silent_output.h: standard output goes nowhere for one scope.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace orbtest {

// For tests that make the library write its diagnostic lines thousands of times.
class SilentOutput {
 public:
  SilentOutput() {
    fflush(stdout);
    kept_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
  }
  ~SilentOutput() {
    fflush(stdout);
    dup2(kept_, STDOUT_FILENO);
    close(kept_);
  }
  SilentOutput(const SilentOutput&) = delete;
  SilentOutput& operator=(const SilentOutput&) = delete;

 private:
  int kept_;
};

}  // namespace orbtest
