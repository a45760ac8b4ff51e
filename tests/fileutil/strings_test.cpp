// tests/fileutil/strings_test.cpp: the string objects of fileutil/conversions.h.
#include <gtest/gtest.h>

#include <climits>
#include <cwchar>
#include <string>

#include "fileutil/conversions.h"
#include "tests/support/faults.h"
#include "tests/support/latin_locale.h"
#include "tests/support/scoped_locale.h"

namespace {

using namespace quillon_com::orb;
using orbtest::Failing;
using orbtest::MemoryFaults;

TEST(AnsiToWide, ConvertsUtf8) {
  EXPECT_EQ(L"", voxcomn_ansi_to_wide(""));
  EXPECT_EQ(L"abc", voxcomn_ansi_to_wide("abc"));
  EXPECT_EQ(L"\xE9\x20AC\x1F600", voxcomn_ansi_to_wide("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
}

TEST(AnsiToWide, EndsAtAnEmbeddedZero) {
  EXPECT_EQ(L"ab", voxcomn_ansi_to_wide(std::string("ab\0cd", 5)));
  EXPECT_EQ(L"", voxcomn_ansi_to_wide(std::string("\0cd", 3)));
}

TEST(AnsiToWide, EndsAtAnInvalidSequence) {
  EXPECT_EQ(L"ab", voxcomn_ansi_to_wide("ab\xFF"
                                        "cd"));
}

TEST(AnsiToWide, IsUtf8InEveryLocale) {
  for (const char* name : {"C", "C.utf8"}) {
    orbtest::ScopedLocale locale(name);
    ASSERT_TRUE(locale.set());
    EXPECT_EQ(L"\xE9", voxcomn_ansi_to_wide("\xC3\xA9")) << name;
    EXPECT_EQ("\xC3\xA9", voxcomn_wide_to_ansi(L"\xE9")) << name;
  }
}

TEST(WideToAnsi, ConvertsToUtf8) {
  EXPECT_EQ("", voxcomn_wide_to_ansi(L""));
  EXPECT_EQ("abc", voxcomn_wide_to_ansi(L"abc"));
  EXPECT_EQ("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", voxcomn_wide_to_ansi(L"\xE9\x20AC\x1F600"));
}

TEST(WideToAnsi, EndsAtAnEmbeddedZero) {
  EXPECT_EQ("ab", voxcomn_wide_to_ansi(std::wstring(L"ab\0cd", 5)));
}

TEST(WideToAnsi, EndsAtASurrogate) {
  EXPECT_EQ("ab", voxcomn_wide_to_ansi(std::wstring(L"ab") + wchar_t(0xD800) + L"cd"));
}

// Lengths on both sides of every internal size, of one and of four bytes a character.
TEST(WideToAnsi, EveryLengthComesBack) {
  for (size_t length = 0; length <= 2500; ++length) {
    const std::wstring wide =
        std::wstring(length / 2, L'a') + std::wstring(length - length / 2, L'\x1F600');
    ASSERT_EQ(wide, voxcomn_ansi_to_wide(voxcomn_wide_to_ansi(wide))) << length;
  }
  const std::wstring large(1000000, L'\x20AC');
  EXPECT_EQ(large, voxcomn_ansi_to_wide(voxcomn_wide_to_ansi(large)));
}

// Texts of one letter but for one place: what stands there decides alone, wherever it is.
template <class Text>
Text with(size_t length, size_t at, typename Text::value_type element) {
  Text text(length, 'a');
  text[at] = element;
  return text;
}

TEST(AnsiToWide, OneOddByteAnywhere) {
  for (size_t length = 1; length <= 140; ++length) {
    for (size_t at = 0; at < length; ++at) {
      const std::wstring before(at, L'a');
      ASSERT_EQ(before, voxcomn_ansi_to_wide(with<std::string>(length, at, '\0'))) << length;
      ASSERT_EQ(before, voxcomn_ansi_to_wide(with<std::string>(length, at, '\x80'))) << length;
      ASSERT_EQ(before, voxcomn_ansi_to_wide(with<std::string>(length, at, '\xFF'))) << length;
      ASSERT_EQ(with<std::wstring>(length, at, L'\x7F'),
                voxcomn_ansi_to_wide(with<std::string>(length, at, '\x7F')));
    }
  }
}

TEST(WideToAnsi, OneOddElementAnywhere) {
  for (size_t length = 1; length <= 140; ++length) {
    for (size_t at = 0; at < length; ++at) {
      const std::string before(at, 'a');
      ASSERT_EQ(before, voxcomn_wide_to_ansi(with<std::wstring>(length, at, L'\0'))) << length;
      ASSERT_EQ(before, voxcomn_wide_to_ansi(with<std::wstring>(length, at, 0xD800))) << length;
      ASSERT_EQ(before, voxcomn_wide_to_ansi(with<std::wstring>(length, at, -1))) << length;
      ASSERT_EQ(before, voxcomn_wide_to_ansi(with<std::wstring>(length, at, WCHAR_MIN))) << length;
      ASSERT_EQ(before + "\xC2\x80" + std::string(length - at - 1, 'a'),
                voxcomn_wide_to_ansi(with<std::wstring>(length, at, 0x80)));
      ASSERT_EQ(with<std::string>(length, at, '\x7F'),
                voxcomn_wide_to_ansi(with<std::wstring>(length, at, L'\x7F')));
    }
  }
}

// Long texts, converted in pieces of 2048 elements: what stands across the end of a piece, with a
// character in front of it that makes the text no plain one.
struct CrossingRow {
  const char* name;
  std::string narrow;  // at the end of the piece
  std::wstring wide;   // what comes of it and of the "b" behind it
};

const CrossingRow kCrossings[] = {
    {"two bytes", "\xC3\xA9", L"\xE9\x62"},
    {"three bytes", "\xE2\x82\xAC", L"\x20AC\x62"},
    {"four bytes", "\xF0\x9F\x98\x80", L"\x1F600\x62"},
    {"a row of four bytes", "\xF0\x9F\x98\x80\xF0\x9F\x98\x80", L"\x1F600\x1F600\x62"},
    {"no end", "\xF0\x9F\x98", L""},
    {"no start", "\x98", L""},
    {"zero", std::string(1, '\0'), L""},
    {"zero behind a character", std::string("\xC3\xA9\0", 3), L"\xE9"},
};

TEST(AnsiToWide, NothingIsLostBetweenPieces) {
  for (const CrossingRow& row : kCrossings) {
    for (size_t end : {2048U, 4096U, 6144U}) {
      for (size_t before = end - 8; before <= end + 2; ++before) {
        const std::string text = "\xC3\xA9" + std::string(before - 2, 'a') + row.narrow + "b";
        const std::wstring expected = L"\xE9" + std::wstring(before - 2, L'a') + row.wide;
        ASSERT_EQ(expected, voxcomn_ansi_to_wide(text)) << row.name << " at " << before;
      }
    }
  }
}

TEST(WideToAnsi, NothingIsLostBetweenPieces) {
  for (const CrossingRow& row : kCrossings) {
    if (row.wide.empty()) continue;
    for (size_t end : {2048U, 4096U, 6144U}) {
      for (size_t before = end - 3; before <= end + 1; ++before) {
        const std::wstring head(before, L'a');
        const std::string expected = std::string(before, 'a') + row.narrow.c_str();
        const std::wstring characters = row.wide.substr(0, row.wide.find(L'b'));
        ASSERT_EQ(expected + "b", voxcomn_wide_to_ansi(head + characters + L"b"))
            << row.name << " at " << before;
        ASSERT_EQ(expected, voxcomn_wide_to_ansi(head + characters + wchar_t(0xDFFF) + L"b"));
        ASSERT_EQ(expected, voxcomn_wide_to_ansi(head + characters + L'\0' + L"b"));
      }
    }
  }
}

TEST(NumbersToStrings, WriteDecimals) {
  EXPECT_EQ(L"0", voxcomn_long_to_wide_string(0));
  EXPECT_EQ(L"-1", voxcomn_long_to_wide_string(-1));
  EXPECT_EQ(L"-9223372036854775808", voxcomn_long_to_wide_string(LONG_MIN));
  EXPECT_EQ(L"9223372036854775807", voxcomn_long_to_wide_string(LONG_MAX));
  EXPECT_EQ(L"0", voxcomn_ulong_to_wide_string(0));
  EXPECT_EQ(L"18446744073709551615", voxcomn_ulong_to_wide_string(ULONG_MAX));
  EXPECT_EQ("0", voxcomn_long_to_ansi_string(0));
  EXPECT_EQ("-42", voxcomn_long_to_ansi_string(-42));
  EXPECT_EQ("-9223372036854775808", voxcomn_long_to_ansi_string(LONG_MIN));
  EXPECT_EQ("9223372036854775807", voxcomn_long_to_ansi_string(LONG_MAX));
}

TEST(Case, MapsEachByte) {
  orbtest::ScopedLocale locale("C");
  EXPECT_EQ("", voxcomn_convert_to_upper(""));
  EXPECT_EQ("ABC-XYZ 09", voxcomn_convert_to_upper("aBc-xyz 09"));
  EXPECT_EQ("abc-xyz 09", voxcomn_convert_to_lower("AbC-XYZ 09"));
  EXPECT_EQ("@[`{", voxcomn_convert_to_lower("@[`{"));
  EXPECT_EQ("@[`{", voxcomn_convert_to_upper("@[`{"));
}

TEST(Case, PassesOverEmbeddedZeros) {
  EXPECT_EQ(std::string("A\0B", 3), voxcomn_convert_to_upper(std::string("a\0b", 3)));
  EXPECT_EQ(std::string("a\0b", 3), voxcomn_convert_to_lower(std::string("A\0B", 3)));
}

// U+00E9 and U+00C9 differ in case; in these locales their bytes do not.
TEST(Case, QuirkMultibyteCharactersAreMappedByteByByte) {
  for (const char* name : {"C", "C.utf8"}) {
    orbtest::ScopedLocale locale(name);
    EXPECT_EQ("\xC3\xA9", voxcomn_convert_to_upper("\xC3\xA9")) << name;
    EXPECT_EQ("\xC3\x89", voxcomn_convert_to_lower("\xC3\x89")) << name;
  }
}

TEST(Case, FollowsTheLocaleForEveryByte) {
  const orbtest::LatinLocale latin;
  if (!latin.set()) GTEST_SKIP() << "needs localedef and the package locales";
  EXPECT_EQ("\xC9\xBE", voxcomn_convert_to_upper("\xE9\xFF"));
  EXPECT_EQ("\xE9\xFF", voxcomn_convert_to_lower("\xC9\xBE"));
  EXPECT_EQ("\xC3\xA9", voxcomn_wide_to_ansi(L"\xE9"));
}

struct StripCase {
  const char* name;
  std::string text, without_leading, without_trailing;
};

class Strip : public testing::TestWithParam<StripCase> {};

TEST_P(Strip, BothEnds) {
  orbtest::ScopedLocale locale("C");
  EXPECT_EQ(GetParam().without_leading, voxcomn_strip_leading_whitespace(GetParam().text));
  EXPECT_EQ(GetParam().without_trailing, voxcomn_strip_trailing_whitespace(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Strip,
    testing::Values(StripCase{"Empty", "", "", ""}, StripCase{"NoSpace", "ab", "ab", "ab"},
                    StripCase{"InnerBlanksStay", "  a b ", "a b ", "  a b"},
                    StripCase{"EveryKindOfSpace", " \t\n\v\f\ra \t\n\v\f\r", "a \t\n\v\f\r",
                              " \t\n\v\f\ra"},
                    StripCase{"AllBlank", "   ", "", ""}, StripCase{"OneBlank", " ", "", ""},
                    StripCase{"ZeroByteIsNoSpace", std::string(" \0 ", 3), std::string("\0 ", 2),
                              std::string(" \0", 2)},
                    StripCase{"HighBytesAreNoSpace", "\xA0 \x85", "\xA0 \x85", "\xA0 \x85"},
                    StripCase{"OneCharacter", "x", "x", "x"}),
    [](const auto& row) { return row.param.name; });

// What a wrapper gives while each request for memory of its run fails in turn: always "".
template <class Call>
size_t empty_whenever_memory_fails(Call call) {
  return orbtest::for_each_memory_fault([&](size_t nth, Failing failing) {
    size_t failures = 0;
    size_t length = 0;
    {
      const MemoryFaults faults(nth, failing);
      length = call().size();
      failures = faults.failures();
    }
    EXPECT_EQ(failures != 0, length == 0) << nth;
    return failures;
  });
}

TEST(OutOfMemory, EveryStringIsEmpty) {
  const std::string narrow(10000, 'a');
  const std::wstring wide(10000, L'a');
  // A text like its first piece takes memory once, one that becomes longer takes more on the way.
  const std::string mixed = narrow + "\xC3\xA9";
  const std::wstring longer = wide + std::wstring(2048, L'\x20AC');
  EXPECT_EQ(1U, empty_whenever_memory_fails([&] { return voxcomn_ansi_to_wide(narrow); }));
  EXPECT_EQ(1U, empty_whenever_memory_fails([&] { return voxcomn_ansi_to_wide(mixed); }));
  EXPECT_EQ(1U, empty_whenever_memory_fails([&] { return voxcomn_wide_to_ansi(wide); }));
  EXPECT_EQ(2U, empty_whenever_memory_fails([&] { return voxcomn_wide_to_ansi(longer); }));
  EXPECT_EQ(1U, empty_whenever_memory_fails([&] { return voxcomn_convert_to_upper(narrow); }));
  EXPECT_EQ(1U, empty_whenever_memory_fails([&] { return voxcomn_convert_to_lower(narrow); }));
  EXPECT_EQ(1U,
            empty_whenever_memory_fails([&] { return voxcomn_strip_leading_whitespace(narrow); }));
  EXPECT_EQ(1U,
            empty_whenever_memory_fails([&] { return voxcomn_strip_trailing_whitespace(narrow); }));
  EXPECT_EQ(1U, empty_whenever_memory_fails([] { return voxcomn_long_to_wide_string(LONG_MIN); }));
  EXPECT_EQ(1U,
            empty_whenever_memory_fails([] { return voxcomn_ulong_to_wide_string(ULONG_MAX); }));
  EXPECT_EQ(1U, empty_whenever_memory_fails([] { return voxcomn_long_to_ansi_string(LONG_MIN); }));
}

}  // namespace
