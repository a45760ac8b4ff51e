// tools/orbprops/text.h: text from elsewhere, made fit for a terminal or a UTF-8 document.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orbprops {

// What the reader of a stream understands.
enum class Charset { ascii, utf8 };

// Text as it is written, and the columns that it takes on a terminal.
struct Shown {
  std::string bytes;
  size_t columns = 0;
};

// The UTF-8 form of `text`. A value that is no Unicode scalar value becomes U+FFFD.
std::string to_utf8(std::wstring_view text);

// `bytes` with every byte that is not part of well-formed UTF-8 replaced by U+FFFD.
std::string to_utf8(std::string_view bytes);

// One entry for each character of `text`, in order; a combining mark is an entry of no columns.
// Control characters, marks that turn the direction of writing, characters that have no width and
// those that `charset` lacks are written as escapes of printable ASCII: "\x1b", "\u202e",
// "\U0001f600". A backslash stays as it is.
std::vector<Shown> glyphs(std::wstring_view text, Charset charset);

// The same for narrow text; a byte that is not part of well-formed UTF-8 becomes "\xe9".
std::vector<Shown> glyphs(std::string_view bytes, Charset charset);

// The entries from `first` up to `last`, joined.
Shown join(const std::vector<Shown>& entries, size_t first, size_t last);

// All glyphs of a text, joined.
Shown show(std::wstring_view text, Charset charset);
Shown show(std::string_view bytes, Charset charset);

// The charset of the process's locale: utf8 when its codeset is UTF-8. Asks once; the first call
// comes after setlocale and before any of the functions above.
Charset locale_charset();

// A JSON text that shows the same document and holds neither control characters nor marks that turn
// the direction of writing: those become "\u" escapes. `json` is well-formed and UTF-8, without
// such characters outside its strings.
std::string without_controls(std::string_view json);

}  // namespace orbprops
