// tests/support/forked_child.h: a part of a test in a forked child.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <string>

namespace orbtest {

constexpr const char* kRefused = "refused";
constexpr int kRefusedStatus = 77;

// Ends a child whose surroundings are not to be had; the outcome is then kRefused: reason to skip
// the test.
[[noreturn]] inline void refuse() { _exit(kRefusedStatus); }

// Runs `body` in a forked child. "" when it returned without a failed expectation (those are
// printed); otherwise how the child ended. One that does not come to an end is killed by a signal.
inline std::string outcome_in_child(const std::function<void()>& body) {
  constexpr unsigned kPatience = 60;  // seconds
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    alarm(kPatience);
    body();
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return "no child";
  if (WIFSIGNALED(status)) return "killed by signal " + std::to_string(WTERMSIG(status));
  if (WEXITSTATUS(status) == kRefusedStatus) return kRefused;
  return status == 0 ? "" : "failed expectations in the child";
}

}  // namespace orbtest
