// tests/support/binary_list.h: puts binary property lists together, sound and broken ones.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orbtest {

// `value` in `width` bytes, the highest first.
inline std::string big_endian(uint64_t value, unsigned width) {
  std::string bytes;
  for (unsigned i = width; i-- > 0;) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  return bytes;
}

// The marker of an object of `kind` with its count, in the long form when it is asked for.
inline std::string marker(unsigned kind, uint64_t count) {
  if (count < 15) return std::string(1, static_cast<char>(kind << 4 | count));
  return std::string(1, static_cast<char>(kind << 4 | 0xF)) + "\x13" + big_endian(count, 8);
}

inline std::string ascii_object(std::string_view text) {
  return marker(0x5, text.size()) + std::string(text);
}

inline std::string utf16_object(std::u16string_view text) {
  std::string object = marker(0x6, text.size());
  for (char16_t unit : text) object += big_endian(unit, 2);
  return object;
}

// A dictionary of object numbers, each of `width` bytes.
inline std::string dictionary_object(const std::vector<std::pair<uint64_t, uint64_t>>& members,
                                     unsigned width = 1) {
  std::string object = marker(0xD, members.size());
  for (const auto& member : members) object += big_endian(member.first, width);
  for (const auto& member : members) object += big_endian(member.second, width);
  return object;
}

struct BinaryList {
  std::vector<std::string> objects;
  uint64_t top = 0;
  unsigned offset_width = 2;
  unsigned reference_width = 1;

  std::string bytes() const {
    std::string list = "bplist00";
    std::string table;
    for (const std::string& object : objects) {
      table += big_endian(list.size(), offset_width);
      list += object;
    }
    return list + table + trailer(objects.size(), top, list.size());
  }

  std::string trailer(uint64_t count, uint64_t top_object, uint64_t table) const {
    return std::string(6, '\0') + static_cast<char>(offset_width) +
           static_cast<char>(reference_width) + big_endian(count, 8) + big_endian(top_object, 8) +
           big_endian(table, 8);
  }
};

}  // namespace orbtest
