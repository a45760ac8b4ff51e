// tests/support/plain_platform_match.h: the rules of voxcomn_IsPlatformMatch, one library call
// each.
#pragma once

#include <cstdint>
#include <cstdio>
#include <sstream>
#include <string>

namespace orbtest {

// The first 259 characters of `text` that are no blanks, up to a zero byte.
inline std::string plain_copy(const std::string& text) {
  std::string copy;
  for (const char c : std::string(text.c_str()))
    if (c != ' ') copy += c;
  return copy.substr(0, 259);
}

inline uint64_t plain_key(const int (&version)[3]) {
  const auto widened = [](int number) {
    return static_cast<uint64_t>(static_cast<int64_t>(number));
  };
  return widened(version[0]) * (uint64_t{1} << 48) + widened(version[1]) * (uint64_t{1} << 16) +
         widened(version[2]);
}

inline uint32_t plain_platform_match(const std::string& platform, const std::string& list) {
  std::string name = plain_copy(platform);
  int own[3] = {0, 0, 0};
  if (const size_t colon = name.find(':'); colon != std::string::npos) {
    sscanf(name.c_str() + colon, ":%d:%d:%d", &own[0], &own[1], &own[2]);
    name.erase(colon);
  }
  int lower[3] = {0, 0, 0};
  int upper[3] = {65535, -1, 65535};
  bool named = false;
  std::istringstream entries(plain_copy(list));
  for (std::string entry; std::getline(entries, entry, '|');) {
    if (entry.empty()) continue;
    const size_t colon = entry.find(':');
    if (name.find(entry.substr(0, colon)) == std::string::npos) continue;
    named = true;
    if (colon == std::string::npos) return 0;
    const std::string range = entry.substr(colon + 1);
    sscanf(range.c_str(), "%d:%d:%d", &lower[0], &lower[1], &lower[2]);
    if (const size_t dash = range.find('-'); dash != std::string::npos)
      sscanf(range.c_str() + dash + 1, "%d:%d:%d", &upper[0], &upper[1], &upper[2]);
    if (plain_key(lower) <= plain_key(own) && plain_key(own) <= plain_key(upper)) return 0;
  }
  return named ? 1 : 0x80000008;
}

}  // namespace orbtest
