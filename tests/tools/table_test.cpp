// tests/tools/table_test.cpp: tools/orbprops/table.h with and without a window.
#include "tools/orbprops/table.h"

#include <gtest/gtest.h>

namespace {

using orbprops::Cell;
using orbprops::Charset;
using orbprops::Style;

Cell cell(std::string_view text) { return orbprops::glyphs(text, Charset::utf8); }

Style window(size_t columns) {
  Style style;
  style.terminal = true;
  style.columns = columns;
  return style;
}

struct WrapCase {
  const char* name;
  const char* text;
  size_t room;
  std::vector<std::string> lines;
};

class Wrap : public testing::TestWithParam<WrapCase> {};

TEST_P(Wrap, BreaksIntoLines) {
  std::vector<std::string> lines;
  for (const auto& line : orbprops::wrap(cell(GetParam().text), GetParam().room)) {
    lines.push_back(line.bytes);
  }
  EXPECT_EQ(GetParam().lines, lines);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Wrap,
    testing::Values(
        WrapCase{"EmptyIsOneLine", "", 5, {""}}, WrapCase{"FitsExactly", "abcde", 5, {"abcde"}},
        WrapCase{"WithoutLimit", "abc def", 0, {"abc def"}},
        WrapCase{"BehindABlank", "abc def", 5, {"abc ", "def"}},
        WrapCase{"BehindTheLastBlankThatFits", "a b c d", 4, {"a b ", "c d"}},
        WrapCase{"HardWithoutABlank", "abcdefg", 3, {"abc", "def", "g"}},
        WrapCase{"WideCharactersCountTwice", "\u65e5\u672c\u8a9e", 5, {"\u65e5\u672c", "\u8a9e"}},
        WrapCase{"MarkStaysWithItsLetter", "ae\u0301b", 2, {"ae\u0301", "b"}},
        WrapCase{"PieceWiderThanTheRoom", "\u65e5\u672c", 1, {"\u65e5", "\u672c"}}),
    [](const auto& row) { return row.param.name; });

TEST(Pairs, ValuesStandInOneColumn) {
  EXPECT_EQ(
      "  Key      value\n"
      "  Longer   other\n",
      orbprops::pair_lines({{"Key", cell("value")}, {"Longer", cell("other")}}, 2, 7, Style()));
}

TEST(Pairs, KeyLongerThanItsColumnMovesItsValue) {
  EXPECT_EQ("Longest  v\n", orbprops::pair_lines({{"Longest", cell("v")}}, 0, 3, Style()));
}

TEST(Pairs, EmptyValueLeavesNoBlanksBehindTheKey) {
  EXPECT_EQ("  Key\n", orbprops::pair_lines({{"Key", {}}}, 2, 7, Style()));
}

TEST(Pairs, LongValueIsContinuedBelowItself) {
  EXPECT_EQ(
      "Key  one two\n"
      "     three four\n",
      orbprops::pair_lines({{"Key", cell("one two three four")}}, 0, 3, window(17)));
}

TEST(Pairs, ValueStandsBelowItsKeyInANarrowWindow) {
  EXPECT_EQ("Key\n  abcdefghijklmn\n  op\n",
            orbprops::pair_lines({{"Key", cell("abcdefghijklmnop")}}, 0, 3, window(16)));
}

orbprops::Table sample() {
  return {{{"NAME"}, {"SIZE", true}, {"NOTE"}},
          {{cell("a"), cell("1"), cell("x")}, {cell("bcdef"), cell("12345"), cell("")}}};
}

TEST(Table, ColumnsAreAlignedAndLinesEndWithoutBlanks) {
  EXPECT_EQ(
      "NAME    SIZE  NOTE\n"
      "a          1  x\n"
      "bcdef  12345\n",
      orbprops::table_lines(sample(), 0, Style()));
  EXPECT_EQ(18U, orbprops::table_columns(sample()));
}

TEST(Table, WideAndInvalidNamesKeepTheColumns) {
  const orbprops::Table table{{{"NAME"}, {"N", true}},
                              {{cell("\u65e5\u672c"), cell("1")},
                               {cell("e\u0301t\u00e9"), cell("2")},
                               {cell("\x1b"), cell("3")},
                               {cell("\xff"), cell("4")}}};
  EXPECT_EQ(
      "NAME  N\n"
      "\u65e5\u672c  1\n"
      "e\u0301t\u00e9   2\n"
      "\\x1b  3\n"
      "\\xff  4\n",
      orbprops::table_lines(table, 0, Style()));
}

TEST(Table, FitsAWindowOfItsWidth) {
  EXPECT_EQ(0U, orbprops::table_lines(sample(), 2, window(20)).find("  NAME    SIZE"));
}

TEST(Table, IsStackedInANarrowerWindow) {
  EXPECT_EQ(
      "  NAME\n    a\n"
      "  SIZE\n    1\n"
      "  NOTE\n    x\n"
      "\n"
      "  NAME\n    bcdef\n"
      "  SIZE\n    12345\n"
      "  NOTE\n",
      orbprops::table_lines(sample(), 2, window(19)));
}

TEST(Table, StackedRowsLeaveColumnsWithoutATitleOut) {
  const orbprops::Table table{{{"NAME"}, {""}}, {{cell(std::string(30, 'n')), cell("[##--]")}}};
  EXPECT_EQ("NAME  " + std::string(24, 'n') + "\n      nnnnnn\n",
            orbprops::table_lines(table, 0, window(30)));
}

TEST(Table, TitlesArePaintedWithoutMovingTheColumns) {
  Style style;
  style.colour = true;
  EXPECT_EQ(
      "\x1b[1mA\x1b[0m     \x1b[1mB\x1b[0m\n"
      "wide  x\n",
      orbprops::table_lines({{{"A"}, {"B"}}, {{cell("wide"), cell("x")}}}, 0, style));
}

}  // namespace
