// tests/network/ipv6_test.cpp: network/ipv6.h rule by rule, and against inet_pton.
#include "network/ipv6.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "network/addresstext.h"

namespace {

using quillon_com::orb::network::strip_v6_text;

struct TextCase {
  const char* name;
  std::string text;
  std::string expected;
};

std::string row_name(const testing::TestParamInfo<TextCase>& row) { return row.param.name; }

struct CountCase {
  const char* name;
  std::string text;
  char ch;
  int limit;
  uint16_t count;
};

class NoOfOccurences : public testing::TestWithParam<CountCase> {};

TEST_P(NoOfOccurences, Counts) {
  EXPECT_EQ(GetParam().count, noOfOccurences(GetParam().text, GetParam().ch, GetParam().limit));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, NoOfOccurences,
    testing::Values(CountCase{"None", "abc", ':', 7, 0}, CountCase{"EmptyText", "", ':', 7, 0},
                    CountCase{"OneWhateverTheLimit", "a:b", ':', 0, 1},
                    CountCase{"SevenIsStillTheCount", "1:2:3:4:5:6:7:8", ':', 99, 7},
                    CountCase{"EightGivesTheLimit", "1:2:3:4:5:6:7:8:9", ':', 7, 7},
                    CountCase{"QuirkLimitAboveTheCount", "1:2:3:4:5:6:7:8:9", ':', 99, 99},
                    CountCase{"QuirkLimitOfZero", "::::::::", ':', 0, 0},
                    CountCase{"QuirkLimitIsCutTo16Bits", "::::::::", ':', 0x12345, 0x2345},
                    CountCase{"QuirkNegativeLimit", "::::::::", ':', -1, 65535},
                    CountCase{"BeyondSixteenBitsIsStillAboveSeven", std::string(65536 + 3, ':'),
                              ':', 9, 9},
                    CountCase{"ZeroBytesCount", std::string("\0a\0", 3), '\0', 7, 2}),
    [](const auto& row) { return row.param.name; });

class Expand : public testing::TestWithParam<TextCase> {};

TEST_P(Expand, WritesOutTheGap) {
  EXPECT_EQ(GetParam().expected, expandIPV6Address(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Valid, Expand,
    testing::Values(
        TextCase{"GapInFront", "::1", "0:0:0:0:0:0:0:1"},
        TextCase{"GapAtTheEnd", "fe80::", "fe80:0:0:0:0:0:0:0"},
        TextCase{"GapAlone", "::", "0:0:0:0:0:0:0:0"},
        TextCase{"GapInTheMiddle", "2001:db8::8:800:200c:417a", "2001:db8:0:0:8:800:200c:417a"},
        TextCase{"GapOfOneGroup", "1:2:3::5:6:7:8", "1:2:3:0:5:6:7:8"},
        TextCase{"GapOfOneGroupInFront", "::2:3:4:5:6:7:8", "0:2:3:4:5:6:7:8"},
        TextCase{"GapOfOneGroupAtTheEnd", "1:2:3:4:5:6:7::", "1:2:3:4:5:6:7:0"},
        TextCase{"Mask", "ffff:ffff:ffff:ffff::", "ffff:ffff:ffff:ffff:0:0:0:0"},
        TextCase{"NoGap", "1:2:3:4:5:6:7:8", "1:2:3:4:5:6:7:8"},
        TextCase{"DigitsStayAsWritten", "FE80::00Ab", "FE80:0:0:0:0:0:0:00Ab"},
        TextCase{"QuirkIPv4TailIsOneGroup", "::ffff:1.2.3.4", "0:0:0:0:0:0:ffff:1.2.3.4"},
        TextCase{"QuirkIPv4CompatibleTail", "::1.2.3.4", "0:0:0:0:0:0:0:1.2.3.4"},
        TextCase{"IPv4PassesThrough", "10.1.2.3", "10.1.2.3"},
        TextCase{"EmptyPassesThrough", "", ""}),
    row_name);

INSTANTIATE_TEST_SUITE_P(
    Zones, Expand,
    testing::Values(TextCase{"LinkLocal", "fe80::1%en0", "fe80:0:0:0:0:0:0:1"},
                    TextCase{"SiteLocal", "fec0::1%4", "fec0:0:0:0:0:0:0:1"},
                    TextCase{"QuirkAnyOtherAddress", "2001::1%x", "2001:0:0:0:0:0:0:1"},
                    TextCase{"QuirkIPv4", "10.0.0.1%eth0", "10.0.0.1"},
                    TextCase{"QuirkNoGap", "1:2:3:4:5:6:7:8%z", "1:2:3:4:5:6:7:8"},
                    TextCase{"FromTheFirstMark", "fe80::1%a%b", "fe80:0:0:0:0:0:0:1"},
                    TextCase{"GapInTheZoneIsNoGap", "1%::", "1"}, TextCase{"MarkAlone", "%", ""}),
    row_name);

INSTANTIATE_TEST_SUITE_P(
    Malformed, Expand,
    testing::Values(
        TextCase{"ThreeColons", ":::", "0:0:0:0:0:0::0"},
        TextCase{"SecondGapStays", "1::2::3", "1:0:0:0:0:2::3"},
        TextCase{"ColonAtTheEnd", "1::2:", "1:0:0:0:0:0:2:0"},
        TextCase{"ColonInFront", ":1::2", ":1:0:0:0:0:0:2"},
        TextCase{"SevenColonsFitExactly", "1:2:3:4:5:6::8", "1:2:3:4:5:6:0:8"},
        TextCase{"NoGroupMissing", "1:2:3:4:5:6:7::9", "1:2:3:4:5:6:7:9"},
        TextCase{"EightCountedAreReturnedAsGiven", "1:2:3:4:5:6:7:8::9", "1:2:3:4:5:6:7:8::9"},
        TextCase{"EightCountedKeepTheirZone", "1:2::4:5:6:7:8:9:a%z", "1:2::4:5:6:7:8:9:a%z"},
        TextCase{"QuirkCountingStopsAtSeven", std::string(40, ':'),
                 "0" + std::string(39, ':') + "0"},
        TextCase{"ManyColonsOnTheLeft", "1:2:3:4:5:6:7:8:9:a::", "1:2:3:4:5:6:7:8:9:a::"},
        TextCase{"ZeroBytesAreText", std::string("\0::\0", 4),
                 std::string("\0:0:0:0:0:0:0:\0", 15)}),
    row_name);

struct SubnetCase {
  const char* name;
  std::string address;
  std::string mask;
  std::string subnet;
};

class Subnet : public testing::TestWithParam<SubnetCase> {};

TEST_P(Subnet, IsGroupAndGroup) {
  EXPECT_EQ(GetParam().subnet, calculateSubNetAddrForV6(GetParam().address, GetParam().mask));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Subnet,
    testing::Values(
        SubnetCase{"LinkLocal", "fe80:0:0:0:aede:48ff:fe00:1122", "ffff:ffff:ffff:ffff:0:0:0:0",
                   "fe80:0:0:0:0:0:0:0"},
        SubnetCase{"Short", "2001:db8:0:0:0:0:0:1", "ffff:ffff:0:0:0:0:0:0",
                   "2001:db8:0:0:0:0:0:0"},
        SubnetCase{"WithinAGroup", "1:2:3:abcd:5:6:7:8", "ffff:ffff:ffff:ff80:0:0:0:0",
                   "1:2:3:ab80:0:0:0:0"},
        SubnetCase{"LowerCaseWithoutZeros", "00AB:0FFF", "FFFF:00F0", "ab:f0"},
        SubnetCase{"EmptyAddress", "", "ffff", ""}, SubnetCase{"EmptyMask", "ffff", "", ""},
        SubnetCase{"FewerGroupsInTheMask", "1:2:3", "ffff:ffff", "1:2"},
        SubnetCase{"FewerGroupsInTheAddress", "1:2", "ffff:ffff:ffff", "1:2"},
        SubnetCase{"EmptyGroupsAreZero", "::1", "ffff:ffff:ffff", "0:0:1"},
        SubnetCase{"ColonAlone", ":", "ffff:ffff:ffff", "0:0"},
        SubnetCase{"NoHexadecimal", "xyz:12", "ffff:ffff", "0:12"},
        SubnetCase{"QuirkDigitsUpToTheFirstOther", "12g4:1.2", "ffff:ffff", "12:1"},
        SubnetCase{"QuirkMoreThanFourDigits", "123456789:1", "fffffffff:1", "123456789:1"},
        SubnetCase{"QuirkHighestForTooMany", "12345678901234567", "ffffffffffffffffffff",
                   "ffffffffffffffff"},
        SubnetCase{"QuirkSixteenDigitsFit", "0123456789abcdef", "ffffffffffffffff",
                   "123456789abcdef"},
        SubnetCase{"QuirkPrefix", "0x12:0X34", "ff:ff", "12:34"},
        SubnetCase{"QuirkSigns", "-1:+5", "ffff:ffff", "ffff:5"},
        SubnetCase{"QuirkBlanks", " \t\n7: 8", "ff:ff", "7:8"},
        SubnetCase{"QuirkZeroByteEndsAGroup", std::string("1\0002:3", 5), "ff:ff", "1:3"},
        SubnetCase{"NoLimitOfGroups", "1:1:1:1:1:1:1:1:1:1", "3:3:3:3:3:3:3:3:3:3",
                   "1:1:1:1:1:1:1:1:1:1"}),
    [](const auto& row) { return row.param.name; });

class ToLiteral : public testing::TestWithParam<TextCase> {};

TEST_P(ToLiteral, Converts) {
  EXPECT_EQ(GetParam().expected, convertV6AddrToLiteralFormat(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ToLiteral,
    testing::Values(
        TextCase{"Bracketed", "[fe80::1%4]", "fe80--1.ipv6-literal.net"},
        TextCase{"Plain", "2001:db8::1", "2001-db8--1.ipv6-literal.net"},
        TextCase{"QuirkZoneIsDropped", "fe80::1%en0", "fe80--1.ipv6-literal.net"},
        TextCase{"DigitsStayAsWritten", "FE80::00A", "FE80--00A.ipv6-literal.net"},
        TextCase{"EndingThereAlready", "fe80--1.ipv6-literal.net", "fe80--1.ipv6-literal.net"},
        TextCase{"EndingAnywhereInAnAddress", "a:.ipv6-literal.netb%c", "a:.ipv6-literal.netb%c"},
        TextCase{"IPv4", "192.168.1.1", "192.168.1.1"},
        TextCase{"NoColonKeepsBrackets", "[x]%1", "[x]%1"}, TextCase{"Empty", "", ""},
        TextCase{"WhatStandsAroundBracketsGoes", "a[b:c]d", "b-c.ipv6-literal.net"},
        TextCase{"EmptyBrackets", "[]:1", ".ipv6-literal.net"},
        TextCase{"ColonOnlyOutsideBrackets", "[x]:80", "x.ipv6-literal.net"},
        TextCase{"OpeningBracketAlone", "[a:b", "[a-b.ipv6-literal.net"},
        TextCase{"ClosingBracketAlone", "a:b]", "a-b].ipv6-literal.net"},
        TextCase{"ClosingInFrontMakesNoPair", "]a:b[c]", "]a-b[c].ipv6-literal.net"},
        TextCase{"InnermostOfNestedByFirsts", "[[a:b]]", "[a-b.ipv6-literal.net"},
        TextCase{"ZoneMarkAlone", ":%", "-.ipv6-literal.net"},
        TextCase{"ZeroBytesAreText", std::string("a:\0", 3),
                 std::string("a-\0.ipv6-literal.net", 20)}),
    row_name);

class FromLiteral : public testing::TestWithParam<TextCase> {};

TEST_P(FromLiteral, Converts) {
  EXPECT_EQ(GetParam().expected, convertLiteralFormatToV6Addr(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, FromLiteral,
    testing::Values(TextCase{"Plain", "2001-db8--1.ipv6-literal.net", "2001:db8::1"},
                    TextCase{"QuirkZoneIsNotKept", "fe80--1s4.ipv6-literal.net", "fe80::1"},
                    TextCase{"FromTheFirstZoneMark", "1s2s3.ipv6-literal.net", "1"},
                    TextCase{"Bracketed", "[fe80--1.ipv6-literal.net]", "fe80::1"},
                    TextCase{"WhatFollowsTheEndingGoes", "1-2.ipv6-literal.net.x-y", "1:2"},
                    TextCase{"FirstEndingCounts", "1.ipv6-literal.net-2.ipv6-literal.net", "1"},
                    TextCase{"EndingAlone", ".ipv6-literal.net", ""},
                    TextCase{"WithoutEndingUnchanged", "fe80--1s4", "fe80--1s4"},
                    TextCase{"WithoutEndingOnlyBracketsGo", "[fe80::1%en0]", "fe80::1%en0"},
                    TextCase{"EndingOutsideTheBracketsGoesFirst", "[1-2].ipv6-literal.net", "1-2"},
                    TextCase{"EndingIsCaseSensitive", "1-2.IPV6-literal.net",
                             "1-2.IPV6-literal.net"},
                    TextCase{"ClosingInFrontMakesNoPair", "]1-2[.ipv6-literal.net", "]1:2["},
                    TextCase{"Empty", "", ""}),
    row_name);

struct StripCase {
  const char* name;
  std::string text;
  std::string plain;      // without brackets
  std::string bracketed;  // with brackets kept
};

class StripText : public testing::TestWithParam<StripCase> {};

TEST_P(StripText, RemovesBracketsAndZone) {
  EXPECT_EQ(GetParam().plain, strip_v6_text(GetParam().text, false));
  EXPECT_EQ(GetParam().bracketed, strip_v6_text(GetParam().text, true));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, StripText,
    testing::Values(StripCase{"Bracketed", "[fe80::1%en0]", "fe80::1", "[fe80::1]"},
                    StripCase{"NoBracketsAreAdded", "fe80::1", "fe80::1", "fe80::1"},
                    StripCase{"ZoneBehindTheBrackets", "[fe80::1]%en0", "fe80::1", "[fe80::1]"},
                    StripCase{"QuirkZoneOfAnyText", "server%1", "server", "server"},
                    StripCase{"QuirkZoneOfIPv4", "[10.0.0.1%1]", "10.0.0.1", "[10.0.0.1]"},
                    StripCase{"WhatStandsAroundBracketsGoes", "a[b]c", "b", "[b]"},
                    StripCase{"OpeningBracketAlone", "[a%b", "[a", "[a"},
                    StripCase{"ClosingBracketAlone", "a]%b", "a]", "a]"},
                    StripCase{"FirstClosingBehindTheOpening", "]a[b]c]", "b", "[b]"},
                    StripCase{"ClosingInFrontOnly", "]a[", "]a[", "]a["},
                    StripCase{"ZoneHoldsTheClosing", "[a%b]", "a", "[a]"},
                    StripCase{"EmptyBrackets", "[]", "", "[]"}, StripCase{"Empty", "", "", ""}),
    [](const auto& row) { return row.param.name; });

// A random address as text, with or without a gap; never with an IPv4 tail.
std::string random_address(std::mt19937& random) {
  const auto below = [&random](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  const unsigned gap_groups = below(9);              // written as "::" when not 0
  const unsigned gap_start = below(9 - gap_groups);  // groups in front of it
  std::string text;
  for (unsigned group = 0; group < 8 - gap_groups; ++group) {
    if (gap_groups != 0 && group == gap_start) text += "::";
    if (!text.empty() && text.back() != ':') text += ':';
    char digits[8];
    static constexpr const char* kForms[] = {"%x", "%X", "%04x", "%04X"};
    std::snprintf(digits, sizeof digits, kForms[below(4)], below(4) == 0 ? 0 : below(0x10000));
    text += digits;
  }
  if (gap_groups != 0 && gap_start == 8 - gap_groups) text += "::";
  return text;
}

TEST(ExpandAgainstTheSystem, KeepsTheAddressOfEveryValidText) {
  std::mt19937 random(20240203);
  for (int round = 0; round < 200000; ++round) {
    const std::string text = random_address(random);
    in6_addr original;
    ASSERT_EQ(1, inet_pton(AF_INET6, text.c_str(), &original)) << text;
    const std::string expanded = expandIPV6Address(text + (round % 2 == 0 ? "%eth0" : ""));
    in6_addr read;
    ASSERT_EQ(1, inet_pton(AF_INET6, expanded.c_str(), &read)) << text << " gave " << expanded;
    ASSERT_EQ(0, std::memcmp(&original, &read, sizeof read)) << text << " gave " << expanded;
    ASSERT_EQ(7, std::count(expanded.begin(), expanded.end(), ':')) << expanded;
    ASSERT_EQ(std::string::npos, expanded.find("::")) << expanded;
    ASSERT_EQ(expanded, expandIPV6Address(expanded));
    ASSERT_EQ(text, convertLiteralFormatToV6Addr(convertV6AddrToLiteralFormat(text)));
  }
}

TEST(SubnetAgainstBits, EqualsTheMaskedAddress) {
  std::mt19937 random(7);
  for (int round = 0; round < 100000; ++round) {
    std::array<unsigned char, 16> address;
    std::array<unsigned char, 16> mask{};
    for (auto& byte : address) byte = static_cast<unsigned char>(random());
    for (size_t bit = 0, bits = random() % 129; bit < bits; ++bit) {
      mask[bit / 8] = static_cast<unsigned char>(mask[bit / 8] | (0x80 >> bit % 8));
    }
    char address_text[INET6_ADDRSTRLEN];
    char mask_text[INET6_ADDRSTRLEN];
    inet_ntop(AF_INET6, address.data(), address_text, sizeof address_text);
    inet_ntop(AF_INET6, mask.data(), mask_text, sizeof mask_text);
    // A dotted tail is no group; the walk over real masks never meets one.
    if (std::strchr(address_text, '.') != nullptr) continue;
    const std::string subnet =
        calculateSubNetAddrForV6(expandIPV6Address(address_text), expandIPV6Address(mask_text));
    std::array<unsigned char, 16> read;
    ASSERT_EQ(1, inet_pton(AF_INET6, subnet.c_str(), read.data())) << subnet;
    for (size_t i = 0; i < read.size(); ++i) {
      ASSERT_EQ(address[i] & mask[i], read[i]) << address_text << " under " << mask_text;
    }
  }
}

// The time of one call on a text of `size` bytes.
double seconds(const std::function<void(const std::string&)>& call, const std::string& text) {
  const auto start = std::chrono::steady_clock::now();
  call(text);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST(HostileTexts, MegabytesAreDoneAtOnce) {
  const std::vector<std::function<void(const std::string&)>> calls = {
      [](const std::string& text) { expandIPV6Address(text); },
      [](const std::string& text) { calculateSubNetAddrForV6(text, text); },
      [](const std::string& text) { convertV6AddrToLiteralFormat(text); },
      [](const std::string& text) { convertLiteralFormatToV6Addr(text + ".ipv6-literal.net"); },
      [](const std::string& text) { strip_v6_text(text, true); },
      [](const std::string& text) { noOfOccurences(text, ':', 7); }};
  for (const char* pattern : {":", "::", "1:", "[", "]", "[]", "%", "-", "s", ".ipv6-literal.ne",
                              "f", " ", "0x", "-1:"}) {
    std::string text = "a:";
    while (text.size() < 2'000'000) text += pattern;
    // A quadratic step over two megabytes takes minutes.
    for (const auto& call : calls) EXPECT_LT(seconds(call, text), 10) << pattern;
  }
}

}  // namespace
