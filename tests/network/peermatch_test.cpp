// tests/network/peermatch_test.cpp: whether a connection's peer is a given server.
#include <gtest/gtest.h>

#include "network/networkutil.h"
#include "network/resolver.h"
#include "tests/network/socket_script.h"
#include "tests/support/fake_system.h"

namespace {

using quillon_com::orb::network::Resolver;

// Names that the scripted resolver knows; every other one of the tables is refused.
void script_names(orbtest::SocketScript* script) {
  script->hosts["one.example"] = {"192.0.2.1"};
  script->hosts["three.example"] = {"192.0.2.7", "2001:db8::7", "192.0.2.9"};
  script->hosts["local.example"] = {"fe80::5%1"};
  for (const char* name : {"none.example", "10.1.2.3", "10.1.2.30", "fe80::1", "FE80::1", "]x[",
                           "[fe80::1", "192.0.2.1 "})
    script->refusals[name] = EAI_NONAME;
}

struct PeerCase {
  const char* name;
  const char *server, *peer;
  bool match, match_unresolved;  // unresolved: with `enabled` false
  int questions;                 // to the resolver, when enabled
};

void PrintTo(const PeerCase& row, std::ostream* out) { *out << row.name; }

class Peer : public testing::TestWithParam<PeerCase> {};

TEST_P(Peer, Enabled) {
  orbtest::SocketScript script;
  script_names(&script);
  const orbtest::FakeSystem system;
  EXPECT_EQ(GetParam().match,
            Resolver(system, true).is_peer(GetParam().server, "443", GetParam().peer));
  EXPECT_EQ(GetParam().questions, static_cast<int>(script.questions.size()));
  EXPECT_EQ(0, script.lists);
}

TEST_P(Peer, DisabledAsksNoResolver) {
  orbtest::SocketScript script;
  script_names(&script);
  ANetworkUtil utility;
  utility.enabled = false;
  EXPECT_EQ(GetParam().match_unresolved,
            utility.qlnCompareAddressFromPeerAddress(GetParam().server, "443", GetParam().peer));
  EXPECT_TRUE(script.questions.empty());
}

const PeerCase kRows[] = {
    {"EqualTexts", "none.example", "none.example", true, true, 0},
    {"QuirkServerWithinPeer", "10.1.2.3", "110.1.2.34", true, true, 0},
    {"QuirkServerAtTheStart", "10.1.2.3", "10.1.2.3:443", true, true, 0},
    {"QuirkServerAtTheEnd", "10.1.2.3", "x10.1.2.3", true, true, 0},
    {"PeerWithinServerIsNoMatch", "10.1.2.30", "10.1.2.3", false, false, 1},
    {"QuirkEmptyServerMatchesAnyPeer", "", "10.1.2.3", true, true, 0},
    {"QuirkEmptyServerMatchesEmptyPeer", "", "", true, true, 0},
    {"EmptyPeerIsNoMatch", "10.1.2.3", "", false, false, 1},
    {"BracketsAndDifferentZones", "[fe80::1%en0]", "fe80::1%en1", true, true, 0},
    {"BracketsOfThePeer", "fe80::1%4", "[fe80::1]", true, true, 0},
    {"ZoneOfTheServerAlone", "fe80::1%4", "fe80::1", true, true, 0},
    {"CaseCounts", "FE80::1", "fe80::1", false, false, 1},
    {"ClosingBracketInFrontIsNoPair", "]x[", "x", false, false, 1},
    {"LoneOpeningBracketStays", "[fe80::1", "fe80::1", false, false, 1},
    {"BlankBehindCounts", "192.0.2.1 ", "192.0.2.1", false, false, 1},
    {"ResolvedAddress", "one.example", "192.0.2.1", true, false, 1},
    {"ResolvedAddressIsNoSubstringRule", "one.example", "192.0.2.11", false, false, 1},
    {"FirstOfThree", "three.example", "192.0.2.7", true, false, 1},
    {"SecondOfThreeWithBracketsAndZone", "three.example", "[2001:db8::7%eth0]", true, false, 1},
    {"LastOfThree", "three.example", "192.0.2.9", true, false, 1},
    {"NoneOfThree", "three.example", "192.0.2.8", false, false, 1},
    {"FormOfTheTextCounts", "three.example", "2001:db8:0:0:0:0:0:7", false, false, 1},
    {"ZoneOfAResolvedAddressIsIgnored", "local.example", "fe80::5", true, false, 1},
    {"ServerThatDoesNotResolve", "none.example", "192.0.2.1", false, false, 1},
};

INSTANTIATE_TEST_SUITE_P(Rules, Peer, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

TEST(PeerMatch, AsksForServerAndServiceOfBothFamilies) {
  orbtest::SocketScript script;
  script_names(&script);
  EXPECT_TRUE(ANetworkUtil().qlnCompareAddressFromPeerAddress("three.example", "443", "192.0.2.9"));
  ASSERT_EQ(1u, script.questions.size());
  EXPECT_EQ("three.example", script.questions[0].host);
  EXPECT_EQ("443", script.questions[0].service);
  EXPECT_EQ(AF_UNSPEC, script.questions[0].hints.ai_family);
  EXPECT_EQ(SOCK_STREAM, script.questions[0].hints.ai_socktype);
  EXPECT_EQ((std::vector<int>{NI_NUMERICHOST, NI_NUMERICHOST, NI_NUMERICHOST}), script.name_flags);
  EXPECT_EQ((std::vector<socklen_t>{1025, 1025, 1025}), script.name_rooms);
}

TEST(PeerMatch, StopsAtTheFirstMatch) {
  orbtest::SocketScript script;
  script_names(&script);
  EXPECT_TRUE(ANetworkUtil().qlnCompareAddressFromPeerAddress("three.example", "", "192.0.2.7"));
  EXPECT_EQ(1, script.calls["getnameinfo"]);
}

TEST(PeerMatch, AnAddressWithoutTextIsPassedOver) {
  orbtest::SocketScript script;
  script_names(&script);
  script.failing["getnameinfo"] = {1};
  ANetworkUtil utility;
  EXPECT_FALSE(utility.qlnCompareAddressFromPeerAddress("three.example", "", "192.0.2.7"));
  script.calls.clear();
  EXPECT_TRUE(utility.qlnCompareAddressFromPeerAddress("three.example", "", "192.0.2.9"));
  EXPECT_EQ(0, script.lists);
}

TEST(PeerMatch, TheRealResolverTakesNumericTexts) {
  ANetworkUtil utility;
  EXPECT_TRUE(utility.qlnCompareAddressFromPeerAddress("0:0::1", "", "::1"));
  EXPECT_FALSE(utility.qlnCompareAddressFromPeerAddress("0:0::2", "", "::1"));
  EXPECT_TRUE(utility.qlnCompareAddressFromPeerAddress("127.1", "", "127.0.0.1"));
}

}  // namespace
