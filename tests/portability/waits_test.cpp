// tests/portability/waits_test.cpp: the wait on one handle and the wait on several.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "tests/portability/handle_scope.h"
#include "tests/support/callfaults.h"
#include "tests/support/scoped_error_word.h"

namespace {

using orbtest::CallFaults;
using orbtest::Handle;
using orbtest::is_locked;
using orbtest::make_event;
using orbtest::make_mutex;
using orbtest::milliseconds_of;
using orbtest::ScopedErrorWord;
using orbtest::StoppedClock;

constexpr int64_t kUntouched = ScopedErrorWord::kUntouched;
constexpr uint64_t kFailed = WAIT_FAILED;
constexpr uint64_t kSignalled = WAIT_OBJECT_0;
constexpr uint64_t kTimeout = WAIT_TIMEOUT;

// Sends a thread that waits on `handle` to sleep: done when it has given the guard back.
void wait_until_asleep(_voxHandleObject_t* handle, const std::atomic<bool>& started) {
  while (!started) std::this_thread::yield();
  // A waiter that holds the guard is on its way; the condition's waiters show in nothing public,
  // so a few turns through the guard follow.
  for (int turn = 0; turn < 1000; ++turn) {
    pthread_mutex_lock(&handle->guard);
    pthread_mutex_unlock(&handle->guard);
    std::this_thread::yield();
  }
}

TEST(SingleWait, RefusesWhatCannotBeWaitedOn) {
  Handle event = make_event(true);
  for (uint32_t kind : {uint32_t{HANDLE_TYPE_FILE}, 4u, 0xFFFFFFFFu}) {
    ScopedErrorWord word;
    event->kind = kind;
    EXPECT_EQ(voxWaitForSingleObject(event.get(), 0), kFailed) << kind;
    EXPECT_EQ(word.stored(), 22) << kind;
  }
  event->kind = HANDLE_TYPE_EVENT;
  for (intptr_t none : {intptr_t{0}, intptr_t{-1}}) {
    ScopedErrorWord word;
    EXPECT_EQ(voxWaitForSingleObject(reinterpret_cast<void*>(none), INFINITE), kFailed);
    EXPECT_EQ(word.stored(), 22);
  }
}

TEST(SingleWait, OfZeroMillisecondsNeverSleeps) {
  Handle unset = make_event();
  Handle set = make_event(true);
  CallFaults sleeps("pthread_cond_timedwait", EINVAL, 0);
  EXPECT_EQ(voxWaitForSingleObject(unset.get(), 0), kTimeout);
  EXPECT_EQ(voxWaitForSingleObject(set.get(), 0), kSignalled);
  EXPECT_EQ(sleeps.calls(), 0u);
  EXPECT_FALSE(is_locked(&unset->guard));
  EXPECT_FALSE(is_locked(&set->guard));
}

TEST(SingleWait, OnlyOneIsSignalled) {
  Handle event = make_event();
  event->signalled = 2;
  EXPECT_EQ(voxWaitForSingleObject(event.get(), 0), kTimeout);
}

TEST(SingleWait, LastsItsMilliseconds) {
  Handle event = make_event();
  const int64_t took =
      milliseconds_of([&] { EXPECT_EQ(voxWaitForSingleObject(event.get(), 30), kTimeout); });
  EXPECT_GE(took, 29);
}

struct DeadlineRow {
  const char* name;
  time_t seconds;
  long microseconds;
  uint64_t milliseconds;
  time_t deadline_seconds;
  long deadline_nanoseconds;
  uint64_t result;
};

// The clock stands long ago, so that every valid deadline is over.
TEST(SingleWait, FormsItsDeadlineFromTheWallClock) {
  const DeadlineRow rows[] = {
      {"milliseconds become nanoseconds", 100, 5, 7, 100, 7'005'000, kTimeout},
      {"whole seconds are split off", 100, 0, 12'345, 112, 345'000'000, kTimeout},
      {"nanoseconds above a second are carried", 100, 999'999, 2, 101, 1'999'000, kTimeout},
      {"below a second nothing is carried", 100, 999'999, 0x100000000 / 1000 * 1000,
       100 + 4'294'967, 999'999'000, kTimeout},
      {"quirk: exactly a second is not carried", 100, 999'000, 1, 100, 1'000'000'000, kFailed},
      {"quirk: exactly a second from the middle", 100, 500'000, 3'500, 103, 1'000'000'000, kFailed},
      {"just above a second is carried", 100, 999'001, 1, 101, 1'000, kTimeout},
  };
  for (const DeadlineRow& row : rows) {
    ScopedErrorWord word;
    Handle event = make_event();
    StoppedClock clock(row.seconds, row.microseconds);
    EXPECT_EQ(voxWaitForSingleObject(event.get(), row.milliseconds), row.result) << row.name;
    EXPECT_EQ(orbtest::last_deadline().tv_sec, row.deadline_seconds) << row.name;
    EXPECT_EQ(orbtest::last_deadline().tv_nsec, row.deadline_nanoseconds) << row.name;
    EXPECT_EQ(word.stored(), kUntouched) << row.name;
    EXPECT_FALSE(is_locked(&event->guard)) << row.name;
  }
}

TEST(SingleWait, QuirkAnUnreadableClockLeavesTheGuardLocked) {
  ScopedErrorWord word;
  Handle event = make_event();
  {
    CallFaults faults("gettimeofday", EFAULT);
    EXPECT_EQ(voxWaitForSingleObject(event.get(), 10), kFailed);
  }
  EXPECT_EQ(word.stored(), kUntouched);
  EXPECT_TRUE(is_locked(&event->guard));
  pthread_mutex_unlock(&event->guard);
}

TEST(SingleWait, InfiniteIsComparedInAll64Bits) {
  Handle event = make_event();
  {
    CallFaults endless("pthread_cond_wait", EINVAL);
    EXPECT_EQ(voxWaitForSingleObject(event.get(), INFINITE), kFailed);
    EXPECT_EQ(endless.calls(), 1u);
  }
  for (uint64_t timed : {uint64_t{0xFFFFFFFE}, uint64_t{0x100000000}, UINT64_MAX}) {
    CallFaults faults("pthread_cond_timedwait", ETIMEDOUT);
    EXPECT_EQ(voxWaitForSingleObject(event.get(), timed), kTimeout) << timed;
    EXPECT_EQ(faults.calls(), 1u) << timed;
  }
}

TEST(SingleWait, FailsWhenASystemCallFails) {
  struct Row {
    const char* name;
    const char* function;
    int code;
    bool set;
    uint64_t result;
    bool guard_left_locked;
  };
  const Row rows[] = {
      {"no guard", "pthread_mutex_lock", EINVAL, true, kFailed, false},
      {"guard not given back", "pthread_mutex_unlock", EPERM, true, kFailed, true},
      {"guard not given back without a sleep", "pthread_mutex_unlock", EPERM, false, kFailed, true},
      {"the sleep fails", "pthread_cond_timedwait", EINVAL, false, kFailed, false},
      {"the sleep is not permitted", "pthread_cond_timedwait", EPERM, false, kFailed, false},
      {"the sleep times out", "pthread_cond_timedwait", ETIMEDOUT, false, kTimeout, false},
  };
  for (const Row& row : rows) {
    ScopedErrorWord word;
    Handle event = make_event(row.set);
    {
      CallFaults faults(row.function, row.code);
      const uint64_t limit = row.guard_left_locked ? 0 : 10;
      EXPECT_EQ(voxWaitForSingleObject(event.get(), limit), row.result) << row.name;
      EXPECT_EQ(faults.failures(), 1u) << row.name;
    }
    EXPECT_EQ(word.stored(), kUntouched) << row.name;
    EXPECT_EQ(is_locked(&event->guard), row.guard_left_locked) << row.name;
    if (row.guard_left_locked) pthread_mutex_unlock(&event->guard);
  }
}

TEST(SingleWait, WakesEveryWaiterOfASetEvent) {
  Handle event = make_event();
  std::atomic<int> woken{0};
  std::vector<std::thread> waiters;
  for (int n = 0; n < 4; ++n) {
    waiters.emplace_back([&, n] {
      const uint64_t limit = n % 2 == 0 ? uint64_t{INFINITE} : UINT64_MAX;
      if (voxWaitForSingleObject(event.get(), limit) == kSignalled) ++woken;
    });
  }
  EXPECT_EQ(voxSetEvent(event.get()), 1);
  for (std::thread& waiter : waiters) waiter.join();
  EXPECT_EQ(woken, 4);
}

TEST(SingleWait, QuirkAnyWakeUpOfAnEventIsASignal) {
  Handle event = make_event();
  std::atomic<bool> started{false};
  std::atomic<uint64_t> result{99};
  std::thread waiter([&] {
    started = true;
    result = voxWaitForSingleObject(event.get(), INFINITE);
  });
  wait_until_asleep(event.get(), started);
  // The word stays 0 all the time.
  while (result == 99) {
    pthread_cond_broadcast(&event->condition);
    std::this_thread::yield();
  }
  waiter.join();
  EXPECT_EQ(result, kSignalled);
  EXPECT_EQ(event->signalled, 0);
}

TEST(SingleWait, QuirkASetFollowedByAResetStillWakes) {
  Handle event = make_event();
  std::atomic<uint64_t> result{99};
  std::thread waiter([&] { result = voxWaitForSingleObject(event.get(), INFINITE); });
  while (result == 99) {
    voxSetEvent(event.get());
    voxResetEvent(event.get());
    std::this_thread::yield();
  }
  waiter.join();
  EXPECT_EQ(result, kSignalled);
}

TEST(SingleWait, TakesAMutexOnceAndNotRecursively) {
  Handle mutex = make_mutex();
  EXPECT_EQ(voxWaitForSingleObject(mutex.get(), INFINITE), kSignalled);
  EXPECT_EQ(mutex->signalled, 0);
  EXPECT_TRUE(is_locked(static_cast<pthread_mutex_t*>(mutex->payload)));
  EXPECT_FALSE(is_locked(&mutex->guard));
  EXPECT_EQ(voxWaitForSingleObject(mutex.get(), 0), kTimeout);
  EXPECT_EQ(voxWaitForSingleObject(mutex.get(), 5), kTimeout);
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
}

TEST(SingleWait, OfAnOwnedMutexBlocksUntilItsRelease) {
  Handle mutex = make_mutex(true);
  std::atomic<bool> released{false};
  bool in_order = false;
  std::thread waiter([&] {
    in_order = voxWaitForSingleObject(mutex.get(), INFINITE) == kSignalled && released;
    voxReleaseMutex(mutex.get());
  });
  EXPECT_EQ(voxWaitForSingleObject(mutex.get(), 5), kTimeout);
  released = true;
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
  waiter.join();
  EXPECT_TRUE(in_order);
}

TEST(SingleWait, AMutexWaiterLooksAgainAfterAWakeUp) {
  Handle mutex = make_mutex(true);
  std::atomic<bool> done{false};
  uint64_t result = 99;
  std::thread waiter([&] {
    result = voxWaitForSingleObject(mutex.get(), 40);
    done = true;
  });
  while (!done) {
    pthread_cond_broadcast(&mutex->condition);
    std::this_thread::yield();
  }
  waiter.join();
  EXPECT_EQ(result, kTimeout);
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
}

TEST(SingleWait, AnOwnedMutexThatWasSetStaysItsOwners) {
  Handle mutex = make_mutex(true);
  EXPECT_EQ(voxSetEvent(mutex.get()), 1);
  uint64_t other = 99;
  std::thread([&] { other = voxWaitForSingleObject(mutex.get(), 5); }).join();
  EXPECT_EQ(other, kTimeout);
  EXPECT_FALSE(is_locked(&mutex->guard));
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
  EXPECT_EQ(voxWaitForSingleObject(mutex.get(), 0), kSignalled);
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
}

TEST(SingleWait, FailsWhenTheOwnerMutexFails) {
  Handle mutex = make_mutex();
  {
    CallFaults faults("pthread_mutex_trylock", EAGAIN);
    EXPECT_EQ(voxWaitForSingleObject(mutex.get(), 0), kFailed);
    EXPECT_EQ(faults.failures(), 1u);
  }
  EXPECT_EQ(mutex->signalled, 1);
  EXPECT_FALSE(is_locked(&mutex->guard));
}

TEST(SingleWait, ACancelledWaiterLeavesTheHandleUsable) {
  Handle event = make_event();
  pthread_t waiter{};
  auto body = [](void* handle) -> void* {
    voxWaitForSingleObject(handle, INFINITE);
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&waiter, nullptr, body, event.get()), 0);
  ASSERT_EQ(pthread_cancel(waiter), 0);
  void* result = nullptr;
  ASSERT_EQ(pthread_join(waiter, &result), 0);
  EXPECT_EQ(result, PTHREAD_CANCELED);
  EXPECT_FALSE(is_locked(&event->guard));
  EXPECT_EQ(voxSetEvent(event.get()), 1);
}

}  // namespace
