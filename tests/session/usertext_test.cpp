// tests/session/usertext_test.cpp: trimming, splitting, lower case, full names and the list limit.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "session/collect.h"
#include "session/loggedonusers.h"
#include "tests/support/latin_locale.h"
#include "tests/support/scoped_locale.h"

namespace {

using namespace quillon_com::orb::session;
using Parts = std::vector<std::string>;

struct TrimCase {
  const char* name;
  const char* text;
  const char* result;
};

class Trimmer : public testing::TestWithParam<TrimCase> {};

TEST_P(Trimmer, KeepsFromFirstToLastLetterOrDigit) {
  orbtest::ScopedLocale locale("C");
  EXPECT_EQ(GetParam().result, trimmer(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Trimmer,
    testing::Values(TrimCase{"Empty", "", ""}, TrimCase{"Null", nullptr, ""},
                    TrimCase{"NothingToTrim", "corp", "corp"},
                    TrimCase{"BlanksAndSeparator", "  corp.example|", "corp.example"},
                    TrimCase{"LineEnds", "\r\ncorp\r\n", "corp"},
                    TrimCase{"AnyPunctuation", "!_-corp;\"'@", "corp"},
                    TrimCase{"InnerOnesStay", " a - b ", "a - b"},
                    TrimCase{"DigitsCount", "-1-", "1"}, TrimCase{"OneLetter", "x", "x"},
                    TrimCase{"NoLetterOrDigit", " |.- ", ""}, TrimCase{"OneBlank", " ", ""},
                    TrimCase{"HighBytesAreTrimmed",
                             "\xC3\xA9"
                             "a\xFF",
                             "a"}),
    [](const auto& row) { return row.param.name; });

TEST(UserText, LettersAreThoseOfTheLocale) {
  const orbtest::LatinLocale latin;
  if (!latin.set()) GTEST_SKIP() << "needs localedef and the package locales";
  EXPECT_EQ("\xE9t\xFF", trimmer(" \xE9t\xFF|"));
  std::string name = "\xC9T\xBE";
  toLower(name);
  EXPECT_EQ("\xE9t\xFF", name);
}

struct SplitCase {
  const char* name;
  const char* text;
  char delimiter;
  Parts parts;
};

class Split : public testing::TestWithParam<SplitCase> {};

TEST_P(Split, Appends) {
  Parts parts{"before"};
  split(GetParam().text, GetParam().delimiter, parts);
  Parts expected{"before"};
  expected.insert(expected.end(), GetParam().parts.begin(), GetParam().parts.end());
  EXPECT_EQ(expected, parts);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Split,
    testing::Values(SplitCase{"Pieces", "a|b|c", '|', {"a", "b", "c"}},
                    SplitCase{"QuirkNoDelimiterAppendsNothing", "abc", '|', {}},
                    SplitCase{"QuirkEmptyTextAppendsNothing", "", '|', {}},
                    SplitCase{"EmptyRemainder", "a|", '|', {"a", ""}},
                    SplitCase{"EmptyFront", "|a", '|', {"", "a"}},
                    SplitCase{"DelimiterAlone", "|", '|', {"", ""}},
                    SplitCase{"EmptyBetween", "a||b", '|', {"a", "", "b"}},
                    SplitCase{"OnlyTheDelimiterSplits", "a,b|c", ',', {"a", "b|c"}},
                    SplitCase{"HighByteDelimiter",
                              "a\xFF"
                              "b",
                              '\xFF',
                              {"a", "b"}}),
    [](const auto& row) { return row.param.name; });

TEST(SplitAliases, TextMayBeOneOfTheParts) {
  Parts parts{"a|b|c|d|e|f|g|h"};
  parts.shrink_to_fit();
  split(parts[0], '|', parts);
  EXPECT_EQ((Parts{"a|b|c|d|e|f|g|h", "a", "b", "c", "d", "e", "f", "g", "h"}), parts);
}

TEST(SplitBytes, ZeroBytesAreLikeOthers) {
  Parts parts;
  split(std::string("a\0b|c", 5), '|', parts);
  EXPECT_EQ((Parts{std::string("a\0b", 3), "c"}), parts);
  parts.clear();
  split(std::string("a\0b", 3), '\0', parts);
  EXPECT_EQ((Parts{"a", "b"}), parts);
}

TEST(ToLower, MapsEachByteInPlace) {
  for (const char* name : {"C", "C.utf8"}) {
    orbtest::ScopedLocale locale(name);
    std::string text("CORP\\JDoe-09[]\xC3\x89\xFF\0Z", 20);
    text.resize(19);
    toLower(text);
    EXPECT_EQ(std::string("corp\\jdoe-09[]\xC3\x89\xFF\0z", 19), text) << name;
  }
  std::string empty;
  toLower(empty);
  EXPECT_EQ("", empty);
}

struct NameCase {
  const char* name;
  const wchar_t *full, *domain, *user;
};

class FullName : public testing::TestWithParam<NameCase> {};

TEST_P(FullName, Splits) {
  std::wstring full = GetParam().full;
  std::wstring domain = L"old";
  std::wstring user = L"old";
  parseFullUserName(full, domain, user);
  EXPECT_EQ(GetParam().full, full);
  EXPECT_EQ(GetParam().domain, domain);
  EXPECT_EQ(GetParam().user, user);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FullName,
    testing::Values(NameCase{"DomainAndUser", L"CORP\\jdoe", L"CORP", L"jdoe"},
                    NameCase{"WithoutBackslash", L"JDoe", L"", L"JDoe"},
                    NameCase{"AtIsPartOfTheUser", L"jdoe@corp.example", L"", L"jdoe@corp.example"},
                    NameCase{"FirstBackslashDivides", L"a\\b\\c", L"a", L"b\\c"},
                    NameCase{"EmptyDomain", L"\\jdoe", L"", L"jdoe"},
                    NameCase{"EmptyUser", L"CORP\\", L"CORP", L""},
                    NameCase{"BackslashAlone", L"\\", L"", L""}, NameCase{"Empty", L"", L"", L""},
                    NameCase{"SlashDoesNotDivide", L"CORP/jdoe", L"", L"CORP/jdoe"},
                    NameCase{"WideCharacters", L"\x20AC\\\x1F600", L"\x20AC", L"\x1F600"}),
    [](const auto& row) { return row.param.name; });

TEST(FullNameAliases, OneStringForSeveral) {
  std::wstring name = L"CORP\\jdoe";
  std::wstring domain;
  parseFullUserName(name, domain, name);
  EXPECT_EQ(L"CORP", domain);
  EXPECT_EQ(L"jdoe", name);
  std::wstring whole = L"CORP\\jdoe";
  std::wstring user;
  parseFullUserName(whole, whole, user);
  EXPECT_EQ(L"CORP", whole);
  EXPECT_EQ(L"jdoe", user);
}

std::string limited(std::string users) {
  limit_user_list(&users);
  return users;
}

TEST(ListLimit, ShorterListsStay) {
  EXPECT_EQ("", limited(""));
  EXPECT_EQ("a,b", limited("a,b"));
  const std::string longest = "a," + std::string(125, 'b');
  ASSERT_EQ(127U, longest.size());
  EXPECT_EQ(longest, limited(longest));
}

TEST(ListLimit, QuirkExactly128IsCut) {
  const std::string list = "abc," + std::string(124, 'd');
  ASSERT_EQ(128U, list.size());
  EXPECT_EQ("abc,...", limited(list));
}

TEST(ListLimit, OneNameIsCutWithoutMark) {
  EXPECT_EQ(std::string(128, 'a'), limited(std::string(128, 'a')));
  EXPECT_EQ(std::string(128, 'a'), limited(std::string(130, 'a')));
}

TEST(ListLimit, CommasBehindTheLimitDoNotCount) {
  EXPECT_EQ(std::string(128, 'a'), limited(std::string(128, 'a') + ",b"));
  EXPECT_EQ("x,...", limited("x," + std::string(126, 'a') + ",b"));
}

// One comma at every place of 128 and of 200 bytes: the mark needs four bytes from it to the end.
TEST(ListLimit, QuirkMarkNeedsFourBytes) {
  for (size_t length : {size_t{128}, size_t{129}, size_t{200}}) {
    for (size_t comma = 0; comma < 128; ++comma) {
      std::string list(length, 'a');
      list[comma] = ',';
      const std::string expected =
          comma <= 124 ? list.substr(0, comma) + ",..." : list.substr(0, 128);
      EXPECT_EQ(expected, limited(list)) << length << " " << comma;
      EXPECT_GE(128U, limited(list).size());
    }
  }
}

TEST(ListLimit, QuirkOnlyTheLastCommaCounts) {
  std::string list(140, 'a');
  list[50] = ',';
  list[126] = ',';
  EXPECT_EQ(list.substr(0, 128), limited(list));
  list[126] = 'a';
  list[124] = ',';
  EXPECT_EQ(list.substr(0, 124) + ",...", limited(list));
}

}  // namespace
