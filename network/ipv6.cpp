// network/ipv6.cpp: IPv6 texts taken apart and put together, without the system's help.
#include "network/ipv6.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "network/addresstext.h"

namespace {

constexpr char kLiteralEnding[] = ".ipv6-literal.net";
constexpr int kColons = 7;  // of a full address

void cut_from_first(std::string& text, char mark) {
  const size_t position = text.find(mark);
  if (position != std::string::npos) text.erase(position);
}

// Leaves the text strictly between `open` and `close`, the positions of a bracket each, when both
// are there in this order. Returns whether they are.
bool cut_to_bracketed(std::string& text, size_t open, size_t close) {
  if (open == std::string::npos || close == std::string::npos || close < open) return false;
  text = text.substr(open + 1, close - open - 1);
  return true;
}

unsigned long group_value(const std::string& group) {
  return std::strtoul(group.c_str(), nullptr, 16);
}

}  // namespace

uint16_t noOfOccurences(const std::string& text, char ch, int limit) {
  const auto count = std::count(text.begin(), text.end(), ch);
  return static_cast<uint16_t>(count > kColons ? limit : count);
}

std::string expandIPV6Address(std::string address) {
  std::string text = address;
  cut_from_first(text, '%');
  const size_t gap = text.find("::");
  if (gap == std::string::npos) return text;

  const std::string left = text.substr(0, gap);
  const std::string right = text.substr(gap + 1);  // begins with the second colon
  const int colons = noOfOccurences(left, ':', kColons) + noOfOccurences(right, ':', kColons);
  if (colons > kColons) return address;

  std::string expanded = gap == 0 ? "0" : left;
  for (int missing = kColons - colons; missing > 0; --missing) expanded += ":0";
  expanded += right;
  if (expanded.back() == ':') expanded += '0';
  return expanded;
}

std::string calculateSubNetAddrForV6(const std::string& address, const std::string& mask) {
  if (address.empty() || mask.empty()) return "";
  const std::string addresses = address + ":";
  const std::string masks = mask + ":";
  std::string subnet;
  size_t from_address = 0;
  size_t from_mask = 0;
  while (true) {
    const size_t address_end = addresses.find(':', from_address);
    const size_t mask_end = masks.find(':', from_mask);
    if (address_end == std::string::npos || mask_end == std::string::npos) break;
    const unsigned long group =
        group_value(addresses.substr(from_address, address_end - from_address)) &
        group_value(masks.substr(from_mask, mask_end - from_mask));
    char digits[2 * sizeof group + 2];
    std::snprintf(digits, sizeof digits, "%lx:", group);
    subnet += digits;
    from_address = address_end + 1;
    from_mask = mask_end + 1;
  }
  subnet.pop_back();  // the colon behind the last group
  return subnet;
}

std::string convertV6AddrToLiteralFormat(std::string address) {
  if (address.find(kLiteralEnding) != std::string::npos) return address;
  if (address.find(':') == std::string::npos) return address;
  cut_to_bracketed(address, address.find('['), address.find(']'));
  std::replace(address.begin(), address.end(), ':', '-');
  cut_from_first(address, '%');
  return address + kLiteralEnding;
}

std::string convertLiteralFormatToV6Addr(std::string literal) {
  cut_to_bracketed(literal, literal.find('['), literal.find(']'));
  const size_t ending = literal.find(kLiteralEnding);
  if (ending == std::string::npos) return literal;
  literal.erase(ending);
  std::replace(literal.begin(), literal.end(), '-', ':');
  cut_from_first(literal, 's');
  return literal;
}

namespace quillon_com::orb::network {

std::string strip_v6_text(const std::string& address, bool keep_brackets) {
  std::string text = address;
  const size_t open = text.find('[');
  const size_t close = open == std::string::npos ? open : text.find(']', open);
  const bool bracketed = cut_to_bracketed(text, open, close);
  cut_from_first(text, '%');
  return keep_brackets && bracketed ? "[" + text + "]" : text;
}

}  // namespace quillon_com::orb::network
