// tests/sysprops/osinfo_test.cpp: the operating-system record from version lists.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "sysprops/collect.h"
#include "tests/support/fake_system.h"

namespace quillon_com::orb::sysprops {
namespace {

using orbtest::FakeSystem;

const std::string kCompat = "/System/Library/CoreServices/SystemVersionCompat.plist";
const std::string kList = "/System/Library/CoreServices/SystemVersion.plist";
const std::string kOldTool = "sw_vers -productName";
const std::string kNewTool = "serverinfo --productname";
const std::string kBitTool = "sysctl hw | grep 64bit | awk '{ print $2 }'";

// A machine with one version list of these two texts; a null text is absent.
FakeSystem machine(std::optional<std::string> version, std::optional<std::string> build) {
  FakeSystem system;
  system.files[kList] = "list";
  system.lists["list"] = {};
  if (version) system.lists["list"]["ProductVersion"] = *version;
  if (build) system.lists["list"]["ProductBuildVersion"] = *build;
  system.kernel = platform::KernelNames{"node", "x86_64", "22.1.0"};
  return system;
}

OSInformation old_record() {
  OSInformation record;
  record.osType = record.osPlatform = record.osVersion = record.osCsdVersion = L"old";
  record.osBuildNum = record.osOemId = record.platformId = record.osBitMode = L"old";
  return record;
}

void expect_fixed_names(const OSInformation& record) {
  EXPECT_EQ(L"MAC", record.platformId);
  EXPECT_EQ(L"Mac OS X", record.osType);
  EXPECT_EQ(L"Apple Macintosh", record.osOemId);
}

struct VersionCase {
  const char* name;
  std::optional<std::string> version, build;
  const wchar_t *os_version, *patch, *os_build;
};

class VersionList : public testing::TestWithParam<VersionCase> {};

TEST_P(VersionList, GivesVersionAndBuild) {
  const FakeSystem system = machine(GetParam().version, GetParam().build);
  OSInformation record = old_record();
  EXPECT_TRUE(collect_os(system, record));
  expect_fixed_names(record);
  EXPECT_EQ(GetParam().os_version, record.osVersion);
  EXPECT_EQ(GetParam().patch, record.osCsdVersion);
  EXPECT_EQ(GetParam().os_build, record.osBuildNum);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, VersionList,
    testing::Values(
        VersionCase{"ThreeComponents", "10.15.7", "19H2", L"10.15.7", L"7", L"19H2"},
        VersionCase{"TwoComponentsLeaveThePatch", "11.2", "20D64", L"11.2", L"old", L"20D64"},
        VersionCase{"FourthComponentIsDropped", "10.15.7.9", "19H2", L"10.15.7", L"7", L"19H2"},
        VersionCase{"OneComponentStandsAlone", "11", "20D64", L"11", L"old", L"20D64"},
        VersionCase{"EmptyVersion", "", "20D64", L"", L"old", L"20D64"},
        VersionCase{"DotsAlone", "...", "20D64", L"", L"old", L"20D64"},
        VersionCase{"RunsOfDotsAreOne", "..10...15..", "20D64", L"10.15", L"old", L"20D64"},
        VersionCase{"MissingVersionCountsAsEmpty", std::nullopt, "20D64", L"", L"old", L"20D64"},
        VersionCase{"MissingBuildCountsAsEmpty", "10.15.7", std::nullopt, L"10.15.7", L"7", L""},
        VersionCase{"EmptyBuild", "10.15.7", "", L"10.15.7", L"7", L""},
        VersionCase{"BuildKeepsItsDots", "11.2", "20.D.64", L"11.2", L"old", L"20.D.64"},
        VersionCase{"TextsOfUtf8", "1\xC3\xA9.2", "\xC3\xA9", L"1\u00E9.2", L"old", L"\u00E9"},
        VersionCase{"TextEndsAtAZeroByte", std::string("10.1\0.2", 7), std::string("19\0H", 4),
                    L"10.1", L"old", L"19"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(VersionBufferLimit, TextOf255BytesFits) {
  const FakeSystem system = machine("9." + std::string(253, '1'), std::string(255, '8'));
  OSInformation record = old_record();
  EXPECT_TRUE(collect_os(system, record));
  EXPECT_EQ(L"9." + std::wstring(253, L'1'), record.osVersion);
  EXPECT_EQ(std::wstring(255, L'8'), record.osBuildNum);
}

TEST(VersionBufferLimit, TextOf256BytesCountsAsEmpty) {
  const FakeSystem system = machine("9." + std::string(254, '1'), std::string(256, '8'));
  OSInformation record = old_record();
  EXPECT_TRUE(collect_os(system, record));
  EXPECT_EQ(L"", record.osVersion);
  EXPECT_EQ(L"", record.osBuildNum);
}

struct FileCase {
  const char* name;
  void (*script)(FakeSystem& system);
  const wchar_t* version;  // null: the result is false
};

class VersionFile : public testing::TestWithParam<FileCase> {};

TEST_P(VersionFile, IsChosenAndRead) {
  FakeSystem system;
  system.lists["compat"] = {{"ProductVersion", "10.16"}};
  system.lists["version"] = {{"ProductVersion", "11.2.3"}};
  GetParam().script(system);
  OSInformation record = old_record();
  const bool ok = GetParam().version != nullptr;
  EXPECT_EQ(ok, collect_os(system, record));
  expect_fixed_names(record);
  EXPECT_EQ(ok ? GetParam().version : L"old", record.osVersion);
  if (!ok) {
    EXPECT_EQ(L"old", record.osCsdVersion);
    EXPECT_EQ(L"old", record.osBuildNum);
    EXPECT_EQ(L"old", record.osPlatform);
    EXPECT_EQ(L"old", record.osBitMode);
    EXPECT_TRUE(system.commands_run.empty());
  }
}

constexpr uint64_t kLimit = 16 << 20;

INSTANTIATE_TEST_SUITE_P(
    Files, VersionFile,
    testing::Values(
        FileCase{"CompatibilityListComesFirst",
                 [](FakeSystem& s) {
                   s.files[kCompat] = "compat";
                   s.files[kList] = "version";
                 },
                 L"10.16"},
        FileCase{"VersionListAlone", [](FakeSystem& s) { s.files[kList] = "version"; }, L"11.2.3"},
        FileCase{"CompatibilityListAlone", [](FakeSystem& s) { s.files[kCompat] = "compat"; },
                 L"10.16"},
        FileCase{"NoList", [](FakeSystem&) {}, nullptr},
        FileCase{"BothEmpty",
                 [](FakeSystem& s) {
                   s.files[kCompat] = "";
                   s.files[kList] = "";
                 },
                 nullptr},
        FileCase{"QuirkEmptyCompatibilityListHidesTheOther",
                 [](FakeSystem& s) {
                   s.files[kCompat] = "";
                   s.files[kList] = "version";
                 },
                 nullptr},
        FileCase{"UnopenedCompatibilityListGivesItsSize",
                 [](FakeSystem& s) {
                   s.sizes[kCompat] = 7;
                   s.files[kList] = "version and more";
                 },
                 L"11.2.3"},
        FileCase{"SizeWithoutAnyFile", [](FakeSystem& s) { s.sizes[kCompat] = 7; }, nullptr},
        FileCase{"ShorterThanItsSizeIsPaddedWithZeros",
                 [](FakeSystem& s) {
                   s.files[kList] = "version";
                   s.sizes[kList] = 9;
                   s.lists[std::string("version\0\0", 9)] = {{"ProductVersion", "12.6"}};
                 },
                 L"12.6"},
        FileCase{"FirstByteZero",
                 [](FakeSystem& s) {
                   s.files[kList] = std::string("\0version", 8);
                   s.lists[s.files[kList]] = {{"ProductVersion", "12.6"}};
                 },
                 nullptr},
        FileCase{"NoPropertyList", [](FakeSystem& s) { s.files[kList] = "garbage"; }, nullptr},
        FileCase{"LargestList",
                 [](FakeSystem& s) {
                   s.files[kList] = std::string(kLimit, 'x');
                   s.lists[s.files[kList]] = {{"ProductVersion", "12.6"}};
                 },
                 L"12.6"},
        FileCase{"ListAboveTheLimit",
                 [](FakeSystem& s) {
                   s.files[kList] = std::string(kLimit + 1, 'x');
                   s.lists[s.files[kList]] = {{"ProductVersion", "12.6"}};
                   s.lists[std::string(kLimit, 'x')] = {{"ProductVersion", "12.6"}};
                 },
                 nullptr},
        FileCase{"HostileSize",
                 [](FakeSystem& s) {
                   s.files[kList] = "version";
                   s.sizes[kList] = UINT64_MAX;
                 },
                 nullptr}),
    [](const auto& row) { return std::string(row.param.name); });

struct ServerCase {
  const char* name;
  std::optional<std::string> version, build;
  const std::string* tool;  // that is run; null: none
  std::string output;
  const wchar_t* platform;
};

class ServerTest : public testing::TestWithParam<ServerCase> {};

TEST_P(ServerTest, AsksTheToolThatTheOverwrittenBufferNames) {
  FakeSystem system = machine(GetParam().version, GetParam().build);
  system.commands = {{kOldTool, GetParam().output}, {kNewTool, GetParam().output}};
  OSInformation record = old_record();
  EXPECT_TRUE(collect_os(system, record));
  std::vector<std::string> run;
  if (GetParam().tool != nullptr) run.push_back(*GetParam().tool);
  EXPECT_EQ(run, system.commands_run);
  EXPECT_EQ(GetParam().platform, record.osPlatform);
}

constexpr wchar_t kServer[] = L"Server";
constexpr wchar_t kWorkstation[] = L"Workstation";

// The comments show the buffer as the test reads it, "_" for a zero byte, with the places where the
// major and the minor component began.
INSTANTIATE_TEST_SUITE_P(
    QuirkReadsTheBuild, ServerTest,
    testing::Values(
        // 19H2__7_: major 19 at 0, minor 2 at 3
        ServerCase{"MinorInsideTheBuild", "10.15.7", "19H2", &kOldTool, "Mac OS X Server\n",
                   kServer},
        // 19H8__7_: minor 8 at 3
        ServerCase{"MinorOfEightAsksTheNewTool", "10.15.7", "19H8", &kNewTool, "macOS Server\n",
                   kServer},
        // 20G165_: minor 165 at 3
        ServerCase{"MinorOfTheBuildsTail", "11.6", "20G165", &kNewTool, "macOS Server\n", kServer},
        // 9L31a_: major 9
        ServerCase{"BuildBelowTenRunsNothing", "10.15.7", "9L31a", nullptr, "Server", kWorkstation},
        // 10_15_: the build ends in front of the minor, which is still the version's 15
        ServerCase{"MinorBehindTheBuildIsTheVersions", "10.15", "10", &kNewTool, "Server", kServer},
        // 10_5_8_: the minor is still the version's 5
        ServerCase{"MinorOfAnOldVersion", "10.5.8", "10", &kOldTool, "Server", kServer},
        // 123__5_: the build's terminator stands on the minor's only digit
        ServerCase{"MinorOverwrittenByTheTerminator", "10.9.5", "123", &kOldTool, "Server",
                   kServer},
        // _0_15_7_: nothing of the build, so that the major is empty
        ServerCase{"EmptyBuildRunsNothing", "10.15.7", "", nullptr, "Server", kWorkstation},
        ServerCase{"MissingBuildRunsNothing", "10.15.7", std::nullopt, nullptr, "Server",
                   kWorkstation},
        // ABC_5_7_: no digits
        ServerCase{"BuildWithoutDigitsRunsNothing", "10.15.7", "ABC", nullptr, "Server",
                   kWorkstation},
        // 9919H2__: behind two dots the major began at 2, the minor at 5
        ServerCase{"MajorBehindLeadingDots", "..10.15", "9919H2", &kOldTool, "Server", kServer},
        ServerCase{"MissingVersionRunsNothing", std::nullopt, "20G165", nullptr, "Server",
                   kWorkstation},
        ServerCase{"MissingMinorCountsAsZero", "11", "20G165", &kOldTool, "Server", kServer},
        ServerCase{"BuildLargerThanAnyNumber", "10.15", std::string(200, '9'), nullptr, "Server",
                   kWorkstation}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Outputs, ServerTest,
    testing::Values(
        ServerCase{"NoServer", "10.15.7", "19H2", &kOldTool, "Mac OS X\n", kWorkstation},
        ServerCase{"AnyLetterCase", "10.15.7", "19H2", &kOldTool, "mac sErVeR", kServer},
        ServerCase{"Empty", "10.15.7", "19H2", &kOldTool, "", kWorkstation},
        ServerCase{"EndsAtThirtyBytes", "10.15.7", "19H2", &kOldTool,
                   std::string(24, '-') + "Server", kServer},
        ServerCase{"CutBehindThirtyBytes", "10.15.7", "19H2", &kOldTool,
                   std::string(25, '-') + "Server", kWorkstation},
        ServerCase{"BehindAZeroByte", "10.15.7", "19H2", &kOldTool, std::string("Mac\0Server", 10),
                   kWorkstation}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ServerTool, ThatCannotBeStartedIsNoServer) {
  const FakeSystem system = machine("10.15.7", "19H2");
  OSInformation record = old_record();
  EXPECT_TRUE(collect_os(system, record));
  EXPECT_EQ(L"Workstation", record.osPlatform);
}

struct BitCase {
  const char* name;
  std::optional<std::string> machine;
  std::optional<std::string> output;  // of the tool; absent: it cannot be started
  bool runs;
  const wchar_t* mode;
};

class VersionListBitMode : public testing::TestWithParam<BitCase> {};

TEST_P(VersionListBitMode, ByMachineNameThenByTool) {
  FakeSystem system = machine("10.5.8", "9L31a");
  system.kernel.reset();
  if (GetParam().machine) system.kernel = platform::KernelNames{"n", *GetParam().machine, "9"};
  if (GetParam().output) system.commands[kBitTool] = *GetParam().output;
  OSInformation record = old_record();
  EXPECT_TRUE(collect_os(system, record));
  EXPECT_EQ(GetParam().mode, record.osBitMode);
  EXPECT_EQ(GetParam().runs ? 1 : 0,
            std::count(system.commands_run.begin(), system.commands_run.end(), kBitTool));
}

INSTANTIATE_TEST_SUITE_P(
    Machines, VersionListBitMode,
    testing::Values(BitCase{"SixtyFourBits", "x86_64", "0", false, L"1"},
                    BitCase{"ThirtyTwoBits", "i386", "1", false, L"0"},
                    BitCase{"OtherNameAsksTheTool", "arm64", "1\n", true, L"1"},
                    BitCase{"ToolSaysZero", "arm64", "0\n", true, L"0"},
                    BitCase{"ToolSaysNothing", "arm64", "", true, L"0"},
                    BitCase{"ToolSaysWords", "Power Macintosh", "no\n", true, L"0"},
                    BitCase{"OnlyFourBytesAreRead", "arm64", "00001", true, L"0"},
                    BitCase{"FourthByteCounts", "arm64", "0001", true, L"1"},
                    BitCase{"ToolCannotBeStarted", "arm64", std::nullopt, true, L"-1"},
                    BitCase{"UnknownNameAsksTheTool", std::nullopt, "1", true, L"1"},
                    BitCase{"NothingTells", std::nullopt, std::nullopt, true, L"-1"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(OsFields, IdentityRunsNoTool) {
  FakeSystem system = machine("10.15.7", "19H2");
  system.kernel->machine = "arm64";
  OSInformation record;
  EXPECT_TRUE(collect_os(system, record, kOsIdentity));
  EXPECT_EQ(L"10.15.7", record.osVersion);
  EXPECT_EQ(L"19H2", record.osBuildNum);
  EXPECT_TRUE(system.commands_run.empty());
}

TEST(OsFields, PlatformAndBitModeRunTheirOwnTool) {
  FakeSystem system = machine("10.15.7", "19H2");
  system.kernel->machine = "arm64";
  system.commands = {{kOldTool, "Server"}, {kBitTool, "1"}};
  OSInformation record;
  EXPECT_TRUE(collect_os(system, record, kOsPlatform));
  EXPECT_EQ(L"Server", record.osPlatform);
  EXPECT_EQ(std::vector<std::string>{kOldTool}, system.commands_run);
  system.commands_run.clear();
  EXPECT_TRUE(collect_os(system, record, kOsBitMode));
  EXPECT_EQ(L"1", record.osBitMode);
  EXPECT_EQ(std::vector<std::string>{kBitTool}, system.commands_run);
}

TEST(OsFields, BitModeStaysWhereTheListCannotBeRead) {
  FakeSystem system;
  system.kernel = platform::KernelNames{"n", "x86_64", "9"};
  OSInformation record;
  EXPECT_FALSE(collect_os(system, record, kOsBitMode));
  EXPECT_EQ(L"N/A", record.osBitMode);
}

TEST(VersionListMachine, ReleaseFilesComeFirst) {
  FakeSystem system = machine("10.15.7", "19H2");
  system.release.emplace();
  OSInformation record;
  EXPECT_TRUE(collect_os(system, record));
  EXPECT_EQ(L"LINUX", record.platformId);
}

}  // namespace
}  // namespace quillon_com::orb::sysprops
