// platform/darwin_interfaces.cpp: the system's interface addresses, copied within their own bounds.
#include <ifaddrs.h>
#include <net/if_dl.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/darwin_system.h"

namespace quillon_com::orb::platform {
namespace {

struct ReleaseList {
  void operator()(ifaddrs* list) const { freeifaddrs(list); }
};

// The list holds no more of an address than the length that it states itself.
SocketAddress copy_address(const sockaddr* address) {
  SocketAddress copy;
  if (address == nullptr) return copy;
  copy.size = std::min<size_t>(address->sa_len, sizeof copy.bytes);
  memcpy(&copy.bytes, address, *copy.size);
  return copy;
}

std::array<unsigned char, 6> link_address(const sockaddr* address) {
  std::array<unsigned char, 6> result{};
  const auto* bytes = reinterpret_cast<const unsigned char*>(address);
  const size_t length = address->sa_len;
  if (length <= offsetof(sockaddr_dl, sdl_nlen)) return result;
  const size_t start = offsetof(sockaddr_dl, sdl_data) + bytes[offsetof(sockaddr_dl, sdl_nlen)];
  if (start < length) memcpy(result.data(), bytes + start, std::min(length - start, result.size()));
  return result;
}

}  // namespace

bool DarwinSystem::interface_entries(std::vector<InterfaceEntry>* entries) const {
  ifaddrs* first = nullptr;
  if (getifaddrs(&first) != 0) return false;
  const std::unique_ptr<ifaddrs, ReleaseList> list(first);
  std::vector<InterfaceEntry> read;
  for (const ifaddrs* item = first; item != nullptr; item = item->ifa_next) {
    InterfaceEntry& entry = read.emplace_back();
    entry.name = item->ifa_name;
    entry.flags = item->ifa_flags;
    entry.address = copy_address(item->ifa_addr);
    entry.netmask = copy_address(item->ifa_netmask);
    if (item->ifa_addr != nullptr && item->ifa_addr->sa_family == AF_LINK) {
      entry.link_address = link_address(item->ifa_addr);
    }
  }
  *entries = std::move(read);
  return true;
}

}  // namespace quillon_com::orb::platform
