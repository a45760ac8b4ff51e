// tests/network/netinterface_test.cpp: the interface record, the list and the searches over it.
#include "network/netinterface.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/interface_entries.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

IPAddress address_record(const std::string& text) {
  IPAddress record;
  record.setOption(IP_ADDRESS, text);
  return record;
}

NetInterface filled() {
  NetInterface record;
  record.setOption(NETIF_INDEX, 7U);
  record.setOption(NETIF_INDEX_NAME, "en0");
  record.setOption(NETIF_MAC_ADDRESS, "001c42a1b2c3");
  record.setOption(NETIF_IP_ADDRESS, address_record("10.0.0.1"));
  record.setOption(NETIF_SORT_LAST, 1U);
  return record;
}

std::vector<std::string> texts(const NetInterface& record) {
  std::vector<std::string> all;
  for (const IPAddress& address : record.getIPAddress()) all.push_back(address.getIPAddress());
  return all;
}

void expect_filled(const NetInterface& record) {
  EXPECT_EQ(7U, record.getIndex());
  EXPECT_EQ("en0", record.getIndexName());
  EXPECT_EQ("001c42a1b2c3", record.getMACAddress());
  EXPECT_THAT(texts(record), ElementsAre("10.0.0.1"));
  EXPECT_TRUE(record.getSortLast());
}

TEST(NetInterface, SelectorValuesAreFixed) {
  EXPECT_EQ(0, NETIF_MAC_ADDRESS);
  EXPECT_EQ(1, NETIF_INDEX_NAME);
  EXPECT_EQ(2, NETIF_INDEX);
  EXPECT_EQ(3, NETIF_IP_ADDRESS);
  EXPECT_EQ(4, NETIF_SORT_LAST);
}

TEST(NetInterface, StartsEmpty) {
  const NetInterface record;
  EXPECT_EQ(0U, record.getIndex());
  EXPECT_EQ("", record.getIndexName());
  EXPECT_EQ("", record.getMACAddress());
  EXPECT_THAT(record.getIPAddress(), IsEmpty());
  EXPECT_FALSE(record.getSortLast());
}

TEST(NetInterface, HoldsItsFieldsAndNothingElse) {
  struct Fields {
    uint32_t index;
    std::string hardware, name;
    std::vector<IPAddress> addresses;
    bool last;
  };
  EXPECT_EQ(sizeof(Fields), sizeof(NetInterface));
  EXPECT_FALSE(std::is_polymorphic_v<NetInterface>);
  struct ListFields {
    std::map<uint32_t, NetInterface> interfaces;
    bool loopback;
  };
  EXPECT_EQ(sizeof(ListFields), sizeof(NetInterfaceList));
  EXPECT_FALSE(std::is_polymorphic_v<NetInterfaceList>);
}

TEST(NetInterface, EachSetterReachesItsFieldAlone) {
  expect_filled(filled());
  NetInterface record = filled();
  record.setOption(NETIF_MAC_ADDRESS, "m");
  EXPECT_EQ("m", record.getMACAddress());
  EXPECT_EQ("en0", record.getIndexName());
  record.setOption(NETIF_INDEX_NAME, "n");
  EXPECT_EQ("m", record.getMACAddress());
  EXPECT_EQ("n", record.getIndexName());
  record.setOption(NETIF_INDEX, 4294967295U);
  EXPECT_EQ(4294967295U, record.getIndex());
  EXPECT_TRUE(record.getSortLast());
}

TEST(NetInterface, MembersOfAnotherFormAreIgnored) {
  NetInterface record = filled();
  for (int param : {2, 3, 4, 5}) {
    record.setOption(static_cast<NETINTERFACE_PARAM>(param), std::string("x"));
  }
  for (int param : {0, 1, 3, 5}) {
    record.setOption(static_cast<NETINTERFACE_PARAM>(param), 9U);
  }
  for (int param : {0, 1, 2, 4, 5}) {
    record.setOption(static_cast<NETINTERFACE_PARAM>(param), address_record("10.0.0.2"));
  }
  expect_filled(record);
}

TEST(NetInterface, AnyNumberButZeroSortsLast) {
  NetInterface record;
  record.setOption(NETIF_SORT_LAST, 7U);
  EXPECT_TRUE(record.getSortLast());
  record.setOption(NETIF_SORT_LAST, 0U);
  EXPECT_FALSE(record.getSortLast());
  record.setOption(NETIF_SORT_LAST, 0x100U);
  EXPECT_TRUE(record.getSortLast());
}

