// examples/interfaces.cpp: the machine's network interfaces and their addresses.
#include <cstdio>

#include "network/netinterface.h"

int main() {
  NetInterfaceList list(true);  // loopback included
  list.initialize();            // false on a machine without addresses: the list is empty then
  for (const int index : list.getIndexes()) {
    const NetInterface& each = list.getNetInterface(static_cast<unsigned>(index));
    std::printf("%s %s\n", each.getIndexName().c_str(), each.getMACAddress().c_str());
    for (const IPAddress& address : each.getIPAddress()) {
      std::printf("  %s mask %s\n", address.getIPAddress().c_str(),
                  address.getSubNetMask().c_str());
    }
  }
  std::printf("interfaces: %zu\n", list.getIndexes().size());
  return 0;
}
