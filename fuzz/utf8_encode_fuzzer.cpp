// fuzz/utf8_encode_fuzzer.cpp: any values as wide text, beside iconv; texts apart and in one block.
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "fileutil/conversions.h"
#include "fuzz/check.h"
#include "tests/support/iconv_oracle.h"

using orbfuzz::check;

namespace {

// One element for each byte of the input below 0xF0; four bytes behind one above that.
std::wstring wide_text(const uint8_t* data, size_t size) {
  std::wstring text;
  for (size_t i = 0; i < size; ++i) {
    int32_t value = data[i];
    if (value >= 0xF0 && size - i > sizeof(value)) {
      std::memcpy(&value, data + i + 1, sizeof(value));
      if (data[i] < 0xF8) value &= 0x1FFFFF;
      i += sizeof(value);
    }
    text += static_cast<wchar_t>(value);
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static orbtest::Iconv oracle("UTF-8", "UTF-32LE");
  check(oracle.open());
  const std::wstring text = wide_text(data, size);
  const size_t length = std::wcslen(text.c_str());

  std::string expected(length * 6, '?');
  expected.resize(
      oracle.convert(text.data(), length * sizeof(wchar_t), expected.data(), expected.size()));

  std::vector<char> narrow(length * 6 + 1, '?');
  auto room = static_cast<unsigned>(narrow.size());
  check(voxcomn_unicode_to_utf8(text.c_str(), narrow.data(), &room) == 0);
  check(narrow.data() == expected);
  check(quillon_com::orb::voxcomn_wide_to_ansi(text) == expected);

  // The source at a place in the destination's block that the input chooses.
  std::vector<wchar_t> block(3 * length + 2, L'?');
  wchar_t* const place = block.data() + (length == 0 ? 0 : data[0] % length);
  std::wmemcpy(place, text.c_str(), length + 1);
  char* const destination = reinterpret_cast<char*>(block.data());
  check(voxcomn_unicode_to_utf8(place, destination, &room) == 0);
  check(destination == expected);

  --room;
  check(voxcomn_unicode_to_utf8(text.c_str(), narrow.data(), &room) == 0x80000008U);
  return 0;
}
