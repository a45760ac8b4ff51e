// tests/network/enumerate_machine_test.cpp: the walk's cost and failures, and the real machine.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <net/if.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "network/enumerate.h"
#include "network/netinterface.h"
#include "tests/network/socket_script.h"
#include "tests/support/fake_system.h"
#include "tests/support/interface_entries.h"
#include "tests/support/interface_lines.h"

namespace {

using orbtest::address_entry;
using orbtest::FakeSystem;
using orbtest::interface_lines;
using orbtest::ipv4;
using orbtest::ipv6;
using orbtest::link_entry;
using quillon_com::orb::network::fill_list;
using testing::ElementsAre;

constexpr std::array<unsigned char, 6> kHardware = {0x00, 0x1c, 0x42, 0xa1, 0xb2, 0xc3};

// Counts what the walk asks a machine.
class CountingSystem : public FakeSystem {
 public:
  explicit CountingSystem(FakeSystem system) : FakeSystem(std::move(system)) {}
  unsigned interface_index(const std::string& name) const override {
    ++index_questions;
    return FakeSystem::interface_index(name);
  }
  bool family_usable(int family) const override {
    ++family_questions;
    return FakeSystem::family_usable(family);
  }
  mutable size_t index_questions = 0;
  mutable size_t family_questions = 0;
};

// `interfaces` up with one link entry and four addresses each.
FakeSystem large_machine(unsigned interfaces) {
  FakeSystem system;
  system.entries.emplace();
  for (unsigned i = 0; i < interfaces; ++i) {
    system.entries->push_back(link_entry("v" + std::to_string(i), kHardware));
  }
  for (unsigned i = 0; i < 4 * interfaces; ++i) {
    const std::string name = "v" + std::to_string(i % interfaces);
    system.entries->push_back(address_entry(name, i % 2 == 0 ? ipv4("10.0.0.1") : ipv6("fd00::1"),
                                            i % 2 == 0 ? ipv4("255.0.0.0") : ipv6("ffff::")));
    system.indexes[name] = i % interfaces + 1;
  }
  return system;
}

TEST(WalkCost, EachFactIsAskedOnce) {
  const CountingSystem system(large_machine(501));
  NetInterfaceList list(false);
  EXPECT_TRUE(fill_list(system, list));
  EXPECT_EQ(501U, list.getIndexes().size());
  EXPECT_EQ(2004U, interface_lines(list).size());
  EXPECT_EQ(1U, system.entry_walks);
  EXPECT_EQ(501U, system.index_questions);
  EXPECT_EQ(2U, system.family_questions);
}

TEST(WalkCost, NothingIsAskedOfAMachineWithoutCandidates) {
  FakeSystem down;
  down.entries = {link_entry("en0", kHardware),
                  address_entry("en0", ipv4("10.0.0.1"), ipv4("255.0.0.0"), 0)};
  const CountingSystem system(std::move(down));
  NetInterfaceList list(false);
  EXPECT_FALSE(fill_list(system, list));
  EXPECT_EQ(0U, system.index_questions);
  EXPECT_EQ(0U, system.family_questions);
}

double fill_seconds(const FakeSystem& system) {
  double best = 1e9;
  for (int round = 0; round < 5; ++round) {
    NetInterfaceList list(false);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(fill_list(system, list));
    best = std::min(
        best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  return best;
}

TEST(WalkCost, GrowsWithTheEntriesNotTheirSquare) {
  const double small = fill_seconds(large_machine(250));
  const double large = fill_seconds(large_machine(4000));  // 16 times as many
  EXPECT_LT(large, 16 * 5 * small) << "a quadratic walk takes 256 times as long";
}

// The texts of an address and its mask are one call each.
TEST(WalkFailures, EntryWhoseTextCannotBeMadeIsSkippedAlone) {
  for (int failing = 1; failing <= 4; ++failing) {
    FakeSystem system;
    system.entries = {link_entry("en0", kHardware),
                      address_entry("en0", ipv4("10.0.0.1"), ipv4("255.0.0.0")),
                      address_entry("en0", ipv4("10.0.0.2"), ipv4("255.0.0.0"))};
    system.indexes = {{"en0", 4}};
    NetInterfaceList list(false);
    {
      orbtest::SocketScript script;
      script.failing["getnameinfo"] = {failing};
      EXPECT_TRUE(fill_list(system, list));
    }
    const char* kept = failing <= 2 ? "10.0.0.2" : "10.0.0.1";
    EXPECT_THAT(interface_lines(list),
                ElementsAre(std::string("4 en0 001c42a1b2c3 ") + kept + "/255.0.0.0 10.0.0.0 v4"))
        << "call " << failing;
  }
}

// The real machine, against the C library's own list.

size_t listed_addresses() {
  ifaddrs* list = nullptr;
  EXPECT_EQ(0, getifaddrs(&list));
  size_t count = 0;
  for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
    if (entry->ifa_addr == nullptr || (entry->ifa_flags & IFF_UP) == 0) continue;
    const int family = entry->ifa_addr->sa_family;
    std::string mac;
    if (family != AF_INET && family != AF_INET6) continue;
    if (getMacAddr(mac, std::string(entry->ifa_name, strcspn(entry->ifa_name, ":")))) ++count;
  }
  freeifaddrs(list);
  return count;
}

TEST(RealMachine, ListsWhatTheCLibraryLists) {
  const size_t expected = listed_addresses();
  NetInterfaceList list(true);
  EXPECT_EQ(expected != 0, list.initialize());
  EXPECT_EQ(expected, interface_lines(list).size());
  NetInterfaceList again(true);
  EXPECT_EQ(expected != 0, getNetInterfacesList(again));
  EXPECT_EQ(interface_lines(list), interface_lines(again));
  for (int index : list.getIndexes()) {
    const NetInterface record = list.getNetInterface(static_cast<unsigned>(index));
    EXPECT_EQ(if_nametoindex(record.getIndexName().c_str()), record.getIndex());
    std::string mac;
    EXPECT_TRUE(getMacAddr(mac, record.getIndexName()));
    EXPECT_EQ(mac, record.getMACAddress());
    for (const IPAddress& address : record.getIPAddress()) {
      NetInterface carrier;
      EXPECT_TRUE(getNetInterfaceFromIPAddress(carrier, address.getIPAddress(), list));
    }
  }
}

TEST(RealMachine, SeveralThreadsSeeTheSameList) {
  NetInterfaceList expected(true);
  expected.initialize();
  std::vector<std::vector<std::string>> seen(8);
  std::vector<std::thread> threads;
  for (auto& result : seen) {
    threads.emplace_back([&result] {
      for (int round = 0; round < 50; ++round) {
        NetInterfaceList list(true);
        list.initialize();
        std::string mac;
        getMacAddr(mac, "lo");
        result = interface_lines(list);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const auto& result : seen) EXPECT_EQ(interface_lines(expected), result);
}

TEST(RealMachine, UnknownNamesHaveNoHardwareAddress) {
  std::string mac = "old";
  for (const std::string name : {"", "no-such-interface-name-of-any-length", "lo:1"}) {
    EXPECT_FALSE(getMacAddr(mac, name)) << name;
  }
  EXPECT_EQ("old", mac);
}

}  // namespace
