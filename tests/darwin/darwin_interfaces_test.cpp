// tests/darwin/darwin_interfaces_test.cpp: the interface list of a scripted Mac, byte by byte.
#include <net/if.h>
#include <netinet/in.h>

#include <array>

#include "network/netinterface.h"
#include "platform/darwin_system.h"
#include "tests/darwin/scripted_macos.h"

namespace orbtest {
namespace {

namespace seam = quillon_com::orb::platform;
using Bytes = std::array<unsigned char, 6>;

const std::string kHardware("\x00\x1c\x42\x0a\xff\x01", 6);
const Bytes kHardwareBytes = {0x00, 0x1c, 0x42, 0x0a, 0xff, 0x01};

class MacInterfaces : public MacTest {
 protected:
  // The only entry of a list that holds `interface`.
  seam::InterfaceEntry only(const MacInterface& interface) {
    mac().interfaces = {interface};
    std::vector<seam::InterfaceEntry> entries;
    EXPECT_TRUE(seam::DarwinSystem().interface_entries(&entries));
    EXPECT_EQ(1u, entries.size());
    return entries.empty() ? seam::InterfaceEntry{} : entries.front();
  }

  static std::string bytes_in(const seam::SocketAddress& address) {
    return std::string(reinterpret_cast<const char*>(&address.bytes), sizeof address.bytes);
  }

