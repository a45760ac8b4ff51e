// sysprops/networkinfo.h: the choice of the address that the machine presents; internal.
#pragma once

#include <string>

#include "network/netinterface.h"
#include "sysprops/records.h"

namespace quillon_com::orb::sysprops {

// Writes `ipAddress`, `subnetAddress`, `subnetMask` and `netAddress` of `record` from `list`, of
// which interfaces and addresses count in the list's order. The first rule that finds an address
// decides:
// - `last_known`, when it is not empty and an interface carries exactly this text; where that
//   interface carries it more than once, subnet and mask are those of the last;
// - the first address of the family of `last_known`: IPv6 when it holds ":", else IPv4;
// - the first address of the first interface, whatever its family.
// Nothing is written when the list is empty or that interface has no address.
void choose_address(NetInterfaceList& list, const std::string& last_known,
                    NetworkInformation& record);

}  // namespace quillon_com::orb::sysprops
