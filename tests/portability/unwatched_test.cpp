// tests/portability/unwatched_test.cpp: a process in which the system has no room for the library's
// fork handlers.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

#include "portability/forks.h"
#include "portability/selockparts.h"
#include "tests/portability/library_use.h"
#include "tests/support/forked_child.h"

extern "C" int __wrap_pthread_atfork(void (*)(), void (*)(), void (*)()) { return ENOMEM; }

namespace {

using namespace orbtest;
using namespace quillon_com::orb::portability;

TEST(Unwatched, ForksStaySo) {
  EXPECT_FALSE(watch_forks());
  EXPECT_FALSE(watch_forks());
}

TEST(Unwatched, LocksAreLocks) {
  static ProcessMutex mutex;
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(0, mutex.lock());
    EXPECT_EQ(0, mutex.unlock());
  }
}

TEST(Unwatched, ASpinWordIsTakenOnce) {
  long word = 0;
  EXPECT_TRUE(try_to_take(&word));
  EXPECT_FALSE(try_to_take(&word));
  vxSL_Release(&word);
  EXPECT_TRUE(try_to_take(&word));
}

TEST(Unwatched, TheProcessesNumberIsAskedForEachTime) {
  const auto slots_of_this_process = [] {
    const int64_t slot = voxTlsAlloc();
    EXPECT_EQ(getpid(), nTlsOwnerTable[slot]);
    EXPECT_EQ(1, voxTlsFree(static_cast<uint32_t>(slot)));
  };
  slots_of_this_process();
  EXPECT_EQ("", outcome_in_child(slots_of_this_process));
  slots_of_this_process();
}

TEST(Unwatched, EverythingCanBeUsedHereAndInAChild) {
  ASSERT_LE(0, vxSO_ProcessAttach());
  const AttachedThread self;
  EXPECT_EQ(1, voxFreeLibrary(voxLoadLibrary(kPlainPlugin, nullptr)));
  use_locks();
  use_searches();
  EXPECT_EQ("", outcome_in_child(use_locks));
}

}  // namespace