TEST(NetInterface, QuirkEqualAddressesAreKeptTwiceInOrder) {
  NetInterface record = filled();
  record.setOption(NETIF_IP_ADDRESS, address_record("fe80:0:0:0:0:0:0:1"));
  record.setOption(NETIF_IP_ADDRESS, address_record("10.0.0.1"));
  EXPECT_THAT(texts(record), ElementsAre("10.0.0.1", "fe80:0:0:0:0:0:0:1", "10.0.0.1"));
}

TEST(NetInterface, AddsACopyOfTheAddress) {
  NetInterface record;
  IPAddress address = address_record("10.0.0.1");
  record.setOption(NETIF_IP_ADDRESS, address);
  address.setOption(IP_ADDRESS, "changed");
  record.getIPAddress()[0].setOption(IP_ADDRESS, "changed");  // a copy again
  EXPECT_THAT(texts(record), ElementsAre("10.0.0.1"));
}

TEST(NetInterface, CopiesAreWholeAndIndependent) {
  NetInterface original = filled();
  const NetInterface copy(original);
  NetInterface assigned;
  EXPECT_EQ(&assigned, &(assigned = original));
  original = NetInterface();
  expect_filled(copy);
  expect_filled(assigned);
}

TEST(NetInterfaceList, ListsThoseSortedLastBehindTheOthers) {
  NetInterfaceList list(false);
  EXPECT_THAT(list.getIndexes(), IsEmpty());
  for (unsigned index : {4U, 1U, 7U}) list.getNetInterface(index);
  EXPECT_THAT(list.getIndexes(), ElementsAre(1, 4, 7));
  list.getNetInterface(1U).setOption(NETIF_SORT_LAST, 1U);
  EXPECT_THAT(list.getIndexes(), ElementsAre(4, 7, 1));
  list.getNetInterface(4U).setOption(NETIF_SORT_LAST, 1U);
  EXPECT_THAT(list.getIndexes(), ElementsAre(7, 1, 4));
}

TEST(NetInterfaceList, IndexesAscendUnsignedAndReadSigned) {
  NetInterfaceList list(false);
  list.getNetInterface(4294967295U);
  list.getNetInterface(2U);
  EXPECT_THAT(list.getIndexes(), ElementsAre(2, -1));
}

TEST(NetInterfaceList, QuirkReferenceToAnUnknownIndexAddsAnEmptyRecord) {
  NetInterfaceList list(false);
  NetInterface& record = list.getNetInterface(9U);
  EXPECT_EQ(0U, record.getIndex());
  EXPECT_EQ("", record.getIndexName());
  EXPECT_THAT(list.getIndexes(), ElementsAre(9));
  record.setOption(NETIF_INDEX_NAME, "en9");
  EXPECT_EQ("en9", list.getNetInterface(9U).getIndexName());
  EXPECT_EQ(&record, &list.getNetInterface(9U));
}

TEST(NetInterfaceList, CopyOfARecordLeavesTheListAlone) {
  NetInterfaceList list(false);
  list.getNetInterface(3U) = filled();
  NetInterface out;
  EXPECT_TRUE(list.getNetInterface(3U, out));
  expect_filled(out);
  out.setOption(NETIF_INDEX_NAME, "changed");
  EXPECT_EQ("en0", list.getNetInterface(3U).getIndexName());
}

TEST(NetInterfaceList, UnknownIndexLeavesOutAndListUntouched) {
  NetInterfaceList list(false);
  NetInterface out = filled();
  EXPECT_FALSE(list.getNetInterface(3U, out));
  expect_filled(out);
  EXPECT_THAT(list.getIndexes(), IsEmpty());
}

TEST(NetInterfaceList, CopiesAreIndependent) {
  NetInterfaceList list(true);
  list.getNetInterface(3U) = filled();
  NetInterfaceList copy(list);
  NetInterfaceList assigned(false);
  assigned = list;
  list.getNetInterface(3U).setOption(NETIF_INDEX_NAME, "changed");
  expect_filled(copy.getNetInterface(3U));
  expect_filled(assigned.getNetInterface(3U));
}

