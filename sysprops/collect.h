// sysprops/collect.h: the collectors over any machine, one per record; internal.
//
// Each fills `record` from `system` as its ISysProps::Get...Information member in records.h says.
// `fields` names the fields that the caller will read: they come out as in a full collection into
// the same record, other fields may or may not be written, and facts that none of them depends on
// are not asked for. The result then says nothing about fields that were not asked for.
#pragma once

#include <string>

#include "platform/system.h"
#include "sysprops/records.h"

namespace quillon_com::orb::sysprops {

// A sum of the bits below, those of one record.
using Fields = unsigned;
constexpr Fields kAllFields = ~0U;

constexpr Fields kCpuType = 1;
constexpr Fields kCpuSpeed = 2;
constexpr Fields kCpuCount = 4;
constexpr Fields kCpuPortable = 8;
bool collect_cpu(const platform::System& system, CPUInformation& record,
                 Fields fields = kAllFields);

constexpr Fields kDomainName = 1;
constexpr Fields kComputerName = 2;
constexpr Fields kHostName = 4;
constexpr Fields kAddresses = 8;  // the address, its subnet and mask, and the hardware address
bool collect_network(const platform::System& system, NetworkInformation& record,
                     Fields fields = kAllFields);

constexpr Fields kTotalMemory = 1;
constexpr Fields kFreeMemory = 2;
bool collect_memory(const platform::System& system, MemoryInformation& record,
                    Fields fields = kAllFields);

constexpr Fields kOsIdentity = 1;  // type, version, patch level, build, maker and platform
constexpr Fields kOsPlatform = 2;  // workstation or server
constexpr Fields kOsBitMode = 4;
bool collect_os(const platform::System& system, OSInformation& record, Fields fields = kAllFields);

bool collect_disk(const platform::System& system, DiskInformation& record);

constexpr Fields kUserName = 1;
constexpr Fields kTimeZone = 2;
constexpr Fields kLanguage = 4;
constexpr Fields kLastUpdate = 8;
bool collect_misc(const platform::System& system, MiscInformation& record,
                  Fields fields = kAllFields);

// getComputerName and IsPortableComputer for any machine.
bool computer_name(const platform::System& system, std::string& name);
bool portable_computer(const platform::System& system, bool& portable);

}  // namespace quillon_com::orb::sysprops
