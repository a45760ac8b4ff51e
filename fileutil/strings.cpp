// fileutil/strings.cpp: the conversions between string objects.
#include <algorithm>
#include <charconv>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>
#include <new>
#include <string>
#include <type_traits>

#include "fileutil/conversions.h"
#include "fileutil/utf8.h"

namespace quillon_com::orb {
namespace {

// The converters' rooms are signed 32-bit numbers: n + 1 wide characters, 6 n + 1 bytes.
constexpr size_t kMostRoom = INT_MAX;

struct Free {
  void operator()(void* block) const { std::free(block); }
};

// Room for a conversion's result: on the stack when it is short, else from malloc.
template <class Char>
class WorkBuffer {
 public:
  explicit WorkBuffer(size_t room) {
    if (room <= kShort) return;
    heap_.reset(static_cast<Char*>(std::malloc(room * sizeof(Char))));
    text_ = heap_.get();
  }
  Char* get() { return text_; }  // null when there was no memory

 private:
  static constexpr size_t kShort = 8192 / sizeof(Char);
  Char short_[kShort];
  std::unique_ptr<Char[], Free> heap_;
  Char* text_ = short_;
};

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
  using Bits = std::make_unsigned_t<Char>;
  constexpr size_t kRun = 128;  // elements between two looks
  const Char* at = text.data();
  const size_t runs = text.size() / kRun * kRun;
  for (const Char* const end = at + runs; at != end; at += kRun) {
    Bits bits = 0;
    for (size_t i = 0; i < kRun; ++i) bits |= static_cast<Bits>(at[i]);
    if (bits > 0x7F) return false;
  }
  // The C library finds a zero faster than a loop that looks for both.
  if (runs != 0 && std::char_traits<Char>::find(text.data(), runs, Char()) != nullptr) return false;
  return std::all_of(at, text.data() + text.size(), [](Char element) {
    return static_cast<Bits>(static_cast<Bits>(element) - 1U) < 0x7F;
  });
}

// A plain text as a string of the other kind: without a work buffer.
template <class String, class Text>
String copied(const Text& text) {
  return or_empty([&] { return String(text.begin(), text.end()); });
}

// The next two stand apart from the conversion of plain texts, which would pay for their buffers.

[[gnu::noinline]] std::wstring decoded(const char* text) {
  const size_t bytes = std::strlen(text);
  WorkBuffer<wchar_t> work(bytes);
  if (work.get() == nullptr) return {};
  const size_t length = decode_utf8(text, bytes, work.get());
  return or_empty([&] { return std::wstring(work.get(), length); });
}

[[gnu::noinline]] std::string encoded(const wchar_t* text) {
  const size_t elements = std::wcslen(text);
  WorkBuffer<char> work(elements * 4);
  if (work.get() == nullptr) return {};
  const size_t length = encode_utf8(text, elements, work.get());
  return or_empty([&] { return std::string(work.get(), length); });
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
  return is_plain(text) ? copied<std::wstring>(text) : decoded(text.c_str());
}

std::string voxcomn_wide_to_ansi(const std::wstring& text) {
  constexpr size_t kShort = 64;  // elements; the buffer of a longer one costs less than its check
  if (text.size() > (kMostRoom - 1) / 6) return {};
  return text.size() <= kShort && is_plain(text) ? copied<std::string>(text)
                                                 : encoded(text.c_str());
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
