// network/peermatch.cpp: whether the peer of a connection is a given server.
#include "network/addresstext.h"
#include "network/resolver.h"

namespace quillon_com::orb::network {

bool Resolver::is_peer(const std::string& server, const std::string& service,
                       const std::string& peer) const {
  if (peer.find(server) != std::string::npos) return true;  // equal texts included
  const std::string bare_peer = strip_v6_text(peer, false);
  if (strip_v6_text(server, false) == bare_peer) return true;
  AddressList list;
  if (!enabled_ || resolve(server, service, false, &list) != 0) return false;
  for (const addrinfo* entry = list.get(); entry != nullptr; entry = entry->ai_next) {
    std::string text;
    if (host_text(entry->ai_addr, entry->ai_addrlen, NI_NUMERICHOST, &text) &&
        strip_v6_text(text, false) == bare_peer)
      return true;
  }
  return false;
}

}  // namespace quillon_com::orb::network
