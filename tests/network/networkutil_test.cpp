// tests/network/networkutil_test.cpp: address texts, memory that runs out, threads.
#include "network/networkutil.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/network/loopback.h"
#include "tests/network/socket_script.h"
#include "tests/support/faults.h"
#include "tests/support/interface_entries.h"

namespace {

using orbtest::SocketScript;

TEST(NetworkUtil, IsEnabledAndHoldsNothingElse) {
  EXPECT_TRUE(ANetworkUtil().enabled);
  EXPECT_EQ(sizeof(bool), sizeof(ANetworkUtil));
}

TEST(NetworkUtil, FormatV6addrStripsBracketsAndZone) {
  ANetworkUtil utility;
  EXPECT_EQ("[fe80::1]", utility.formatV6addr("[fe80::1%en0]", true));
  EXPECT_EQ("fe80::1", utility.formatV6addr("[fe80::1%en0]", false));
  EXPECT_EQ("fe80::1", utility.formatV6addr("fe80::1", true));
  utility.enabled = false;
  EXPECT_EQ("fe80::1", utility.formatV6addr("fe80::1%en0", true));
}

struct TextCase {
  const char* name;
  quillon_com::orb::platform::SocketAddress address;
  int flags;
  std::string text;
};

TEST(NetToString, NumericHostOrService) {
  auto v4 = orbtest::ipv4("192.0.2.7");
  reinterpret_cast<sockaddr_in*>(v4.get())->sin_port = htons(8443);
  auto v6 = orbtest::ipv6("2001:db8::7");
  reinterpret_cast<sockaddr_in6*>(v6.get())->sin6_port = htons(443);
  quillon_com::orb::platform::SocketAddress foreign;
  foreign.bytes.ss_family = 250;
  const TextCase rows[] = {
      {"IPv4 host", v4, NI_NUMERICHOST, "192.0.2.7"},
      {"IPv6 host", v6, NI_NUMERICHOST, "2001:db8::7"},
      {"IPv4 service", v4, NI_NUMERICSERV, "8443"},
      {"IPv6 service", v6, NI_NUMERICSERV, "443"},
      {"Quirk: the service alone when both are asked for", v4, NI_NUMERICHOST | NI_NUMERICSERV,
       "8443"},
      {"Quirk: nothing without flags", v4, 0, ""},
      {"Quirk: nothing with other flags", v4, NI_NAMEREQD | NI_DGRAM | NI_NOFQDN, ""},
      {"unknown family", foreign, NI_NUMERICHOST, ""},
  };
  for (TextCase row : rows)
    EXPECT_EQ(row.text, ANetworkUtil().qlnNetToString(row.address.get(), row.flags)) << row.name;
}

TEST(NetToString, NullOrDisabledGivesNothing) {
  auto address = orbtest::ipv4("192.0.2.7");
  ANetworkUtil utility;
  SocketScript script;
  EXPECT_EQ("", utility.qlnNetToString(nullptr, NI_NUMERICHOST));
  utility.enabled = false;
  EXPECT_EQ("", utility.qlnNetToString(address.get(), NI_NUMERICHOST));
  EXPECT_EQ("", utility.qlnNetToString(address.get(), NI_NUMERICSERV));
  EXPECT_EQ(0, script.calls["getnameinfo"]);
}

TEST(NetToString, PassesFlagsUnchangedAndALengthOf128) {
  auto address = orbtest::ipv4("192.0.2.7");
  SocketScript script;
  ANetworkUtil utility;
  utility.qlnNetToString(address.get(), NI_NUMERICHOST | NI_NOFQDN);
  utility.qlnNetToString(address.get(), NI_NUMERICHOST | NI_NUMERICSERV | NI_DGRAM);
  utility.qlnNetToString(address.get(), NI_DGRAM);
  EXPECT_EQ(
      (std::vector<int>{NI_NUMERICHOST | NI_NOFQDN, NI_NUMERICHOST | NI_NUMERICSERV | NI_DGRAM}),
      script.name_flags);
  EXPECT_EQ((std::vector<socklen_t>{128, 128}), script.name_lengths);
  EXPECT_EQ((std::vector<socklen_t>{1025, 0}), script.name_rooms) << "host alone, service alone";
}

TEST(NetToString, AFailureGivesNothing) {
  auto address = orbtest::ipv4("192.0.2.7");
  SocketScript script;
  script.failing["getnameinfo"] = {1, 2};
  EXPECT_EQ("", ANetworkUtil().qlnNetToString(address.get(), NI_NUMERICHOST));
  EXPECT_EQ("", ANetworkUtil().qlnNetToString(address.get(), NI_NUMERICSERV));
}

// Memory that runs out anywhere gives a failure and leaves nothing behind; the sanitizer watches
// the lists, the next free descriptor the sockets.
TEST(OutOfMemory, EveryMemberFailsCleanly) {
  orbtest::Listener listener(AF_INET);
  const std::string host = "[::ffff:127.0.0.1%a zone beyond a text object's own room]";
  const std::string service = listener.service();
  const int next_descriptor = orbtest::stream_socket(AF_INET).get();
  const auto step = [&](size_t nth, orbtest::Failing failing) {
    ANetworkUtil utility;
    std::vector<char*> names;
    std::string local = "untouched";
    addrinfo* list = nullptr;
    int created = 0, named = 0, reached = 0;
    bool peer = false;
    size_t failures = 0;
    {
      orbtest::MemoryFaults faults(nth, failing);
      created = utility.qlnCreateAddrinfo(host, service, &list, false);
      named = utility.qlnGetAddrinfo(host, service, names, NI_NUMERICHOST);
      reached = utility.qlnGetLocalIPAddress(host, service, local, false, NI_NUMERICHOST, 0);
      peer = utility.qlnCompareAddressFromPeerAddress("127.1", "", "127.0.0.1");
      failures = faults.failures();
    }
    EXPECT_EQ(created == 0, list != nullptr);
    if (list != nullptr) freeaddrinfo(list);
    EXPECT_EQ(named == 0 ? 1u : 0u, names.size());
    utility.qlnFreeAddrinfo(names);
    EXPECT_EQ(reached == 0 ? "0:0:0:0:0:0:ffff:127.0.0.1" : "untouched", local);
    for (int code : {created, named, reached}) EXPECT_TRUE(code == 0 || code == -1) << code;
    EXPECT_TRUE(peer || failures != 0);
    EXPECT_EQ(next_descriptor, orbtest::stream_socket(AF_INET).get());
    return failures;
  };
  EXPECT_GT(orbtest::for_each_memory_fault(step), 8u);
}

TEST(Threads, OneObjectServesSeveral) {
  orbtest::Listener listener(AF_INET);
  ANetworkUtil utility;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread) {
    threads.emplace_back([&] {
      for (int round = 0; round < 8; ++round) {
        std::vector<char*> names;
        EXPECT_EQ(0, utility.qlnGetAddrinfo("127.0.0.1", "", names, NI_NUMERICHOST));
        EXPECT_EQ(1u, names.size());
        utility.qlnFreeAddrinfo(names);
        std::string local;
        EXPECT_EQ(0, utility.qlnGetLocalIPAddressFromList("127.0.0.1", listener.service(), local,
                                                          true, 0, 10));
        EXPECT_EQ("127.0.0.1", local);
        EXPECT_TRUE(utility.qlnCompareAddressFromPeerAddress("127.1", "", "127.0.0.1"));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
