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

// One call's walk: the entries once for the hardware addresses, once for the addresses; then the
// indexes of those interfaces that have any.
class InterfaceWalk {
 public:
  InterfaceWalk(const platform::System& system, NetInterfaceList& list)
      : system_(system), list_(list) {}

  // Returns whether an address was added.
  bool run() {
    std::vector<platform::InterfaceEntry> entries;
    if (!system_.interface_entries(&entries)) return false;
    for (const auto& entry : entries) note_hardware(entry);
    for (const auto& entry : entries) note_address(entry);
    const std::vector<unsigned> indexes = system_.interface_indexes(names_);
    auto interfaces = list_.interfaces;  // all of them change, or none
    for (const Found& found : found_) {
      const size_t name = *found.interface->name;
      NetInterface& record = interfaces[indexes[name]];
      add(indexes[name], names_[name], found, &record);
    }
    list_.interfaces.swap(interfaces);
    return !found_.empty();
  }

 private:
  // What the walk knows of the interface of one name.
  struct Interface {
    std::string hardware;        // the text of its first link-layer entry
    std::optional<size_t> name;  // in names_, once an address was found
  };

  // An address that passed every test.
  struct Found {
    const Interface* interface;
    IPAddress address;
  };

  void note_hardware(const platform::InterfaceEntry& entry) {
    if (!entry.link_address) return;
    const auto [place, added] = interfaces_.try_emplace(entry.name);
    if (added) place->second.hardware = hardware_text(*entry.link_address);
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
        !mask_text(family, netmask, &mask)) {
      return false;
    }
    subnet_text(family, netmask, entry.address.get(), &subnet);  // both are there
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

  void note_address(const platform::InterfaceEntry& entry) {
    if (!wanted(entry)) return;
    const auto known = interfaces_.find(entry.name);
    if (known == interfaces_.end()) return;  // no link-layer entry
    IPAddress address;
    if (!describe(entry, &address)) return;
    Interface& interface = known->second;
    if (!interface.name) {
      interface.name = names_.size();
      names_.push_back(entry.name);
    }
    found_.push_back({&interface, address});
  }

  static void add(unsigned index, const std::string& name, const Found& found,
                  NetInterface* record) {
    record->setOption(NETIF_INDEX_NAME, name);
    record->setOption(NETIF_INDEX, index);
    record->setOption(NETIF_MAC_ADDRESS, found.interface->hardware);
    record->setOption(NETIF_IP_ADDRESS, found.address);
  }

  const platform::System& system_;
  NetInterfaceList& list_;
  std::unordered_map<std::string, Interface> interfaces_;  // by name; with a link-layer entry
  std::vector<std::string> names_;                         // of interfaces with an address
  std::vector<Found> found_;                               // in the system's order
  std::map<int, bool> families_;                           // usable; those asked
};

bool fill_list(const platform::System& system, NetInterfaceList& list) {
  return InterfaceWalk(system, list).run();
}

// Looks at the records of a list in place: the getters would copy each on the way.
class InterfaceSearch {
 public:
  static const NetInterface* carrier_of(const std::string& ip, const NetInterfaceList& list) {
    for (const int index : list.getIndexes()) {
      const NetInterface& candidate = list.interfaces.at(static_cast<unsigned>(index));
      for (const IPAddress& address : candidate.ipAddresses)
        if (address.ipAddress == ip) return &candidate;
    }
    return nullptr;
  }
};

const NetInterface* carrier_of(const std::string& ip, const NetInterfaceList& list) {
  return InterfaceSearch::carrier_of(ip, list);
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
