// tests/contract/consumers/cxx/network.cpp: records, the machine's interfaces, address texts and
// resolution of a numeric address.
#include <netdb.h>
#include <netinet/in.h>

#include <string>

#include "../expect.h"
#include "areas.h"
#include "network/ipaddress.h"
#include "network/ipv6.h"
#include "network/netinterface.h"
#include "network/networkutil.h"

namespace {

void use_records() {
  IPAddress address;
  address.setOption(IP_ADDRESS, std::string("192.0.2.7"));
  address.setOption(IP_FAMILY, static_cast<unsigned>(AF_INET));
  NetInterface interface;
  interface.setOption(NETIF_INDEX, 3U);
  interface.setOption(NETIF_INDEX_NAME, std::string("eth0"));
  interface.setOption(NETIF_IP_ADDRESS, address);
  EXPECT(interface.getIndex() == 3 && interface.getIndexName() == "eth0");
  EXPECT(interface.getIPAddress().size() == 1);
  EXPECT(interface.getIPAddress()[0].getIPAddress() == "192.0.2.7");
  EXPECT(interface.getIPAddress()[0].getIPFamily() == AF_INET);
}

void use_interfaces() {
  NetInterfaceList list(true);
  EXPECT(list.initialize() == !list.getIndexes().empty());
  NetInterface none;
  EXPECT(!list.getNetInterface(0xFFFFFFF0U, none));
  std::string hardware;
  EXPECT(!getMACAddressFromIPAddress(hardware, "192.0.2.7", list));
  unsigned char bytes[6] = {0x00, 0x1B, 0x63, 0xAB, 0xCD, 0xEF};
  EXPECT(formatMACAddress(bytes) == "001b63abcdef");
}

void use_texts() {
  EXPECT(expandIPV6Address("fe80::1%en0") == "fe80:0:0:0:0:0:0:1");
  EXPECT(calculateSubNetAddrForV6("2001:db8:0:0:0:0:0:1", "ffff:ffff:0:0:0:0:0:0") ==
         "2001:db8:0:0:0:0:0:0");
  EXPECT(convertV6AddrToLiteralFormat("[fe80::1%4]") == "fe80--1.ipv6-literal.net");
  EXPECT(convertLiteralFormatToV6Addr("fe80--1s4.ipv6-literal.net") == "fe80::1");
  EXPECT(noOfOccurences("a:b", ':', 7) == 1);
  EXPECT(ANetworkUtil().formatV6addr("[fe80::1%en0]", true) == "[fe80::1]");
}

void use_resolver() {
  ANetworkUtil util;
  addrinfo* addresses = nullptr;
  EXPECT(util.qlnCreateAddrinfo("127.0.0.1", "80", &addresses, true) == 0);
  EXPECT(addresses != nullptr && addresses->ai_family == AF_INET);
  if (addresses == nullptr) return;
  EXPECT(util.qlnNetToString(addresses->ai_addr, NI_NUMERICHOST) == "127.0.0.1");
  freeaddrinfo(addresses);
  std::vector<char*> names;
  EXPECT(util.qlnGetAddrinfo("127.0.0.1", "", names, NI_NUMERICHOST) == 0);
  EXPECT(names.size() == 1 && std::string(names[0]) == "127.0.0.1");
  util.qlnFreeAddrinfo(names);
  EXPECT(names.empty());
  EXPECT(util.qlnCompareAddressFromPeerAddress("192.0.2.7", "", "192.0.2.7"));
}

}  // namespace

void use_network() {
  use_records();
  use_interfaces();
  use_texts();
  use_resolver();
}
