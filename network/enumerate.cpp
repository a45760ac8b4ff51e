// network/enumerate.cpp: from the system's entries to interface records.
#include "network/enumerate.h"

#include <net/if.h>
#include <netinet/in.h>

#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

#include "network/addresstext.h"
#include "network/ipv6.h"

namespace quillon_com::orb::network {

// One call's walk: the entries once for the hardware addresses, once for the addresses.
class InterfaceWalk {
 public:
  InterfaceWalk(const platform::System& system, NetInterfaceList& list)
      : system_(system), list_(list) {}

  // Returns whether an address was added.
  bool run() {
    std::vector<platform::InterfaceEntry> entries;
    if (!system_.interface_entries(&entries)) return false;
    for (const auto& entry : entries) note_hardware(entry);
    bool added = false;
    for (const auto& entry : entries) {
      if (!wanted(entry)) continue;
      IPAddress address;
      Interface& interface = interfaces_[entry.name];
      if (!interface.hardware || !describe(entry, &address)) continue;
      add(entry.name, interface, address);
      added = true;
    }
    return added;
  }

 private:
  // What the walk knows of the interface of one name.
  struct Interface {
    std::optional<std::string> hardware;  // the text of its first link-layer entry
    std::optional<unsigned> index;        // once asked
  };

  void note_hardware(const platform::InterfaceEntry& entry) {
    if (!entry.link_address) return;
    Interface& interface = interfaces_[entry.name];
    if (!interface.hardware) interface.hardware = hardware_text(*entry.link_address);
  }

  bool wanted(const platform::InterfaceEntry& entry) const {
    if (!entry.address.present() || (entry.flags & IFF_UP) == 0) return false;
    if ((entry.flags & IFF_LOOPBACK) != 0 && !list_.includeLoopback) return false;
    const int family = entry.address.get()->sa_family;
    return family == AF_INET || family == AF_INET6;
  }

  bool usable(int family) {
    const auto known = families_.find(family);
    if (known != families_.end()) return known->second;
    return families_[family] = system_.family_usable(family);
  }

  // A zone is no part of the texts that are kept; without it nobody looks its name up.
  static platform::SocketAddress without_zone(platform::SocketAddress address) {
    if (address.get()->sa_family == AF_INET6) {
      reinterpret_cast<sockaddr_in6*>(address.get())->sin6_scope_id = 0;
    }
    return address;
  }

  // Writes the texts of `entry`; false when it has one that cannot be made.
  bool describe(const platform::InterfaceEntry& entry, IPAddress* record) {
    const unsigned family = entry.address.get()->sa_family;
    const sockaddr* netmask = entry.netmask.present() ? entry.netmask.get() : nullptr;
    std::string address;
    std::string mask;
    std::string subnet;
    if (!numeric_text(without_zone(entry.address), &address) || !usable(static_cast<int>(family)) ||
        !mask_text(family, netmask, &mask) ||
        !subnet_text(family, netmask, entry.address.get(), &subnet)) {
      return false;
    }
    if (family == AF_INET6) {
      address = expandIPV6Address(address);
      mask = expandIPV6Address(mask);
      subnet = calculateSubNetAddrForV6(address, mask);
    }
    record->setOption(IP_ADDRESS, address);
    record->setOption(IP_FAMILY, family);
    record->setOption(IP_SUBNET_MASK, mask);
    record->setOption(IP_SUBNET_ADDR, subnet);
    return true;
  }

  void add(const std::string& name, Interface& interface, const IPAddress& address) {
    if (!interface.index) interface.index = system_.interface_index(name);
    NetInterface& record = list_.getNetInterface(*interface.index);
    record.setOption(NETIF_INDEX_NAME, name);
    record.setOption(NETIF_INDEX, *interface.index);
    record.setOption(NETIF_MAC_ADDRESS, *interface.hardware);
    record.setOption(NETIF_IP_ADDRESS, address);
  }

  const platform::System& system_;
  NetInterfaceList& list_;
  std::unordered_map<std::string, Interface> interfaces_;  // by name
  std::map<int, bool> families_;                           // usable; those asked
};

bool fill_list(const platform::System& system, NetInterfaceList& list) {
  return InterfaceWalk(system, list).run();
}

bool hardware_address(const platform::System& system, const std::string& name, std::string* mac) {
  std::vector<platform::InterfaceEntry> entries;
  if (!system.interface_entries(&entries)) return false;
  for (const auto& entry : entries) {
    if (!entry.link_address || entry.name != name) continue;
    *mac = hardware_text(*entry.link_address);
    return true;
  }
  return false;
}

}  // namespace quillon_com::orb::network
