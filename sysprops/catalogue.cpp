// sysprops/catalogue.cpp: the report maps, and single answers by key.
#include "sysprops/catalogue.h"

#include <cstddef>

#include "sysprops/collect.h"
#include "sysprops/report.h"

namespace quillon_com::orb::sysprops {

namespace {

// A key with its field in the category's record, and what must be collected for it.
template <class Record>
struct Property {
  const std::wstring& key;
  std::wstring Record::*field;
  Fields needs;
};

constexpr Property<CPUInformation> kCpuProperties[] = {
    {CPUType_Key, &CPUInformation::cpuType, kCpuType},
    {CPUSpeed_Key, &CPUInformation::cpuSpeed, kCpuSpeed},
    {NumOfCPU_Key, &CPUInformation::numOfCPU, kCpuCount},
    {CPUSerialNumber_Key, &CPUInformation::cpuSerialNumber, 0},
    {CPUPortable_Key, &CPUInformation::isPortable, kCpuPortable},
};

constexpr Property<NetworkInformation> kNetworkProperties[] = {
    {ComputerName_Key, &NetworkInformation::computerName, kComputerName},
    {IPAddress_Key, &NetworkInformation::ipAddress, kAddresses},
    {DomainName_Key, &NetworkInformation::domainName, kDomainName},
    {NETAddress_Key, &NetworkInformation::netAddress, kAddresses},
    {SubnetAddress_Key, &NetworkInformation::subnetAddress, kAddresses},
    {IPXAddress_Key, &NetworkInformation::ipxAddress, 0},
    {SubnetMask_Key, &NetworkInformation::subnetMask, kAddresses},
    {IPHostName_Key, &NetworkInformation::ipHostName, kHostName},
};

constexpr Property<MemoryInformation> kMemoryProperties[] = {
    {TotalPhysicalMemory_Key, &MemoryInformation::totalPhysicalMemory, kTotalMemory},
    {FreeMemory_Key, &MemoryInformation::freeMemory, kFreeMemory},
};

constexpr Property<OSInformation> kOsProperties[] = {
    {OSType_Key, &OSInformation::osType, kOsIdentity},
    {OSBitMode_Key, &OSInformation::osBitMode, kOsBitMode},
    {OSPlatform_Key, &OSInformation::osPlatform, kOsPlatform},
    {OSVersion_Key, &OSInformation::osVersion, kOsIdentity},
    {OSBuildNum_Key, &OSInformation::osBuildNum, kOsIdentity},
    {OSCsdVersion_Key, &OSInformation::osCsdVersion, kOsIdentity},
    {OSOEMId_Key, &OSInformation::osOemId, kOsIdentity},
    {PlatformId_Key, &OSInformation::platformId, kOsIdentity},
};

constexpr Property<MiscInformation> kMiscProperties[] = {
    {UserName_Key, &MiscInformation::userName, kUserName},
    {TimeZone_Key, &MiscInformation::timeZone, kTimeZone},
    {DefaultLangID_Key, &MiscInformation::defaultLangId, kLanguage},
    {LastUpdate_Key, &MiscInformation::lastUpdate, kLastUpdate},
};

constexpr Property<DiskInformation> kDiskProperties[] = {
    {NumFileSystems_Key, &DiskInformation::numFileSystems, kAllFields},
    {FreeDiskSpace_Key, &DiskInformation::freeDiskSpace, kAllFields},
    {TotalDiskSpace_Key, &DiskInformation::totalDiskSpace, kAllFields},
};

// The property of `key` in one of the tables above; null when it is not there.
template <class Record, size_t N>
const Property<Record>* find(const Property<Record> (&table)[N], const std::wstring& key) {
  for (const Property<Record>& property : table) {
    if (property.key == key) return &property;
  }
  return nullptr;
}

template <class Record, size_t N>
std::wstring value(const Property<Record> (&table)[N], const Record& record,
                   const std::wstring& key) {
  const Property<Record>* const property = find(table, key);
  return property == nullptr ? DefaultProp_Val : record.*property->field;
}

// The value of `key`, which stands in `table`, in a record fresh from `collect(record, needs)`.
template <class Record, size_t N, class Collect>
std::wstring fresh_value(const Property<Record> (&table)[N], const std::wstring& key,
                         Collect collect) {
  const Property<Record>& property = *find(table, key);
  Record record;
  if (property.needs != 0) collect(record, property.needs);
  return record.*property.field;
}

template <class Record, size_t N>
void insert(const Property<Record> (&table)[N], const Record& record, PropertyMap& properties) {
  for (const Property<Record>& property : table) {
    properties.emplace(property.key, record.*property.field);
  }
}

bool is_disk_property(const std::wstring& key) {
  return key == FreeDiskSpace_Key || key == TotalDiskSpace_Key;
}

}  // namespace

void collect_records(const platform::System& system, const Records& records) {
  collect_network(system, records.network);
  collect_cpu(system, records.cpu);
  collect_memory(system, records.memory);
  collect_disk(system, records.disk);
  collect_misc(system, records.misc);
  collect_os(system, records.os);
}

void write_report(const Records& records, PropertyMap& properties, FileSystemMap& file_systems) {
  PropertyMap report;  // whole before anything of the caller's changes
  insert(kCpuProperties, records.cpu, report);
  insert(kNetworkProperties, records.network, report);
  insert(kMemoryProperties, records.memory, report);
  insert(kOsProperties, records.os, report);
  insert(kMiscProperties, records.misc, report);
  insert(kDiskProperties, records.disk, report);
  FileSystemMap volumes = records.disk.fileSystems;
  properties.swap(report);
  file_systems.swap(volumes);
}

void write_report(const Records& records, PropertyMap& properties) {
  PropertyMap report;
  FileSystemMap file_systems;
  write_report(records, report, file_systems);
  report.erase(CPUPortable_Key);
  for (const auto& [mount_point, space] : file_systems) {
    std::wstring stem = FileSystemName;
    stem.append(L"\"").append(mount_point).append(L"\" ");
    report.emplace(stem + FileSystemTotalSpace, space.first);
    report.emplace(stem + FileSystemFreeSpace, space.second);
  }
  properties.swap(report);
}

std::wstring refreshed_value(const platform::System& system, NetworkInformation& record,
                             const std::wstring& key) {
  collect_network(system, record);
  return value(kNetworkProperties, record, key);
}

std::wstring refreshed_value(const platform::System& system, CPUInformation& record,
                             const std::wstring& key) {
  collect_cpu(system, record);
  return value(kCpuProperties, record, key);
}

std::wstring refreshed_value(const platform::System& system, MemoryInformation& record,
                             const std::wstring& key) {
  collect_memory(system, record);
  return value(kMemoryProperties, record, key);
}

std::wstring refreshed_value(const platform::System& system, MiscInformation& record,
                             const std::wstring& key) {
  collect_misc(system, record);
  return value(kMiscProperties, record, key);
}

std::wstring refreshed_value(const platform::System& system, DiskInformation& record,
                             const std::wstring& key) {
  collect_disk(system, record);
  return value(kDiskProperties, record, key);
}

std::wstring refreshed_value(const platform::System& system, OSInformation& record,
                             const std::wstring& key) {
  collect_os(system, record);
  return value(kOsProperties, record, key);
}

std::wstring fresh_answer(const platform::System& system, const std::wstring& key) {
  if (find(kNetworkProperties, key)) {
    return fresh_value(kNetworkProperties, key, [&](NetworkInformation& record, Fields fields) {
      collect_network(system, record, fields);
    });
  }
  if (find(kCpuProperties, key)) {
    return fresh_value(kCpuProperties, key, [&](CPUInformation& record, Fields fields) {
      collect_cpu(system, record, fields);
    });
  }
  if (find(kMemoryProperties, key)) {
    return fresh_value(kMemoryProperties, key, [&](MemoryInformation& record, Fields fields) {
      collect_memory(system, record, fields);
    });
  }
  if (find(kMiscProperties, key)) {
    return fresh_value(kMiscProperties, key, [&](MiscInformation& record, Fields fields) {
      collect_misc(system, record, fields);
    });
  }
  if (is_disk_property(key)) {
    return fresh_value(kDiskProperties, key,
                       [&](DiskInformation& record, Fields) { collect_disk(system, record); });
  }
  if (find(kOsProperties, key)) {
    return fresh_value(kOsProperties, key, [&](OSInformation& record, Fields fields) {
      collect_os(system, record, fields);
    });
  }
  return L"";
}

bool ISysProps::IsNetworkProperty(const std::wstring& key) { return find(kNetworkProperties, key); }
bool ISysProps::IsCPUProperty(const std::wstring& key) { return find(kCpuProperties, key); }
bool ISysProps::IsMemoryProperty(const std::wstring& key) { return find(kMemoryProperties, key); }
bool ISysProps::IsMiscProperty(const std::wstring& key) { return find(kMiscProperties, key); }
bool ISysProps::IsDiskProperty(const std::wstring& key) { return is_disk_property(key); }
bool ISysProps::IsOSProperty(const std::wstring& key) { return find(kOsProperties, key); }

std::wstring ISysProps::GetOneNetworkProperty(const std::wstring& key) {
  return refreshed_value(platform::host(), m_network, key);
}

std::wstring ISysProps::GetOneCPUProperty(const std::wstring& key) {
  return refreshed_value(platform::host(), m_cpu, key);
}

std::wstring ISysProps::GetOneMemoryProperty(const std::wstring& key) {
  return refreshed_value(platform::host(), m_memory, key);
}

std::wstring ISysProps::GetOneMiscProperty(const std::wstring& key) {
  return refreshed_value(platform::host(), m_misc, key);
}

std::wstring ISysProps::GetOneDiskProperty(const std::wstring& key) {
  return refreshed_value(platform::host(), m_disk, key);
}

std::wstring ISysProps::GetOneOSProperty(const std::wstring& key) {
  return refreshed_value(platform::host(), m_os, key);
}

std::wstring ISysProps::GetOneSystemProperty(const std::wstring& key) {
  if (IsNetworkProperty(key)) return GetOneNetworkProperty(key);
  if (IsCPUProperty(key)) return GetOneCPUProperty(key);
  if (IsMemoryProperty(key)) return GetOneMemoryProperty(key);
  if (IsMiscProperty(key)) return GetOneMiscProperty(key);
  if (IsDiskProperty(key)) return GetOneDiskProperty(key);
  if (IsOSProperty(key)) return GetOneOSProperty(key);
  return L"";
}

bool ISysProps::GetAllSystemProperties(PropertyMap& properties) {
  const Records records{m_cpu, m_network, m_memory, m_os, m_disk, m_misc};
  collect_records(platform::host(), records);
  write_report(records, properties);
  return true;
}

bool ISysProps::GetAllSystemProperties(PropertyMap& properties, FileSystemMap& fileSystems) {
  const Records records{m_cpu, m_network, m_memory, m_os, m_disk, m_misc};
  collect_records(platform::host(), records);
  write_report(records, properties, fileSystems);
  return true;
}

}  // namespace quillon_com::orb::sysprops
