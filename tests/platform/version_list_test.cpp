// tests/platform/version_list_test.cpp: platform/version_list.h: choice of form and UTF-8.
#include "platform/version_list.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/version_list_forms.h"
#include "tests/support/binary_list.h"

namespace {

using namespace quillon_com::orb::platform;
using namespace std::string_literals;
using Texts = std::vector<std::optional<std::string>>;

TEST(PropertyListTexts, StandInTheOrderOfTheKeys) {
  Texts texts = {"old"};
  EXPECT_TRUE(
      property_list_texts("<dict><key>a</key><string>1</string>"
                          "<key>b</key><string>2</string></dict>",
                          {"b", "none", "a", "b"}, &texts));
  EXPECT_EQ((Texts{"2", std::nullopt, "1", "2"}), texts);
}

TEST(PropertyListTexts, NoKeysGiveNoTexts) {
  Texts texts = {"old"};
  EXPECT_TRUE(property_list_texts("<dict/>", {}, &texts));
  EXPECT_TRUE(texts.empty());
}

TEST(PropertyListTexts, AKeyMuchShorterThanTheOneAskedForIsAnother) {
  const orbtest::BinaryList list{{orbtest::dictionary_object({{1, 2}}),
                                  orbtest::ascii_object("abc"), orbtest::ascii_object("v")}};
  Texts texts;
  EXPECT_TRUE(property_list_texts(list.bytes(), {"ProductBuildVersion"}, &texts));
  EXPECT_EQ(Texts{std::nullopt}, texts);
}

TEST(PropertyListTexts, StayAsTheyWereWithoutAList) {
  for (const std::string& bytes :
       {""s, "\0"s, "bplist00"s, "bplist"s, "plain text"s, "<dict>"s, "{ a = 1; }"s}) {
    Texts texts = {"old"};
    EXPECT_FALSE(property_list_texts(bytes, {"a"}, &texts)) << bytes;
    EXPECT_EQ(Texts{"old"}, texts);
  }
}

struct CodeCase {
  const char* name;
  char32_t code;
  const char* text;  // empty when it is refused
};

class Utf8 : public testing::TestWithParam<CodeCase> {};

TEST_P(Utf8, IsAppended) {
  std::string text;
  EXPECT_EQ(*GetParam().text != 0, append_utf8(GetParam().code, &text));
  EXPECT_EQ(GetParam().text, text);
  EXPECT_TRUE(is_utf8(text));
}

INSTANTIATE_TEST_SUITE_P(Codes, Utf8,
                         testing::Values(CodeCase{"Zero", 0, ""}, CodeCase{"One", 1, "\x01"},
                                         CodeCase{"LastOfOneByte", 0x7F, "\x7F"},
                                         CodeCase{"FirstOfTwo", 0x80, "\xC2\x80"},
                                         CodeCase{"LastOfTwo", 0x7FF, "\xDF\xBF"},
                                         CodeCase{"FirstOfThree", 0x800, "\xE0\xA0\x80"},
                                         CodeCase{"BeforeSurrogates", 0xD7FF, "\xED\x9F\xBF"},
                                         CodeCase{"FirstSurrogate", 0xD800, ""},
                                         CodeCase{"LastSurrogate", 0xDFFF, ""},
                                         CodeCase{"AfterSurrogates", 0xE000, "\xEE\x80\x80"},
                                         CodeCase{"LastOfThree", 0xFFFF, "\xEF\xBF\xBF"},
                                         CodeCase{"FirstOfFour", 0x10000, "\xF0\x90\x80\x80"},
                                         CodeCase{"Last", 0x10FFFF, "\xF4\x8F\xBF\xBF"},
                                         CodeCase{"BeyondTheLast", 0x110000, ""}),
                         [](const auto& row) { return row.param.name; });

struct Utf8TextCase {
  const char* name;
  std::string text;
  bool valid;
};

class Utf8Text : public testing::TestWithParam<Utf8TextCase> {};

TEST_P(Utf8Text, IsChecked) { EXPECT_EQ(GetParam().valid, is_utf8(GetParam().text)); }

INSTANTIATE_TEST_SUITE_P(
    Texts, Utf8Text,
    testing::Values(Utf8TextCase{"Empty", "", true},
                    Utf8TextCase{"Mixed", "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z", true},
                    Utf8TextCase{"ZeroByte", "a\0b"s, false},
                    Utf8TextCase{"LoneFollower", "\x80", false},
                    Utf8TextCase{"CutSequence", "\xE2\x82", false},
                    Utf8TextCase{"FollowerMissing", "\xE2\x82z", false},
                    Utf8TextCase{"TooLongForm", "\xC0\xAF", false},
                    Utf8TextCase{"TooLongFormOfThree", "\xE0\x80\xAF", false},
                    Utf8TextCase{"Surrogate", "\xED\xA0\x80", false},
                    Utf8TextCase{"BeyondTheLast", "\xF4\x90\x80\x80", false},
                    Utf8TextCase{"FiveBytes", "\xF8\x88\x80\x80\x80", false},
                    Utf8TextCase{"AllBits", "\xFF", false}),
    [](const auto& row) { return row.param.name; });

}  // namespace
