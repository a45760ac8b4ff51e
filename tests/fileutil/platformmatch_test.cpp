// tests/fileutil/platformmatch_test.cpp: platform lists, rule by rule, and random ones against a
// plain form of the rules.
#include "fileutil/platformmatch.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/faults.h"
#include "tests/support/plain_platform_match.h"

namespace {

constexpr uint32_t kMatches = 0;
constexpr uint32_t kOutOfRange = 1;
constexpr uint32_t kNotNamed = 0x80000008;

struct MatchCase {
  const char* name;
  std::string platform;
  std::string list;
  uint32_t result;
};

class PlatformMatch : public testing::TestWithParam<MatchCase> {};

TEST_P(PlatformMatch, Result) {
  const auto& [name, platform, list, result] = GetParam();
  EXPECT_EQ(result, voxcomn_IsPlatformMatch(platform.c_str(), list.c_str()));
  EXPECT_EQ(result, orbtest::plain_platform_match(platform, list)) << "the plain form";
}

std::string named(const testing::TestParamInfo<MatchCase>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(
    Names, PlatformMatch,
    testing::Values(
        MatchCase{"SecondEntryWithoutRange", "MACX:10:15:7", "OTHR|MACX", kMatches},
        MatchCase{"AnotherName", "MACX:10:15:7", "OTHR", kNotNamed},
        MatchCase{"NoEntry", "MACX:10:15:7", "", kNotNamed},
        MatchCase{"BarsAloneAreNoEntries", "MACX:10:15:7", "|||", kNotNamed},
        MatchCase{"EmptyEntriesAreSkipped", "MACX", "||OTHR||MACX||", kMatches},
        MatchCase{"QuirkPartOfTheName", "MACX", "MAC", kMatches},
        MatchCase{"QuirkPartWithinTheName", "MACX", "AC", kMatches},
        MatchCase{"LongerThanTheName", "MAC", "MACX", kNotNamed},
        MatchCase{"OtherCase", "MACX", "macx", kNotNamed},
        MatchCase{"QuirkEmptyNameNamesEveryPlatform", "MACX:10:15:7", ":10:0:0-11:0:0", kMatches},
        MatchCase{"QuirkEmptyNameOutOfItsRange", "MACX:10:15:7", ":11:0:0-12:0:0", kOutOfRange},
        MatchCase{"TheVersionIsNoPartOfTheName", "MACX:10:15:7", "10", kNotNamed},
        MatchCase{"NoPlatformIsNamedByAName", "", "MACX", kNotNamed},
        MatchCase{"NoPlatformIsNamedByNoName", "", ":", kMatches},
        MatchCase{"AnotherNameThenOutOfRange", "MACX:10", "OTHR|MACX:11", kOutOfRange},
        MatchCase{"OutOfRangeThenAnotherName", "MACX:10", "MACX:11|OTHR", kOutOfRange}),
    named);

INSTANTIATE_TEST_SUITE_P(Blanks, PlatformMatch,
                         testing::Values(MatchCase{"InThePlatform", "M A C X : 1 0 : 1 5 : 7",
                                                   "MACX:10:15:7-10:15:7", kMatches},
                                         MatchCase{"InTheList", "MACX:10:15:7",
                                                   " O T H R | M A C X : 1 0 - 1 1 ", kMatches},
                                         MatchCase{"ABlankEntryIsNone", "MACX", " | ", kNotNamed},
                                         MatchCase{"ATabIsNoBlankInAName", "MACX", "M\tACX",
                                                   kNotNamed},
                                         MatchCase{"ATabBeforeANumberIsPassedOver", "MACX:\t10",
                                                   "MACX:\n10:\f0:0-\t10:\r0:0", kMatches}),
                         named);

INSTANTIATE_TEST_SUITE_P(
    Ranges, PlatformMatch,
    testing::Values(
        MatchCase{"Above", "MACX:10:15:7", "MACX:11:0:0-12:0:0", kOutOfRange},
        MatchCase{"Within", "MACX:10:15:7", "MACX:10:0:0-10:99:0", kMatches},
        MatchCase{"LowerBoundIncluded", "MACX:10:15:7", "MACX:10:15:7-11:0:0", kMatches},
        MatchCase{"JustBelow", "MACX:10:15:6", "MACX:10:15:7-11:0:0", kOutOfRange},
        MatchCase{"UpperBoundIncluded", "MACX:10:15:7", "MACX:10:0:0-10:15:7", kMatches},
        MatchCase{"JustAbove", "MACX:10:15:8", "MACX:10:0:0-10:15:7", kOutOfRange},
        MatchCase{"ReversedBounds", "MACX:10:15:7", "MACX:11:0:0-10:0:0", kOutOfRange},
        MatchCase{"LowerBoundAlone", "MACX:10:15:7", "MACX:10:0:0", kMatches},
        MatchCase{"LowerBoundAloneAbove", "MACX:10:15:7", "MACX:11", kOutOfRange},
        MatchCase{"UpperBoundAlone", "MACX:10:15:7", "MACX:-10:15:7", kOutOfRange},
        MatchCase{"UpperBoundBehindALowerOfZero", "MACX:10:15:7", "MACX:0-10:15:7", kMatches},
        MatchCase{"EmptyRangeIsOpen", "MACX:10:15:7", "MACX:", kMatches},
        MatchCase{"MissingNumbersOfTheLowerBoundAreZero", "MACX:10:0:0", "MACX:10-11", kMatches},
        MatchCase{"QuirkAnUpperBoundOfOneNumberEndsBeforeIt", "MACX:11:5:0", "MACX:10:0:0-11",
                  kOutOfRange},
        MatchCase{"NoVersionIsZero", "MACX", "MACX:0:0:0-0:0:0", kMatches},
        MatchCase{"NoVersionIsBelow", "MACX", "MACX:0:0:1", kOutOfRange},
        MatchCase{"VersionOfOneNumber", "MACX:10", "MACX:10:0:0-10:0:0", kMatches},
        MatchCase{"VersionOfTwoNumbers", "MACX:10:15", "MACX:10:15:0-10:15:0", kMatches},
        MatchCase{"AFourthNumberIsPassedOver", "MACX:10:15:7:9", "MACX:10:15:7-10:15:7:1",
                  kMatches},
        MatchCase{"AVersionWithoutNumbersIsZero", "MACX:x:15:7", "MACX:0:0:0-0:0:0", kMatches},
        MatchCase{"ANumberEndsAtALetter", "MACX:10x:15:7", "MACX:10:0:0-10:0:0", kMatches},
        MatchCase{"ASecondColonAtOnceEndsTheVersion", "MACX::15:7", "MACX:0:0:0-0:0:0", kMatches},
        MatchCase{"PlusSignsCountForNothing", "MACX:+10:+15:7", "MACX:+10:+15:+7-10:15:7",
                  kMatches},
        MatchCase{"LeadingZerosAreDecimal", "MACX:010:015:007", "MACX:10:15:7-10:15:7", kMatches},
        MatchCase{"OnlyTheFirstDashDivides", "MACX:10:15:7", "MACX:10-11:0:0-5", kMatches}),
    named);

// Keys are major x 2^48 + minor x 2^16 + build.
INSTANTIATE_TEST_SUITE_P(
    Keys, PlatformMatch,
    testing::Values(
        MatchCase{"QuirkABuildOf65536IsAMinor", "A:1:0:65536", "A:1:1:0-1:1:0", kMatches},
        MatchCase{"ABuildOf65535IsNone", "A:1:0:65535", "A:1:1:0-1:1:0", kOutOfRange},
        MatchCase{"AMinorOf65536IsNoMajor", "A:1:65536:0", "A:2:0:0-2:0:0", kOutOfRange},
        MatchCase{"TheLargestMinorIsBelowTheNextMajor", "A:1:2147483647:0", "A:1:0:0-2:0:0",
                  kMatches},
        // 1 x 2^48 - 2^16 is below 1 x 2^48.
        MatchCase{"QuirkANegativeMinorIsBelowItsMajor", "A:1:-1:0", "A:1:0:0-2:0:0", kOutOfRange},
        MatchCase{"QuirkANegativeMajorIsAboveAll", "A:-1:0:0", "A:65534:0:0", kOutOfRange},
        // 65535 x 2^48 - 2^16 + 65535 is the open upper bound.
        MatchCase{"TheOpenBoundHoldsMajor65534", "A:65534:2147483647:0", "A:0", kMatches},
        MatchCase{"QuirkTheOpenBoundDoesNotHoldMajor65535", "A:65535:0:0", "A:0", kOutOfRange},
        MatchCase{"TheOpenBoundItself", "A:65535:-1:65535", "A:0", kMatches},
        MatchCase{"AboveTheOpenBound", "A:65535:-1:65536", "A:0", kOutOfRange},
        MatchCase{"MajorsWrapAt16Bits", "A:65546:0:0", "A:10:0:0-10:0:0", kMatches},
        MatchCase{"TheLow32BitsOfALargeNumber", "A:4294967306", "A:10:0:0-10:0:0", kMatches},
        MatchCase{"ANumberBeyond64BitsIsAllOnes", "A:99999999999999999999", "A:65535:0:0-65535:0:0",
                  kMatches},
        MatchCase{"ANegativeNumberBeyond64BitsIsZero", "A:-99999999999999999999", "A:0:0:0-0:0:0",
                  kMatches}),
    named);

INSTANTIATE_TEST_SUITE_P(
    CarriedOver, PlatformMatch,
    testing::Values(
        MatchCase{"QuirkUpperBoundOfAnEarlierEntry", "MACX:15:0:0", "MAC:1:0:0-9:0:0|MACX:10:0:0",
                  kOutOfRange},
        MatchCase{"WithinTheUpperBoundOfAnEarlierEntry", "MACX:15:0:0",
                  "MAC:16:0:0-20:0:0|MACX:10:0:0", kMatches},
        MatchCase{"QuirkLowerNumbersOfAnEarlierEntry", "MACX:5:1:0", "MACX:9:3:0|MACX:5",
                  kOutOfRange},
        MatchCase{"LowerNumbersOfItsOwn", "MACX:5:1:0", "MACX:9:3:0|MACX:5:0", kMatches},
        MatchCase{"QuirkUpperNumbersOfAnEarlierEntry", "MACX:5:1:0",
                  "MACX:1:0:0-2:3:4|MACX:1:0:0-5", kMatches},
        MatchCase{"AboveTheUpperNumbersOfAnEarlierEntry", "MACX:5:3:5",
                  "MACX:1:0:0-2:3:4|MACX:1:0:0-5", kOutOfRange},
        MatchCase{"QuirkAnEmptyRangeIsThatOfAnEarlierEntry", "MACX:5", "MACX:6|MACX:", kOutOfRange},
        MatchCase{"NothingFromAnEntryOfAnotherName", "MACX:15:0:0", "OTHR:1:0:0-9:0:0|MACX:10:0:0",
                  kMatches},
        MatchCase{"NothingFromAnEarlierCall", "MACX:15:0:0", "MACX:10:0:0", kMatches}),
    named);

const std::string kLong = std::string(259, 'L');
INSTANTIATE_TEST_SUITE_P(
    Lengths, PlatformMatch,
    testing::Values(
        MatchCase{"PlatformOf259Characters", kLong, kLong, kMatches},
        MatchCase{"The260thOfThePlatformIsGone", kLong + "X", "X", kNotNamed},
        MatchCase{"The260thOfTheListIsGone", kLong, kLong + "X", kMatches},
        MatchCase{"TheVersionBeyondIsGone", kLong + ":5", "L:5", kOutOfRange},
        MatchCase{"EntriesBeyondAreGone", "MACX", std::string(258, 'x') + "|MACX", kNotNamed},
        MatchCase{"BlanksTakeNoRoom", std::string(5000, ' ') + "MACX",
                  std::string(5000, ' ') + "MACX", kMatches},
        MatchCase{"HugeTexts", std::string(1 << 20, 'x'), std::string(1 << 20, 'x'), kMatches},
        MatchCase{"AHundredAndThirtyEntries", "9",
                  [] {
                    std::string list;
                    while (list.size() < 256) list += "8|";
                    return list + "9";
                  }(),
                  kMatches}),
    named);

TEST(PlatformMatch, NullNamesNothing) {
  EXPECT_EQ(kNotNamed, voxcomn_IsPlatformMatch(nullptr, "MACX"));
  EXPECT_EQ(kNotNamed, voxcomn_IsPlatformMatch("MACX", nullptr));
  EXPECT_EQ(kNotNamed, voxcomn_IsPlatformMatch(nullptr, nullptr));
}

TEST(PlatformMatch, LeavesItsArgumentsAlone) {
  char platform[] = "M X:1:2:3";
  char list[] = "O|MX:1-2";
  EXPECT_EQ(kMatches, voxcomn_IsPlatformMatch(platform, list));
  EXPECT_STREQ("M X:1:2:3", platform);
  EXPECT_STREQ("O|MX:1-2", list);
}

TEST(PlatformMatch, NeedsNoMemory) {
  const orbtest::MemoryFaults counted(0);
  voxcomn_IsPlatformMatch("MACX:10:15:7", "OTHR:1|MACX:11:0:0-12:0:0|MACX:1-2|:");
  EXPECT_EQ(0u, counted.requests());
}

TEST(PlatformMatch, RandomTextsAgreeWithThePlainForm) {
  static constexpr char kLetters[] = "AB::||--0012359 +\t.65535";
  std::mt19937 random(3);
  const auto text = [&random](size_t most) {
    std::string made;
    for (size_t length = random() % most; length > 0; --length)
      made += kLetters[random() % (sizeof kLetters - 1)];
    return made;
  };
  std::vector<size_t> seen(3);
  for (int turn = 0; turn < 400000; ++turn) {
    const std::string platform = text(20);
    const std::string list = text(turn % 100 == 0 ? 600 : 40);
    const uint32_t expected = orbtest::plain_platform_match(platform, list);
    ASSERT_EQ(expected, voxcomn_IsPlatformMatch(platform.c_str(), list.c_str()))
        << '"' << platform << "\" in \"" << list << '"';
    ++seen[expected == kNotNamed ? 2 : expected];
  }
  for (const size_t count : seen) EXPECT_GT(count, 1000u);
}

TEST(PlatformMatch, FromSeveralThreads) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([i] {
      const std::string platform = "MACX:" + std::to_string(i);
      const std::string list = "MAC:9|" + platform + ":0:0-" + std::to_string(i) + ":0:0";
      for (int turn = 0; turn < 5000; ++turn)
        EXPECT_EQ(kMatches, voxcomn_IsPlatformMatch(platform.c_str(), list.c_str()));
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
