// tests/fileutil/localetext_test.cpp: voxStandardUtoA and voxStandardAtoU.
#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <string>

#include "fileutil/conversions.h"
#include "tests/support/latin_locale.h"
#include "tests/support/scoped_locale.h"

namespace {

using orbtest::ScopedLocale;

struct NarrowCase {
  const char* name;
  const char* locale;
  std::wstring source;
  int count;
  int result;
  std::string buffer;  // the first bytes of a buffer of '?' afterwards
};

class ToLocale : public testing::TestWithParam<NarrowCase> {};

TEST_P(ToLocale, Writes) {
  ScopedLocale locale(GetParam().locale);
  ASSERT_TRUE(locale.set());
  std::string buffer(16, '?');
  EXPECT_EQ(GetParam().result,
            voxStandardUtoA(GetParam().source.c_str(), GetParam().count, buffer.data()));
  std::string expected = GetParam().buffer;
  expected.resize(16, '?');
  EXPECT_EQ(expected, buffer);
}

const std::string kZero(1, '\0');

INSTANTIATE_TEST_SUITE_P(
    Rows, ToLocale,
    testing::Values(NarrowCase{"WithTerminator", "C", L"abc", 16, 3, "abc" + kZero},
                    NarrowCase{"Empty", "C", L"", 16, 0, kZero},
                    NarrowCase{"RoomForTerminatorExactly", "C", L"abc", 4, 3, "abc" + kZero},
                    NarrowCase{"CutShortIsNotTerminated", "C", L"abc", 3, 3, "abc"},
                    NarrowCase{"CutAtCount", "C", L"abc", 2, 2, "ab"},
                    NarrowCase{"CountZeroWritesNothing", "C", L"abc", 0, 0, ""},
                    NarrowCase{"NegativeCountIsNoLimit", "C", L"abc", -1, 3, "abc" + kZero},
                    NarrowCase{"LeastCountIsNoLimit", "C", L"abc", INT_MIN, 3, "abc" + kZero},
                    NarrowCase{"NegativeCountOfEmptyText", "C", L"", -2, 0, kZero},
                    NarrowCase{"MultibyteInUtf8", "C.utf8", L"\u00e9\u20ac", 16, 5,
                               "\xC3\xA9\xE2\x82\xAC" + kZero},
                    NarrowCase{"MultibyteWithNegativeCount", "C.utf8", L"\U0001F600\u00e9", -1000,
                               6, "\xF0\x9F\x98\x80\xC3\xA9" + kZero},
                    NarrowCase{"CharacterThatDoesNotFitIsLeftOut", "C.utf8", L"a\u20ac", 3, 1, "a"},
                    NarrowCase{"NotInLocaleIsFailureBehindItsPrefix", "C", L"ab\u20ac", 16, 0,
                               "ab"},
                    NarrowCase{"NotInLocaleWithNegativeCount", "C", L"ab\u20ac", -1, 0, "ab"}),
    [](const auto& row) { return row.param.name; });

struct WideCase {
  const char* name;
  const char* locale;
  std::string source;
  int count;
  int result;
  std::wstring buffer;
};

class FromLocale : public testing::TestWithParam<WideCase> {};

TEST_P(FromLocale, Writes) {
  ScopedLocale locale(GetParam().locale);
  ASSERT_TRUE(locale.set());
  std::wstring buffer(16, L'?');
  EXPECT_EQ(GetParam().result,
            voxStandardAtoU(GetParam().source.c_str(), GetParam().count, buffer.data()));
  std::wstring expected = GetParam().buffer;
  expected.resize(16, L'?');
  EXPECT_EQ(expected, buffer);
}

const std::wstring kWideZero(1, L'\0');

INSTANTIATE_TEST_SUITE_P(
    Rows, FromLocale,
    testing::Values(WideCase{"WithTerminator", "C", "abc", 16, 3, L"abc" + kWideZero},
                    WideCase{"Empty", "C", "", 16, 0, kWideZero},
                    WideCase{"RoomForTerminatorExactly", "C", "abc", 4, 3, L"abc" + kWideZero},
                    WideCase{"CutShortIsNotTerminated", "C", "abc", 3, 3, L"abc"},
                    WideCase{"CutAtCount", "C", "abc", 1, 1, L"a"},
                    WideCase{"CountZeroWritesNothing", "C", "abc", 0, 0, L""},
                    WideCase{"NegativeCountIsNoLimit", "C", "abc", -1, 3, L"abc" + kWideZero},
                    WideCase{"LeastCountIsNoLimit", "C", "abc", INT_MIN, 3, L"abc" + kWideZero},
                    WideCase{"MultibyteInUtf8", "C.utf8", "\xC3\xA9\xE2\x82\xAC", 16, 2,
                             L"\u00e9\u20ac" + kWideZero},
                    WideCase{"MultibyteWithNegativeCount", "C.utf8", "\xF0\x9F\x98\x80", -7, 1,
                             L"\U0001F600" + kWideZero},
                    WideCase{"CountIsInCharacters", "C.utf8", "\xC3\xA9\xC3\xA9\xC3\xA9", 2, 2,
                             L"\u00e9\u00e9"},
                    WideCase{"InvalidIsFailureBehindItsPrefix", "C.utf8", "ab\xFF", 16, 0, L"ab"},
                    WideCase{"InvalidWithNegativeCount", "C.utf8", "ab\xFF", -1, 0, L"ab"}),
    [](const auto& row) { return row.param.name; });

TEST(LocaleText, FollowsTheLocaleOfTheProcess) {
  const orbtest::LatinLocale latin;
  if (!latin.set()) GTEST_SKIP() << "needs localedef and the package locales";
  char narrow[8];
  wchar_t wide[8];
  EXPECT_EQ(2, voxStandardUtoA(L"\x20AC\xE9", 8, narrow));
  EXPECT_STREQ("\xA4\xE9", narrow);
  EXPECT_EQ(2, voxStandardAtoU("\xA4\xE9", -1, wide));
  EXPECT_STREQ(L"\x20AC\xE9", wide);
}

TEST(LocaleText, FailureLeavesTheLibrarysErrno) {
  ScopedLocale locale("C");
  char narrow[8];
  errno = 0;
  EXPECT_EQ(0, voxStandardUtoA(L"\u20ac", 8, narrow));
  EXPECT_EQ(EILSEQ, errno);
}

TEST(LocaleText, InvalidSequenceLeavesTheLibrarysErrno) {
  ScopedLocale locale("C.utf8");
  wchar_t wide[8];
  errno = 0;
  EXPECT_EQ(0, voxStandardAtoU("\xC3(", 8, wide));
  EXPECT_EQ(EILSEQ, errno);
}

TEST(LocaleText, SuccessLeavesErrno) {
  ScopedLocale locale("C");
  char narrow[8];
  wchar_t wide[8];
  errno = 77;
  EXPECT_EQ(1, voxStandardUtoA(L"a", 8, narrow));
  EXPECT_EQ(1, voxStandardAtoU("a", -1, wide));
  EXPECT_EQ(77, errno);
}

TEST(LocaleText, EveryCallStartsAfresh) {
  ScopedLocale locale("C.utf8");
  wchar_t wide[8];
  EXPECT_EQ(0, voxStandardAtoU("\xE2\x82", 8, wide));  // ends inside a character
  EXPECT_EQ(1, voxStandardAtoU("a", 8, wide));
  EXPECT_EQ(L'a', wide[0]);
}

TEST(LocaleText, NullDestinationTellsTheNeed) {
  ScopedLocale locale("C.utf8");
  EXPECT_EQ(3, voxStandardUtoA(L"\u20ac", 0, nullptr));
  EXPECT_EQ(1, voxStandardAtoU("\xE2\x82\xAC", 0, nullptr));
}

TEST(LocaleText, NullSourceGivesNothing) {
  char narrow[] = "kept";
  wchar_t wide[] = L"kept";
  EXPECT_EQ(0, voxStandardUtoA(nullptr, 5, narrow));
  EXPECT_EQ(0, voxStandardAtoU(nullptr, 5, wide));
  EXPECT_STREQ("kept", narrow);
  EXPECT_STREQ(L"kept", wide);
}

TEST(LocaleText, TheLibrarySetsNoLocale) {
  ScopedLocale locale("C");
  char narrow[8];
  voxStandardUtoA(L"a", 8, narrow);
  EXPECT_STREQ("C", setlocale(LC_ALL, nullptr));
}

}  // namespace
