// platform/linux_interfaces.cpp: the interface entries of LinuxSystem.
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <netpacket/packet.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/linux_interfaces.h"
#include "platform/linux_system.h"

namespace quillon_com::orb::platform {
namespace {

struct ListReleaser {
  void operator()(ifaddrs* list) const { freeifaddrs(list); }
};

size_t address_size(int family) {
  switch (family) {
    case AF_INET:
      return sizeof(sockaddr_in);
    case AF_INET6:
      return sizeof(sockaddr_in6);
    case AF_PACKET:
      return sizeof(sockaddr_ll);
    default:
      return sizeof(sockaddr);
  }
}

// `family` stands in where the address has none of its own.
void copy_address(const sockaddr* from, int family, SocketAddress* to) {
  if (from == nullptr) return;
  const size_t size = address_size(from->sa_family != AF_UNSPEC ? from->sa_family : family);
  std::memcpy(&to->bytes, from, size);
  to->size = size;
}

std::optional<std::array<unsigned char, 6>> link_address(const sockaddr* address) {
  if (address == nullptr || address->sa_family != AF_PACKET) return std::nullopt;
  sockaddr_ll link;
  std::memcpy(&link, address, sizeof link);
  std::array<unsigned char, 6> bytes;
  std::copy_n(link.sll_addr, bytes.size(), bytes.begin());
  return bytes;
}

unsigned index_through(int socket, const std::string& name) {
  ifreq request{};
  if (name.size() >= sizeof request.ifr_name) return 0;
  name.copy(request.ifr_name, sizeof request.ifr_name);
  if (ioctl(socket, SIOCGIFINDEX, &request) != 0) return 0;
  return static_cast<unsigned>(request.ifr_ifindex);
}

}  // namespace

InterfaceEntry entry_of(const ifaddrs& entry) {
  InterfaceEntry result;
  const char* name = entry.ifa_name != nullptr ? entry.ifa_name : "";
  result.name.assign(name, strcspn(name, ":"));
  result.flags = entry.ifa_flags;
  const int family = entry.ifa_addr != nullptr ? entry.ifa_addr->sa_family : AF_UNSPEC;
  copy_address(entry.ifa_addr, family, &result.address);
  copy_address(entry.ifa_netmask, family, &result.netmask);
  result.link_address = link_address(entry.ifa_addr);
  return result;
}

bool LinuxSystem::interface_entries(std::vector<InterfaceEntry>* entries) const {
  ifaddrs* head = nullptr;
  if (getifaddrs(&head) != 0) return false;
  const std::unique_ptr<ifaddrs, ListReleaser> list(head);
  size_t count = 0;
  for (const ifaddrs* entry = head; entry != nullptr; entry = entry->ifa_next) ++count;
  std::vector<InterfaceEntry> read;
  read.reserve(count);
  for (const ifaddrs* entry = head; entry != nullptr; entry = entry->ifa_next) {
    read.push_back(entry_of(*entry));
  }
  *entries = std::move(read);
  return true;
}

std::vector<unsigned> LinuxSystem::interface_indexes(const std::vector<std::string>& names) const {
  std::vector<unsigned> indexes(names.size());  // before the socket, which it could cost
  const int any_socket = names.empty() ? -1 : socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (any_socket < 0) return indexes;
  for (size_t i = 0; i < names.size(); ++i) indexes[i] = index_through(any_socket, names[i]);
  close(any_socket);
  return indexes;
}

}  // namespace quillon_com::orb::platform
