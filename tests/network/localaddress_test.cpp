// tests/network/localaddress_test.cpp: the local address from which a server is reached.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>

#include "network/networkutil.h"
#include "network/resolver.h"
#include "tests/network/loopback.h"
#include "tests/network/socket_script.h"
#include "tests/support/fake_system.h"
#include "tests/support/interface_entries.h"

namespace {

using orbtest::Endpoint;
using orbtest::Listener;
using orbtest::RefusingPort;
using orbtest::SilentPort;
using orbtest::SocketScript;
using quillon_com::orb::network::Resolver;

struct Outcome {
  int code;
  std::string local;
};

Outcome local_towards(const std::string& host, const std::string& service, bool ipv4_only = false,
                      int flags = NI_NUMERICHOST, int timeout_s = 5) {
  Outcome outcome{-99, "untouched"};
  outcome.code = ANetworkUtil().qlnGetLocalIPAddress(host, service, outcome.local, ipv4_only, flags,
                                                     timeout_s);
  return outcome;
}

Outcome local_from_list(const std::string& hosts, const std::string& service,
                        bool ipv4_only = false, int flags = NI_NUMERICHOST, int timeout_s = 5) {
  Outcome outcome{-99, "untouched"};
  outcome.code = ANetworkUtil().qlnGetLocalIPAddressFromList(hosts, service, outcome.local,
                                                             ipv4_only, flags, timeout_s);
  return outcome;
}

TEST(LocalAddress, OfTheLoopbackListeners) {
  Listener v4(AF_INET);
  Listener v6(AF_INET6);
  struct Row {
    const char* host;
    Listener* listener;
    const char* local;
  };
  const Row rows[] = {
      {"127.0.0.1", &v4, "127.0.0.1"},
      {"::1", &v6, "0:0:0:0:0:0:0:1"},  // expanded
      {"[::1]", &v6, "0:0:0:0:0:0:0:1"},
      {"[::1%nonsense]", &v6, "0:0:0:0:0:0:0:1"},
  };
  for (const Row& row : rows) {
    for (int timeout_s : {0, 5}) {
      const Outcome outcome =
          local_towards(row.host, row.listener->service(), false, NI_NUMERICHOST, timeout_s);
      EXPECT_EQ(0, outcome.code) << row.host;
      EXPECT_EQ(row.local, outcome.local) << row.host;
    }
  }
}

TEST(LocalAddress, NeedsAHostAndAnEnabledObject) {
  Listener listener(AF_INET);
  EXPECT_EQ(-1, local_towards("", listener.service()).code);
  SocketScript script;
  ANetworkUtil utility;
  utility.enabled = false;
  std::string local = "untouched";
  EXPECT_EQ(-1, utility.qlnGetLocalIPAddress("127.0.0.1", listener.service(), local, false, 0, 5));
  EXPECT_EQ(-1, utility.qlnGetLocalIPAddressFromList("127.0.0.1", listener.service(), local, false,
                                                     0, 5));
  EXPECT_EQ("untouched", local);
  EXPECT_TRUE(script.questions.empty());
}

TEST(LocalAddress, GivesTheResolversCode) {
  for (int code : {EAI_AGAIN, EAI_NONAME, EAI_FAIL, EAI_MEMORY}) {
    SocketScript script;
    script.refusals["server.example"] = code;
    const Outcome outcome = local_towards("server.example", "443");
    EXPECT_EQ(code, outcome.code);
    EXPECT_EQ("untouched", outcome.local);
    EXPECT_EQ(0, script.calls["socket"]);
  }
}

TEST(LocalAddress, AsksForIPv4AloneOnRequest) {
  Listener listener(AF_INET);
  for (bool ipv4_only : {false, true}) {
    SocketScript script;
    EXPECT_EQ(0, local_towards("127.0.0.1", listener.service(), ipv4_only).code);
    EXPECT_EQ(0, local_from_list("127.0.0.1", listener.service(), ipv4_only).code);
    ASSERT_EQ(2u, script.questions.size());
    for (const auto& question : script.questions) {
      EXPECT_EQ(ipv4_only ? AF_INET : AF_UNSPEC, question.hints.ai_family);
      EXPECT_EQ(listener.service(), question.service);
    }
  }
}

// Every step of the first of two addresses fails in turn; the second one is taken, with everything
// of the first given back.
TEST(LocalAddress, AnAddressThatFailsInAStepIsPassedOver) {
  Listener listener(AF_INET);
  for (const char* step : {"socket", "connect", "getsockname", "getnameinfo"}) {
    SocketScript script;
    script.hosts["two.example"] = {"127.0.0.1", "127.0.0.1"};
    script.failing[step] = {1};
    const Outcome outcome =
        local_towards("two.example", listener.service(), false, NI_NUMERICHOST, 0);
    EXPECT_EQ(0, outcome.code) << step;
    EXPECT_EQ("127.0.0.1", outcome.local) << step;
    EXPECT_EQ(2, script.calls[step]);
    EXPECT_EQ(0, script.lists);
    EXPECT_TRUE(script.sockets.empty());
  }
}

TEST(LocalAddress, MinusOneWhenEveryAddressFails) {
  Listener listener(AF_INET);
  for (const char* step : {"socket", "connect", "getsockname", "getnameinfo"}) {
    SocketScript script;
    script.hosts["two.example"] = {"127.0.0.1", "127.0.0.1"};
    script.failing[step] = {1, 2};
    const Outcome outcome =
        local_towards("two.example", listener.service(), false, NI_NUMERICHOST, 0);
    EXPECT_EQ(-1, outcome.code) << step;
    EXPECT_EQ("untouched", outcome.local) << step;
    EXPECT_EQ(0, script.lists);
    EXPECT_TRUE(script.sockets.empty());
  }
}

TEST(LocalAddress, StopsAtTheFirstAddressThatTakesTheConnection) {
  Listener listener(AF_INET);
  SocketScript script;
  script.hosts["two.example"] = {"127.0.0.1", "127.0.0.2"};
  EXPECT_EQ("127.0.0.1", local_towards("two.example", listener.service()).local);
  EXPECT_EQ(1, script.calls["connect"]);
  EXPECT_EQ(0, script.lists);
  EXPECT_TRUE(script.sockets.empty());
}

TEST(LocalAddress, QuirkARefusingServerCountsAsReached) {
  RefusingPort port(AF_INET);
  const Outcome outcome = local_towards("127.0.0.1", port.service());
  EXPECT_EQ(0, outcome.code);
  EXPECT_EQ("127.0.0.1", outcome.local);
  EXPECT_EQ(-1, local_towards("127.0.0.1", port.service(), false, NI_NUMERICHOST, 0).code);
}

TEST(LocalAddress, AServerThatDoesNotAnswerIsPassedOverAfterTheTimeout) {
  SilentPort port(AF_INET);
  const Outcome outcome = local_towards("127.0.0.1", port.service(), false, NI_NUMERICHOST, 1);
  EXPECT_EQ(-1, outcome.code);
  EXPECT_EQ("untouched", outcome.local);
}

// What the system says of an address to which it has no route: the attempt fails at once, the idle
// socket counts as writable, its local address is all zeros.
TEST(LocalAddress, ASocketThatNeverLeftCountsAsFailed) {
  Listener listener(AF_INET);
  for (const char* unreachable : {"192.0.2.1", "2001:db8::1"}) {
    SocketScript script;
    script.hosts["two.example"] = {unreachable, "127.0.0.1"};
    script.on_connect = [&](int fd, const sockaddr* address, socklen_t length) {
      if (script.calls["connect"] > 1) return orbtest_real_connect(fd, address, length);
      errno = ENETUNREACH;
      return -1;
    };
    const Outcome outcome = local_towards("two.example", listener.service());
    EXPECT_EQ(0, outcome.code) << unreachable;
    EXPECT_EQ("127.0.0.1", outcome.local) << unreachable;
    EXPECT_EQ(2, script.calls["connect"]);
  }
}

TEST(LocalAddress, UsesTheCallersNameFlags) {
  Listener listener(AF_INET);
  for (int flags : {NI_NUMERICHOST, NI_NUMERICHOST | NI_NUMERICSERV, NI_NUMERICHOST | NI_DGRAM}) {
    SocketScript script;
    EXPECT_EQ(0, local_towards("127.0.0.1", listener.service(), false, flags).code);
    EXPECT_EQ(std::vector<int>{flags}, script.name_flags);
    EXPECT_EQ(std::vector<socklen_t>{1025}, script.name_rooms);
  }
}

TEST(LocalAddress, SocketsAreNotInheritedByPrograms) {
  Listener listener(AF_INET);
  SocketScript script;
  script.on_connect = [](int fd, const sockaddr* address, socklen_t length) {
    EXPECT_EQ(FD_CLOEXEC, fcntl(fd, F_GETFD, 0));
    return orbtest_real_connect(fd, address, length);
  };
  EXPECT_EQ(0, local_towards("127.0.0.1", listener.service()).code);
  EXPECT_EQ(1, script.calls["connect"]);
}

TEST(LocalAddress, TheTextOfTheLocalAddressIsExpandedWithoutItsZone) {
  Listener listener(AF_INET6);
  SocketScript script;
  script.on_getsockname = [](int, sockaddr* address, socklen_t* length) {
    EXPECT_EQ(128u, *length);
    const auto local = orbtest::ipv6("fe80::42", 1);
    std::memcpy(address, local.get(), sizeof(sockaddr_in6));
    *length = sizeof(sockaddr_in6);
    return 0;
  };
  EXPECT_EQ("fe80:0:0:0:0:0:0:42", local_towards("::1", listener.service()).local);
}

// A machine with one interface, of index 6, that takes every link-local address of the tests.
orbtest::FakeSystem linked_machine() {
  orbtest::FakeSystem system;
  system.entries = {
      orbtest::link_entry("eth0", {0, 1, 2, 3, 4, 5}),
      orbtest::address_entry("eth0", orbtest::ipv4("192.0.2.2"), orbtest::ipv4("255.255.255.0"))};
  system.indexes["eth0"] = 6;
  return system;
}

struct ZoneCase {
  const char* name;
  std::string address;  // what the host name resolves to
  unsigned zone;        // with which it is connected to
};

TEST(LocalAddress, LinkLocalServerAddressesGetTheirZone) {
  const ZoneCase rows[] = {
      {"link-local", "fe80::1", 6},
      {"a zone that the resolver gave is replaced", "fe80::1%1", 6},
      {"not link-local", "2001:db8::1", 0},
      {"text of 31 characters", "fe80:0:1111:2222:3333:4444:55:6", 6},
      {"Quirk: text of 32 characters", "fe80:0:1111:2222:3333:4444:55:66", 0},
      {"Quirk: full text", "fe80:1111:2222:3333:4444:5555:6666:7777", 0},
  };
  ASSERT_EQ(31u, rows[3].address.size());
  ASSERT_EQ(32u, rows[4].address.size());
  for (const ZoneCase& row : rows) {
    orbtest::FakeSystem system = linked_machine();
    const std::string bare = row.address.substr(0, row.address.find('%'));
    system.zones[bare + "%6"] = true;
    SocketScript script;
    script.hosts["linked.example"] = {row.address};
    unsigned zone = 99;
    script.on_connect = [&](int, const sockaddr* address, socklen_t length) {
      EXPECT_EQ(sizeof(sockaddr_in6), length);
      zone = reinterpret_cast<const sockaddr_in6*>(address)->sin6_scope_id;
      return -1;
    };
    std::string local = "untouched";
    EXPECT_EQ(-1, Resolver(system, true)
                      .local_address("linked.example", "9", false, NI_NUMERICHOST, 0, &local));
    EXPECT_EQ(row.zone, zone) << row.name;
    EXPECT_EQ(32u, script.name_rooms.at(0)) << row.name;
    EXPECT_EQ(NI_NUMERICHOST, script.name_flags.at(0)) << row.name;
  }
}

TEST(LocalAddress, IPv4ServerAddressesNeedNoZone) {
  Listener listener(AF_INET);
  const orbtest::FakeSystem system = linked_machine();
  std::string local;
  EXPECT_EQ(0,
            Resolver(system, true)
                .local_address("127.0.0.1", listener.service(), false, NI_NUMERICHOST, 5, &local));
  EXPECT_EQ(0u, system.entry_walks);
}

struct ListCase {
  const char* name;
  std::string hosts;
  int code;
  std::vector<std::string> asked;  // of the resolver
};

// "127.0.0.1" and "good" take connections; "bad" and "worse" do not resolve, each in its own way.
TEST(LocalAddressFromList, TakesTheFirstThatSucceeds) {
  const ListCase rows[] = {
      {"empty list tries an empty host", "", -1, {}},
      {"one host", "good", 0, {"good"}},
      {"first succeeds", "good;bad", 0, {"good"}},
      {"second succeeds", "bad;good", 0, {"bad", "good"}},
      {"all fail: code of the last", "bad;worse", EAI_FAIL, {"bad", "worse"}},
      {"all fail, other order", "worse;bad", EAI_NONAME, {"worse", "bad"}},
      {"empty host between is tried", "bad;;good", 0, {"bad", "good"}},
      {"empty host first", ";good", 0, {"good"}},
      {"semicolon alone", ";", -1, {}},
      {"two semicolons", ";;", -1, {}},
      {"Quirk: no empty host behind the last semicolon", "bad;", EAI_NONAME, {"bad"}},
      {"empty host last but one", "bad;;", -1, {"bad"}},
      {"blanks belong to the host", "bad; good", EAI_FAIL, {"bad", " good"}},
      {"comma separates nothing", "good,bad", EAI_NONAME, {"good,bad"}},
  };
  Listener listener(AF_INET);
  for (const ListCase& row : rows) {
    SocketScript script;
    script.hosts["good"] = {"127.0.0.1"};
    script.refusals = {
        {"bad", EAI_NONAME}, {"worse", EAI_FAIL}, {" good", EAI_FAIL}, {"good,bad", EAI_NONAME}};
    const Outcome outcome = local_from_list(row.hosts, listener.service());
    EXPECT_EQ(row.code, outcome.code) << row.name;
    EXPECT_EQ(row.code == 0 ? "127.0.0.1" : "untouched", outcome.local) << row.name;
    std::vector<std::string> asked;
    for (const auto& question : script.questions) asked.push_back(*question.host);
    EXPECT_EQ(row.asked, asked) << row.name;
  }
}

TEST(LocalAddressFromList, MillionsOfEmptyHostsAreDoneAtOnce) {
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(-1, local_from_list(std::string(2'000'000, ';'), "9").code);
  // A quadratic step takes minutes.
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
}

TEST(LocalAddressFromList, AServerThatDoesNotAnswerThenOneThatDoes) {
  Listener reachable(AF_INET);
  SilentPort silent(AF_INET6);
  SocketScript script;
  script.hosts["silent"] = {"::1"};
  script.hosts["reachable"] = {"127.0.0.1"};
  script.on_connect = [&](int fd, const sockaddr* address, socklen_t length) {
    Endpoint& target = address->sa_family == AF_INET6 ? silent.endpoint() : reachable.endpoint();
    EXPECT_EQ(target.length, length);
    return orbtest_real_connect(fd, target.get(), target.length);
  };
  const Outcome outcome = local_from_list("silent;reachable", "9", false, 0, 1);
  EXPECT_EQ(0, outcome.code);
  EXPECT_EQ("127.0.0.1", outcome.local);
}

TEST(LocalAddressFromList, QuirkTheTextIsNumericWhateverTheFlags) {
  Listener listener(AF_INET);
  for (int flags : {0, NI_NAMEREQD, NI_NUMERICSERV}) {
    SocketScript script;
    const Outcome outcome = local_from_list("127.0.0.1", listener.service(), false, flags);
    EXPECT_EQ(0, outcome.code);
    EXPECT_EQ("127.0.0.1", outcome.local);
    EXPECT_EQ(std::vector<int>{NI_NUMERICHOST}, script.name_flags);
  }
}

}  // namespace
