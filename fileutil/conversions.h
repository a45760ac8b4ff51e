// fileutil/conversions.h: numbers, locale text, UTF-8, case and white space; what a text is here.
//
// A wide text is a sequence of wchar_t, four bytes each, one Unicode code point per element in the
// host's byte order, ended by a zero element. A narrow text is a sequence of bytes ended by a zero
// byte; where a name says "ansi" or "utf8" the bytes are UTF-8. A "T" in a name stands for the
// text character, which is the narrow `char`.
// Every function may be called from several threads at once. None keeps state or throws.
#pragma once

#include <ctype.h>
#include <stddef.h>
#include <wchar.h>

#include "platform/export.h"

ORB_EXTERN_C_BEGIN

// Number to text. Each writes `value` in `radix` 8, 10 or 16 with its terminator into `buffer` and
// returns `buffer`. Octal and hexadecimal digits show the two's-complement bits of the argument's
// width, in lower case, without a prefix. 12 bytes hold every 32-bit result, 23 every 64-bit one.
// Another radix or a null `buffer` returns null; `buffer` is untouched.
// Quirk: radix 10 of voxUltot is signed although its value is not: 2^63 and more print as negative
// numbers.
ORB_EXPORT char* voxItoa(int value, char* buffer, int radix);
ORB_EXPORT char* voxItot(int value, char* buffer, int radix);  // the same as voxItoa
ORB_EXPORT char* voxUltot(unsigned long value, char* buffer, int radix);
ORB_EXPORT char* voxI64toa(long long value, char* buffer, int radix);
ORB_EXPORT char* voxI64tot(long long value, char* buffer, int radix);  // the same as voxI64toa

// The number that `text` spells, modulo 2^64. A null `text` gives 0.
// Quirk: every byte takes part: value x 10 + the byte as a signed char - 48. Nothing is skipped,
// there is no sign and no stop: "12a" gives 169, "-5" gives -25, " 7" gives -153.
ORB_EXPORT long long voxTtoi64(const char* text);
ORB_EXPORT long long voxAtoi64(const char* text);  // the same as voxTtoi64

// strtok_r of the C library with the same three arguments, by its rules.
ORB_EXPORT char* voxTstrtok_r(char* string, const char* delimiters, char** save_pointer);

// Wide text to the encoding of the process's LC_CTYPE locale. At most `count` bytes are written to
// `destination`; a negative `count` is no limit. Returns the bytes written without the terminator,
// which is missing when `count` cut the text short. With a null `destination` nothing is written
// and the bytes needed are returned. Returns 0 when a character has no form in the locale, with
// errno as the C library set it and the text before it in `destination`; 0 for a null `source`.
ORB_EXPORT int voxStandardUtoA(const wchar_t* source, int count, char* destination);

// Text in the encoding of the process's LC_CTYPE locale to wide text. `count` is in wide
// characters, negative for no limit. Result, null arguments and failure (an invalid sequence) as
// for voxStandardUtoA, in wide characters.
ORB_EXPORT int voxStandardAtoU(const char* source, int count, wchar_t* destination);

// UTF-8 of the wide text `source`, with its terminator, in `destination`, which has room for
// `*size` bytes; `*size` is only read. The texts may overlap. Returns 0.
// Returns 0x80000008 with nothing written when a pointer is null, when `*size` is 0, when the room
// is too small, or when overlapping texts need memory that is not there.
// Quirk: the room needed is 6 bytes per character plus 1, whatever the text holds, and both figures
// are signed 32-bit: a text that needs 2^31 bytes or more, or a room of that size, never fits.
// Quirk: a surrogate or a value above 0x10FFFF ends the text: what stands before it is delivered
// and the status is 0.
ORB_EXPORT unsigned voxcomn_unicode_to_utf8(const wchar_t* source, char* destination,
                                            unsigned* size);

// Wide text of the UTF-8 text `source`, with its terminator, in `destination`, which has room for
// `*size` wide characters; `*size` is only read. The texts may overlap. Returns 0.
// Returns 0x80000008 with nothing written when a pointer is null, when the room is smaller than
// the bytes of `source` with its terminator, or when overlapping texts need memory that is not
// there.
// Quirk: an invalid sequence (stray, missing or overlong bytes, a surrogate, a value above
// 0x10FFFF) ends the text: what stands before it is delivered and the status is 0.
ORB_EXPORT unsigned voxcomn_utf8_to_unicode(const char* source, wchar_t* destination, int* size);

// isalnum, isspace, tolower and toupper, declared by <ctype.h>, are exported as copies of this
// library, with unmangled names: the classes and case maps of the process's LC_CTYPE locale, for
// the value of an unsigned char or EOF. They are not declared again: where that header defines them
// inline in C++, a second declaration with unmangled names would contradict it.

ORB_EXTERN_C_END

#ifdef __cplusplus

#include <string>

namespace quillon_com {
namespace orb {

// The functions below return a new string and report no failure: memory that runs out gives an
// empty one.

// UTF-8 text to wide text, and back, as by the converters above: up to the first zero element or
// the first that has no other form. Quirk: a text that needs a room of 2^31 elements or more, by
// the converters' count, gives an empty one.
ORB_EXPORT std::wstring voxcomn_ansi_to_wide(const std::string& text);
ORB_EXPORT std::string voxcomn_wide_to_ansi(const std::wstring& text);

// Decimal digits, with "-" before a negative number.
ORB_EXPORT std::wstring voxcomn_long_to_wide_string(const long& value);
ORB_EXPORT std::wstring voxcomn_ulong_to_wide_string(const unsigned long& value);
ORB_EXPORT std::string voxcomn_long_to_ansi_string(const long& value);

// Each byte through toupper, or tolower, of the process's locale; zero bytes included.
// Quirk: the bytes of a multibyte character are mapped one by one like any others.
ORB_EXPORT std::string voxcomn_convert_to_upper(const std::string& text);
ORB_EXPORT std::string voxcomn_convert_to_lower(const std::string& text);

// `text` from its first, or through its last, byte that isspace does not class as white space.
// A text of white space alone gives "".
ORB_EXPORT std::string voxcomn_strip_leading_whitespace(const std::string& text);
ORB_EXPORT std::string voxcomn_strip_trailing_whitespace(const std::string& text);

// Whether this host stores the low byte of an integer last; found by looking at one.
ORB_EXPORT bool isBigEndian();

}  // namespace orb
}  // namespace quillon_com

#endif
