// tests/portability/threads_test.cpp: beginning, ending and closing threads.
#include "portability/threads.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <thread>
#include <vector>

#include "portability/signals.h"
#include "tests/portability/handle_scope.h"
#include "tests/support/callfaults.h"
#include "tests/support/scoped_error_word.h"

namespace {

using orbtest::CallFaults;
using orbtest::Failing;
using orbtest::Handle;
using orbtest::make_event;
using orbtest::ScopedErrorWord;

constexpr int64_t kUntouched = ScopedErrorWord::kUntouched;
constexpr uint64_t kSignalled = WAIT_OBJECT_0;
constexpr uint64_t kTimeout = WAIT_TIMEOUT;

const auto kNoThread = reinterpret_cast<_voxHandleObject_t*>(intptr_t{-1});

_voxHandleObject_t* begin(voxThreadRoutine routine, void* argument) {
  return voxBeginThread(nullptr, 0, routine, argument, 0, nullptr);
}

void* return_at_once(void* argument) { return argument; }

// Waits for the event that is its argument.
void* wait_for_event(void* event) {
  voxWaitForSingleObject(event, INFINITE);
  return nullptr;
}

TEST(BeginThread, MakesAHandleThatIsSignalledByTheEnd) {
  ScopedErrorWord word;
  Handle gate = make_event();
  Handle thread(begin(wait_for_event, gate.get()));
  ASSERT_NE(thread.get(), kNoThread);
  EXPECT_EQ(thread->kind, 2u);
  EXPECT_EQ(thread->references, 1);
  EXPECT_NE(thread->payload, nullptr);
  ASSERT_NE(thread->threadLink, nullptr);
  EXPECT_EQ(*thread->threadLink, &thread->signalled);
  EXPECT_EQ(voxWaitForSingleObject(thread.get(), 0), kTimeout);
  EXPECT_EQ(voxWaitForSingleObject(thread.get(), 5), kTimeout);
  EXPECT_EQ(voxSetEvent(gate.get()), 1);
  for (int wait = 0; wait < 3; ++wait) {
    EXPECT_EQ(voxWaitForSingleObject(thread.get(), INFINITE), kSignalled);
  }
  EXPECT_EQ(voxWaitForSingleObject(thread.get(), 0), kSignalled);
  EXPECT_EQ(word.stored(), kUntouched);
}

struct Seen {
  void* argument = nullptr;
  pthread_t self{};
  int detached = -1;
};

void* look(void* argument) {
  auto* seen = static_cast<Seen*>(argument);
  seen->argument = argument;
  seen->self = pthread_self();
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
    pthread_attr_getdetachstate(&attributes, &seen->detached);
    pthread_attr_destroy(&attributes);
  }
  return nullptr;
}

TEST(BeginThread, RunsTheRoutineDetachedWithItsArgument) {
  Seen seen;
  Handle thread(begin(look, &seen));
  ASSERT_EQ(voxWaitForSingleObject(thread.get(), INFINITE), kSignalled);
  EXPECT_EQ(seen.argument, &seen);
  EXPECT_NE(pthread_equal(*static_cast<pthread_t*>(thread->payload), seen.self), 0);
  EXPECT_EQ(seen.detached, PTHREAD_CREATE_DETACHED);
}

TEST(BeginThread, QuirkTheIdentifierIsAlwaysZero) {
  uint32_t id = 77;
  // A suspended start, a stack of one byte and attributes are ignored.
  Handle thread(voxBeginThread(&id, 1, return_at_once, nullptr, 4, &id));
  EXPECT_EQ(id, 0u);
  EXPECT_EQ(voxWaitForSingleObject(thread.get(), INFINITE), kSignalled);
}

TEST(CreateThread, GivesTheFullHandle) {
  uint32_t id = 77;
  Handle thread(voxCreateThread(nullptr, 0, return_at_once, nullptr, 0, &id));
  ASSERT_NE(thread, nullptr);
  EXPECT_EQ(id, 0u);
  EXPECT_EQ(thread->kind, 2u);
  EXPECT_EQ(voxWaitForSingleObject(thread.get(), INFINITE), kSignalled);
  set_pthread_sched_param(thread.get());
  set_pthread_sched_param(nullptr);
}

