// tests/tools/nearest_test.cpp: tools/orbprops/nearest.h on slips of the keyboard.
#include "tools/orbprops/nearest.h"

#include <gtest/gtest.h>

namespace {

struct DistanceCase {
  const char* name;
  const char *a, *b;
  size_t steps;
};

class Distance : public testing::TestWithParam<DistanceCase> {};

TEST_P(Distance, CountsSteps) {
  EXPECT_EQ(GetParam().steps, orbprops::edit_distance(GetParam().a, GetParam().b));
  EXPECT_EQ(GetParam().steps, orbprops::edit_distance(GetParam().b, GetParam().a));
}

INSTANTIATE_TEST_SUITE_P(Words, Distance,
                         testing::Values(DistanceCase{"Same", "OSType", "OSType", 0},
                                         DistanceCase{"LetterCaseIsLeftAside", "ostype", "OSType",
                                                      0},
                                         DistanceCase{"Missing", "OSTpe", "OSType", 1},
                                         DistanceCase{"Replaced", "OSTybe", "OSType", 1},
                                         DistanceCase{"NeighboursSwapped", "OSTpye", "OSType", 1},
                                         DistanceCase{"SwapAtTheStart", "SOType", "OSType", 1},
                                         DistanceCase{"Several", "kitten", "sitting", 3},
                                         DistanceCase{"FromNothing", "", "abc", 3},
                                         DistanceCase{"BothEmpty", "", "", 0}),
                         [](const auto& row) { return row.param.name; });

TEST(Nearest, LongTextsAreFarFromEverything) {
  const std::string at_limit(64, 'a');
  EXPECT_EQ(1U, orbprops::edit_distance(at_limit, at_limit.substr(1)));
  EXPECT_EQ(64U, orbprops::edit_distance(at_limit + "a", at_limit));
  EXPECT_EQ(64U, orbprops::edit_distance(std::string(1000000, 'a'), "a"));
}

TEST(Nearest, PicksTheFirstOfTheClosest) {
  const std::vector<std::string_view> words = {"SubnetMask", "OSType", "CPUType"};
  EXPECT_EQ("OSType", orbprops::nearest("OSTyp", words));
  EXPECT_EQ("CPUType", orbprops::nearest("cputype", words));
  EXPECT_EQ("SubnetMask", orbprops::nearest("SubnetMsak", words));
  EXPECT_EQ("", orbprops::nearest("Humidity", words));
  EXPECT_EQ("b", orbprops::nearest("a", {"b", "c"}));
  EXPECT_EQ("", orbprops::nearest("a", {}));
}

TEST(Nearest, ForgivesAThirdOfTheWord) {
  EXPECT_EQ("abcdefghi", orbprops::nearest("abcdefxyz", {"abcdefghi"}));  // 3 of 9
  EXPECT_EQ("", orbprops::nearest("abcdewxyz", {"abcdefghi"}));           // 4 of 9
  EXPECT_EQ("", orbprops::nearest("xyz", {"abc"}));                       // 3, two forgiven
}

TEST(Nearest, TakesABeginningWhenNoneIsNearEnough) {
  const std::vector<std::string_view> words = {"OSPlatform", "OSBuildNum", "OSBuildDate"};
  EXPECT_EQ("OSBuildNum", orbprops::nearest("osbuild", words));  // 3 steps, two forgiven
  EXPECT_EQ("OSPlatform", orbprops::nearest("OSP", words));
  EXPECT_EQ("", orbprops::nearest("OS", words));
  EXPECT_EQ("", orbprops::nearest("Build", words));
}

}  // namespace