  // `bytes` with zeros up to the size of the largest address.
  static std::string padded(std::string bytes) {
    bytes.resize(sizeof(sockaddr_storage));
    return bytes;
  }
};

TEST_F(MacInterfaces, AListThatCannotBeReadLeavesTheEntriesAlone) {
  std::vector<seam::InterfaceEntry> entries(3);
  EXPECT_FALSE(seam::DarwinSystem().interface_entries(&entries));
  EXPECT_EQ(3u, entries.size());
}

TEST_F(MacInterfaces, AnEmptyListReplacesTheEntries) {
  mac().interfaces.emplace();
  std::vector<seam::InterfaceEntry> entries(3);
  EXPECT_TRUE(seam::DarwinSystem().interface_entries(&entries));
  EXPECT_EQ(0u, entries.size());
}

TEST_F(MacInterfaces, EntriesKeepTheSystemsOrderNamesAndFlags) {
  mac().interfaces = {{"lo0", IFF_UP | IFF_LOOPBACK, ipv4_address("127.0.0.1"), {}},
                      {"en0", 0, ipv6_address("fe80::1", 4), {}},
                      {"lo0", 0x8863, std::nullopt, {}}};
  std::vector<seam::InterfaceEntry> entries;
  ASSERT_TRUE(seam::DarwinSystem().interface_entries(&entries));
  ASSERT_EQ(3u, entries.size());
  EXPECT_EQ("lo0", entries[0].name);
  EXPECT_EQ(9u, entries[0].flags);
  EXPECT_EQ("en0", entries[1].name);
  EXPECT_EQ(0u, entries[1].flags);
  EXPECT_EQ("lo0", entries[2].name);
  EXPECT_EQ(0x8863u, entries[2].flags);
}

TEST_F(MacInterfaces, AddressesComeWhole) {
  const std::string ipv4 = ipv4_address("192.168.1.20");
  const std::string ipv6 = ipv6_address("fe80::aede:48ff:fe00:1122", 4);
  for (const std::string& address : {ipv4, ipv6}) {
    const auto entry = only({"en0", IFF_UP, address, std::nullopt});
    EXPECT_EQ(address.size(), entry.address.size);
    EXPECT_EQ(padded(address), bytes_in(entry.address));
    EXPECT_FALSE(entry.netmask.present());
    EXPECT_FALSE(entry.link_address);
  }
}

TEST_F(MacInterfaces, ANullAddressAndANullMaskAreAbsent) {
  const auto entry = only({"utun0", IFF_UP, std::nullopt, std::nullopt});
  EXPECT_FALSE(entry.address.present());
  EXPECT_FALSE(entry.netmask.present());
  EXPECT_FALSE(entry.link_address);
}

TEST_F(MacInterfaces, AMaskHasNoMoreThanTheBytesThatItStates) {
  struct Row {
    const char* name;
    std::string mask;
    size_t size;
    std::string bytes;
  };
  const Row rows[] = {
      {"NoBytes", ipv4_mask("0.0.0.0"), 0, ""},
      {"NoBytesButAFamilyByte", ipv4_mask("0.0.0.0", AF_INET), 0, ""},
      {"Slash8", ipv4_mask("255.0.0.0"), 5, std::string("\x05\0\0\0\xff", 5)},
      {"Slash16", ipv4_mask("255.255.0.0"), 6, std::string("\x06\0\0\0\xff\xff", 6)},
      {"Slash24", ipv4_mask("255.255.255.0"), 7, std::string("\x07\0\0\0\xff\xff\xff", 7)},
      {"Slash32WithFamily", ipv4_mask("255.255.255.255", AF_INET), 8,
       std::string("\x08\x02\0\0\xff\xff\xff\xff", 8)},
      {"Ipv6", ipv6_mask("ffff:ffff:ffff:ffff::"), 28, ipv6_mask("ffff:ffff:ffff:ffff::")},
  };
  for (const Row& row : rows) {
    const auto entry = only({"en0", IFF_UP, ipv4_address("10.0.0.1"), row.mask});
    EXPECT_TRUE(entry.netmask.present()) << row.name;
    EXPECT_EQ(row.size, entry.netmask.size) << row.name;
    EXPECT_EQ(padded(row.bytes), bytes_in(entry.netmask)) << row.name;
  }
}

TEST_F(MacInterfaces, AnAddressLongerThanTheLargestIsCut) {
  std::string address(255, 'x');
  address[0] = '\xff';
  address[1] = AF_INET6;
  const auto entry = only({"en0", IFF_UP, address, std::nullopt});
  EXPECT_EQ(128u, entry.address.size);
  EXPECT_EQ(address.substr(0, 128), bytes_in(entry.address));
}

struct LinkRow {
  const char* name;
  std::string address;
  Bytes expected;
};

// A link-layer address of `length` bytes whose own length says `stated`.
std::string cut_link(const std::string& name, unsigned char stated) {
  std::string bytes = link_address(name, kHardware);
  bytes.resize(std::max<size_t>(stated, 4));
  bytes[0] = static_cast<char>(stated);
  return bytes;
}

std::string with_length_of_name(std::string bytes, unsigned char length) {
  bytes[5] = static_cast<char>(length);
  return bytes;
}

TEST_F(MacInterfaces, TheHardwareAddressStandsBehindTheName) {
  const LinkRow rows[] = {
      {"ThreeLetterName", link_address("en0", kHardware), kHardwareBytes},
      {"NameThatFillsTheRecord", link_address("bridge", kHardware), kHardwareBytes},
      {"NameThatMakesItLonger", link_address("bridge100abcdef", kHardware), kHardwareBytes},
      {"NoName", link_address("", kHardware), kHardwareBytes},
      {"LongerHardwareAddressGivesItsFirstSix",
       link_address("fw0", kHardware + std::string("\x77\x88", 2)), kHardwareBytes},
      {"NoHardwareAddressIsZero", link_address("utun0", ""), Bytes{}},
      {"ShorterThanSixIsPaddedByTheRecord", link_address("p2p0", "\x11\x22"), {0x11, 0x22}},
  };
  for (const LinkRow& row : rows) {
    const auto entry = only({"en0", IFF_UP, row.address, std::nullopt});
    ASSERT_TRUE(entry.link_address) << row.name;
    EXPECT_EQ(row.expected, *entry.link_address) << row.name;
    EXPECT_EQ(AF_LINK, entry.address.get()->sa_family) << row.name;
  }
}

TEST_F(MacInterfaces, WhatLiesBehindTheAddressesOwnEndIsZero) {
  const LinkRow rows[] = {
      {"EndsWithinTheHardwareAddress", cut_link("en0", 14), {0x00, 0x1c, 0x42}},
      {"EndsOneByteBeforeItsEnd", cut_link("en0", 16), {0x00, 0x1c, 0x42, 0x0a, 0xff}},
      {"EndsWithItsLastByte", cut_link("en0", 17), kHardwareBytes},
      {"EndsBehindTheName", cut_link("en0", 11), Bytes{}},
      {"EndsWithinTheName", cut_link("en0", 9), Bytes{}},
      {"EndsBeforeTheName", cut_link("en0", 8), Bytes{}},
      {"EndsBeforeTheLengthOfTheName", cut_link("en0", 5), Bytes{}},
      {"StatesNothing", cut_link("en0", 0), Bytes{}},
      {"LongTunnelName", link_address("utun1234567890", ""), Bytes{}},
      {"NameSaidToReachPastTheEnd", with_length_of_name(link_address("en0", kHardware), 255),
       Bytes{}},
      {"NameSaidToReachTheLastByte", with_length_of_name(cut_link("en0", 17), 8), {0x01}},
  };
  for (const LinkRow& row : rows) {
    const auto entry = only({"en0", IFF_UP, row.address, std::nullopt});
    ASSERT_TRUE(entry.link_address) << row.name;
    EXPECT_EQ(row.expected, *entry.link_address) << row.name;
  }
}

TEST_F(MacInterfaces, OnlyLinkLayerEntriesHaveAHardwareAddress) {
  EXPECT_FALSE(only({"en0", IFF_UP, ipv4_address("10.0.0.1"), std::nullopt}).link_address);
  EXPECT_FALSE(only({"en0", IFF_UP, ipv6_address("fe80::1"), std::nullopt}).link_address);
}

TEST_F(MacInterfaces, IndexesFamiliesAndZonesAreTheSystems) {
  mac().indexes = {{"en0", 4}};
  mac().unusable_families = {AF_INET6};
  const seam::DarwinSystem system;
  EXPECT_EQ(4u, system.interface_index("en0"));
  EXPECT_EQ(0u, system.interface_index("en1"));
  EXPECT_TRUE(system.family_usable(AF_INET));
  EXPECT_FALSE(system.family_usable(AF_INET6));
  EXPECT_TRUE(system.zone_accepted("fe80::1%4"));
  EXPECT_FALSE(system.zone_accepted("fe80::1%5"));
}

// The exported functions, on the Mac that they run on.
TEST_F(MacInterfaces, TheListHoldsWhatTheKernelDelivers) {
  mac().indexes = {{"lo0", 1}, {"en0", 4}, {"utun0", 9}};
  mac().interfaces = {
      {"lo0", IFF_UP | IFF_LOOPBACK, link_address("lo0", ""), {}},
      {"lo0", IFF_UP | IFF_LOOPBACK, ipv4_address("127.0.0.1"), ipv4_mask("255.0.0.0")},
      {"en0", IFF_UP, link_address("en0", kHardware), {}},
      {"en0", IFF_UP, ipv6_address("fe80::aede:48ff:fe00:1122", 4),
       ipv6_mask("ffff:ffff:ffff:ffff::")},
      {"en0", IFF_UP, ipv4_address("192.168.1.20"), ipv4_mask("255.255.255.0", AF_INET)},
      {"utun0", IFF_UP, std::nullopt, {}},
      {"utun0", IFF_UP, ipv4_address("10.8.0.2"), ipv4_mask("0.0.0.0")},
      {"utun0", IFF_UP, link_address("utun0", ""), {}},
      {"en1", 0, ipv4_address("10.0.0.9"), ipv4_mask("255.0.0.0")},
  };
  NetInterfaceList list(false);
  ASSERT_TRUE(list.initialize());
  ASSERT_EQ((std::vector<int>{4, 9}), list.getIndexes());

  const NetInterface en0 = list.getNetInterface(4);
  EXPECT_EQ("en0", en0.getIndexName());
  EXPECT_EQ("001c420aff01", en0.getMACAddress());
  const auto addresses = en0.getIPAddress();
  ASSERT_EQ(2u, addresses.size());
  EXPECT_EQ("fe80:0:0:0:aede:48ff:fe00:1122", addresses[0].getIPAddress());
  EXPECT_EQ("ffff:ffff:ffff:ffff:0:0:0:0", addresses[0].getSubNetMask());
  EXPECT_EQ("fe80:0:0:0:0:0:0:0", addresses[0].getSubNetAddr());
  EXPECT_EQ(unsigned{AF_INET6}, addresses[0].getIPFamily());
  EXPECT_EQ("192.168.1.20", addresses[1].getIPAddress());
  EXPECT_EQ("255.255.255.0", addresses[1].getSubNetMask());
  EXPECT_EQ("192.168.1.0", addresses[1].getSubNetAddr());
  EXPECT_EQ(unsigned{AF_INET}, addresses[1].getIPFamily());

  const NetInterface tunnel = list.getNetInterface(9);
  EXPECT_EQ("000000000000", tunnel.getMACAddress());
  ASSERT_EQ(1u, tunnel.getIPAddress().size());
  EXPECT_EQ("10.8.0.2", tunnel.getIPAddress()[0].getIPAddress());
  EXPECT_EQ("0.0.0.0", tunnel.getIPAddress()[0].getSubNetMask());
  EXPECT_EQ("0.0.0.0", tunnel.getIPAddress()[0].getSubNetAddr());
}

TEST_F(MacInterfaces, MasksOfEveryLengthGiveTheirText) {
  struct Row {
    std::string mask, text, subnet;
  };
  const Row rows[] = {
      {ipv4_mask("0.0.0.0"), "0.0.0.0", "0.0.0.0"},
      {ipv4_mask("128.0.0.0"), "128.0.0.0", "128.0.0.0"},
      {ipv4_mask("255.0.0.0"), "255.0.0.0", "172.0.0.0"},
      {ipv4_mask("255.240.0.0"), "255.240.0.0", "172.16.0.0"},
      {ipv4_mask("255.255.255.0"), "255.255.255.0", "172.20.10.0"},
      {ipv4_mask("255.255.255.255", AF_INET), "255.255.255.255", "172.20.10.3"},
  };
  mac().indexes = {{"en0", 4}};
  for (const Row& row : rows) {
    mac().interfaces = {{"en0", IFF_UP, link_address("en0", kHardware), {}},
                        {"en0", IFF_UP, ipv4_address("172.20.10.3"), row.mask}};
    NetInterfaceList list(false);
    ASSERT_TRUE(list.initialize()) << row.text;
    const auto addresses = list.getNetInterface(4).getIPAddress();
    ASSERT_EQ(1u, addresses.size());
    EXPECT_EQ(row.text, addresses[0].getSubNetMask());
    EXPECT_EQ(row.subnet, addresses[0].getSubNetAddr());
  }
}

TEST_F(MacInterfaces, AnAddressWithoutAMaskIsNotListed) {
  mac().indexes = {{"en0", 4}};
  mac().interfaces = {{"en0", IFF_UP, link_address("en0", kHardware), {}},
                      {"en0", IFF_UP, ipv4_address("172.20.10.3"), std::nullopt}};
  EXPECT_FALSE(NetInterfaceList(false).initialize());
}

TEST_F(MacInterfaces, TheHardwareAddressIsFoundByName) {
  mac().interfaces = {{"en0", IFF_UP, std::nullopt, {}},
                      {"en0", IFF_UP, link_address("en0", kHardware), {}}};
  std::string text = "before";
  EXPECT_TRUE(getMacAddr(text, "en0"));
  EXPECT_EQ("001c420aff01", text);
  EXPECT_FALSE(getMacAddr(text, "en1"));
  EXPECT_EQ("001c420aff01", text);
}

}  // namespace
}  // namespace orbtest
