// fuzz/utf8_decode_fuzzer.cpp: any bytes as UTF-8, beside iconv; texts apart and in one block.
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "fileutil/conversions.h"
#include "fuzz/check.h"
#include "tests/support/iconv_oracle.h"

using orbfuzz::check;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static orbtest::Iconv oracle("UTF-32LE", "UTF-8");
  check(oracle.open());
  const std::string text(reinterpret_cast<const char*>(data), size);
  const size_t length = std::strlen(text.c_str());

  std::vector<wchar_t> expected(length + 1);
  const size_t bytes =
      oracle.convert(text.data(), length, expected.data(), length * sizeof(wchar_t));
  expected.resize(bytes / sizeof(wchar_t));
  expected.push_back(L'\0');

  std::vector<wchar_t> wide(length + 1, L'?');
  int room = static_cast<int>(length + 1);
  check(voxcomn_utf8_to_unicode(text.c_str(), wide.data(), &room) == 0);
  check(std::wmemcmp(wide.data(), expected.data(), expected.size()) == 0);
  check(quillon_com::orb::voxcomn_ansi_to_wide(text) == expected.data());

  // The source at a place in the destination's block that the input chooses.
  std::vector<wchar_t> block(2 * length + 2, L'?');
  char* const place =
      reinterpret_cast<char*>(block.data()) + (size == 0 ? 0 : data[0] % (length + 1));
  std::memcpy(place, text.c_str(), length + 1);
  check(voxcomn_utf8_to_unicode(place, block.data(), &room) == 0);
  check(std::wmemcmp(block.data(), expected.data(), expected.size()) == 0);

  room = static_cast<int>(length);
  check(voxcomn_utf8_to_unicode(text.c_str(), wide.data(), &room) == 0x80000008U);

  // What was decoded encodes to the bytes that it came from.
  const std::string back = quillon_com::orb::voxcomn_wide_to_ansi(expected.data());
  check(text.compare(0, back.size(), back) == 0);
  return 0;
}
