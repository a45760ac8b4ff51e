// tests/fileutil/guidtext_test.cpp: the text forms of GUIDs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "fileutil/guid.h"
#include "fileutil/guidgenerator.h"
#include "tests/support/fake_system.h"

namespace {

using quillon_com::orb::create_guid_text;
using quillon_com::orb::GuidGenerator;

TEST(GuidText, QuirkTheFirstThreeFieldsAppearReversed) {
  voxGuid guid;
  for (size_t i = 0; i < 16; ++i) guid.bytes[i] = static_cast<uint8_t>(i);
  char text[38];
  memset(text, '#', sizeof text);
  EXPECT_EQ(text, voxUuidToStringA(&guid, text));
  EXPECT_STREQ("03020100-0504-0706-0809-0a0b0c0d0e0f", text);
  EXPECT_EQ('#', text[37]) << "37 bytes are enough";
}

TEST(GuidText, EveryDigitIsLowerCase) {
  voxGuid guid;
  for (size_t i = 0; i < 16; ++i) guid.bytes[i] = static_cast<uint8_t>(0xFF - 0x11 * i);
  char text[37];
  voxUuidToStringA(&guid, text);
  EXPECT_STREQ("ccddeeff-aabb-8899-7766-554433221100", text);
}

// What snprintf makes of a number and two short ones in the machine's order, and of eight bytes.
std::string printed(const voxGuid& guid) {
  uint32_t first = 0;
  uint16_t second = 0;
  uint16_t third = 0;
  const uint8_t* const byte = guid.bytes;
  memcpy(&first, byte, sizeof first);
  memcpy(&second, byte + 4, sizeof second);
  memcpy(&third, byte + 6, sizeof third);
  char text[37];
  snprintf(text, sizeof text, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x", first, second,
           third, byte[8], byte[9], byte[10], byte[11], byte[12], byte[13], byte[14], byte[15]);
  return text;
}

// Among bytes of the smallest and of the largest digits: no digit changes its neighbours.
TEST(GuidText, EveryByteInEveryPlaceIsAsPrinted) {
  for (const int around : {0x00, 0xFF, 0x9A}) {
    for (size_t place = 0; place < 16; ++place) {
      for (int value = 0; value < 256; ++value) {
        voxGuid guid;
        memset(&guid, around, sizeof guid);
        guid.bytes[place] = static_cast<uint8_t>(value);
        char text[37];
        voxUuidToStringA(&guid, text);
        ASSERT_EQ(printed(guid), text) << place << ": " << value;
      }
    }
  }
}

TEST(GuidText, OfTheGeneratorsBytes) {
  orbtest::FakeSystem clock;
  clock.now = 2;
  GuidGenerator generator;
  voxGuid guid;
  generator.create(clock, &guid);
  generator.create(clock, &guid);
  char text[37];
  voxUuidToStringA(&guid, text);
  EXPECT_EQ("006db214-d21d-b211-", std::string(text).substr(0, 19));
  EXPECT_EQ("-000000000000", std::string(text).substr(23));
}

TEST(GuidText, AnyAlignmentWillDo) {
  char buffer[24];
  for (size_t i = 0; i < sizeof buffer; ++i) buffer[i] = static_cast<char>(i);
  char text[37];
  voxUuidToStringA(reinterpret_cast<const voxGuid*>(buffer + 3), text);
  EXPECT_STREQ("06050403-0807-0a09-0b0c-0d0e0f101112", text);
}

TEST(GuidText, NullGivesNull) {
  voxGuid guid{};
  char text[37] = "old";
  EXPECT_EQ(nullptr, voxUuidToStringA(&guid, nullptr));
  EXPECT_EQ(nullptr, voxUuidToStringA(nullptr, text));
  EXPECT_STREQ("old", text);
}

class BracedGuid : public testing::Test {
 protected:
  BracedGuid() { clock_.now = 0x1B; }
  int create(voxGuid* out, char* text, unsigned size) {
    return create_guid_text(generator_, clock_, out, text, size);
  }

  orbtest::FakeSystem clock_;
  GuidGenerator generator_;
};

TEST_F(BracedGuid, IsTheUpperCaseTextWithinBraces) {
  voxGuid guid;
  char text[39];
  EXPECT_EQ(1, create(&guid, text, sizeof text));
  EXPECT_EQ(38u, strlen(text));
  char lower[37];
  voxUuidToStringA(&guid, lower);
  std::string expected = "{";
  for (const char* c = lower; *c != '\0'; ++c)
    expected += *c >= 'a' && *c <= 'z' ? static_cast<char>(*c - 'a' + 'A') : *c;
  EXPECT_EQ(expected + "}", text);
}

TEST_F(BracedGuid, EveryLetterIsUpperCase) {
  std::string all;
  for (int i = 0; i < 200; ++i) {
    clock_.now += 123456;
    char text[39];
    create(nullptr, text, sizeof text);
    all += text;
  }
  EXPECT_EQ(std::string::npos, all.find_first_not_of("{}-0123456789ABCDEF"));
  for (const char letter : std::string("ABCDEF")) EXPECT_NE(std::string::npos, all.find(letter));
}

TEST_F(BracedGuid, TheRestOfTheBufferIsCleared) {
  char text[60];
  memset(text, '#', sizeof text);
  EXPECT_EQ(1, create(nullptr, text, 50));
  EXPECT_EQ(std::string(50 - 38, '\0'), std::string(text + 38, 12));
  EXPECT_EQ(std::string(10, '#'), std::string(text + 50, 10));
}

TEST_F(BracedGuid, QuirkASizeOf38IsNotTerminated) {
  for (const unsigned size : {0u, 1u, 37u, 38u, 39u}) {
    char text[42];
    memset(text, '#', sizeof text);
    voxGuid guid;
    EXPECT_EQ(1, create(&guid, text, size)) << size;
    EXPECT_EQ(size > 0 ? '{' : '#', text[0]) << size;
    EXPECT_EQ(size > 37 ? '}' : '#', text[37]) << size;
    EXPECT_EQ(size > 38 ? '\0' : '#', text[38]) << size;
    EXPECT_EQ('#', text[size > 38 ? 39 : size]) << size;
  }
}

TEST_F(BracedGuid, AnOutputOfNullIsLeftOut) {
  char text[39];
  EXPECT_EQ(1, create(nullptr, text, sizeof text));
  EXPECT_EQ('{', text[0]);
}

TEST_F(BracedGuid, ATextOfNullFailsAndMakesNothing) {
  voxGuid guid;
  memset(&guid, 0x5A, sizeof guid);
  EXPECT_EQ(0, create(&guid, nullptr, 39));
  EXPECT_EQ(16, std::count(guid.bytes, guid.bytes + 16, 0x5A));
  char text[39];
  create(&guid, text, sizeof text);
  EXPECT_GE(guid.bytes[10], 0x80) << "this is the first";
}

}  // namespace
