// network/networkutil.h: resolving, connecting with a time-out, local addresses and host names.
#pragma once

#include <netdb.h>
#include <sys/socket.h>

#include <string>
#include <vector>

#include "platform/export.h"

// The agent's socket-level services. Texts are narrow. Results follow the socket interface: 0 for
// success, -1 or the resolver's own code for failure, or a boolean; nothing is logged, no error
// word is set, errno stays as the system left it and nothing is thrown: where memory runs out the
// result is -1, false or "", and no output is touched. Every resolver list and every socket opened
// here is released before return. No member keeps state or takes a
// lock, so that one object serves several threads as long as nobody writes `enabled`.
class ORB_EXPORT ANetworkUtil {
 public:
  ANetworkUtil();   // sets `enabled`
  ~ANetworkUtil();  // does nothing

  // Resolves `host`, a name or a numeric address, and `service` (empty: none) for stream sockets,
  // to IPv4 alone when `ipv4Only`. Brackets and a zone around an IPv6 address are removed; a
  // link-local one gets the zone that formatV6addrWithScope chooses. Returns 0 with a list in
  // `*result` that the caller gives back with freeaddrinfo; -1 when `host` is empty or `result` is
  // null; else getaddrinfo's code. Failure leaves `*result` untouched.
  // Quirk: works when `enabled` is false, then without choosing a zone.
  int qlnCreateAddrinfo(const std::string& host, const std::string& service, addrinfo** result,
                        const bool& ipv4Only);

  // Appends to `names` the getnameinfo text (with `nameFlags`) of each address of `host`, in the
  // resolver's order; an address that has no such text is passed over. Each text is an array of
  // 1025 characters, the caller's until qlnFreeAddrinfo. Returns 0 when at least one was appended,
  // -1 when none was or `enabled` is false, else the resolver's code; `names` is then untouched.
  // An address whose array cannot be allocated 1,000 times in a row is passed over.
  // Quirk: at most fourteen texts are appended, however many addresses the host has.
  int qlnGetAddrinfo(const std::string& host, std::string service, std::vector<char*>& names,
                     int nameFlags);

  // Deletes every array of `names` and empties it.
  // Quirk: does nothing when `enabled` is false.
  void qlnFreeAddrinfo(std::vector<char*>& names);

  // The numeric text of `address`: its service when `flags` holds NI_NUMERICSERV, else its host
  // when `flags` holds NI_NUMERICHOST. `flags` goes to getnameinfo unchanged. Returns "" for a null
  // address, when the address has no such text, or when `enabled` is false.
  // Quirk: "" when `flags` holds neither of the two; the service alone when it holds both.
  std::string qlnNetToString(sockaddr* address, int flags);

  // Connects `socket` to `address` of `addressLength` bytes within `timeoutSeconds`. The socket
  // stays the caller's and open. Returns 0 when connected, -1 on failure and when the time is over.
  // 0 seconds gives the result of connect itself, the socket left as it was. Waits at most
  // 100,000,000 seconds. Any descriptor number will do; one that is no socket gives -1.
  // Quirk: with a time-out the socket is non-blocking afterwards, whatever the result.
  // Quirk: after an attempt that did not succeed at once only writability within the time counts,
  // not the error that the attempt left: a refused connection gives 0, and the caller finds out on
  // first use. So does an attempt that fails at once on a socket that the system calls writable.
  // Quirk: a signal that interrupts the wait ends it with -1.
  int ConnectWithTimeout(int socket, sockaddr* address, int addressLength,
                         unsigned int timeoutSeconds);

  // Adds O_NONBLOCK to the status flags of the descriptor. Returns true unless they could not be
  // set.
  bool makeSocketNonBlocking(int socket);

  // Stores in `localAddress` the getnameinfo text (with `nameFlags`) of the local address from
  // which the machine reaches `host` at `service`: the one that routing picks for the first
  // resolved address (IPv4 alone when `ipv4Only`) that takes a connection within `timeoutSeconds`;
  // an IPv6 text is expanded to eight groups, without zone. Returns 0, -1 when no address took a
  // connection or `enabled` is false, or the resolver's code; failure leaves `localAddress`
  // untouched. A link-local server address gets a zone as in qlnGetScopeId. A socket that has no
  // local address after its attempt (all zeros) never left the machine and counts as failed.
  // A negative `timeoutSeconds` stands for its unsigned value, a very long time.
  // Quirk: a link-local server address whose text passes 31 characters gets no zone.
  int qlnGetLocalIPAddress(const std::string& host, std::string service, std::string& localAddress,
                           const bool& ipv4Only, int nameFlags, int timeoutSeconds);

  // The same for the first host that succeeds of `hostList`, separated by ";". Returns 0, or the
  // result for the last host; an empty host, and so an empty list, gives -1.
  // Quirk: `nameFlags` is not used; the text is always numeric.
  // Quirk: a ";" at the end of the list does not stand for one more, empty host.
  int qlnGetLocalIPAddressFromList(const std::string& hostList, std::string service,
                                   std::string& localAddress, const bool& ipv4Only, int nameFlags,
                                   int timeoutSeconds);

  // Whether the peer `peerAddress` of a connection is the server `serverAddress`: the texts are
  // equal, as they stand or without brackets and zones, or one of the addresses that the server
  // resolves to (with `service`; not when `enabled` is false) has the peer's numeric text.
  // Quirk: a server text that occurs anywhere within the peer's matches, "10.1.2.3" in
  // "110.1.2.34"; an empty one therefore matches every peer.
  bool qlnCompareAddressFromPeerAddress(std::string serverAddress, std::string service,
                                        std::string peerAddress);

  // Finds the zone of a link-local address: stores in `scopeId` the first index, in the order of
  // NetInterfaceList::getIndexes without loopback, with which the resolver takes the address.
  // Brackets and zone of `address` are ignored. Returns true; or false, with `scopeId` untouched,
  // when the address does not begin with "fe80", no index will do, or `enabled` is false.
  bool qlnGetScopeId(const std::string& address, unsigned int& scopeId);

  // `address` without its brackets and zone; with "%" and the zone that qlnGetScopeId finds for it;
  // bracketed again when it was bracketed and `keepBrackets`.
  // Quirk: everything from the first "%" is removed from any text, and a zone that the caller gave
  // is replaced, or lost when none is found.
  std::string formatV6addrWithScope(std::string address, bool keepBrackets);

  // `address` without its brackets and zone; bracketed again when it was bracketed and
  // `keepBrackets`. A text without brackets gets none. Uses nothing of its object.
  // Quirk: everything from the first "%" is removed from any text, not from IPv6 addresses alone.
  std::string formatV6addr(std::string address, bool keepBrackets);

  bool enabled;  // true from the constructor on; nothing of ours changes it; see each member
};

// The DNS domain of the machine: the domain set in the kernel, else what follows the first "." of
// the official name that the resolver gives for the host name. sysprops::DefaultProp_Val when
// there is none: the host name cannot be read or resolved, or its official name has no ".". Waits
// for at most one look-up, for none when the kernel has a domain. Each may be called from any
// thread and throws nothing: where memory runs out it gives DefaultProp_Val or an empty text.
ORB_EXPORT std::wstring getDomainName();

// The full host name of the machine: the official name that the resolver gives for the host name;
// else the host name, "." and the domain of getdomainname. sysprops::DefaultProp_Val when the host
// name cannot be read. Waits for at most one look-up.
// Quirk: a host name that does not resolve on a machine without a domain ends in ".".
ORB_EXPORT std::wstring getFqdnAddress();
