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
  const char* name;
  std::string pattern, text;
  double goal_ratio_apr;  // 0 for none
  double goal_ns;         // 0 for none
};

// The last four are longer than any file name.
const std::vector<Pair>& pairs() {
  static const std::vector<Pair> kPairs = {
      {"0_suffix", "*.txt", "report-2024-03-final.txt", 0.8, 0},
      {"1_words", "rep*2024*.t?t", "report-2024-03-final.txt", 0.8, 0},
      {"2_four_stars", times(4, "a*") + "b", times(63, "a") + "c", 0, 0},
      {"3_twelve_stars", times(12, "a*") + "b", times(254, "a") + "c", 3, 0},
      {"forty_stars", times(40, "a*") + "b", times(250, "a") + "c", 0, 100e3},
      {"130_stars", times(130, "a*"), times(260, "a") + "c", 0, 100e3},
      {"half_of_260", "*" + times(129, "a") + "b", times(260, "a"), 0, 100e3},
      {"half_of_260_questions", "*" + times(64, "?a") + "b", times(260, "a"), 0, 100e3},
      {"4KiB_same", times(4096, "a"), times(4096, "a"), 0, 0},
      {"4KiB_stars", times(2048, "a*"), times(4096, "a") + "c", 0, 0},
      {"4KiB_half", "*" + times(2047, "a") + "b", times(4096, "a"), 0, 0},
      {"4KiB_half_questions", "*" + times(1023, "?a") + "b", times(4096, "a"), 0, 0},
  };
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
      if (ours && pair.goal_ratio_apr != 0) state.counters["goal_ratio_APR"] = pair.goal_ratio_apr;
      if (ours && pair.goal_ns != 0) state.counters["goal_ns"] = pair.goal_ns;
    };
    benchmark::RegisterBenchmark((std::string("wildcard/") + pair.name + "/" + who).c_str(), run);
  }
}

}  // namespace orbbench
