// tools/orbprops/collect.cpp: runs the library's collectors and times them.
#include "tools/orbprops/collect.h"

#include <algorithm>
#include <chrono>
#include <set>

#include "network/netinterface.h"
#include "session/loggedonusers.h"
#include "sysprops/records.h"
#include "tools/orbprops/properties.h"

namespace orbprops {
namespace {

namespace props = quillon_com::orb::sysprops;

template <class Action>
void timed(std::string_view name, Answer& answer, Action action) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  action();
  const std::chrono::duration<double, std::milli> taken = Clock::now() - start;
  answer.timings.push_back({std::string(name), taken.count()});
}

std::vector<FileSystem> file_systems_of(const props::DiskInformation& record) {
  std::vector<FileSystem> out;
  for (const auto& [mount_point, sizes] : record.fileSystems) {
    out.push_back({mount_point, sizes.first, sizes.second});
  }
  return out;
}

Interface interface_of(const NetInterface& record) {
  Interface out{record.getIndex(), record.getIndexName(), record.getMACAddress(), {}};
  for (const IPAddress& address : record.getIPAddress()) {
    out.addresses.push_back(
        {address.getIPAddress(), address.getSubNetMask(), address.getSubNetAddr()});
  }
  return out;
}

bool needs_host_look_up(std::string_view key) { return key == "DomainName" || key == "IPHostName"; }

}  // namespace

void collect_report(Answer& answer) {
  Records records;
  timed("total", answer, [&] {
    props::ISysProps source;
    timed("network", answer, [&] { source.GetNetworkInformation(records.network); });
    timed("cpu", answer, [&] { source.GetCPUInformation(records.cpu); });
    timed("memory", answer, [&] { source.GetMemoryInformation(records.memory); });
    timed("disk", answer, [&] { source.GetDiskInformation(records.disk); });
    timed("misc", answer, [&] { source.GetMiscInformation(records.misc); });
    timed("os", answer, [&] { source.GetOSInformation(records.os); });
  });
  answer.properties.emplace();
  for (const PropertyInfo& info : kProperties) {
    answer.properties->push_back({info.key, info.field(records)});
  }
  answer.file_systems = file_systems_of(records.disk);
}

void collect_properties(const std::vector<std::string_view>& keys, Answer& answer) {
  Records shared;
  const bool share = std::count_if(keys.begin(), keys.end(), needs_host_look_up) > 1;
  if (share) {
    timed("network", answer, [&] { props::ISysProps().GetNetworkInformation(shared.network); });
  }
  answer.properties.emplace();
  for (std::string_view key : keys) {
    const PropertyInfo& info = *find_property(key);
    if (share && needs_host_look_up(key)) {
      answer.properties->push_back({info.key, info.field(shared)});
    } else {
      timed(key, answer, [&] { answer.properties->push_back({info.key, info.answer()}); });
    }
  }
}

void collect_file_systems(Answer& answer) {
  props::DiskInformation record;
  timed("disk", answer, [&] { props::ISysProps().GetDiskInformation(record); });
  answer.file_systems = file_systems_of(record);
}

void collect_interfaces(bool with_loopback, Answer& answer) {
  NetInterfaceList list(with_loopback);
  timed("interfaces", answer, [&] { list.initialize(); });
  answer.interfaces.emplace();
  for (int index : list.getIndexes()) {
    answer.interfaces->push_back(interface_of(list.getNetInterface(static_cast<unsigned>(index))));
  }
}

void collect_users(Answer& answer) {
  std::set<std::string> network;
  std::set<std::string> local;
  timed("users", answer,
        [&] { quillon_com::orb::session::CollectLoggedonUsers(network, local, false); });
  answer.users = Users{{network.begin(), network.end()}, {local.begin(), local.end()}};
}

}  // namespace orbprops
