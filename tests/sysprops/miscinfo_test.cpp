// tests/sysprops/miscinfo_test.cpp: users, time zone, time of collection and language.
#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "sysprops/collect.h"
#include "tests/support/broken_down.h"
#include "tests/support/fake_system.h"
#include "tests/support/scoped_environment.h"

namespace {

using namespace quillon_com::orb::sysprops;
using orbtest::broken_down;
using orbtest::FakeSystem;
using orbtest::ScopedEnvironment;
using quillon_com::orb::platform::SessionEntry;

constexpr int kUserProcess = 7;

MiscInformation collected(const FakeSystem& system) {
  MiscInformation record;
  EXPECT_TRUE(collect_misc(system, record));
  return record;
}

struct UserCase {
  const char* name;
  std::vector<SessionEntry> sessions;
  std::map<std::string, std::string> groups;
  std::wstring users;
};

class MiscUsers : public testing::TestWithParam<UserCase> {};

TEST_P(MiscUsers, AreJoined) {
  FakeSystem system;
  system.sessions = GetParam().sessions;
  system.groups = GetParam().groups;
  EXPECT_EQ(GetParam().users, collected(system).userName);
}

INSTANTIATE_TEST_SUITE_P(
    Sessions, MiscUsers,
    testing::Values(
        UserCase{"QuirkNobodyIsNAWithoutASlash", {}, {}, L"NA"},
        UserCase{"QuirkNoUserProcessIsNAWithoutASlash", {{2, "~", "reboot", "~"}}, {}, L"NA"},
        UserCase{"OneLocalUser", {{kUserProcess, "1", "Jane", "tty1"}}, {}, L"jane"},
        UserCase{"DirectoryUsersBeforeLocalOnes",
                 {{kUserProcess, "1", "abe", "tty1"}, {kUserProcess, "2", "zoe", "tty2"}},
                 {{"zoe", "CORP\\Domain Users"}},
                 L"corp\\zoe,abe"},
        UserCase{"NonAsciiNamesAreWidened",
                 {{kUserProcess, "1", "j\xC3\xB6rg", "tty1"}},
                 {},
                 L"j\u00F6rg"}),
    [](const auto& row) { return row.param.name; });

TEST(MiscInfo, AHundredAndTwentyEightCharactersOfUsersAreCut) {
  FakeSystem system;
  for (char c = 'a'; c <= 'd'; ++c)  // 4 names of 31 and 3 commas: 127; with the fifth: 129
    system.sessions.push_back({kUserProcess, "1", std::string(31, c), "tty"});
  const std::wstring four = std::wstring(31, L'a') + L"," + std::wstring(31, L'b') + L"," +
                            std::wstring(31, L'c') + L"," + std::wstring(31, L'd');
  EXPECT_EQ(four, collected(system).userName);
  system.rewind_sessions();
  system.sessions.push_back({kUserProcess, "1", "e", "tty"});
  // Cut at 128 the text ends in "d,": fewer than four characters from its last comma on.
  EXPECT_EQ(four + L",", collected(system).userName);
}

TEST(MiscInfo, ZoneIsTheLibrarysNameInWideForm) {
  FakeSystem system;
  system.zone = "CET";
  EXPECT_EQ(L"CET", collected(system).timeZone);
  system.zone = "";
  EXPECT_EQ(L"", collected(system).timeZone);
  system.zone = "H\xC3\xA4";
  EXPECT_EQ(L"H\u00E4", collected(system).timeZone);
}

struct StampCase {
  const char* name;
  std::optional<tm> local;
  std::wstring stamp;
};

class MiscStamp : public testing::TestWithParam<StampCase> {};

TEST_P(MiscStamp, IsMonthFirst) {
  FakeSystem system;
  system.broken_down = GetParam().local;
  MiscInformation record;
  record.lastUpdate = L"old";
  EXPECT_TRUE(collect_misc(system, record));
  EXPECT_EQ(GetParam().stamp, record.lastUpdate);
}

INSTANTIATE_TEST_SUITE_P(
    Times, MiscStamp,
    testing::Values(
        StampCase{"MonthThenDay", broken_down(2024, 2, 3, 9, 7, 5), L"02/03/2024 09:07:05"},
        StampCase{"LastSecondOfAYear", broken_down(1999, 12, 31, 23, 59, 59),
                  L"12/31/1999 23:59:59"},
        StampCase{"LeapSecond", broken_down(2016, 12, 31, 23, 59, 60), L"12/31/2016 23:59:60"},
        StampCase{"AYearOfThreeDigitsIsPadded", broken_down(987, 1, 1, 0, 0, 0),
                  L"01/01/0987 00:00:00"},
        StampCase{"AYearOfFiveDigitsIsWhole", broken_down(12345, 10, 10, 10, 10, 10),
                  L"10/10/12345 10:10:10"},
        StampCase{"NoLocalFormLeavesTheField", std::nullopt, L"old"}),
    [](const auto& row) { return row.param.name; });

TEST(MiscInfo, TheLargestYearIsWrittenWhole) {
  FakeSystem system;
  system.broken_down = broken_down(1900, 1, 1, 0, 0, 0);
  system.broken_down->tm_year = 2147483647;
  EXPECT_EQ(L"01/01/2147485547 00:00:00", collected(system).lastUpdate);
}

// Answers the local time of the second that it is asked for, in a zone two hours ahead.
class ClockSystem : public FakeSystem {
 public:
  bool local_time(time_t seconds, tm* out) const override {
    const time_t ahead = seconds + 2 * 3600;
    return gmtime_r(&ahead, out) != nullptr;
  }
};

TEST(MiscInfo, StampIsTheLocalTimeOfTheClock) {
  ClockSystem system;
  system.now = 1706951225;  // 3 February 2024, 09:07:05 UTC
  EXPECT_EQ(L"02/03/2024 11:07:05", collected(system).lastUpdate);
}

struct LanguageCase {
  const char* name;
  std::optional<std::string> lang;
  std::wstring id;
};

class MiscLanguage : public testing::TestWithParam<LanguageCase> {};

TEST_P(MiscLanguage, ComesFromLang) {
  const ScopedEnvironment lang("LANG", GetParam().lang);
  EXPECT_EQ(GetParam().id, collected(FakeSystem()).defaultLangId);
}

std::string every_byte() {
  std::string bytes;
  for (int c = 1; c < 256; ++c) bytes += static_cast<char>(c);
  return bytes;
}

INSTANTIATE_TEST_SUITE_P(
    Values, MiscLanguage,
    testing::Values(
        LanguageCase{"Unset", std::nullopt, L"0409"}, LanguageCase{"Empty", "", L"0409"},
        LanguageCase{"PlainEnglish", "en_US.UTF-8", L"0409"},
        LanguageCase{"AnotherLanguage", "de_DE.UTF-8", L"0409"},
        LanguageCase{"BritishEnglish", "en_UK", L"0809"},
        LanguageCase{"BritishEnglishWithCodeSet", "en_UK.UTF-8", L"0809"},
        LanguageCase{"BritishEnglishInside", "xen_UKx", L"0809"},
        LanguageCase{"TheUsualBritishNameIsNotIt", "en_GB.UTF-8", L"0409"},
        LanguageCase{"Japanese", "ja_JP", L"0411"},
        LanguageCase{"JapaneseWithCodeSet", "ja_JP.eucJP", L"0411"},
        LanguageCase{"JapaneseInside", "/locale/ja_JP@x", L"0411"},
        LanguageCase{"BritishBeforeJapanese", "ja_JP:en_UK", L"0809"},
        LanguageCase{"AnotherLetterCase", "JA_jp", L"0409"},
        LanguageCase{"CutShort", "en_U", L"0409"}, LanguageCase{"EveryByte", every_byte(), L"0409"},
        LanguageCase{"EveryByteAroundJapanese", every_byte() + "ja_JP" + every_byte(), L"0411"},
        LanguageCase{"AMegabyte", std::string(100000, 'e') + "n_UK", L"0809"}),
    [](const auto& row) { return row.param.name; });

TEST(MiscInfo, OnlyLangDecidesTheLanguage) {
  const ScopedEnvironment lang("LANG", std::nullopt);
  const ScopedEnvironment all("LC_ALL", "ja_JP.UTF-8");
  const ScopedEnvironment messages("LC_MESSAGES", "en_UK");
  EXPECT_EQ(L"0409", collected(FakeSystem()).defaultLangId);
}

TEST(MiscInfo, ASecondCollectionReplacesEveryField) {
  FakeSystem system;
  system.sessions = {{kUserProcess, "1", "jane", "tty1"}};
  system.zone = "CET";
  system.broken_down = broken_down(2024, 2, 3, 9, 7, 5);
  MiscInformation record = collected(system);
  system.sessions.clear();
  system.rewind_sessions();
  system.zone = "EET";
  system.broken_down->tm_sec = 6;
  const ScopedEnvironment lang("LANG", "ja_JP");
  EXPECT_TRUE(collect_misc(system, record));
  EXPECT_EQ(L"NA", record.userName);
  EXPECT_EQ(L"EET", record.timeZone);
  EXPECT_EQ(L"02/03/2024 09:07:06", record.lastUpdate);
  EXPECT_EQ(L"0411", record.defaultLangId);
}

// Tells whether two threads were ever at the C library's zone at once, whose names a breakdown
// writes anew, and whether the name came before the time.
class ZoneWatch : public FakeSystem {
 public:
  bool zone_name(std::string* name) const override {
    visit();
    named = true;
    *name = "CET";
    return true;
  }
  bool local_time(time_t, tm*) const override {
    visit();
    if (!named) time_before_name = true;
    return false;
  }

  mutable std::atomic<bool> overlapped{false};
  mutable std::atomic<bool> named{false};
  mutable std::atomic<bool> time_before_name{false};

 private:
  void visit() const {
    if (inside_.fetch_add(1) != 0) overlapped = true;
    for (int turn = 0; turn < 50; ++turn) std::this_thread::yield();
    inside_.fetch_sub(1);
  }

  mutable std::atomic<int> inside_{0};
};

TEST(MiscInfo, OneThreadAtATimeIsAtTheZone) {
  const ZoneWatch system;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&system] {
      for (int round = 0; round < 100; ++round) {
        MiscInformation record;
        collect_misc(system, record, kTimeZone);
        ASSERT_EQ(L"CET", record.timeZone);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_FALSE(system.overlapped);
}

TEST(MiscInfo, ReadsTheZoneBeforeTheTimeMakesTheLibraryLookAtIt) {
  const ZoneWatch system;
  MiscInformation record;
  collect_misc(system, record);
  EXPECT_TRUE(system.named);
  EXPECT_FALSE(system.time_before_name);
}

}  // namespace
