// tests/sysprops/wrappers_test.cpp: single answers by key, and what they ask a machine for.
#include <gtest/gtest.h>

#include <cwchar>
#include <set>
#include <string>
#include <vector>

#include "sysprops/report.h"
#include "tests/support/asking_system.h"
#include "tests/support/property_keys.h"
#include "tests/support/sample_machines.h"
#include "tests/support/scoped_local_ip.h"

namespace {

using namespace quillon_com::orb::sysprops;
using orbtest::FakeSystem;
using orbtest::KeyKind;
using quillon_com::orb::platform::System;

template <class Record>
std::wstring whole_answer(const System& system, const std::wstring& key) {
  Record record;
  return refreshed_value(system, record, key);
}

// The answer by a whole collection into a fresh record.
std::wstring whole_answer(const System& system, const orbtest::PropertyKey& key) {
  switch (key.kind) {
    case KeyKind::network:
      return whole_answer<NetworkInformation>(system, key.key);
    case KeyKind::cpu:
      return whole_answer<CPUInformation>(system, key.key);
    case KeyKind::memory:
      return whole_answer<MemoryInformation>(system, key.key);
    case KeyKind::misc:
      return whole_answer<MiscInformation>(system, key.key);
    case KeyKind::disk:
      return whole_answer<DiskInformation>(system, key.key);
    case KeyKind::os:
      return whole_answer<OSInformation>(system, key.key);
  }
  return L"no such kind";
}

struct MachineCase {
  const char* name;
  FakeSystem (*machine)();
};

class FreshAnswer : public testing::TestWithParam<MachineCase> {};

TEST_P(FreshAnswer, IsThatOfAWholeCollection) {
  const orbtest::ScopedLocalIp none(L"");
  for (const orbtest::PropertyKey& key : orbtest::claimed_keys()) {
    FakeSystem whole = GetParam().machine();
    FakeSystem single = GetParam().machine();
    EXPECT_EQ(whole_answer(whole, key), fresh_answer(single, key.key)) << orbtest::shown(key.key);
  }
}

template <FakeSystem (*base)(), class Change>
FakeSystem changed(Change change) {
  FakeSystem machine = base();
  change(machine);
  return machine;
}

constexpr auto kRelease = orbtest::release_machine;
constexpr auto kVersionList = orbtest::version_list_machine;

INSTANTIATE_TEST_SUITE_P(
    Machines, FreshAnswer,
    testing::Values(
        MachineCase{"WithReleaseFiles", kRelease}, MachineCase{"WithAVersionList", kVersionList},
        MachineCase{"ThatTellsNothing", [] { return FakeSystem(); }},
        MachineCase{"WithoutProcessorNames",
                    [] {
                      return changed<kRelease>([](FakeSystem& m) {
                        m.processor = {"", "", 5000000};
                      });
                    }},
        MachineCase{"WithUnknownSelectors",
                    [] {
                      return changed<kVersionList>([](FakeSystem& m) {
                        m.gestalts = {{0x63707574, 0x7FFFFFFF}};
                      });
                    }},
        MachineCase{"WhoseClockIsTakenForItsArchitecture",
                    [] {
                      return changed<kVersionList>([](FakeSystem& m) {
                        m.gestalts = {{0x70636C6B, 2}, {0x63707574, 0x7FFFFFFF}};
                      });
                    }},
        MachineCase{"WithoutInterfaces",
                    [] { return changed<kRelease>([](FakeSystem& m) { m.entries.reset(); }); }},
        MachineCase{"WithoutAHostName",
                    [] { return changed<kRelease>([](FakeSystem& m) { m.host.reset(); }); }},
        MachineCase{"ThatNoResolverKnows",
                    [] { return changed<kRelease>([](FakeSystem& m) { m.officials.clear(); }); }},
        MachineCase{"OfAKernelDomain",
                    [] { return changed<kRelease>([](FakeSystem& m) { m.nis_domain = "corp"; }); }},
        MachineCase{"WithoutKernelNames",
                    [] { return changed<kRelease>([](FakeSystem& m) { m.kernel.reset(); }); }},
        MachineCase{"WithoutFreePages",
                    [] { return changed<kRelease>([](FakeSystem& m) { m.free_pages.reset(); }); }},
        MachineCase{"WithoutTotalMemory",
                    [] { return changed<kRelease>([](FakeSystem& m) { m.memory.reset(); }); }},
        MachineCase{"WithoutVolumes",
                    [] { return changed<kRelease>([](FakeSystem& m) { m.mounted.clear(); }); }},
        MachineCase{"WithoutUsers",
                    [] { return changed<kRelease>([](FakeSystem& m) { m.sessions.clear(); }); }},
        MachineCase{"WithoutLocalTime",
                    [] { return changed<kRelease>([](FakeSystem& m) { m.broken_down.reset(); }); }},
        MachineCase{"WithABrokenVersionList",
                    [] { return changed<kVersionList>([](FakeSystem& m) { m.lists.clear(); }); }},
        MachineCase{"WithoutTools",
                    [] {
                      return changed<kVersionList>([](FakeSystem& m) {
                        m.commands.clear();
                        m.kernel->machine = "arm64";
                      });
                    }}),
    [](const auto& row) { return row.param.name; });

TEST(FreshAnswer, PrefersTheLastKnownLocalAddress) {
  FakeSystem system = orbtest::release_machine();
  system.entries->push_back(
      orbtest::address_entry("eth0", orbtest::ipv4("10.9.8.7"), orbtest::ipv4("255.0.0.0")));
  const orbtest::ScopedLocalIp preferred(L"10.9.8.7");
  EXPECT_EQ(L"10.9.8.7", fresh_answer(system, L"IPAddress"));
  EXPECT_EQ(L"10.0.0.0", fresh_answer(system, L"SubnetAddress"));
  EXPECT_EQ(L"255.0.0.0", fresh_answer(system, L"SubnetMask"));
}

struct NeedCase {
  const char* key;
  std::set<std::string> facts;  // that the answer may ask a machine with release files for
};

class FreshAnswerNeeds : public testing::TestWithParam<NeedCase> {};

TEST_P(FreshAnswerNeeds, OnlyWhatItsPropertyDependsOn) {
  const FakeSystem machine = orbtest::release_machine();
  const orbtest::AskingSystem system(machine);
  const std::string key = GetParam().key;
  EXPECT_NE(L"", fresh_answer(system, std::wstring(key.begin(), key.end())));
  EXPECT_EQ(GetParam().facts, system.asked);
}

const std::set<std::string> kAddressFacts{"interface_entries", "interface_index", "family_usable"};
const std::set<std::string> kOsFacts{"release_texts", "kernel_names"};
const std::set<std::string> kTimeFacts{"zone_name", "wall_clock", "local_time"};

INSTANTIATE_TEST_SUITE_P(
    Keys, FreshAnswerNeeds,
    testing::Values(
        NeedCase{"CPUType", {"processor_texts"}}, NeedCase{"CPUSpeed", {"processor_texts"}},
        NeedCase{"NumOfCPU", {"processor_count"}}, NeedCase{"CPUSerialNumber", {}},
        NeedCase{"IsPortable", {"processor_texts", "chassis"}},
        NeedCase{"ComputerName", {"kernel_names"}},
        NeedCase{"DomainName", {"kernel_domain", "host_name", "official_host_name"}},
        NeedCase{"IPHostName", {"host_name", "official_host_name"}},
        NeedCase{"IPAddress", kAddressFacts}, NeedCase{"SubnetAddress", kAddressFacts},
        NeedCase{"SubnetMask", kAddressFacts}, NeedCase{"NETAddress", kAddressFacts},
        NeedCase{"IPXAddress", {}}, NeedCase{"TotalPhysicalMemory", {"total_memory"}},
        NeedCase{"FreeMemory", {"total_memory", "free_memory"}},
        NeedCase{"TotalDiskSpace", {"volumes"}}, NeedCase{"FreeDiskSpace", {"volumes"}},
        NeedCase{"OSType", kOsFacts}, NeedCase{"OSPlatform", kOsFacts},
        NeedCase{"OSVersion", kOsFacts}, NeedCase{"OSCsdVersion", kOsFacts},
        NeedCase{"OSBuildNum", kOsFacts}, NeedCase{"OSOEMId", kOsFacts},
        NeedCase{"PlatformID", kOsFacts}, NeedCase{"OSBitMode", kOsFacts},
        NeedCase{"UserName",
                 {"next_session_entry", "rewind_sessions", "primary_group", "command_output"}},
        NeedCase{"TimeZone", kTimeFacts}, NeedCase{"LastUpdate", kTimeFacts},
        NeedCase{"DefaultLangID", {}}),
    [](const auto& row) { return row.param.key; });

TEST(FreshAnswer, OnlyTheTwoNamesLookTheHostUpAndOnce) {
  for (const orbtest::PropertyKey& key : orbtest::claimed_keys()) {
    const FakeSystem system = orbtest::release_machine();
    fresh_answer(system, key.key);
    const std::wstring name = key.key;
    const size_t expected = name == L"DomainName" || name == L"IPHostName" ? 1 : 0;
    EXPECT_EQ(expected, system.look_ups.size()) << orbtest::shown(name);
  }
}

TEST(FreshAnswer, AKernelDomainNeedsNoLookUp) {
  FakeSystem system = orbtest::release_machine();
  system.nis_domain = "corp.example";
  EXPECT_EQ(L"corp.example", fresh_answer(system, L"DomainName"));
  EXPECT_TRUE(system.look_ups.empty());
}

TEST(FreshAnswer, OnlyTheServerTestRunsAProductTool) {
  for (const wchar_t* key : {L"OSType", L"OSVersion", L"OSBuildNum", L"OSCsdVersion", L"OSOEMId",
                             L"PlatformID", L"OSBitMode"}) {
    const FakeSystem system = orbtest::version_list_machine();
    EXPECT_NE(L"", fresh_answer(system, key));
    EXPECT_TRUE(system.commands_run.empty());
  }
  const FakeSystem system = orbtest::version_list_machine();
  EXPECT_EQ(L"Server", fresh_answer(system, L"OSPlatform"));
  EXPECT_EQ(std::vector<std::string>{"sw_vers -productName"}, system.commands_run);
}

TEST(FreshAnswer, IsEmptyAndAsksNothingForAnUnclaimedKey) {
  for (const std::wstring& key : orbtest::unclaimed_keys()) {
    const FakeSystem machine = orbtest::release_machine();
    const orbtest::AskingSystem system(machine);
    EXPECT_EQ(L"", fresh_answer(system, key)) << orbtest::shown(key);
    EXPECT_TRUE(system.asked.empty());
  }
}

}  // namespace
