// tests/fileutil/wildcard_test.cpp: the wildcard matcher, rule by rule and beside its plain form.
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <string>
#include <vector>

#include "fileutil/dirent.h"
#include "tests/support/plain_wildcard.h"

namespace {

constexpr int kMatch = 0;
constexpr int kNoMatch = 1;

struct Row {
  const char* rule;
  const char* pattern;
  const char* name;
  int result;
};

const Row kRows[] = {
    {"QuirkNullPatternMatches", nullptr, "x", kMatch},
    {"QuirkNullPatternMatchesNull", nullptr, nullptr, kMatch},
    {"QuirkEmptyPatternMatches", "", "x", kMatch},
    {"EmptyPatternMatchesEmptyName", "", "", kMatch},
    {"NullNameIsEmptyForAByte", "a", nullptr, kNoMatch},
    {"NullNameIsEmptyForAStar", "*b", nullptr, kMatch},
    {"SameBytesMatch", "abc", "abc", kMatch},
    {"OtherFirstByte", "abc", "xbc", kNoMatch},
    {"OtherLastByte", "abc", "abx", kNoMatch},
    {"CaseMatters", "a", "A", kNoMatch},
    {"QuirkPrefixOfTheNameMatches", "abc", "abcd", kMatch},
    {"NameThatIsAPrefixOfThePatternDoesNot", "abcd", "abc", kNoMatch},
    {"QuestionMarkIsOneByte", "a?c", "abc", kMatch},
    {"QuestionMarkIsNotNothing", "?", "", kNoMatch},
    {"QuestionMarkAtTheEndIsNotNothing", "ab?", "ab", kNoMatch},
    {"QuestionMarkTakesOneByteOnly", "a?c", "abbc", kNoMatch},
    {"QuirkQuestionMarksArePrefixesToo", "??", "abc", kMatch},
    {"QuestionMarkIsAByteOfACharacter", "\xC3?x", "\xC3\xA9x", kMatch},
    {"CharacterOfTwoBytesIsNotOneQuestionMark", "?x", "\xC3\xA9x", kNoMatch},
    {"HighBytesAreCompared", "\xFF\x80", "\xFF\x81", kNoMatch},
    {"HighBytesMatch", "*\xFF", "a\xFF", kMatch},
    {"StarMatchesAll", "*", "anything", kMatch},
    {"StarMatchesEmpty", "*", "", kMatch},
    {"StarStandsForNoByte", "a*b", "ab", kMatch},
    {"StarStandsForOneByte", "a*b", "axb", kMatch},
    {"StarStandsForManyBytes", "a*b", "axyzb", kMatch},
    {"BytesBeforeAStarMustMatch", "a*b", "xab", kNoMatch},
    {"WhatFollowsAStarMustBeThere", "*b", "a", kNoMatch},
    {"WhatFollowsAStarMustFit", "*bcd", "abc", kNoMatch},
    {"Extension", "*.txt", "a.txt", kMatch},
    {"OtherExtension", "*.txt", "a.tx", kNoMatch},
    {"ExtensionAlone", "*.txt", ".txt", kMatch},
    {"QuirkExtensionNeedNotEndTheName", "*.txt", "a.txt.bak", kMatch},
    {"LaterPlaceIsFound", "*abc", "ababc", kMatch},
    {"PlacesOverlap", "*aab", "aaab", kMatch},
    {"TrailingStarAtTheEnd", "a*", "a", kMatch},
    {"TrailingStar", "a*", "abc", kMatch},
    {"QuirkStarAtTheEndOfTheNameMatchesWhateverFollows", "a*b", "a", kMatch},
    {"QuirkStarAtTheEndOfAnEmptyName", "*b", "", kMatch},
    {"QuirkStarAtTheEndOfTheNameLetsQuestionMarksPass", "a*??", "a", kMatch},
    {"StarBeforeTheEndDoesNot", "a*b", "ax", kNoMatch},
    {"StarAndQuestionMark", "*?", "a", kMatch},
    {"StarAndTwoQuestionMarks", "*??", "a", kNoMatch},
    {"StarsInARow", "a***b", "axb", kMatch},
    {"StarsInARowNeedWhatFollows", "a***b", "ax", kNoMatch},
    {"TwoStars", "*a*b", "xaxb", kMatch},
    {"TwoStarsInOrder", "*a*b", "bxay", kNoMatch},
    {"SegmentsDoNotOverlap", "*aba*bab", "abab", kNoMatch},
    {"QuirkSegmentAtTheNamesEndMatchesPastALaterOne", "*a*b", "aca", kMatch},
    {"QuirkLongSegmentAtTheNamesEnd", "*ab*c", "abxab", kMatch},
    {"QuirkSegmentAtTheNamesEndWithQuestionMarks", "*a?*c", "abxay", kMatch},
    {"SegmentShortOfTheNamesEndDoesNot", "*ab*c", "abxabx", kNoMatch},
    {"SegmentAtTheNamesEndMustFollowTheOthers", "*ba*ab*c", "xbab", kNoMatch},
    {"QuestionMarkBehindAStar", "*.t?t", "a.txt", kMatch},
    {"QuestionMarkBehindAStarTriesLaterPlaces", "*a?b", "axxacb", kMatch},
    {"BracketsAreLiteral", "[ab]", "a", kNoMatch},
    {"BracketsMatchThemselves", "[ab]", "[ab]", kMatch},
    {"BackslashIsLiteral", "\\*", "*", kNoMatch},
    {"StarBehindABackslashIsAStar", "\\*x", "\\abcx", kMatch},
    {"WildcardsInTheNameAreBytes", "a", "*", kNoMatch},
    {"StarInTheNameIsMatchedByAQuestionMark", "?", "*", kMatch},
    {"SlashIsAByte", "a*c", "a/b/c", kMatch},
    {"LeadingDotIsAByte", "*", ".hidden", kMatch},
};

class Wildcard : public testing::TestWithParam<Row> {};

TEST_P(Wildcard, Result) {
  const Row& row = GetParam();
  EXPECT_EQ(row.result, voxWildCardMatch(row.pattern, row.name));
  long steps = 1000;
  const char* const name = row.name == nullptr ? "" : row.name;
  EXPECT_EQ(row.result, orbtest::plain_wildcard_match(row.pattern, name, &steps))
      << "the plain form";
}

INSTANTIATE_TEST_SUITE_P(Rules, Wildcard, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.rule; });

