// tests/support/plain_wildcard.h: the wildcard rules written down as they are told.
#pragma once

namespace orbtest {

// What voxWildCardMatch has to return, by walking and trying every place behind a "*" in turn. It
// takes one of `*steps` for each byte compared and gives up when none is left: then `*steps` is 0
// and the result means nothing.
inline int plain_wildcard_match(const char* pattern, const char* name, long* steps) {
  if (pattern == nullptr || *pattern == '\0') return 0;
  for (; *pattern != '*'; ++pattern, ++name) {
    if (*pattern == '\0') return 0;
    if (*steps == 0 || --*steps == 0) return 1;
    if (*pattern == '?') {
      if (*name == '\0') return 1;
    } else if (*pattern != *name) {
      return 1;
    }
  }
  if (*name == '\0') return 0;
  for (; *name != '\0'; ++name) {
    if (plain_wildcard_match(pattern + 1, name, steps) == 0) return 0;
    if (*steps == 0 || --*steps == 0) return 1;
  }
  return 1;
}

}  // namespace orbtest
