// fileutil/utf8.h: the checked UTF-8 codec behind the converters.
//
// Both directions stop in front of the first element that is not well formed: stray, missing and
// overlong bytes, surrogates and values above 0x10FFFF. Nothing is written behind the result and no
// terminator is added. The texts do not overlap. Pure functions; safe from any thread.
#pragma once

#include <cstddef>

namespace quillon_com::orb {

// Both count the elements of `text` that the result stands for in `taken`, unless it is null.

// Wide text of `length` bytes in `out`, which has room for `length` elements; returns the elements
// written.
size_t decode_utf8(const char* text, size_t length, wchar_t* out, size_t* taken = nullptr);

// UTF-8 of `length` elements in `out`, which has room for four bytes for each; returns the bytes
// written.
size_t encode_utf8(const wchar_t* text, size_t length, char* out, size_t* taken = nullptr);

}  // namespace quillon_com::orb
