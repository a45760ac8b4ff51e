// tests/sysprops/disk_test.cpp: the disk record on scripted machines and on this one.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <locale>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "sysprops/collect.h"
#include "tests/support/command_text.h"
#include "tests/support/fake_system.h"

namespace quillon_com::orb::sysprops {
namespace {

using platform::Volume;
using FileSystems = std::map<std::wstring, std::pair<std::wstring, std::wstring>>;

struct DiskCase {
  const char* name;
  std::vector<Volume> volumes;
  const wchar_t *count, *total, *free;
  FileSystems file_systems;
};

class Disk : public testing::TestWithParam<DiskCase> {};

TEST_P(Disk, FillsTheRecord) {
  orbtest::FakeSystem system;
  system.mounted = GetParam().volumes;
  DiskInformation record;
  EXPECT_TRUE(collect_disk(system, record));
  EXPECT_EQ(GetParam().count, record.numFileSystems);
  EXPECT_EQ(GetParam().total, record.totalDiskSpace);
  EXPECT_EQ(GetParam().free, record.freeDiskSpace);
  EXPECT_EQ(GetParam().file_systems, record.fileSystems);
}

// A local volume of `megabytes` whole megabytes with blocks of 4096 bytes.
Volume local(const char* mount_point, uint64_t megabytes, uint64_t free_megabytes) {
  return {mount_point, true, 4096, megabytes * 256, free_megabytes * 256};
}

INSTANTIATE_TEST_SUITE_P(
    Machines, Disk,
    testing::Values(
        DiskCase{"NoneAtAll", {}, L"0", L"0.00", L"0.00", {}},
        DiskCase{"QuirkFreeOnTheGridGivesTheStepBelow",
                 {{"/", true, 4096, 1000000, 300000}},
                 L"1",
                 L"3906.25",
                 L"976.56",
                 {{L"/", {L"3906.25", L"976.56"}}}},
        DiskCase{"BelowTheFirstStepIsExact",
                 {local("/", 2000, 99)},
                 L"1",
                 L"2000.00",
                 L"99.00",
                 {{L"/", {L"2000.00", L"99.00"}}}},
        DiskCase{"EverythingFreeIsTheStepBelowTheTotal",
                 {local("/", 2000, 2000)},
                 L"1",
                 L"2000.00",
                 L"1900.00",
                 {{L"/", {L"2000.00", L"1900.00"}}}},
        DiskCase{"NothingFree",
                 {local("/", 2000, 0)},
                 L"1",
                 L"2000.00",
                 L"0.00",
                 {{L"/", {L"2000.00", L"0.00"}}}},
        // Each free amount rounds by its own grid, their sum by that of the sum: 150 and 150 of
        // 1000 and 3000 give 100 and 150, but 300 of 4000 gives 200.
        DiskCase{"SumsAreOfUnroundedAmounts",
                 {local("/", 1000, 150), local("/data", 3000, 150)},
                 L"2",
                 L"4000.00",
                 L"200.00",
                 {{L"/", {L"1000.00", L"100.00"}}, {L"/data", {L"3000.00", L"150.00"}}}},
        DiskCase{"NotLocalIsSkipped",
                 {local("/", 1000, 10), {"/net", false, 4096, 256000, 2560}},
                 L"1",
                 L"1000.00",
                 L"10.00",
                 {{L"/", {L"1000.00", L"10.00"}}}},
        DiskCase{"NoBlocksIsSkipped",
                 {{"/proc", true, 4096, 0, 0}, local("/", 1000, 10)},
                 L"1",
                 L"1000.00",
                 L"10.00",
                 {{L"/", {L"1000.00", L"10.00"}}}},
        DiskCase{"NoBlockSizeIsSkipped", {{"/odd", true, 0, 5, 5}}, L"0", L"0.00", L"0.00", {}},
        DiskCase{"QuirkSameMountPointKeepsTheFirstTextsAndCountsTwice",
                 {local("/", 1000, 10), local("/", 3000, 20)},
                 L"2",
                 L"4000.00",
                 L"30.00",
                 {{L"/", {L"1000.00", L"10.00"}}}},
        DiskCase{"BlocksOfAnySize",
                 {{"/a", true, 512, 2048, 0}, {"/b", true, 3, 1048576, 0}},
                 L"2",
                 L"4.00",
                 L"0.00",
                 {{L"/a", {L"1.00", L"0.00"}}, {L"/b", {L"3.00", L"0.00"}}}},
        DiskCase{"MoreBlocksThanThirtyTwoBits",
                 {{"/", true, 4096, 1ULL << 33, 1ULL << 25}},
                 L"1",
                 L"33554432.00",
                 L"131072.00",
                 {{L"/", {L"33554432.00", L"131072.00"}}}},
        DiskCase{"MountPointOfUtf8",
                 {local("/m\xC3\xA9"
                        "dia",
                        1000, 10)},
                 L"1",
                 L"1000.00",
                 L"10.00",
                 {{L"/m\u00E9dia", {L"1000.00", L"10.00"}}}},
        DiskCase{"HalfOfAHundredthIsRoundedToEven",  // 0.125 and 0.375 megabytes
                 {{"/a", true, 131072, 1, 0}, {"/b", true, 131072, 3, 0}},
                 L"2",
                 L"0.50",
                 L"0.00",
                 {{L"/a", {L"0.12", L"0.00"}}, {L"/b", {L"0.38", L"0.00"}}}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(DiskRecord, QuirkSecondCollectionKeepsTheFirstTexts) {
  orbtest::FakeSystem system;
  system.mounted = {local("/", 1000, 10)};
  DiskInformation record;
  collect_disk(system, record);
  system.mounted = {local("/", 2000, 20), local("/new", 500, 5)};
  collect_disk(system, record);
  EXPECT_EQ(L"2", record.numFileSystems);
  EXPECT_EQ(L"2500.00", record.totalDiskSpace);
  EXPECT_EQ(L"25.00", record.freeDiskSpace);
  const FileSystems expected = {{L"/", {L"1000.00", L"10.00"}}, {L"/new", {L"500.00", L"5.00"}}};
  EXPECT_EQ(expected, record.fileSystems);
}

TEST(DiskRecord, QuirkVanishedMountPointStaysInTheMap) {
  orbtest::FakeSystem system;
  system.mounted = {local("/usb", 1000, 10)};
  DiskInformation record;
  collect_disk(system, record);
  system.mounted.clear();
  collect_disk(system, record);
  EXPECT_EQ(L"0", record.numFileSystems);
  EXPECT_EQ(1u, record.fileSystems.count(L"/usb"));
}

TEST(DiskRecord, SizesBeyondEveryDeviceAreCutAt32Characters) {
  orbtest::FakeSystem system;
  system.mounted = {{"/", true, UINT64_MAX, UINT64_MAX, 0}};
  DiskInformation record;
  EXPECT_TRUE(collect_disk(system, record));
  EXPECT_EQ(32u, record.totalDiskSpace.size());
  EXPECT_EQ(L"3245185536584267", record.totalDiskSpace.substr(0, 16));  // 2^108
}

// A decimal comma, as in many a host process.
class Comma : public std::numpunct<wchar_t> {
  wchar_t do_decimal_point() const override { return L','; }
};

// Sets the locale of the C library, where it is installed, and of new streams; restores both.
class ScopedCommaLocale {
 public:
  ScopedCommaLocale() { setlocale(LC_ALL, "de_DE.UTF-8"); }
  ~ScopedCommaLocale() {
    std::locale::global(streams_);
    setlocale(LC_ALL, library_.c_str());
  }
  ScopedCommaLocale(const ScopedCommaLocale&) = delete;
  ScopedCommaLocale& operator=(const ScopedCommaLocale&) = delete;

 private:
  std::string library_ = setlocale(LC_ALL, nullptr);
  std::locale streams_ = std::locale::global(std::locale(std::locale(), new Comma));
};

TEST(DiskRecord, DecimalPointIsThatOfNoLocale) {
  const ScopedCommaLocale locale;
  orbtest::FakeSystem system;
  system.mounted = {{"/", true, 4096, 1000000, 300000}};
  DiskInformation record;
  collect_disk(system, record);
  EXPECT_EQ(L"3906.25", record.totalDiskSpace);
  EXPECT_EQ(L"976.56", record.freeDiskSpace);
}

TEST(DiskOfThisMachine, RootHasTheSizeThatStatReports) {
  DiskInformation record;
  ASSERT_TRUE(ISysProps().GetDiskInformation(record));
  ASSERT_EQ(1u, record.fileSystems.count(L"/"));
  // Whole kilobytes of 2^10 bytes; the text has two decimals, so that it may be 5 off.
  const double size = std::stod(
      orbtest::command_text("stat -f -c '%b %S' / | awk '{printf \"%.0f\", $1 * $2 / 1024}'"));
  EXPECT_NEAR(size, std::stod(record.fileSystems[L"/"].first) * 1024, 6);
  EXPECT_EQ(std::to_wstring(record.fileSystems.size()), record.numFileSystems);
}

}  // namespace
}  // namespace quillon_com::orb::sysprops
