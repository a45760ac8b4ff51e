// tools/orbprops/nearest.cpp: edit distance over three rolling rows.
#include "tools/orbprops/nearest.h"

#include <algorithm>
#include <array>

namespace orbprops {
namespace {

constexpr size_t kLongest = 64;
constexpr size_t kFewestOfABeginning = 3;  // letters

char lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool begins_with(std::string_view text, std::string_view beginning) {
  return text.size() >= beginning.size() &&
         std::equal(beginning.begin(), beginning.end(), text.begin(),
                    [](char a, char b) { return lower(a) == lower(b); });
}

}  // namespace

size_t edit_distance(std::string_view a, std::string_view b) {
  if (a.size() > kLongest || b.size() > kLongest) return kLongest;
  using Row = std::array<size_t, kLongest + 1>;  // steps from the first i letters of a to j of b
  Row two_up{};
  Row above{};
  Row row{};
  for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    two_up = above;
    above = row;
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      const bool same = lower(a[i - 1]) == lower(b[j - 1]);
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (same ? 0 : 1)});
      if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) &&
          lower(a[i - 2]) == lower(b[j - 1])) {
        row[j] = std::min(row[j], two_up[j - 2] + 1);
      }
    }
  }
  return row[b.size()];
}

std::string_view nearest(std::string_view word, const std::vector<std::string_view>& words) {
  const size_t forgiven = std::max<size_t>(2, word.size() / 3);
  size_t best = forgiven + 1;
  std::string_view found;
  for (std::string_view candidate : words) {
    const size_t steps = edit_distance(word, candidate);
    if (steps < best) {
      best = steps;
      found = candidate;
    }
  }
  if (!found.empty() || word.size() < kFewestOfABeginning) return found;
  for (std::string_view candidate : words) {
    if (begins_with(candidate, word)) return candidate;
  }
  return {};
}

}  // namespace orbprops
