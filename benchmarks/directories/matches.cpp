// benchmarks/directories/matches.cpp: the rows of the wildcard matcher, our own and fnmatch's.
#include <fnmatch.h>

#include <string>
#include <vector>

#include "benchmarks/directories/rows.h"
#include "fileutil/dirent.h"

namespace orbbench {
namespace {

std::string times(int count, const char* text) {
  std::string result;
  while (count-- > 0) result += text;
  return result;
}

struct Pair {
  std::string name;
  std::string pattern, text;
  double goal_ratio_apr = 0;  // 0 for none
  double goal_ns = 0;         // 0 for none
  double size = 0;            // bytes of the longer text of a series, 0 outside one
  double order = kLinear;
};

// Texts of `bytes`, longer than any file name in the end: equal ones, a pattern that is stars by
// half, and a segment of half the name that fits nowhere, without and with question marks.
void add_series(std::vector<Pair>* pairs, int bytes) {
  const std::string all(bytes, 'a');
  const auto add = [&](const char* kind, const std::string& pattern, const std::string& text,
                       double order = kLinear) {
    pairs->push_back({std::string(kind) + "/" + std::to_string(bytes), pattern, text, 0, 0,
                      static_cast<double>(bytes), order});
  };
  constexpr double kSquare = 2;
  add("same", all, all);
  add("stars", times(bytes / 2, "a*"), all + "c");
  add("half", "*" + std::string(bytes / 2 - 1, 'a') + "b", all);
  add("half_questions", "*" + times(bytes / 4 - 1, "?a") + "b", all, kSquare);
}

const std::vector<Pair>& pairs() {
  static const std::vector<Pair> kPairs = [] {
    std::vector<Pair> made = {
        {"0_suffix", "*.txt", "report-2024-03-final.txt", 0.8},
        {"1_words", "rep*2024*.t?t", "report-2024-03-final.txt", 0.8},
        {"2_four_stars", times(4, "a*") + "b", times(63, "a") + "c"},
        {"3_twelve_stars", times(12, "a*") + "b", times(254, "a") + "c", 3},
        {"forty_stars", times(40, "a*") + "b", times(250, "a") + "c", 0, 100e3},
        {"130_stars", times(130, "a*"), times(260, "a") + "c", 0, 100e3},
        {"half_of_260", "*" + times(129, "a") + "b", times(260, "a"), 0, 100e3},
        {"half_of_260_questions", "*" + times(64, "?a") + "b", times(260, "a"), 0, 100e3},
    };
    for (const int bytes : {64, 128, 256, 512, 1024, 2048, 4096}) add_series(&made, bytes);
    return made;
  }();
  return kPairs;
}

bool our_match(const char* pattern, const char* name) {
  return voxWildCardMatch(pattern, name) == 0;
}
bool fnmatch_match(const char* pattern, const char* name) { return fnmatch(pattern, name, 0) == 0; }

const bool added = [] {
  add_matches("ours", our_match, true);
  add_matches("fnmatch", fnmatch_match);
  return true;
}();

}  // namespace

void add_matches(const char* who, Match match, bool ours) {
  for (const Pair& pair : pairs()) {
    const auto run = [=, &pair](benchmark::State& state) {
      for (auto _ : state) benchmark::DoNotOptimize(match(pair.pattern.c_str(), pair.text.c_str()));
      if (ours && pair.goal_ratio_apr != 0) goal(state, "goal_ratio_APR", pair.goal_ratio_apr);
      if (ours && pair.goal_ns != 0) goal(state, "goal_ns", pair.goal_ns);
      if (pair.size != 0) size(state, pair.size, pair.order);
    };
    benchmark::RegisterBenchmark(("wildcard/" + pair.name + "/" + who).c_str(), run);
  }
}

}  // namespace orbbench
