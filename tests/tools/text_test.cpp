// tests/tools/text_test.cpp: tools/orbprops/text.h on texts of every kind.
#include "tools/orbprops/text.h"

#include <gtest/gtest.h>

namespace {

using orbprops::Charset;

struct WideCase {
  const char* name;
  std::wstring text;
  const char* utf8;
  const char* shown;  // to a reader of UTF-8
  size_t columns;
  const char* ascii;  // to a reader of ASCII
};

class WideText : public testing::TestWithParam<WideCase> {};

TEST_P(WideText, IsConvertedShownAndMeasured) {
  const WideCase& row = GetParam();
  EXPECT_EQ(row.utf8, orbprops::to_utf8(row.text));
  const orbprops::Shown shown = orbprops::show(row.text, Charset::utf8);
  EXPECT_EQ(row.shown, shown.bytes);
  EXPECT_EQ(row.columns, shown.columns);
  const orbprops::Shown ascii = orbprops::show(row.text, Charset::ascii);
  EXPECT_EQ(row.ascii, ascii.bytes);
  EXPECT_EQ(ascii.bytes.size(), ascii.columns);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, WideText,
    testing::Values(
        WideCase{"Empty", L"", "", "", 0, ""},
        WideCase{"AsciiStaysAndABackslashToo", L"a\\b ~", "a\\b ~", "a\\b ~", 5, "a\\b ~"},
        WideCase{"TwoByteLetter", L"\u00e9", "\xc3\xa9", "\xc3\xa9", 1, "\\u00e9"},
        WideCase{"LastOfTwoBytes", L"\u07ff", "\xdf\xbf", "\xdf\xbf", 1, "\\u07ff"},
        WideCase{"WideCharacterTakesTwoColumns", L"\u65e5\u672c", "\xe6\x97\xa5\xe6\x9c\xac",
                 "\xe6\x97\xa5\xe6\x9c\xac", 4, "\\u65e5\\u672c"},
        WideCase{"CombiningMarkTakesNone", L"e\u0301", "e\xcc\x81", "e\xcc\x81", 1, "e\\u0301"},
        WideCase{"BeyondTheBasicPlane", L"\U0001f600", "\xf0\x9f\x98\x80", "\xf0\x9f\x98\x80", 2,
                 "\\U0001f600"},
        WideCase{"EscapeIsEscaped", L"\x1b[31m", "\x1b[31m", "\\x1b[31m", 8, "\\x1b[31m"},
        WideCase{"LineEndIsEscaped", L"a\nb", "a\nb", "a\\x0ab", 6, "a\\x0ab"},
        WideCase{"DeleteIsEscaped", L"\x7f", "\x7f", "\\x7f", 4, "\\x7f"},
        WideCase{"EightBitControlIsEscaped", L"\u009b", "\xc2\x9b", "\\u009b", 6, "\\u009b"},
        WideCase{"DirectionOverrideIsEscaped", L"\u202e", "\xe2\x80\xae", "\\u202e", 6, "\\u202e"},
        WideCase{"DirectionIsolateIsEscaped", L"\u2067", "\xe2\x81\xa7", "\\u2067", 6, "\\u2067"},
        WideCase{"LineSeparatorIsEscaped", L"\u2028", "\xe2\x80\xa8", "\\u2028", 6, "\\u2028"},
        WideCase{"SurrogateIsNoCharacter", std::wstring(1, wchar_t(0xd800)), "\xef\xbf\xbd",
                 "\\ud800", 6, "\\ud800"},
        WideCase{"AboveUnicodeIsNoCharacter", std::wstring(1, wchar_t(0x110000)), "\xef\xbf\xbd",
                 "\\U00110000", 10, "\\U00110000"},
        WideCase{"NegativeValueIsNoCharacter", std::wstring(1, wchar_t(-1)), "\xef\xbf\xbd",
                 "\\Uffffffff", 10, "\\Uffffffff"}),
    [](const auto& row) { return row.param.name; });

struct NarrowCase {
  const char* name;
  std::string bytes;
  std::string utf8;
  const char* shown;
  size_t columns;
};

class NarrowText : public testing::TestWithParam<NarrowCase> {};

TEST_P(NarrowText, IsRepairedShownAndMeasured) {
  const NarrowCase& row = GetParam();
  EXPECT_EQ(row.utf8, orbprops::to_utf8(std::string_view(row.bytes)));
  const orbprops::Shown shown = orbprops::show(std::string_view(row.bytes), Charset::utf8);
  EXPECT_EQ(row.shown, shown.bytes);
  EXPECT_EQ(row.columns, shown.columns);
}

#define FFFD "\xef\xbf\xbd"

INSTANTIATE_TEST_SUITE_P(
    Texts, NarrowText,
    testing::Values(
        NarrowCase{"Ascii", "eth0", "eth0", "eth0", 4},
        NarrowCase{"TwoBytes", "\xc3\xa9", "\xc3\xa9", "\xc3\xa9", 1},
        NarrowCase{"ThreeBytes", "\xe6\x97\xa5", "\xe6\x97\xa5", "\xe6\x97\xa5", 2},
        NarrowCase{"FourBytes", "\xf0\x9f\x98\x80", "\xf0\x9f\x98\x80", "\xf0\x9f\x98\x80", 2},
        NarrowCase{"LastCharacterOfAll", "\xf4\x8f\xbf\xbd", "\xf4\x8f\xbf\xbd", "\xf4\x8f\xbf\xbd",
                   1},
        NarrowCase{"LoneContinuation", "a\x80z", "a" FFFD "z", "a\\x80z", 6},
        NarrowCase{"LatinLetter", "caf\xe9", "caf" FFFD, "caf\\xe9", 7},
        NarrowCase{"CutSequenceAtTheEnd", "\xe6\x97", FFFD FFFD, "\\xe6\\x97", 8},
        NarrowCase{"CutSequenceBeforeALetter", "\xe6\x97q", FFFD FFFD "q", "\\xe6\\x97q", 9},
        NarrowCase{"OverlongSlash", "\xc0\xaf", FFFD FFFD, "\\xc0\\xaf", 8},
        NarrowCase{"OverlongOfThreeBytes", "\xe0\x80\xaf", FFFD FFFD FFFD, "\\xe0\\x80\\xaf", 12},
        NarrowCase{"OverlongOfFourBytes", "\xf0\x80\x80\xaf", FFFD FFFD FFFD FFFD,
                   "\\xf0\\x80\\x80\\xaf", 16},
        NarrowCase{"Surrogate", "\xed\xa0\x80", FFFD FFFD FFFD, "\\xed\\xa0\\x80", 12},
        NarrowCase{"AboveUnicode", "\xf4\x90\x80\x80", FFFD FFFD FFFD FFFD, "\\xf4\\x90\\x80\\x80",
                   16},
        NarrowCase{"NoLeadByte", "\xff\xfe", FFFD FFFD, "\\xff\\xfe", 8},
        NarrowCase{"ZeroByte", std::string("a\0b", 3), std::string("a\0b", 3), "a\\x00b", 6},
        NarrowCase{"EscapeSequence", "\x1b]0;x\x07", "\x1b]0;x\x07", "\\x1b]0;x\\x07", 12}),
    [](const auto& row) { return row.param.name; });

TEST(Text, GlyphsAreOnePerCharacter) {
  const auto entries = orbprops::glyphs(std::string_view("a\xc3\xa9\x1b"), Charset::utf8);
  ASSERT_EQ(3U, entries.size());
  EXPECT_EQ("\xc3\xa9", entries[1].bytes);
  EXPECT_EQ("\\x1b", entries[2].bytes);
  EXPECT_EQ("a\xc3\xa9", orbprops::join(entries, 0, 2).bytes);
  EXPECT_EQ(5U, orbprops::join(entries, 1, 3).columns);
  EXPECT_EQ("", orbprops::join(entries, 3, 3).bytes);
}

TEST(Text, JsonLosesNothingButControls) {
  EXPECT_EQ("{\n  \"a\": \"\xc3\xa9\"\n}",
            orbprops::without_controls("{\n  \"a\": \"\xc3\xa9\"\n}"));
  EXPECT_EQ("\"\\u007f\\u009b\"", orbprops::without_controls("\"\x7f\xc2\x9b\""));
  EXPECT_EQ("\"\\u202e\\u2069\"", orbprops::without_controls("\"\xe2\x80\xae\xe2\x81\xa9\""));
  EXPECT_EQ("\"\xf0\x9f\x98\x80\"", orbprops::without_controls("\"\xf0\x9f\x98\x80\""));
}

}  // namespace
