// platform/linux_values.cpp: platform/values.h for glibc.
#include <ctype.h>
#include <netinet/in.h>

#include <cstdint>

#include "platform/values.h"

namespace quillon_com::orb::platform {
namespace {

// The tables are indexed from -128 to 255.
bool in_table(int c) { return c >= -128 && c <= 255; }

}  // namespace

size_t stated_length(const sockaddr* mask, int family) {
  switch (mask->sa_family != AF_UNSPEC ? mask->sa_family : family) {
    case AF_INET:
      return sizeof(sockaddr_in);
    case AF_INET6:
      return sizeof(sockaddr_in6);
    default:
      return sizeof(sockaddr);
  }
}

bool table_is_alnum(int c) { return in_table(c) && ((*__ctype_b_loc())[c] & _ISalnum) != 0; }

bool table_is_space(int c) { return in_table(c) && ((*__ctype_b_loc())[c] & _ISspace) != 0; }

int table_to_lower(int c) { return in_table(c) ? (*__ctype_tolower_loc())[c] : c; }

int table_to_upper(int c) { return in_table(c) ? (*__ctype_toupper_loc())[c] : c; }

}  // namespace quillon_com::orb::platform
