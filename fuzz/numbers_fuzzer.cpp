// fuzz/numbers_fuzzer.cpp: numbers as text and text as numbers, tokens, letters and blanks, each
// beside its rule written out.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fileutil/conversions.h"
#include "fileutil/filetree.h"
#include "fileutil/guid.h"
#include "fuzz/check.h"
#include "network/netinterface.h"
#include "sysprops/records.h"

using orbfuzz::check;
using namespace quillon_com::orb;

namespace {

std::string digits_of(uint64_t value, unsigned radix) {
  char digits[64];
  char* first = digits + sizeof digits;
  do {
    *--first = "0123456789abcdef"[value % radix];
    value /= radix;
  } while (value != 0);
  return {first, digits + sizeof digits};
}

std::string decimal(int64_t value) {
  const auto bits = static_cast<uint64_t>(value);
  return value < 0 ? "-" + digits_of(~bits + 1, 10) : digits_of(bits, 10);
}

void check_numbers(uint64_t bits, int radix) {
  const auto large = static_cast<int64_t>(bits);
  const auto small = static_cast<int32_t>(bits);
  const bool known = radix == 8 || radix == 10 || radix == 16;
  const unsigned base = known ? static_cast<unsigned>(radix) : 8;
  const std::string of_small =
      radix == 10 ? decimal(small) : digits_of(static_cast<uint32_t>(small), base);
  const std::string of_large = radix == 10 ? decimal(large) : digits_of(bits, base);
  char text[32] = "as it was";
  const auto gives = [&](const char* result, const std::string& expected) {
    check(result == (known ? text : nullptr));
    check(text == (known ? expected : "as it was"));
  };
  gives(voxItoa(small, text, radix), of_small);
  gives(voxItot(small, text, radix), of_small);
  gives(voxUltot(bits, text, radix), of_large);
  gives(voxI64toa(large, text, radix), of_large);
  gives(voxI64tot(large, text, radix), of_large);
  if (radix == 10 && large >= 0) check(voxAtoi64(text) == large);

  check(voxcomn_long_to_ansi_string(large) == decimal(large));
  const std::wstring wide = voxcomn_ulong_to_wide_string(bits);
  check(std::string(wide.begin(), wide.end()) == digits_of(bits, 10));
  const std::wstring with_sign = voxcomn_long_to_wide_string(large);
  check(std::string(with_sign.begin(), with_sign.end()) == decimal(large));
}

void check_number_text(const std::string& text) {
  uint64_t value = 0;
  for (const char* at = text.c_str(); *at != '\0'; ++at)
    value = value * 10 + static_cast<uint64_t>(static_cast<signed char>(*at) - 48);
  check(voxTtoi64(text.c_str()) == static_cast<int64_t>(value));
  check(voxAtoi64(text.c_str()) == static_cast<int64_t>(value));
}

void check_tokens(const std::string& text, const std::string& delimiters) {
  const std::string separators = delimiters.c_str();
  std::vector<std::string> expected(1);
  for (const char* at = text.c_str(); *at != '\0'; ++at) {
    if (separators.find(*at) == std::string::npos)
      expected.back() += *at;
    else if (!expected.back().empty())
      expected.emplace_back();
  }
  if (expected.back().empty()) expected.pop_back();
  std::string copy = text;
  char* rest = nullptr;
  char* from = copy.data();
  for (const std::string& token : expected) {
    const char* const found = voxTstrtok_r(from, separators.c_str(), &rest);
    check(found != nullptr && found == token);
    from = nullptr;
  }
  check(voxTstrtok_r(from, separators.c_str(), &rest) == nullptr);
}

bool is_blank(char byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

void check_letters_and_blanks(const std::string& text) {
  std::string upper = text;
  std::string lower = text;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] >= 'a' && text[i] <= 'z') upper[i] = static_cast<char>(text[i] - 32);
    if (text[i] >= 'A' && text[i] <= 'Z') lower[i] = static_cast<char>(text[i] + 32);
  }
  check(voxcomn_convert_to_upper(text) == upper);
  check(voxcomn_convert_to_lower(text) == lower);
  std::string rest = text;
  size_t blanks = 0;
  while (blanks < rest.size() && is_blank(rest[blanks])) ++blanks;
  rest.erase(0, blanks);
  check(voxcomn_strip_leading_whitespace(text) == rest);
  rest = text;
  while (!rest.empty() && is_blank(rest.back())) rest.pop_back();
  check(voxcomn_strip_trailing_whitespace(text) == rest);
}

void check_ends(const std::string& text) {
  std::string cut = text.c_str();
  const size_t semicolon = cut.find(';');
  const char* const at = voxcomn_chop_semicolon(cut.data());
  check(at == (semicolon == std::string::npos ? nullptr : cut.data() + semicolon));
  const std::string kept = cut.c_str();
  check(kept == std::string(text.c_str()).substr(0, semicolon));
  std::vector<char> path(kept.begin(), kept.end());
  path.resize(kept.size() + 2);
  const bool ends = !kept.empty() && kept.back() == '/';
  check(voxcomn_append_backslash_check(path.data()) == (ends ? kept.size() - 1 : kept.size()));
  check(path.data() == (ends ? kept : kept + "/"));
}

void check_identifiers(const std::string& text) {
  voxGuid guid{};
  if (text.size() < sizeof guid.bytes) return;
  std::memcpy(guid.bytes, text.data(), sizeof guid.bytes);
  std::string expected;
  for (const int place : {3, 2, 1, 0, -1, 5, 4, -1, 7, 6, -1, 8, 9, -1, 10, 11, 12, 13, 14, 15}) {
    const unsigned byte = place < 0 ? 0 : guid.bytes[place];
    expected += place < 0 ? "-" : digits_of(byte / 16, 16) + digits_of(byte % 16, 16);
  }
  char out[37];
  check(voxUuidToStringA(&guid, out) == out && out == expected);
  std::string address;
  for (int place = 0; place < 6; ++place)
    address += digits_of(guid.bytes[place] / 16, 16) + digits_of(guid.bytes[place] % 16, 16);
  check(formatMACAddress(guid.bytes) == address);
}

// The largest point of the grid below the value, by trying all of them; the value where that is 0.
void check_grid(uint64_t value, uint64_t upper, unsigned steps) {
  using Number = unsigned long long;
  const Number step = steps == 0 ? 0 : upper / steps;
  Number below = 0;
  for (unsigned k = 0; k <= steps; ++k)
    if (step * k < value) below = step * k;
  const Number expected = steps == 0 ? 0 : below == 0 ? value : below;
  check(sysprops::get_closest_floor<Number>(value, upper, 0, steps) == expected);
}

}  // namespace

// Eight bytes are the number, two the radix and the steps; the rest is text.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr size_t kNumbers = 10;
  uint64_t bits = 0;
  if (size >= kNumbers) std::memcpy(&bits, data, sizeof bits);
  constexpr int kRadices[] = {10, 8, 16, 2};
  const int radix = size >= kNumbers ? kRadices[data[8] % 4] : 10;
  const unsigned steps = size >= kNumbers ? data[9] % 32 : 0;
  const size_t from = size >= kNumbers ? kNumbers : 0;
  const std::string text(reinterpret_cast<const char*>(data) + from, size - from);
  check_numbers(bits, radix);
  check_number_text(text);
  check_tokens(text, text.substr(0, text.size() / 4));
  check_letters_and_blanks(text);
  check_ends(text);
  check_identifiers(text);
  check_grid(bits >> 32, bits & 0xFFFFFFFFU, steps);
  return 0;
}
