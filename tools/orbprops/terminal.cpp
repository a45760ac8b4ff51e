// tools/orbprops/terminal.cpp: looks at descriptors and variables.
#include "tools/orbprops/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>

namespace orbprops {
namespace {

constexpr size_t kFewestColumns = 20;  // the longest key and an indent
constexpr size_t kMostColumns = 1000;

unsigned window_columns(int fd) {
  winsize window{};
  return ioctl(fd, TIOCGWINSZ, &window) == 0 ? window.ws_col : 0;
}

const char* sequence(Ink ink) {
  switch (ink) {
    case Ink::title:
      return "\x1b[1m";
    case Ink::faint:
      return "\x1b[2m";
    case Ink::good:
      return "\x1b[32m";
    case Ink::warning:
      return "\x1b[33m";
    case Ink::bad:
      return "\x1b[31m";
  }
  return "";
}

}  // namespace

size_t usable_columns(const char* columns_variable, unsigned window) {
  size_t columns = 0;
  if (columns_variable != nullptr) {
    const char* end = columns_variable + strlen(columns_variable);
    const auto [stop, error] = std::from_chars(columns_variable, end, columns);
    if (error == std::errc::result_out_of_range) columns = kMostColumns;
    if (stop != end || (error != std::errc() && error != std::errc::result_out_of_range)) {
      columns = 0;
    }
  }
  if (columns == 0) columns = window;
  if (columns == 0) columns = 80;
  return std::clamp(columns, kFewestColumns, kMostColumns);
}

bool wants_colour(const char* no_color, const char* term) {
  if (no_color != nullptr && *no_color != '\0') return false;
  return term != nullptr && *term != '\0' && strcmp(term, "dumb") != 0;
}

Style style_of(int fd) {
  Style style;
  style.terminal = isatty(fd) == 1;
  if (!style.terminal) return style;
  style.colour = wants_colour(getenv("NO_COLOR"), getenv("TERM"));
  style.columns = usable_columns(getenv("COLUMNS"), window_columns(fd));
  style.charset = locale_charset();
  return style;
}

std::string paint(std::string_view bytes, Ink ink, const Style& style) {
  if (!style.colour || bytes.empty()) return std::string(bytes);
  return std::string(sequence(ink)).append(bytes).append("\x1b[0m");
}

}  // namespace orbprops
