// tests/darwin/version_record_test.cpp: the operating-system record of scripted Macs.
#include "sysprops/collect.h"
#include "tests/darwin/scripted_machine.h"
#include "tests/darwin/scripted_macos.h"

namespace orbtest {
namespace {

using namespace quillon_com::orb::sysprops;

const std::string kCompatibilityList = "/System/Library/CoreServices/SystemVersionCompat.plist";
const std::string kVersionList = "/System/Library/CoreServices/SystemVersion.plist";

ListValue version_list(const std::string& version, const std::string& build) {
  return ListValue::dictionary({{"ProductVersion", ListValue::of_text(version)},
                                {"ProductBuildVersion", ListValue::of_text(build)}});
}

struct SystemRow {
  const char* name;
  std::map<std::string, std::string> files;
  const char *version, *build;  // of the list whose bytes are "list"
  std::map<std::string, std::string> commands;
  std::optional<std::string> machine;
  bool ok;
  const wchar_t *version_text, *patch, *build_text, *platform, *bits;
  std::vector<std::string> commands_run;
};

const std::string kServerTool = "serverinfo --productname";
const std::string kVersionTool = "sw_vers -productName";
const std::string kBitTool = "sysctl hw | grep 64bit | awk '{ print $2 }'";

using MacVersions = MacTest;

class MacSystems : public MacTest, public testing::WithParamInterface<SystemRow> {
 protected:
  ScriptedMachine machine;
};

TEST_P(MacSystems, OperatingSystem) {
  const SystemRow& row = GetParam();
  mac().lists["list"] = version_list(row.version, row.build);
  machine.files = row.files;
  machine.commands = row.commands;
  machine.machine = row.machine;
  OSInformation record;
  EXPECT_EQ(row.ok, collect_os(machine, record));
  EXPECT_EQ(L"MAC", record.platformId);
  EXPECT_EQ(L"Mac OS X", record.osType);
  EXPECT_EQ(L"Apple Macintosh", record.osOemId);
  EXPECT_EQ(row.version_text, record.osVersion);
  EXPECT_EQ(row.patch, record.osCsdVersion);
  EXPECT_EQ(row.build_text, record.osBuildNum);
  EXPECT_EQ(row.platform, record.osPlatform);
  EXPECT_EQ(row.bits, record.osBitMode);
  EXPECT_EQ(row.commands_run, machine.commands_run);
}

INSTANTIATE_TEST_SUITE_P(
    Macs, MacSystems,
    testing::Values(
        SystemRow{"VersionListAlone",
                  {{kVersionList, "list"}},
                  "10.15.7",
                  "19H15",
                  {},
                  "x86_64",
                  true,
                  L"10.15.7",
                  L"7",
                  L"19H15",
                  L"Workstation",
                  L"1",
                  {kServerTool}},
        SystemRow{"CompatibilityListFirst",
                  {{kCompatibilityList, "list"}, {kVersionList, "other"}},
                  "10.16",
                  "23C71",
                  {{kBitTool, "1\n"}},
                  "arm64",
                  true,
                  L"10.16",
                  L"N/A",
                  L"23C71",
                  L"Workstation",
                  L"1",
                  {kServerTool, kBitTool}},
        SystemRow{"Server",
                  {{kVersionList, "list"}},
                  "14.2.1",
                  "23C71",
                  {{kServerTool, "macOS SERVER\n"}},
                  "x86_64",
                  true,
                  L"14.2.1",
                  L"1",
                  L"23C71",
                  L"Server",
                  L"1",
                  {kServerTool}},
        // The version's minor part lay at the fourth byte, where the build text now has "5".
        SystemRow{"QuirkTheMinorPartIsReadFromTheBuild",
                  {{kVersionList, "list"}},
                  "10.15",
                  "20A5",
                  {{kVersionTool, "Mac OS X Server"}},
                  "i386",
                  true,
                  L"10.15",
                  L"N/A",
                  L"20A5",
                  L"Server",
                  L"0",
                  {kVersionTool}},
        SystemRow{"QuirkABuildBelowTenAsksNoTool",
                  {{kVersionList, "list"}},
                  "10.5.8",
                  "9L30",
                  {{kVersionTool, "Server"}, {kServerTool, "Server"}},
                  "i386",
                  true,
                  L"10.5.8",
                  L"8",
                  L"9L30",
                  L"Workstation",
                  L"0",
                  {}},
        SystemRow{"NoBitTool",
                  {{kVersionList, "list"}},
                  "14.2",
                  "9",
                  {},
                  "arm64",
                  true,
                  L"14.2",
                  L"N/A",
                  L"9",
                  L"Workstation",
                  L"-1",
                  {kBitTool}},
        SystemRow{"KernelNamesUnreadable",
                  {{kVersionList, "list"}},
                  "14.2",
                  "9",
                  {{kBitTool, "0"}},
                  std::nullopt,
                  true,
                  L"14.2",
                  L"N/A",
                  L"9",
                  L"Workstation",
                  L"0",
                  {kBitTool}},
        SystemRow{"NoList",
                  {},
                  "14.2",
                  "9",
                  {},
                  "arm64",
                  false,
                  L"N/A",
                  L"N/A",
                  L"N/A",
                  L"N/A",
                  L"N/A",
                  {}},
        SystemRow{"NotAList",
                  {{kVersionList, "other"}},
                  "14.2",
                  "9",
                  {},
                  "arm64",
                  false,
                  L"N/A",
                  L"N/A",
                  L"N/A",
                  L"N/A",
                  L"N/A",
                  {}},
        SystemRow{"FirstByteZero",
                  {{kVersionList, std::string("\0list", 5)}},
                  "14.2",
                  "9",
                  {},
                  "arm64",
                  false,
                  L"N/A",
                  L"N/A",
                  L"N/A",
                  L"N/A",
                  L"N/A",
                  {}}),
    [](const auto& row) { return row.param.name; });

TEST_F(MacVersions, AKeyThatCannotBeMadeKeepsWhatWasWrittenBefore) {
  struct Row {
    const char* name;
    int keys;  // that can be made
    const wchar_t *version, *patch;
  };
  const Row rows[] = {{"VersionKey", 0, L"N/A", L"N/A"}, {"BuildKey", 1, L"10.15.7", L"7"}};
  for (const Row& row : rows) {
    mac().lists["list"] = version_list("10.15.7", "19H15");
    mac().text_objects = row.keys;
    ScriptedMachine machine;
    machine.files[kVersionList] = "list";
    OSInformation record;
    EXPECT_FALSE(collect_os(machine, record)) << row.name;
    EXPECT_EQ(L"MAC", record.platformId) << row.name;
    EXPECT_EQ(row.version, record.osVersion) << row.name;
    EXPECT_EQ(row.patch, record.osCsdVersion) << row.name;
    EXPECT_EQ(L"N/A", record.osBuildNum) << row.name;
    EXPECT_EQ(L"N/A", record.osPlatform) << row.name;
  }
}

}  // namespace
}  // namespace orbtest
