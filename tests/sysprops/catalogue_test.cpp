// tests/sysprops/catalogue_test.cpp: the report maps and the answers by key, on scripted machines.
#include "sysprops/catalogue.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "sysprops/report.h"
#include "tests/support/forwarding_system.h"
#include "tests/support/property_keys.h"
#include "tests/support/sample_machines.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/scoped_local_ip.h"

namespace {

using namespace quillon_com::orb::sysprops;
using orbtest::FakeSystem;
using orbtest::KeyKind;

// The six records, each field of its own text.
struct OwnedRecords {
  CPUInformation cpu;
  NetworkInformation network;
  MemoryInformation memory;
  OSInformation os;
  DiskInformation disk;
  MiscInformation misc;

  Records refer() { return {cpu, network, memory, os, disk, misc}; }
};

OwnedRecords distinct_records() {
  OwnedRecords all;
  all.cpu = {L"cpuType", L"cpuSpeed", L"numOfCPU", L"cpuSerialNumber", L"isPortable"};
  all.network = {L"domainName", L"computerName", L"ipAddress",  L"subnetAddress",
                 L"subnetMask", L"netAddress",   L"ipxAddress", L"ipHostName"};
  all.memory = {L"totalPhysicalMemory", L"freeMemory"};
  all.os = {L"osType",     L"osPlatform", L"osVersion",  L"osCsdVersion",
            L"osBuildNum", L"osOemId",    L"platformId", L"osBitMode"};
  all.disk = {L"totalDiskSpace", L"freeDiskSpace", L"numFileSystems", {}};
  all.misc = {L"userName", L"timeZone", L"defaultLangId", L"lastUpdate"};
  return all;
}

PropertyMap distinct_report() {
  return {{L"CPUType", L"cpuType"},
          {L"CPUSpeed", L"cpuSpeed"},
          {L"NumOfCPU", L"numOfCPU"},
          {L"CPUSerialNumber", L"cpuSerialNumber"},
          {L"ComputerName", L"computerName"},
          {L"IPAddress", L"ipAddress"},
          {L"DomainName", L"domainName"},
          {L"NETAddress", L"netAddress"},
          {L"SubnetAddress", L"subnetAddress"},
          {L"IPXAddress", L"ipxAddress"},
          {L"SubnetMask", L"subnetMask"},
          {L"IPHostName", L"ipHostName"},
          {L"TotalPhysicalMemory", L"totalPhysicalMemory"},
          {L"FreeMemory", L"freeMemory"},
          {L"OSType", L"osType"},
          {L"OSBitMode", L"osBitMode"},
          {L"OSPlatform", L"osPlatform"},
          {L"OSVersion", L"osVersion"},
          {L"OSBuildNum", L"osBuildNum"},
          {L"OSCsdVersion", L"osCsdVersion"},
          {L"OSOEMId", L"osOemId"},
          {L"PlatformID", L"platformId"},
          {L"UserName", L"userName"},
          {L"TimeZone", L"timeZone"},
          {L"DefaultLangID", L"defaultLangId"},
          {L"LastUpdate", L"lastUpdate"},
          {L"NumberOfFileSystems", L"numFileSystems"},
          {L"FreeDiskSpace", L"freeDiskSpace"},
          {L"TotalDiskSpace", L"totalDiskSpace"}};
}

TEST(OneMapReport, QuirkHolds29KeysWithoutIsPortable) {
  OwnedRecords all = distinct_records();
  PropertyMap properties;
  write_report(all.refer(), properties);
  EXPECT_EQ(29U, properties.size());
  EXPECT_EQ(distinct_report(), properties);
}

TEST(OneMapReport, AddsTwoKeysPerFileSystem) {
  OwnedRecords all = distinct_records();
  all.disk.fileSystems = {{L"/", {L"3906.25", L"976.56"}},
                          {L"/mnt/a \"b\" \u00E9", {L"1.00", L"0.50"}},
                          {L"", {L"2.00", L"1.50"}}};
  PropertyMap expected = distinct_report();
  expected[L"FileSystem\"/\" Total_Disk_Space_in_MB"] = L"3906.25";
  expected[L"FileSystem\"/\" Free_Disk_Space_in_MB"] = L"976.56";
  expected[L"FileSystem\"/mnt/a \"b\" \u00E9\" Total_Disk_Space_in_MB"] = L"1.00";
  expected[L"FileSystem\"/mnt/a \"b\" \u00E9\" Free_Disk_Space_in_MB"] = L"0.50";
  expected[L"FileSystem\"\" Total_Disk_Space_in_MB"] = L"2.00";
  expected[L"FileSystem\"\" Free_Disk_Space_in_MB"] = L"1.50";
  PropertyMap properties;
  write_report(all.refer(), properties);
  EXPECT_EQ(expected, properties);
}

TEST(OneMapReport, ReplacesWhatTheMapHeld) {
  OwnedRecords all = distinct_records();
  PropertyMap properties{{L"mine", L"x"}, {L"CPUType", L"stale"}, {L"IsPortable", L"stale"}};
  write_report(all.refer(), properties);
  EXPECT_EQ(distinct_report(), properties);
}

TEST(TwoMapReport, Holds30KeysAndTheFileSystemsApart) {
  OwnedRecords all = distinct_records();
  all.disk.fileSystems = {{L"/", {L"3906.25", L"976.56"}}, {L"/data", {L"100.00", L"45.00"}}};
  PropertyMap expected = distinct_report();
  expected[L"IsPortable"] = L"isPortable";
  PropertyMap properties{{L"mine", L"x"}, {L"CPUType", L"stale"}};
  FileSystemMap file_systems{{L"/gone", {L"1", L"1"}}, {L"/", {L"stale", L"stale"}}};
  write_report(all.refer(), properties, file_systems);
  EXPECT_EQ(30U, properties.size());
  EXPECT_EQ(expected, properties);
  EXPECT_EQ(all.disk.fileSystems, file_systems);
}

TEST(TwoMapReport, EmptiesTheFileSystemsOfAMachineWithoutVolumes) {
  OwnedRecords all = distinct_records();
  PropertyMap properties;
  FileSystemMap file_systems{{L"/gone", {L"1", L"1"}}};
  write_report(all.refer(), properties, file_systems);
  EXPECT_TRUE(file_systems.empty());
}

// Notes the first fact that each collector asks for.
class OrderedSystem : public orbtest::ForwardingSystem {
 public:
  using ForwardingSystem::ForwardingSystem;
  bool interface_entries(InterfaceEntries* out) const override {
    order.push_back("network");
    return ForwardingSystem::interface_entries(out);
  }
  bool processor_count(int* out) const override {
    order.push_back("cpu");
    return ForwardingSystem::processor_count(out);
  }
  bool total_memory(uint64_t* out) const override {
    order.push_back("memory");
    return ForwardingSystem::total_memory(out);
  }
  std::vector<quillon_com::orb::platform::Volume> volumes() const override {
    order.push_back("disk");
    return ForwardingSystem::volumes();
  }
  bool zone_name(std::string* out) const override {
    order.push_back("misc");
    return ForwardingSystem::zone_name(out);
  }
  bool release_texts(quillon_com::orb::platform::ReleaseTexts* out) const override {
    order.push_back("os");
    return ForwardingSystem::release_texts(out);
  }
  mutable std::vector<std::string> order;
};

TEST(CollectRecords, RunsTheCollectorsInOrder) {
  const FakeSystem machine = orbtest::release_machine();
  const OrderedSystem system(machine);
  OwnedRecords all;
  collect_records(system, all.refer());
  EXPECT_EQ((std::vector<std::string>{"network", "cpu", "memory", "disk", "misc", "os"}),
            system.order);
}

TEST(CollectRecords, LooksTheHostUpOnceAndListsTheInterfacesOnce) {
  const FakeSystem system = orbtest::release_machine();
  OwnedRecords all;
  collect_records(system, all.refer());
  EXPECT_EQ(std::vector<std::string>{"box"}, system.look_ups);
  EXPECT_EQ(1U, system.entry_walks);
}

PropertyMap release_report() {
  return {{L"CPUType", L"x86_64 Model Q"},
          {L"CPUSpeed", L"2400 MHz"},
          {L"NumOfCPU", L"4"},
          {L"CPUSerialNumber", L"N/A"},
          {L"ComputerName", L"box"},
          {L"IPAddress", L"192.0.2.20"},
          {L"DomainName", L"office.example"},
          {L"NETAddress", L"02000000000a"},
          {L"SubnetAddress", L"192.0.2.0"},
          {L"IPXAddress", L"N/A"},
          {L"SubnetMask", L"255.255.255.0"},
          {L"IPHostName", L"box.office.example"},
          {L"TotalPhysicalMemory", L"17179869184"},
          {L"FreeMemory", L"858993459"},
          {L"OSType", L"Linux"},
          {L"OSBitMode", L"1"},
          {L"OSPlatform", L"Workstation"},
          {L"OSVersion", L"12.5.1"},
          {L"OSBuildNum", L"6.1.0-18-amd64"},
          {L"OSCsdVersion", L"1"},
          {L"OSOEMId", L"Debian GNU/Linux"},
          {L"PlatformID", L"LINUX"},
          {L"UserName", L"jane"},
          {L"TimeZone", L"CET"},
          {L"DefaultLangID", L"0409"},
          {L"LastUpdate", L"02/03/2024 09:07:05"},
          {L"NumberOfFileSystems", L"2"},
          // 1171.875 + 50 of 4006.25: the sixth twentieth, 1201.875, lies below.
          {L"FreeDiskSpace", L"1201.88"},
          {L"TotalDiskSpace", L"4006.25"},
          {L"FileSystem\"/\" Total_Disk_Space_in_MB", L"3906.25"},
          {L"FileSystem\"/\" Free_Disk_Space_in_MB", L"976.56"},
          {L"FileSystem\"/data\" Total_Disk_Space_in_MB", L"100.00"},
          {L"FileSystem\"/data\" Free_Disk_Space_in_MB", L"45.00"}};
}

class WholeReport : public testing::Test {
 protected:
  const orbtest::ScopedEnvironment lang_{"LANG", std::nullopt};
  const orbtest::ScopedLocalIp no_address_{L""};
};

TEST_F(WholeReport, OfAMachineWithReleaseFiles) {
  OwnedRecords all;
  collect_records(orbtest::release_machine(), all.refer());
  PropertyMap properties;
  write_report(all.refer(), properties);
  EXPECT_EQ(release_report(), properties);
}

TEST_F(WholeReport, OfAMachineWithAVersionList) {
  OwnedRecords all;
  collect_records(orbtest::version_list_machine(), all.refer());
  PropertyMap properties;
  write_report(all.refer(), properties);
  PropertyMap expected = release_report();
  expected[L"CPUType"] = L"Intel X86";
  expected[L"OSType"] = L"Mac OS X";
  expected[L"OSVersion"] = L"10.15.7";
  expected[L"OSBuildNum"] = L"19H2";
  expected[L"OSCsdVersion"] = L"7";
  expected[L"OSOEMId"] = L"Apple Macintosh";
  expected[L"PlatformID"] = L"MAC";
  // The server test sees the build text "19H2" and, two bytes behind its end, "5.7".
  expected[L"OSPlatform"] = L"Server";
  EXPECT_EQ(expected, properties);
}

TEST_F(WholeReport, OfAMachineThatTellsNothingIsTheDefaults) {
  OwnedRecords all;
  collect_records(FakeSystem(), all.refer());
  PropertyMap properties;
  FileSystemMap file_systems;
  write_report(all.refer(), properties, file_systems);
  PropertyMap expected;
  for (const orbtest::PropertyKey& key : orbtest::claimed_keys()) expected[key.key] = L"N/A";
  expected[L"CPUType"] = L"";  // nothing names a processor, and the collector stops there
  expected[L"CPUSpeed"] = L"0 MHz";
  expected[L"IsPortable"] = L"";
  expected[L"OSType"] = L"Mac OS X";
  expected[L"OSOEMId"] = L"Apple Macintosh";
  expected[L"PlatformID"] = L"MAC";
  expected[L"UserName"] = L"NA";
  expected[L"TimeZone"] = L"";
  expected[L"DefaultLangID"] = L"0409";
  expected[L"NumberOfFileSystems"] = L"0";
  expected[L"TotalDiskSpace"] = L"0.00";
  expected[L"FreeDiskSpace"] = L"0.00";
  EXPECT_EQ(expected, properties);
  EXPECT_TRUE(file_systems.empty());
}

TEST_F(WholeReport, KeepsWhatACollectorCannotRefresh) {
  OwnedRecords all;
  collect_records(orbtest::release_machine(), all.refer());
  FakeSystem failing = orbtest::release_machine();
  failing.processors.reset();
  failing.entries.reset();
  failing.memory.reset();
  failing.free_pages.reset();
  failing.broken_down.reset();
  collect_records(failing, all.refer());
  PropertyMap properties;
  write_report(all.refer(), properties);
  EXPECT_EQ(release_report(), properties);
}

TEST_F(WholeReport, QuirkASecondCollectionKeepsTheEntriesOfAMountPoint) {
  OwnedRecords all;
  FakeSystem machine = orbtest::release_machine();
  collect_records(machine, all.refer());
  machine.mounted = {{"/", true, 1048576, 200, 200}, {"/new", true, 1048576, 10, 10}};
  collect_records(machine, all.refer());
  PropertyMap properties;
  write_report(all.refer(), properties);
  EXPECT_EQ(L"3906.25", properties[L"FileSystem\"/\" Total_Disk_Space_in_MB"]);
  EXPECT_EQ(L"100.00", properties[L"FileSystem\"/data\" Total_Disk_Space_in_MB"]);
  EXPECT_EQ(L"10.00", properties[L"FileSystem\"/new\" Total_Disk_Space_in_MB"]);
  EXPECT_EQ(L"2", properties[L"NumberOfFileSystems"]);
  EXPECT_EQ(L"210.00", properties[L"TotalDiskSpace"]);
}

}  // namespace
