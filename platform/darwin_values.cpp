// platform/darwin_values.cpp: platform/values.h for the C library of macOS.
#include <ctype.h>

#include <algorithm>

#include "platform/values.h"

namespace quillon_com::orb::platform {
namespace {

bool in_table(int c) { return c >= 0 && c <= 255; }

}  // namespace

size_t stated_length(const sockaddr* mask, int) {
  return std::min<size_t>(mask->sa_len, sizeof(sockaddr_storage));
}

bool table_is_alnum(int c) { return in_table(c) && __maskrune(c, _CTYPE_A | _CTYPE_D) != 0; }

bool table_is_space(int c) { return in_table(c) && __maskrune(c, _CTYPE_S) != 0; }

int table_to_lower(int c) { return in_table(c) ? __tolower(c) : c; }

int table_to_upper(int c) { return in_table(c) ? __toupper(c) : c; }

}  // namespace quillon_com::orb::platform
