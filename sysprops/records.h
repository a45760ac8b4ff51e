// sysprops/records.h: the property records, their collector ISysProps, key names and text helpers.
//
// Every property value, numbers included, is a wide string. A value that could not be collected
// keeps what its field held before, which on a fresh record is the default, for almost every field
// "N/A". No lock guards a record or an ISysProps object: callers that share one serialise the
// calls.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "platform/export.h"

namespace quillon_com::orb::sysprops {

// The processors, and whether the machine is a portable.
class CPUInformation {
 public:
  std::wstring cpuType = L"N/A";          // architecture and model, joined by one blank
  std::wstring cpuSpeed = L"N/A";         // whole megahertz, "2400 MHz"
  std::wstring numOfCPU = L"N/A";         // decimal count
  std::wstring cpuSerialNumber = L"N/A";  // never filled
  std::wstring isPortable;                // "1" portable, "0" not, "-1" unknown
};

// The machine's names and the one address that it presents to its server.
class NetworkInformation {
 public:
  std::wstring domainName = L"N/A";     // NIS or DNS domain
  std::wstring computerName = L"N/A";   // node name, without its domain
  std::wstring ipAddress = L"N/A";      // of the interface that the server sees
  std::wstring subnetAddress = L"N/A";  // of ipAddress
  std::wstring subnetMask = L"N/A";     // of ipAddress
  std::wstring netAddress = L"N/A";     // hardware (MAC) address
  std::wstring ipxAddress = L"N/A";     // never anything else
  std::wstring ipHostName = L"N/A";     // fully qualified name
};

// The memory, in decimal bytes.
class MemoryInformation {
 public:
  std::wstring totalPhysicalMemory = L"N/A";  // what the system manages
  std::wstring freeMemory = L"N/A";           // free pages, on a grid of twentieths
};

// The operating system.
class OSInformation {
 public:
  std::wstring osType = L"N/A";        // "Linux" or "Mac OS X"
  std::wstring osPlatform = L"N/A";    // "Workstation" or "Server"
  std::wstring osVersion = L"N/A";     // dotted numbers
  std::wstring osCsdVersion = L"N/A";  // service-pack level
  std::wstring osBuildNum = L"N/A";    // build, or the kernel release
  std::wstring osOemId = L"N/A";       // the product's or distribution's own name
  std::wstring platformId;             // "LINUX" or "MAC"
  std::wstring osBitMode = L"N/A";     // "1" 64 bits, "0" 32 bits, "-1" unknown
};

// The local file systems; sizes in megabytes of 2^20 bytes with two decimals.
class DiskInformation {
 public:
  std::wstring totalDiskSpace = L"N/A";  // summed over all of them
  std::wstring freeDiskSpace = L"N/A";   // summed, on a grid of twentieths
  std::wstring numFileSystems = L"N/A";  // decimal count
  // mount point -> (total, free)
  std::map<std::wstring, std::pair<std::wstring, std::wstring>> fileSystems;
};

// The logged-on users, the time zone, the language and the time of collection.
class MiscInformation {
 public:
  std::wstring userName = L"N/A";       // logged-on users, separated by commas
  std::wstring timeZone = L"N/A";       // abbreviation of standard time
  std::wstring defaultLangId = L"N/A";  // four hexadecimal digits, "0409"
  std::wstring lastUpdate = L"N/A";     // "MM/DD/YYYY hh:mm:ss", local time
};

// Collects the properties of the running machine into its own records and answers them by key.
// An object keeps the values of its last collection.
class ORB_EXPORT ISysProps {
 public:
  ISysProps();
  ~ISysProps();

  // The address that the process last used for a working connection; empty at start. One word for
  // the whole process, changed by updateLocalIP alone. No lock guards it: callers that update it
  // from several threads serialise the calls.
  static std::wstring m_wstrLastKnownLocalIP;

  // Stores a copy of `address` in m_wstrLastKnownLocalIP. Throws std::bad_alloc, with the word as
  // it was, when memory runs out; so does the copy that GetLastKnownLocalIP makes.
  static void updateLocalIP(const std::wstring& address);
  // Returns a copy of m_wstrLastKnownLocalIP.
  static std::wstring GetLastKnownLocalIP();

