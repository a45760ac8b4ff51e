// sysprops/keys.cpp: the texts of the property keys and of the platform and system names.
#include "sysprops/records.h"

namespace quillon_com::orb::sysprops {

const std::wstring SystemInfo_Key = L"SystemInfo";
const std::wstring PlatformId_Key = L"PlatformID";
const std::wstring ComputerName_Key = L"ComputerName";
const std::wstring UserName_Key = L"UserName";
const std::wstring DomainName_Key = L"DomainName";
const std::wstring CPUPortable_Key = L"IsPortable";
const std::wstring CPUType_Key = L"CPUType";
const std::wstring NumOfCPU_Key = L"NumOfCPU";
const std::wstring CPUSpeed_Key = L"CPUSpeed";
const std::wstring CPUSerialNumber_Key = L"CPUSerialNumber";
const std::wstring OSType_Key = L"OSType";
const std::wstring OSBitMode_Key = L"OSBitMode";
const std::wstring OSPlatform_Key = L"OSPlatform";
const std::wstring OSVersion_Key = L"OSVersion";
const std::wstring OSBuildNum_Key = L"OSBuildNum";
const std::wstring OSCsdVersion_Key = L"OSCsdVersion";
const std::wstring OSOEMId_Key = L"OSOEMId";
const std::wstring TotalPhysicalMemory_Key = L"TotalPhysicalMemory";
const std::wstring FreeMemory_Key = L"FreeMemory";
const std::wstring IPAddress_Key = L"IPAddress";
const std::wstring IPHostName_Key = L"IPHostName";
const std::wstring IPXAddress_Key = L"IPXAddress";
const std::wstring NETAddress_Key = L"NETAddress";
const std::wstring SubnetAddress_Key = L"SubnetAddress";
const std::wstring SubnetMask_Key = L"SubnetMask";
const std::wstring LastUpdate_Key = L"LastUpdate";
const std::wstring TimeZone_Key = L"TimeZone";
const std::wstring DefaultLangID_Key = L"DefaultLangID";
const std::wstring TotalDiskSpace_Key = L"TotalDiskSpace";
const std::wstring FreeDiskSpace_Key = L"FreeDiskSpace";
const std::wstring NumFileSystems_Key = L"NumberOfFileSystems";
const std::wstring FileSystemName = L"FileSystem";
const std::wstring FileSystemFreeSpace = L"Free_Disk_Space_in_MB";
const std::wstring FileSystemTotalSpace = L"Total_Disk_Space_in_MB";
const std::wstring DefaultProp_Val = L"N/A";

const std::wstring suse_distribution = L"SuSE";
const std::wstring redhat_distribution = L"redhat";
const std::wstring novell_distribution = L"Novell";
const std::string redhat_release_file = "/etc/redhat-release";
const std::string ubuntu_release_file = "/etc/lsb-release";
const std::string suse_release_file = "/etc/SuSE-release";
const std::string debian_release_file = "/etc/os-release";

const std::wstring platform_harbor = L"KTOS";
const std::wstring platform_ktos = L"KTOS";
const std::wstring platform_linux = L"LINUX";
const std::wstring platform_mac = L"MAC";
const std::wstring platform_gwa = L"GWA";
const std::wstring platform_solaris = L"SPX";
const std::wstring platform_hpux = L"HPUX";
const std::wstring platform_aix = L"AIX";
const std::wstring unknown = L"Unknown";
const std::wstring unknown_domain = L"UnKnownDomain";

const std::wstring os_linux = L"Linux";
const std::wstring os_mac = L"Mac OS X";
const std::wstring os_solaris = L"SunOS Sparc";
const std::wstring os_hpux = L"HP-UX";
const std::wstring os_aix = L"AIX";
const std::wstring os_gwa = L"Perimeter Filtering Appliance";

const std::wstring workstation = L"Linux";
const std::wstring p_workstation = L"Workstation";
const std::wstring p_server = L"Server";

const std::wstring os_mac_oemid = L"Apple Macintosh";
const std::wstring os_solaris_oemid = L"Solaris Sparc";
const std::wstring os_hpux_oemid = L"Hpux PA-RISC";
const std::wstring os_aix_oemid = L"AIX PowerPC";

const std::string server_strings = ", Server , Enterprise , AS , ES , WS ";
const std::string suse_server_strings = ", Server ";
const std::wstring os_platform_ini = L"/etc/orb.d/osinfo.ini";

}  // namespace quillon_com::orb::sysprops
