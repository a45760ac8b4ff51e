// sysprops/report.h: the property report over any machine, and answers by key; internal.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "platform/system.h"
#include "sysprops/records.h"

namespace quillon_com::orb::sysprops {

using PropertyMap = std::map<std::wstring, std::wstring>;
using FileSystemMap = std::map<std::wstring, std::pair<std::wstring, std::wstring>>;

// The records of one ISysProps object, in its order; each outlives this.
struct Records {
  CPUInformation& cpu;
  NetworkInformation& network;
  MemoryInformation& memory;
  OSInformation& os;
  DiskInformation& disk;
  MiscInformation& misc;
};

// Runs all collectors on `records`: network, processor, memory, disk, miscellaneous, operating
// system. Their results are ignored.
void collect_records(const platform::System& system, const Records& records);

// The maps of the GetAllSystemProperties members, from what `records` hold; nothing is collected.
void write_report(const Records& records, PropertyMap& properties);
void write_report(const Records& records, PropertyMap& properties, FileSystemMap& file_systems);

// The GetOne...Property members: each collects the whole `record`, whatever its collector returns,
// and answers the field of `key`; "N/A" for a key that the record does not have.
std::wstring refreshed_value(const platform::System& system, NetworkInformation& record,
                             const std::wstring& key);
std::wstring refreshed_value(const platform::System& system, CPUInformation& record,
                             const std::wstring& key);
std::wstring refreshed_value(const platform::System& system, MemoryInformation& record,
                             const std::wstring& key);
std::wstring refreshed_value(const platform::System& system, MiscInformation& record,
                             const std::wstring& key);
std::wstring refreshed_value(const platform::System& system, DiskInformation& record,
                             const std::wstring& key);
std::wstring refreshed_value(const platform::System& system, OSInformation& record,
                             const std::wstring& key);

// The answer of a fresh ISysProps to GetOneSystemProperty(key). Only the facts that it depends on
// are asked of `system`; the empty text, with nothing asked, for a key that no category claims.
std::wstring fresh_answer(const platform::System& system, const std::wstring& key);

}  // namespace quillon_com::orb::sysprops
