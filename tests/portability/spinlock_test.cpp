// tests/portability/spinlock_test.cpp: the spin lock of portability/selock.h.
#include <gtest/gtest.h>

#include <thread>
#include <utility>
#include <vector>

#include "portability/selock.h"
#include "tests/portability/call_script.h"

namespace {

TEST(SpinLock, NullDoesNothing) {
  vxSL_Get(nullptr);
  vxSL_Release(nullptr);
  SUCCEED() << "both returned";
}

TEST(SpinLock, GetTakesAndReleaseFrees) {
  long word = 0;
  vxSL_Get(&word);
  EXPECT_EQ(1, word);
  vxSL_Release(&word);
  EXPECT_EQ(0, word);
}

// The naps expected after `busy` failed tries: the try counted n sleeps by its hundred.
std::vector<std::pair<size_t, unsigned>> expected_naps(size_t busy) {
  std::vector<std::pair<size_t, unsigned>> naps;
  for (size_t failed = 4000; failed < busy && failed < 4400; ++failed) {
    const unsigned length = failed < 4100   ? 0
                            : failed < 4200 ? 10000
                            : failed < 4300 ? 100000
                                            : 1000000;
    naps.push_back({failed + 1, length});
  }
  return naps;
}

struct BackOffCase {
  const char* name;
  size_t busy;
  size_t naps;
};

class SpinLockBackOff : public testing::TestWithParam<BackOffCase> {};

TEST_P(SpinLockBackOff, SleepsByTheTriesThatFailed) {
  orbtest::CallScript script;
  script.busy_tries = GetParam().busy;
  long word = 0;
  vxSL_Get(&word);
  EXPECT_EQ(1, word);
  EXPECT_EQ(GetParam().busy + 1, script.tries);
  ASSERT_EQ(GetParam().naps, script.naps.size());
  const auto expected = expected_naps(GetParam().busy);
  for (size_t nap = 0; nap < expected.size(); ++nap) {
    ASSERT_EQ(expected[nap].first, script.naps[nap].after_tries) << nap;
    ASSERT_EQ(expected[nap].second, script.naps[nap].microseconds) << nap;
  }
}

INSTANTIATE_TEST_SUITE_P(Tries, SpinLockBackOff,
                         testing::Values(BackOffCase{"FreeWordNeedsOneTry", 0, 0},
                                         BackOffCase{"Tries0To3999SpinOn", 4000, 0},
                                         BackOffCase{"Try4000SleepsFirst", 4001, 1},
                                         BackOffCase{"Try4099EndsTheFirstStep", 4100, 100},
                                         BackOffCase{"Try4100Sleeps10Ms", 4101, 101},
                                         BackOffCase{"Try4200Sleeps100Ms", 4201, 201},
                                         BackOffCase{"Try4300SleepsOneSecond", 4301, 301},
                                         BackOffCase{"Try4399SleepsLast", 4400, 400},
                                         BackOffCase{"QuirkFrom4400OnItSpinsAgain", 6000, 400}),
                         [](const auto& row) { return row.param.name; });

TEST(SpinLock, GuardsACounterOfFourThreads) {
  constexpr int kRounds = 2000;
  long word = 0;
  int counter = 0;  // guarded by word
  std::vector<std::thread> threads;
  for (int each = 0; each < 4; ++each) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        vxSL_Get(&word);
        ++counter;
        vxSL_Release(&word);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(4 * kRounds, counter);
  EXPECT_EQ(0, word);
}

}  // namespace
