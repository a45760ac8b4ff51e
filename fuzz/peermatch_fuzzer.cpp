// fuzz/peermatch_fuzzer.cpp: any pair of server and peer texts, with and without a resolver's part.
#include <cstdint>
#include <string>

#include "fuzz/check.h"
#include "network/networkutil.h"
#include "network/resolver.h"
#include "tests/support/fake_system.h"

using orbfuzz::check;
using quillon_com::orb::network::Resolver;

namespace {

// Whether `part` stands at any place of `whole`.
bool plain_contains(const std::string& whole, const std::string& part) {
  for (size_t at = 0; at + part.size() <= whole.size(); ++at) {
    size_t same = 0;
    while (same < part.size() && whole[at + same] == part[same]) ++same;
    if (same == part.size()) return true;
  }
  return false;
}

struct Bare {
  std::string text;
  bool bracketed = false;
};

// What stands between the first "[" and the next "]", or everything; then up to the first "%".
Bare plain_bare(const std::string& text) {
  Bare bare;
  size_t open = 0;
  while (open < text.size() && text[open] != '[') ++open;
  size_t end = open;
  while (end < text.size() && text[end] != ']') ++end;
  bare.bracketed = end < text.size();
  const size_t from = bare.bracketed ? open + 1 : 0;
  const size_t to = bare.bracketed ? end : text.size();
  for (size_t at = from; at < to && text[at] != '%'; ++at) bare.text += text[at];
  return bare;
}

void check_texts(const std::string& server, const std::string& peer) {
  ANetworkUtil utility;
  utility.enabled = false;
  const bool expected = server == peer || plain_contains(peer, server) ||
                        plain_bare(server).text == plain_bare(peer).text;
  check(utility.qlnCompareAddressFromPeerAddress(server, "443", peer) == expected);
}

// On a machine without interfaces a zone is only ever taken away.
void check_forms(const std::string& text) {
  const orbtest::FakeSystem system;
  const Bare bare = plain_bare(text);
  const std::string kept = bare.bracketed ? "[" + bare.text + "]" : bare.text;
  ANetworkUtil utility;
  check(utility.formatV6addr(text, false) == bare.text);
  check(utility.formatV6addr(text, true) == kept);
  check(Resolver(system, true).with_scope(text, false) == bare.text);
  check(Resolver(system, true).with_scope(text, true) == kept);
}

}  // namespace

// The first line is the server, the rest the peer.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const size_t line = text.find('\n');
  const std::string server = text.substr(0, line);
  const std::string peer = line == std::string::npos ? "" : text.substr(line + 1);
  check_texts(server, peer);
  check_texts(peer, server);
  check_forms(server);
  check_forms(peer);
  return 0;
}
