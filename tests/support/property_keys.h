// tests/support/property_keys.h: the report's keys with their fields, spelled out by hand.
#pragma once

#include <string>
#include <vector>

namespace orbtest {

enum class KeyKind { network, cpu, memory, misc, disk, os };

struct PropertyKey {
  const wchar_t* key;
  KeyKind kind;
};

// Every key that a category claims; "NumberOfFileSystems" is none of them.
inline const std::vector<PropertyKey>& claimed_keys() {
  static const std::vector<PropertyKey> keys{
      {L"ComputerName", KeyKind::network},  {L"DomainName", KeyKind::network},
      {L"IPAddress", KeyKind::network},     {L"IPHostName", KeyKind::network},
      {L"IPXAddress", KeyKind::network},    {L"NETAddress", KeyKind::network},
      {L"SubnetAddress", KeyKind::network}, {L"SubnetMask", KeyKind::network},
      {L"CPUType", KeyKind::cpu},           {L"NumOfCPU", KeyKind::cpu},
      {L"CPUSpeed", KeyKind::cpu},          {L"IsPortable", KeyKind::cpu},
      {L"CPUSerialNumber", KeyKind::cpu},   {L"TotalPhysicalMemory", KeyKind::memory},
      {L"FreeMemory", KeyKind::memory},     {L"UserName", KeyKind::misc},
      {L"TimeZone", KeyKind::misc},         {L"DefaultLangID", KeyKind::misc},
      {L"LastUpdate", KeyKind::misc},       {L"FreeDiskSpace", KeyKind::disk},
      {L"TotalDiskSpace", KeyKind::disk},   {L"OSType", KeyKind::os},
      {L"OSBitMode", KeyKind::os},          {L"OSPlatform", KeyKind::os},
      {L"OSVersion", KeyKind::os},          {L"OSBuildNum", KeyKind::os},
      {L"OSCsdVersion", KeyKind::os},       {L"OSOEMId", KeyKind::os},
      {L"PlatformID", KeyKind::os},
  };
  return keys;
}

// Keys that no category claims, most of them nearly one that is claimed.
inline const std::vector<std::wstring>& unclaimed_keys() {
  static const std::vector<std::wstring> keys{
      L"NumberOfFileSystems",
      L"SystemInfo",
      L"FileSystem",
      L"Free_Disk_Space_in_MB",
      L"N/A",
      L"",
      L"CPU",
      L"cputype",
      L"computername",
      L"ISPORTABLE",
      L"OSTYPE",
      L"OSTyp",
      L"OSType ",
      L" CPUType",
      L"CPUType ",
      L"PlatformId",
      L"Platformid",
      std::wstring(L"CPUType\0", 8),
      std::wstring(L"FreeMemory\0", 11),
  };
  return keys;
}

// A key, which is ASCII, as a test shows it.
inline std::string shown(const std::wstring& key) { return std::string(key.begin(), key.end()); }

}  // namespace orbtest
