// tests/fileutil/timestamp_test.cpp: stamps of scripted clocks and of the machine's in many zones.
#include "fileutil/timestamp.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "fileutil/clock.h"
#include "fileutil/conversions.h"
#include "tests/support/broken_down.h"
#include "tests/support/fake_system.h"
#include "tests/support/faults.h"
#include "tests/support/forwarding_system.h"
#include "tests/support/scoped_environment.h"

namespace {

using namespace quillon_com::orb;
using orbtest::broken_down;
using orbtest::FakeSystem;
using orbtest::ScopedTimeZone;

// What every stamp makes of one broken-down time.
struct StampCase {
  const char* name;
  tm time;
  const char* dashed;
  const char* compact;
};

class Stamp : public testing::TestWithParam<StampCase> {};

TEST_P(Stamp, DashedIsOfTheLocalTime) {
  FakeSystem system;
  system.broken_down = GetParam().time;
  EXPECT_EQ(GetParam().dashed, dashed_stamp(system));
}

TEST_P(Stamp, CompactIsOfTheLocalTime) {
  FakeSystem system;
  system.broken_down = GetParam().time;
  char text[40];
  EXPECT_EQ(static_cast<int>(strlen(GetParam().compact)), local_stamp(system, text, sizeof text));
  EXPECT_STREQ(GetParam().compact, text);
  wchar_t wide[40];
  local_stamp(system, wide, 40);
  EXPECT_EQ(std::wstring(text, text + strlen(text)), wide);
}

TEST_P(Stamp, CompactIsOfTheUtcTime) {
  FakeSystem system;
  system.utc = GetParam().time;
  wchar_t wide[40];
  utc_stamp(system, wide, 40);
  EXPECT_EQ(std::wstring(GetParam().compact, GetParam().compact + strlen(GetParam().compact)),
            wide);
}

INSTANTIATE_TEST_SUITE_P(
    Times, Stamp,
    testing::Values(StampCase{"EveryFieldIsPadded", broken_down(2024, 3, 5, 7, 8, 9),
                              "2024-03-05 07:08:09", "20240305070809"},
                    StampCase{"LastSecondOfAYear", broken_down(1999, 12, 31, 23, 59, 59),
                              "1999-12-31 23:59:59", "19991231235959"},
                    StampCase{"LeapDay", broken_down(2024, 2, 29, 0, 0, 0), "2024-02-29 00:00:00",
                              "20240229000000"},
                    StampCase{"LeapSecond", broken_down(2016, 12, 31, 23, 59, 60),
                              "2016-12-31 23:59:60", "20161231235960"},
                    StampCase{"AYearOfThreeDigits", broken_down(987, 1, 2, 3, 4, 5),
                              " 987-01-02 03:04:05", "09870102030405"},
                    StampCase{"AYearOfOneDigit", broken_down(7, 1, 2, 3, 4, 5),
                              "   7-01-02 03:04:05", "00070102030405"},
                    StampCase{"TheYearZero", broken_down(0, 1, 2, 3, 4, 5), "   0-01-02 03:04:05",
                              "00000102030405"},
                    StampCase{"ANegativeYear", broken_down(-12, 1, 2, 3, 4, 5),
                              " -12-01-02 03:04:05", "-0120102030405"},
                    StampCase{"AYearOfFiveDigits", broken_down(12345, 10, 11, 12, 13, 14),
                              "12345-10-11 12:13:14", "123451011121314"}),
    [](const auto& test) { return test.param.name; });

TEST(Stamp, TheLastYearOfAll) {
  FakeSystem system;
  system.broken_down = broken_down(1900, 10, 11, 12, 13, 14);
  system.broken_down->tm_year = INT_MAX;
  EXPECT_EQ("2147485547-10-11 12:13:14", dashed_stamp(system));
  char text[40];
  EXPECT_EQ(20, local_stamp(system, text, sizeof text));
  EXPECT_STREQ("21474855471011121314", text);
}

TEST(Stamp, FieldsOutOfAnyRangeAreCutAt31Characters) {
  FakeSystem system;
  tm& time = system.broken_down.emplace();
  time.tm_year = time.tm_mon = time.tm_mday = time.tm_hour = time.tm_min = time.tm_sec = INT_MIN;
  EXPECT_EQ("-2147481748--2147483647--214748", dashed_stamp(system));
  wchar_t wide[64];
  local_stamp(system, wide, 64);
  EXPECT_STREQ(L"-2147481748-2147483647-21474836", wide);
  char text[80];
  EXPECT_EQ(66, local_stamp(system, text, sizeof text));
  EXPECT_STREQ("-2147481748-2147483647-2147483648-2147483648-2147483648-2147483648", text);
}

// Passes the wall clock to the breakdown and notes what it was given.
class NotingSystem : public FakeSystem {
 public:
  bool local_time(time_t seconds, tm*) const override { return local = seconds, false; }
  bool utc_time(time_t seconds, tm*) const override { return utc_asked = seconds, false; }
  mutable time_t local = -1;
  mutable time_t utc_asked = -1;
};

TEST(Stamp, IsOfTheWallClock) {
  NotingSystem system;
  wchar_t wide[20];
  char text[20];
  voxSystemTime record;
  const std::vector<std::function<void()>> kLocal = {
      [&] { dashed_stamp(system); }, [&] { local_stamp(system, wide, 20); },
      [&] { local_stamp(system, text, 20); }, [&] { fill_system_time(system, &record); }};
  for (const auto& make : kLocal) {
    ++system.now;
    make();
    EXPECT_EQ(system.now, system.local);
    EXPECT_EQ(-1, system.utc_asked);
  }
  system.now = 99;
  utc_stamp(system, wide, 20);
  EXPECT_EQ(99, system.utc_asked);
  EXPECT_NE(99, system.local);
}

TEST(Stamp, ATimeThatCannotBeBrokenDownGivesEmptyTexts) {
  const FakeSystem system;
  EXPECT_EQ("", dashed_stamp(system));
  char text[20] = "old text";
  EXPECT_EQ(0, local_stamp(system, text, sizeof text));
  EXPECT_STREQ("", text);
  for (auto* make : {utc_stamp, static_cast<decltype(&utc_stamp)>(local_stamp)}) {
    wchar_t wide[4] = {L'#', L'#', L'#', L'#'};
    make(system, wide, 3);
    EXPECT_EQ(std::wstring(3, L'\0') + L"#", std::wstring(wide, 4));
  }
}

class Room : public testing::Test {
 protected:
  Room() { system_.broken_down = system_.utc = broken_down(2024, 3, 5, 7, 8, 9); }
  FakeSystem system_;
};

TEST_F(Room, NarrowIsCutAndTerminated) {
  for (const int size : {1, 2, 14, 15, 16, 30}) {
    std::string buffer(32, '#');
    EXPECT_EQ(14, local_stamp(system_, buffer.data(), size)) << size;
    const std::string kept = std::string("20240305070809").substr(0, static_cast<size_t>(size) - 1);
    EXPECT_EQ(kept + '\0' + std::string(31 - kept.size(), '#'), buffer) << size;
  }
}

TEST_F(Room, NarrowOfNoSizeWritesNothing) {
  for (const int size : {0, -1, INT_MIN}) {
    char text[4] = "old";
    EXPECT_EQ(0, local_stamp(system_, text, size));
    EXPECT_STREQ("old", text);
  }
  EXPECT_EQ(0, local_stamp(system_, static_cast<char*>(nullptr), 20));
}

TEST_F(Room, QuirkWideIsCutWithoutTerminator) {
  for (auto* make : {utc_stamp, static_cast<decltype(&utc_stamp)>(local_stamp)}) {
    for (const int size : {1, 13, 14, 15, 30}) {
      std::wstring buffer(32, L'#');
      make(system_, buffer.data(), size);
      std::wstring expected = L"20240305070809" + std::wstring(18, L'\0');
      expected = expected.substr(0, static_cast<size_t>(size));
      EXPECT_EQ(expected + std::wstring(32 - expected.size(), L'#'), buffer) << size;
    }
  }
}

TEST_F(Room, WideOfNoSizeWritesNothing) {
  for (auto* make : {utc_stamp, static_cast<decltype(&utc_stamp)>(local_stamp)}) {
    for (const int size : {0, -1, INT_MIN}) {
      wchar_t text[4] = L"old";
      make(system_, text, size);
      EXPECT_STREQ(L"old", text);
    }
    make(system_, nullptr, 20);
  }
}

TEST_F(Room, TheExportedFunctionsRefuseNoRoomToo) {
  char text[4] = "old";
  wchar_t wide[4] = L"old";
  EXPECT_EQ(0, voxcomn_CreateGmtTimeStampA(text, 0));
  EXPECT_EQ(0, voxcomn_CreateLocalTimeStampA(text, 0));
  EXPECT_EQ(0, voxcomn_CreateGmtTimeStampA(nullptr, 20));
  EXPECT_EQ(0, voxcomn_CreateLocalTimeStampA(nullptr, 20));
  voxcomn_CreateGmtTimeStampW(wide, 0);
  voxcomn_CreateLocalTimeStampW(wide, 0);
  voxcomn_CreateGmtTimeStampW(nullptr, 20);
  voxcomn_CreateLocalTimeStampW(nullptr, 20);
  EXPECT_STREQ("old", text);
  EXPECT_STREQ(L"old", wide);
}

// The running machine's clock at a chosen moment, in the C library's zone.
class MachineAt : public orbtest::ForwardingSystem {
 public:
  explicit MachineAt(time_t now) : ForwardingSystem(platform::host()), now_(now) {}
  time_t wall_clock() const override { return now_; }

