// network/connect.cpp: connections with a time-out, and the local address that they leave from.
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/select.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <climits>

#include "network/ipv6.h"
#include "network/resolver.h"

namespace quillon_com::orb::network {
namespace {

constexpr size_t kZoneTextSize = 32;             // of a link-local server address
constexpr unsigned kLongestWaitS = 100'000'000;  // what every system's select takes

class OwnSocket {
 public:
  explicit OwnSocket(const addrinfo& entry)
      : fd_(socket(entry.ai_family, entry.ai_socktype, entry.ai_protocol)) {
    if (fd_ >= 0) fcntl(fd_, F_SETFD, FD_CLOEXEC);
  }
  OwnSocket(const OwnSocket&) = delete;
  OwnSocket& operator=(const OwnSocket&) = delete;
  ~OwnSocket() {
    if (fd_ >= 0) close(fd_);
  }
  int fd() const { return fd_; }

 private:
  int fd_;
};

bool select_writable(int socket, unsigned timeout_seconds) {
  fd_set writable;
  FD_ZERO(&writable);
  FD_SET(socket, &writable);
  timeval limit{};
  limit.tv_sec = static_cast<decltype(limit.tv_sec)>(timeout_seconds);
  return select(socket + 1, nullptr, &writable, nullptr, &limit) > 0;
}

// The same for a descriptor that no fd_set has room for.
bool poll_writable(int socket, unsigned timeout_seconds) {
  using std::chrono::milliseconds;
  using std::chrono::steady_clock;
  const auto deadline = steady_clock::now() + std::chrono::seconds(timeout_seconds);
  pollfd waiting{socket, POLLOUT, 0};
  for (;;) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now()).count();
    const int slice = static_cast<int>(std::clamp<decltype(left)>(left, 0, INT_MAX));
    const int ready = poll(&waiting, 1, slice);
    if (ready < 0) return false;
    if (ready > 0) return (waiting.revents & (POLLOUT | POLLERR)) != 0;
    if (left <= slice) return false;
  }
}

bool wait_until_writable(int socket, unsigned timeout_seconds) {
  const unsigned seconds = std::min(timeout_seconds, kLongestWaitS);
  return socket < FD_SETSIZE ? select_writable(socket, seconds) : poll_writable(socket, seconds);
}

// The local address of a socket that has been on its way; a system that calls an idle socket
// writable leaves an address of zeros here.
bool local_text(int socket, int name_flags, std::string* text) {
  sockaddr_storage local{};
  socklen_t length = sizeof local;
  auto* address = reinterpret_cast<sockaddr*>(&local);
  if (getsockname(socket, address, &length) != 0) return false;
  if (local.ss_family == AF_INET &&
      reinterpret_cast<sockaddr_in*>(address)->sin_addr.s_addr == INADDR_ANY)
    return false;
  if (local.ss_family == AF_INET6 &&
      IN6_IS_ADDR_UNSPECIFIED(&reinterpret_cast<sockaddr_in6*>(address)->sin6_addr))
    return false;
  return host_text(address, std::min<socklen_t>(length, sizeof local), name_flags, text);
}

bool local_text_towards(const addrinfo& entry, unsigned timeout_seconds, int name_flags,
                        std::string* text) {
  const OwnSocket socket(entry);
  return socket.fd() >= 0 &&
         connect_within(socket.fd(), entry.ai_addr, entry.ai_addrlen, timeout_seconds) == 0 &&
         local_text(socket.fd(), name_flags, text);
}

}  // namespace

bool set_non_blocking(int socket) {
  const int flags = fcntl(socket, F_GETFL, 0);
  return fcntl(socket, F_SETFL, (flags < 0 ? 0 : flags) | O_NONBLOCK) >= 0;
}

int connect_within(int socket, const sockaddr* address, socklen_t length,
                   unsigned timeout_seconds) {
  if (timeout_seconds == 0) return connect(socket, address, length);
  if (!set_non_blocking(socket)) return -1;
  if (int result = connect(socket, address, length); result >= 0) return result;
  if (!wait_until_writable(socket, timeout_seconds)) return -1;
  int unexamined = 0;
  socklen_t size = sizeof unexamined;
  return getsockopt(socket, SOL_SOCKET, SO_ERROR, &unexamined, &size) == 0 ? 0 : -1;
}

void Resolver::add_zone(addrinfo* entry) const {
  char text[kZoneTextSize] = {};
  unsigned scope = 0;
  if (entry->ai_family == AF_INET6 &&
      getnameinfo(entry->ai_addr, entry->ai_addrlen, text, sizeof text, nullptr, 0,
                  NI_NUMERICHOST) == 0 &&
      scope_id(text, &scope))
    reinterpret_cast<sockaddr_in6*>(entry->ai_addr)->sin6_scope_id = scope;
}

int Resolver::local_address(const std::string& host, const std::string& service, bool ipv4_only,
                            int name_flags, unsigned timeout_seconds, std::string* local) const {
  if (!enabled_) return -1;
  AddressList list;
  if (int code = resolve(host, service, ipv4_only, &list); code != 0) return code;
  for (addrinfo* entry = list.get(); entry != nullptr; entry = entry->ai_next) {
    add_zone(entry);
    std::string text;
    if (!local_text_towards(*entry, timeout_seconds, name_flags, &text)) continue;
    *local = expandIPV6Address(text);
    return 0;
  }
  return -1;
}

int Resolver::local_address_from_list(const std::string& hosts, const std::string& service,
                                      bool ipv4_only, unsigned timeout_seconds,
                                      std::string* local) const {
  int result = -1;
  size_t begin = 0;
  do {
    const size_t end = std::min(hosts.find(';', begin), hosts.size());
    result = local_address(hosts.substr(begin, end - begin), service, ipv4_only, NI_NUMERICHOST,
                           timeout_seconds, local);
    begin = end + 1;
  } while (result != 0 && begin < hosts.size());
  return result;
}

}  // namespace quillon_com::orb::network
