// tests/fileutil/charclass_test.cpp: the exported isalnum, isspace, tolower and toupper.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>

#include "fileutil/conversions.h"
#include "tests/support/latin_locale.h"
#include "tests/support/scoped_locale.h"

namespace {

using Function = int (*)(int);

// The functions as a program links them, past every inline form and macro.
struct Functions {
  Function alnum, space, lower, upper;
};

Functions ours() { return {(isalnum), (isspace), (tolower), (toupper)}; }

Functions librarys() {
  void* library = dlopen("libc.so.6", RTLD_NOW | RTLD_NOLOAD);
  const auto find = [library](const char* name) {
    return reinterpret_cast<Function>(dlsym(library, name));
  };
  return {find("isalnum"), find("isspace"), find("tolower"), find("toupper")};
}

void expect_same(const char* locale) {
  const Functions here = ours();
  const Functions there = librarys();
  ASSERT_NE(nullptr, there.alnum);
  ASSERT_NE(here.alnum, there.alnum) << "the library's own would be compared with itself";
  for (int c = EOF; c <= 255; ++c) {
    EXPECT_EQ(there.alnum(c) != 0, here.alnum(c) != 0) << locale << " " << c;
    EXPECT_EQ(there.space(c) != 0, here.space(c) != 0) << locale << " " << c;
    EXPECT_EQ(there.lower(c), here.lower(c)) << locale << " " << c;
    EXPECT_EQ(there.upper(c), here.upper(c)) << locale << " " << c;
  }
}

TEST(CharacterClass, AgreesWithTheLibraryInItsLocales) {
  for (const char* name : {"C", "C.utf8"}) {
    orbtest::ScopedLocale locale(name);
    ASSERT_TRUE(locale.set()) << name;
    expect_same(name);
  }
}

TEST(CharacterClass, FollowsTheLocaleOfTheProcess) {
  const orbtest::LatinLocale latin;
  if (!latin.set()) GTEST_SKIP() << "needs localedef and the package locales";
  expect_same("latin");
  EXPECT_NE(0, ours().alnum(0xE9));
  EXPECT_EQ(0xC9, ours().upper(0xE9));
  EXPECT_EQ(0xBE, ours().upper(0xFF));  // the last byte is no end of file
  EXPECT_EQ(0xE9, ours().lower(0xC9));
}

TEST(CharacterClass, AsciiByHand) {
  orbtest::ScopedLocale locale("C");
  const Functions f = ours();
  for (int c = 0; c <= 255; ++c) {
    const bool lower = c >= 'a' && c <= 'z';
    const bool upper = c >= 'A' && c <= 'Z';
    const bool digit = c >= '0' && c <= '9';
    EXPECT_EQ(lower || upper || digit, f.alnum(c) != 0) << c;
    EXPECT_EQ(c == ' ' || (c >= '\t' && c <= '\r'), f.space(c) != 0) << c;
    EXPECT_EQ(upper ? c + 32 : c, f.lower(c)) << c;
    EXPECT_EQ(lower ? c - 32 : c, f.upper(c)) << c;
  }
  EXPECT_EQ(0, f.alnum(EOF));
  EXPECT_EQ(EOF, f.lower(EOF));
}

TEST(CharacterClass, ValuesOutsideTheTableAreInNoClass) {
  const Functions f = ours();
  for (int c : {256, 1000, -129, -100000, 0x7FFFFFFF, -0x7FFFFFFF}) {
    EXPECT_EQ(0, f.alnum(c)) << c;
    EXPECT_EQ(0, f.space(c)) << c;
    EXPECT_EQ(c, f.lower(c)) << c;
    EXPECT_EQ(c, f.upper(c)) << c;
  }
}

}  // namespace