  // Each fills the caller's record and writes only the fields that it could determine; the others
  // keep their values. None logs or throws on purpose: where memory runs out GetOSInformation
  // returns false and the others throw std::bad_alloc, with the fields written until then.

  // Returns false when neither the architecture nor the model is known: `cpuType` is then empty and
  // `isPortable` untouched. `cpuSerialNumber` is never written.
  // Quirk: where the processor is asked for selector by selector, the architecture query starts
  // from the clock's response, so that a failed one looks the clock value up among the
  // architectures, and a model that alone is not answered counts as code 0. When no selector is
  // answered the clock is 0 MHz and neither name is known.
  bool GetCPUInformation(CPUInformation& record);
  // `computerName`, `domainName`, `ipHostName` and `ipxAddress` are always written, for at most one
  // host look-up. The address, its subnet and mask and its interface's hardware address come from
  // the first of these that there is, interfaces in the order of NetInterfaceList::getIndexes
  // without loopback: the address whose text is exactly m_wstrLastKnownLocalIP (the last of several
  // on one interface); the first address of its family, which is IPv6 when it holds ":" and IPv4
  // else, also when it is empty; the first interface's first address. Returns false when the
  // interfaces cannot be listed or none has an address: the four fields then keep their values.
  bool GetNetworkInformation(NetworkInformation& record);
  // Returns false when the free pages cannot be counted; the total may then have been written.
  // The free bytes are rounded down to a grid of twentieths of the total (get_closest_floor).
  bool GetMemoryInformation(MemoryInformation& record);
  // Returns false when the version list that identifies the system cannot be read or is none: the
  // three fixed names (platform, type, maker) are then written, and nothing else. A system without
  // version lists is identified by its release files, and the result is true.
  // A version list of more than 16 MiB counts as unreadable. The version is made of the components
  // that the version text has, three at most; a missing text, or one of more than 255 bytes, counts
  // as empty, and a missing component as 0 in the server test.
  // Quirk: an empty compatibility list hides a version list beside it: the result is false.
  // Quirk: the server test of a version list reads the version's major and minor number at their
  // places in a buffer that the build text has since overwritten: it looks at the leading digits of
  // the build text and at the bytes that follow, so that build "9..." never counts as a server.
  bool GetOSInformation(OSInformation& record);
  // Always returns true. Only local file systems with blocks count; free is the blocks kept for the
  // superuser included, rounded down to a grid of twentieths (get_closest_floor). The decimal point
  // is "." in every locale.
  // Quirk: `fileSystems` is never cleared and a mount point that it holds already keeps its texts,
  // so that a second collection into the same record refreshes the sums but not the entries.
  bool GetDiskInformation(DiskInformation& record);
  // Always returns true. `timeZone` is the standard-time abbreviation as the C library holds it,
  // read together with the time under a lock of its own: the host process calls tzset when it
  // starts and after a change of zone; no collector does. `lastUpdate`, month first, keeps its
  // value when the time has no local form. `defaultLangId` is "0809" when the environment variable
  // LANG contains "en_UK", else "0411" when it contains "ja_JP", else "0409". Scans the user
  // accounting as session/loggedonusers.h says, diagnostic lines on standard output included.
  // Quirk: `userName` without a logged-on user is "NA", not the record's default "N/A".
  bool GetMiscInformation(MiscInformation& record);

  // Both collect into all of this object's records, ignore the collectors' results and replace what
  // `properties` held by one entry per key; both always return true. When memory runs out they
  // throw std::bad_alloc, the maps then as they were; so do the functions that answer one property.

  // 29 keys, and two per local file system M: `FileSystem"M" Total_Disk_Space_in_MB` and
  // `FileSystem"M" Free_Disk_Space_in_MB`.
  // Quirk: "IsPortable" is left out here.
  bool GetAllSystemProperties(std::map<std::wstring, std::wstring>& properties);
  // 30 keys, "IsPortable" among them; `fileSystems` is replaced by the disk record's map.
  bool GetAllSystemProperties(
      std::map<std::wstring, std::wstring>& properties,
      std::map<std::wstring, std::pair<std::wstring, std::wstring>>& fileSystems);

  // The value of `key`, from the first category that claims it; the empty string when none does.
  // Quirk: no predicate claims "NumberOfFileSystems", so that its answer here is empty too,
  // although GetOneDiskProperty knows it.
  std::wstring GetOneSystemProperty(const std::wstring& key);

