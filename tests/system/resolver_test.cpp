// tests/system/resolver_test.cpp: names and addresses by a hosts file and a name server of our own.
#include <gtest/gtest.h>
#include <netdb.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "network/networkutil.h"
#include "platform/system.h"
#include "sysprops/collect.h"
#include "sysprops/records.h"
#include "tests/support/mount_namespace.h"
#include "tests/support/temp_dir.h"
#include "tests/system/name_server.h"

namespace {

using orbtest::NameServer;
using orbtest::Zone;
using std::chrono::steady_clock;

// A machine called "box" as its administrator set it up.
struct Machine {
  std::string hosts;              // of /etc/hosts
  std::string domain;             // the kernel's
  std::string sources = "files";  // of host names, in the name-service switch
  std::string search = "";        // a line of /etc/resolv.conf
};

// Turns the child process into `machine`, with a network of its own.
bool become(const Machine& machine, const orbtest::TempDir& dir) {
  const std::string name = "box";
  const std::string resolver = "nameserver 127.0.0.1\noptions timeout:1 attempts:1\n";
  return unshare(CLONE_NEWNET | CLONE_NEWUTS) == 0 && orbtest::raise_loopback() &&
         sethostname(name.data(), name.size()) == 0 &&
         setdomainname(machine.domain.data(), machine.domain.size()) == 0 &&
         orbtest::replace_file("/etc/hosts", dir.path("hosts"), machine.hosts) &&
         orbtest::replace_file("/etc/nsswitch.conf", dir.path("switch"),
                               "hosts: " + machine.sources + "\n") &&
         orbtest::replace_file("/etc/resolv.conf", dir.path("resolv"), resolver + machine.search);
}

// What `body` writes on `machine`; nullopt when there is no such machine to be had.
std::optional<std::string> on(const Machine& machine, const std::function<bool()>& body) {
  const orbtest::TempDir dir;
  return orbtest::in_mount_namespace([&] { return become(machine, dir) && body(); });
}

#define SKIP_WITHOUT(text) \
  if (!(text)) GTEST_SKIP() << "needs root and name spaces of its own"

bool print_names() {
  std::printf("%ls %ls\n", getFqdnAddress().c_str(), getDomainName().c_str());
  return true;
}

struct HostsCase {
  const char* name;
  Machine machine;
  const char* names;  // full name, blank, domain
};

void PrintTo(const HostsCase& row, std::ostream* out) { *out << row.name; }

class HostsFile : public testing::TestWithParam<HostsCase> {};

TEST_P(HostsFile, Names) {
  const auto written = on(GetParam().machine, print_names);
  SKIP_WITHOUT(written);
  EXPECT_EQ(std::string(GetParam().names) + "\n", *written);
}

const HostsCase kHosts[] = {
    {"FullNameOfTheLine",
     {"127.0.0.1 localhost\n192.0.2.5 box.example.com box\n", ""},
     "box.example.com example.com"},
    {"KernelDomainFirst",
     {"192.0.2.5 box.example.com box\n", "corp.example"},
     "box.example.com corp.example"},
    {"ShortNameFirstTellsNoDomain", {"192.0.2.5 box box.example.com\n", ""}, "box N/A"},
    {"LocalhostGivesWayToTheFullAlias",
     {"127.0.0.1 localhost other.example.net box box.example.com\n", ""},
     "box.example.com example.com"},
    {"LocalhostGivesWayToTheHostName", {"127.0.0.1 localhost box\n", ""}, "box N/A"},
    {"IPv6LineAlone", {"2001:db8::5 box.example.org box\n", ""}, "box.example.org example.org"},
    {"QuirkNoLineAndNoDomainEndsInADot", {"127.0.0.1 localhost\n", ""}, "box. N/A"},
    {"UnsetDomainIsNoDomain", {"127.0.0.1 localhost\n", "(none)"}, "box. N/A"},
    {"NoLineButADomain", {"", "corp.example"}, "box.corp.example corp.example"},
};

INSTANTIATE_TEST_SUITE_P(Rules, HostsFile, testing::ValuesIn(kHosts),
                         [](const auto& row) { return row.param.name; });

TEST(HostsFileAddresses, QuirkFourteenNamesOfTwentyAddresses) {
  Machine machine;
  for (int number = 1; number <= 20; ++number)
    machine.hosts += "192.0.2." + std::to_string(number) + " twenty.example\n";
  const auto written = on(machine, [] {
    ANetworkUtil utility;
    std::vector<char*> names;
    std::printf("%d\n", utility.qlnGetAddrinfo("twenty.example", "80", names, NI_NUMERICHOST));
    std::sort(names.begin(), names.end(),
              [](const char* left, const char* right) { return strcmp(left, right) < 0; });
    const auto end =
        std::unique(names.begin(), names.end(),
                    [](const char* left, const char* right) { return strcmp(left, right) == 0; });
    std::printf("%zu, different %td", names.size(), end - names.begin());
    return true;
  });
  SKIP_WITHOUT(written);
  EXPECT_EQ("0\n14, different 14", *written);
}

TEST(HostsFileAddresses, PeerIsTheServerByName) {
  const auto written = on({"192.0.2.5 server.example\n2001:db8::5 server.example\n", ""}, [] {
    ANetworkUtil utility;
    for (const char* peer : {"192.0.2.5", "[2001:db8::5%eth0]", "192.0.2.6"})
      std::printf("%d", utility.qlnCompareAddressFromPeerAddress("server.example", "443", peer));
    std::printf("%d", utility.qlnCompareAddressFromPeerAddress("absent.example", "443", "x"));
    return true;
  });
  SKIP_WITHOUT(written);
  EXPECT_EQ("1100", *written);
}

struct ServerCase {
  const char* name;
  Zone zone;
  const char* names;  // full name, blank, domain
};

void PrintTo(const ServerCase& row, std::ostream* out) { *out << row.name; }

class NameServerAnswers : public testing::TestWithParam<ServerCase> {};

TEST_P(NameServerAnswers, Names) {
  const Machine machine{"127.0.0.1 localhost\n", "", "files dns", "search example.com\n"};
  const auto written = on(machine, [] {
    NameServer server;
    return server.start(GetParam().zone) && print_names();
  });
  SKIP_WITHOUT(written);
  EXPECT_EQ(std::string(GetParam().names) + "\n", *written);
}

const ServerCase kZones[] = {
    {"NameInTheSearchDomain", Zone::ipv4, "box.example.com example.com"},
    {"IPv6Alone", Zone::ipv6, "box.example.com example.com"},
    {"OfficialNameOfAnAlias", Zone::other_name, "real.example.org example.org"},
    {"NoSuchName", Zone::empty, "box. N/A"},
    {"NoAnswer", Zone::silent, "box. N/A"},
};

INSTANTIATE_TEST_SUITE_P(Rules, NameServerAnswers, testing::ValuesIn(kZones),
                         [](const auto& row) { return row.param.name; });

// What one look-up by the C library asks a server that never answers, and how long it takes, is
// the measure for each function and for both names of a report.
TEST(NameServerSilent, EveryCallWaitsForOneLookUpAtMost) {
  const auto written = on({"", "", "files dns"}, [] {
    NameServer server;
    if (!server.start(Zone::silent)) return false;
    auto begin = steady_clock::now();
    const hostent* entry = gethostbyname("box");
    const auto one = steady_clock::now() - begin;
    const int questions = server.asked();
    std::printf("%s %s\n", entry == nullptr ? "silent" : "?", questions > 0 ? "asked" : "?");
    const auto measure = [&](const char* name, const std::function<void()>& call) {
      begin = steady_clock::now();
      call();
      const auto taken = steady_clock::now() - begin;
      std::printf("%s %s %s\n", name, server.asked() == questions ? "as often" : "not as often",
                  taken < one + std::chrono::milliseconds(900) ? "no longer" : "longer");
    };
    measure("full name", [] { getFqdnAddress(); });
    measure("domain", [] { getDomainName(); });
    measure("report", [] {
      quillon_com::orb::sysprops::NetworkInformation record;
      collect_network(quillon_com::orb::platform::host(), record);
      std::printf("%ls %ls ", record.ipHostName.c_str(), record.domainName.c_str());
    });
    return true;
  });
  SKIP_WITHOUT(written);
  EXPECT_EQ(
      "silent asked\n"
      "full name as often no longer\n"
      "domain as often no longer\n"
      "box. N/A report as often no longer\n",
      *written);
}

// The same for what resolves a server: one look-up of its addresses is the measure.
TEST(NameServerSilent, TheUtilityWaitsForOneLookUpOfAServer) {
  const auto written = on({"", "", "files dns"}, [] {
    NameServer server;
    if (!server.start(Zone::silent)) return false;
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* list = nullptr;
    auto begin = steady_clock::now();
    const int code = getaddrinfo("far.example", "443", &hints, &list);
    const auto one = steady_clock::now() - begin;
    const int questions = server.asked();
    std::printf("%s\n", code != 0 && questions > 0 ? "silent" : "?");
    ANetworkUtil utility;
    const auto measure = [&](const char* name, int look_ups, const std::function<bool()>& fails) {
      begin = steady_clock::now();
      const bool failed = fails();
      const auto taken = steady_clock::now() - begin;
      const bool in_time = taken < look_ups * (one + std::chrono::milliseconds(900));
      std::printf("%s: %d %d %d\n", name, failed, server.asked() == look_ups * questions, in_time);
    };
    std::string local = "old";
    std::vector<char*> names;
    measure("names", 1,
            [&] { return utility.qlnGetAddrinfo("far.example", "443", names, 0) != 0; });
    measure("reach", 1, [&] {
      return utility.qlnGetLocalIPAddress("far.example", "443", local, false, 0, 1) != 0;
    });
    measure("list", 2, [&] {
      return utility.qlnGetLocalIPAddressFromList("far.example;near.example", "443", local, false,
                                                  0, 1) != 0;
    });
    measure("peer", 1, [&] {
      return !utility.qlnCompareAddressFromPeerAddress("far.example", "443", "192.0.2.1");
    });
    measure("address", 0, [&] {
      return !utility.qlnCompareAddressFromPeerAddress("192.0.2.1", "443", "192.0.2.1");
    });
    std::printf("%s %zu", local.c_str(), names.size());
    return true;
  });
  SKIP_WITHOUT(written);
  EXPECT_EQ(
      "silent\n"
      "names: 1 1 1\n"
      "reach: 1 1 1\n"
      "list: 1 1 1\n"
      "peer: 1 1 1\n"
      "address: 0 1 0\n"
      "old 0",
      *written);
}

TEST(NameServerSilent, AKernelDomainNeedsNoLookUp) {
  const auto written = on({"", "corp.example", "files dns"}, [] {
    NameServer server;
    if (!server.start(Zone::silent)) return false;
    std::printf("%ls ", getDomainName().c_str());
    std::printf("%d", server.asked());
    return true;
  });
  SKIP_WITHOUT(written);
  EXPECT_EQ("corp.example 0", *written);
}

}  // namespace
