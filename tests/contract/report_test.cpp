// tests/contract/report_test.cpp: the report and the load-time constants through the shared
// library.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <type_traits>
#include <utility>

#include "sysprops/catalogue.h"
#include "sysprops/collectors.h"
#include "sysprops/records.h"
#include "tests/contract/neighbour.h"

namespace {

using namespace quillon_com::orb::sysprops;
using PropertyMap = std::map<std::wstring, std::wstring>;
using FileSystemMap = std::map<std::wstring, std::pair<std::wstring, std::wstring>>;

TEST(LoadTime, ConstantsServeAnotherLibrarysStaticInitialiser) {
  const SeenAtLoad& seen = seen_at_load();
  EXPECT_EQ(L"PlatformID", seen.platform_key);
  EXPECT_EQ(L"IsPortable", seen.portable_key);
  EXPECT_EQ(L"NumberOfFileSystems", seen.file_systems_key);
  EXPECT_EQ(L"N/A", seen.default_value);
  EXPECT_EQ(L"Total_Disk_Space_in_MB", seen.total_space);
  EXPECT_EQ("/etc/redhat-release", seen.release_file);
  EXPECT_EQ(", Server , Enterprise , AS , ES , WS ", seen.server_words);
  EXPECT_EQ(L"", seen.last_known_ip);
}

TEST(LoadTime, ConfigurationNamesServeAnotherLibrarysStaticInitialiser) {
  const SeenAtLoad& seen = seen_at_load();
  EXPECT_EQ(L"SiteList", seen.policy_section);
  EXPECT_EQ(L"bListenToHUBServerOnly", seen.policy_key);
  EXPECT_EQ(L"MAX_CONN_EXCEEDED", seen.loose_key);
  EXPECT_EQ(L"UserName", seen.product_key);
  EXPECT_EQ("TaskRoot", seen.task_root);
  EXPECT_EQ("Task Dependencies", seen.task_section);
  EXPECT_EQ("DeleteWhenFinished", seen.task_key);
  EXPECT_EQ("GMTTime", seen.schedule_key);
}

TEST(LoadTime, FunctionsServeAnotherLibrarysStaticInitialiser) {
  const SeenAtLoad& seen = seen_at_load();
  EXPECT_EQ(L"N/A", seen.serial_number);
  EXPECT_EQ(L"", seen.unclaimed);
  ASSERT_LE(29U, seen.report.size());
  EXPECT_EQ(voxcomn_get_computer_name(), seen.report.at(L"ComputerName"));
  EXPECT_EQ(voxcomn_get_os_version(), seen.report.at(L"OSVersion"));
}

TEST(SharedLibrary, RecordsAreMadeWithTheirDefaults) {
  EXPECT_EQ(L"N/A", CPUInformation().cpuType);
  EXPECT_EQ(L"", CPUInformation().isPortable);
  EXPECT_EQ(L"N/A", NetworkInformation().ipxAddress);
  EXPECT_EQ(L"", OSInformation().platformId);
  EXPECT_TRUE(DiskInformation().fileSystems.empty());
  EXPECT_FALSE(std::is_polymorphic<ISysProps>::value);
  EXPECT_FALSE(std::is_polymorphic<MiscInformation>::value);
}

TEST(SharedLibrary, GivesTheWholeReport) {
  ISysProps props;
  PropertyMap one, two;
  FileSystemMap file_systems;
  EXPECT_TRUE(props.GetAllSystemProperties(one));
  EXPECT_TRUE(props.GetAllSystemProperties(two, file_systems));
  EXPECT_EQ(29 + 2 * file_systems.size(), one.size());
  EXPECT_EQ(30U, two.size());
  EXPECT_EQ(two[L"TotalDiskSpace"], props.GetOneSystemProperty(TotalDiskSpace_Key));
}

TEST(SharedLibrary, OneWordHoldsTheLastKnownAddress) {
  ISysProps::updateLocalIP(L"192.0.2.77");
  EXPECT_EQ(L"192.0.2.77", ISysProps::GetLastKnownLocalIP());
  EXPECT_EQ(L"192.0.2.77", ISysProps::m_wstrLastKnownLocalIP);
  ISysProps::updateLocalIP(L"");
  EXPECT_EQ(L"", ISysProps::m_wstrLastKnownLocalIP);
}

TEST(SharedLibrary, ExportsTheHelpers) {
  EXPECT_EQ(35U, get_closest_floor<unsigned long long>(37, 100, 0, 20));
  EXPECT_DOUBLE_EQ(7.0, get_closest_floor<double>(7.3, 10.0, 0.0, 20));
  EXPECT_EQ("\xC3\xA9", sysprops_wide_to_ansi(L"\u00E9"));
  EXPECT_EQ(L"\u00E9", sysprops_ansi_to_wide("\xC3\xA9"));
  std::string name;
  EXPECT_TRUE(getComputerName(name));
  EXPECT_EQ(voxcomn_get_computer_name(), sysprops_ansi_to_wide(name));
  EXPECT_TRUE(GetPwUid(0, name));
  EXPECT_EQ("root", name);
  char model[11];
  EXPECT_TRUE(ConvertGestaltCPUTypeToString(0x69787878, model));
  EXPECT_STREQ("X86", model);
}

TEST(SharedLibrary, ExportsEveryWrapper) {
  for (std::wstring (*wrapper)() : {voxcomn_get_cpu_type,
                                    voxcomn_get_cpu_speed,
                                    voxcomn_get_number_of_processors,
                                    voxcomn_get_cpu_serial_number,
                                    voxcomn_get_domain_name,
                                    voxcomn_get_computer_name,
                                    voxcomn_get_ip_address,
                                    voxcomn_get_subnet_address,
                                    voxcomn_get_subnet_mask,
                                    voxcomn_get_mac_address,
                                    voxcomn_get_ipx_address,
                                    voxcomn_get_fqdn_address,
                                    voxcomn_get_total_memory,
                                    voxcomn_get_free_memory,
                                    voxcomn_get_total_disk_space,
                                    voxcomn_get_free_disk_space,
                                    voxcomn_get_os_type,
                                    voxcomn_get_os_platform,
                                    voxcomn_get_os_version,
                                    voxcomn_get_os_service_pack,
                                    voxcomn_get_os_build_number,
                                    voxcomn_get_os_oem_id,
                                    voxcomn_get_os_platform_id,
                                    voxcomn_get_language,
                                    voxcomn_get_last_update_time}) {
    EXPECT_NE(L"", wrapper());
  }
  std::wstring (*const users)() = voxcomn_get_user_name;
  EXPECT_NE(L"", users());
  std::wstring (*const zone)() = voxcomn_get_time_zone;
  EXPECT_NE(L"", zone());
  EXPECT_EQ(L"", voxcomn_get_number_of_file_systems());
  EXPECT_EQ(L"N/A", voxcomn_get_file_system_name(0));
  EXPECT_EQ(L"N/A", voxcomn_get_file_system_free_space_by_name(L"/"));
  EXPECT_EQ(L"N/A", voxcomn_get_file_system_total_space_by_name(L"/"));
}

}  // namespace
