// tests/system/versionlist_test.cpp: the operating-system record by version lists at their places.
#include <gtest/gtest.h>
#include <sys/utsname.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/system.h"
#include "sysprops/collect.h"
#include "tests/support/binary_list.h"
#include "tests/support/mount_namespace.h"
#include "tests/support/private_root.h"

namespace {

using namespace orbtest;
namespace sysprops = quillon_com::orb::sysprops;

constexpr char kFolder[] = "/System/Library/CoreServices";

std::string narrow(const std::wstring& text) { return {text.begin(), text.end()}; }

// The whole record of the running machine, collected into a fresh one.
void print_record() {
  sysprops::OSInformation record;
  const bool result = sysprops::collect_os(quillon_com::orb::platform::host(), record);
  std::printf("%d|%s|%s|%s|%s|%s|%s|%s|%s", result, narrow(record.platformId).c_str(),
              narrow(record.osType).c_str(), narrow(record.osOemId).c_str(),
              narrow(record.osVersion).c_str(), narrow(record.osCsdVersion).c_str(),
              narrow(record.osBuildNum).c_str(), narrow(record.osPlatform).c_str(),
              narrow(record.osBitMode).c_str());
}

struct Machine {
  std::string compatibility_list;  // empty: there is none
  std::string version_list;        // likewise
  std::string product_name;        // what "sw_vers" prints; empty: no such tool
  std::string server_name;         // what "serverinfo" prints; likewise
};

bool set_up(const Machine& machine) {
  if (!enter_private_root()) return false;
  std::filesystem::create_directories(kFolder);
  const std::string folder = std::string(kFolder) + "/";
  if (!machine.compatibility_list.empty()) {
    write_file(folder + "SystemVersionCompat.plist", machine.compatibility_list);
  }
  if (!machine.version_list.empty()) {
    write_file(folder + "SystemVersion.plist", machine.version_list);
  }
  if (!machine.product_name.empty()) {
    write_tool("/tools/sw_vers", "[ \"$*\" = -productName ] && echo " + machine.product_name);
  }
  if (!machine.server_name.empty()) {
    write_tool("/tools/serverinfo", "[ \"$*\" = --productname ] && echo " + machine.server_name);
  }
  setenv("PATH", "/tools:/usr/bin:/bin", 1);
  return true;
}

std::string xml_list(const std::string& version, const std::string& build) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//X//DTD PLIST 1.0//EN\" \"http://x.example/p.dtd\">\n"
         "<plist version=\"1.0\">\n<dict>\n\t<key>ProductBuildVersion</key>\n\t<string>" +
         build + "</string>\n\t<key>ProductName</key>\n\t<string>System</string>\n" +
         "\t<key>ProductVersion</key>\n\t<string>" + version + "</string>\n</dict>\n</plist>\n";
}

std::string binary_list(const std::string& version, const std::string& build) {
  return BinaryList{{dictionary_object({{1, 2}, {3, 4}}), ascii_object("ProductVersion"),
                     ascii_object(version), ascii_object("ProductBuildVersion"),
                     ascii_object(build)}}
      .bytes();
}

const std::string kFixed = "|MAC|Mac OS X|Apple Macintosh|";
const std::string kNothingRead = "0" + kFixed + "N/A|N/A|N/A|N/A|N/A";

struct ListCase {
  const char* name;
  Machine machine;
  std::string record;  // but for the bit mode of a record that was collected
};

class VersionList : public testing::TestWithParam<ListCase> {};

TEST_P(VersionList, FillsTheRecord) {
  const auto written = in_mount_namespace([] {
    if (!set_up(GetParam().machine)) return false;
    print_record();
    return true;
  });
  if (!written) GTEST_SKIP() << "needs root and its own mounts";
  utsname kernel{};
  ASSERT_EQ(0, uname(&kernel));
  if (std::string(kernel.machine).find("_64") == std::string::npos) {
    GTEST_SKIP() << "the bit mode of this machine takes a tool that is not here";
  }
  EXPECT_EQ(GetParam().record + (GetParam().record[0] == '1' ? "|1" : ""), *written);
}

// The build takes the version's place in one buffer: of "19H15" the minor number's place holds
// "15", of "10H5" it holds "5".
INSTANTIATE_TEST_SUITE_P(
    Sound, VersionList,
    testing::Values(ListCase{"VersionListAlone",
                             {"", xml_list("10.15.7", "19H15"), "", ""},
                             "1" + kFixed + "10.15.7|7|19H15|Workstation"},
                    ListCase{"BinaryList",
                             {"", binary_list("10.15.7", "19H15"), "", ""},
                             "1" + kFixed + "10.15.7|7|19H15|Workstation"},
                    ListCase{"TwoComponentsLeaveThePatchLevel",
                             {"", xml_list("11.2", "20D64"), "", ""},
                             "1" + kFixed + "11.2|N/A|20D64|Workstation"},
                    ListCase{"CompatibilityListFirst",
                             {xml_list("10.16", "20D64"), xml_list("11.2.1", "20D74"), "", ""},
                             "1" + kFixed + "10.16|N/A|20D64|Workstation"},
                    ListCase{"QuirkServerToolChosenByTheBuildText",
                             {"", xml_list("10.5.8", "19H15"), "Workstation", "macOS Server"},
                             "1" + kFixed + "10.5.8|8|19H15|Server"},
                    ListCase{"QuirkProductToolChosenByTheBuildText",
                             {"", xml_list("10.15.7", "10H5"), "Mac OS X SERVER", "none"},
                             "1" + kFixed + "10.15.7|7|10H5|Server"},
                    ListCase{"QuirkBuildBelowTenRunsNoTool",
                             {"", xml_list("10.15.7", "9L31"), "Server", "Server"},
                             "1" + kFixed + "10.15.7|7|9L31|Workstation"}),
    [](const auto& row) { return row.param.name; });

std::string deep_list() {
  std::string text = "<plist><dict><key>ProductVersion</key>";
  for (int i = 0; i < 100000; ++i) text += "<array>";
  return text;
}

INSTANTIATE_TEST_SUITE_P(
    Unsound, VersionList,
    testing::Values(
        ListCase{"PlainText", {"", "10.15.7\n", "", ""}, kNothingRead},
        ListCase{"ZeroByteFirst",
                 {"", std::string(1, '\0') + xml_list("10.15.7", "19H15"), "", ""},
                 kNothingRead},
        ListCase{"CutXml", {"", xml_list("10.15.7", "19H15").substr(0, 250), "", ""}, kNothingRead},
        ListCase{
            "CutBinary", {"", binary_list("10.15.7", "19H15").substr(0, 80), "", ""}, kNothingRead},
        ListCase{"NoDictionary",
                 {"", "<plist><array><string>10.15.7</string></array></plist>", "", ""},
                 kNothingRead},
        ListCase{"EndlessNesting", {"", deep_list(), "", ""}, kNothingRead},
        ListCase{"UnsoundCompatibilityListHidesTheOther",
                 {"x", xml_list("10.15.7", "19H15"), "", ""},
                 kNothingRead}),
    [](const auto& row) { return row.param.name; });

TEST(VersionListEmpty, LeavesTheFixedNamesAlone) {
  const auto written = in_mount_namespace([] {
    if (!set_up({})) return false;
    write_file(std::string(kFolder) + "/SystemVersion.plist", "");
    print_record();
    return true;
  });
  if (!written) GTEST_SKIP() << "needs root and its own mounts";
  EXPECT_EQ(kNothingRead, *written);
}

}  // namespace
