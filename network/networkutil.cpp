// network/networkutil.cpp: the exported members, each one step over Resolver on this machine.
#include "network/networkutil.h"

#include "network/addresstext.h"
#include "network/resolver.h"
#include "platform/system.h"
#include "portability/outofmemory.h"

using quillon_com::orb::network::AddressList;
using quillon_com::orb::network::kHostTextSize;
using quillon_com::orb::network::Resolver;
using quillon_com::orb::portability::unless_out_of_memory;

namespace {

// What getnameinfo is told of an address whose length its caller did not state.
constexpr socklen_t kAnyAddressLength = 128;

Resolver on_this_machine(bool enabled) {
  return Resolver(quillon_com::orb::platform::host(), enabled);
}

}  // namespace

ANetworkUtil::ANetworkUtil() : enabled(true) {}

ANetworkUtil::~ANetworkUtil() = default;

int ANetworkUtil::qlnCreateAddrinfo(const std::string& host, const std::string& service,
                                    addrinfo** result, const bool& ipv4Only) {
  if (result == nullptr) return -1;
  return unless_out_of_memory(-1, [&] {
    AddressList list;
    const int code = on_this_machine(enabled).resolve(host, service, ipv4Only, &list);
    if (code == 0) *result = list.release();
    return code;
  });
}

int ANetworkUtil::qlnGetAddrinfo(const std::string& host, std::string service,
                                 std::vector<char*>& names, int nameFlags) {
  return unless_out_of_memory(
      -1, [&] { return on_this_machine(enabled).names(host, service, nameFlags, &names); });
}

void ANetworkUtil::qlnFreeAddrinfo(std::vector<char*>& names) {
  if (!enabled) return;
  for (char* name : names) delete[] name;
  names.clear();
}

std::string ANetworkUtil::qlnNetToString(sockaddr* address, int flags) {
  if (address == nullptr || !enabled) return "";
  char text[kHostTextSize] = {};
  int code = EAI_FAIL;
  if ((flags & NI_NUMERICSERV) != 0)
    code = getnameinfo(address, kAnyAddressLength, nullptr, 0, text, sizeof text, flags);
  else if ((flags & NI_NUMERICHOST) != 0)
    code = getnameinfo(address, kAnyAddressLength, text, sizeof text, nullptr, 0, flags);
  if (code != 0) return "";
  return unless_out_of_memory(std::string(), [&] { return std::string(text); });
}

int ANetworkUtil::ConnectWithTimeout(int socket, sockaddr* address, int addressLength,
                                     unsigned int timeoutSeconds) {
  return quillon_com::orb::network::connect_within(
      socket, address, static_cast<socklen_t>(addressLength), timeoutSeconds);
}

bool ANetworkUtil::makeSocketNonBlocking(int socket) {
  return quillon_com::orb::network::set_non_blocking(socket);
}

int ANetworkUtil::qlnGetLocalIPAddress(const std::string& host, std::string service,
                                       std::string& localAddress, const bool& ipv4Only,
                                       int nameFlags, int timeoutSeconds) {
  return unless_out_of_memory(-1, [&] {
    return on_this_machine(enabled).local_address(
        host, service, ipv4Only, nameFlags, static_cast<unsigned>(timeoutSeconds), &localAddress);
  });
}

int ANetworkUtil::qlnGetLocalIPAddressFromList(const std::string& hostList, std::string service,
                                               std::string& localAddress, const bool& ipv4Only,
                                               int /*nameFlags*/, int timeoutSeconds) {
  return unless_out_of_memory(-1, [&] {
    return on_this_machine(enabled).local_address_from_list(
        hostList, service, ipv4Only, static_cast<unsigned>(timeoutSeconds), &localAddress);
  });
}

bool ANetworkUtil::qlnCompareAddressFromPeerAddress(std::string serverAddress, std::string service,
                                                    std::string peerAddress) {
  return unless_out_of_memory(
      false, [&] { return on_this_machine(enabled).is_peer(serverAddress, service, peerAddress); });
}

bool ANetworkUtil::qlnGetScopeId(const std::string& address, unsigned int& scopeId) {
  return unless_out_of_memory(false,
                              [&] { return on_this_machine(enabled).scope_id(address, &scopeId); });
}

std::string ANetworkUtil::formatV6addrWithScope(std::string address, bool keepBrackets) {
  return unless_out_of_memory(
      std::string(), [&] { return on_this_machine(enabled).with_scope(address, keepBrackets); });
}

std::string ANetworkUtil::formatV6addr(std::string address, bool keepBrackets) {
  return unless_out_of_memory(std::string(), [&] {
    return quillon_com::orb::network::strip_v6_text(address, keepBrackets);
  });
}
