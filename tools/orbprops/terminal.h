// tools/orbprops/terminal.h: what the reader of a stream is: its width, colours and characters.
#pragma once

#include <string>
#include <string_view>

#include "tools/orbprops/text.h"

namespace orbprops {

// How output for one stream is laid out.
struct Style {
  bool terminal = false;  // a person looks at it: titles, bars, lines that fit
  bool colour = false;
  size_t columns = 0;  // width of the window; 0 is without limit
  Charset charset = Charset::utf8;
};

// The style of descriptor `fd` by the process's environment and locale. What is no terminal gets
// UTF-8 without colours and without a limit.
Style style_of(int fd);

// The width to lay out for: that of the variable COLUMNS (null when unset) when it is a decimal
// number above 0, else that of the window, else 80. Never below 20 nor above 1000.
size_t usable_columns(const char* columns_variable, unsigned window_columns);

// Whether a terminal gets colours, by the values of NO_COLOR and TERM (null when unset): not when
// NO_COLOR holds a text, nor on a terminal that is "dumb", nameless or without a TERM.
bool wants_colour(const char* no_color, const char* term);

// Renditions that paint() knows.
enum class Ink { title, faint, good, warning, bad };

// `bytes` between the sequences that switch `ink` on and off; unchanged without colours.
std::string paint(std::string_view bytes, Ink ink, const Style& style);

}  // namespace orbprops
