// tests/stress/handles_stress_test.cpp: events and mutexes between threads.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "portability/handles.h"
#include "tests/portability/handle_scope.h"
#include "tests/support/stress.h"

namespace {

constexpr uint64_t kSignalled = WAIT_OBJECT_0;

// A waiter closes the event as soon as its wait returns, while the setter may still be leaving.
void set_wait_and_close(long rounds) {
  std::atomic<void*> passed{nullptr};
  std::thread setter([&] {
    for (long round = 0; round < rounds; ++round) {
      void* event = nullptr;
      while ((event = passed.exchange(nullptr)) == nullptr) std::this_thread::yield();
      voxSetEvent(event);
    }
  });
  for (long round = 0; round < rounds; ++round) {
    void* event = voxCreateEvent(nullptr, 1, 0, nullptr);
    passed.store(event);
    EXPECT_EQ(voxWaitForSingleObject(event, INFINITE), kSignalled);
    EXPECT_EQ(voxCloseHandle(event), 1);
  }
  setter.join();
}

TEST(HandleStress, SetInOneThreadWaitAndCloseInAnother) {
  const long rounds = orbtest::stress_rounds();
  std::thread second(set_wait_and_close, rounds);
  set_wait_and_close(rounds);
  second.join();
}

// Several threads set one event, several wait for it; the last to come back closes it.
TEST(HandleStress, SeveralThreadsSetAndWaitAndTheLastCloses) {
  struct Shared {
    _voxHandleObject_t* event = voxCreateEvent(nullptr, 1, 0, nullptr);
    std::atomic<int> users{4};
    std::atomic<bool> taken{false};
  };
  const long rounds = orbtest::stress_rounds();
  std::vector<std::atomic<Shared*>> passed(4);
  const auto use = [&](size_t self, bool sets) {
    for (long round = 0; round < rounds; ++round) {
      Shared* shared = nullptr;
      while ((shared = passed[self].exchange(nullptr)) == nullptr) std::this_thread::yield();
      if (sets)
        EXPECT_EQ(voxSetEvent(shared->event), 1);
      else
        EXPECT_EQ(voxWaitForSingleObject(shared->event, INFINITE), kSignalled);
      if (--shared->users == 0) {
        EXPECT_EQ(voxCloseHandle(shared->event), 1);
        shared->taken = true;
      }
    }
  };
  std::vector<std::thread> threads;
  for (size_t each = 0; each < passed.size(); ++each) threads.emplace_back(use, each, each < 2);
  for (long round = 0; round < rounds; ++round) {
    Shared shared;
    for (auto& place : passed) place = &shared;
    while (!shared.taken) std::this_thread::yield();
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(MutexStress, OneThreadAtATimeHoldsIt) {
  const long rounds = orbtest::stress_rounds();
  constexpr int kThreads = 8;
  const orbtest::Handle mutex = orbtest::make_mutex();
  long plain = 0;  // unguarded but by the mutex
  std::vector<std::thread> threads;
  for (int n = 0; n < kThreads; ++n) {
    threads.emplace_back([&, n] {
      for (long round = 0; round < rounds;) {
        const uint64_t limit = n % 2 == 0 ? uint64_t{INFINITE} : 1;
        if (voxWaitForSingleObject(mutex.get(), limit) != kSignalled) continue;
        ++plain;
        ++round;
        voxReleaseMutex(mutex.get());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(plain, kThreads * rounds);
}

}  // namespace
