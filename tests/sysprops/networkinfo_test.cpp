// tests/sysprops/networkinfo_test.cpp: the machine's names and the choice of its address.
#include "sysprops/networkinfo.h"

#include <gtest/gtest.h>
#include <net/if.h>
#include <sys/socket.h>

#include <string>
#include <vector>

#include "sysprops/collect.h"
#include "tests/support/fake_system.h"
#include "tests/support/interface_entries.h"
#include "tests/support/scoped_local_ip.h"

namespace {

using namespace quillon_com::orb::sysprops;
using orbtest::FakeSystem;
using orbtest::ScopedLocalIp;
using quillon_com::orb::platform::InterfaceEntry;
using quillon_com::orb::platform::KernelNames;

struct Address {
  const char* text;
  unsigned family;
  const char *subnet, *mask;
};

struct Interface {
  unsigned index;
  const char* hardware;
  std::vector<Address> addresses;
  bool sort_last = false;
};

NetInterfaceList list_of(const std::vector<Interface>& interfaces) {
  NetInterfaceList list(false);
  for (const Interface& interface : interfaces) {
    NetInterface& record = list.getNetInterface(interface.index);
    record.setOption(NETIF_INDEX, interface.index);
    record.setOption(NETIF_MAC_ADDRESS, std::string(interface.hardware));
    record.setOption(NETIF_SORT_LAST, interface.sort_last ? 1U : 0U);
    for (const Address& address : interface.addresses) {
      IPAddress added;
      added.setOption(IP_ADDRESS, std::string(address.text));
      added.setOption(IP_FAMILY, address.family);
      added.setOption(IP_SUBNET_ADDR, std::string(address.subnet));
      added.setOption(IP_SUBNET_MASK, std::string(address.mask));
      record.setOption(NETIF_IP_ADDRESS, added);
    }
  }
  return list;
}

struct Chosen {
  std::wstring address, subnet, mask, hardware;
};

const Chosen kUntouched{L"old", L"old", L"old", L"old"};

struct ChoiceCase {
  const char* name;
  const char* last_known;
  std::vector<Interface> interfaces;
  Chosen chosen;
};

class AddressChoice : public testing::TestWithParam<ChoiceCase> {};

TEST_P(AddressChoice, TakesTheFirstRuleThatFindsOne) {
  NetInterfaceList list = list_of(GetParam().interfaces);
  NetworkInformation record;
  record.ipAddress = record.subnetAddress = record.subnetMask = record.netAddress = L"old";
  choose_address(list, GetParam().last_known, record);
  EXPECT_EQ(GetParam().chosen.address, record.ipAddress);
  EXPECT_EQ(GetParam().chosen.subnet, record.subnetAddress);
  EXPECT_EQ(GetParam().chosen.mask, record.subnetMask);
  EXPECT_EQ(GetParam().chosen.hardware, record.netAddress);
  EXPECT_EQ(L"N/A", record.computerName);
  EXPECT_EQ(L"N/A", record.domainName);
  EXPECT_EQ(L"N/A", record.ipHostName);
}

const Address kFour{"10.0.0.1", AF_INET, "10.0.0.0", "255.0.0.0"};
const Address kFourB{"10.1.0.2", AF_INET, "10.1.0.0", "255.255.0.0"};
const Address kFourC{"10.2.3.3", AF_INET, "10.2.3.0", "255.255.255.0"};
const Address kSix{"fe80:0:0:0:0:0:0:1", AF_INET6, "fe80:0:0:0:0:0:0:0", "ffff:ffff:ffff:ffff::"};
const Address kSixB{"fd00:0:0:0:0:0:0:2", AF_INET6, "fd00:0:0:0:0:0:0:0", "ffff:0:0:0:0:0:0:0"};

const Chosen kChosenFour{L"10.0.0.1", L"10.0.0.0", L"255.0.0.0", L"aa0000000001"};
const Chosen kChosenSix{L"fe80:0:0:0:0:0:0:1", L"fe80:0:0:0:0:0:0:0", L"ffff:ffff:ffff:ffff::",
                        L"aa0000000001"};

INSTANTIATE_TEST_SUITE_P(
    Lists, AddressChoice,
    testing::Values(
        ChoiceCase{"LastKnownOfALaterInterface",
                   "10.1.0.2",
                   {{1, "aa0000000001", {kFour}}, {2, "bb0000000002", {kFourC, kFourB}}},
                   {L"10.1.0.2", L"10.1.0.0", L"255.255.0.0", L"bb0000000002"}},
        ChoiceCase{
            "LastKnownOfAnotherFamilyThanTheFirst",
            "fd00:0:0:0:0:0:0:2",
            {{1, "aa0000000001", {kFour, kSix}}, {2, "bb0000000002", {kSixB}}},
            {L"fd00:0:0:0:0:0:0:2", L"fd00:0:0:0:0:0:0:0", L"ffff:0:0:0:0:0:0:0", L"bb0000000002"}},
        ChoiceCase{"QuirkTheLastMatchOnTheInterfaceGivesSubnetAndMask",
                   "10.0.0.1",
                   {{1,
                     "aa0000000001",
                     {kFour, {"10.0.0.1", AF_INET, "10.0.0.0", "255.255.255.0"}, kFourB}}},
                   {L"10.0.0.1", L"10.0.0.0", L"255.255.255.0", L"aa0000000001"}},
        ChoiceCase{"LastKnownOnTwoInterfacesIsTheFirstOnes",
                   "10.0.0.1",
                   {{1, "aa0000000001", {kFourB, kFour}},
                    {2, "bb0000000002", {{"10.0.0.1", AF_INET, "10.0.0.1", "255.255.255.255"}}}},
                   kChosenFour},
        ChoiceCase{"LastKnownOnASortedLastInterfaceGivesWayToTheOther",
                   "10.0.0.1",
                   {{1, "bb0000000002", {{"10.0.0.1", AF_INET, "x", "y"}}, true},
                    {2, "aa0000000001", {kFour}}},
                   kChosenFour},
        ChoiceCase{"LastKnownIsComparedAsTextNotAsAddress",
                   "fd00::2",
                   {{1, "aa0000000001", {kSix}}, {2, "bb0000000002", {kSixB}}},
                   kChosenSix},
        ChoiceCase{"LastKnownIsNotMatchedInPart",
                   "10.1.0",
                   {{1, "aa0000000001", {kFour}}, {2, "bb0000000002", {kFourB}}},
                   kChosenFour},
        ChoiceCase{"NoLastKnownAsksForIPv4",
                   "",
                   {{1, "bb0000000002", {kSix}}, {2, "aa0000000001", {kSixB, kFour}}},
                   kChosenFour},
        ChoiceCase{"NoLastKnownIsNoMatchForAnAddressWithoutText",
                   "",
                   {{1, "bb0000000002", {{"", AF_INET6, "x", "y"}}}, {2, "aa0000000001", {kFour}}},
                   kChosenFour},
        ChoiceCase{"LostIPv4AsksForIPv4",
                   "192.0.2.9",
                   {{1, "bb0000000002", {kSix}}, {2, "aa0000000001", {kFour}}},
                   kChosenFour},
        ChoiceCase{"LostIPv6AsksForIPv6",
                   "2001:db8:0:0:0:0:0:9",
                   {{1, "bb0000000002", {kFour}}, {2, "aa0000000001", {kFourB, kSix}}},
                   kChosenSix},
        ChoiceCase{"AnyTextWithAColonAsksForIPv6",
                   ":",
                   {{1, "bb0000000002", {kFour}}, {2, "aa0000000001", {kSix}}},
                   kChosenSix},
        ChoiceCase{"AnyTextWithoutAColonAsksForIPv4",
                   "fe80",
                   {{1, "bb0000000002", {kSix}}, {2, "aa0000000001", {kFour}}},
                   kChosenFour},
        ChoiceCase{"FirstOfTheFamilyOnItsInterface",
                   "",
                   {{1, "aa0000000001", {kSix, kFour, kFourB}}, {2, "bb0000000002", {kFourC}}},
                   kChosenFour},
        ChoiceCase{"InterfacesInIndexOrder",
                   "",
                   {{9, "bb0000000002", {kFourB}}, {3, "aa0000000001", {kFour}}},
                   kChosenFour},
        ChoiceCase{"SortedLastComesLast",
                   "",
                   {{3, "bb0000000002", {kFourB}, true}, {9, "aa0000000001", {kFour}}},
                   kChosenFour},
        ChoiceCase{"AnInterfaceWithoutAddressIsPassedOver",
                   "",
                   {{1, "bb0000000002", {}}, {2, "aa0000000001", {kFour}}},
                   kChosenFour},
        ChoiceCase{"NoneOfTheFamilyTakesTheFirstOfTheFirst",
                   "",
                   {{1, "aa0000000001", {kSix, kSixB}}, {2, "bb0000000002", {kSixB}}},
                   kChosenSix},
        ChoiceCase{"NoneOfTheFamilyOfALostIPv6TakesIPv4",
                   "2001:db8:0:0:0:0:0:9",
                   {{1, "aa0000000001", {kFour, kFourB}}},
                   kChosenFour},
        ChoiceCase{"NoneOfTheFamilyIsTheFirstInListOrder",
                   "",
                   {{1, "bb0000000002", {kSixB}, true}, {2, "aa0000000001", {kSix}}},
                   kChosenSix},
        ChoiceCase{"NoneOfTheFamilyAndTheFirstWithoutAddressWritesNothing",
                   "",
                   {{1, "aa0000000001", {}}, {2, "bb0000000002", {kSix}}},
                   kUntouched},
        ChoiceCase{"EmptyListWritesNothing", "10.0.0.1", {}, kUntouched}),
    [](const auto& row) { return row.param.name; });

// Two interfaces listed against their index order, a loopback and one that is down.
FakeSystem two_interfaces() {
  using namespace orbtest;
  FakeSystem system;
  system.kernel = KernelNames{"box.lab.example", "x86_64", "6.1.0"};
  system.host = "box";
  system.officials["box"] = "box.office.example";
  system.nis_domain = "";
  system.indexes = {{"lo", 1}, {"eth0", 2}, {"eth1", 3}, {"down0", 4}};
  system.entries = std::vector<InterfaceEntry>{
      link_entry("lo", {0, 0, 0, 0, 0, 0}, IFF_UP | IFF_LOOPBACK),
      link_entry("eth1", {2, 0, 0, 0, 0, 0xb}),
      link_entry("eth0", {2, 0, 0, 0, 0, 0xa}),
      link_entry("down0", {2, 0, 0, 0, 0, 0xd}, 0),
      address_entry("lo", ipv4("127.0.0.1"), ipv4("255.0.0.0"), IFF_UP | IFF_LOOPBACK),
      address_entry("down0", ipv4("198.51.100.1"), ipv4("255.255.255.0"), 0),
      address_entry("eth1", ipv4("203.0.113.70"), ipv4("255.255.255.192")),
      address_entry("eth0", ipv4("192.0.2.20"), ipv4("255.255.255.0")),
      address_entry("eth1", ipv6("2001:db8::b"), ipv6("ffff:ffff::")),
      address_entry("eth0", ipv6("fe80::a", 2), ipv6("ffff:ffff:ffff:ffff::")),
  };
  return system;
}

TEST(CollectNetwork, WritesAllEightFields) {
  const ScopedLocalIp none(L"");
  const FakeSystem system = two_interfaces();
  NetworkInformation record;
  record.ipxAddress = L"old";
  EXPECT_TRUE(collect_network(system, record));
  EXPECT_EQ(L"box", record.computerName);
  EXPECT_EQ(L"office.example", record.domainName);
  EXPECT_EQ(L"box.office.example", record.ipHostName);
  EXPECT_EQ(L"N/A", record.ipxAddress);
  EXPECT_EQ(L"192.0.2.20", record.ipAddress);
  EXPECT_EQ(L"192.0.2.0", record.subnetAddress);
  EXPECT_EQ(L"255.255.255.0", record.subnetMask);
  EXPECT_EQ(L"02000000000a", record.netAddress);
}

TEST(CollectNetwork, PrefersTheLastKnownLocalAddress) {
  const ScopedLocalIp preferred(L"203.0.113.70");
  NetworkInformation record;
  EXPECT_TRUE(collect_network(two_interfaces(), record));
  EXPECT_EQ(L"203.0.113.70", record.ipAddress);
  EXPECT_EQ(L"203.0.113.64", record.subnetAddress);
  EXPECT_EQ(L"255.255.255.192", record.subnetMask);
  EXPECT_EQ(L"02000000000b", record.netAddress);
}

TEST(CollectNetwork, FindsALastKnownIPv6AddressInItsExpandedForm) {
  const ScopedLocalIp preferred(L"2001:db8:0:0:0:0:0:b");
  NetworkInformation record;
  EXPECT_TRUE(collect_network(two_interfaces(), record));
  EXPECT_EQ(L"2001:db8:0:0:0:0:0:b", record.ipAddress);
  EXPECT_EQ(L"2001:db8:0:0:0:0:0:0", record.subnetAddress);
  EXPECT_EQ(L"ffff:ffff:0:0:0:0:0:0", record.subnetMask);
  EXPECT_EQ(L"02000000000b", record.netAddress);
}

TEST(CollectNetwork, ALostIPv6AddressGivesTheFirstIPv6InInterfaceOrder) {
  const ScopedLocalIp lost(L"2001:db8:0:0:0:0:0:99");
  NetworkInformation record;
  EXPECT_TRUE(collect_network(two_interfaces(), record));
  EXPECT_EQ(L"fe80:0:0:0:0:0:0:a", record.ipAddress);
  EXPECT_EQ(L"02000000000a", record.netAddress);
}

TEST(CollectNetwork, TheLoopbackAddressIsNotThereToBePreferred) {
  const ScopedLocalIp loopback(L"127.0.0.1");
  NetworkInformation record;
  EXPECT_TRUE(collect_network(two_interfaces(), record));
  EXPECT_EQ(L"192.0.2.20", record.ipAddress);
}

struct UnlistedCase {
  const char* name;
  std::optional<std::vector<InterfaceEntry>> entries;
};

class UnlistedInterfaces : public testing::TestWithParam<UnlistedCase> {};

TEST_P(UnlistedInterfaces, GiveFalseWithTheNamesWritten) {
  const ScopedLocalIp known(L"192.0.2.20");
  FakeSystem system = two_interfaces();
  system.entries = GetParam().entries;
  NetworkInformation record;
  record.computerName = record.domainName = record.ipHostName = record.ipxAddress = L"old";
  record.ipAddress = record.subnetAddress = record.subnetMask = record.netAddress = L"old";
  EXPECT_FALSE(collect_network(system, record));
  EXPECT_EQ(L"box", record.computerName);
  EXPECT_EQ(L"office.example", record.domainName);
  EXPECT_EQ(L"box.office.example", record.ipHostName);
  EXPECT_EQ(L"N/A", record.ipxAddress);
  EXPECT_EQ(L"old", record.ipAddress);
  EXPECT_EQ(L"old", record.subnetAddress);
  EXPECT_EQ(L"old", record.subnetMask);
  EXPECT_EQ(L"old", record.netAddress);
}

INSTANTIATE_TEST_SUITE_P(
    Machines, UnlistedInterfaces,
    testing::Values(UnlistedCase{"WhenTheListCannotBeRead", std::nullopt},
                    UnlistedCase{"WhenThereIsNone", std::vector<InterfaceEntry>{}},
                    UnlistedCase{"WhenOnlyLoopbackIsUp",
                                 std::vector<InterfaceEntry>{
                                     orbtest::link_entry("lo", {}, IFF_UP | IFF_LOOPBACK),
                                     orbtest::address_entry("lo", orbtest::ipv4("127.0.0.1"),
                                                            orbtest::ipv4("255.0.0.0"),
                                                            IFF_UP | IFF_LOOPBACK)}}),
    [](const auto& row) { return row.param.name; });

struct NameCase {
  const char* name;
  std::optional<KernelNames> kernel;
  std::optional<std::string> host, official, nis_domain, domain;
  std::wstring computer, domain_name, fqdn;
};

class MachineNames : public testing::TestWithParam<NameCase> {};

TEST_P(MachineNames, AreWritten) {
  FakeSystem system;
  system.kernel = GetParam().kernel;
  system.host = GetParam().host;
  if (GetParam().official) system.officials[*GetParam().host] = *GetParam().official;
  system.nis_domain = GetParam().nis_domain;
  system.domain = GetParam().domain;
  NetworkInformation record;
  record.computerName = record.domainName = record.ipHostName = L"old";
  EXPECT_FALSE(collect_network(system, record));
  EXPECT_EQ(GetParam().computer, record.computerName);
  EXPECT_EQ(GetParam().domain_name, record.domainName);
  EXPECT_EQ(GetParam().fqdn, record.ipHostName);
  EXPECT_GE(1U, system.look_ups.size());
}

INSTANTIATE_TEST_SUITE_P(
    Machines, MachineNames,
    testing::Values(
        NameCase{"ComputerNameEndsAtItsFirstDot", KernelNames{"a.b.c", "", ""}, "a",
                 "a.example.org", std::nullopt, std::nullopt, L"a", L"example.org",
                 L"a.example.org"},
        NameCase{"ComputerNameWithoutADotIsWhole", KernelNames{"alone", "", ""}, "alone",
                 std::nullopt, std::nullopt, "", L"alone", L"N/A", L"alone."},
        NameCase{"ComputerNameOfNonAsciiText", KernelNames{"m\xC3\xBCller", "", ""}, "m",
                 "m.example", std::nullopt, std::nullopt, L"m\u00FCller", L"example", L"m.example"},
        NameCase{"EverythingUnreadableReadsTheDefault", std::nullopt, std::nullopt, std::nullopt,
                 std::nullopt, std::nullopt, L"N/A", L"N/A", L"N/A"},
        NameCase{"TheKernelsDomainComesFirst", KernelNames{"box", "", ""}, "box", "box.example.org",
                 "corp.example", std::nullopt, L"box", L"corp.example", L"box.example.org"},
        NameCase{"AnOfficialNameWithoutADotHasNoDomain", KernelNames{"box", "", ""}, "box", "box",
                 "", std::nullopt, L"box", L"N/A", L"box"},
        NameCase{"AnUnknownHostTakesTheDomainOfTheMachine", KernelNames{"box", "", ""}, "box",
                 std::nullopt, "", "corp.example", L"box", L"N/A", L"box.corp.example"}),
    [](const auto& row) { return row.param.name; });

TEST(CollectNetwork, AsksForTheHostAndTheInterfacesOnce) {
  const ScopedLocalIp none(L"");
  const FakeSystem system = two_interfaces();
  NetworkInformation record;
  collect_network(system, record);
  EXPECT_EQ(std::vector<std::string>{"box"}, system.look_ups);
  EXPECT_EQ(1U, system.entry_walks);
}

TEST(CollectNetwork, ASecondCollectionFollowsTheMachine) {
  const ScopedLocalIp none(L"");
  FakeSystem system = two_interfaces();
  NetworkInformation record;
  EXPECT_TRUE(collect_network(system, record));
  system.kernel->node = "renamed";
  system.officials["box"] = "box.moved.example";
  system.entries->pop_back();
  system.entries->erase(system.entries->begin() + 7);  // the IPv4 address of eth0
  EXPECT_TRUE(collect_network(system, record));
  EXPECT_EQ(L"renamed", record.computerName);
  EXPECT_EQ(L"moved.example", record.domainName);
  EXPECT_EQ(L"203.0.113.70", record.ipAddress);
  EXPECT_EQ(L"02000000000b", record.netAddress);
}

struct PartCase {
  const char* name;
  Fields fields;
  size_t look_ups, walks;
};

class NetworkParts : public testing::TestWithParam<PartCase> {};

TEST_P(NetworkParts, AskForNothingElse) {
  const FakeSystem system = two_interfaces();
  NetworkInformation record;
  EXPECT_TRUE(collect_network(system, record, GetParam().fields));
  EXPECT_EQ(GetParam().look_ups, system.look_ups.size());
  EXPECT_EQ(GetParam().walks, system.entry_walks);
}

INSTANTIATE_TEST_SUITE_P(Fields, NetworkParts,
                         testing::Values(PartCase{"ComputerName", kComputerName, 0, 0},
                                         PartCase{"DomainName", kDomainName, 1, 0},
                                         PartCase{"HostName", kHostName, 1, 0},
                                         PartCase{"BothNames", kDomainName | kHostName, 1, 0},
                                         PartCase{"Addresses", kAddresses, 0, 1}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
