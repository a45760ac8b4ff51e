// tests/support/interface_lines.h: an interface list as text, one line an address.
#pragma once

#include <sys/socket.h>

#include <string>
#include <vector>

#include "network/netinterface.h"

namespace orbtest {

// "index name hardware address/mask subnet family", in the order of the list.
inline std::vector<std::string> interface_lines(NetInterfaceList& list) {
  std::vector<std::string> all;
  for (int index : list.getIndexes()) {
    const NetInterface& record = list.getNetInterface(static_cast<unsigned>(index));
    for (const IPAddress& address : record.getIPAddress()) {
      const bool known = address.getIPFamily() == AF_INET || address.getIPFamily() == AF_INET6;
      all.push_back(std::to_string(record.getIndex()) + " " + record.getIndexName() + " " +
                    record.getMACAddress() + " " + address.getIPAddress() + "/" +
                    address.getSubNetMask() + " " + address.getSubNetAddr() +
                    (!known                             ? " ?"
                     : address.getIPFamily() == AF_INET ? " v4"
                                                        : " v6"));
    }
  }
  return all;
}

}  // namespace orbtest
