// platform/values.h: constants and tables of the C library that differ between systems.
#pragma once

#include <sys/socket.h>

#include <cstddef>

namespace quillon_com::orb::platform {

// The bytes that belong to `mask`, the netmask of an address of `family`: the length that it states
// itself where socket addresses carry one, else that of the record of its own family, or of
// `family` where its own reads 0. At most the size of sockaddr_storage. `mask` is not null.
size_t stated_length(const sockaddr* mask, int family);

// The number of a host's errno in the portability core's own numbering, found by the errno's name:
// EAGAIN is 35, EDEADLK 11, ENOLCK 77 there, whatever they are here. 0 is 0; an errno without a
// number of its own there gives -1.
int core_errno(int host_errno);

// The C library's character tables in the current locale, read without calling the functions of
// the same name, which this library exports itself. `c` is an unsigned char's value or EOF; any
// other value is in no class and maps to itself.
bool table_is_alnum(int c);
bool table_is_space(int c);
int table_to_lower(int c);
int table_to_upper(int c);

}  // namespace quillon_com::orb::platform