// How many pairs matched, how many did not, and the first that differed from the plain form.
struct Comparison {
  long matches = 0, others = 0;
  std::string difference;

  void compare(const std::string& pattern, const std::string& name) {
    const int result = voxWildCardMatch(pattern.c_str(), name.c_str());
    long steps = 1'000'000;
    const int expected = orbtest::plain_wildcard_match(pattern.c_str(), name.c_str(), &steps);
    if (steps == 0) return;
    ++(expected == kMatch ? matches : others);
    if (result != expected && difference.empty()) difference = pattern + " and " + name;
  }
};

// Every text of at most `longest` of the letters.
std::vector<std::string> all_texts(const std::string& letters, size_t longest) {
  std::vector<std::string> texts{""};
  for (size_t from = 0, length = 1; length <= longest; ++length) {
    const size_t to = texts.size();
    for (; from < to; ++from) {
      for (const char letter : letters) texts.push_back(texts[from] + letter);
    }
  }
  return texts;
}

TEST(WildcardPlain, EveryShortPairAgrees) {
  const auto patterns = all_texts("ab?*", 6);
  const auto names = all_texts("ab", 7);
  ASSERT_EQ(5461u, patterns.size());
  ASSERT_EQ(255u, names.size());
  Comparison pairs;
  for (const auto& pattern : patterns) {
    for (const auto& name : names) pairs.compare(pattern, name);
  }
  EXPECT_EQ("", pairs.difference);
  EXPECT_EQ(5461 * 255, pairs.matches + pairs.others);
  EXPECT_LT(100'000, pairs.matches);
  EXPECT_LT(100'000, pairs.others);
}

std::string random_text(std::mt19937& random, const std::string& letters, size_t longest) {
  std::string text(random() % (longest + 1), ' ');
  for (char& letter : text) letter = letters[random() % letters.size()];
  return text;
}

TEST(WildcardPlain, MillionsOfRandomPairsAgree) {
  std::mt19937 random(20240613);
  Comparison pairs;
  for (int pair = 0; pair < 2'000'000; ++pair) {
    const bool starry = pair % 2 == 0;
    const std::string pattern = random_text(random, starry ? "aab**" : "abc?*", 14);
    pairs.compare(pattern, random_text(random, starry ? "aab" : "abc", 18));
  }
  EXPECT_EQ("", pairs.difference);
  EXPECT_LT(1'990'000, pairs.matches + pairs.others) << "pairs that the plain form gave up";
  EXPECT_LT(200'000, pairs.matches);
  EXPECT_LT(200'000, pairs.others);
}

// Names of more places than are tried at a time, and segments cut out of them, so that many begin
// to match in many places: with question marks or without, long ones too, some changed in a byte.
TEST(WildcardPlain, SegmentsOfLongNamesAgree) {
  std::mt19937 random(20241121);
  Comparison pairs;
  for (int pair = 0; pair < 200'000; ++pair) {
    const std::string name = random_text(random, pair % 3 == 0 ? "aaaaaaab" : "ab", 200);
    std::string pattern;
    for (size_t stars = 1 + random() % 2; stars > 0; --stars) {
      std::string segment = name.substr(random() % (name.size() + 1), random() % 90);
      if (pair % 2 == 0) {
        for (size_t at = random() % 3; at < segment.size(); at += 1 + random() % 4)
          segment[at] = '?';
      }
      if (!segment.empty() && random() % 2 == 0) segment[random() % segment.size()] = 'b';
      pattern += "*" + segment;
    }
    pairs.compare(pattern, name);
  }
  EXPECT_EQ("", pairs.difference);
  EXPECT_LT(190'000, pairs.matches + pairs.others) << "pairs that the plain form gave up";
  EXPECT_LT(30'000, pairs.matches);
  EXPECT_LT(30'000, pairs.others);
}

std::string repeated(const std::string& text, int times) {
  std::string result;
  while (times-- > 0) result += text;
  return result;
}

// The shortest of several runs, so that no other process counts.
double microseconds(const std::string& pattern, const std::string& name, int expected) {
  double shortest = 1e9;
  for (int run = 0; run < 25; ++run) {
    const auto start = std::chrono::steady_clock::now();
    const int result = voxWildCardMatch(pattern.c_str(), name.c_str());
    const std::chrono::duration<double, std::micro> taken =
        std::chrono::steady_clock::now() - start;
    EXPECT_EQ(expected, result) << pattern;
    shortest = std::min(shortest, taken.count());
  }
  return shortest;
}

TEST(WildcardCost, HostilePatternsTakeWellUnderAMillisecond) {
  if (*ORB_WATCHERS != '\0')
    GTEST_SKIP() << "a sanitizer or a count watches every byte: not the library's time";
  const std::string name = repeated("a", 250);
  EXPECT_GT(500, microseconds(repeated("a*", 40) + "b", name + "c", kNoMatch));
  EXPECT_GT(500, microseconds(repeated("*a", 40) + "*b", name + "c", kNoMatch));
  EXPECT_GT(500, microseconds(repeated("*a?", 40) + "*b", name + "cc", kNoMatch));
  EXPECT_GT(500, microseconds("*" + repeated("a", 125) + "b", name, kNoMatch));
  EXPECT_GT(500, microseconds("*?" + repeated("a", 125) + "b", name, kNoMatch));
  const std::string long_name = repeated("a", 4096);
  EXPECT_GT(1500, microseconds("*" + repeated("?a", 1023) + "b", long_name, kNoMatch));
  EXPECT_GT(1500, microseconds("*" + repeated("a", 2047) + "b", long_name, kNoMatch));
}

void* match_long_texts(void* result) {
  const std::string pattern = repeated("a*", 200'000) + "b";
  const std::string name = repeated("a", 300'000) + "c";
  *static_cast<int*>(result) = voxWildCardMatch(pattern.c_str(), name.c_str());
  return nullptr;
}

TEST(WildcardCost, StackDoesNotGrowWithThePattern) {
  pthread_attr_t small{};
  pthread_attr_init(&small);
  ASSERT_EQ(0, pthread_attr_setstacksize(&small, size_t{512} << 10));
  pthread_t thread{};
  int result = -1;
  ASSERT_EQ(0, pthread_create(&thread, &small, match_long_texts, &result));
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&small);
  EXPECT_EQ(kNoMatch, result);
}

}  // namespace