// Interfaces 2 (sorted last), 5 and 6; 10.0.0.9 on all of them, 10.0.0.5 on 5 alone.
NetInterfaceList searched() {
  NetInterfaceList list(false);
  for (unsigned index : {2U, 5U, 6U}) {
    NetInterface& record = list.getNetInterface(index);
    record.setOption(NETIF_INDEX, index);
    record.setOption(NETIF_MAC_ADDRESS, "00000000000" + std::to_string(index));
    if (index == 5) {
      record.setOption(NETIF_IP_ADDRESS, address_record("fe80:0:0:0:0:0:0:1"));
      record.setOption(NETIF_IP_ADDRESS, address_record("10.0.0.5"));
    }
    record.setOption(NETIF_IP_ADDRESS, address_record("10.0.0.9"));
  }
  list.getNetInterface(2U).setOption(NETIF_SORT_LAST, 1U);
  return list;
}

struct SearchCase {
  const char* name;
  const char* ip;
  unsigned index;  // 0 when not found
};

class Search : public testing::TestWithParam<SearchCase> {};

TEST_P(Search, FindsTheCarrier) {
  NetInterfaceList list = searched();
  NetInterface out = filled();
  std::string mac = "old";
  const bool found = GetParam().index != 0;
  EXPECT_EQ(found, getNetInterfaceFromIPAddress(out, GetParam().ip, list));
  EXPECT_EQ(found, getMACAddressFromIPAddress(mac, GetParam().ip, list));
  if (found) {
    EXPECT_EQ(GetParam().index, out.getIndex());
    EXPECT_EQ("00000000000" + std::to_string(GetParam().index), mac);
  } else {
    expect_filled(out);
    EXPECT_EQ("old", mac);
  }
  EXPECT_THAT(list.getIndexes(), ElementsAre(5, 6, 2));
}

INSTANTIATE_TEST_SUITE_P(Texts, Search,
                         testing::Values(SearchCase{"SecondAddressOfAnInterface", "10.0.0.5", 5},
                                         SearchCase{"FirstInListOrderNotByIndex", "10.0.0.9", 5},
                                         SearchCase{"ExpandedForm", "fe80:0:0:0:0:0:0:1", 5},
                                         SearchCase{"QuirkShortFormFindsNothing", "fe80::1", 0},
                                         SearchCase{"QuirkOtherCaseFindsNothing",
                                                    "FE80:0:0:0:0:0:0:1", 0},
                                         SearchCase{"PartOfATextFindsNothing", "10.0.0.", 0},
                                         SearchCase{"EmptyTextFindsNothing", "", 0},
                                         SearchCase{"UnknownFindsNothing", "10.0.0.7", 0}),
                         [](const auto& row) { return row.param.name; });

TEST(NetInterfaceSearch, ResultMayBeARecordOfTheListItself) {
  NetInterfaceList list = searched();
  EXPECT_TRUE(getNetInterfaceFromIPAddress(list.getNetInterface(6U), "10.0.0.5", list));
  EXPECT_EQ(5U, list.getNetInterface(6U).getIndex());
  EXPECT_TRUE(getNetInterfaceFromIPAddress(list.getNetInterface(5U), "10.0.0.5", list));
  EXPECT_EQ(5U, list.getNetInterface(5U).getIndex());
}

TEST(NetInterfaceSearch, EmptyListFindsNothing) {
  NetInterfaceList list(false);
  NetInterface out;
  EXPECT_FALSE(getNetInterfaceFromIPAddress(out, "", list));
}

TEST(FormatMACAddress, SixBytesAsTwelveLowerCaseDigits) {
  unsigned char bytes[] = {0x00, 0x1C, 0x42, 0x0A, 0xFF, 0x01};
  EXPECT_EQ("001c420aff01", formatMACAddress(bytes));
  unsigned char zeros[6] = {};
  EXPECT_EQ("000000000000", formatMACAddress(zeros));
  EXPECT_EQ("", formatMACAddress(nullptr));
}

// The mask of an address in memory of exactly the bytes that a caller owes, for the sanitizers.
struct RawAddress {
  RawAddress(const quillon_com::orb::platform::SocketAddress& address, size_t size)
      : bytes(new unsigned char[size]) {
    std::memcpy(bytes.get(), &address.bytes, size);
  }
  sockaddr* get() { return reinterpret_cast<sockaddr*>(bytes.get()); }
  std::unique_ptr<unsigned char[]> bytes;
};

