// tests/stress/threads_stress_test.cpp: threads that begin and end, and the closing of their
// handles.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "portability/threads.h"
#include "tests/support/stress.h"

namespace {

constexpr uint64_t kSignalled = WAIT_OBJECT_0;

enum class Closing { after_the_wait, at_once, by_turns };

void run_rounds(Closing closing, long rounds) {
  std::atomic<long> ran{0};
  const auto count = [](void* argument) -> void* {
    ++*static_cast<std::atomic<long>*>(argument);
    return nullptr;
  };
  for (long round = 0; round < rounds; ++round) {
    void* thread = voxBeginThread(nullptr, 0, count, &ran, 0, nullptr);
    ASSERT_NE(reinterpret_cast<intptr_t>(thread), -1);
    if (closing == Closing::after_the_wait || (closing == Closing::by_turns && round % 2 == 0)) {
      EXPECT_EQ(voxWaitForSingleObject(thread, INFINITE), kSignalled);
    }
    EXPECT_EQ(voxCloseHandle(thread), 1);
  }
  while (ran != rounds) std::this_thread::yield();
}

TEST(ThreadStress, BeginWaitClose) {
  run_rounds(Closing::after_the_wait, orbtest::stress_rounds());
}

TEST(ThreadStress, BeginAndCloseAtOnce) { run_rounds(Closing::at_once, orbtest::stress_rounds()); }

TEST(ThreadStress, BeginAndCloseFromSeveralThreads) {
  std::vector<std::thread> threads;
  for (int n = 0; n < 4; ++n) {
    threads.emplace_back([] { run_rounds(Closing::by_turns, orbtest::stress_rounds() / 4); });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
