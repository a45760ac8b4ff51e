// tests/tools/bars_test.cpp: tools/orbprops/bars.h at every edge of a volume.
#include "tools/orbprops/bars.h"

#include <gtest/gtest.h>

namespace {

struct PartCase {
  const char* name;
  const wchar_t *total, *free;
  std::optional<double> part;
};

class UsedPart : public testing::TestWithParam<PartCase> {};

TEST_P(UsedPart, IsWorkedOutFromTheTexts) {
  const auto part = orbprops::used_part(GetParam().total, GetParam().free);
  ASSERT_EQ(GetParam().part.has_value(), part.has_value());
  if (part) {
    EXPECT_DOUBLE_EQ(*GetParam().part, *part);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Volumes, UsedPart,
    testing::Values(PartCase{"Quarter", L"400.00", L"300.00", 0.25},
                    PartCase{"Empty", L"100.00", L"100.00", 0.0},
                    PartCase{"Full", L"100.00", L"0.00", 1.0},
                    PartCase{"NoSize", L"0.00", L"0.00", std::nullopt},
                    PartCase{"MoreFreeThanThereIs", L"1.00", L"1.01", std::nullopt},
                    PartCase{"NegativeFree", L"1.00", L"-1.00", std::nullopt},
                    PartCase{"UnknownTotal", L"N/A", L"1.00", std::nullopt},
                    PartCase{"UnknownFree", L"1.00", L"N/A", std::nullopt},
                    PartCase{"EmptyText", L"", L"1.00", std::nullopt},
                    PartCase{"NumberWithATail", L"9.00 MB", L"1.00", std::nullopt},
                    PartCase{"NotFinite", L"inf", L"1.00", std::nullopt},
                    PartCase{"NotANumber", L"nan", L"1.00", std::nullopt}),
    [](const auto& row) { return row.param.name; });

TEST(Bars, PercentIsRoundedToTheNearest) {
  EXPECT_EQ("0%", orbprops::percent(0.004));
  EXPECT_EQ("1%", orbprops::percent(0.006));
  EXPECT_EQ("52%", orbprops::percent(0.52));
  EXPECT_EQ("100%", orbprops::percent(1));
}

struct BarCase {
  const char* name;
  double part;
  size_t columns;
  const char* bar;
};

class Bar : public testing::TestWithParam<BarCase> {};

TEST_P(Bar, IsDrawnInAscii) {
  orbprops::Style style;
  style.charset = orbprops::Charset::ascii;
  EXPECT_EQ(GetParam().bar, orbprops::bar(GetParam().part, GetParam().columns, style));
}

INSTANTIATE_TEST_SUITE_P(Parts, Bar,
                         testing::Values(BarCase{"Half", 0.5, 12, "[#####-----]"},
                                         BarCase{"Empty", 0, 12, "[----------]"},
                                         BarCase{"Full", 1, 12, "[##########]"},
                                         BarCase{"LittleFillsOne", 0.001, 12, "[#---------]"},
                                         BarCase{"NearlyFullLeavesOne", 0.999, 12, "[#########-]"},
                                         BarCase{"OneColumnBelowFullStaysFree", 0.7, 3, "[-]"},
                                         BarCase{"BelowThreeColumnsIsNothing", 0.5, 2, ""},
                                         BarCase{"PartAboveOneIsFull", 1.5, 6, "[####]"},
                                         BarCase{"PartBelowNothingIsEmpty", -1, 6, "[----]"}),
                         [](const auto& row) { return row.param.name; });

TEST(Bars, BlocksForReadersOfUnicode) {
  const orbprops::Style style;
  EXPECT_EQ("[\u2588\u2588\u2591\u2591]", orbprops::bar(0.5, 6, style));
}

TEST(Bars, ColourTellsHowFull) {
  orbprops::Style style;
  style.charset = orbprops::Charset::ascii;
  style.colour = true;
  EXPECT_EQ("[\x1b[32m##\x1b[0m\x1b[2m--\x1b[0m]", orbprops::bar(0.5, 6, style));
  EXPECT_EQ("[\x1b[33m###\x1b[0m\x1b[2m-\x1b[0m]", orbprops::bar(0.75, 6, style));
  EXPECT_EQ("[\x1b[33m###\x1b[0m\x1b[2m-\x1b[0m]", orbprops::bar(0.89, 6, style));
  EXPECT_EQ("[\x1b[31m###\x1b[0m\x1b[2m-\x1b[0m]", orbprops::bar(0.90, 6, style));
}

}  // namespace
