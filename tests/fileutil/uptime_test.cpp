// tests/fileutil/uptime_test.cpp: seconds since the boot and milliseconds of the tick count.
#include <gtest/gtest.h>
#include <sys/times.h>
#include <unistd.h>

#include <chrono>
#include <fstream>

#include "fileutil/clock.h"
#include "fileutil/timestamp.h"
#include "tests/support/fake_system.h"

namespace {

using namespace quillon_com::orb;
using orbtest::FakeSystem;

TEST(Uptime, IsTheClockLessTheBoot) {
  FakeSystem system;
  system.now = 1709622489;
  system.boot = 1709622400;
  EXPECT_EQ(89, uptime_seconds(system));
  system.boot = 0;
  EXPECT_EQ(1709622489, uptime_seconds(system));
}

TEST(Uptime, AClockSetBackBehindTheBootIsNegative) {
  FakeSystem system;
  system.now = 100;
  system.boot = 150;
  EXPECT_EQ(-50, uptime_seconds(system));
}

TEST(Uptime, AnUnknownBootIsTheLargestNumberOf32Bits) {
  FakeSystem system;
  system.now = 1709622489;
  EXPECT_EQ(2147483647, uptime_seconds(system));
}

TEST(Uptime, OfTheRunningMachine) {
  const auto stated = [] {
    double seconds = -1;
    std::ifstream("/proc/uptime") >> seconds;
    return seconds;
  };
  const double before = stated();
  const long both[] = {voxcomn_get_system_uptime(), get_system_uptime_osx()};
  const double after = stated();
  ASSERT_GE(before, 0);
  for (const long uptime : both) {
    EXPECT_GE(static_cast<double>(uptime), before - 2);
    EXPECT_LE(static_cast<double>(uptime), after + 2);
  }
}

struct TickCase {
  const char* name;
  platform::TickCount count;
  uint64_t milliseconds;
};

class Ticks : public testing::TestWithParam<TickCase> {};

TEST_P(Ticks, AreMilliseconds) {
  FakeSystem system;
  system.ticks = GetParam().count;
  EXPECT_EQ(GetParam().milliseconds, tick_milliseconds(system));
}

INSTANTIATE_TEST_SUITE_P(Lengths, Ticks,
                         testing::Values(TickCase{"AHundredASecond", {1234, 100}, 12340},
                                         TickCase{"AThousandASecond", {1234, 1000}, 1234},
                                         TickCase{"AMillionASecondIsCut", {1999, 1000000}, 1},
                                         TickCase{"SixtyASecondIsCut", {1, 60}, 16},
                                         TickCase{"None", {0, 100}, 0},
                                         TickCase{"BeyondThirtyTwoBits",
                                                  {INT64_C(5000000000), 100},
                                                  UINT64_C(50000000000)},
                                         TickCase{"AnUnknownLengthIsZero", {1234, -1}, 0},
                                         TickCase{"NoLengthIsZero", {1234, 0}, 0}),
                         [](const auto& test) { return test.param.name; });

TEST(Ticks, OfTheRunningMachine) {
  const auto own = [] {
    tms used{};
    return static_cast<uint64_t>(times(&used)) * 1000 / static_cast<uint64_t>(sysconf(_SC_CLK_TCK));
  };
  const uint64_t before = own();
  const uint64_t count = voxGetTickCount();
  EXPECT_LE(before, count);
  EXPECT_LE(count, own());
}

TEST(Ticks, RunWithTheClock) {
  using std::chrono::steady_clock;
  const auto begin = steady_clock::now();
  const uint64_t before = voxGetTickCount();
  uint64_t passed = 0;
  while (passed < 100) passed = voxGetTickCount() - before;
  EXPECT_GE(steady_clock::now() - begin, std::chrono::milliseconds(70)) << "two ticks less";
}

}  // namespace
