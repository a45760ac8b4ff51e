// tests/network/enumerate_test.cpp: the walk over scripted entries, rule by rule.
#include "network/enumerate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "platform/system.h"
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
using orbtest::shortened;
using quillon_com::orb::network::fill_list;
using quillon_com::orb::network::hardware_address;
using quillon_com::orb::platform::InterfaceEntry;
using quillon_com::orb::platform::SocketAddress;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::array<unsigned char, 6> kHardware = {0x00, 0x1c, 0x42, 0xa1, 0xb2, 0xc3};

// en0 has index 4, en1 index 1, lo index 7; each with the entries given.
FakeSystem machine(std::vector<InterfaceEntry> entries) {
  FakeSystem system;
  system.entries = std::move(entries);
  system.indexes = {{"en0", 4}, {"en1", 1}, {"lo", 7}};
  return system;
}

InterfaceEntry en0(const SocketAddress& address, const SocketAddress& mask) {
  return address_entry("en0", address, mask);
}

const char kEn0Line[] = "4 en0 001c42a1b2c3 192.168.1.20/255.255.255.0 192.168.1.0 v4";

struct EntryCase {
  const char* name;
  std::vector<InterfaceEntry> entries;
  bool loopback;
  std::vector<std::string> expected;
};

class OneEntry : public testing::TestWithParam<EntryCase> {};

TEST_P(OneEntry, IsTakenOrSkipped) {
  const FakeSystem system = machine(GetParam().entries);
  NetInterfaceList list(GetParam().loopback);
  EXPECT_EQ(!GetParam().expected.empty(), fill_list(system, list));
  EXPECT_EQ(GetParam().expected, interface_lines(list));
  if (GetParam().expected.empty()) {
    EXPECT_THAT(list.getIndexes(), IsEmpty());
  }
}

InterfaceEntry usual(unsigned flags) {
  return address_entry("en0", ipv4("192.168.1.20"), ipv4("255.255.255.0"), flags);
}

