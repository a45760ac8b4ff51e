// network/enumerate.h: the walk over a system's interface entries.
#pragma once

#include <string>

#include "network/netinterface.h"
#include "platform/system.h"

namespace quillon_com::orb::network {

// Here memory that runs out throws std::bad_alloc, with every output untouched.

// NetInterfaceList::initialize on `system`: adds its interfaces to `list`. Each interface's index
// and each family's usability is asked once per call, so the time is in proportion to the entries.
bool fill_list(const platform::System& system, NetInterfaceList& list);

// The interface that getNetInterfaceFromIPAddress finds, a record of `list`; null when none carries
// `ip`.
const NetInterface* carrier_of(const std::string& ip, const NetInterfaceList& list);

// getMacAddr on `system`.
bool hardware_address(const platform::System& system, const std::string& name, std::string* mac);

}  // namespace quillon_com::orb::network
