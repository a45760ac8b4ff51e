// network/resolver.cpp: host names to addresses and names, zones of link-local addresses.
#include "network/resolver.h"

#include <new>

#include "network/addresstext.h"
#include "network/enumerate.h"
#include "platform/system.h"

namespace quillon_com::orb::network {
namespace {

constexpr size_t kMostNames = 14;
constexpr int kMostAllocationTries = 1000;

using NameBuffer = std::unique_ptr<char[]>;

NameBuffer new_name_buffer() {
  NameBuffer buffer;
  for (int tries = 0; !buffer && tries < kMostAllocationTries; ++tries)
    buffer.reset(new (std::nothrow) char[kHostTextSize]);
  return buffer;
}

}  // namespace

bool host_text(const sockaddr* address, socklen_t length, int flags, std::string* text) {
  char buffer[kHostTextSize] = {};
  if (getnameinfo(address, length, buffer, sizeof buffer, nullptr, 0, flags) != 0) return false;
  *text = buffer;
  return true;
}

int Resolver::resolve(const std::string& host, const std::string& service, bool ipv4_only,
                      AddressList* list) const {
  if (host.empty()) return -1;
  addrinfo hints{};
  hints.ai_family = ipv4_only ? AF_INET : AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  const std::string target = with_scope(host, false);
  addrinfo* found = nullptr;
  const int code =
      getaddrinfo(target.c_str(), service.empty() ? nullptr : service.c_str(), &hints, &found);
  if (code == 0) list->reset(found);
  return code;
}

int Resolver::names(const std::string& host, const std::string& service, int name_flags,
                    std::vector<char*>* names) const {
  if (!enabled_) return -1;
  AddressList list;
  if (int code = resolve(host, service, false, &list); code != 0) return code;
  names->reserve(names->size() + kMostNames);
  size_t added = 0;
  for (const addrinfo* entry = list.get(); entry && added < kMostNames; entry = entry->ai_next) {
    NameBuffer name = new_name_buffer();
    if (!name || getnameinfo(entry->ai_addr, entry->ai_addrlen, name.get(), kHostTextSize, nullptr,
                             0, name_flags) != 0)
      continue;
    names->push_back(name.release());
    ++added;
  }
  return added == 0 ? -1 : 0;
}

bool Resolver::scope_id(const std::string& address, unsigned* scope_id) const {
  if (!enabled_) return false;
  const std::string bare = strip_v6_text(address, false);
  if (bare.compare(0, 4, "fe80") != 0) return false;
  NetInterfaceList list(false);
  if (!fill_list(system_, list)) return false;
  for (int index : list.getIndexes()) {
    if (!system_.zone_accepted(bare + "%" + std::to_string(index))) continue;
    *scope_id = static_cast<unsigned>(index);
    return true;
  }
  return false;
}

std::string Resolver::with_scope(const std::string& address, bool keep_brackets) const {
  std::string text = strip_v6_text(address, false);
  const bool bracketed = strip_v6_text(address, true) != text;
  if (unsigned scope = 0; scope_id(text, &scope)) text += "%" + std::to_string(scope);
  return keep_brackets && bracketed ? "[" + text + "]" : text;
}

}  // namespace quillon_com::orb::network
