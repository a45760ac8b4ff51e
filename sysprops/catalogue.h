// sysprops/catalogue.h: every property of the machine as the answer of one function.
#pragma once

#include <string>

#include "platform/export.h"
#include "sysprops/records.h"

// Each function without arguments below collects anew on the running machine and answers the text
// that a fresh ISysProps gives under the property's key. A property that cannot be collected
// answers its record's default, "N/A". A function reads only what its own property needs: none but
// voxcomn_get_domain_name and voxcomn_get_fqdn_address waits for a resolver. All are safe from any
// thread, except voxcomn_get_user_name; those of the network address read
// ISysProps::m_wstrLastKnownLocalIP, so a caller that updates it serialises them with the update.
// Nothing is kept between calls. When memory runs out a function throws std::bad_alloc; where only
// the text of the answer finds none, the answer is empty, and where the operating system cannot be
// identified for that reason, "N/A".

// "CPUType": architecture and model name, joined by one blank; empty when neither is known.
ORB_EXPORT std::wstring voxcomn_get_cpu_type();

// "CPUSpeed": the clock, "2400 MHz".
ORB_EXPORT std::wstring voxcomn_get_cpu_speed();

// "NumOfCPU": the decimal count of processors.
ORB_EXPORT std::wstring voxcomn_get_number_of_processors();

// "CPUSerialNumber": always "N/A".
ORB_EXPORT std::wstring voxcomn_get_cpu_serial_number();

// "DomainName": the domain of the kernel, else that of the resolver: at most one host look-up.
ORB_EXPORT std::wstring voxcomn_get_domain_name();

// "ComputerName": the host's name before its first dot, from the kernel alone.
ORB_EXPORT std::wstring voxcomn_get_computer_name();

// "IPAddress": the address that the report presents; see ISysProps::GetNetworkInformation.
ORB_EXPORT std::wstring voxcomn_get_ip_address();

// "SubnetAddress": the network part of that address.
ORB_EXPORT std::wstring voxcomn_get_subnet_address();

// "SubnetMask": the mask of that address.
ORB_EXPORT std::wstring voxcomn_get_subnet_mask();

// "NETAddress": the hardware address of that address's interface, twelve lower-case digits.
ORB_EXPORT std::wstring voxcomn_get_mac_address();

// "IPXAddress": always "N/A".
ORB_EXPORT std::wstring voxcomn_get_ipx_address();

// "IPHostName": the fully qualified host name: at most one host look-up.
ORB_EXPORT std::wstring voxcomn_get_fqdn_address();

// "TotalPhysicalMemory": bytes, decimal.
ORB_EXPORT std::wstring voxcomn_get_total_memory();

// "FreeMemory": bytes, decimal, rounded down in steps of a twentieth of the total.
ORB_EXPORT std::wstring voxcomn_get_free_memory();

// Always the empty text.
// Quirk: no category claims the key "NumberOfFileSystems", so the count that the report carries
// under it cannot be asked for by this function nor by ISysProps::GetOneSystemProperty.
ORB_EXPORT std::wstring voxcomn_get_number_of_file_systems();

// "TotalDiskSpace": MiB of all local volumes, two decimals.
ORB_EXPORT std::wstring voxcomn_get_total_disk_space();

// "FreeDiskSpace": MiB, two decimals, rounded down in steps of a twentieth of the total.
ORB_EXPORT std::wstring voxcomn_get_free_disk_space();

// "OSType": the family of the operating system.
ORB_EXPORT std::wstring voxcomn_get_os_type();

// "OSPlatform": "Workstation" or "Server".
ORB_EXPORT std::wstring voxcomn_get_os_platform();

// "OSVersion": the version with its dots.
ORB_EXPORT std::wstring voxcomn_get_os_version();

// "OSCsdVersion": the patch level; "N/A" when the version has none.
ORB_EXPORT std::wstring voxcomn_get_os_service_pack();

// "OSBuildNum": the build text.
ORB_EXPORT std::wstring voxcomn_get_os_build_number();

// "OSOEMId": the maker's name of the system.
ORB_EXPORT std::wstring voxcomn_get_os_oem_id();

// "PlatformID": the platform word, "MAC" or "LINUX".
ORB_EXPORT std::wstring voxcomn_get_os_platform_id();

// "UserName": the logged-on users, at most 128 characters; "NA", without a slash, when there is
// none. Reads the process-wide cursor of the user accounting and writes the diagnostic lines of
// session/loggedonusers.h to standard output: callers serialise it.
ORB_EXPORT std::wstring voxcomn_get_user_name();

// "TimeZone": the standard-time abbreviation as the C library holds it. The host process calls
// tzset when it starts and after a change of zone; nothing here does.
ORB_EXPORT std::wstring voxcomn_get_time_zone();

// "DefaultLangID": "0809", "0411" or "0409", by the environment variable LANG.
ORB_EXPORT std::wstring voxcomn_get_language();

// "LastUpdate": the time of the call in local time, month first: "02/03/2024 09:07:05".
ORB_EXPORT std::wstring voxcomn_get_last_update_time();

// Always "N/A", whatever `index`; nothing is collected.
// Quirk: the three functions on single file systems answer "N/A" for every volume; the figures are
// in the map of DiskInformation.
ORB_EXPORT std::wstring voxcomn_get_file_system_name(int index);

// Always "N/A", whatever mount point `name` is; nothing is collected.
ORB_EXPORT std::wstring voxcomn_get_file_system_free_space_by_name(const std::wstring& name);

// The same answer as voxcomn_get_file_system_free_space_by_name.
ORB_EXPORT std::wstring voxcomn_get_file_system_total_space_by_name(const std::wstring& name);
