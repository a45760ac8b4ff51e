// tools/orbprops/nearest.h: finds the word that a mistyped one was meant to be.
#pragma once

#include <string_view>
#include <vector>

namespace orbprops {

// Insertions, deletions, replacements and swaps of neighbours that lead from `a` to `b`, letter
// case left aside. Texts of more than 64 bytes count as 64 steps away from everything.
size_t edit_distance(std::string_view a, std::string_view b);

// The one of `words` with the fewest steps to `word`, the first among equals. When even that is
// more than a third of `word`'s length away, two steps at least being forgiven: the first that
// begins with `word`, letter case left aside, if that has three letters at least. Else empty.
std::string_view nearest(std::string_view word, const std::vector<std::string_view>& words);

}  // namespace orbprops
