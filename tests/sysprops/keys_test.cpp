// tests/sysprops/keys_test.cpp: every exported key and name by its text.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "sysprops/records.h"
#include "tests/support/named_texts.h"

namespace quillon_com::orb::sysprops {
namespace {

using orbtest::NarrowName;
using orbtest::WideName;

const WideName kKeys[] = {
    {"SystemInfo_Key", SystemInfo_Key, L"SystemInfo"},
    {"PlatformId_Key", PlatformId_Key, L"PlatformID"},
    {"ComputerName_Key", ComputerName_Key, L"ComputerName"},
    {"UserName_Key", UserName_Key, L"UserName"},
    {"DomainName_Key", DomainName_Key, L"DomainName"},
    {"CPUPortable_Key", CPUPortable_Key, L"IsPortable"},
    {"CPUType_Key", CPUType_Key, L"CPUType"},
    {"NumOfCPU_Key", NumOfCPU_Key, L"NumOfCPU"},
    {"CPUSpeed_Key", CPUSpeed_Key, L"CPUSpeed"},
    {"CPUSerialNumber_Key", CPUSerialNumber_Key, L"CPUSerialNumber"},
    {"OSType_Key", OSType_Key, L"OSType"},
    {"OSBitMode_Key", OSBitMode_Key, L"OSBitMode"},
    {"OSPlatform_Key", OSPlatform_Key, L"OSPlatform"},
    {"OSVersion_Key", OSVersion_Key, L"OSVersion"},
    {"OSBuildNum_Key", OSBuildNum_Key, L"OSBuildNum"},
    {"OSCsdVersion_Key", OSCsdVersion_Key, L"OSCsdVersion"},
    {"OSOEMId_Key", OSOEMId_Key, L"OSOEMId"},
    {"TotalPhysicalMemory_Key", TotalPhysicalMemory_Key, L"TotalPhysicalMemory"},
    {"FreeMemory_Key", FreeMemory_Key, L"FreeMemory"},
    {"IPAddress_Key", IPAddress_Key, L"IPAddress"},
    {"IPHostName_Key", IPHostName_Key, L"IPHostName"},
    {"IPXAddress_Key", IPXAddress_Key, L"IPXAddress"},
    {"NETAddress_Key", NETAddress_Key, L"NETAddress"},
    {"SubnetAddress_Key", SubnetAddress_Key, L"SubnetAddress"},
    {"SubnetMask_Key", SubnetMask_Key, L"SubnetMask"},
    {"LastUpdate_Key", LastUpdate_Key, L"LastUpdate"},
    {"TimeZone_Key", TimeZone_Key, L"TimeZone"},
    {"DefaultLangID_Key", DefaultLangID_Key, L"DefaultLangID"},
    {"TotalDiskSpace_Key", TotalDiskSpace_Key, L"TotalDiskSpace"},
    {"FreeDiskSpace_Key", FreeDiskSpace_Key, L"FreeDiskSpace"},
    {"NumFileSystems_Key", NumFileSystems_Key, L"NumberOfFileSystems"},
    {"FileSystemName", FileSystemName, L"FileSystem"},
    {"FileSystemFreeSpace", FileSystemFreeSpace, L"Free_Disk_Space_in_MB"},
    {"FileSystemTotalSpace", FileSystemTotalSpace, L"Total_Disk_Space_in_MB"},
    {"DefaultProp_Val", DefaultProp_Val, L"N/A"},
};

const WideName kNames[] = {
    {"suse_distribution", suse_distribution, L"SuSE"},
    {"redhat_distribution", redhat_distribution, L"redhat"},
    {"novell_distribution", novell_distribution, L"Novell"},
    {"platform_harbor", platform_harbor, L"KTOS"},
    {"platform_ktos", platform_ktos, L"KTOS"},
    {"platform_linux", platform_linux, L"LINUX"},
    {"platform_mac", platform_mac, L"MAC"},
    {"platform_gwa", platform_gwa, L"GWA"},
    {"platform_solaris", platform_solaris, L"SPX"},
    {"platform_hpux", platform_hpux, L"HPUX"},
    {"platform_aix", platform_aix, L"AIX"},
    {"unknown", unknown, L"Unknown"},
    {"unknown_domain", unknown_domain, L"UnKnownDomain"},
    {"os_linux", os_linux, L"Linux"},
    {"os_mac", os_mac, L"Mac OS X"},
    {"os_solaris", os_solaris, L"SunOS Sparc"},
    {"os_hpux", os_hpux, L"HP-UX"},
    {"os_aix", os_aix, L"AIX"},
    {"os_gwa", os_gwa, L"Perimeter Filtering Appliance"},
    {"workstation", workstation, L"Linux"},
    {"p_workstation", p_workstation, L"Workstation"},
    {"p_server", p_server, L"Server"},
    {"os_mac_oemid", os_mac_oemid, L"Apple Macintosh"},
    {"os_solaris_oemid", os_solaris_oemid, L"Solaris Sparc"},
    {"os_hpux_oemid", os_hpux_oemid, L"Hpux PA-RISC"},
    {"os_aix_oemid", os_aix_oemid, L"AIX PowerPC"},
    {"os_platform_ini", os_platform_ini, L"/etc/orb.d/osinfo.ini"},
};

const NarrowName kNarrowNames[] = {
    {"redhat_release_file", redhat_release_file, "/etc/redhat-release"},
    {"ubuntu_release_file", ubuntu_release_file, "/etc/lsb-release"},
    {"suse_release_file", suse_release_file, "/etc/SuSE-release"},
    {"debian_release_file", debian_release_file, "/etc/os-release"},
    {"server_strings", server_strings, ", Server , Enterprise , AS , ES , WS "},
    {"suse_server_strings", suse_server_strings, ", Server "},
};

TEST(Keys, EveryKeyHasItsText) {
  EXPECT_EQ(35u, std::size(kKeys));
  for (const WideName& row : kKeys) EXPECT_EQ(row.text, row.constant) << row.name;
}

TEST(Keys, NoTwoKeysShareAText) {
  std::set<std::wstring> texts;
  for (const WideName& row : kKeys) EXPECT_TRUE(texts.insert(row.constant).second) << row.name;
}

TEST(Keys, EveryNameHasItsText) {
  EXPECT_EQ(33u, std::size(kNames) + std::size(kNarrowNames));
  for (const WideName& row : kNames) EXPECT_EQ(row.text, row.constant) << row.name;
  for (const NarrowName& row : kNarrowNames) EXPECT_EQ(row.text, row.constant) << row.name;
}

TEST(Keys, QuirkThreeKeysDoNotReadLikeTheirNames) {
  EXPECT_EQ(L"PlatformID", PlatformId_Key);
  EXPECT_EQ(L"IsPortable", CPUPortable_Key);
  EXPECT_EQ(L"NumberOfFileSystems", NumFileSystems_Key);
}

TEST(Keys, QuirkTwoPlatformsShareOneText) { EXPECT_EQ(platform_harbor, platform_ktos); }

TEST(Keys, QuirkWorkstationHoldsTheSystemsName) {
  EXPECT_EQ(os_linux, workstation);
  EXPECT_NE(p_workstation, workstation);
}

}  // namespace
}  // namespace quillon_com::orb::sysprops
