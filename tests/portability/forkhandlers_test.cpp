// tests/portability/forkhandlers_test.cpp: forks with handlers of the caller's own.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <utility>

#include "portability/selockparts.h"
#include "tests/portability/library_use.h"
#include "tests/support/forked_child.h"

namespace {

using namespace orbtest;

// A caller's own fork handlers, there before the library's. They do nothing unless a test asks.
struct CallersHandlers {
  using Step = std::function<void()>;
  CallersHandlers() {
    pthread_atfork([] { run_step(prepare); }, [] { run_step(behind); }, [] { run_step(behind); });
  }
  static void run_step(const Step& step) {
    if (step) step();
  }
  static inline Step prepare, behind;
};
const CallersHandlers callers_handlers;

TEST_F(ForkOfLocks, LetsHandlersOfTheCallerUseTheLibrary) {
  int ran = 0;
  CallersHandlers::prepare = [&] {
    ++ran;
    long word = 0;
    EXPECT_TRUE(quillon_com::orb::portability::try_to_take(&word));
    use_interlocked();
    use_slots();
    use_libraries();
    use_locks();
    EXPECT_EQ(1, vxSO_SELockExclusive(lock_, 0));
  };
  CallersHandlers::behind = [&] {
    ++ran;
    use_slots();
    EXPECT_EQ(1, vxSO_SELockRelease(lock_));
  };
  EXPECT_EQ("", outcome_in_child([&] {
              EXPECT_EQ(2, ran);
              expect_free();
              use_everything();
            }));
  CallersHandlers::prepare = CallersHandlers::behind = nullptr;
  EXPECT_EQ(2, ran);
  expect_free();
}

// What a handler of the caller forks finds its thread in the middle of the outer fork.
TEST_F(ForkOfLocks, WithinAForkLeavesTheOuterOneAsItWas) {
  int inner_status = -1;
  bool within = false;
  CallersHandlers::prepare = [&] {
    if (std::exchange(within, true)) return;
    const pid_t inner = fork();
    if (inner == 0) {
      alarm(60);
      use_interlocked();
      use_slots();
      use_libraries();
      _exit(HasFailure() ? 1 : 0);
    }
    waitpid(inner, &inner_status, 0);
  };
  EXPECT_EQ("", outcome_in_child([&] {
              EXPECT_EQ(0, inner_status);
              expect_free();
              use_everything();
            }));
  CallersHandlers::prepare = nullptr;
  EXPECT_EQ(0, inner_status);
  expect_free();
  use_slots();
  use_libraries();
}

}  // namespace
