// tests/darwin/scripted_network.cpp: interfaces, addresses and the resolver.
#include <arpa/inet.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <net/if_dl.h>
#include <netdb.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>

#include "tests/darwin/scripted_macos.h"
#include "tests/support/faults.h"

// The machine's own functions, which know its own family numbers.
extern "C" {
const char* host_inet_ntop(int family, const void* address, char* text,
                           unsigned size) __asm__("inet_ntop");
int host_inet_pton(int family, const char* text, void* address) __asm__("inet_pton");
}

namespace orbtest {
namespace {

constexpr int kHostIpv4 = 2;
constexpr int kHostIpv6 = 10;

int host_family(int family) { return family == AF_INET6 ? kHostIpv6 : kHostIpv4; }

std::string trimmed(std::string bytes) {
  bytes.resize(bytes.find_last_not_of('\0', std::string::npos) + 1);
  if (bytes.size() > 2) bytes[0] = static_cast<char>(bytes.size());
  return bytes;
}

// Memory of just the length that the address states, rounded up; what lies behind the length is
// none of the caller's business.
sockaddr* allocated(const std::optional<std::string>& bytes) {
  if (!bytes) return nullptr;
  const size_t stated = static_cast<unsigned char>(bytes->front());
  const size_t size = stated == 0 ? 4 : (stated + 3) / 4 * 4;
  auto* memory = static_cast<char*>(malloc(size));
  memset(memory, 0xee, size);
  bytes->copy(memory, std::min(size, bytes->size()));
  return reinterpret_cast<sockaddr*>(memory);
}

bool link_local(const in6_addr& address) {
  return address.s6_addr[0] == 0xfe && (address.s6_addr[1] & 0xc0) == 0x80;
}

std::string zone_of(uint32_t index) {
  for (const auto& [name, known] : mac().indexes) {
    if (known == index) return name;
  }
  return std::to_string(index);
}

std::string numeric_text(const sockaddr* address) {
  char text[INET6_ADDRSTRLEN] = {};
  if (address->sa_family == AF_INET) {
    sockaddr_in record;
    memcpy(&record, address, sizeof record);
    return inet_ntop(AF_INET, &record.sin_addr, text, sizeof text);
  }
  sockaddr_in6 record;
  memcpy(&record, address, sizeof record);
  const std::string plain = inet_ntop(AF_INET6, &record.sin6_addr, text, sizeof text);
  return link_local(record.sin6_addr) && record.sin6_scope_id != 0
             ? plain + "%" + zone_of(record.sin6_scope_id)
             : plain;
}

}  // namespace

std::string ipv4_address(const std::string& text) {
  sockaddr_in record{};
  record.sin_len = sizeof record;
  record.sin_family = AF_INET;
  inet_pton(AF_INET, text.c_str(), &record.sin_addr);
  return bytes_of(record);
}

std::string ipv4_mask(const std::string& text, unsigned char family) {
  sockaddr_in record{};
  inet_pton(AF_INET, text.c_str(), &record.sin_addr);
  std::string bytes = trimmed(bytes_of(record));
  bytes.resize(std::max<size_t>(bytes.size(), 4));
  bytes[1] = static_cast<char>(family);
  return bytes;
}

std::string ipv6_address(const std::string& text, uint32_t scope) {
  sockaddr_in6 record{};
  record.sin6_len = sizeof record;
  record.sin6_family = AF_INET6;
  record.sin6_scope_id = scope;
  inet_pton(AF_INET6, text.c_str(), &record.sin6_addr);
  return bytes_of(record);
}

std::string ipv6_mask(const std::string& text) { return ipv6_address(text); }

std::string link_address(const std::string& name, const std::string& hardware) {
  std::string bytes(offsetof(sockaddr_dl, sdl_data), '\0');
  bytes[1] = AF_LINK;
  bytes[offsetof(sockaddr_dl, sdl_nlen)] = static_cast<char>(name.size());
  bytes[offsetof(sockaddr_dl, sdl_alen)] = static_cast<char>(hardware.size());
  bytes += name + hardware;
  bytes.resize(std::max(sizeof(sockaddr_dl), (bytes.size() + 3) / 4 * 4));
  bytes[0] = static_cast<char>(bytes.size());
  return bytes;
}

}  // namespace orbtest

