// tests/platform/linux_interfaces_test.cpp: entries of the C library's list as facts.
#include "platform/linux_interfaces.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <netpacket/packet.h>

#include <cstring>
#include <string>

namespace {

using namespace quillon_com::orb::platform;

sockaddr_storage link(unsigned char length, const std::string& bytes) {
  sockaddr_storage storage{};
  sockaddr_ll address{};
  address.sll_family = AF_PACKET;
  address.sll_halen = length;
  std::memcpy(address.sll_addr, bytes.data(), bytes.size());
  std::memcpy(&storage, &address, sizeof address);
  return storage;
}

InterfaceEntry entry_with(sockaddr_storage* address, sockaddr_storage* mask = nullptr,
                          const char* name = "eth0", unsigned flags = IFF_UP) {
  ifaddrs entry{};
  std::string copy = name;
  entry.ifa_name = copy.data();
  entry.ifa_flags = flags;
  entry.ifa_addr = reinterpret_cast<sockaddr*>(address);
  entry.ifa_netmask = reinterpret_cast<sockaddr*>(mask);
  return entry_of(entry);
}

TEST(Entry, WithoutAddress) {
  const InterfaceEntry entry = entry_with(nullptr);
  EXPECT_EQ("eth0", entry.name);
  EXPECT_FALSE(entry.address.present());
  EXPECT_FALSE(entry.netmask.present());
  EXPECT_FALSE(entry.link_address.has_value());
}

TEST(Entry, AnotherFamilyHasTheGenericRecord) {
  sockaddr_storage address{};
  address.ss_family = AF_UNIX;
  const InterfaceEntry entry = entry_with(&address);
  EXPECT_EQ(sizeof(sockaddr), entry.address.size);
  EXPECT_EQ(AF_UNIX, entry.address.get()->sa_family);
  EXPECT_FALSE(entry.link_address.has_value());
}

TEST(Entry, LabelIsCutOffTheName) {
  EXPECT_EQ("eth0", entry_with(nullptr, nullptr, "eth0:1").name);
  EXPECT_EQ("eth0", entry_with(nullptr, nullptr, "eth0:1:2").name);
  EXPECT_EQ("", entry_with(nullptr, nullptr, ":1").name);
  EXPECT_EQ("", entry_of(ifaddrs{}).name);
}

TEST(Entry, FlagsArePassedOn) {
  EXPECT_EQ(unsigned{IFF_UP | IFF_LOOPBACK},
            entry_with(nullptr, nullptr, "lo", IFF_UP | IFF_LOOPBACK).flags);
}

TEST(Entry, Ipv4WithMask) {
  sockaddr_storage address{};
  sockaddr_storage mask{};
  address.ss_family = mask.ss_family = AF_INET;
  reinterpret_cast<sockaddr_in*>(&address)->sin_addr.s_addr = htonl(0xC0000201);
  reinterpret_cast<sockaddr_in*>(&mask)->sin_addr.s_addr = htonl(0xFFFFFF00);
  const InterfaceEntry entry = entry_with(&address, &mask);
  EXPECT_EQ(sizeof(sockaddr_in), entry.address.size);
  EXPECT_EQ(sizeof(sockaddr_in), entry.netmask.size);
  EXPECT_EQ(0, std::memcmp(&address, &entry.address.bytes, sizeof(sockaddr_in)));
  EXPECT_EQ(0, std::memcmp(&mask, &entry.netmask.bytes, sizeof(sockaddr_in)));
  EXPECT_FALSE(entry.link_address.has_value());
}

TEST(Entry, Ipv6) {
  sockaddr_storage address{};
  address.ss_family = AF_INET6;
  reinterpret_cast<sockaddr_in6*>(&address)->sin6_scope_id = 7;
  const InterfaceEntry entry = entry_with(&address);
  EXPECT_EQ(sizeof(sockaddr_in6), entry.address.size);
  EXPECT_EQ(7u, reinterpret_cast<const sockaddr_in6*>(entry.address.get())->sin6_scope_id);
}

TEST(Entry, AMaskWithoutFamilyIsAsLongAsItsAddress) {
  sockaddr_storage address{};
  address.ss_family = AF_INET6;
  sockaddr_in6 record{};
  record.sin6_addr.s6_addr[15] = 0xfe;
  sockaddr_storage mask{};
  std::memcpy(&mask, &record, sizeof record);
  const InterfaceEntry entry = entry_with(&address, &mask);
  EXPECT_EQ(sizeof(sockaddr_in6), entry.netmask.size);
  EXPECT_EQ(0, std::memcmp(&record, &entry.netmask.bytes, sizeof record));
}

struct LinkCase {
  const char* name;
  unsigned char length;
  std::string bytes;
  std::array<unsigned char, 6> address;
};

class LinkAddress : public testing::TestWithParam<LinkCase> {};

TEST_P(LinkAddress, HasSixBytesWhateverItsStatedLength) {
  sockaddr_storage address = link(GetParam().length, GetParam().bytes);
  EXPECT_EQ(GetParam().address, entry_with(&address).link_address);
}

using Six = std::array<unsigned char, 6>;

INSTANTIATE_TEST_SUITE_P(
    Lengths, LinkAddress,
    testing::Values(LinkCase{"Ethernet", 6, "\x02\x1c\x42\x0a\xff\x01",
                             Six{0x02, 0x1c, 0x42, 0x0a, 0xff, 0x01}},
                    LinkCase{"LoopbackOfZeros", 6, "", Six{}},
                    LinkCase{"StatedLengthOfZero", 0, "\x01\x02", Six{1, 2, 0, 0, 0, 0}},
                    LinkCase{"StatedLengthOfFour", 4, "\x0a\x01\x02\x03\x04\x05",
                             Six{0x0a, 0x01, 0x02, 0x03, 0x04, 0x05}},
                    LinkCase{"FirstSixOfTwenty", 20, "\x01\x02\x03\x04\x05\x06\x07\x08",
                             Six{1, 2, 3, 4, 5, 6}}),
    [](const auto& row) { return row.param.name; });

}  // namespace
