// tests/fileutil/utctime_test.cpp: broken-down UTC time to seconds, TZ behind it, the zone's name.
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "fileutil/clock.h"
#include "fileutil/timestamp.h"
#include "tests/support/fake_system.h"
#include "tests/support/faults.h"
#include "tests/support/scoped_environment.h"

namespace {

using namespace quillon_com::orb;
using orbtest::FakeSystem;
using orbtest::ScopedEnvironment;
using orbtest::ScopedTimeZone;

using Fields = std::vector<int>;  // year, month, day, hour, minute, second, day of week and of year

tm given(int year, int month, int day, int hour, int minute, int second, int summer = 0) {
  tm time{};
  time.tm_year = year - 1900;
  time.tm_mon = month - 1;
  time.tm_mday = day;
  time.tm_hour = hour;
  time.tm_min = minute;
  time.tm_sec = second;
  time.tm_isdst = summer;
  time.tm_wday = time.tm_yday = -77;
  return time;
}

Fields fields_of(const tm& time) {
  return {time.tm_year, time.tm_mon, time.tm_mday, time.tm_hour,
          time.tm_min,  time.tm_sec, time.tm_wday, time.tm_yday};
}

struct UtcCase {
  const char* name;
  tm time;
  time_t seconds;
  Fields normalised;
};

class UtcTime : public testing::TestWithParam<UtcCase> {};

TEST_P(UtcTime, GivesSecondsAndNormalises) {
  tm time = GetParam().time;
  EXPECT_EQ(GetParam().seconds, qlncomn_timegm(&time));
  EXPECT_EQ(GetParam().normalised, fields_of(time));
  EXPECT_EQ(0, time.tm_isdst);
  EXPECT_EQ(0, time.tm_gmtoff);
  EXPECT_STREQ("UTC", time.tm_zone);
}

TEST_P(UtcTime, IsTheSameInAnyZone) {
  for (const auto& zone :
       {std::optional<std::string>("CET-1CEST,M3.5.0,M10.5.0/3"),
        std::optional<std::string>("<-12>12"), std::optional<std::string>("right/Europe/Berlin"),
        std::optional<std::string>(), std::optional<std::string>("")}) {
    const ScopedTimeZone scope(zone);
    tm time = GetParam().time;
    EXPECT_EQ(GetParam().seconds, qlncomn_timegm(&time)) << zone.value_or("unset");
    EXPECT_EQ(GetParam().normalised, fields_of(time)) << zone.value_or("unset");
  }
}

INSTANTIATE_TEST_SUITE_P(
    Times, UtcTime,
    testing::Values(
        UtcCase{"TheEpoch", given(1970, 1, 1, 0, 0, 0), 0, {70, 0, 1, 0, 0, 0, 4, 0}},
        UtcCase{"TheSecondBeforeIsMinusOne",
                given(1969, 12, 31, 23, 59, 59),
                -1,
                {69, 11, 31, 23, 59, 59, 3, 364}},
        UtcCase{
            "ATimeOfToday", given(2024, 3, 5, 7, 8, 9), 1709622489, {124, 2, 5, 7, 8, 9, 2, 64}},
        UtcCase{"LeapDay", given(2024, 2, 29, 0, 0, 0), 1709164800, {124, 1, 29, 0, 0, 0, 4, 59}},
        UtcCase{"NoLeapDayIn2023",
                given(2023, 2, 29, 0, 0, 0),
                1677628800,
                {123, 2, 1, 0, 0, 0, 3, 59}},
        UtcCase{
            "NoLeapDayIn1900", given(1900, 2, 29, 0, 0, 0), -2203891200, {0, 2, 1, 0, 0, 0, 4, 59}},
        UtcCase{
            "ALeapDayIn2000", given(2000, 2, 29, 0, 0, 0), 951782400, {100, 1, 29, 0, 0, 0, 2, 59}},
        UtcCase{"LastDayOfALeapYear",
                given(2024, 12, 31, 0, 0, 0),
                1735603200,
                {124, 11, 31, 0, 0, 0, 2, 365}},
        UtcCase{"LeapSecondIsTheNextMinute",
                given(2016, 12, 31, 23, 59, 60),
                1483228800,
                {117, 0, 1, 0, 0, 0, 0, 0}},
        UtcCase{
            "MonthThirteen", given(2023, 13, 1, 0, 0, 0), 1704067200, {124, 0, 1, 0, 0, 0, 1, 0}},
        UtcCase{"MonthZero", given(2024, 0, 1, 0, 0, 0), 1701388800, {123, 11, 1, 0, 0, 0, 5, 334}},
        UtcCase{"DayZero", given(2024, 3, 0, 0, 0, 0), 1709164800, {124, 1, 29, 0, 0, 0, 4, 59}},
        UtcCase{
            "MinusOneHour", given(2024, 3, 1, -1, 0, 0), 1709247600, {124, 1, 29, 23, 0, 0, 4, 59}},
        UtcCase{"AMillionSeconds",
                given(2024, 1, 1, 0, 0, 1000000),
                1705067200,
                {124, 0, 12, 13, 46, 40, 5, 11}},
        UtcCase{"QuirkSummerTimeIsAnHourEarlier",
                given(2024, 7, 1, 12, 0, 0, 1),
                1719831600,
                {124, 6, 1, 11, 0, 0, 1, 182}},
        UtcCase{"UnknownSummerTimeIsNone",
                given(2024, 7, 1, 12, 0, 0, -1),
                1719835200,
                {124, 6, 1, 12, 0, 0, 1, 182}}),
    [](const auto& test) { return test.param.name; });

// What mktime makes of `time` in a process whose zone is UTC, with the record that it leaves.
time_t mktime_in_utc(tm* time) {
  errno = 0;
  return mktime(time);
}

TEST(UtcConversion, AgreesWithMktimeInUtc) {
  const ScopedTimeZone zone("UTC0");
  std::mt19937_64 random(7);
  const auto number = [&random](int most) {
    const int magnitude = std::uniform_int_distribution<int>(0, most)(random);
    return random() % 2 != 0 ? magnitude : -magnitude;
  };
  int refused = 0;
  for (int turn = 0; turn < 200000; ++turn) {
    const int most = turn % 4 == 0 ? INT_MAX : turn % 4 == 1 ? 100000 : 400;
    tm time{};
    time.tm_year = number(most);
    time.tm_mon = number(most);
    time.tm_mday = number(most);
    time.tm_hour = number(most);
    time.tm_min = number(most);
    time.tm_sec = number(most);
    time.tm_isdst = number(1);
    tm expected = time;
    tm made = time;
    const time_t seconds = mktime_in_utc(&expected);
    const int error = errno;
    errno = 0;
    ASSERT_EQ(seconds, qlncomn_timegm(&made)) << "turn " << turn;
    ASSERT_EQ(error, errno) << "turn " << turn;
    ASSERT_EQ(fields_of(expected), fields_of(made)) << "turn " << turn;
    refused += error != 0;
  }
  EXPECT_GT(refused, 100);
}

TEST(UtcConversion, TheFirstAndLastSecondOfAll) {
  tm last = given(1900, 12, 31, 23, 59, 59);
  last.tm_year = INT_MAX;
  EXPECT_EQ(67768036191676799, qlncomn_timegm(&last));
  EXPECT_EQ((Fields{INT_MAX, 11, 31, 23, 59, 59, 3, 364}), fields_of(last));
  tm first = given(1900, 1, 1, 0, 0, 0);
  first.tm_year = INT_MIN;
  EXPECT_EQ(-67768040609740800, qlncomn_timegm(&first));
}

TEST(UtcConversion, AYearThatDoesNotFitIsRefused) {
  tm late = given(1900, 12, 31, 23, 59, 60);
  late.tm_year = INT_MAX;
  tm early = given(1900, 1, 0, 0, 0, 0);
  early.tm_year = INT_MIN;
  tm far = late;
  far.tm_mon = far.tm_mday = far.tm_hour = far.tm_min = far.tm_sec = INT_MAX;
  for (tm* time : {&late, &early, &far}) {
    const tm before = *time;
    errno = 0;
    EXPECT_EQ(-1, qlncomn_timegm(time));
    EXPECT_EQ(EOVERFLOW, errno);
    EXPECT_EQ(0, memcmp(&before, time, sizeof before)) << "untouched";
  }
}

TEST(UtcConversion, NullGivesMinusOne) { EXPECT_EQ(-1, qlncomn_timegm(nullptr)); }

struct VariableCase {
  const char* name;
  std::optional<std::string> before;
  std::optional<std::string> after;
};

class ZoneVariable : public testing::TestWithParam<VariableCase> {};

TEST_P(ZoneVariable, BehindAConversion) {
  const ScopedTimeZone zone(GetParam().before);
  tm time = given(2024, 3, 5, 7, 8, 9);
  EXPECT_EQ(1709622489, qlncomn_timegm(&time));
  const char* const value = getenv("TZ");
  EXPECT_EQ(GetParam().after, value != nullptr ? std::optional<std::string>(value) : std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Lengths, ZoneVariable,
    testing::Values(
        VariableCase{"AZoneStays", "CET-1CEST", "CET-1CEST"},
        VariableCase{"UnsetStaysUnset", std::nullopt, std::nullopt},
        VariableCase{"OneCharacterStays", "X", "X"},
        VariableCase{"TextOf1024CharactersStays", std::string(1024, 'x'), std::string(1024, 'x')},
        VariableCase{"QuirkTextOf1025CharactersIsLost", std::string(1025, 'x'), std::nullopt},
        VariableCase{"QuirkAnEmptyOneIsRemoved", "", std::nullopt}),
    [](const auto& test) { return test.param.name; });

TEST(ZoneVariable, IsLookedAtAnewBehindAConversion) {
  const ScopedTimeZone zone("AAA-1");
  const ScopedEnvironment changed("TZ", "BBB-2");
  std::wstring name;
  EXPECT_TRUE(qlncomn_gettimezone(name));
  EXPECT_EQ(L"AAA", name) << "no tzset yet";
  tm time = given(2024, 3, 5, 7, 8, 9);
  qlncomn_timegm(&time);
  EXPECT_TRUE(qlncomn_gettimezone(name));
  EXPECT_EQ(L"BBB", name);
}

TEST(ZoneVariable, IsLookedAtAnewBehindARefusedConversionToo) {
  const ScopedTimeZone zone("AAA-1");
  const ScopedEnvironment changed("TZ", "");
  tm time = given(1900, 12, 31, 23, 59, 60);
  time.tm_year = INT_MAX;
  EXPECT_EQ(-1, qlncomn_timegm(&time));
  EXPECT_EQ(nullptr, getenv("TZ"));
  std::wstring name;
  EXPECT_TRUE(qlncomn_gettimezone(name));
  EXPECT_NE(L"AAA", name);
}

TEST(UtcConversion, ShowsOtherThreadsNoOtherZone) {
  const ScopedTimeZone zone("XYZ-5");
  std::atomic<bool> done{false};
  std::vector<std::thread> converters;
  for (int i = 0; i < 2; ++i) {
    converters.emplace_back([&done] {
      while (!done) {
        tm time = given(2024, 3, 5, 7, 8, 9);
        EXPECT_EQ(1709622489, qlncomn_timegm(&time));
      }
    });
  }
  for (int turn = 0; turn < 20000; ++turn) {
    const time_t now = 1709622489;
    tm local{};
    localtime_r(&now, &local);
    ASSERT_EQ(12, local.tm_hour);
    ASSERT_STREQ("XYZ-5", getenv("TZ"));
  }
  done = true;
  for (std::thread& thread : converters) thread.join();
}

TEST(UtcConversion, StampsAndNamesFromThreadsAtOnce) {
  const ScopedTimeZone zone("XYZ-5");
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.emplace_back([] {
      for (int turn = 0; turn < 1000; ++turn) {
        tm time = given(2024, 3, 5, 7, 8, 9);
        EXPECT_EQ(1709622489, qlncomn_timegm(&time));
        std::wstring name;
        EXPECT_TRUE(qlncomn_gettimezone(name));
        EXPECT_EQ(L"XYZ", name);
        EXPECT_EQ(19u, voxcomn_get_time_stamp_ansi().size());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

struct AbbreviationCase {
  const char* name;
  std::string zone;
  std::wstring wide;
};

class Abbreviation : public testing::TestWithParam<AbbreviationCase> {};

TEST_P(Abbreviation, IsWide) {
  FakeSystem system;
  system.zone = GetParam().zone;
  std::wstring name = L"old";
  EXPECT_TRUE(zone_abbreviation(system, &name));
  EXPECT_EQ(GetParam().wide, name);
}

INSTANTIATE_TEST_SUITE_P(
    Names, Abbreviation,
    testing::Values(
        AbbreviationCase{"Usual", "CET", L"CET"}, AbbreviationCase{"EmptyIsAName", "", L""},
        AbbreviationCase{"Utf8", "H\xC3\xA4Z", L"H\u00E4Z"},
        AbbreviationCase{"InvalidUtf8EndsTheName", "AB\xFFZ", L"AB"},
        AbbreviationCase{"SixtyThreeBytesAreWhole", std::string(63, 'Z'), std::wstring(63, L'Z')},
        AbbreviationCase{"SixtyFourAreCut", std::string(64, 'Z'), std::wstring(63, L'Z')},
        AbbreviationCase{"ACharacterThatIsCutIsGone", std::string(62, 'Z') + "\xC3\xA4",
                         std::wstring(62, L'Z')}),
    [](const auto& test) { return test.param.name; });

TEST(Abbreviation, WithoutANameTheTextStays) {
  FakeSystem system;
  system.zone_known = false;
  std::wstring name = L"old";
  EXPECT_FALSE(zone_abbreviation(system, &name));
  EXPECT_EQ(L"old", name);
}

TEST(Abbreviation, QuirkIsThatOfTheLastTzset) {
  const ScopedTimeZone zone("CET-1CEST");
  const ScopedEnvironment changed("TZ", "EST5EDT");
  std::wstring name;
  EXPECT_TRUE(qlncomn_gettimezone(name));
  EXPECT_EQ(L"CET", name);
  tzset();
  EXPECT_TRUE(qlncomn_gettimezone(name));
  EXPECT_EQ(L"EST", name);
}

TEST(Abbreviation, IsOfTheStandardTimeInSummerToo) {
  const ScopedTimeZone zone("AAA-1BBB,0/0,J365/25");  // summer time all the year
  std::wstring name;
  EXPECT_TRUE(qlncomn_gettimezone(name));
  EXPECT_EQ(L"AAA", name);
}

TEST(Abbreviation, WithoutMemoryTheTextStays) {
  const ScopedTimeZone zone("<" + std::string(60, 'A') + ">3");
  const size_t requests = orbtest::for_each_memory_fault([](size_t nth, orbtest::Failing failing) {
    std::wstring name = L"old";
    bool known = false;
    size_t failures = 0;
    {
      orbtest::MemoryFaults faults(nth, failing);
      known = qlncomn_gettimezone(name);
      failures = faults.failures();
    }
    EXPECT_EQ(failures == 0, known);
    EXPECT_EQ(failures == 0 ? std::wstring(60, L'A') : L"old", name);
    return failures;
  });
  EXPECT_GE(requests, 1u);
}

}  // namespace