TEST(BeginThread, WithoutMemoryStoresTwelve) {
  const size_t requests = orbtest::for_each_memory_fault([](size_t nth, Failing failing) {
    ScopedErrorWord word;
    uint32_t id = 77;
    orbtest::MemoryFaults faults(nth, failing);
    auto* thread = voxBeginThread(nullptr, 0, return_at_once, nullptr, 0, &id);
    const size_t failures = faults.failures();
    EXPECT_EQ(thread == kNoThread, failures != 0);
    EXPECT_EQ(word.stored(), failures != 0 ? 12 : kUntouched);
    EXPECT_EQ(id, failures != 0 ? 77u : 0u);
    EXPECT_EQ(voxCloseHandle(thread), 1);
    return failures;
  });
  EXPECT_EQ(requests, 3u);  // the record, the thread's cell, the start record
}

TEST(BeginThread, GivesAllOnesWithoutAnErrorWordWhenASystemCallFails) {
  struct Row {
    const char* name;
    const char* function;
    size_t nth;
  };
  const Row rows[] = {
      {"no condition", "pthread_cond_init", 1},  {"no guard", "pthread_mutex_init", 1},
      {"no attributes", "pthread_attr_init", 1}, {"not detached", "pthread_attr_setdetachstate", 1},
      {"no thread", "pthread_create", 1},
  };
  for (const Row& row : rows) {
    for (Failing failing : {Failing::once, Failing::onwards}) {
      ScopedErrorWord word;
      uint32_t id = 77;
      CallFaults faults(row.function, EAGAIN, row.nth, failing);
      EXPECT_EQ(voxBeginThread(nullptr, 0, return_at_once, nullptr, 0, &id), kNoThread) << row.name;
      EXPECT_EQ(faults.failures(), 1u) << row.name;
      EXPECT_EQ(word.stored(), kUntouched) << row.name;
      EXPECT_EQ(id, 77u) << row.name << ": left alone";
    }
  }
}

TEST(BeginThread, WithoutARoutineIsABadArgument) {
  ScopedErrorWord word;
  uint32_t id = 77;
  EXPECT_EQ(voxBeginThread(nullptr, 0, nullptr, &id, 0, &id), kNoThread);
  EXPECT_EQ(word.stored(), 22);
  EXPECT_EQ(id, 77u);
  EXPECT_EQ(voxCreateThread(nullptr, 0, nullptr, &id, 0, &id), nullptr);
}

// The documented fields of what a thread is started with.
struct StartRecord {
  pthread_mutex_t* guard;
  pthread_cond_t* condition;
  int32_t* signalled;
  voxThreadRoutine routine;
  void* argument;
};

TEST(BeginThread, FillsTheStartRecordThatTheLinkPointsInto) {
  Handle gate = make_event();
  Handle thread(begin(wait_for_event, gate.get()));
  const auto* record = reinterpret_cast<const StartRecord*>(
      reinterpret_cast<char*>(thread->threadLink) - offsetof(StartRecord, signalled));
  EXPECT_EQ(record->guard, &thread->guard);
  EXPECT_EQ(record->condition, &thread->condition);
  EXPECT_EQ(record->signalled, &thread->signalled);
  EXPECT_EQ(record->routine, wait_for_event);
  EXPECT_EQ(record->argument, gate.get());
  EXPECT_EQ(voxSetEvent(gate.get()), 1);
  EXPECT_EQ(voxWaitForSingleObject(thread.get(), INFINITE), kSignalled);
}

TEST(ThreadBody, GivesTheRoutinesResultAndNeverTouchesAHandleClosedBefore) {
  int argument = 0;
  auto* record = static_cast<StartRecord*>(malloc(sizeof(StartRecord)));
  *record = {nullptr, nullptr, &bDummyThreadSignalled, return_at_once, &argument};
  EXPECT_EQ(voxThreadJuggle(record), &argument);
  EXPECT_EQ(bDummyThreadSignalled, 1);
}

TEST(CreateThread, GivesNullWhenNoThreadBegins) {
  CallFaults faults("pthread_create", EAGAIN);
  EXPECT_EQ(voxCreateThread(nullptr, 0, return_at_once, nullptr, 0, nullptr), nullptr);
}

void* exit_at_once(void*) { pthread_exit(nullptr); }

// Cleans up like its callers: says in the event that is its argument that it may be cancelled.
void* wait_to_be_cancelled(void* event) {
  voxSetEvent(event);
  for (;;) pthread_testcancel();
}

TEST(ThreadEnd, ByExitSignalsTheHandle) {
  Handle thread(begin(exit_at_once, nullptr));
  EXPECT_EQ(voxWaitForSingleObject(thread.get(), INFINITE), kSignalled);
}

