// tests/system/clockjumps_test.cpp: identifiers, waits, stamps and uptime while the wall clock
// jumps both ways.
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <fstream>
#include <set>
#include <string>
#include <thread>

#include "fileutil/guid.h"
#include "fileutil/timestamp.h"
#include "portability/handles.h"
#include "sysprops/catalogue.h"
#include "tests/portability/handle_scope.h"
#include "tests/system/jumping_clock.h"
#include "tests/system/surroundings.h"

namespace {

using orbtest::jump_clock;
using orbtest::milliseconds_of;
using namespace quillon_com::orb;

constexpr int64_t kHour = 3600;
constexpr int64_t kYear = 365 * 24 * kHour;

class ClockJump : public testing::Test {
 private:
  orbtest::JumpingClock back_again_;
};

// Behind the first one's clock each gets a sequence of its own; ahead of it the time differs.
TEST_F(ClockJump, IdentifiersStayDifferent) {
  std::set<std::string> seen;
  const auto make = [&seen] {
    char text[40] = {};
    ASSERT_EQ(1, voxcomn_create_guid(nullptr, text, 39));
    EXPECT_TRUE(seen.insert(text).second) << text;
  };
  make();
  for (int round = 1; round <= 200; ++round) {
    for (const int64_t seconds : {-kHour * round, kHour * round}) {
      jump_clock(seconds);
      make();
    }
  }
}

TEST_F(ClockJump, AWaitWhoseDeadlineIsPastEndsAtOnce) {
  const orbtest::Handle event = orbtest::make_event();
  jump_clock(-kHour);
  EXPECT_GT(1000, milliseconds_of([&] {
              EXPECT_EQ(uint64_t{WAIT_TIMEOUT}, voxWaitForSingleObject(event.get(), 60'000));
            }));
  voxSetEvent(event.get());
  EXPECT_EQ(uint64_t{WAIT_OBJECT_0}, voxWaitForSingleObject(event.get(), 0));
}

TEST_F(ClockJump, AWaitWhoseDeadlineIsFarEndsWithItsSignal) {
  const orbtest::Handle event = orbtest::make_event();
  jump_clock(kHour);
  std::thread setter([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    voxSetEvent(event.get());
  });
  EXPECT_EQ(uint64_t{WAIT_OBJECT_0}, voxWaitForSingleObject(event.get(), 10));
  setter.join();
}

TEST_F(ClockJump, TurnsOfAMultipleWaitAreCountedAllTheSame) {
  const orbtest::Handle first = orbtest::make_event();
  const orbtest::Handle second = orbtest::make_event();
  void* const handles[] = {first.get(), second.get()};
  jump_clock(-kHour);
  EXPECT_EQ(uint64_t{WAIT_TIMEOUT}, voxWaitForMultipleObjects(2, handles, 0, 25));
  voxSetEvent(second.get());
  EXPECT_EQ(uint64_t{WAIT_OBJECT_0} + 1, voxWaitForMultipleObjects(2, handles, 0, 25));
}

TEST_F(ClockJump, WaitersAndSettersLoseNoSignal) {
  const orbtest::Handle mutex = orbtest::make_mutex();
  std::atomic<bool> done{false};
  std::thread clock([&] {
    for (int64_t jump = 1; !done; ++jump) {
      jump_clock(jump % 2 == 0 ? -kHour : 0);
      std::this_thread::yield();
    }
  });
  long plain = 0;  // guarded by the mutex
  const auto use = [&] {
    for (int round = 0; round < 2000;) {
      if (voxWaitForSingleObject(mutex.get(), 5) != WAIT_OBJECT_0) continue;
      ++plain;
      ++round;
      voxReleaseMutex(mutex.get());
    }
  };
  std::thread other(use);
  use();
  other.join();
  done = true;
  clock.join();
  EXPECT_EQ(4000, plain);
}

TEST_F(ClockJump, UptimeAndTicksDoNotFollow) {
  const long uptime = voxcomn_get_system_uptime();
  const uint64_t ticks = voxGetTickCount();
  for (const int64_t seconds : {-10 * kYear, -kHour, kHour, 10 * kYear}) {
    jump_clock(seconds);
    EXPECT_LE(uptime, voxcomn_get_system_uptime() + 1) << seconds;
    EXPECT_GE(uptime + 60, voxcomn_get_system_uptime()) << seconds;
    EXPECT_LE(ticks, voxGetTickCount()) << seconds;
    EXPECT_GE(ticks + 60'000, voxGetTickCount()) << seconds;
  }
}

struct MomentCase {
  const char* name;
  int64_t seconds;  // since 1970, noon of a day, far enough from a new year in every zone
  const char* year;
};

void PrintTo(const MomentCase& row, std::ostream* out) { *out << row.name; }

class ClockMoment : public testing::TestWithParam<MomentCase> {
 private:
  orbtest::JumpingClock back_again_;
};

TEST_P(ClockMoment, IsStamped) {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  jump_clock(GetParam().seconds - std::chrono::duration_cast<std::chrono::seconds>(now).count());
  const std::string year = GetParam().year;
  EXPECT_EQ(year, voxcomn_get_time_stamp_ansi().substr(0, year.size()));
  EXPECT_EQ(year.size() + 15, voxcomn_get_time_stamp_ansi().size());
  EXPECT_EQ(year.size() + 15, voxcomn_get_time_stamp_wide().size());
  char text[32] = {};
  EXPECT_EQ(static_cast<int>(year.size()) + 10, voxcomn_CreateLocalTimeStampA(text, sizeof text));
  EXPECT_EQ(year, std::string(text).substr(0, year.size()));
  const std::wstring updated = voxcomn_get_last_update_time();
  EXPECT_EQ(std::wstring(year.begin(), year.end()), updated.substr(6, year.size()));
}

// 2,208,988,800 seconds lie between 1900 and 1970, 2^31 - 1 ends on 19 January 2038.
INSTANTIATE_TEST_SUITE_P(
    Years, ClockMoment,
    testing::Values(MomentCase{"Before1970", -2'208'988'800 + 40 * kYear, "1939"},
                    MomentCase{"After31Bits", 2'147'483'648 + kYear, "2039"},
                    MomentCase{"OfFiveDigits", 253'402'300'800 + kYear / 2, "10000"}),
    [](const auto& row) { return row.param.name; });

// A container that was started on a machine that runs a day longer.
bool become_older() {
  if (unshare(CLONE_NEWTIME) != 0) return false;
  std::ofstream("/proc/self/timens_offsets") << "boottime 86400 0\nmonotonic 86400 0\n";
  return true;
}

TEST(TimeNamespace, UptimeIsThatOfTheNameSpace) {
  const long outside = voxcomn_get_system_uptime();
  EXPECT_IN(become_older, [outside] {
    // The name space holds for children.
    EXPECT_EQ("", orbtest::outcome_in_child([outside] {
                EXPECT_LE(outside + 86'400, voxcomn_get_system_uptime() + 1);
                EXPECT_GE(outside + 86'460, voxcomn_get_system_uptime());
                const orbtest::Handle event = orbtest::make_event();
                EXPECT_GT(5000, milliseconds_of([&] {
                            EXPECT_EQ(uint64_t{WAIT_TIMEOUT},
                                      voxWaitForSingleObject(event.get(), 20));
                          }));
              }));
  });
}

}  // namespace
