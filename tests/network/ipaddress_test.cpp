// tests/network/ipaddress_test.cpp: network/ipaddress.h field by field.
#include "network/ipaddress.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <string>
#include <type_traits>

namespace {

// A record whose four fields all differ from their defaults and from each other.
IPAddress filled() {
  IPAddress record;
  record.setOption(IP_ADDRESS, "10.1.2.3");
  record.setOption(IP_SUBNET_MASK, "255.0.0.0");
  record.setOption(IP_SUBNET_ADDR, "10.0.0.0");
  record.setOption(IP_FAMILY, 77U);
  return record;
}

void expect_fields(const IPAddress& record, const std::string& address, const std::string& mask,
                   const std::string& subnet, uint32_t family) {
  EXPECT_EQ(address, record.getIPAddress());
  EXPECT_EQ(mask, record.getSubNetMask());
  EXPECT_EQ(subnet, record.getSubNetAddr());
  EXPECT_EQ(family, record.getIPFamily());
}

TEST(IPAddress, SelectorValuesAreFixed) {
  EXPECT_EQ(0, IP_ADDRESS);
  EXPECT_EQ(1, IP_FAMILY);
  EXPECT_EQ(2, IP_SUBNET_MASK);
  EXPECT_EQ(3, IP_SUBNET_ADDR);
}

TEST(IPAddress, StartsEmpty) { expect_fields(IPAddress(), "", "", "", 0); }

TEST(IPAddress, IsThreeTextsAndAWordWithoutVirtualOperations) {
  struct Fields {
    std::string address, mask, subnet;
    uint32_t family;
  };
  EXPECT_EQ(sizeof(Fields), sizeof(IPAddress));
  EXPECT_FALSE(std::is_polymorphic_v<IPAddress>);
}

struct TextCase {
  const char* name;
  IP_PARAM param;
  const char *address, *mask, *subnet;
};

class IPAddressText : public testing::TestWithParam<TextCase> {};

TEST_P(IPAddressText, ReachesOnlyTheFieldThatItNames) {
  IPAddress record = filled();
  record.setOption(GetParam().param, "new");
  expect_fields(record, GetParam().address, GetParam().mask, GetParam().subnet, 77);
}

INSTANTIATE_TEST_SUITE_P(
    Members, IPAddressText,
    testing::Values(TextCase{"Address", IP_ADDRESS, "new", "255.0.0.0", "10.0.0.0"},
                    TextCase{"Mask", IP_SUBNET_MASK, "10.1.2.3", "new", "10.0.0.0"},
                    TextCase{"Subnet", IP_SUBNET_ADDR, "10.1.2.3", "255.0.0.0", "new"},
                    TextCase{"QuirkFamilyIgnored", IP_FAMILY, "10.1.2.3", "255.0.0.0", "10.0.0.0"}),
    [](const auto& row) { return row.param.name; });

TEST(IPAddress, NumberSetsTheFamily) {
  IPAddress record = filled();
  record.setOption(IP_FAMILY, 4294967295U);
  expect_fields(record, "10.1.2.3", "255.0.0.0", "10.0.0.0", 4294967295U);
  record.setOption(IP_FAMILY, AF_INET6);
  EXPECT_EQ(static_cast<uint32_t>(AF_INET6), record.getIPFamily());
}

TEST(IPAddress, QuirkNumberForATextIsIgnored) {
  for (int param : {0, 2, 3}) {
    IPAddress record = filled();
    record.setOption(static_cast<IP_PARAM>(param), 5U);
    expect_fields(record, "10.1.2.3", "255.0.0.0", "10.0.0.0", 77);
  }
}

TEST(IPAddress, NothingIsChecked) {
  IPAddress record;
  const std::string odd("no\0address", 10);
  record.setOption(IP_ADDRESS, odd);
  EXPECT_EQ(odd, record.getIPAddress());
  record.setOption(IP_ADDRESS, "");
  EXPECT_EQ("", record.getIPAddress());
}

TEST(IPAddress, CopiesAreWholeAndIndependent) {
  IPAddress original = filled();
  IPAddress copy(original);
  IPAddress assigned;
  EXPECT_EQ(&assigned, &(assigned = original));
  original.setOption(IP_ADDRESS, "changed");
  original.setOption(IP_FAMILY, 1U);
  expect_fields(copy, "10.1.2.3", "255.0.0.0", "10.0.0.0", 77);
  expect_fields(assigned, "10.1.2.3", "255.0.0.0", "10.0.0.0", 77);
  const IPAddress& itself = assigned;
  assigned = itself;
  expect_fields(assigned, "10.1.2.3", "255.0.0.0", "10.0.0.0", 77);
}

}  // namespace