TEST(ThreadEnd, ByCancellationSignalsTheHandle) {
  Handle running = make_event();
  Handle thread(begin(wait_to_be_cancelled, running.get()));
  ASSERT_EQ(voxWaitForSingleObject(running.get(), INFINITE), kSignalled);
  ASSERT_EQ(pthread_cancel(*static_cast<pthread_t*>(thread->payload)), 0);
  EXPECT_EQ(voxWaitForSingleObject(thread.get(), INFINITE), kSignalled);
}

TEST(ThreadEnd, OfAThreadCancelledInAWaitLeavesThatHandleUsable) {
  Handle gate = make_event();
  Handle thread(begin(wait_for_event, gate.get()));
  ASSERT_EQ(pthread_cancel(*static_cast<pthread_t*>(thread->payload)), 0);
  EXPECT_EQ(voxWaitForSingleObject(thread.get(), INFINITE), kSignalled);
  EXPECT_EQ(voxSetEvent(gate.get()), 1);
  EXPECT_EQ(voxWaitForSingleObject(gate.get(), 0), kSignalled);
}

struct Gate {
  Handle open = make_event();
  std::atomic<bool> passed{false};
};

void* pass(void* argument) {
  auto* gate = static_cast<Gate*>(argument);
  voxWaitForSingleObject(gate->open.get(), INFINITE);
  gate->passed = true;
  return nullptr;
}

TEST(ThreadEnd, IsStoredBeforeTheGuardIsTaken) {
  Gate gate;
  Handle thread(begin(pass, &gate));
  ASSERT_EQ(pthread_mutex_lock(&thread->guard), 0);
  EXPECT_EQ(voxSetEvent(gate.open.get()), 1);
  const auto stored = [&] { return __atomic_load_n(&thread->signalled, __ATOMIC_ACQUIRE) == 1; };
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!stored() && std::chrono::steady_clock::now() < limit) std::this_thread::yield();
  EXPECT_TRUE(stored());
  ASSERT_EQ(pthread_mutex_unlock(&thread->guard), 0);
  EXPECT_EQ(voxWaitForSingleObject(thread.get(), INFINITE), kSignalled);
}

TEST(ThreadEnd, AfterItsHandleWasClosedTouchesTheDummyWordOnly) {
  Gate gate;
  Handle thread(begin(pass, &gate));
  int32_t** link = thread->threadLink;
  EXPECT_EQ(voxCloseHandle(thread.release()), 1);
  EXPECT_EQ(*link, &bDummyThreadSignalled);  // the start record lives while the thread runs
  EXPECT_EQ(voxSetEvent(gate.open.get()), 1);
  while (!gate.passed) std::this_thread::yield();
  EXPECT_EQ(__atomic_load_n(&bDummyThreadSignalled, __ATOMIC_RELAXED), 1);
}

TEST(ThreadEnd, QuirkReleasesEverySlotOfTheProcess) {
  ScopedErrorWord word;
  const auto first = static_cast<uint32_t>(voxTlsAlloc());
  const auto second = static_cast<uint32_t>(voxTlsAlloc());
  EXPECT_EQ(voxTlsSetValue(second, &word), 1);
  Handle thread(begin(return_at_once, nullptr));
  ASSERT_EQ(voxWaitForSingleObject(thread.get(), INFINITE), kSignalled);
  EXPECT_EQ(word.stored(), kUntouched);
  for (uint32_t slot : {first, second}) {
    EXPECT_EQ(pTlsKeyTable[slot], nullptr);
    EXPECT_EQ(nTlsOwnerTable[slot], 0);
    EXPECT_EQ(voxTlsGetValue(slot), nullptr);
    EXPECT_EQ(word.stored(), 22);
  }
}

TEST(ThreadEnd, NeverStoresAnErrorWord) {
  ScopedErrorWord word;
  std::atomic<bool> done{false};
  std::atomic<int> releases{0};
  std::thread other([&] {
    // Takes slots and leaves their release to the threads that end.
    while (!done) {
      if (voxTlsAlloc() >= 0) ++releases;
      std::this_thread::yield();
    }
  });
  std::vector<std::thread> beginners;
  for (int n = 0; n < 2; ++n) {
    beginners.emplace_back([] {
      for (int round = 0; round < 300; ++round) {
        void* thread = begin(return_at_once, nullptr);
        voxWaitForSingleObject(thread, INFINITE);
        voxCloseHandle(thread);
      }
    });
  }
  for (std::thread& beginner : beginners) beginner.join();
  done = true;
  other.join();
  EXPECT_NE(word.stored(), 22);
  EXPECT_GT(releases, 0);
  for (uint32_t slot = 0; slot < kTlsSlots; ++slot) voxTlsFree(slot);
}

}  // namespace
