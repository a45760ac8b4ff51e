// tests/system/nonetwork_test.cpp: a network name space in which no interface is up.
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "network/netinterface.h"
#include "network/networkutil.h"
#include "sysprops/catalogue.h"
#include "tests/system/surroundings.h"

namespace {

using std::chrono::steady_clock;
namespace sysprops = quillon_com::orb::sysprops;

bool without_interfaces() { return unshare(CLONE_NEWNET) == 0; }

TEST(NoInterfaces, NoneIsListed) {
  EXPECT_IN(without_interfaces, [] {
    for (const bool loopback : {false, true}) {
      NetInterfaceList list(loopback);
      EXPECT_FALSE(getNetInterfacesList(list));
      EXPECT_TRUE(list.getIndexes().empty());
      NetInterface out;
      EXPECT_FALSE(getNetInterfaceFromIPAddress(out, "127.0.0.1", list));
      std::string mac = "old";
      EXPECT_FALSE(getMACAddressFromIPAddress(mac, "127.0.0.1", list));
      EXPECT_EQ("old", mac);
    }
  });
}

TEST(NoInterfaces, TheReportHasNamesAndNoAddress) {
  EXPECT_IN(without_interfaces, [] {
    sysprops::NetworkInformation record;
    EXPECT_FALSE(sysprops::ISysProps().GetNetworkInformation(record));
    EXPECT_NE(L"N/A", record.computerName);
    EXPECT_NE(L"N/A", record.ipHostName);
    for (const std::wstring& text :
         {record.ipAddress, record.subnetAddress, record.subnetMask, record.netAddress})
      EXPECT_EQ(L"N/A", text);
    EXPECT_EQ(orbtest::kReportKeys, orbtest::whole_report().size());
  });
}

TEST(NoInterfaces, NoServerIsReachedAndNothingWaits) {
  EXPECT_IN(without_interfaces, [] {
    ANetworkUtil utility;
    std::string local = "old";
    const auto begin = steady_clock::now();
    for (const char* host : {"127.0.0.1", "::1", "192.0.2.1"}) {
      EXPECT_NE(0, utility.qlnGetLocalIPAddress(host, "9", local, false, NI_NUMERICHOST, 0))
          << host;
      EXPECT_NE(0, utility.qlnGetLocalIPAddress(host, "9", local, false, NI_NUMERICHOST, 1))
          << host;
    }
    EXPECT_NE(0,
              utility.qlnGetLocalIPAddressFromList("192.0.2.1;192.0.2.2", "9", local, true, 0, 1));
    EXPECT_EQ("old", local);
    unsigned scope = 77;
    EXPECT_FALSE(utility.qlnGetScopeId("fe80::1", scope));
    EXPECT_EQ("fe80::1", utility.formatV6addrWithScope("fe80::1%3", false));
    EXPECT_LT(steady_clock::now() - begin, std::chrono::seconds(20));
  });
}

}  // namespace
