// tests/sysprops/answers_test.cpp: the categories' keys and what an object answers under each.
#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "sysprops/records.h"
#include "sysprops/report.h"
#include "tests/support/property_keys.h"
#include "tests/support/sample_machines.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/scoped_local_ip.h"

namespace {

using namespace quillon_com::orb::sysprops;
using orbtest::FakeSystem;
using orbtest::KeyKind;
using orbtest::PropertyKey;

std::vector<bool> claims(const std::wstring& key) {
  ISysProps props;
  return {props.IsNetworkProperty(key), props.IsCPUProperty(key),  props.IsMemoryProperty(key),
          props.IsMiscProperty(key),    props.IsDiskProperty(key), props.IsOSProperty(key)};
}

TEST(Predicates, EachKeyIsClaimedByItsCategoryAlone) {
  EXPECT_EQ(29U, orbtest::claimed_keys().size());
  for (const PropertyKey& key : orbtest::claimed_keys()) {
    std::vector<bool> expected(6, false);
    expected[static_cast<size_t>(key.kind)] = true;
    EXPECT_EQ(expected, claims(key.key)) << orbtest::shown(key.key);
  }
}

TEST(Predicates, NoOtherKeyIsClaimed) {
  const std::vector<bool> none(6, false);
  for (const std::wstring& key : orbtest::unclaimed_keys())
    EXPECT_EQ(none, claims(key)) << orbtest::shown(key);
}

TEST(Predicates, QuirkNobodyClaimsTheNumberOfFileSystems) {
  EXPECT_EQ(std::vector<bool>(6, false), claims(L"NumberOfFileSystems"));
  ISysProps props;
  EXPECT_EQ(L"", props.GetOneSystemProperty(L"NumberOfFileSystems"));
  EXPECT_NE(L"N/A", props.GetOneDiskProperty(L"NumberOfFileSystems"));
  EXPECT_NE(L"", props.GetOneDiskProperty(L"NumberOfFileSystems"));
}

struct AnswerCase {
  const char* key;
  KeyKind kind;
  std::wstring value;
};

// One object's records, answered through the overload of each category.
struct Answers {
  NetworkInformation network;
  CPUInformation cpu;
  MemoryInformation memory;
  MiscInformation misc;
  DiskInformation disk;
  OSInformation os;

