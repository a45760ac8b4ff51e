// tests/sysprops/helpers_test.cpp: converters, rounding, account and machine names.
#include <errno.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "sysprops/collect.h"
#include "sysprops/records.h"
#include "tests/support/command_text.h"
#include "tests/support/fake_system.h"
#include "tests/support/faults.h"

namespace {

// How the account calls of this thread answer while a test scripts them.
struct AccountScript {
  bool active = false;
  long size_limit = -1;            // sysconf's answer
  size_t needed = 0;               // a smaller buffer gives ERANGE
  int result = 0;                  // of a call with enough room
  const char* name = nullptr;      // null: no such account
  std::vector<size_t> sizes = {};  // of the buffers given
};

AccountScript script;

class ScopedAccounts {
 public:
  explicit ScopedAccounts(AccountScript accounts) {
    script = std::move(accounts);
    script.active = true;
  }
  ~ScopedAccounts() { script = {}; }
  ScopedAccounts(const ScopedAccounts&) = delete;
  ScopedAccounts& operator=(const ScopedAccounts&) = delete;
};

}  // namespace

extern "C" {

int __real_getpwuid_r(uid_t uid, passwd* account, char* texts, size_t size, passwd** found);
long __real_sysconf(int name);

int __wrap_getpwuid_r(uid_t uid, passwd* account, char* texts, size_t size, passwd** found) {
  if (!script.active) return __real_getpwuid_r(uid, account, texts, size, found);
  script.sizes.push_back(size);
  *found = nullptr;
  if (size < script.needed) return ERANGE;
  if (script.result != 0 || script.name == nullptr) return script.result;
  texts[size - 1] = '\0';  // the whole size is writable
  snprintf(texts, size, "%s", script.name);
  account->pw_name = texts;
  *found = account;
  return 0;
}

long __wrap_sysconf(int name) {
  return script.active && name == _SC_GETPW_R_SIZE_MAX ? script.size_limit : __real_sysconf(name);
}

}  // extern "C"

