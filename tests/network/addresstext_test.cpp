// tests/network/addresstext_test.cpp: network/addresstext.h on addresses as systems deliver them.
#include "network/addresstext.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "tests/support/interface_entries.h"

namespace {

using namespace quillon_com::orb::network;
using orbtest::ipv4;
using orbtest::ipv6;
using orbtest::shortened;
using quillon_com::orb::platform::SocketAddress;

struct NumericCase {
  const char* name;
  SocketAddress address;
  const char* text;  // null when there is none
};

class NumericText : public testing::TestWithParam<NumericCase> {};

TEST_P(NumericText, IsTheResolversNumericForm) {
  std::string text = "old";
  EXPECT_EQ(GetParam().text != nullptr, numeric_text(GetParam().address, &text));
  EXPECT_EQ(GetParam().text != nullptr ? GetParam().text : "old", text);
}

INSTANTIATE_TEST_SUITE_P(
    Addresses, NumericText,
    testing::Values(NumericCase{"IPv4", ipv4("192.168.1.20"), "192.168.1.20"},
                    NumericCase{"IPv6", ipv6("2001:DB8:0:0:1::1"), "2001:db8::1:0:0:1"},
                    NumericCase{"IPv6Unspecified", ipv6("::"), "::"},
                    NumericCase{"IPv4Mapped", ipv6("::ffff:1.2.3.4"), "::ffff:1.2.3.4"},
                    NumericCase{"LinkLocalWithoutZone", ipv6("fe80::1"), "fe80::1"},
                    NumericCase{"ZoneWithoutAnInterface", ipv6("fe80::1", 2000000000),
                                "fe80::1%2000000000"},
                    NumericCase{"NoFamily", SocketAddress{}, nullptr}),
    [](const auto& row) { return row.param.name; });

struct MaskCase {
  const char* name;
  unsigned family;
  SocketAddress mask;
  const char* text;
};

class MaskText : public testing::TestWithParam<MaskCase> {};

TEST_P(MaskText, FillsUpWhatTheSystemLeftOut) {
  std::string text;
  EXPECT_TRUE(mask_text(GetParam().family, GetParam().mask.get(), &text));
  EXPECT_EQ(GetParam().text, text);
}

// Masks cut behind their last byte that is not zero, with and without their family, as a system
// with a length byte delivers them.
INSTANTIATE_TEST_SUITE_P(
    Masks, MaskText,
    testing::Values(
        MaskCase{"Whole", AF_INET, ipv4("255.255.240.0"), "255.255.240.0"},
        MaskCase{"SevenBytes", AF_INET, shortened(ipv4("255.255.255.0"), 7, false),
                 "255.255.255.0"},
        MaskCase{"FiveBytesWithFamily", AF_INET, shortened(ipv4("255.0.0.0"), 5, true),
                 "255.0.0.0"},
        MaskCase{"NoByte", AF_INET, shortened(ipv4("0.0.0.0"), 0, false), "0.0.0.0"},
        MaskCase{"IPv6Whole", AF_INET6, ipv6("ffff:ffff:ffff:ffff::"), "ffff:ffff:ffff:ffff::"},
        MaskCase{"IPv6WithoutFamily", AF_INET6,
                 shortened(ipv6("ffff:ffff::"), sizeof(sockaddr_in6), false), "ffff:ffff::"},
        MaskCase{"IPv6NoByte", AF_INET6, shortened(ipv6("::"), 0, false), "::"},
        MaskCase{"IPv6Host", AF_INET6, ipv6("ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"),
                 "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"}),
    [](const auto& row) { return row.param.name; });

TEST(MaskTextFailures, LeaveTheTextUntouched) {
  std::string text = "old";
  EXPECT_FALSE(mask_text(AF_INET, nullptr, &text));
  EXPECT_FALSE(mask_text(0, SocketAddress{}.get(), &text));
  EXPECT_FALSE(mask_text(0xffff, SocketAddress{}.get(), &text));
  EXPECT_EQ("old", text);
}

// A readable page with nothing behind it; gives the place where `size` bytes end with the page.
class PageEnd {
 public:
  PageEnd() {
    EXPECT_NE(MAP_FAILED, pages_);
    EXPECT_EQ(0, mprotect(static_cast<char*>(pages_) + size_, size_, PROT_NONE));
  }
  PageEnd(const PageEnd&) = delete;
  PageEnd& operator=(const PageEnd&) = delete;
  ~PageEnd() { munmap(pages_, 2 * size_); }
  sockaddr* last(size_t size) const {
    return reinterpret_cast<sockaddr*>(static_cast<char*>(pages_) + size_ - size);
  }

 private:
  const size_t size_ = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  void* const pages_ =
      mmap(nullptr, 2 * size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
};

TEST(MaskTextBytes, OwnFamilyDecidesWhichBytesBelongToAMask) {
  const PageEnd page;
  for (const unsigned family : {AF_INET, AF_INET6, AF_UNSPEC}) {
    std::string text;
    const SocketAddress v4 = ipv4("255.255.240.0");
    std::memcpy(page.last(sizeof(sockaddr_in)), v4.get(), sizeof(sockaddr_in));
    EXPECT_TRUE(mask_text(family, page.last(sizeof(sockaddr_in)), &text));
    EXPECT_EQ("255.255.240.0", text) << family;
    const SocketAddress v6 = ipv6("ffff:ffff:ffff:ffff:ffff:ffff:ffff:fffc");
    std::memcpy(page.last(sizeof(sockaddr_in6)), v6.get(), sizeof(sockaddr_in6));
    EXPECT_TRUE(mask_text(family, page.last(sizeof(sockaddr_in6)), &text));
    EXPECT_EQ("ffff:ffff:ffff:ffff:ffff:ffff:ffff:fffc", text) << family;
  }
}

TEST(SubnetText, ShortenedMaskCountsAsZeroBeyondItsBytes) {
  std::string text;
  const SocketAddress address = ipv4("172.31.200.7");
  EXPECT_TRUE(
      subnet_text(AF_INET, shortened(ipv4("255.255.0.0"), 6, false).get(), address.get(), &text));
  EXPECT_EQ("172.31.0.0", text);
  EXPECT_TRUE(
      subnet_text(AF_INET, shortened(ipv4("0.0.0.0"), 0, false).get(), address.get(), &text));
  EXPECT_EQ("0.0.0.0", text);
}

TEST(SubnetText, QuirkIPv6IsNotAvailable) {
  std::string text;
  const SocketAddress address = ipv6("2001:db8::1");
  EXPECT_TRUE(subnet_text(AF_INET6, address.get(), address.get(), &text));
  EXPECT_EQ("N/A", text);
  EXPECT_FALSE(subnet_text(AF_INET6, nullptr, address.get(), &text));
  EXPECT_FALSE(subnet_text(AF_INET6, address.get(), nullptr, &text));
}

TEST(HardwareText, EveryByteIsTwoLowerCaseDigits) {
  EXPECT_EQ("001c42a1b2c3", hardware_text({0x00, 0x1c, 0x42, 0xa1, 0xb2, 0xc3}));
  EXPECT_EQ("0f0e0d0c0b0a", hardware_text({0x0f, 0x0e, 0x0d, 0x0c, 0x0b, 0x0a}));
}

}  // namespace