using orbtest::mac;

int getifaddrs(ifaddrs** list) {
  const orbtest::FaultsPaused own_memory;
  if (!mac().interfaces) return -1;
  *list = nullptr;
  ifaddrs** end = list;
  for (const orbtest::MacInterface& interface : *mac().interfaces) {
    *end = new ifaddrs{nullptr,
                       strdup(interface.name.c_str()),
                       interface.flags,
                       orbtest::allocated(interface.address),
                       orbtest::allocated(interface.netmask),
                       nullptr,
                       nullptr};
    end = &(*end)->ifa_next;
  }
  if (*list != nullptr) ++mac().interface_lists;
  return 0;
}

void freeifaddrs(ifaddrs* list) {
  if (list != nullptr) --mac().interface_lists;
  while (list != nullptr) {
    ifaddrs* next = list->ifa_next;
    free(list->ifa_name);
    free(list->ifa_addr);
    free(list->ifa_netmask);
    delete list;
    list = next;
  }
}

unsigned if_nametoindex(const char* name) {
  const orbtest::FaultsPaused own_memory;
  const auto found = mac().indexes.find(name);
  return found == mac().indexes.end() ? 0 : found->second;
}

int socket(int family, int type, int) {
  if (type != SOCK_DGRAM || mac().unusable_families.count(family) != 0) return -1;
  return open("/dev/null", O_RDONLY | O_CLOEXEC);
}

// Nothing here connects.
int connect(int, const sockaddr*, socklen_t) { return -1; }
int getsockname(int, sockaddr*, socklen_t*) { return -1; }
int getsockopt(int, int, int, void*, socklen_t*) { return -1; }

const char* inet_ntop(int family, const void* address, char* text, socklen_t size) {
  return host_inet_ntop(orbtest::host_family(family), address, text, size);
}

int inet_pton(int family, const char* text, void* address) {
  return host_inet_pton(orbtest::host_family(family), text, address);
}

// The family decides; the stated size does not.
int getnameinfo(const sockaddr* address, socklen_t, char* host, socklen_t host_size, char*,
                socklen_t, int flags) {
  const orbtest::FaultsPaused own_memory;
  const int family = address->sa_family;
  if ((family != AF_INET && family != AF_INET6) || (flags & NI_NUMERICHOST) == 0) return EAI_FAIL;
  const std::string text = orbtest::numeric_text(address);
  if (text.size() >= host_size) return EAI_OVERFLOW;
  memcpy(host, text.c_str(), text.size() + 1);
  return 0;
}

// Knows zones by number alone; what the list holds nobody looks at.
int getaddrinfo(const char* host, const char*, const addrinfo*, addrinfo** list) {
  const orbtest::FaultsPaused own_memory;
  const char* zone = strchr(host, '%');
  if (zone == nullptr) return EAI_NONAME;
  for (const auto& [name, index] : mac().indexes) {
    if (std::to_string(index) != zone + 1) continue;
    *list = new addrinfo{};
    ++mac().address_lists;
    return 0;
  }
  return EAI_NONAME;
}

void freeaddrinfo(addrinfo* list) {
  if (list == nullptr) mac().misuse.push_back("a null address list");
  if (list != nullptr) --mac().address_lists;
  delete list;
}

hostent* gethostbyname(const char* name) {
  const orbtest::FaultsPaused own_memory;
  static hostent record;
  static std::string official;
  const auto found = mac().officials.find(name);
  if (found == mac().officials.end()) return nullptr;
  official = found->second.value_or("");
  record = {};
  record.h_name = found->second ? official.data() : nullptr;
  return &record;
}
