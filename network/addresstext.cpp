// network/addresstext.cpp: socket addresses as the resolver writes them, masks, subnets, hardware.
#include "network/addresstext.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>

#include <algorithm>
#include <cstring>

#include "platform/values.h"

namespace quillon_com::orb::network {
namespace {

constexpr size_t kHostText = 1025;  // bytes of the longest host text, terminator included

// The bytes that `mask` states itself; the rest zero.
platform::SocketAddress stated_bytes(unsigned family, const sockaddr* mask) {
  platform::SocketAddress copy;
  copy.size = std::min(platform::stated_length(mask, static_cast<int>(family)), sizeof copy.bytes);
  std::memcpy(&copy.bytes, mask, *copy.size);
  return copy;
}

in_addr_t ipv4_bits(const sockaddr* address) {
  sockaddr_in record;
  std::memcpy(&record, address, sizeof record);
  return record.sin_addr.s_addr;
}

}  // namespace

bool numeric_text(const platform::SocketAddress& address, std::string* text) {
  char host[kHostText] = {};
  if (getnameinfo(address.get(), sizeof address.bytes, host, sizeof host, nullptr, 0,
                  NI_NUMERICHOST) != 0) {
    return false;
  }
  *text = host;
  return true;
}

bool mask_text(unsigned family, const sockaddr* mask, std::string* text) {
  if (mask == nullptr) return false;
  platform::SocketAddress whole = stated_bytes(family, mask);
  if (whole.bytes.ss_family == 0) whole.bytes.ss_family = static_cast<sa_family_t>(family);
  return numeric_text(whole, text);
}

bool subnet_text(unsigned family, const sockaddr* mask, const sockaddr* address,
                 std::string* text) {
  if (mask == nullptr || address == nullptr) return false;
  if (family != AF_INET) {
    *text = "N/A";
    return true;
  }
  const platform::SocketAddress whole_mask = stated_bytes(family, mask);
  const in_addr subnet{ipv4_bits(whole_mask.get()) & ipv4_bits(address)};
  char quad[INET_ADDRSTRLEN];
  *text = inet_ntop(AF_INET, &subnet, quad, sizeof quad);
  return true;
}

std::string hardware_text(const std::array<unsigned char, 6>& bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const unsigned char byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xf];
  }
  return text;
}

}  // namespace quillon_com::orb::network