namespace quillon_com::orb::sysprops {
namespace {

using Unsigned = unsigned long long;
constexpr Unsigned kMost = std::numeric_limits<Unsigned>::max();

template <class T>
struct FloorCase {
  const char* name;
  T value, upper, lower;
  unsigned steps;
  T expected;
};

class UnsignedFloor : public testing::TestWithParam<FloorCase<Unsigned>> {};

TEST_P(UnsignedFloor, IsTheGridPointStrictlyBelow) {
  const auto& row = GetParam();
  EXPECT_EQ(row.expected, get_closest_floor<Unsigned>(row.value, row.upper, row.lower, row.steps));
}

INSTANTIATE_TEST_SUITE_P(
    Grids, UnsignedFloor,
    testing::Values(
        FloorCase<Unsigned>{"BetweenTwoPoints", 37, 100, 0, 20, 35},
        FloorCase<Unsigned>{"QuirkOnThePointGivesThePointBelow", 35, 100, 0, 20, 30},
        FloorCase<Unsigned>{"JustAboveAPoint", 36, 100, 0, 20, 35},
        FloorCase<Unsigned>{"QuirkBelowTheFirstStepIsTheValue", 3, 100, 0, 20, 3},
        FloorCase<Unsigned>{"QuirkOnTheFirstStepIsTheValue", 5, 100, 0, 20, 5},
        FloorCase<Unsigned>{"JustAboveTheFirstStep", 6, 100, 0, 20, 5},
        FloorCase<Unsigned>{"Zero", 0, 100, 0, 20, 0},
        FloorCase<Unsigned>{"AtTheUpperEnd", 100, 100, 0, 20, 95},
        FloorCase<Unsigned>{"AboveTheUpperEnd", 1000, 100, 0, 20, 100},
        FloorCase<Unsigned>{"NoStepsGivesTheSmallerLower", 37, 100, 7, 0, 7},
        FloorCase<Unsigned>{"NoStepsGivesTheSmallerValue", 3, 100, 7, 0, 3},
        FloorCase<Unsigned>{"StepOfZeroFromZeroIsTheValue", 16, 17, 0, 20, 16},
        FloorCase<Unsigned>{"StepOfZeroFromAboveIsLower", 16, 17, 5, 20, 5},
        FloorCase<Unsigned>{"RemainderIsDropped", 17, 19, 0, 4, 16},  // step 4
        FloorCase<Unsigned>{"PointsEndBelowTheUpperEnd", 19, 19, 0, 4, 16},
        FloorCase<Unsigned>{"LowerAboveZero", 37, 110, 10, 20, 35},
        FloorCase<Unsigned>{"AtLowerIsLower", 10, 110, 10, 20, 10},
        FloorCase<Unsigned>{"BelowLowerIsLower", 4, 110, 10, 20, 10},
        FloorCase<Unsigned>{"EmptyRange", 37, 0, 0, 20, 37},
        FloorCase<Unsigned>{"OneStep", 37, 100, 0, 1, 37},
        FloorCase<Unsigned>{"OneStepPassed", 101, 100, 0, 1, 100},
        FloorCase<Unsigned>{"MemoryOfSixteenGibibytes", 1000000000, 17179869184, 0, 20, 858993459},
        // step 922,337,203,685,477,580; 20 of them are 15 short of the largest number
        FloorCase<Unsigned>{"LargestUpper", kMost, kMost, 0, 20, kMost - 15},
        FloorCase<Unsigned>{"LargestUpperSecondPoint", kMost / 2 + 1, kMost, 0, 2, kMost / 2},
        // 2^64 - 1 is 65537 steps of 281470681808895
        FloorCase<Unsigned>{"ManySteps", kMost, kMost, 0, 65537, kMost - 281470681808895ULL},
        // upper - lower wraps to 2^64 - 5, the step is 922337203685477580
        FloorCase<Unsigned>{"UpperBelowLowerStartsAtLower", 3, 5, 10, 20, 10},
        FloorCase<Unsigned>{"UpperBelowLowerClimbs", 922337203685477591ULL, 5, 10, 20,
                            922337203685477590ULL},
        // one step of 2^64 - 5 from 10 wraps to 5, which is below the value
        FloorCase<Unsigned>{"UpperBelowLowerWraps", kMost, 5, 10, 1, 5},
        FloorCase<Unsigned>{"UpperBelowLowerWrapsToZero", 1, 0, 2, 1, 1}),
    [](const auto& row) { return std::string(row.param.name); });

class DoubleFloor : public testing::TestWithParam<FloorCase<double>> {};

TEST_P(DoubleFloor, IsTheGridPointStrictlyBelow) {
  const auto& row = GetParam();
  EXPECT_EQ(row.expected, get_closest_floor<double>(row.value, row.upper, row.lower, row.steps));
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();

INSTANTIATE_TEST_SUITE_P(
    Grids, DoubleFloor,
    testing::Values(FloorCase<double>{"BetweenTwoPoints", 7.3, 10.0, 0, 20, 7.0},
                    FloorCase<double>{"QuirkOnThePointGivesThePointBelow", 7.0, 10.0, 0, 20, 6.5},
                    FloorCase<double>{"ExactGrid", 1171.875, 3906.25, 0, 20, 976.5625},
                    FloorCase<double>{"QuirkBelowTheFirstStepIsTheValue", 0.3, 10, 0, 20, 0.3},
                    FloorCase<double>{"QuirkOnTheFirstStepIsTheValue", 0.5, 10, 0, 20, 0.5},
                    FloorCase<double>{"AboveTheUpperEnd", 11, 10, 0, 20, 10},
                    FloorCase<double>{"DivisionKeepsTheFraction", 16, 17, 0, 4, 12.75},
                    FloorCase<double>{"NoStepsGivesTheSmaller", 7.5, 10, 2.5, 0, 2.5},
                    FloorCase<double>{"EmptyRange", 7.5, 0, 0, 20, 7.5},
                    FloorCase<double>{"UpperBelowLowerFalls", 7.5, 0, 4, 4, 7.5},
                    FloorCase<double>{"UpperBelowLowerFallsToAboveZero", 7.5, 1, 5, 4, 1},
                    FloorCase<double>{"NegativeLower", -3, 10, -10, 4, -5},
                    FloorCase<double>{"QuirkGridPointZeroInsideTheRange", 3, 10, -10, 4, 3},
                    FloorCase<double>{"InfiniteUpper", 3, kInfinity, 0, 20, 3},
                    FloorCase<double>{"InfiniteValue", kInfinity, 10, 0, 20, 10},
                    FloorCase<double>{"ManyStepsOfNothing", 5, 2, 2, 4294967295U, 2}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(DoubleFloorOfNoNumber, IsTheValue) {
  EXPECT_TRUE(std::isnan(get_closest_floor<double>(NAN, 10, 0, 20)));
}

struct TextCase {
  const char* name;
  std::string narrow;
  std::wstring wide;
};

class Text : public testing::TestWithParam<TextCase> {};

TEST_P(Text, ConvertsToWide) {
  EXPECT_EQ(GetParam().wide, sysprops_ansi_to_wide(GetParam().narrow));
}

TEST_P(Text, ConvertsToNarrow) {
  EXPECT_EQ(GetParam().narrow, sysprops_wide_to_ansi(GetParam().wide));
}

INSTANTIATE_TEST_SUITE_P(
    BothWays, Text,
    testing::Values(TextCase{"Empty", "", L""}, TextCase{"Ascii", "CPUType", L"CPUType"},
                    TextCase{"TwoBytes", "\xC3\xA9", L"\u00E9"},
                    TextCase{"ThreeBytes", "\xE2\x82\xAC", L"\u20AC"},
                    TextCase{"FourBytes", "\xF4\x8F\xBF\xBF", L"\U0010FFFF"},
                    TextCase{"Mixed", "a\xC3\xA9z", L"a\u00E9z"},
                    TextCase{"Long", std::string(100000, 'x'), std::wstring(100000, L'x')}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(TextToWide, EndsAtTheFirstZeroByte) {
  EXPECT_EQ(L"ab", sysprops_ansi_to_wide(std::string("ab\0cd", 5)));
}

TEST(TextToWide, EndsAtAnInvalidByte) {
  EXPECT_EQ(L"ab", sysprops_ansi_to_wide("ab\xFF"
                                         "cd"));
}

TEST(TextToNarrow, EndsAtTheFirstZeroCharacter) {
  EXPECT_EQ("ab", sysprops_wide_to_ansi(std::wstring(L"ab\0cd", 5)));
}

TEST(TextToNarrow, EndsAtASurrogate) {
  const std::wstring text = {L'a', static_cast<wchar_t>(0xD800), L'b'};
  EXPECT_EQ("a", sysprops_wide_to_ansi(text));
}

TEST(TextToNarrow, EndsAboveTheLastCodePoint) {
  const std::wstring text = {L'a', static_cast<wchar_t>(0x110000), L'b'};
  EXPECT_EQ("a", sysprops_wide_to_ansi(text));
}

// The buffer is the first request; a text of two characters needs no other.
TEST(TextWithoutMemory, IsEmpty) {
  std::string narrow = "untouched";
  std::wstring wide = L"untouched";
  size_t failures = 0;
  {
    const orbtest::MemoryFaults faults(1);
    narrow = sysprops_wide_to_ansi(L"ab");
    failures += faults.failures();
  }
  {
    const orbtest::MemoryFaults faults(1);
    wide = sysprops_ansi_to_wide("ab");
    failures += faults.failures();
  }
  EXPECT_EQ(2u, failures);
  EXPECT_EQ("", narrow);
  EXPECT_EQ(L"", wide);
}

TEST(AccountName, IsThatOfTheAccountDatabase) {
  const std::string number = std::to_string(getuid());
  std::string name;
  ASSERT_TRUE(GetPwUid(getuid(), name));
  EXPECT_EQ(orbtest::command_text("getent passwd " + number + " | cut -d: -f1"),
            sysprops_ansi_to_wide(name));
  ASSERT_TRUE(GetPwUid(0, name));
  EXPECT_EQ("root", name);
}

TEST(AccountName, UnknownAccountLeavesTheName) {
  std::string name = "before";
  EXPECT_FALSE(GetPwUid(3999999999U, name));
  EXPECT_EQ("before", name);
}

struct AccountCase {
  const char* name;
  AccountScript script;
  bool ok;
  std::vector<size_t> sizes;  // of the buffers in turn
};

class AccountBuffer : public testing::TestWithParam<AccountCase> {};

TEST_P(AccountBuffer, GrowsByDoubling) {
  std::string name = "before";
  std::vector<size_t> sizes;
  bool ok = false;
  {
    const ScopedAccounts accounts(GetParam().script);
    ok = GetPwUid(7, name);
    sizes = script.sizes;
  }
  EXPECT_EQ(GetParam().ok, ok);
  EXPECT_EQ(GetParam().ok ? "somebody" : "before", name);
  EXPECT_EQ(GetParam().sizes, sizes);
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, AccountBuffer,
    testing::Values(
        AccountCase{"NoLimitStatedStartsAt1024", {true, -1, 1, 0, "somebody"}, true, {1024}},
        AccountCase{"LimitStatedIsTheStart", {true, 300, 1, 0, "somebody"}, true, {300}},
        AccountCase{"LimitOfZeroStartsAt1024", {true, 0, 2000, 0, "somebody"}, true, {1024, 2048}},
        AccountCase{"TooSmallIsDoubledUntilItFits",
                    {true, 100, 1000, 0, "somebody"},
                    true,
                    {100, 200, 400, 800, 1600}},
        AccountCase{"NoSuchAccountAfterGrowing", {true, 100, 150, 0, nullptr}, false, {100, 200}},
        AccountCase{"OtherErrorEndsAtOnce", {true, 100, 1, EIO, "somebody"}, false, {100}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(AccountBufferWithoutMemory, FailsAtTheFirstRequest) {
  std::string name = "before";
  bool ok = true;
  const ScopedAccounts accounts({true, 100, 150, 0, "somebody"});
  {
    const orbtest::MemoryFaults faults(1);
    ok = GetPwUid(7, name);
  }
  EXPECT_FALSE(ok);
  EXPECT_EQ("before", name);
  EXPECT_TRUE(script.sizes.empty());
}

TEST(AccountBufferWithoutMemory, FailsWhereItCannotGrow) {
  std::string name = "before";
  bool ok = true;
  const ScopedAccounts accounts({true, 100, 150, 0, "somebody"});
  script.sizes.reserve(8);
  {
    const orbtest::MemoryFaults faults(2);
    ok = GetPwUid(7, name);
  }
  EXPECT_FALSE(ok);
  EXPECT_EQ("before", name);
  EXPECT_EQ(std::vector<size_t>{100}, script.sizes);
}

struct ComputerCase {
  const char* name;
  const char* node;
  const char* expected;
};

class ComputerName : public testing::TestWithParam<ComputerCase> {};

TEST_P(ComputerName, IsTheNodeNameUpToTheFirstDot) {
  orbtest::FakeSystem system;
  system.kernel = platform::KernelNames{GetParam().node, "x86_64", "6.1"};
  std::string name = "before";
  EXPECT_TRUE(computer_name(system, name));
  EXPECT_EQ(GetParam().expected, name);
}

INSTANTIATE_TEST_SUITE_P(Nodes, ComputerName,
                         testing::Values(ComputerCase{"NoDot", "alpha", "alpha"},
                                         ComputerCase{"OneDot", "alpha.local", "alpha"},
                                         ComputerCase{"FirstOfTwoDots", "a.b.c", "a"},
                                         ComputerCase{"DotFirst", ".local", ""},
                                         ComputerCase{"DotLast", "alpha.", "alpha"},
                                         ComputerCase{"Empty", "", ""}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ComputerNameUnknown, LeavesTheName) {
  std::string name = "before";
  EXPECT_FALSE(computer_name(orbtest::FakeSystem(), name));
  EXPECT_EQ("before", name);
}

TEST(ComputerNameOfThisMachine, IsThatOfUname) {
  std::string name;
  ASSERT_TRUE(getComputerName(name));
  EXPECT_EQ(orbtest::command_text("uname -n | cut -d. -f1"), sysprops_ansi_to_wide(name));
}

}  // namespace
}  // namespace quillon_com::orb::sysprops
