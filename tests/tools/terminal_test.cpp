// tests/tools/terminal_test.cpp: tools/orbprops/terminal.h on variables and descriptors.
#include "tools/orbprops/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

struct WidthCase {
  const char* name;
  const char* variable;
  unsigned window;
  size_t columns;
};

class Width : public testing::TestWithParam<WidthCase> {};

TEST_P(Width, IsTakenFromTheFirstThatTells) {
  EXPECT_EQ(GetParam().columns, orbprops::usable_columns(GetParam().variable, GetParam().window));
}

INSTANTIATE_TEST_SUITE_P(Sources, Width,
                         testing::Values(WidthCase{"VariableBeforeWindow", "132", 100, 132},
                                         WidthCase{"WindowWithoutVariable", nullptr, 100, 100},
                                         WidthCase{"EightyWithoutEither", nullptr, 0, 80},
                                         WidthCase{"EmptyVariableIsPassedOver", "", 90, 90},
                                         WidthCase{"WordIsPassedOver", "wide", 90, 90},
                                         WidthCase{"NumberWithATailIsPassedOver", "120x", 90, 90},
                                         WidthCase{"NegativeIsPassedOver", "-5", 90, 90},
                                         WidthCase{"BlankIsPassedOver", " 70", 90, 90},
                                         WidthCase{"ZeroIsPassedOver", "0", 90, 90},
                                         WidthCase{"TinyIsTwenty", "1", 90, 20},
                                         WidthCase{"TinyWindowIsTwenty", nullptr, 3, 20},
                                         WidthCase{"HugeIsAThousand", "100000", 90, 1000},
                                         WidthCase{"BeyondEveryNumberIsAThousand",
                                                   "99999999999999999999999", 90, 1000},
                                         WidthCase{"HugeWindowIsAThousand", nullptr, 65535, 1000}),
                         [](const auto& row) { return row.param.name; });

struct ColourCase {
  const char* name;
  const char *no_color, *term;
  bool colour;
};

class Colour : public testing::TestWithParam<ColourCase> {};

TEST_P(Colour, FollowsTheEnvironment) {
  EXPECT_EQ(GetParam().colour, orbprops::wants_colour(GetParam().no_color, GetParam().term));
}

INSTANTIATE_TEST_SUITE_P(Environments, Colour,
                         testing::Values(ColourCase{"Terminal", nullptr, "xterm", true},
                                         ColourCase{"EmptyNoColor", "", "xterm", true},
                                         ColourCase{"NoColor", "1", "xterm", false},
                                         ColourCase{"NoColorOfAnyText", "0", "xterm", false},
                                         ColourCase{"Dumb", nullptr, "dumb", false},
                                         ColourCase{"Nameless", nullptr, "", false},
                                         ColourCase{"WithoutTerm", nullptr, nullptr, false}),
                         [](const auto& row) { return row.param.name; });

TEST(Terminal, FileHasNoLimitAndNoColours) {
  const int fd = open("/dev/null", O_WRONLY);
  ASSERT_NE(-1, fd);
  const orbprops::Style style = orbprops::style_of(fd);
  close(fd);
  EXPECT_FALSE(style.terminal);
  EXPECT_FALSE(style.colour);
  EXPECT_EQ(0U, style.columns);
  EXPECT_EQ(orbprops::Charset::utf8, style.charset);
}

TEST(Terminal, PaintWrapsTextOnlyWhereThereAreColours) {
  orbprops::Style style;
  EXPECT_EQ("a", orbprops::paint("a", orbprops::Ink::bad, style));
  style.colour = true;
  EXPECT_EQ("\x1b[31ma\x1b[0m", orbprops::paint("a", orbprops::Ink::bad, style));
  EXPECT_EQ("\x1b[1mb\x1b[0m", orbprops::paint("b", orbprops::Ink::title, style));
  EXPECT_EQ("", orbprops::paint("", orbprops::Ink::bad, style));
}

}  // namespace
