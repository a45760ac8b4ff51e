// fuzz/plain_lines.h: lines, blanks and counts taken apart one byte at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orbfuzz {

// What stands between the separators; one part, perhaps empty, where there is none.
inline std::vector<std::string> plain_parts(const std::string& text, char separator) {
  std::vector<std::string> parts(1);
  for (const char byte : text) {
    if (byte == separator)
      parts.emplace_back();
    else
      parts.back() += byte;
  }
  return parts;
}

inline std::string plain_trimmed(const std::string& text) {
  const char* const blanks = " \t\r\n";
  const size_t begin = text.find_first_not_of(blanks);
  if (begin == std::string::npos) return "";
  return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

// Digits alone, blanks around them aside, of a number of 64 bits.
inline std::optional<uint64_t> plain_count(const std::string& text) {
  const std::string digits = plain_trimmed(text);
  if (digits.empty()) return std::nullopt;
  __extension__ unsigned __int128 count = 0;
  for (const char byte : digits) {
    if (byte < '0' || byte > '9') return std::nullopt;
    count = count * 10 + static_cast<unsigned>(byte - '0');
    if (count > UINT64_MAX) return std::nullopt;
  }
  return static_cast<uint64_t>(count);
}

}  // namespace orbfuzz
