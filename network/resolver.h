// network/resolver.h: the work of ANetworkUtil, over a System.
#pragma once

#include <netdb.h>
#include <sys/socket.h>

#include <memory>
#include <string>
#include <vector>

namespace quillon_com::orb::platform {
class System;
}

namespace quillon_com::orb::network {

constexpr size_t kHostTextSize = 1025;  // room for any name, terminator included

struct FreeAddrinfo {
  void operator()(addrinfo* list) const { freeaddrinfo(list); }
};
using AddressList = std::unique_ptr<addrinfo, FreeAddrinfo>;

// What ANetworkUtil does when its `enabled` is as given. Each member is the one of the same
// purpose in network/networkutil.h, which states its rules; here memory that runs out throws
// std::bad_alloc, with everything released and no output touched. Lives no longer than its System.
class Resolver {
 public:
  Resolver(const platform::System& system, bool enabled) : system_(system), enabled_(enabled) {}

  // qlnCreateAddrinfo; `list` is replaced on success and untouched otherwise.
  int resolve(const std::string& host, const std::string& service, bool ipv4_only,
              AddressList* list) const;
  // qlnGetAddrinfo.
  int names(const std::string& host, const std::string& service, int name_flags,
            std::vector<char*>* names) const;
  // qlnGetScopeId.
  bool scope_id(const std::string& address, unsigned* scope_id) const;
  // formatV6addrWithScope.
  std::string with_scope(const std::string& address, bool keep_brackets) const;
  // qlnGetLocalIPAddress.
  int local_address(const std::string& host, const std::string& service, bool ipv4_only,
                    int name_flags, unsigned timeout_seconds, std::string* local) const;
  // qlnGetLocalIPAddressFromList.
  int local_address_from_list(const std::string& hosts, const std::string& service, bool ipv4_only,
                              unsigned timeout_seconds, std::string* local) const;
  // qlnCompareAddressFromPeerAddress.
  bool is_peer(const std::string& server, const std::string& service,
               const std::string& peer) const;

 private:
  // Gives a link-local IPv6 entry of a resolver's list the zone that is found for it.
  void add_zone(addrinfo* entry) const;

  const platform::System& system_;
  bool enabled_;
};

// Assigns the getnameinfo text of the host at `address` to `text`; false, `text` untouched, when
// there is none.
bool host_text(const sockaddr* address, socklen_t length, int flags, std::string* text);

// ANetworkUtil::makeSocketNonBlocking and ANetworkUtil::ConnectWithTimeout.
bool set_non_blocking(int socket);
int connect_within(int socket, const sockaddr* address, socklen_t length, unsigned timeout_seconds);

}  // namespace quillon_com::orb::network
