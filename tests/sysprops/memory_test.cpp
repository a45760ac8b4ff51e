// tests/sysprops/memory_test.cpp: the memory record on scripted machines and on this one.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "sysprops/collect.h"
#include "tests/support/command_text.h"
#include "tests/support/fake_system.h"

namespace quillon_com::orb::sysprops {
namespace {

using Pages = std::pair<uint64_t, uint64_t>;  // count, size

struct MemoryCase {
  const char* name;
  std::optional<uint64_t> total;
  std::optional<Pages> free;
  bool ok;
  const wchar_t *total_text, *free_text;
};

class Memory : public testing::TestWithParam<MemoryCase> {};

TEST_P(Memory, FillsTheRecord) {
  orbtest::FakeSystem system;
  system.memory = GetParam().total;
  system.free_pages = GetParam().free;
  MemoryInformation record;
  record.totalPhysicalMemory = record.freeMemory = L"old";
  EXPECT_EQ(GetParam().ok, collect_memory(system, record));
  EXPECT_EQ(GetParam().total_text, record.totalPhysicalMemory);
  EXPECT_EQ(GetParam().free_text, record.freeMemory);
}

constexpr uint64_t kTotal = 17179869184;  // a twentieth is 858,993,459, the remainder dropped

INSTANTIATE_TEST_SUITE_P(
    Machines, Memory,
    testing::Values(
        MemoryCase{"RoundedDownToATwentieth", kTotal, Pages{1000000000, 1}, true, L"17179869184",
                   L"858993459"},
        MemoryCase{"BelowTheFirstStepIsExact", kTotal, Pages{500000000, 1}, true, L"17179869184",
                   L"500000000"},
        MemoryCase{"PagesTimesTheirSize", 2000000, Pages{25, 4096}, true, L"2000000",
                   L"100000"},  // 102,400 above the first step of 100,000
        MemoryCase{"QuirkOnTheGridGivesTheStepBelow", 2000000, Pages{300000, 1}, true, L"2000000",
                   L"200000"},
        MemoryCase{"QuirkOnTheFirstStepIsExact", 2000000, Pages{100000, 1}, true, L"2000000",
                   L"100000"},
        MemoryCase{"FreeAboveTheTotalStopsAtTheTotal", 2000000, Pages{3000000, 1}, true, L"2000000",
                   L"2000000"},
        MemoryCase{"TotalUnreadableLeavesFreeExact", std::nullopt, Pages{1000, 4096}, true, L"old",
                   L"4096000"},
        MemoryCase{"FreeUnreadableKeepsTheTotal", kTotal, std::nullopt, false, L"17179869184",
                   L"old"},
        MemoryCase{"NothingReadable", std::nullopt, std::nullopt, false, L"old", L"old"},
        MemoryCase{"NothingFree", 2000000, Pages{0, 4096}, true, L"2000000", L"0"},
        MemoryCase{"SixteenKilobytePagesAboveFourGigabytes", 68719476736, Pages{1048576, 16384},
                   true, L"68719476736", L"17179869180"},  // 5 × 3,435,973,836, four below
        MemoryCase{"LargestTotal", UINT64_MAX, Pages{0, 1}, true, L"18446744073709551615", L"0"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(MemoryFields, TotalAloneDoesNotCountFreePages) {
  orbtest::FakeSystem system;
  system.memory = kTotal;
  MemoryInformation record;
  EXPECT_TRUE(collect_memory(system, record, kTotalMemory));
  EXPECT_EQ(L"17179869184", record.totalPhysicalMemory);
  EXPECT_EQ(L"N/A", record.freeMemory);
}

TEST(MemoryFields, FreeAloneIsRoundedByTheTotal) {
  orbtest::FakeSystem system;
  system.memory = 2000000;
  system.free_pages = Pages{150000, 1};
  MemoryInformation record;
  EXPECT_TRUE(collect_memory(system, record, kFreeMemory));
  EXPECT_EQ(L"100000", record.freeMemory);
}

TEST(MemoryOfThisMachine, TotalIsThatOfMeminfo) {
  MemoryInformation record;
  ASSERT_TRUE(ISysProps().GetMemoryInformation(record));
  const auto total = orbtest::command_text("awk '/^MemTotal:/ {printf \"%d\", $2}' /proc/meminfo");
  EXPECT_EQ(std::stoull(total) * 1024, std::stoull(record.totalPhysicalMemory));
}

TEST(MemoryOfThisMachine, FreeLiesOnTheGridOfTheTotal) {
  MemoryInformation record;
  ASSERT_TRUE(ISysProps().GetMemoryInformation(record));
  const unsigned long long total = std::stoull(record.totalPhysicalMemory);
  const unsigned long long free = std::stoull(record.freeMemory);
  const unsigned long long step = total / 20;
  EXPECT_TRUE(free <= step || free % step == 0) << free << " of " << total;
  EXPECT_LE(free, total);
}

}  // namespace
}  // namespace quillon_com::orb::sysprops
