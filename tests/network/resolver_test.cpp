// tests/network/resolver_test.cpp: zones of link-local addresses, and names of resolved addresses.
#include "network/resolver.h"

#include <gtest/gtest.h>

#include <cstring>

#include "network/networkutil.h"
#include "tests/network/socket_script.h"
#include "tests/support/fake_system.h"
#include "tests/support/interface_entries.h"

namespace {

using orbtest::SocketScript;
using quillon_com::orb::network::AddressList;
using quillon_com::orb::network::Resolver;
using Texts = std::vector<std::string>;

// A machine with loopback (1) and three interfaces, of indexes 2, 3 and 12.
orbtest::FakeSystem machine() {
  orbtest::FakeSystem system;
  system.entries.emplace();
  const auto add = [&](const std::string& name, unsigned index, const std::string& quad,
                       unsigned flags) {
    system.indexes[name] = index;
    system.entries->push_back(orbtest::link_entry(name, {1, 2, 3, 4, 5, 6}, flags));
    system.entries->push_back(
        orbtest::address_entry(name, orbtest::ipv4(quad), orbtest::ipv4("255.255.255.0"), flags));
  };
  add("lo", 1, "127.0.0.1", IFF_UP | IFF_LOOPBACK);
  add("wlan0", 12, "192.0.2.12", IFF_UP);
  add("eth0", 2, "192.0.2.2", IFF_UP);
  add("eth1", 3, "192.0.2.3", IFF_UP);
  return system;
}

struct ScopeCase {
  const char* name;
  std::string address;
  Texts accepted;         // zoned addresses that the resolver takes
  unsigned scope;         // 0: none found
  std::string text;       // formatV6addrWithScope, brackets dropped
  std::string bracketed;  // formatV6addrWithScope, brackets kept
};

const ScopeCase kScopes[] = {
    {"FirstIndexThatIsTaken", "fe80::1", {"fe80::1%3", "fe80::1%12"}, 3, "fe80::1%3", "fe80::1%3"},
    {"AscendingIndexNotListOrder",
     "fe80::1",
     {"fe80::1%12", "fe80::1%2"},
     2,
     "fe80::1%2",
     "fe80::1%2"},
    {"LastIndex", "fe80::1", {"fe80::1%12"}, 12, "fe80::1%12", "fe80::1%12"},
    {"LoopbackIsLeftOut", "fe80::1", {"fe80::1%1"}, 0, "fe80::1", "fe80::1"},
    {"NoIndexTaken", "fe80::1", {}, 0, "fe80::1", "fe80::1"},
    {"BracketsRemoved", "[fe80::1]", {"fe80::1%2"}, 2, "fe80::1%2", "[fe80::1%2]"},
    {"CallersZoneReplaced", "fe80::1%eth1", {"fe80::1%2"}, 2, "fe80::1%2", "fe80::1%2"},
    {"CallersZoneInBracketsReplaced", "[fe80::1%3]", {"fe80::1%2"}, 2, "fe80::1%2", "[fe80::1%2]"},
    {"QuirkCallersZoneLostWhenNoneIsFound", "[fe80::1%3]", {}, 0, "fe80::1", "[fe80::1]"},
    {"TextAroundBracketsRemoved", "a[fe80::1]b", {"fe80::1%2"}, 2, "fe80::1%2", "[fe80::1%2]"},
    {"OtherPrefix", "fe81::1", {"fe81::1%2"}, 0, "fe81::1", "fe81::1"},
    {"SiteLocal", "fec0::1%3", {"fec0::1%2"}, 0, "fec0::1", "fec0::1"},
    {"Global", "[2001:db8::1%4]", {"2001:db8::1%2"}, 0, "2001:db8::1", "[2001:db8::1]"},
    {"UpperCaseIsNoLinkLocal", "FE80::1", {"FE80::1%2"}, 0, "FE80::1", "FE80::1"},
    {"PrefixInsideOnly", "::fe80", {"::fe80%2"}, 0, "::fe80", "::fe80"},
    {"NameThatBeginsSo", "fe80.example", {"fe80.example%3"}, 3, "fe80.example%3", "fe80.example%3"},
    {"QuirkPercentCutsAnyName", "100%.example", {}, 0, "100", "100"},
    {"HostName", "server.example", {}, 0, "server.example", "server.example"},
    {"IPv4", "192.0.2.1", {}, 0, "192.0.2.1", "192.0.2.1"},
    {"Empty", "", {"%2"}, 0, "", ""},
    {"EmptyBrackets", "[]", {"%2"}, 0, "", "[]"},
    {"LoneBrackets", "]fe80::1[", {"]fe80::1[%2"}, 0, "]fe80::1[", "]fe80::1["},
};

void PrintTo(const ScopeCase& row, std::ostream* out) { *out << row.name; }

class Scope : public testing::TestWithParam<ScopeCase> {
 protected:
  void SetUp() override {
    for (const std::string& zoned : GetParam().accepted) system.zones[zoned] = true;
  }
  orbtest::FakeSystem system = machine();
};

TEST_P(Scope, Id) {
  unsigned scope = 77;
  EXPECT_EQ(GetParam().scope != 0, Resolver(system, true).scope_id(GetParam().address, &scope));
  EXPECT_EQ(GetParam().scope == 0 ? 77 : GetParam().scope, scope);
}

TEST_P(Scope, Text) {
  const Resolver resolver(system, true);
  EXPECT_EQ(GetParam().text, resolver.with_scope(GetParam().address, false));
  EXPECT_EQ(GetParam().bracketed, resolver.with_scope(GetParam().address, true));
}

TEST_P(Scope, DisabledFindsNone) {
  unsigned scope = 77;
  const Resolver resolver(system, false);
  EXPECT_FALSE(resolver.scope_id(GetParam().address, &scope));
  EXPECT_EQ(77u, scope);
  const std::string text = GetParam().text.substr(0, GetParam().text.find('%'));
  EXPECT_EQ(text, resolver.with_scope(GetParam().address, false));
  EXPECT_EQ(0u, system.entry_walks);
}

INSTANTIATE_TEST_SUITE_P(Rules, Scope, testing::ValuesIn(kScopes),
                         [](const auto& row) { return row.param.name; });

TEST(ScopeId, UnreadableOrLoopbackOnlyMachineHasNone) {
  orbtest::FakeSystem unreadable;
  unreadable.zones["fe80::1%2"] = true;
  unsigned scope = 77;
  EXPECT_FALSE(Resolver(unreadable, true).scope_id("fe80::1", &scope));
  orbtest::FakeSystem loopback = machine();
  loopback.entries->resize(2);
  loopback.zones["fe80::1%1"] = true;
  EXPECT_FALSE(Resolver(loopback, true).scope_id("fe80::1", &scope));
  EXPECT_EQ(77u, scope);
}

TEST(ScopeId, OtherAddressesNeedNoInterfaceList) {
  const orbtest::FakeSystem system = machine();
  unsigned scope = 77;
  EXPECT_FALSE(Resolver(system, true).scope_id("2001:db8::1", &scope));
  EXPECT_EQ(0u, system.entry_walks);
}

TEST(ScopeId, EachCallTakesAFreshSnapshot) {
  orbtest::FakeSystem system = machine();
  system.zones["fe80::1%2"] = system.zones["fe80::1%3"] = true;
  const Resolver resolver(system, true);
  unsigned scope = 0;
  EXPECT_TRUE(resolver.scope_id("fe80::1", &scope));
  EXPECT_EQ(2u, scope);
  system.zones.erase("fe80::1%2");
  EXPECT_TRUE(resolver.scope_id("fe80::1", &scope));
  EXPECT_EQ(3u, scope);
  EXPECT_EQ(2u, system.entry_walks);
}

struct QuestionCase {
  const char* name;
  std::string host, service;
  bool ipv4_only, enabled;
  std::string asked;
};

TEST(CreateAddrinfo, AsksTheResolverForStreamSockets) {
  const QuestionCase rows[] = {
      {"numeric", "127.0.0.1", "80", false, true, "127.0.0.1"},
      {"IPv4 alone", "127.0.0.1", "80", true, true, "127.0.0.1"},
      {"no service", "127.0.0.1", "", false, true, "127.0.0.1"},
      {"brackets", "[::1]", "80", false, true, "::1"},
      {"zone of another address", "[::1%7]", "80", false, true, "::1"},
      {"disabled asks all the same", "[::1%7]", "80", false, false, "::1"},
      {"link-local gets its zone", "[fe80::1%7]", "80", false, true, "fe80::1%2"},
      {"Quirk: disabled gives no zone", "[fe80::1%7]", "80", false, false, "fe80::1"},
  };
  for (const QuestionCase& row : rows) {
    orbtest::FakeSystem system = machine();
    system.zones["fe80::1%2"] = true;
    SocketScript script;
    script.hosts["fe80::1"] = script.hosts["fe80::1%2"] = {"fe80::1%1"};
    {
      AddressList list;
      EXPECT_EQ(0,
                Resolver(system, row.enabled).resolve(row.host, row.service, row.ipv4_only, &list));
      EXPECT_NE(nullptr, list) << row.name;
    }
    ASSERT_EQ(1u, script.questions.size()) << row.name;
    const auto& question = script.questions[0];
    EXPECT_EQ(row.asked, question.host) << row.name;
    EXPECT_EQ(row.service.empty(), !question.service) << row.name;
    EXPECT_EQ(row.service, question.service.value_or("")) << row.name;
    addrinfo hints{};
    hints.ai_family = row.ipv4_only ? AF_INET : AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    EXPECT_EQ(0, std::memcmp(&hints, &question.hints, sizeof hints)) << row.name;
    EXPECT_EQ(0, script.lists);
  }
}

TEST(CreateAddrinfo, GivesAListThatTheCallerFrees) {
  for (bool enabled : {true, false}) {
    ANetworkUtil utility;
    utility.enabled = enabled;
    addrinfo* list = nullptr;
    ASSERT_EQ(0, utility.qlnCreateAddrinfo("127.0.0.1", "7", &list, false));
    ASSERT_NE(nullptr, list);
    EXPECT_EQ(AF_INET, list->ai_family);
    EXPECT_EQ(SOCK_STREAM, list->ai_socktype);
    EXPECT_EQ(nullptr, list->ai_next);
    freeaddrinfo(list);
  }
}

TEST(CreateAddrinfo, MinusOneWithoutHostOrResult) {
  SocketScript script;
  ANetworkUtil utility;
  addrinfo marker{};
  addrinfo* list = &marker;
  EXPECT_EQ(-1, utility.qlnCreateAddrinfo("", "80", &list, false));
  EXPECT_EQ(-1, utility.qlnCreateAddrinfo("127.0.0.1", "80", nullptr, false));
  EXPECT_EQ(-1, utility.qlnCreateAddrinfo("", "", nullptr, true));
  EXPECT_EQ(&marker, list);
  EXPECT_TRUE(script.questions.empty());
}

TEST(CreateAddrinfo, GivesTheResolversCode) {
  addrinfo marker{};
  addrinfo* list = &marker;
  ANetworkUtil utility;
  EXPECT_EQ(EAI_SERVICE, utility.qlnCreateAddrinfo("127.0.0.1", "no such service", &list, false));
  EXPECT_EQ(EAI_NONAME, utility.qlnCreateAddrinfo("%all of it", "80", &list, false));
  SocketScript script;
  script.refusals["server.example"] = EAI_AGAIN;
  EXPECT_EQ(EAI_AGAIN, utility.qlnCreateAddrinfo("server.example", "80", &list, false));
  EXPECT_EQ(&marker, list);
}

class Names : public testing::Test {
 protected:
  void SetUp() override {
    for (int number = 1; number <= 20; ++number)
      script.hosts["twenty"].push_back("192.0.2." + std::to_string(number));
    script.hosts["two"] = {"192.0.2.1", "2001:db8::2"};
  }
  void TearDown() override {
    utility.enabled = true;
    utility.qlnFreeAddrinfo(names);
    EXPECT_TRUE(names.empty());
    EXPECT_EQ(0, script.lists);
  }
  int ask(const std::string& host, int flags = NI_NUMERICHOST) {
    return utility.qlnGetAddrinfo(host, "80", names, flags);
  }
  Texts texts() const { return Texts(names.begin(), names.end()); }
  static Texts numbered(int first, int last) {
    Texts texts;
    for (int number = first; number <= last; ++number)
      texts.push_back("192.0.2." + std::to_string(number));
    return texts;
  }
  SocketScript script;
  ANetworkUtil utility;
  std::vector<char*> names;
};

TEST_F(Names, InTheResolversOrder) {
  EXPECT_EQ(0, ask("two"));
  EXPECT_EQ((Texts{"192.0.2.1", "2001:db8::2"}), texts());
  EXPECT_EQ(AF_UNSPEC, script.questions.at(0).hints.ai_family);
  EXPECT_EQ("80", script.questions.at(0).service);
}

TEST_F(Names, QuirkFourteenOfTwenty) {
  EXPECT_EQ(0, ask("twenty"));
  EXPECT_EQ(numbered(1, 14), texts());
  EXPECT_EQ(14, script.calls["getnameinfo"]) << "asked no further";
}

TEST_F(Names, AnAddressWithoutNameIsNotCounted) {
  script.failing["getnameinfo"] = {1, 5, 14};
  EXPECT_EQ(0, ask("twenty"));
  Texts expected = numbered(2, 4);
  for (const Texts& more : {numbered(6, 13), numbered(15, 17)})
    expected.insert(expected.end(), more.begin(), more.end());
  EXPECT_EQ(expected, texts());
}

TEST_F(Names, MinusOneWhenNoAddressHasAName) {
  script.failing["getnameinfo"] = {1, 2};
  EXPECT_EQ(-1, ask("two"));
  EXPECT_TRUE(names.empty());
}

TEST_F(Names, AreAppended) {
  EXPECT_EQ(0, ask("two"));
  EXPECT_EQ(0, ask("twenty"));
  EXPECT_EQ(16u, names.size());
  EXPECT_EQ("192.0.2.1", texts().at(0));
  EXPECT_EQ("192.0.2.14", texts().at(15));
}

TEST_F(Names, AreArraysOf1025CharactersAskedForWithTheCallersFlags) {
  EXPECT_EQ(0, ask("two", NI_NUMERICHOST | NI_DGRAM));
  for (char* name : names) std::memset(name, 'x', 1025);  // the sanitizer watches
  EXPECT_EQ((std::vector<int>(2, NI_NUMERICHOST | NI_DGRAM)), script.name_flags);
  EXPECT_EQ((std::vector<socklen_t>{1025, 1025}), script.name_rooms);
  EXPECT_EQ((std::vector<socklen_t>{sizeof(sockaddr_in), sizeof(sockaddr_in6)}),
            script.name_lengths);
}

TEST_F(Names, NineHundredNinetyNineFailedAllocationsAreTriedAgain) {
  script.failing_name_buffers = 999;
  EXPECT_EQ(0, ask("two"));
  EXPECT_EQ((Texts{"192.0.2.1", "2001:db8::2"}), texts());
}

TEST_F(Names, AThousandFailedAllocationsSkipTheAddressAlone) {
  script.failing_name_buffers = 1000;
  EXPECT_EQ(0, ask("two"));
  EXPECT_EQ(Texts{"2001:db8::2"}, texts());
  EXPECT_EQ(1, script.calls["getnameinfo"]);
}

TEST_F(Names, NoMemoryForAnyName) {
  script.failing_name_buffers = 2000;
  EXPECT_EQ(-1, ask("two"));
  EXPECT_TRUE(names.empty());
  EXPECT_EQ(0, script.failing_name_buffers) << "two times a thousand";
}

TEST_F(Names, GiveTheResolversCodeAndMinusOneForNoHost) {
  script.refusals["unknown"] = EAI_NONAME;
  EXPECT_EQ(EAI_NONAME, ask("unknown"));
  EXPECT_EQ(-1, ask(""));
  EXPECT_TRUE(names.empty());
}

TEST_F(Names, DisabledAsksAndFreesNothing) {
  EXPECT_EQ(0, ask("two"));
  utility.enabled = false;
  EXPECT_EQ(-1, ask("twenty"));
  EXPECT_EQ(1u, script.questions.size());
  utility.qlnFreeAddrinfo(names);
  EXPECT_EQ((Texts{"192.0.2.1", "2001:db8::2"}), texts());
}

TEST_F(Names, FreeingTakesNullPointersAndAnEmptyVector) {
  names = {nullptr, new char[1025], nullptr};
  utility.qlnFreeAddrinfo(names);
  EXPECT_TRUE(names.empty());
  utility.qlnFreeAddrinfo(names);
}

}  // namespace