 private:
  time_t now_;
};

struct ZoneCase {
  const char* name;
  const char* zone;
  time_t now;
  const char* local;
  const wchar_t* utc;
};

class Zones : public testing::TestWithParam<ZoneCase> {};

TEST_P(Zones, LocalAndUtc) {
  const ScopedTimeZone zone(GetParam().zone);
  const MachineAt machine(GetParam().now);
  EXPECT_EQ(GetParam().local, dashed_stamp(machine));
  wchar_t wide[15];
  utc_stamp(machine, wide, 15);
  EXPECT_STREQ(GetParam().utc, wide);
  std::string digits;
  for (const char* c = GetParam().local; *c != '\0'; ++c)
    if (*c >= '0' && *c <= '9') digits += *c;
  char text[15];
  EXPECT_EQ(14, local_stamp(machine, text, 15));
  EXPECT_EQ(digits, text);
  local_stamp(machine, wide, 15);
  EXPECT_EQ(std::wstring(digits.begin(), digits.end()), wide);
}

// 1709622489 is 2024-03-05 07:08:09 UTC, 1709164800 is 2024-02-29 00:00:00 UTC.
constexpr char kBerlin[] = "CET-1CEST,M3.5.0,M10.5.0/3";
INSTANTIATE_TEST_SUITE_P(
    Everywhere, Zones,
    testing::Values(
        ZoneCase{"Utc", "UTC0", 1709622489, "2024-03-05 07:08:09", L"20240305070809"},
        ZoneCase{"TheWesternEnd", "<-12>12", 1709622489, "2024-03-04 19:08:09", L"20240305070809"},
        ZoneCase{"TheEasternEnd", "<+14>-14", 1709622489, "2024-03-05 21:08:09", L"20240305070809"},
        ZoneCase{"HalfAnHour", "IST-5:30", 1709622489, "2024-03-05 12:38:09", L"20240305070809"},
        ZoneCase{"LeapDayInTheEastAlone", "<+14>-14", 1709164799, "2024-02-29 13:59:59",
                 L"20240228235959"},
        ZoneCase{"LeapDayInUtcAlone", "<-12>12", 1709164800, "2024-02-28 12:00:00",
                 L"20240229000000"},
        ZoneCase{"BeforeSummerTime", kBerlin, 1711846799, "2024-03-31 01:59:59", L"20240331005959"},
        ZoneCase{"InSummerTime", kBerlin, 1711846800, "2024-03-31 03:00:00", L"20240331010000"},
        ZoneCase{"LastOfSummerTime", kBerlin, 1729990799, "2024-10-27 02:59:59", L"20241027005959"},
        ZoneCase{"TheSameHourAgain", kBerlin, 1729990800, "2024-10-27 02:00:00", L"20241027010000"},
        ZoneCase{"BeforeTheEpoch", "UTC0", -1, "1969-12-31 23:59:59", L"19691231235959"},
        ZoneCase{"BeyondThirtyTwoBits", "UTC0", 4102444800, "2100-01-01 00:00:00",
                 L"21000101000000"}),
    [](const auto& test) { return test.param.name; });

TEST(Stamp, AYearThatDoesNotFitGivesNothing) {
  const MachineAt machine(INT64_MAX);
  EXPECT_EQ("", dashed_stamp(machine));
  wchar_t wide[3] = L"##";
  utc_stamp(machine, wide, 2);
  EXPECT_STREQ(L"", wide);
}

// What `make` gives lies between what strftime makes of the moments before and behind it.
void expect_now(const char* format, bool utc, const std::function<std::string()>& make) {
  const auto formatted = [format, utc] {
    const time_t now = time(nullptr);
    tm time{};
    if (utc)
      gmtime_r(&now, &time);
    else
      localtime_r(&now, &time);
    char text[64];
    return std::string(text, strftime(text, sizeof text, format, &time));
  };
  const std::string before = formatted();
  const std::string made = make();
  const std::string after = formatted();
  EXPECT_LE(before, made);
  EXPECT_LE(made, after);
  EXPECT_EQ(before.size(), made.size());
}

class HostStamp : public testing::TestWithParam<const char*> {};

TEST_P(HostStamp, IsTheTimeInTheZone) {
  const ScopedTimeZone zone(GetParam());
  constexpr char kCompact[] = "%Y%m%d%H%M%S";
  expect_now("%Y-%m-%d %H:%M:%S", false, voxcomn_get_time_stamp_ansi);
  expect_now("%Y-%m-%d %H:%M:%S", false,
             [] { return voxcomn_wide_to_ansi(voxcomn_get_time_stamp_wide()); });
  expect_now(kCompact, false, [] {
    char text[15];
    return std::string(text, static_cast<size_t>(voxcomn_CreateLocalTimeStampA(text, 15)));
  });
  expect_now(kCompact, false, [] {
    wchar_t text[15];
    voxcomn_CreateLocalTimeStampW(text, 15);
    return voxcomn_wide_to_ansi(text);
  });
  expect_now(kCompact, true, [] {
    wchar_t text[15];
    voxcomn_CreateGmtTimeStampW(text, 15);
    return voxcomn_wide_to_ansi(text);
  });
}

TEST_P(HostStamp, QuirkNarrowGmtIsLocalTime) {
  const ScopedTimeZone zone(GetParam());
  expect_now("%Y%m%d%H%M%S", false, [] {
    char text[15];
    return std::string(text, static_cast<size_t>(voxcomn_CreateGmtTimeStampA(text, 15)));
  });
}

TEST_P(HostStamp, QuirkSystemTimeIsLocalTime) {
  const ScopedTimeZone zone(GetParam());
  expect_now("%Y %m %d %H %M %S %w", false, [] {
    voxSystemTime record;
    EXPECT_EQ(&record, voxGetSystemTime(&record));
    char text[64];
    snprintf(text, sizeof text, "%04d %02d %02d %02d %02d %02d %d", record.year, record.month,
             record.day, record.hour, record.minute, record.second, record.dayOfWeek);
    return std::string(text);
  });
}

INSTANTIATE_TEST_SUITE_P(Zones, HostStamp,
                         testing::Values("UTC0", "<-12>12", "<+14>-14", "EST5EDT", "IST-5:30"));

TEST(Stamp, WithoutMemoryIsEmpty) {
  const size_t requests = orbtest::for_each_memory_fault([](size_t nth, orbtest::Failing failing) {
    std::string stamp;
    std::wstring wide;
    size_t failures = 0;
    {
      orbtest::MemoryFaults faults(nth, failing);
      stamp = voxcomn_get_time_stamp_ansi();
      wide = voxcomn_get_time_stamp_wide();
      failures = faults.failures();
    }
    EXPECT_TRUE(stamp.empty() || stamp.size() == 19) << stamp;
    EXPECT_TRUE(wide.empty() || wide.size() == 19);
    EXPECT_EQ(failures > 0, stamp.empty() || wide.empty());
    return failures;
  });
  EXPECT_GE(requests, 2u);
}

TEST(Stamp, FromSeveralThreads) {
  const ScopedTimeZone zone("<+14>-14");
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      std::string last;
      for (int turn = 0; turn < 2000; ++turn) {
        const std::string stamp = voxcomn_get_time_stamp_ansi();
        EXPECT_EQ(19u, stamp.size());
        EXPECT_LE(last, stamp);
        last = stamp;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(Delay, QuirkReturnsAtOnce) {
  timespec before{};
  timespec after{};
  clock_gettime(CLOCK_MONOTONIC, &before);
  for (int i = 0; i < 1000; ++i) voxcomn_delay(UINTPTR_MAX);
  clock_gettime(CLOCK_MONOTONIC, &after);
  EXPECT_LT(after.tv_sec - before.tv_sec, 10);
}

}  // namespace
