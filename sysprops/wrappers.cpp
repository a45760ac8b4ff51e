// sysprops/wrappers.cpp: the row of functions that answer one property each.
#include <string>

#include "sysprops/catalogue.h"
#include "sysprops/report.h"

namespace sysprops = quillon_com::orb::sysprops;

namespace {

std::wstring host_answer(const std::wstring& key) {
  return sysprops::fresh_answer(quillon_com::orb::platform::host(), key);
}

}  // namespace

std::wstring voxcomn_get_cpu_type() { return host_answer(sysprops::CPUType_Key); }
std::wstring voxcomn_get_cpu_speed() { return host_answer(sysprops::CPUSpeed_Key); }
std::wstring voxcomn_get_number_of_processors() { return host_answer(sysprops::NumOfCPU_Key); }
std::wstring voxcomn_get_cpu_serial_number() { return host_answer(sysprops::CPUSerialNumber_Key); }
std::wstring voxcomn_get_domain_name() { return host_answer(sysprops::DomainName_Key); }
std::wstring voxcomn_get_computer_name() { return host_answer(sysprops::ComputerName_Key); }
std::wstring voxcomn_get_ip_address() { return host_answer(sysprops::IPAddress_Key); }
std::wstring voxcomn_get_subnet_address() { return host_answer(sysprops::SubnetAddress_Key); }
std::wstring voxcomn_get_subnet_mask() { return host_answer(sysprops::SubnetMask_Key); }
std::wstring voxcomn_get_mac_address() { return host_answer(sysprops::NETAddress_Key); }
std::wstring voxcomn_get_ipx_address() { return host_answer(sysprops::IPXAddress_Key); }
std::wstring voxcomn_get_fqdn_address() { return host_answer(sysprops::IPHostName_Key); }
std::wstring voxcomn_get_total_memory() { return host_answer(sysprops::TotalPhysicalMemory_Key); }
std::wstring voxcomn_get_free_memory() { return host_answer(sysprops::FreeMemory_Key); }
std::wstring voxcomn_get_number_of_file_systems() {
  return host_answer(sysprops::NumFileSystems_Key);
}
std::wstring voxcomn_get_total_disk_space() { return host_answer(sysprops::TotalDiskSpace_Key); }
std::wstring voxcomn_get_free_disk_space() { return host_answer(sysprops::FreeDiskSpace_Key); }
std::wstring voxcomn_get_os_type() { return host_answer(sysprops::OSType_Key); }
std::wstring voxcomn_get_os_platform() { return host_answer(sysprops::OSPlatform_Key); }
std::wstring voxcomn_get_os_version() { return host_answer(sysprops::OSVersion_Key); }
std::wstring voxcomn_get_os_service_pack() { return host_answer(sysprops::OSCsdVersion_Key); }
std::wstring voxcomn_get_os_build_number() { return host_answer(sysprops::OSBuildNum_Key); }
std::wstring voxcomn_get_os_oem_id() { return host_answer(sysprops::OSOEMId_Key); }
std::wstring voxcomn_get_os_platform_id() { return host_answer(sysprops::PlatformId_Key); }
std::wstring voxcomn_get_user_name() { return host_answer(sysprops::UserName_Key); }
std::wstring voxcomn_get_time_zone() { return host_answer(sysprops::TimeZone_Key); }
std::wstring voxcomn_get_language() { return host_answer(sysprops::DefaultLangID_Key); }
std::wstring voxcomn_get_last_update_time() { return host_answer(sysprops::LastUpdate_Key); }

std::wstring voxcomn_get_file_system_name(int) { return sysprops::DefaultProp_Val; }

std::wstring voxcomn_get_file_system_free_space_by_name(const std::wstring&) {
  return sysprops::DefaultProp_Val;
}

std::wstring voxcomn_get_file_system_total_space_by_name(const std::wstring& name) {
  return voxcomn_get_file_system_free_space_by_name(name);
}