INSTANTIATE_TEST_SUITE_P(
    Taken, OneEntry,
    testing::Values(
        EntryCase{"IPv4", {link_entry("en0", kHardware), usual(IFF_UP)}, false, {kEn0Line}},
        EntryCase{"LinkEntryBehindTheAddress",
                  {usual(IFF_UP), link_entry("en0", kHardware)},
                  false,
                  {kEn0Line}},
        EntryCase{"LinkEntryThatIsDown",
                  {link_entry("en0", kHardware, 0), usual(IFF_UP)},
                  false,
                  {kEn0Line}},
        EntryCase{"FirstOfTwoLinkEntries",
                  {link_entry("en0", kHardware), link_entry("en0", {}), usual(IFF_UP)},
                  false,
                  {kEn0Line}},
        EntryCase{"NoFlagButUpCounts",
                  {link_entry("en0", kHardware), usual(IFF_UP | IFF_POINTOPOINT | IFF_NOARP)},
                  false,
                  {kEn0Line}},
        EntryCase{"LoopbackWhenAskedFor",
                  {link_entry("en0", kHardware), usual(IFF_UP | IFF_LOOPBACK)},
                  true,
                  {kEn0Line}},
        EntryCase{"MaskWithoutFamily",
                  {link_entry("en0", kHardware),
                   en0(ipv4("192.168.1.20"), shortened(ipv4("255.255.255.0"), 7, false))},
                  false,
                  {kEn0Line}},
        EntryCase{"MaskOfNoByte",
                  {link_entry("en0", kHardware),
                   en0(ipv4("192.168.1.20"), shortened(ipv4("0.0.0.0"), 0, false))},
                  false,
                  {"4 en0 001c42a1b2c3 192.168.1.20/0.0.0.0 0.0.0.0 v4"}},
        EntryCase{"HostMask",
                  {link_entry("en0", kHardware), en0(ipv4("10.9.8.7"), ipv4("255.255.255.255"))},
                  false,
                  {"4 en0 001c42a1b2c3 10.9.8.7/255.255.255.255 10.9.8.7 v4"}}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    IPv6, OneEntry,
    testing::Values(
        EntryCase{"LinkLocalLosesItsZone",
                  {link_entry("en0", kHardware),
                   en0(ipv6("fe80::aede:48ff:fe00:1122", 4), ipv6("ffff:ffff:ffff:ffff::"))},
                  false,
                  {"4 en0 001c42a1b2c3 fe80:0:0:0:aede:48ff:fe00:1122/ffff:ffff:ffff:ffff:0:0:0:0 "
                   "fe80:0:0:0:0:0:0:0 v6"}},
        EntryCase{"ExpandedByGroups",
                  {link_entry("en0", kHardware), en0(ipv6("2001:db8::1"), ipv6("ffff:fff0::"))},
                  false,
                  {"4 en0 001c42a1b2c3 2001:db8:0:0:0:0:0:1/ffff:fff0:0:0:0:0:0:0 "
                   "2001:db0:0:0:0:0:0:0 v6"}},
        EntryCase{"HostMaskNeedsNoExpansion",
                  {link_entry("en0", kHardware),
                   en0(ipv6("fd00::1"), ipv6("ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"))},
                  false,
                  {"4 en0 001c42a1b2c3 "
                   "fd00:0:0:0:0:0:0:1/ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff "
                   "fd00:0:0:0:0:0:0:1 v6"}},
        EntryCase{"MaskWithoutFamily",
                  {link_entry("en0", kHardware),
                   en0(ipv6("2001:db8::1"), shortened(ipv6("ffff::"), 10, false))},
                  false,
                  {"4 en0 001c42a1b2c3 2001:db8:0:0:0:0:0:1/ffff:0:0:0:0:0:0:0 "
                   "2001:0:0:0:0:0:0:0 v6"}},
        EntryCase{"QuirkIPv4TailIsOneGroup",
                  {link_entry("en0", kHardware),
                   en0(ipv6("::ffff:1.2.3.4"), ipv6("ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"))},
                  false,
                  {"4 en0 001c42a1b2c3 "
                   "0:0:0:0:0:0:ffff:1.2.3.4/ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff "
                   "0:0:0:0:0:0:ffff:1 v6"}}),
    [](const auto& row) { return row.param.name; });

InterfaceEntry of_family(int family) {
  InterfaceEntry entry = usual(IFF_UP);
  entry.address.bytes.ss_family = static_cast<sa_family_t>(family);
  return entry;
}

INSTANTIATE_TEST_SUITE_P(
    Skipped, OneEntry,
    testing::Values(
        EntryCase{"NothingAtAll", {}, true, {}},
        EntryCase{"NoAddress",
                  {link_entry("en0", kHardware), en0(SocketAddress{}, ipv4("255.255.255.0"))},
                  true,
                  {}},
        EntryCase{"Down", {link_entry("en0", kHardware), usual(0)}, true, {}},
        EntryCase{"DownButRunning", {link_entry("en0", kHardware), usual(IFF_RUNNING)}, true, {}},
        EntryCase{
            "Loopback", {link_entry("en0", kHardware), usual(IFF_UP | IFF_LOOPBACK)}, false, {}},
        EntryCase{"LinkEntryAlone", {link_entry("en0", kHardware)}, true, {}},
        EntryCase{
            "FamilyUnspecified", {link_entry("en0", kHardware), of_family(AF_UNSPEC)}, true, {}},
        EntryCase{"FamilyLocal", {link_entry("en0", kHardware), of_family(AF_UNIX)}, true, {}},
        EntryCase{"NoLinkEntry", {usual(IFF_UP)}, true, {}},
        EntryCase{"LinkEntryOfAnotherName",
                  {link_entry("en", kHardware), link_entry("en01", kHardware), usual(IFF_UP)},
                  true,
                  {}},
        EntryCase{"NoMask",
                  {link_entry("en0", kHardware), en0(ipv4("192.168.1.20"), SocketAddress{})},
                  true,
                  {}},
        EntryCase{"NoMaskIPv6",
                  {link_entry("en0", kHardware), en0(ipv6("2001:db8::1"), SocketAddress{})},
                  true,
                  {}},
        EntryCase{"NothingButAName", {InterfaceEntry{}}, true, {}}),
    [](const auto& row) { return row.param.name; });

TEST(Walk, ListThatCannotBeReadAddsNothing) {
  const FakeSystem system;
  NetInterfaceList list(true);
  EXPECT_FALSE(fill_list(system, list));
  EXPECT_THAT(list.getIndexes(), IsEmpty());
}

TEST(Walk, FamilyThatCannotBeUsedIsSkippedAlone) {
  FakeSystem system =
      machine({link_entry("en0", kHardware), en0(ipv6("2001:db8::1"), ipv6("ffff::")),
               usual(IFF_UP), en0(ipv6("2001:db8::2"), ipv6("ffff::"))});
  system.families[AF_INET6] = false;
  NetInterfaceList list(false);
  EXPECT_TRUE(fill_list(system, list));
  EXPECT_THAT(interface_lines(list), ElementsAre(kEn0Line));
  system.families[AF_INET] = false;
  NetInterfaceList empty(false);
  EXPECT_FALSE(fill_list(system, empty));
  EXPECT_THAT(empty.getIndexes(), IsEmpty());
}

TEST(Walk, BadEntriesDoNotStopIt) {
  const FakeSystem system =
      machine({link_entry("en0", kHardware), en0(ipv4("10.0.0.1"), SocketAddress{}),
               address_entry("tun0", ipv4("10.0.0.2"), ipv4("255.0.0.0")), of_family(AF_UNIX),
               usual(IFF_UP)});
  NetInterfaceList list(false);
  EXPECT_TRUE(fill_list(system, list));
  EXPECT_THAT(interface_lines(list), ElementsAre(kEn0Line));
}

TEST(Walk, AddressesKeepTheSystemsOrderAndInterfacesAscend) {
  const FakeSystem system =
      machine({link_entry("en0", kHardware), link_entry("en1", {1, 2, 3, 4, 5, 6}),
               en0(ipv6("fd00::9"), ipv6("ffff::")), en0(ipv4("10.0.0.2"), ipv4("255.0.0.0")),
               address_entry("en1", ipv4("10.0.0.3"), ipv4("255.0.0.0")),
               en0(ipv4("10.0.0.1"), ipv4("255.0.0.0")), en0(ipv6("fd00::1"), ipv6("ffff::"))});
  NetInterfaceList list(false);
  EXPECT_TRUE(fill_list(system, list));
  EXPECT_THAT(interface_lines(list),
              ElementsAre("1 en1 010203040506 10.0.0.3/255.0.0.0 10.0.0.0 v4",
                          "4 en0 001c42a1b2c3 fd00:0:0:0:0:0:0:9/ffff:0:0:0:0:0:0:0 "
                          "fd00:0:0:0:0:0:0:0 v6",
                          "4 en0 001c42a1b2c3 10.0.0.2/255.0.0.0 10.0.0.0 v4",
                          "4 en0 001c42a1b2c3 10.0.0.1/255.0.0.0 10.0.0.0 v4",
                          "4 en0 001c42a1b2c3 fd00:0:0:0:0:0:0:1/ffff:0:0:0:0:0:0:0 "
                          "fd00:0:0:0:0:0:0:0 v6"));
  EXPECT_FALSE(list.getNetInterface(4U).getSortLast());
}

TEST(Walk, LoopbackStandsByItsIndex) {
  const FakeSystem system =
      machine({link_entry("lo", {}),
               address_entry("lo", ipv4("127.0.0.1"), ipv4("255.0.0.0"), IFF_UP | IFF_LOOPBACK),
               link_entry("en0", kHardware), usual(IFF_UP)});
  NetInterfaceList all(true);
  EXPECT_TRUE(fill_list(system, all));
  EXPECT_THAT(interface_lines(all),
              ElementsAre(kEn0Line, "7 lo 000000000000 127.0.0.1/255.0.0.0 127.0.0.0 v4"));
  NetInterfaceList without(false);
  EXPECT_TRUE(fill_list(system, without));
  EXPECT_THAT(interface_lines(without), ElementsAre(kEn0Line));
}

TEST(Walk, QuirkSecondCallAddsEveryAddressAgain) {
  const FakeSystem system = machine({link_entry("en0", kHardware), usual(IFF_UP)});
  NetInterfaceList list(false);
  list.getNetInterface(4U).setOption(NETIF_SORT_LAST, 1U);
  EXPECT_TRUE(fill_list(system, list));
  EXPECT_TRUE(fill_list(system, list));
  EXPECT_THAT(interface_lines(list), ElementsAre(kEn0Line, kEn0Line));
  EXPECT_TRUE(list.getNetInterface(4U).getSortLast()) << "left as the caller set it";
  EXPECT_FALSE(fill_list(FakeSystem(), list)) << "what was there already does not count";
  EXPECT_THAT(interface_lines(list), ElementsAre(kEn0Line, kEn0Line));
}

TEST(Walk, LaterTextsReplaceThoseOfAnEarlierCall) {
  FakeSystem system = machine({link_entry("en0", kHardware), usual(IFF_UP)});
  NetInterfaceList list(false);
  EXPECT_TRUE(fill_list(system, list));
  system.entries = {link_entry("new0", {6, 5, 4, 3, 2, 1}),
                    address_entry("new0", ipv4("10.0.0.1"), ipv4("255.0.0.0"))};
  system.indexes = {{"new0", 4}};
  EXPECT_TRUE(fill_list(system, list));
  EXPECT_THAT(interface_lines(list),
              ElementsAre("4 new0 060504030201 192.168.1.20/255.255.255.0 192.168.1.0 v4",
                          "4 new0 060504030201 10.0.0.1/255.0.0.0 10.0.0.0 v4"));
}

TEST(Walk, QuirkInterfaceThatIsGoneIsFiledUnderZero) {
  const FakeSystem system = machine({link_entry("gone0", kHardware),
                                     address_entry("gone0", ipv4("10.0.0.1"), ipv4("255.0.0.0"))});
  NetInterfaceList list(false);
  EXPECT_TRUE(fill_list(system, list));
  EXPECT_THAT(list.getIndexes(), ElementsAre(0));
  EXPECT_THAT(interface_lines(list),
              ElementsAre("0 gone0 001c42a1b2c3 10.0.0.1/255.0.0.0 10.0.0.0 v4"));
}

TEST(Walk, NamesOfFullLengthAreToldApart) {
  const std::string full(16, 'x');
  FakeSystem system =
      machine({link_entry(full, kHardware), link_entry(full.substr(1), {1, 1, 1, 1, 1, 1}),
               address_entry(full, ipv4("10.0.0.1"), ipv4("255.0.0.0")),
               address_entry(full.substr(1), ipv4("10.0.0.2"), ipv4("255.0.0.0")),
               address_entry("", ipv4("10.0.0.3"), ipv4("255.0.0.0"))});
  system.indexes = {{full, 3}, {full.substr(1), 2}};
  NetInterfaceList list(false);
  EXPECT_TRUE(fill_list(system, list));
  EXPECT_THAT(interface_lines(list),
              ElementsAre("2 " + full.substr(1) + " 010101010101 10.0.0.2/255.0.0.0 10.0.0.0 v4",
                          "3 " + full + " 001c42a1b2c3 10.0.0.1/255.0.0.0 10.0.0.0 v4"));
}

struct HardwareCase {
  const char* name;
  const char* asked;
  const char* mac;  // null when there is none
};

class HardwareAddress : public testing::TestWithParam<HardwareCase> {};

TEST_P(HardwareAddress, IsThatOfTheFirstLinkEntryOfTheName) {
  const FakeSystem system =
      machine({InterfaceEntry{}, usual(0), link_entry("en01", {9, 9, 9, 9, 9, 9}),
               link_entry("en0", kHardware, 0), link_entry("en0", {1, 1, 1, 1, 1, 1}),
               address_entry("tun0", ipv4("10.0.0.1"), ipv4("255.0.0.0"))});
  std::string mac = "old";
  EXPECT_EQ(GetParam().mac != nullptr, hardware_address(system, GetParam().asked, &mac));
  EXPECT_EQ(GetParam().mac != nullptr ? GetParam().mac : "old", mac);
}

INSTANTIATE_TEST_SUITE_P(Names, HardwareAddress,
                         testing::Values(HardwareCase{"FirstEvenIfDown", "en0", "001c42a1b2c3"},
                                         HardwareCase{"LongerName", "en01", "090909090909"},
                                         HardwareCase{"PartOfAName", "en", nullptr},
                                         HardwareCase{"OtherCase", "EN0", nullptr},
                                         HardwareCase{"NoLinkEntry", "tun0", nullptr},
                                         HardwareCase{"NamelessEntryWithoutLink", "", nullptr},
                                         HardwareCase{"Unknown", "nope", nullptr}),
                         [](const auto& row) { return row.param.name; });

TEST(HardwareAddressFailure, UnreadableListLeavesTheTextUntouched) {
  std::string mac = "old";
  EXPECT_FALSE(hardware_address(FakeSystem(), "en0", &mac));
  EXPECT_EQ("old", mac);
}

}  // namespace
