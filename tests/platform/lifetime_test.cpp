// tests/platform/lifetime_test.cpp: the running machine as static objects of a process find it,
// when these go at the process's end.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/system.h"
#include "tests/support/forked_child.h"

namespace {

using namespace quillon_com::orb::platform;

// There before the running machine was first asked, so that it goes after whatever goes with that.
class LateCaller {
 public:
  ~LateCaller() {
    if (!armed_) return;
    KernelNames names;
    SessionEntry entry;
    const bool named = host().kernel_names(&names) && !names.machine.empty();
    while (host().next_session_entry(&entry)) {
    }
    host().rewind_sessions();
    _exit(named ? 0 : 1);
  }
  void arm() { armed_ = true; }

 private:
  bool armed_ = false;
};

LateCaller late_caller;

TEST(RunningMachine, AnswersStaticDestructors) {
  EXPECT_EQ("", orbtest::outcome_in_child([] {
              late_caller.arm();
              KernelNames names;
              if (!host().kernel_names(&names)) _exit(2);
              std::exit(3);  // which the caller's status stands in for
            }));
}

}  // namespace
