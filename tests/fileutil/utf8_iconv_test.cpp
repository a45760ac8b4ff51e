// tests/fileutil/utf8_iconv_test.cpp: the UTF-8 codec beside the system's iconv.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <string_view>

#include "fileutil/utf8.h"
#include "tests/support/iconv_oracle.h"

namespace {

using orbtest::Iconv;

class BesideIconv : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(decoder_.open());
    ASSERT_TRUE(encoder_.open());
  }

  // Whether both decode `text` alike; at most 1024 bytes.
  bool same_decoded(std::string_view text) {
    wchar_t ours[1024];
    wchar_t theirs[1024];
    const size_t count = quillon_com::orb::decode_utf8(text.data(), text.size(), ours);
    const size_t bytes = decoder_.convert(text.data(), text.size(), theirs, sizeof(theirs));
    return count * sizeof(wchar_t) == bytes && std::memcmp(ours, theirs, bytes) == 0;
  }

  bool same_encoded(std::wstring_view text) {
    char ours[4096];
    char theirs[4096];
    const size_t count = quillon_com::orb::encode_utf8(text.data(), text.size(), ours);
    const size_t bytes =
        encoder_.convert(text.data(), text.size() * sizeof(wchar_t), theirs, sizeof(theirs));
    return count == bytes && std::memcmp(ours, theirs, bytes) == 0;
  }

  Iconv decoder_{"UTF-32LE", "UTF-8"};
  Iconv encoder_{"UTF-8", "UTF-32LE"};
};

// The bits of `value` in the four-byte form, whether that is allowed or not.
std::string four_bytes(unsigned value) {
  return {static_cast<char>(0xF0 | (value >> 18)), static_cast<char>(0x80 | ((value >> 12) & 0x3F)),
          static_cast<char>(0x80 | ((value >> 6) & 0x3F)),
          static_cast<char>(0x80 | (value & 0x3F))};
}

TEST_F(BesideIconv, EveryCodePointAndBeyond) {
  for (unsigned value = 0; value <= 0x120000; ++value) {
    const wchar_t around[] = {L'a', static_cast<wchar_t>(value), L'b'};
    ASSERT_TRUE(same_encoded({around, 3})) << std::hex << value;
    ASSERT_TRUE(same_decoded("a" + four_bytes(value) + "b")) << std::hex << value;
    char proper[4];
    const size_t bytes = quillon_com::orb::encode_utf8(around + 1, 1, proper);
    if (bytes == 0) continue;
    wchar_t back = 0;
    ASSERT_EQ(1U, quillon_com::orb::decode_utf8(proper, bytes, &back)) << std::hex << value;
    ASSERT_EQ(around[1], back);
  }
}

TEST_F(BesideIconv, EverySequenceOfUpToThreeBytes) {
  for (unsigned value = 0; value <= 0xFFFFFF; ++value) {
    const char bytes[] = {static_cast<char>(value >> 16), static_cast<char>(value >> 8),
                          static_cast<char>(value)};
    const size_t start = value <= 0xFF ? 2 : value <= 0xFFFF ? 1 : 0;
    ASSERT_TRUE(same_decoded({bytes + start, 3 - start})) << std::hex << value;
  }
}

// Every lead of four bytes with continuations at the edges of what each position allows.
TEST_F(BesideIconv, FourBytesAtTheEdges) {
  const unsigned edges[] = {0x00, 0x7F, 0x80, 0x81, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xFF};
  for (unsigned lead = 0xE0; lead <= 0xFF; ++lead) {
    for (unsigned second : edges) {
      for (unsigned third : edges) {
        for (unsigned fourth : edges) {
          const char bytes[] = {static_cast<char>(lead), static_cast<char>(second),
                                static_cast<char>(third), static_cast<char>(fourth)};
          for (size_t length = 1; length <= 4; ++length) {
            ASSERT_TRUE(same_decoded({bytes, length}))
                << std::hex << lead << " " << second << " " << third << " " << fourth;
          }
        }
      }
    }
  }
}

TEST_F(BesideIconv, RandomBytes) {
  std::mt19937 random(7);
  for (int round = 0; round < 100000; ++round) {
    std::string text(random() % 40, '\0');
    for (char& byte : text) byte = static_cast<char>(random());
    ASSERT_TRUE(same_decoded(text)) << round;
  }
}

// Well-formed texts with runs of every length, some with one element broken.
TEST_F(BesideIconv, RandomMixedTexts) {
  std::mt19937 random(11);
  const auto below = [&random](unsigned bound) { return static_cast<unsigned>(random()) % bound; };
  const unsigned ranges[] = {0x80, 0x80, 0x80, 0x800, 0x10000, 0x110000};
  for (int round = 0; round < 20000; ++round) {
    std::wstring wide;
    while (wide.size() < 100) {
      const unsigned range = ranges[below(6)];
      for (unsigned run = below(40); run > 0; --run) wide += static_cast<wchar_t>(below(range));
    }
    if (below(2) == 0) wide[below(100)] = static_cast<wchar_t>(random());
    ASSERT_TRUE(same_encoded(wide)) << round;
    std::string narrow(wide.size() * 4, '\0');
    narrow.resize(quillon_com::orb::encode_utf8(wide.data(), wide.size(), narrow.data()));
    if (!narrow.empty() && below(2) == 0)
      narrow[below(static_cast<unsigned>(narrow.size()))] ^= 0x40;
    ASSERT_TRUE(same_decoded(narrow)) << round;
  }
}

}  // namespace
