// fileutil/numbers.cpp: numbers to text, text to numbers, tokens and the byte order.
#include <charconv>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "fileutil/conversions.h"

namespace {

constexpr int kRoom = 23;  // "-9223372036854775808" and 22 octal digits, with a terminator

template <class Number>
char* write_number(Number value, char* buffer, int radix) {
  if (buffer == nullptr || (radix != 8 && radix != 10 && radix != 16)) return nullptr;
  using Bits = std::make_unsigned_t<Number>;
  char* const end = buffer + kRoom;
  auto written = radix == 10 ? std::to_chars(buffer, end, value)
                             : std::to_chars(buffer, end, static_cast<Bits>(value), radix);
  *written.ptr = '\0';
  return buffer;
}

}  // namespace

char* voxItoa(int value, char* buffer, int radix) { return write_number(value, buffer, radix); }

char* voxItot(int value, char* buffer, int radix) { return write_number(value, buffer, radix); }

char* voxUltot(unsigned long value, char* buffer, int radix) {
  return write_number(static_cast<long>(value), buffer, radix);
}

char* voxI64toa(long long value, char* buffer, int radix) {
  return write_number(value, buffer, radix);
}

char* voxI64tot(long long value, char* buffer, int radix) {
  return write_number(value, buffer, radix);
}

long long voxTtoi64(const char* text) {
  uint64_t value = 0;  // wraps
  for (; text != nullptr && *text != '\0'; ++text) {
    const int64_t digit = static_cast<signed char>(*text) - '0';
    value = value * 10 + static_cast<uint64_t>(digit);
  }
  return static_cast<long long>(value);
}

long long voxAtoi64(const char* text) { return voxTtoi64(text); }

char* voxTstrtok_r(char* string, const char* delimiters, char** save_pointer) {
  return strtok_r(string, delimiters, save_pointer);
}

bool quillon_com::orb::isBigEndian() {
  const int one = 1;
  unsigned char first = 0;
  std::memcpy(&first, &one, sizeof(first));
  return first != 1;
}