  std::wstring ask(const FakeSystem& system, KeyKind kind, const std::wstring& key) {
    switch (kind) {
      case KeyKind::network:
        return refreshed_value(system, network, key);
      case KeyKind::cpu:
        return refreshed_value(system, cpu, key);
      case KeyKind::memory:
        return refreshed_value(system, memory, key);
      case KeyKind::misc:
        return refreshed_value(system, misc, key);
      case KeyKind::disk:
        return refreshed_value(system, disk, key);
      case KeyKind::os:
        return refreshed_value(system, os, key);
    }
    return L"no such kind";
  }
};

constexpr KeyKind kKinds[] = {KeyKind::network, KeyKind::cpu,  KeyKind::memory,
                              KeyKind::misc,    KeyKind::disk, KeyKind::os};

class OneAnswer : public testing::TestWithParam<AnswerCase> {
 protected:
  const orbtest::ScopedEnvironment lang_{"LANG", "ja_JP"};
  const orbtest::ScopedLocalIp no_address_{L""};
  const std::wstring key_ = std::wstring(GetParam().key, GetParam().key + strlen(GetParam().key));
};

TEST_P(OneAnswer, IsTheFieldOfItsKeyInItsCategoryOnly) {
  const std::wstring& key = key_;
  for (const KeyKind kind : kKinds) {
    FakeSystem machine = orbtest::release_machine();
    const std::wstring expected = kind == GetParam().kind ? GetParam().value : L"N/A";
    EXPECT_EQ(expected, Answers().ask(machine, kind, key)) << static_cast<int>(kind);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Keys, OneAnswer,
    testing::Values(AnswerCase{"ComputerName", KeyKind::network, L"box"},
                    AnswerCase{"DomainName", KeyKind::network, L"office.example"},
                    AnswerCase{"IPAddress", KeyKind::network, L"192.0.2.20"},
                    AnswerCase{"IPHostName", KeyKind::network, L"box.office.example"},
                    AnswerCase{"IPXAddress", KeyKind::network, L"N/A"},
                    AnswerCase{"NETAddress", KeyKind::network, L"02000000000a"},
                    AnswerCase{"SubnetAddress", KeyKind::network, L"192.0.2.0"},
                    AnswerCase{"SubnetMask", KeyKind::network, L"255.255.255.0"},
                    AnswerCase{"CPUType", KeyKind::cpu, L"x86_64 Model Q"},
                    AnswerCase{"NumOfCPU", KeyKind::cpu, L"4"},
                    AnswerCase{"CPUSpeed", KeyKind::cpu, L"2400 MHz"},
                    AnswerCase{"IsPortable", KeyKind::cpu, L"1"},
                    AnswerCase{"CPUSerialNumber", KeyKind::cpu, L"N/A"},
                    AnswerCase{"TotalPhysicalMemory", KeyKind::memory, L"17179869184"},
                    AnswerCase{"FreeMemory", KeyKind::memory, L"858993459"},
                    AnswerCase{"UserName", KeyKind::misc, L"jane"},
                    AnswerCase{"TimeZone", KeyKind::misc, L"CET"},
                    AnswerCase{"DefaultLangID", KeyKind::misc, L"0411"},
                    AnswerCase{"LastUpdate", KeyKind::misc, L"02/03/2024 09:07:05"},
                    AnswerCase{"FreeDiskSpace", KeyKind::disk, L"1201.88"},
                    AnswerCase{"TotalDiskSpace", KeyKind::disk, L"4006.25"},
                    AnswerCase{"NumberOfFileSystems", KeyKind::disk, L"2"},
                    AnswerCase{"OSType", KeyKind::os, L"Linux"},
                    AnswerCase{"OSBitMode", KeyKind::os, L"1"},
                    AnswerCase{"OSPlatform", KeyKind::os, L"Workstation"},
                    AnswerCase{"OSVersion", KeyKind::os, L"12.5.1"},
                    AnswerCase{"OSBuildNum", KeyKind::os, L"6.1.0-18-amd64"},
                    AnswerCase{"OSCsdVersion", KeyKind::os, L"1"},
                    AnswerCase{"OSOEMId", KeyKind::os, L"Debian GNU/Linux"},
                    AnswerCase{"PlatformID", KeyKind::os, L"LINUX"},
                    AnswerCase{"SystemInfo", KeyKind::network, L"N/A"},
                    AnswerCase{"freememory", KeyKind::memory, L"N/A"}),
    [](const auto& row) { return row.param.key; });

TEST(RefreshedValue, RefreshesTheWholeRecordForAnyKey) {
  const orbtest::ScopedLocalIp none(L"");
  Answers answers;
  for (const KeyKind kind : kKinds) {
    EXPECT_EQ(L"N/A", answers.ask(orbtest::release_machine(), kind, L"no such key"));
  }
  EXPECT_EQ(L"192.0.2.20", answers.network.ipAddress);
  EXPECT_EQ(L"box.office.example", answers.network.ipHostName);
  EXPECT_EQ(L"1", answers.cpu.isPortable);
  EXPECT_EQ(L"4", answers.cpu.numOfCPU);
  EXPECT_EQ(L"858993459", answers.memory.freeMemory);
  EXPECT_EQ(L"jane", answers.misc.userName);
  EXPECT_EQ(L"02/03/2024 09:07:05", answers.misc.lastUpdate);
  EXPECT_EQ(2U, answers.disk.fileSystems.size());
  EXPECT_EQ(L"12.5.1", answers.os.osVersion);
  EXPECT_EQ(L"1", answers.os.osBitMode);
}

TEST(RefreshedValue, FollowsTheMachine) {
  FakeSystem machine = orbtest::release_machine();
  Answers answers;
  EXPECT_EQ(L"4", answers.ask(machine, KeyKind::cpu, L"NumOfCPU"));
  machine.processors = 8;
  EXPECT_EQ(L"8", answers.ask(machine, KeyKind::cpu, L"NumOfCPU"));
}

TEST(RefreshedValue, IsThePreviousOneWhenTheCollectorFails) {
  const orbtest::ScopedLocalIp none(L"");
  FakeSystem machine = orbtest::release_machine();
  Answers answers;
  answers.ask(machine, KeyKind::network, L"IPAddress");
  answers.ask(machine, KeyKind::cpu, L"IsPortable");
  answers.ask(machine, KeyKind::memory, L"FreeMemory");
  machine.entries.reset();
  machine.processor = {"", "", std::nullopt};
  machine.chassis_fact = quillon_com::orb::platform::Chassis::stationary;
  machine.free_pages.reset();
  EXPECT_EQ(L"192.0.2.20", answers.ask(machine, KeyKind::network, L"IPAddress"));
  EXPECT_EQ(L"1", answers.ask(machine, KeyKind::cpu, L"IsPortable"));
  EXPECT_EQ(L"", answers.ask(machine, KeyKind::cpu, L"CPUType"));
  EXPECT_EQ(L"858993459", answers.ask(machine, KeyKind::memory, L"FreeMemory"));
}

}  // namespace
