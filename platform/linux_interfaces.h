// platform/linux_interfaces.h: one entry of the C library's interface list as a fact.
#pragma once

#include <ifaddrs.h>

#include "platform/system.h"

namespace quillon_com::orb::platform {

// The entry with its label's ":1" cut off the name. Addresses may be null. A link-layer entry has a
// link address when it states a length for one: its first six bytes, zero where it is shorter.
InterfaceEntry entry_of(const ifaddrs& entry);

}  // namespace quillon_com::orb::platform
