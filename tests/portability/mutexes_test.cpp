// tests/portability/mutexes_test.cpp: mutex handles: making and releasing them.
#include <gtest/gtest.h>

#include <thread>

#include "portability/handles.h"
#include "tests/portability/handle_scope.h"
#include "tests/support/callfaults.h"
#include "tests/support/scoped_error_word.h"

namespace {

using orbtest::CallFaults;
using orbtest::Failing;
using orbtest::Handle;
using orbtest::is_locked;
using orbtest::make_event;
using orbtest::make_mutex;
using orbtest::ScopedErrorWord;

constexpr int64_t kUntouched = ScopedErrorWord::kUntouched;

struct FaultRow {
  const char* name;
  const char* function;
  size_t nth;
};

TEST(CreateMutex, IsOwnedOnlyWithAnInitialOwnerOfOne) {
  for (int initial : {0, 1, 2, -1}) {
    ScopedErrorWord word;
    Handle mutex(voxCreateMutex(nullptr, initial, "any name"));
    ASSERT_NE(mutex, nullptr);
    EXPECT_EQ(mutex->kind, 3u);
    EXPECT_EQ(mutex->references, 1);
    EXPECT_EQ(mutex->signalled, initial == 1 ? 0 : 1) << initial;
    EXPECT_EQ(is_locked(static_cast<pthread_mutex_t*>(mutex->payload)), initial == 1) << initial;
    EXPECT_EQ(word.stored(), kUntouched);
    if (initial == 1) {
      EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
    }
  }
}

TEST(CreateMutex, WithoutMemoryStoresTwelve) {
  const size_t requests = orbtest::for_each_memory_fault([](size_t nth, Failing failing) {
    ScopedErrorWord word;
    orbtest::MemoryFaults faults(nth, failing);
    Handle mutex = make_mutex();
    const bool failed = faults.failures() != 0;
    EXPECT_EQ(mutex == nullptr, failed);
    EXPECT_EQ(word.stored(), failed ? 12 : kUntouched);
    return faults.failures();
  });
  EXPECT_EQ(requests, 2u);  // the record and the owner mutex
}

TEST(CreateMutex, GivesNullWithoutAnErrorWordWhenASystemCallFails) {
  const FaultRow rows[] = {
      {"no condition", "pthread_cond_init", 1},
      {"no first mutex", "pthread_mutex_init", 1},
      {"no second mutex", "pthread_mutex_init", 2},
      {"not taken", "pthread_mutex_trylock", 1},
  };
  for (const FaultRow& row : rows) {
    ScopedErrorWord word;
    CallFaults faults(row.function, EAGAIN, row.nth);
    EXPECT_EQ(voxCreateMutex(nullptr, 1, nullptr), nullptr) << row.name;
    EXPECT_EQ(faults.failures(), 1u) << row.name;
    EXPECT_EQ(word.stored(), kUntouched) << row.name;
  }
}

TEST(OpenMutex, GivesNullWithoutAnErrorWord) {
  ScopedErrorWord word;
  EXPECT_EQ(voxOpenMutex(0x1F0001, 0, "name"), nullptr);
  EXPECT_EQ(voxOpenMutex(0, 1, nullptr), nullptr);
  EXPECT_EQ(word.stored(), kUntouched);
}

TEST(ReleaseMutex, RefusesWhatIsNoMutex) {
  ScopedErrorWord word;
  EXPECT_EQ(voxReleaseMutex(nullptr), 0);
  EXPECT_EQ(word.stored(), kUntouched) << "null stores nothing";
  Handle event = make_event(true);
  EXPECT_EQ(voxReleaseMutex(event.get()), 0);
  EXPECT_EQ(word.stored(), 22) << "another kind";
}

TEST(ReleaseMutex, FreesTheOwnerMutexAndSignals) {
  Handle mutex = make_mutex(true);
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
  EXPECT_EQ(mutex->signalled, 1);
  EXPECT_FALSE(is_locked(static_cast<pthread_mutex_t*>(mutex->payload)));
}

TEST(ReleaseMutex, OfAMutexThatNobodyOwnsLeavesItFree) {
  Handle mutex = make_mutex();
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
  EXPECT_EQ(mutex->signalled, 1);
  EXPECT_EQ(voxWaitForSingleObject(mutex.get(), 0), uint64_t{WAIT_OBJECT_0});
  EXPECT_EQ(voxWaitForSingleObject(mutex.get(), 0), uint64_t{WAIT_TIMEOUT}) << "taken once";
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
}

TEST(ReleaseMutex, ByAnotherThreadFreesItForEveryone) {
  Handle mutex = make_mutex(true);
  int released = 0;
  uint64_t taken = 0;
  uint64_t again = 0;
  std::thread([&] {
    released = voxReleaseMutex(mutex.get());
    taken = voxWaitForSingleObject(mutex.get(), 0);
    again = voxWaitForSingleObject(mutex.get(), 0);
    voxReleaseMutex(mutex.get());
  }).join();
  EXPECT_EQ(released, 1);
  EXPECT_EQ(taken, uint64_t{WAIT_OBJECT_0});
  EXPECT_EQ(again, uint64_t{WAIT_TIMEOUT});
  EXPECT_EQ(voxWaitForSingleObject(mutex.get(), 0), uint64_t{WAIT_OBJECT_0});
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
}

TEST(ReleaseMutex, ForAnotherThreadWithoutMemoryStoresTwelveAndKeepsTheOwner) {
  Handle mutex = make_mutex();
  std::thread([&] { voxWaitForSingleObject(mutex.get(), 0); }).join();
  ScopedErrorWord word;
  int released = 1;
  {
    orbtest::MemoryFaults faults(1);
    released = voxReleaseMutex(mutex.get());
  }
  EXPECT_EQ(released, 0);
  EXPECT_EQ(word.stored(), 12);
  EXPECT_EQ(voxWaitForSingleObject(mutex.get(), 0), uint64_t{WAIT_TIMEOUT});
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
  EXPECT_EQ(voxWaitForSingleObject(mutex.get(), 0), uint64_t{WAIT_OBJECT_0});
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
}

TEST(ReleaseMutex, GivesZeroWhenASystemCallFailsAndLeavesTheGuardFree) {
  struct Row {
    const char* name;
    const char* function;
    size_t nth;
    bool guard_left_locked;
    int32_t signalled;
  };
  const Row rows[] = {
      {"no guard", "pthread_mutex_lock", 1, false, 0},
      {"owner mutex stays locked", "pthread_mutex_unlock", 1, false, 0},
      {"no broadcast", "pthread_cond_broadcast", 1, false, 1},
      {"guard stays locked", "pthread_mutex_unlock", 2, true, 1},
  };
  for (const Row& row : rows) {
    ScopedErrorWord word;
    Handle mutex = make_mutex(true);
    {
      CallFaults faults(row.function, EPERM, row.nth);
      EXPECT_EQ(voxReleaseMutex(mutex.get()), 0) << row.name;
      EXPECT_EQ(faults.failures(), 1u) << row.name;
    }
    EXPECT_EQ(mutex->signalled, row.signalled) << row.name;
    EXPECT_EQ(word.stored(), kUntouched) << row.name;
    EXPECT_EQ(is_locked(&mutex->guard), row.guard_left_locked) << row.name;
    if (row.guard_left_locked) pthread_mutex_unlock(&mutex->guard);
    if (row.signalled == 0) voxReleaseMutex(mutex.get());
  }
}

}  // namespace
