// tests/tools/properties_test.cpp: tools/orbprops/properties.h against the library's constants.
#include "tools/orbprops/properties.h"

#include <gtest/gtest.h>

#include <ctime>
#include <map>
#include <set>

#include "sysprops/records.h"

namespace {

namespace props = quillon_com::orb::sysprops;

// Every key of the report under the constant that the library exports for it, with a distinct
// value in the field that the key stands for.
struct Filled {
  orbprops::Records records;
  std::map<std::wstring, std::wstring> expected;

  Filled() {
    auto put = [this](std::wstring& field, const std::wstring& key) {
      field = L"of " + key;
      expected[key] = field;
    };
    put(records.os.osType, props::OSType_Key);
    put(records.os.osVersion, props::OSVersion_Key);
    put(records.os.osCsdVersion, props::OSCsdVersion_Key);
    put(records.os.osBuildNum, props::OSBuildNum_Key);
    put(records.os.osPlatform, props::OSPlatform_Key);
    put(records.os.osBitMode, props::OSBitMode_Key);
    put(records.os.osOemId, props::OSOEMId_Key);
    put(records.os.platformId, props::PlatformId_Key);
    put(records.cpu.cpuType, props::CPUType_Key);
    put(records.cpu.cpuSpeed, props::CPUSpeed_Key);
    put(records.cpu.numOfCPU, props::NumOfCPU_Key);
    put(records.cpu.cpuSerialNumber, props::CPUSerialNumber_Key);
    put(records.cpu.isPortable, props::CPUPortable_Key);
    put(records.memory.totalPhysicalMemory, props::TotalPhysicalMemory_Key);
    put(records.memory.freeMemory, props::FreeMemory_Key);
    put(records.network.computerName, props::ComputerName_Key);
    put(records.network.domainName, props::DomainName_Key);
    put(records.network.ipHostName, props::IPHostName_Key);
    put(records.network.ipAddress, props::IPAddress_Key);
    put(records.network.subnetMask, props::SubnetMask_Key);
    put(records.network.subnetAddress, props::SubnetAddress_Key);
    put(records.network.netAddress, props::NETAddress_Key);
    put(records.network.ipxAddress, props::IPXAddress_Key);
    put(records.misc.userName, props::UserName_Key);
    put(records.misc.timeZone, props::TimeZone_Key);
    put(records.misc.defaultLangId, props::DefaultLangID_Key);
    put(records.misc.lastUpdate, props::LastUpdate_Key);
    put(records.disk.numFileSystems, props::NumFileSystems_Key);
    put(records.disk.totalDiskSpace, props::TotalDiskSpace_Key);
    put(records.disk.freeDiskSpace, props::FreeDiskSpace_Key);
  }
};

TEST(Properties, EveryKeyReadsItsOwnField) {
  const Filled filled;
  std::map<std::wstring, std::wstring> found;
  for (const orbprops::PropertyInfo& info : orbprops::kProperties) {
    found[std::wstring(info.key.begin(), info.key.end())] = info.field(filled.records);
  }
  EXPECT_EQ(filled.expected, found);
}

TEST(Properties, EveryKeyIsAnsweredByItsOwnCategory) {
  tzset();
  props::ISysProps source;
  const std::set<std::string_view> moving = {"FreeMemory", "FreeDiskSpace", "LastUpdate"};
  std::map<std::wstring, std::wstring> all;
  std::map<std::wstring, std::pair<std::wstring, std::wstring>> file_systems;
  ASSERT_TRUE(source.GetAllSystemProperties(all, file_systems));
  for (const orbprops::PropertyInfo& info : orbprops::kProperties) {
    const std::wstring answer = info.answer();
    const std::wstring reported = all[std::wstring(info.key.begin(), info.key.end())];
    if (moving.count(info.key) == 0) {
      EXPECT_EQ(reported, answer) << info.key;
    } else {
      EXPECT_EQ(reported.empty(), answer.empty()) << info.key;
    }
  }
}

TEST(Properties, GroupsAreNotTornApart) {
  std::set<std::string_view> groups;
  std::string_view last;
  for (const orbprops::PropertyInfo& info : orbprops::kProperties) {
    if (info.group != last) {
      EXPECT_TRUE(groups.insert(info.group).second) << info.group;
    }
    last = info.group;
    EXPECT_FALSE(info.meaning.empty()) << info.key;
  }
  EXPECT_EQ(5U, groups.size());
}

TEST(Properties, KeysAreComparedExactly) {
  ASSERT_NE(nullptr, orbprops::find_property("OSVersion"));
  EXPECT_EQ("OSVersion", orbprops::find_property("OSVersion")->key);
  EXPECT_EQ(nullptr, orbprops::find_property("osversion"));
  EXPECT_EQ(nullptr, orbprops::find_property("OSVersio"));
  EXPECT_EQ(nullptr, orbprops::find_property("OSVersion "));
  EXPECT_EQ(nullptr, orbprops::find_property("SystemInfo"));
  EXPECT_EQ(nullptr, orbprops::find_property(""));
}

struct UnansweredCase {
  const char* name;
  const char* key;
  const wchar_t* value;
  bool unanswered;
};

class Unanswered : public testing::TestWithParam<UnansweredCase> {};

TEST_P(Unanswered, IsTold) {
  EXPECT_EQ(GetParam().unanswered, orbprops::is_unanswered(GetParam().key, GetParam().value));
}

INSTANTIATE_TEST_SUITE_P(
    Values, Unanswered,
    testing::Values(UnansweredCase{"Default", "OSType", L"N/A", true},
                    UnansweredCase{"Empty", "PlatformID", L"", true},
                    UnansweredCase{"NobodyLoggedOn", "UserName", L"NA", true},
                    UnansweredCase{"UserDefault", "UserName", L"N/A", true},
                    UnansweredCase{"DomainCalledNa", "DomainName", L"NA", false},
                    UnansweredCase{"Value", "OSType", L"Linux", false},
                    UnansweredCase{"LowerCase", "OSType", L"n/a", false},
                    UnansweredCase{"UnknownBitMode", "OSBitMode", L"-1", false}),
    [](const auto& row) { return row.param.name; });

}  // namespace
