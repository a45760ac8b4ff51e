// platform/values.h: constants and tables of the C library that differ between systems.
#pragma once

#include <sys/socket.h>

#include <cstddef>

namespace quillon_com::orb::platform {

// The bytes that belong to `mask`, an interface's netmask of `family`: the length that it states
// itself where socket addresses carry one, else that of the family's record. At most the size of
// sockaddr_storage. `mask` is not null.
size_t stated_length(const sockaddr* mask, int family);

// The C library's character tables in the current locale, read without calling the functions of
// the same name, which this library exports itself. `c` is an unsigned char's value or EOF; any
// other value is in no class and maps to itself.
bool table_is_alnum(int c);
bool table_is_space(int c);
int table_to_lower(int c);
int table_to_upper(int c);

}  // namespace quillon_com::orb::platform
