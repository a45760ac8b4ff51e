// tests/sysprops/records_test.cpp: defaults and layout of the records, the last known address.
#include "sysprops/records.h"

#include <gtest/gtest.h>

#include <functional>
#include <type_traits>
#include <vector>

#include "tests/support/scoped_local_ip.h"

namespace quillon_com::orb::sysprops {
namespace {

// Whether the fields, given in the order of the declaration, lie in that order.
void expect_in_order(const std::vector<const void*>& fields) {
  for (size_t i = 1; i < fields.size(); ++i)
    EXPECT_TRUE(std::less<>()(fields[i - 1], fields[i])) << "field " << i + 1;
}

// Wide strings alone, without a base or a virtual function.
template <class Record>
constexpr bool kPlain = std::is_standard_layout_v<Record> && !std::is_polymorphic_v<Record>;

template <class Record>
constexpr size_t kStrings = sizeof(Record) / sizeof(std::wstring);

TEST(Records, ProcessorHasFourDefaultsAndAnEmptyPortableFlag) {
  const CPUInformation fresh;
  EXPECT_EQ(L"N/A", fresh.cpuType);
  EXPECT_EQ(L"N/A", fresh.cpuSpeed);
  EXPECT_EQ(L"N/A", fresh.numOfCPU);
  EXPECT_EQ(L"N/A", fresh.cpuSerialNumber);
  EXPECT_EQ(L"", fresh.isPortable);
  expect_in_order({&fresh.cpuType, &fresh.cpuSpeed, &fresh.numOfCPU, &fresh.cpuSerialNumber,
                   &fresh.isPortable});
  static_assert(kPlain<CPUInformation> && kStrings<CPUInformation> == 5);
}

TEST(Records, NetworkHasEightDefaults) {
  const NetworkInformation fresh;
  const std::vector<const std::wstring*> fields = {
      &fresh.domainName, &fresh.computerName, &fresh.ipAddress,  &fresh.subnetAddress,
      &fresh.subnetMask, &fresh.netAddress,   &fresh.ipxAddress, &fresh.ipHostName};
  for (const std::wstring* field : fields) EXPECT_EQ(L"N/A", *field);
  expect_in_order({fields.begin(), fields.end()});
  static_assert(kPlain<NetworkInformation> && kStrings<NetworkInformation> == 8);
}

TEST(Records, MemoryHasTwoDefaults) {
  const MemoryInformation fresh;
  EXPECT_EQ(L"N/A", fresh.totalPhysicalMemory);
  EXPECT_EQ(L"N/A", fresh.freeMemory);
  expect_in_order({&fresh.totalPhysicalMemory, &fresh.freeMemory});
  static_assert(kPlain<MemoryInformation> && kStrings<MemoryInformation> == 2);
}

TEST(Records, OperatingSystemHasSevenDefaultsAndAnEmptyPlatform) {
  const OSInformation fresh;
  EXPECT_EQ(L"N/A", fresh.osType);
  EXPECT_EQ(L"N/A", fresh.osPlatform);
  EXPECT_EQ(L"N/A", fresh.osVersion);
  EXPECT_EQ(L"N/A", fresh.osCsdVersion);
  EXPECT_EQ(L"N/A", fresh.osBuildNum);
  EXPECT_EQ(L"N/A", fresh.osOemId);
  EXPECT_EQ(L"", fresh.platformId);
  EXPECT_EQ(L"N/A", fresh.osBitMode);
  expect_in_order({&fresh.osType, &fresh.osPlatform, &fresh.osVersion, &fresh.osCsdVersion,
                   &fresh.osBuildNum, &fresh.osOemId, &fresh.platformId, &fresh.osBitMode});
  static_assert(kPlain<OSInformation> && kStrings<OSInformation> == 8);
}

TEST(Records, DiskHasThreeDefaultsAndNoFileSystem) {
  const DiskInformation fresh;
  EXPECT_EQ(L"N/A", fresh.totalDiskSpace);
  EXPECT_EQ(L"N/A", fresh.freeDiskSpace);
  EXPECT_EQ(L"N/A", fresh.numFileSystems);
  EXPECT_TRUE(fresh.fileSystems.empty());
  expect_in_order(
      {&fresh.totalDiskSpace, &fresh.freeDiskSpace, &fresh.numFileSystems, &fresh.fileSystems});
  static_assert(!std::is_polymorphic_v<DiskInformation>);
  static_assert(std::is_same_v<decltype(DiskInformation::fileSystems),
                               std::map<std::wstring, std::pair<std::wstring, std::wstring>>>);
}

TEST(Records, MiscHasFourDefaults) {
  const MiscInformation fresh;
  EXPECT_EQ(L"N/A", fresh.userName);
  EXPECT_EQ(L"N/A", fresh.timeZone);
  EXPECT_EQ(L"N/A", fresh.defaultLangId);
  EXPECT_EQ(L"N/A", fresh.lastUpdate);
  expect_in_order({&fresh.userName, &fresh.timeZone, &fresh.defaultLangId, &fresh.lastUpdate});
  static_assert(kPlain<MiscInformation> && kStrings<MiscInformation> == 4);
}

TEST(Records, CollectorHoldsTheSixRecordsAndNothingElse) {
  struct InOrder {
    CPUInformation cpu;
    NetworkInformation network;
    MemoryInformation memory;
    OSInformation os;
    DiskInformation disk;
    MiscInformation misc;
  };
  static_assert(sizeof(ISysProps) == sizeof(InOrder));
  static_assert(!std::is_polymorphic_v<ISysProps>);
  static_assert(std::is_default_constructible_v<ISysProps>);
}

TEST(LastKnownAddress, IsEmptyUntilAnUpdate) { EXPECT_EQ(L"", ISysProps::GetLastKnownLocalIP()); }

TEST(LastKnownAddress, IsSharedByAllObjects) {
  const orbtest::ScopedLocalIp restore(L"");
  ISysProps first;
  ISysProps second;
  first.updateLocalIP(L"192.0.2.7");
  EXPECT_EQ(L"192.0.2.7", second.GetLastKnownLocalIP());
  EXPECT_EQ(L"192.0.2.7", ISysProps::m_wstrLastKnownLocalIP);
}

TEST(LastKnownAddress, IsACopyBothWays) {
  const orbtest::ScopedLocalIp restore(L"");
  std::wstring given = L"192.0.2.8";
  ISysProps::updateLocalIP(given);
  given = L"changed";
  std::wstring taken = ISysProps::GetLastKnownLocalIP();
  taken = L"changed too";
  EXPECT_EQ(L"192.0.2.8", ISysProps::GetLastKnownLocalIP());
}

TEST(LastKnownAddress, CanBecomeEmptyAgain) {
  const orbtest::ScopedLocalIp restore(L"");
  ISysProps::updateLocalIP(L"2001:db8::1");
  ISysProps::updateLocalIP(L"");
  EXPECT_EQ(L"", ISysProps::GetLastKnownLocalIP());
}

}  // namespace
}  // namespace quillon_com::orb::sysprops
