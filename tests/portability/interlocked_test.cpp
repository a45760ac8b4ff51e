// tests/portability/interlocked_test.cpp: increment, decrement and exchange.
#include <gtest/gtest.h>

#include <climits>
#include <thread>
#include <vector>

#include "portability/handles.h"
#include "tests/support/callfaults.h"

namespace {

struct StepRow {
  const char* name;
  long (*step)(long*);
  long before;
  long after;
};

TEST(Interlocked, StepsAndReturnsTheNewValue) {
  const StepRow rows[] = {
      {"increment of 41 gives 42", voxInterlockedIncrement, 41, 42},
      {"increment of -1 gives 0", voxInterlockedIncrement, -1, 0},
      {"increment carries beyond 32 bits", voxInterlockedIncrement, 0xFFFFFFFF, 0x100000000},
      {"increment of the largest value wraps", voxInterlockedIncrement, LONG_MAX, LONG_MIN},
      {"decrement of 42 gives 41", voxInterlockedDecrement, 42, 41},
      {"decrement of 0 gives -1", voxInterlockedDecrement, 0, -1},
      {"decrement borrows beyond 32 bits", voxInterlockedDecrement, 0x100000000, 0xFFFFFFFF},
      {"decrement of the smallest value wraps", voxInterlockedDecrement, LONG_MIN, LONG_MAX},
  };
  for (const StepRow& row : rows) {
    long value = row.before;
    EXPECT_EQ(row.step(&value), row.after) << row.name;
    EXPECT_EQ(value, row.after) << row.name;
  }
}

TEST(Interlocked, ExchangeReturnsThePreviousValue) {
  long value = 0x123456789A;
  EXPECT_EQ(voxInterlockedExchange(&value, -5), 0x123456789A);
  EXPECT_EQ(voxInterlockedExchange(&value, 7), -5);
  EXPECT_EQ(value, 7);
}

TEST(Interlocked, NoStepOfSeveralThreadsIsLost) {
  constexpr int kThreads = 4;
  constexpr int kSteps = 20000;
  long value = 0;
  std::vector<std::thread> threads;
  for (int n = 0; n < kThreads; ++n) {
    threads.emplace_back([&value, n] {
      for (int step = 0; step < kSteps; ++step) {
        // Three threads up, one down.
        n == 0 ? voxInterlockedDecrement(&value) : voxInterlockedIncrement(&value);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(value, 2L * kSteps);
}

TEST(Interlocked, EveryExchangedValueIsSeenOnce) {
  constexpr long kValues = 20000;
  long cell = 0;
  long sums[2] = {0, 0};
  std::vector<std::thread> threads;
  for (int n = 0; n < 2; ++n) {
    threads.emplace_back([&cell, sum = &sums[n]] {
      for (long value = 1; value <= kValues; ++value) {
        *sum += voxInterlockedExchange(&cell, value);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(sums[0] + sums[1] + cell, 2 * (kValues * (kValues + 1) / 2));
}

TEST(Interlocked, QuirkAChangeBehindTheMutexShowsInTheResult) {
  for (long (*step)(long*) : {voxInterlockedIncrement, voxInterlockedDecrement}) {
    long value = 41;
    orbtest::AfterCall change("pthread_mutex_unlock", [&value] { value = 100; });
    EXPECT_EQ(step(&value), 100);
  }
  long value = 41;
  orbtest::AfterCall change("pthread_mutex_unlock", [&value] { value = 100; });
  EXPECT_EQ(voxInterlockedExchange(&value, 7), 41) << "exchange reads inside";
}

TEST(Interlocked, StepsAndExchangesHaveAMutexEach) {
  long stepped = 0;
  long swapped = 0;
  long swapped_before = -1;
  // While the steps' mutex is held the other one is free.
  orbtest::AfterCall other("pthread_mutex_lock",
                           [&] { swapped_before = voxInterlockedExchange(&swapped, 5); });
  EXPECT_EQ(voxInterlockedIncrement(&stepped), 1);
  EXPECT_EQ(swapped_before, 0);
  EXPECT_EQ(swapped, 5);
}

}  // namespace
