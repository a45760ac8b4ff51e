// tests/fileutil/numbers_test.cpp: numbers, tokens and the byte order of fileutil/conversions.h.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

#include "fileutil/conversions.h"

namespace {

// The text that `write` leaves in a buffer, "null" for a null result, "elsewhere" for a pointer
// other than the buffer, "overrun" when a byte behind the terminator was touched.
template <class Number>
std::string text_of(char* (*write)(Number, char*, int), Number value, int radix) {
  char buffer[64];
  std::memset(buffer, '?', sizeof(buffer));
  const char* result = write(value, buffer, radix);
  if (result == nullptr) return "null";
  if (result != buffer) return "elsewhere";
  const size_t length = strnlen(buffer, sizeof(buffer));
  for (size_t i = length + 1; i < sizeof(buffer); ++i) {
    if (buffer[i] != '?') return "overrun";
  }
  return buffer;
}

struct IntCase {
  const char* name;
  int value;
  int radix;
  const char* text;
};

class IntToText : public testing::TestWithParam<IntCase> {};

TEST_P(IntToText, BothNames) {
  EXPECT_EQ(GetParam().text, text_of(voxItoa, GetParam().value, GetParam().radix));
  EXPECT_EQ(GetParam().text, text_of(voxItot, GetParam().value, GetParam().radix));
}

INSTANTIATE_TEST_SUITE_P(Rows, IntToText,
                         testing::Values(IntCase{"Zero", 0, 10, "0"},
                                         IntCase{"ZeroOctal", 0, 8, "0"},
                                         IntCase{"ZeroHexadecimal", 0, 16, "0"},
                                         IntCase{"Decimal", 255, 10, "255"},
                                         IntCase{"NegativeHasSign", -1, 10, "-1"},
                                         IntCase{"LowerCaseWithoutPrefix", 255, 16, "ff"},
                                         IntCase{"OctalWithoutPrefix", 8, 8, "10"},
                                         IntCase{"NegativeHexadecimalIs32Bits", -1, 16, "ffffffff"},
                                         IntCase{"NegativeOctalIs32Bits", -1, 8, "37777777777"},
                                         IntCase{"Least", INT_MIN, 10, "-2147483648"},
                                         IntCase{"LeastHexadecimal", INT_MIN, 16, "80000000"},
                                         IntCase{"Most", INT_MAX, 10, "2147483647"}),
                         [](const auto& row) { return row.param.name; });

struct WideCase {
  const char* name;
  long long value;
  int radix;
  const char* text;
};

class LongLongToText : public testing::TestWithParam<WideCase> {};

TEST_P(LongLongToText, BothNames) {
  EXPECT_EQ(GetParam().text, text_of(voxI64toa, GetParam().value, GetParam().radix));
  EXPECT_EQ(GetParam().text, text_of(voxI64tot, GetParam().value, GetParam().radix));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, LongLongToText,
    testing::Values(WideCase{"Above32Bits", 4294967296, 10, "4294967296"},
                    WideCase{"HexadecimalLowerCase", 0x7BCDEF0123456789, 16, "7bcdef0123456789"},
                    WideCase{"NegativeIs64Bits", -1, 16, "ffffffffffffffff"},
                    WideCase{"NegativeOctalIs64Bits", -1, 8, "1777777777777777777777"},
                    WideCase{"Least", LLONG_MIN, 10, "-9223372036854775808"},
                    WideCase{"LeastOctalIsLongest", LLONG_MIN, 8, "1000000000000000000000"},
                    WideCase{"Most", LLONG_MAX, 10, "9223372036854775807"}),
    [](const auto& row) { return row.param.name; });

struct UnsignedCase {
  const char* name;
  unsigned long value;
  int radix;
  const char* text;
};

class UnsignedToText : public testing::TestWithParam<UnsignedCase> {};

TEST_P(UnsignedToText, Writes) {
  EXPECT_EQ(GetParam().text, text_of(voxUltot, GetParam().value, GetParam().radix));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UnsignedToText,
    testing::Values(
        UnsignedCase{"Decimal", 42, 10, "42"}, UnsignedCase{"Zero", 0, 8, "0"},
        UnsignedCase{"BelowTheSignBit", 9223372036854775807U, 10, "9223372036854775807"},
        UnsignedCase{"QuirkSignBitIsNegative", 9223372036854775808U, 10, "-9223372036854775808"},
        UnsignedCase{"QuirkLargestIsMinusOne", 18446744073709551615U, 10, "-1"},
        UnsignedCase{"LargestHexadecimal", 18446744073709551615U, 16, "ffffffffffffffff"},
        UnsignedCase{"LargestOctal", 18446744073709551615U, 8, "1777777777777777777777"}),
    [](const auto& row) { return row.param.name; });

TEST(NumberToText, OtherRadixGivesNullAndTouchesNothing) {
  for (int radix : {2, 0, 1, 7, 9, 11, 15, 17, 36, -10, INT_MIN, INT_MAX}) {
    char buffer[8] = "kept";
    EXPECT_EQ(nullptr, voxItoa(5, buffer, radix)) << radix;
    EXPECT_EQ(nullptr, voxItot(5, buffer, radix)) << radix;
    EXPECT_EQ(nullptr, voxUltot(5, buffer, radix)) << radix;
    EXPECT_EQ(nullptr, voxI64toa(5, buffer, radix)) << radix;
    EXPECT_EQ(nullptr, voxI64tot(5, buffer, radix)) << radix;
    EXPECT_STREQ("kept", buffer) << radix;
  }
}

TEST(NumberToText, NullBufferGivesNull) {
  EXPECT_EQ(nullptr, voxItoa(5, nullptr, 10));
  EXPECT_EQ(nullptr, voxUltot(5, nullptr, 16));
  EXPECT_EQ(nullptr, voxI64toa(5, nullptr, 8));
}

TEST(NumberToText, StatedRoomsHoldEveryResult) {
  EXPECT_GE(12U, text_of(voxItoa, INT_MIN, 10).size() + 1);
  EXPECT_GE(12U, text_of(voxItoa, -1, 8).size() + 1);
  EXPECT_EQ(23U, text_of(voxI64toa, -1LL, 8).size() + 1);
  EXPECT_GE(23U, text_of(voxI64toa, LLONG_MIN, 10).size() + 1);
}

// The C library's formats, as a second source over random bits of every magnitude.
TEST(NumberToText, AgreesWithPrintf) {
  std::mt19937_64 random(20240517);
  for (int i = 0; i < 20000; ++i) {
    const auto bits = random() >> (random() % 64);
    const auto wide = static_cast<long long>(random() % 2 == 0 ? bits : ~bits + 1);
    const auto narrow = static_cast<int>(wide);
    const auto plain = static_cast<unsigned long>(wide);
    struct Format {
      int radix;
      const char *narrow, *plain, *wide;
    };
    for (const Format& format : {Format{8, "%o", "%lo", "%llo"}, Format{10, "%d", "%li", "%lld"},
                                 Format{16, "%x", "%lx", "%llx"}}) {
      char expected[32];
      std::snprintf(expected, sizeof(expected), format.narrow, narrow);
      ASSERT_EQ(expected, text_of(voxItoa, narrow, format.radix)) << narrow;
      std::snprintf(expected, sizeof(expected), format.plain, plain);
      ASSERT_EQ(expected, text_of(voxUltot, plain, format.radix)) << plain;
      std::snprintf(expected, sizeof(expected), format.wide, wide);
      ASSERT_EQ(expected, text_of(voxI64toa, wide, format.radix)) << wide;
    }
  }
}

struct ParseCase {
  const char* name;
  const char* text;
  long long value;
};

class TextToNumber : public testing::TestWithParam<ParseCase> {};

TEST_P(TextToNumber, BothNames) {
  EXPECT_EQ(GetParam().value, voxTtoi64(GetParam().text));
  EXPECT_EQ(GetParam().value, voxAtoi64(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TextToNumber,
    testing::Values(ParseCase{"Digits", "123", 123}, ParseCase{"Empty", "", 0},
                    ParseCase{"Null", nullptr, 0}, ParseCase{"LeadingZeros", "0007", 7},
                    ParseCase{"QuirkLetterTakesPart", "12a", 169},
                    ParseCase{"QuirkNoSign", "-5", -25}, ParseCase{"QuirkPlusTakesPart", "+5", -45},
                    ParseCase{"QuirkBlankTakesPart", " 7", -153},
                    ParseCase{"QuirkTrailingBlankTakesPart", "7 ", 54},
                    ParseCase{"QuirkByteIsSigned", "\xFF", -49},
                    ParseCase{"QuirkHighByteIsSigned", "\x80", -176},
                    ParseCase{"Most", "9223372036854775807", LLONG_MAX},
                    ParseCase{"QuirkWrapsPastTheSignBit", "9223372036854775808", LLONG_MIN},
                    ParseCase{"QuirkWrapsToZero", "18446744073709551616", 0},
                    ParseCase{"QuirkWrapsOver", "18446744073709551621", 5}),
    [](const auto& row) { return row.param.name; });

TEST(Tokens, AreThoseOfTheLibrary) {
  char text[] = ",a;;b,c ";
  char* rest = nullptr;
  EXPECT_STREQ("a", voxTstrtok_r(text, ",;", &rest));
  EXPECT_STREQ("b", voxTstrtok_r(nullptr, ",;", &rest));
  EXPECT_STREQ("c", voxTstrtok_r(nullptr, "; ,", &rest));
  EXPECT_EQ(nullptr, voxTstrtok_r(nullptr, ",;", &rest));
}

TEST(Tokens, TwoTextsAtOnceKeepTheirPlaces) {
  char first[] = "a b";
  char second[] = "c d";
  char* first_rest = nullptr;
  char* second_rest = nullptr;
  EXPECT_STREQ("a", voxTstrtok_r(first, " ", &first_rest));
  EXPECT_STREQ("c", voxTstrtok_r(second, " ", &second_rest));
  EXPECT_STREQ("b", voxTstrtok_r(nullptr, " ", &first_rest));
  EXPECT_STREQ("d", voxTstrtok_r(nullptr, " ", &second_rest));
}

TEST(Tokens, OnlyDelimitersGiveNone) {
  char text[] = ";;;";
  char* rest = nullptr;
  EXPECT_EQ(nullptr, voxTstrtok_r(text, ";", &rest));
}

TEST(ByteOrder, IsTheCompilers) {
  EXPECT_EQ(__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__, quillon_com::orb::isBigEndian());
}

}  // namespace
