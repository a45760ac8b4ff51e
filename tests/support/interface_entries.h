// tests/support/interface_entries.h: entries of a scripted machine's interface list.
#pragma once

#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/in.h>

#include <array>
#include <cstring>
#include <stdexcept>
#include <string>

#include "platform/system.h"

namespace orbtest {

inline quillon_com::orb::platform::SocketAddress ipv4(const std::string& quad) {
  sockaddr_in record{};
  record.sin_family = AF_INET;
  if (inet_pton(AF_INET, quad.c_str(), &record.sin_addr) != 1) throw std::invalid_argument(quad);
  quillon_com::orb::platform::SocketAddress address;
  std::memcpy(&address.bytes, &record, sizeof record);
  address.size = sizeof record;
  return address;
}

inline quillon_com::orb::platform::SocketAddress ipv6(const std::string& text, unsigned zone = 0) {
  sockaddr_in6 record{};
  record.sin6_family = AF_INET6;
  record.sin6_scope_id = zone;
  if (inet_pton(AF_INET6, text.c_str(), &record.sin6_addr) != 1) throw std::invalid_argument(text);
  quillon_com::orb::platform::SocketAddress address;
  std::memcpy(&address.bytes, &record, sizeof record);
  address.size = sizeof record;
  return address;
}

// `address` as a system delivers it that states `size` bytes only, and no family when
// `keep_family` is false.
inline quillon_com::orb::platform::SocketAddress shortened(
    const quillon_com::orb::platform::SocketAddress& address, size_t size, bool keep_family) {
  quillon_com::orb::platform::SocketAddress cut;
  std::memcpy(&cut.bytes, &address.bytes, size);
  if (!keep_family) cut.bytes.ss_family = 0;
  cut.size = size;
  return cut;
}

inline quillon_com::orb::platform::InterfaceEntry address_entry(
    const std::string& name, const quillon_com::orb::platform::SocketAddress& address,
    const quillon_com::orb::platform::SocketAddress& netmask, unsigned flags = IFF_UP) {
  quillon_com::orb::platform::InterfaceEntry entry;
  entry.name = name;
  entry.flags = flags;
  entry.address = address;
  entry.netmask = netmask;
  return entry;
}

// A link-layer entry; its family is one that is neither IPv4 nor IPv6.
inline quillon_com::orb::platform::InterfaceEntry link_entry(
    const std::string& name, const std::array<unsigned char, 6>& hardware,
    unsigned flags = IFF_UP) {
  quillon_com::orb::platform::InterfaceEntry entry;
  entry.name = name;
  entry.flags = flags;
  entry.address.bytes.ss_family = AF_UNSPEC;
  entry.address.size = sizeof(sockaddr_storage);
  entry.link_address = hardware;
  return entry;
}

}  // namespace orbtest