  // Whether `key`, compared exactly, belongs to the category.
  bool IsNetworkProperty(const std::wstring& key);
  bool IsCPUProperty(const std::wstring& key);
  bool IsMemoryProperty(const std::wstring& key);
  bool IsMiscProperty(const std::wstring& key);
  bool IsDiskProperty(const std::wstring& key);
  bool IsOSProperty(const std::wstring& key);

  // Each refreshes the category's record, whatever its collector returns, and gives the field of
  // `key`; "N/A" for a key that the category does not know.
  std::wstring GetOneNetworkProperty(const std::wstring& key);
  std::wstring GetOneCPUProperty(const std::wstring& key);
  std::wstring GetOneMemoryProperty(const std::wstring& key);
  std::wstring GetOneMiscProperty(const std::wstring& key);
  std::wstring GetOneDiskProperty(const std::wstring& key);
  std::wstring GetOneOSProperty(const std::wstring& key);

 private:
  CPUInformation m_cpu;
  NetworkInformation m_network;
  MemoryInformation m_memory;
  OSInformation m_os;
  DiskInformation m_disk;
  MiscInformation m_misc;
};

// The names under which the values are reported. The constants of this header are made when the
// library is loaded, before the static initialisers of whatever links it.
// Quirk: PlatformId_Key, CPUPortable_Key and NumFileSystems_Key do not read like their names; their
// texts "PlatformID", "IsPortable" and "NumberOfFileSystems" are what servers know.
extern ORB_EXPORT const std::wstring SystemInfo_Key;
extern ORB_EXPORT const std::wstring PlatformId_Key;
extern ORB_EXPORT const std::wstring ComputerName_Key;
extern ORB_EXPORT const std::wstring UserName_Key;
extern ORB_EXPORT const std::wstring DomainName_Key;
extern ORB_EXPORT const std::wstring CPUPortable_Key;
extern ORB_EXPORT const std::wstring CPUType_Key;
extern ORB_EXPORT const std::wstring NumOfCPU_Key;
extern ORB_EXPORT const std::wstring CPUSpeed_Key;
extern ORB_EXPORT const std::wstring CPUSerialNumber_Key;
extern ORB_EXPORT const std::wstring OSType_Key;
extern ORB_EXPORT const std::wstring OSBitMode_Key;
extern ORB_EXPORT const std::wstring OSPlatform_Key;
extern ORB_EXPORT const std::wstring OSVersion_Key;
extern ORB_EXPORT const std::wstring OSBuildNum_Key;
extern ORB_EXPORT const std::wstring OSCsdVersion_Key;
extern ORB_EXPORT const std::wstring OSOEMId_Key;
extern ORB_EXPORT const std::wstring TotalPhysicalMemory_Key;
extern ORB_EXPORT const std::wstring FreeMemory_Key;
extern ORB_EXPORT const std::wstring IPAddress_Key;
extern ORB_EXPORT const std::wstring IPHostName_Key;
extern ORB_EXPORT const std::wstring IPXAddress_Key;
extern ORB_EXPORT const std::wstring NETAddress_Key;
extern ORB_EXPORT const std::wstring SubnetAddress_Key;
extern ORB_EXPORT const std::wstring SubnetMask_Key;
extern ORB_EXPORT const std::wstring LastUpdate_Key;
extern ORB_EXPORT const std::wstring TimeZone_Key;
extern ORB_EXPORT const std::wstring DefaultLangID_Key;
extern ORB_EXPORT const std::wstring TotalDiskSpace_Key;
extern ORB_EXPORT const std::wstring FreeDiskSpace_Key;
extern ORB_EXPORT const std::wstring NumFileSystems_Key;
extern ORB_EXPORT const std::wstring FileSystemName;
extern ORB_EXPORT const std::wstring FileSystemFreeSpace;
extern ORB_EXPORT const std::wstring FileSystemTotalSpace;
// What a property that could not be collected reads.
extern ORB_EXPORT const std::wstring DefaultProp_Val;

// Distributions, and the files that identify them.
extern ORB_EXPORT const std::wstring suse_distribution;
extern ORB_EXPORT const std::wstring redhat_distribution;
extern ORB_EXPORT const std::wstring novell_distribution;
extern ORB_EXPORT const std::string redhat_release_file;
extern ORB_EXPORT const std::string ubuntu_release_file;
extern ORB_EXPORT const std::string suse_release_file;
extern ORB_EXPORT const std::string debian_release_file;

// Platform identifiers, some of systems that this library never reports.
// Quirk: platform_harbor and platform_ktos hold the same text.
extern ORB_EXPORT const std::wstring platform_harbor;
extern ORB_EXPORT const std::wstring platform_ktos;
extern ORB_EXPORT const std::wstring platform_linux;
extern ORB_EXPORT const std::wstring platform_mac;
extern ORB_EXPORT const std::wstring platform_gwa;
extern ORB_EXPORT const std::wstring platform_solaris;
extern ORB_EXPORT const std::wstring platform_hpux;
extern ORB_EXPORT const std::wstring platform_aix;
extern ORB_EXPORT const std::wstring unknown;
extern ORB_EXPORT const std::wstring unknown_domain;

// Operating-system types.
extern ORB_EXPORT const std::wstring os_linux;
extern ORB_EXPORT const std::wstring os_mac;
extern ORB_EXPORT const std::wstring os_solaris;
extern ORB_EXPORT const std::wstring os_hpux;
extern ORB_EXPORT const std::wstring os_aix;
extern ORB_EXPORT const std::wstring os_gwa;

// Platform words: what a workstation and a server are reported as.
// Quirk: `workstation` holds "Linux"; the word for a workstation is p_workstation.
extern ORB_EXPORT const std::wstring workstation;
extern ORB_EXPORT const std::wstring p_workstation;
extern ORB_EXPORT const std::wstring p_server;

// Makers.
extern ORB_EXPORT const std::wstring os_mac_oemid;
extern ORB_EXPORT const std::wstring os_solaris_oemid;
extern ORB_EXPORT const std::wstring os_hpux_oemid;
extern ORB_EXPORT const std::wstring os_aix_oemid;

// Words of a distribution's name that make it a server, behind a comma each, in blanks.
extern ORB_EXPORT const std::string server_strings;
extern ORB_EXPORT const std::string suse_server_strings;
extern ORB_EXPORT const std::wstring os_platform_ini;

// The UTF-8 form of `text` up to its first zero character, or up to the first that is no Unicode
// scalar value. Empty when the work buffer of six bytes a character, or the text itself, finds no
// memory.
ORB_EXPORT std::string sysprops_wide_to_ansi(const std::wstring& text);

// The wide form of the UTF-8 `text` up to its first zero byte, or up to the first byte that is not
// UTF-8. Empty when the work buffer or the text itself finds no memory.
ORB_EXPORT std::wstring sysprops_ansi_to_wide(const std::string& text);

// Rounds `value` down onto the grid lower + k * ((upper - lower) / steps), 0 <= k <= steps, so that
// amounts change in coarse steps. The result is the largest grid point strictly below `value`, or
// `lower` when there is none; with `steps` 0 the smaller of `value` and `lower`. For unsigned long
// long the division drops its remainder, and an `upper` below `lower` wraps modulo 2^64. Takes
// time in proportion to `steps`.
// Quirk: a value that lies on the grid gives the point below it: 35 in twentieths of 100 gives 30.
// Quirk: where that grid point is 0, `value` itself is the result, so that a small amount never
// reads as nothing: 3 in twentieths of 100 gives 3.
template <class T>
ORB_EXPORT T get_closest_floor(const T& value, const T& upper, const T& lower,
                               const unsigned& steps);

// The two instances that the library holds.
extern template ORB_EXPORT unsigned long long get_closest_floor<unsigned long long>(
    const unsigned long long&, const unsigned long long&, const unsigned long long&,
    const unsigned&);
extern template ORB_EXPORT double get_closest_floor<double>(const double&, const double&,
                                                            const double&, const unsigned&);

// The login name of the account `uid`. Returns false with `name` untouched when there is none, when
// the account database cannot be read or when memory runs out.
ORB_EXPORT bool GetPwUid(unsigned uid, std::string& name);

// The machine's node name up to its first ".". Returns false with `name` untouched when the kernel
// does not tell it or memory runs out.
ORB_EXPORT bool getComputerName(std::string& name);

}  // namespace quillon_com::orb::sysprops
