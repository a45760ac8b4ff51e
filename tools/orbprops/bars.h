// tools/orbprops/bars.h: usage bars for file systems.
#pragma once

#include <optional>
#include <string>

#include "tools/orbprops/terminal.h"

namespace orbprops {

// The used part, 0 to 1, of a volume whose sizes are the texts `total` and `free`. None when one
// of them is no number, the total is not above 0, or more is free than there is.
std::optional<double> used_part(const std::wstring& total, const std::wstring& free);

// "52%": the part in whole percent, rounded to the nearest.
std::string percent(double part);

// A bar of `columns` columns, two of them brackets, of which `part` is filled: with blocks where
// the reader knows Unicode, with "#" elsewhere. A part above 0 fills one column at least, and one
// below 1 leaves one at least. Green, yellow from 75 % and red from 90 % where there are colours.
// Empty below three columns.
std::string bar(double part, size_t columns, const Style& style);

}  // namespace orbprops
