// fuzz/ipv6_fuzzer.cpp: any text through the IPv6 helpers, beside their rules taken one by one.
//
// The text up to the first "\n" is an address, the rest a mask. The plain forms below do each rule
// with a search of its own and no arithmetic in common with the library.
#include "network/ipv6.h"

#include <arpa/inet.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz/check.h"
#include "network/addresstext.h"

namespace {

using orbfuzz::check;
using quillon_com::orb::network::strip_v6_text;

constexpr size_t kNone = std::string::npos;
const std::string kEnding = ".ipv6-literal.net";

unsigned count_of(const std::string& text, char ch) {
  unsigned count = 0;
  for (const char each : text) count += each == ch ? 1 : 0;
  return count;
}

std::string before(const std::string& text, const std::string& mark) {
  return text.substr(0, text.find(mark));
}

void replace_each(std::string& text, char from, char to) {
  for (size_t at = 0; (at = text.find(from)) != kNone;) text[at] = to;
}

std::string plain_expansion(const std::string& address) {
  std::string text = before(address, "%");
  const size_t gap = text.find("::");
  if (gap == kNone) return text;
  const std::string left = text.substr(0, gap);
  unsigned colons = count_of(left, ':') > 7 ? 7 : count_of(left, ':');
  const unsigned behind = count_of(text.substr(gap + 1), ':');
  colons += behind > 7 ? 7 : behind;
  if (colons > 7) return address;
  std::string groups;
  for (; colons < 7; ++colons) groups += ":0";
  text.replace(gap, 1, groups);
  if (gap == 0) text.insert(0, "0");
  if (!text.empty() && text[text.size() - 1] == ':') text.append("0");
  return text;
}

std::string plain_subnet(const std::string& address, const std::string& mask) {
  if (address.empty() || mask.empty()) return "";
  std::string a = address + ":";
  std::string m = mask + ":";
  std::string result;
  while (a.find(':') != kNone && m.find(':') != kNone) {
    const unsigned long bits = std::strtoul(before(a, ":").c_str(), nullptr, 16) &
                               std::strtoul(before(m, ":").c_str(), nullptr, 16);
    a.erase(0, a.find(':') + 1);
    m.erase(0, m.find(':') + 1);
    char group[32];
    std::snprintf(group, sizeof group, "%lx", bits);
    result += std::string(group) + ":";
  }
  return result.substr(0, result.rfind(':'));
}

std::string between_brackets(const std::string& text) {
  const size_t open = text.find('[');
  const size_t close = text.find(']');
  if (open == kNone || close == kNone || close < open) return text;
  return text.substr(0, close).substr(open + 1);
}

std::string plain_literal(std::string text) {
  if (text.find(kEnding) != kNone || text.find(':') == kNone) return text;
  text = between_brackets(text);
  replace_each(text, ':', '-');
  return before(text, "%") + kEnding;
}

std::string plain_address(std::string text) {
  text = between_brackets(text);
  if (text.find(kEnding) == kNone) return text;
  text = before(text, kEnding);
  replace_each(text, '-', ':');
  return before(text, "s");
}

// A valid address keeps its bytes and gets eight groups; the literal form leads back to it.
void check_valid(const std::string& text) {
  in6_addr bytes;
  if (text.find('\0') != kNone || text.find('.') != kNone) return;
  if (inet_pton(AF_INET6, text.c_str(), &bytes) != 1) return;
  const std::string expanded = expandIPV6Address(text);
  in6_addr read;
  check(inet_pton(AF_INET6, expanded.c_str(), &read) == 1);
  check(std::memcmp(&bytes, &read, sizeof read) == 0);
  check(count_of(expanded, ':') == 7);
  check(convertLiteralFormatToV6Addr(convertV6AddrToLiteralFormat(text)) == text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string address = before(text, "\n");
  const std::string mask = text.substr(text.find('\n') == kNone ? text.size() : address.size() + 1);

  check(expandIPV6Address(address) == plain_expansion(address));
  check(calculateSubNetAddrForV6(address, mask) == plain_subnet(address, mask));
  check(convertV6AddrToLiteralFormat(address) == plain_literal(address));
  check(convertLiteralFormatToV6Addr(address) == plain_address(address));
  check_valid(before(address, "%"));

  const int limit = size > 1 ? data[0] * 257 - data[1] * 99991 : -1;
  const char ch = size > 0 ? static_cast<char>(data[size / 2]) : ':';
  const unsigned count = count_of(text, ch);
  check(noOfOccurences(text, ch, limit) == (count > 7 ? static_cast<uint16_t>(limit) : count));

  const std::string plain = strip_v6_text(address, false);
  const std::string kept = strip_v6_text(address, true);
  check(plain.find('%') == kNone && (kept == plain || kept == "[" + plain + "]"));
  const size_t open = address.find('[');
  check((kept != plain) == (open != kNone && address.find(']', open) != kNone));
  return 0;
}