TEST(GetNetMask, ReadsTheMaskOfTheFamily) {
  std::string text;
  RawAddress mask4(orbtest::ipv4("255.255.254.0"), sizeof(sockaddr_in));
  EXPECT_TRUE(getNetMask(AF_INET, mask4.get(), text));
  EXPECT_EQ("255.255.254.0", text);
  RawAddress mask6(orbtest::ipv6("ffff:ffff:ffff:ff00::"), sizeof(sockaddr_in6));
  EXPECT_TRUE(getNetMask(AF_INET6, mask6.get(), text));
  EXPECT_EQ("ffff:ffff:ffff:ff00::", text);
}

TEST(GetNetMask, GivenFamilyStandsInForNone) {
  quillon_com::orb::platform::SocketAddress mask = orbtest::ipv4("255.255.0.0");
  mask.bytes.ss_family = 0;
  std::string text;
  EXPECT_TRUE(getNetMask(AF_INET, mask.get(), text));
  EXPECT_EQ("255.255.0.0", text);
  EXPECT_EQ(0, mask.bytes.ss_family) << "the caller's mask is not written to";
}

TEST(GetNetMask, OwnFamilyOfTheMaskPrevails) {
  quillon_com::orb::platform::SocketAddress mask = orbtest::ipv4("255.255.0.0");
  std::string text;
  EXPECT_TRUE(getNetMask(AF_INET6, mask.get(), text));
  EXPECT_EQ("255.255.0.0", text);
}

TEST(GetNetMask, FailsWithTextUntouched) {
  std::string text = "old";
  EXPECT_FALSE(getNetMask(AF_INET, nullptr, text));
  quillon_com::orb::platform::SocketAddress mask;
  EXPECT_FALSE(getNetMask(AF_UNSPEC, mask.get(), text));
  EXPECT_FALSE(getNetMask(254, mask.get(), text));
  EXPECT_EQ("old", text);
}

struct SubnetCase {
  const char* name;
  const char *mask, *address, *text;
};

class GetNetAddr : public testing::TestWithParam<SubnetCase> {};

TEST_P(GetNetAddr, IsMaskAndAddress) {
  RawAddress mask(orbtest::ipv4(GetParam().mask), sizeof(sockaddr_in));
  RawAddress address(orbtest::ipv4(GetParam().address), sizeof(sockaddr_in));
  std::string text;
  EXPECT_TRUE(getNetAddr(AF_INET, mask.get(), address.get(), text));
  EXPECT_EQ(GetParam().text, text);
}

INSTANTIATE_TEST_SUITE_P(
    Masks, GetNetAddr,
    testing::Values(SubnetCase{"ClassC", "255.255.255.0", "192.168.1.20", "192.168.1.0"},
                    SubnetCase{"WithinAByte", "255.255.255.192", "10.0.0.200", "10.0.0.192"},
                    SubnetCase{"Host", "255.255.255.255", "10.1.2.3", "10.1.2.3"},
                    SubnetCase{"Nothing", "0.0.0.0", "10.1.2.3", "0.0.0.0"},
                    SubnetCase{"HolesInTheMask", "255.0.255.0", "203.113.255.254", "203.0.255.0"}),
    [](const auto& row) { return row.param.name; });

TEST(GetNetAddrFailures, NullArgumentsLeaveTextUntouched) {
  auto address = orbtest::ipv4("10.1.2.3");
  std::string text = "old";
  for (unsigned family : {static_cast<unsigned>(AF_INET), static_cast<unsigned>(AF_INET6)}) {
    EXPECT_FALSE(getNetAddr(family, nullptr, address.get(), text));
    EXPECT_FALSE(getNetAddr(family, address.get(), nullptr, text));
    EXPECT_FALSE(getNetAddr(family, nullptr, nullptr, text));
  }
  EXPECT_EQ("old", text);
}

TEST(GetNetAddrFailures, QuirkOtherFamiliesAreNotAvailable) {
  auto address = orbtest::ipv6("2001:db8::1");
  std::string text;
  EXPECT_TRUE(getNetAddr(AF_INET6, address.get(), address.get(), text));
  EXPECT_EQ("N/A", text);
  sockaddr byte{};
  text = "";
  EXPECT_TRUE(getNetAddr(0, &byte, &byte, text));
  EXPECT_EQ("N/A", text);
}

}  // namespace
