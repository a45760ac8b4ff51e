// tools/orbprops/properties.cpp: the table of the keys.
#include "tools/orbprops/properties.h"

#include <algorithm>

#include "sysprops/catalogue.h"

namespace orbprops {
namespace {

namespace props = quillon_com::orb::sysprops;

template <auto record, auto member>
const std::wstring& field(const Records& records) {
  return (records.*record).*member;
}

// The two that no wrapper answers.
std::wstring answer_portable() {
  return props::ISysProps().GetOneCPUProperty(props::CPUPortable_Key);
}
std::wstring answer_file_system_count() {
  return props::ISysProps().GetOneDiskProperty(props::NumFileSystems_Key);
}

// The no-argument overload of a name that has another one.
constexpr std::wstring (*kAnswerUserName)() = &voxcomn_get_user_name;

constexpr auto kOs = &Records::os;
constexpr auto kCpu = &Records::cpu;
constexpr auto kMemory = &Records::memory;
constexpr auto kNetwork = &Records::network;
constexpr auto kMisc = &Records::misc;
constexpr auto kDisk = &Records::disk;
using Os = props::OSInformation;
using Cpu = props::CPUInformation;
using Memory = props::MemoryInformation;
using Network = props::NetworkInformation;
using Misc = props::MiscInformation;
using Disk = props::DiskInformation;

constexpr std::string_view kSystem = "Operating system";
constexpr std::string_view kProcessor = "Processor and memory";
constexpr std::string_view kNet = "Network";
constexpr std::string_view kUser = "User and locale";
constexpr std::string_view kStorage = "Disks";

}  // namespace

// clang-format off
const std::array<PropertyInfo, kPropertyCount> kProperties = {{
  {"OSType", kSystem, "name of the operating system",
   voxcomn_get_os_type, field<kOs, &Os::osType>},
  {"OSVersion", kSystem, "version of the operating system",
   voxcomn_get_os_version, field<kOs, &Os::osVersion>},
  {"OSCsdVersion", kSystem, "service-pack level",
   voxcomn_get_os_service_pack, field<kOs, &Os::osCsdVersion>},
  {"OSBuildNum", kSystem, "build of the system or its kernel",
   voxcomn_get_os_build_number, field<kOs, &Os::osBuildNum>},
  {"OSPlatform", kSystem, "Workstation or Server",
   voxcomn_get_os_platform, field<kOs, &Os::osPlatform>},
  {"OSBitMode", kSystem, "1 64 bits, 0 32 bits, -1 unknown",
   [] { return props::ISysProps().GetOneOSProperty(props::OSBitMode_Key); },
   field<kOs, &Os::osBitMode>},
  {"OSOEMId", kSystem, "maker or distribution",
   voxcomn_get_os_oem_id, field<kOs, &Os::osOemId>},
  {"PlatformID", kSystem, "platform identifier",
   voxcomn_get_os_platform_id, field<kOs, &Os::platformId>},

  {"CPUType", kProcessor, "architecture and model",
   voxcomn_get_cpu_type, field<kCpu, &Cpu::cpuType>},
  {"CPUSpeed", kProcessor, "nominal clock",
   voxcomn_get_cpu_speed, field<kCpu, &Cpu::cpuSpeed>},
  {"NumOfCPU", kProcessor, "number of processors",
   voxcomn_get_number_of_processors, field<kCpu, &Cpu::numOfCPU>},
  {"CPUSerialNumber", kProcessor, "never known: always N/A",
   voxcomn_get_cpu_serial_number, field<kCpu, &Cpu::cpuSerialNumber>},
  {"IsPortable", kProcessor, "1 portable, 0 not portable, -1 unknown",
   answer_portable, field<kCpu, &Cpu::isPortable>},
  {"TotalPhysicalMemory", kProcessor, "memory, in bytes",
   voxcomn_get_total_memory, field<kMemory, &Memory::totalPhysicalMemory>},
  {"FreeMemory", kProcessor, "free memory, in bytes, in steps of 5 %",
   voxcomn_get_free_memory, field<kMemory, &Memory::freeMemory>},

  {"ComputerName", kNet, "host name up to its first dot",
   voxcomn_get_computer_name, field<kNetwork, &Network::computerName>},
  {"DomainName", kNet, "DNS domain",
   voxcomn_get_domain_name, field<kNetwork, &Network::domainName>},
  {"IPHostName", kNet, "fully qualified host name",
   voxcomn_get_fqdn_address, field<kNetwork, &Network::ipHostName>},
  {"IPAddress", kNet, "address of the machine",
   voxcomn_get_ip_address, field<kNetwork, &Network::ipAddress>},
  {"SubnetMask", kNet, "mask of that address",
   voxcomn_get_subnet_mask, field<kNetwork, &Network::subnetMask>},
  {"SubnetAddress", kNet, "network of that address",
   voxcomn_get_subnet_address, field<kNetwork, &Network::subnetAddress>},
  {"NETAddress", kNet, "hardware address of its interface",
   voxcomn_get_mac_address, field<kNetwork, &Network::netAddress>},
  {"IPXAddress", kNet, "never known: always N/A",
   voxcomn_get_ipx_address, field<kNetwork, &Network::ipxAddress>},

  {"UserName", kUser, "logged-on users; NA when there are none",
   kAnswerUserName, field<kMisc, &Misc::userName>},
  {"TimeZone", kUser, "name of the standard time",
   voxcomn_get_time_zone, field<kMisc, &Misc::timeZone>},
  {"DefaultLangID", kUser, "language identifier",
   voxcomn_get_language, field<kMisc, &Misc::defaultLangId>},
  {"LastUpdate", kUser, "time of this collection",
   voxcomn_get_last_update_time, field<kMisc, &Misc::lastUpdate>},

  {"NumberOfFileSystems", kStorage, "number of local file systems",
   answer_file_system_count, field<kDisk, &Disk::numFileSystems>},
  {"TotalDiskSpace", kStorage, "size of all of them, in MB",
   voxcomn_get_total_disk_space, field<kDisk, &Disk::totalDiskSpace>},
  {"FreeDiskSpace", kStorage, "free space, in MB, in steps of 5 %",
   voxcomn_get_free_disk_space, field<kDisk, &Disk::freeDiskSpace>},
}};
// clang-format on

const PropertyInfo* find_property(std::string_view key) {
  const auto* found = std::find_if(kProperties.begin(), kProperties.end(),
                                   [key](const PropertyInfo& info) { return info.key == key; });
  return found == kProperties.end() ? nullptr : found;
}

bool is_unanswered(std::string_view key, std::wstring_view value) {
  return value.empty() || value == props::DefaultProp_Val || (key == "UserName" && value == L"NA");
}

}  // namespace orbprops
