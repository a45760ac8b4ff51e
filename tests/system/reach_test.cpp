// tests/system/reach_test.cpp: servers, routes and link-local zones in a network of our own.
#include <gtest/gtest.h>
#include <net/if.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "network/networkutil.h"
#include "tests/network/loopback.h"
#include "tests/support/mount_namespace.h"
#include "tests/system/name_server.h"

namespace {

using std::chrono::steady_clock;

// A pair of joined interfaces with addresses, nobody behind them, and routes.
bool build_network() {
  if (unshare(CLONE_NEWNET) != 0 || !orbtest::raise_loopback()) return false;
  const char* commands =
      "ip link add near type veth peer name far && "
      "ip addr add 192.0.2.1/24 dev near && "
      "ip addr add 198.18.0.1/32 dev far && "
      "ip -6 addr add 2001:db8::1/64 dev near nodad && "
      "ip link set near up && ip link set far up && "
      "ip route add blackhole 198.51.100.0/24 && "
      "ip route add 203.0.113.0/24 dev near";
  return std::system(commands) == 0;
}

std::optional<std::string> on_network(const std::function<bool()>& body) {
  return orbtest::in_mount_namespace([&] { return build_network() && body(); });
}

#define SKIP_WITHOUT(text) \
  if (!(text)) GTEST_SKIP() << "needs root, name spaces of its own and iproute2"

// A listener on every address of the machine; its port.
struct OpenPort {
  orbtest::Fd socket = orbtest::stream_socket(AF_INET6);
  std::string service;

  OpenPort() {
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    auto* record = reinterpret_cast<sockaddr*>(&address);
    socklen_t length = sizeof address;
    if (bind(socket.get(), record, length) == 0 && listen(socket.get(), 8) == 0 &&
        getsockname(socket.get(), record, &length) == 0)
      service = std::to_string(ntohs(address.sin6_port));
  }
};

bool print_local(const std::string& hosts, int timeout_s) {
  const OpenPort port;
  std::string local = "untouched";
  const int code =
      ANetworkUtil().qlnGetLocalIPAddressFromList(hosts, port.service, local, false, 0, timeout_s);
  std::printf("%d %s", code, local.c_str());
  return true;
}

struct ReachCase {
  const char* name;
  const char* hosts;
  int timeout_s;
  const char* outcome;
};

void PrintTo(const ReachCase& row, std::ostream* out) { *out << row.name; }

class Reach : public testing::TestWithParam<ReachCase> {};

TEST_P(Reach, LocalAddress) {
  const auto written =
      on_network([] { return print_local(GetParam().hosts, GetParam().timeout_s); });
  SKIP_WITHOUT(written);
  EXPECT_EQ(GetParam().outcome, *written);
}

const ReachCase kReaches[] = {
    {"OwnAddress", "192.0.2.1", 5, "0 192.0.2.1"},
    {"OwnIPv6Address", "[2001:db8::1]", 5, "0 2001:db8:0:0:0:0:0:1"},
    {"NobodyAnswers", "192.0.2.77", 1, "-1 untouched"},
    {"NoRoute", "233.252.0.1;10.0.0.1", 1, "-1 untouched"},
    {"NoRouteWithoutTimeout", "10.0.0.1", 0, "-1 untouched"},
    {"BlackHole", "198.51.100.1", 1, "-1 untouched"},
    {"UnreachableThenReachable", "10.0.0.1;192.0.2.1", 1, "0 192.0.2.1"},
    {"BlackHoleThenReachable", "198.51.100.1;127.0.0.1", 1, "0 127.0.0.1"},
    {"SilentThenReachable", "203.0.113.9;[2001:db8::1]", 1, "0 2001:db8:0:0:0:0:0:1"},
};

INSTANTIATE_TEST_SUITE_P(Rules, Reach, testing::ValuesIn(kReaches),
                         [](const auto& row) { return row.param.name; });

TEST(ReachTimeout, AnAddressThatDropsPacketsTakesTheTimeout) {
  const auto written = on_network([] {
    sockaddr_in silent{};
    silent.sin_family = AF_INET;
    silent.sin_port = htons(9);
    inet_pton(AF_INET, "203.0.113.9", &silent.sin_addr);
    const orbtest::Fd socket = orbtest::stream_socket(AF_INET);
    const auto begin = steady_clock::now();
    const int result = ANetworkUtil().ConnectWithTimeout(
        socket.get(), reinterpret_cast<sockaddr*>(&silent), sizeof silent, 2);
    const auto taken = steady_clock::now() - begin;
    std::printf(
        "%d %s", result,
        taken >= std::chrono::seconds(2) && taken < std::chrono::seconds(20) ? "in time" : "?");
    return true;
  });
  SKIP_WITHOUT(written);
  EXPECT_EQ("-1 in time", *written);
}

TEST(LinkLocal, GetsTheFirstIndexBesideLoopback) {
  const auto written = on_network([] {
    ANetworkUtil utility;
    unsigned scope = 0;
    const unsigned first = std::min(if_nametoindex("near"), if_nametoindex("far"));
    std::printf("%d", utility.qlnGetScopeId("[fe80::1%lo]", scope));
    std::printf("%d", first != 0 && scope == first);
    const std::string zoned = "fe80::1%" + std::to_string(first);
    std::printf("%d", utility.formatV6addrWithScope("fe80::1%99", true) == zoned);
    std::printf("%d", utility.formatV6addrWithScope("[fe80::1]", true) == "[" + zoned + "]");
    addrinfo* list = nullptr;
    if (utility.qlnCreateAddrinfo("fe80::1", "80", &list, false) != 0) return true;
    std::printf("%d", reinterpret_cast<sockaddr_in6*>(list->ai_addr)->sin6_scope_id == first);
    freeaddrinfo(list);
    return true;
  });
  SKIP_WITHOUT(written);
  EXPECT_EQ("11111", *written);
}

TEST(LinkLocal, NoneOnALoopbackOnlyMachine) {
  const auto written = orbtest::in_mount_namespace([] {
    if (unshare(CLONE_NEWNET) != 0 || !orbtest::raise_loopback()) return false;
    unsigned scope = 77;
    ANetworkUtil utility;
    std::printf("%d %u", utility.qlnGetScopeId("fe80::1", scope), scope);
    std::printf(" %s", utility.formatV6addrWithScope("fe80::1%1", false).c_str());
    return true;
  });
  SKIP_WITHOUT(written);
  EXPECT_EQ("0 77 fe80::1", *written);
}

}  // namespace
