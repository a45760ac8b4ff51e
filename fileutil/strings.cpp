// fileutil/strings.cpp: the conversions between string objects.
#include <algorithm>
#include <charconv>
#include <climits>
#include <cstddef>
#include <new>
#include <string>
#include <type_traits>

#include "fileutil/conversions.h"
#include "fileutil/utf8.h"

namespace quillon_com::orb {
namespace {

// The converters' rooms are signed 32-bit numbers: n + 1 wide characters, 6 n + 1 bytes.
constexpr size_t kMostRoom = INT_MAX;

// The string that `make` returns, or an empty one when memory runs out meanwhile.
template <class Make>
auto or_empty(Make make) noexcept -> decltype(make()) {
  try {
    return make();
  } catch (const std::bad_alloc&) {
    return {};
  }
}

// Whether every element is ASCII and none is zero: such a text converts element by element.
template <class Char>
bool is_plain(const std::basic_string<Char>& text) {
  using Number = std::make_unsigned_t<Char>;
  constexpr size_t kRun = 256;  // elements between two looks
  // One less than the largest element is; a zero is larger than all.
  const auto most = [](const Char* at, size_t length) {
    Number found = 0;
    for (size_t i = 0; i < length; ++i)
      found = std::max(found, static_cast<Number>(static_cast<Number>(at[i]) - 1U));
    return found;
  };
  const Char* at = text.data();
  size_t left = text.size();
  for (; left >= kRun; left -= kRun, at += kRun)
    if (most(at, kRun) >= 0x7F) return false;
  return most(at, left) < 0x7F;
}

// A plain text as a string of the other kind: without a work buffer.
template <class String, class Text>
String copied(const Text& text) {
  return or_empty([&] { return String(text.begin(), text.end()); });
}

// What `convert` makes of `text` up to the first zero or what it does not take, piece by piece: a
// character across the end of a piece is left to the next. It makes at most `widest` elements of
// one. Stands apart from the conversion of plain texts, which would pay for the room of a piece.
template <class String, size_t widest, class Char, class Convert>
[[gnu::noinline]] String converted(const std::basic_string<Char>& text, Convert convert) {
  return or_empty([&] {
    constexpr size_t kMost = 2048;  // elements of the text in a piece
    typename String::value_type piece[kMost * widest];
    String result;
    size_t done = 0;
    while (done < text.size()) {
      const Char* const at = text.data() + done;
      const size_t most = std::min(text.size() - done, kMost);
      const Char* const zero = std::char_traits<Char>::find(at, most, Char());
      const size_t length = zero == nullptr ? most : static_cast<size_t>(zero - at);
      size_t taken = 0;
      const size_t written = convert(at, length, piece, &taken);
      if (taken == 0) break;
      done += taken;
      // As if the rest were like this piece.
      if (result.empty()) result.reserve(written + (text.size() - done) * written / taken);
      result.append(piece, written);
    }
    return result;
  });
}

template <class String, class Number>
String decimal(Number value) {
  char digits[24];
  const auto written = std::to_chars(digits, digits + sizeof(digits), value);
  return or_empty([&] { return String(digits, written.ptr); });
}

template <class Map>
std::string mapped(const std::string& text, Map map) {
  return or_empty([&] {
    std::string result = text;
    for (char& byte : result) byte = static_cast<char>(map(static_cast<unsigned char>(byte)));
    return result;
  });
}

bool is_space(char byte) { return isspace(static_cast<unsigned char>(byte)) != 0; }

}  // namespace

std::wstring voxcomn_ansi_to_wide(const std::string& text) {
  if (text.size() > kMostRoom - 1) return {};
  return is_plain(text) ? copied<std::wstring>(text)
                        : converted<std::wstring, 1>(text, decode_utf8);
}

std::string voxcomn_wide_to_ansi(const std::wstring& text) {
  constexpr size_t kShort = 64;  // elements; encoding a longer one costs less than its check
  if (text.size() > (kMostRoom - 1) / 6) return {};
  return text.size() <= kShort && is_plain(text) ? copied<std::string>(text)
                                                 : converted<std::string, 4>(text, encode_utf8);
}

std::wstring voxcomn_long_to_wide_string(const long& value) { return decimal<std::wstring>(value); }

std::wstring voxcomn_ulong_to_wide_string(const unsigned long& value) {
  return decimal<std::wstring>(value);
}

std::string voxcomn_long_to_ansi_string(const long& value) { return decimal<std::string>(value); }

std::string voxcomn_convert_to_upper(const std::string& text) {
  return mapped(text, [](int byte) { return toupper(byte); });
}

std::string voxcomn_convert_to_lower(const std::string& text) {
  return mapped(text, [](int byte) { return tolower(byte); });
}

std::string voxcomn_strip_leading_whitespace(const std::string& text) {
  size_t start = 0;
  while (start < text.size() && is_space(text[start])) ++start;
  return or_empty([&] { return text.substr(start); });
}

std::string voxcomn_strip_trailing_whitespace(const std::string& text) {
  size_t end = text.size();
  while (end > 0 && is_space(text[end - 1])) --end;
  return or_empty([&] { return text.substr(0, end); });
}

}  // namespace quillon_com::orb
