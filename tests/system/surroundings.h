// tests/system/surroundings.h: a part of a test where the machine is not as it should be.
#pragma once

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "sysprops/records.h"
#include "tests/support/forked_child.h"
#include "tests/support/silent_output.h"

namespace orbtest {

// Gives this process mounts of its own; false when it may not have them.
inline bool own_mounts() {
  return unshare(CLONE_NEWNS) == 0 &&
         mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

// Covers `folder` with an empty memory file system, in mounts of this process's own.
inline bool cover(const std::string& folder, const char* options = nullptr) {
  return own_mounts() && mount("none", folder.c_str(), "tmpfs", 0, options) == 0;
}

// The whole report, collected anew: thirty keys when it is whole.
inline std::map<std::wstring, std::wstring> whole_report() {
  const SilentOutput silent;
  std::map<std::wstring, std::wstring> values;
  std::map<std::wstring, std::pair<std::wstring, std::wstring>> file_systems;
  quillon_com::orb::sysprops::ISysProps().GetAllSystemProperties(values, file_systems);
  return values;
}
constexpr size_t kReportKeys = 30;

constexpr const char* kSkipped = "needs root, name spaces and an allocator without sanitizer";

// Runs `body` in a child whose surroundings `prepare` has changed; the outcome as outcome_in_child
// tells it.
inline std::string outcome_in(const std::function<bool()>& prepare,
                              const std::function<void()>& body) {
  return outcome_in_child([&] {
    if (!prepare()) refuse();
    body();
  });
}

// Expects that a body keeps its expectations in surroundings made by `prepare`; the test is skipped
// where those are not to be had.
#define EXPECT_IN(prepare, ...)                                            \
  do {                                                                     \
    const std::string outcome = orbtest::outcome_in(prepare, __VA_ARGS__); \
    if (outcome == orbtest::kRefused) GTEST_SKIP() << orbtest::kSkipped;   \
    EXPECT_EQ("", outcome);                                                \
  } while (false)

}  // namespace orbtest
